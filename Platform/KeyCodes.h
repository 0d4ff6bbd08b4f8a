#pragma once
// Virtual key codes: which key gives which character, and which keys are held.
#include "Platform/Messages.h"

#include <array>
#include <cstddef>

namespace vesk {

// The UTF-16 unit that a key gives on a plain US keyboard; 0 for none. Control gives control characters.
char16_t KeyCode_Character(int key, bool shift, bool control);
// The key that gives an ASCII character, and whether shift is needed; 0 for none.
int KeyCode_ForCharacter(char16_t character, bool& shift);
// The message of a key going down or up. Codes 160 to 165 become the plain shift, control or alt of their
// side.
Message KeyCode_Message(int key, bool down);

// Held and locked keys as a stream of messages leaves them.
class CKeyStates {
public:
  void Apply(const Message& message);
  bool Held(int key) const { return key > 0 && key < 256 && m_held[static_cast<size_t>(key)]; }
  bool Toggled(int key) const { return key > 0 && key < 256 && m_toggled[static_cast<size_t>(key)]; }
  void SetToggled(int key, bool on) { m_toggled[static_cast<size_t>(key)] = on; }

private:
  std::array<bool, 256> m_held{};
  std::array<bool, 256> m_toggled{};
};

} // namespace vesk
