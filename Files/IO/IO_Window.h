#pragma once
// What the messages of the main window do to the pending input. Game thread only.
#include "Platform/Messages.h"

#include <cstdint>

namespace vesk {

// Acts on one message of the main window.
void WindowProcedure(const Message& message);

// The single reports behind it, for keys and buttons that don't come from a window. Codes are before the key
// map.
void IO_KeyDown(int32_t key, bool repeat);
void IO_KeyUp(int32_t key);
void IO_Character(char16_t character);
void IO_MouseMove(int32_t x, int32_t y);
void IO_ButtonDown(int32_t button, int32_t x, int32_t y); // 1 left, 2 right, 3 middle
void IO_ButtonUp(int32_t button, int32_t x, int32_t y);
void IO_Wheel(int32_t delta);

} // namespace vesk
