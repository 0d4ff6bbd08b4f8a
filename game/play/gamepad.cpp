#include "game/play/gamepad.h"

#include "Files/IO/Gamepad.h"
#include "game/Game.h"
#include "game/Keys.h"

namespace vesk {

namespace {

constexpr int kPad = 0;
constexpr double kHeldOver = 0.5;

struct StickKey {
  int axis;
  int side; // the sign of the axis that presses the key
  int key;
};
// In the order of the latches.
constexpr StickKey kStickKeys[] = {
    {gp_axislv, -1, kUpKey}, {gp_axislv, 1, kDownKey}, {gp_axislh, -1, kLeftKey}, {gp_axislh, 1, kRightKey}};

struct ButtonKey {
  int button;
  int key;
  bool inPlayOnly;
};
constexpr ButtonKey kButtonKeys[] = {
    {gp_padu, kUpKey, false},     {gp_padd, kDownKey, false},   {gp_padl, kLeftKey, false},
    {gp_padr, kRightKey, false},  {gp_start, kEnterKey, false}, {gp_face1, 'X', true},
    {gp_face2, kActionKey, true}, {gp_face3, 'Z', true},        {gp_face4, kSpaceKey, true},
};

} // namespace

void translate_gamepad(Self controller) {
  if (!(controller[gamepad] > 0.5)) return;
  for (int latch = 0; latch < static_cast<int>(std::size(kStickKeys)); ++latch) {
    const StickKey& row = kStickKeys[latch];
    const bool held_over = Real(gamepad_axis_value(kPad, row.axis) * row.side) >= kHeldOver;
    if (held_over && controller[leftstick][latch] == 0) {
      keyboard_key_press(row.key);
      controller[leftstick][latch] = 1;
    } else if (!held_over && controller[leftstick][latch] == 1) {
      keyboard_key_release(row.key);
      controller[leftstick][latch] = 0;
    }
  }
  for (const ButtonKey& row : kButtonKeys) {
    if (row.inPlayOnly && room != rm_template) continue;
    if (gamepad_button_check_pressed(kPad, row.button)) keyboard_key_press(row.key);
    if (gamepad_button_check_released(kPad, row.button)) keyboard_key_release(row.key);
  }
}

void catch_up_with_gamepad(Self controller) {
  if (!(controller[gamepad] > 0.5)) return;
  for (const ButtonKey& row : kButtonKeys)
    if (gamepad_button_check_released(kPad, row.button)) keyboard_key_release(row.key);
}

} // namespace vesk
