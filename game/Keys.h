#pragma once
// Keys and mouse buttons as the built-ins number them; letters and digits are their own characters.

namespace vesk {

inline constexpr int kEnterKey = 13, kShiftKey = 16, kControlKey = 17, kAltKey = 18, kEscapeKey = 27,
                     kSpaceKey = 32;
inline constexpr int kLeftKey = 37, kUpKey = 38, kRightKey = 39, kDownKey = 40;
inline constexpr int kF4Key = 115;

// What the rules of play ask for; a running level maps X and Z to them.
inline constexpr int kJumpKey = kShiftKey, kActionKey = kControlKey;

inline constexpr int kLeftButton = 1, kRightButton = 2, kMiddleButton = 3;

} // namespace vesk
