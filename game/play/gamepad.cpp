#include "game/play/gamepad.h"

#include "Files/IO/Gamepad.h"
#include "game/Game.h"

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
    {gp_axislv, -1, 38}, {gp_axislv, 1, 40}, {gp_axislh, -1, 37}, {gp_axislh, 1, 39}};

struct ButtonKey {
  int button;
  int key;
  bool inPlayOnly;
};
constexpr ButtonKey kButtonKeys[] = {
    {gp_padu, 38, false}, {gp_padd, 40, false},  {gp_padl, 37, false},
    {gp_padr, 39, false}, {gp_start, 13, false}, {gp_face1, 88, true},
    {gp_face2, 17, true}, {gp_face3, 90, true},  {gp_face4, 32, true},
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
