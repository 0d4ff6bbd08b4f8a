#include "Files/IO/IO_Window.h"

#include "Files/Base/Error.h"
#include "Files/Graphics/Graphics.h"
#include "Files/IO/Gamepad.h"
#include "Files/IO/IO.h"
#include "Files/Room/Room.h"
#include "Files/Run/Run_Frame.h"
#include "Platform/Platform.h"

namespace vesk {

namespace {

constexpr char16_t kBackspace = 8;
constexpr char16_t kFirstPrintable = 32;

// Control and alt are told with their side as well; shift is not, its sides are polled.
int32_t SidedCode(const Message& message) {
  if (message.key == vk_alt) return message.extended ? vk_ralt : vk_lalt;
  if (message.key == vk_control) return message.extended ? vk_rcontrol : vk_lcontrol;
  return 0;
}

void PostQuit() {
  Message quit;
  quit.kind = MessageKind::Quit;
  Platform_Get().messages->Post(quit);
}

// Alt+F4 closes the window, or ends the game when it stands in for another one.
bool ClosesByKey(const Message& message) {
  if (!message.system || message.key != vk_f4 || message.kind != MessageKind::KeyDown) return false;
  if (Error().restarted) {
    Rooms().request = RoomRequestEndGame;
    return false;
  }
  PostQuit();
  return true;
}

bool TogglesFullscreen(const Message& message) {
  return Loop().altEnter && message.system && message.key == vk_enter && !message.repeat;
}

} // namespace

void WindowProcedure(const Message& message) {
  switch (message.kind) {
  case MessageKind::KeyDown:
    if (ClosesByKey(message)) return;
    if (TogglesFullscreen(message)) window_set_fullscreen(!window_get_fullscreen());
    IO_KeyDown(message.key, message.repeat);
    if (const int32_t sided = SidedCode(message)) IO_KeyDown(sided, message.repeat);
    return;
  case MessageKind::KeyUp:
    IO_KeyUp(message.key);
    if (const int32_t sided = SidedCode(message)) IO_KeyUp(sided);
    return;
  case MessageKind::Character: IO_Character(message.character); return;
  case MessageKind::MouseMove: IO_MouseMove(message.x, message.y); return;
  case MessageKind::ButtonDown: IO_ButtonDown(message.button, message.x, message.y); return;
  case MessageKind::ButtonUp: IO_ButtonUp(message.button, message.x, message.y); return;
  case MessageKind::Wheel: IO_Wheel(message.delta); return;
  case MessageKind::Activate:
    IO_Clear();
    if (!message.active && Input().heldButtons > 0) { // their releases go elsewhere
      Input().heldButtons = 0;
      Platform_Get().window->CaptureMouse(false);
    }
    Loop().focused = message.active;
    return;
  case MessageKind::Resize: Graphics_WindowResized(); return;
  case MessageKind::PadsChanged: Gamepad_DevicesChanged(); return;
  case MessageKind::Close: PostQuit(); return;
  case MessageKind::Quit: return; // the pump's own
  }
}

void IO_KeyDown(int32_t key, bool repeat) {
  if (key < 0 || key >= kKeys) return;
  InputState& input = Input();
  const int32_t code = input.keyMap[static_cast<size_t>(key)];
  if (code < 0 || code >= kKeys) return;
  KeyTables& pending = input.pendingKeys;
  const auto at = static_cast<size_t>(code);
  input.previousKey = pending.key;
  pending.lastKey = code;
  pending.key = code;
  if (!pending.down[at] && !repeat) pending.pressed[at] = 1;
  pending.down[at] = 1;
}

void IO_KeyUp(int32_t key) {
  if (key < 0 || key >= kKeys) return;
  InputState& input = Input();
  const int32_t code = input.keyMap[static_cast<size_t>(key)];
  if (code < 0 || code >= kKeys) return;
  KeyTables& pending = input.pendingKeys;
  if (code == pending.key) {
    const bool previousHeld = pending.down[static_cast<size_t>(input.previousKey)] != 0;
    pending.key = previousHeld && input.previousKey != code ? input.previousKey : 0;
  }
  pending.down[static_cast<size_t>(code)] = 0;
  pending.released[static_cast<size_t>(code)] = 1;
}

void IO_Character(char16_t character) {
  InputState& input = Input();
  KeyTables& pending = input.pendingKeys;
  pending.lastChar = character;
  if (character == kBackspace) {
    if (input.textLength > 0) pending.text[static_cast<size_t>(--input.textLength)] = 0;
    return;
  }
  if (character < kFirstPrintable) return;
  if (input.textLength >= kKeyboardString - 2) {
    // Full: the text starts anew behind its last unit.
    pending.text[0] = pending.text[static_cast<size_t>(input.textLength - 1)];
    input.textLength = 1;
  }
  pending.text[static_cast<size_t>(input.textLength++)] = character;
  pending.text[static_cast<size_t>(input.textLength)] = 0;
}

void IO_MouseMove(int32_t x, int32_t y) {
  MouseTables& pending = Input().pendingMouse;
  pending.x = static_cast<int16_t>(x);
  pending.y = static_cast<int16_t>(y);
}

void IO_ButtonDown(int32_t button, int32_t x, int32_t y) {
  if (button < mb_left || button > mb_middle) return;
  InputState& input = Input();
  MouseTables& pending = input.pendingMouse;
  const auto at = static_cast<size_t>(button - 1);
  if (++input.heldButtons == 1) Platform_Get().window->CaptureMouse(true);
  pending.button = button;
  pending.lastButton = button;
  if (!pending.down[at]) pending.pressed[at] = 1;
  pending.down[at] = 1;
  if (button == mb_left) input.pointers[0] = {kPointerTouches | 3, x, y, input.pointers[0].reserved, 0};
}

void IO_ButtonUp(int32_t button, int32_t x, int32_t y) {
  if (button < mb_left || button > mb_middle) return;
  InputState& input = Input();
  MouseTables& pending = input.pendingMouse;
  const auto at = static_cast<size_t>(button - 1);
  if (--input.heldButtons < 1) {
    input.heldButtons = 0;
    Platform_Get().window->CaptureMouse(false);
  }
  pending.button = 0;
  pending.down[at] = 0;
  pending.pressed[at] = 0;
  pending.released[at] = 1;
  if (button == mb_left) input.pointers[0] = {0, x, y, input.pointers[0].reserved, 0};
}

void IO_Wheel(int32_t delta) {
  if (delta > 0) Input().pendingMouse.wheelUp = 1;
  if (delta < 0) Input().pendingMouse.wheelDown = 1;
}

} // namespace vesk
