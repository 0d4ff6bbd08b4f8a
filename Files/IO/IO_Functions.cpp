#include "Files/IO/IO_Functions.h"

#include "Files/Function/Function.h"
#include "Files/IO/IO.h"
#include "Files/Run/Timing.h"
#include "Platform/Platform.h"
#include "Platform/Text.h"

#include <algorithm>
#include <string_view>

namespace vesk {

namespace {

using KeyTable = std::array<uint8_t, kKeys>;
using ButtonTable = std::array<uint8_t, kMouseButtons>;

bool CheckKey(const KeyTable& table, int32_t key) {
  const auto set = [](uint8_t entry) { return entry != 0; };
  if (key == vk_nokey) return std::none_of(table.begin(), table.end(), set);
  if (key == vk_anykey) return std::any_of(table.begin(), table.end(), set);
  return key > vk_anykey && key < kKeys && table[static_cast<size_t>(key)] != 0;
}

bool CheckButton(ButtonTable MouseTables::*table, int32_t device, int32_t button) {
  if (device < 0 || device >= kMouseDevices) return false;
  const ButtonTable& buttons = Input().mice[static_cast<size_t>(device)].*table;
  const bool any = buttons[0] || buttons[1] || buttons[2];
  if (button == mb_any) return any;
  if (button == mb_none) return !any;
  return button >= mb_left && button <= mb_middle && buttons[static_cast<size_t>(button - 1)] != 0;
}

void ForgetButton(MouseTables& mouse, size_t at) {
  mouse.down[at] = 0;
  mouse.pressed[at] = 0;
  mouse.released[at] = 0;
}

} // namespace

// Keyboard

bool keyboard_check(int32_t key) { return CheckKey(Input().keys.down, key); }
bool keyboard_check_pressed(int32_t key) { return CheckKey(Input().keys.pressed, key); }
bool keyboard_check_released(int32_t key) { return CheckKey(Input().keys.released, key); }
bool keyboard_check_direct(int32_t key) { return Platform_Get().messages->KeyHeldNow(key); }
void keyboard_key_press(int32_t key) { Platform_Get().messages->InjectKey(key & 0xFF, true); }
void keyboard_key_release(int32_t key) { Platform_Get().messages->InjectKey(key & 0xFF, false); }

void keyboard_set_map(int32_t from, int32_t to) {
  if (from >= 0 && from < kKeys) Input().keyMap[static_cast<size_t>(from)] = to;
}

int32_t keyboard_get_map(int32_t key) {
  return key >= 0 && key < kKeys ? Input().keyMap[static_cast<size_t>(key)] : key;
}

void keyboard_unset_map() {
  for (int32_t key = 0; key < kKeys; ++key) Input().keyMap[static_cast<size_t>(key)] = key;
}

void keyboard_clear(int32_t key) {
  ProcessMessages();
  if (key < 0 || key >= kKeys) return;
  for (KeyTables* tables : {&Input().keys, &Input().pendingKeys}) {
    tables->down[static_cast<size_t>(key)] = 0;
    tables->pressed[static_cast<size_t>(key)] = 0;
    tables->released[static_cast<size_t>(key)] = 0;
  }
}

bool keyboard_get_numlock() { return Platform_Get().messages->KeyToggled(vk_numlock); }

void keyboard_set_numlock(bool on) {
  if (keyboard_get_numlock() == on) return;
  keyboard_key_press(vk_numlock);
  keyboard_key_release(vk_numlock);
}

// Mouse

void mouse_clear(int32_t button) {
  ProcessMessages();
  for (int32_t each = mb_left; each <= mb_middle; ++each) {
    if (button != mb_any && button != each) continue;
    ForgetButton(Input().mice[0], static_cast<size_t>(each - 1));
    ForgetButton(Input().pendingMouse, static_cast<size_t>(each - 1));
  }
}

bool mouse_check_button(int32_t button) { return CheckButton(&MouseTables::down, 0, button); }
bool mouse_check_button_pressed(int32_t button) { return CheckButton(&MouseTables::pressed, 0, button); }
bool mouse_check_button_released(int32_t button) { return CheckButton(&MouseTables::released, 0, button); }
bool mouse_wheel_up() { return Input().mice[0].wheelUp != 0; }
bool mouse_wheel_down() { return Input().mice[0].wheelDown != 0; }

bool device_mouse_check_button(int32_t device, int32_t button) {
  return CheckButton(&MouseTables::down, device, button);
}
bool device_mouse_check_button_pressed(int32_t device, int32_t button) {
  return CheckButton(&MouseTables::pressed, device, button);
}
bool device_mouse_check_button_released(int32_t device, int32_t button) {
  return CheckButton(&MouseTables::released, device, button);
}
double device_mouse_x(int32_t device) { return IO_MouseInRoom(device).x; }
double device_mouse_y(int32_t device) { return IO_MouseInRoom(device).y; }

int32_t device_mouse_raw_x(int32_t device) {
  return device >= 0 && device < kMouseDevices ? Input().mice[static_cast<size_t>(device)].x : 0;
}
int32_t device_mouse_raw_y(int32_t device) {
  return device >= 0 && device < kMouseDevices ? Input().mice[static_cast<size_t>(device)].y : 0;
}

void io_clear() {
  ProcessMessages();
  IO_Clear();
}

// Built-in variables

double IO_MouseX() { return IO_MouseInRoom(0).x; }
double IO_MouseY() { return IO_MouseInRoom(0).y; }

int32_t IO_GetMouseButton() { return Input().mice[0].button; }
void IO_SetMouseButton(int32_t button) {
  if (button >= mb_left && button <= mb_middle) Input().mice[0].button = button;
}
int32_t IO_GetMouseLastButton() { return Input().mice[0].lastButton; }
void IO_SetMouseLastButton(int32_t button) {
  if (button >= mb_left && button <= mb_middle) Input().mice[0].lastButton = button;
}

int32_t IO_GetKeyboardKey() { return Input().keys.key; }
void IO_SetKeyboardKey(int32_t key) {
  if (key >= 0 && key < kKeys) Input().keys.key = key; // the next transfer overwrites it
}
int32_t IO_GetKeyboardLastKey() { return Input().keys.lastKey; }
void IO_SetKeyboardLastKey(int32_t key) {
  if (key < 0 || key >= kKeys) return;
  Input().keys.lastKey = key;
  Input().pendingKeys.lastKey = key;
  Input().pendingKeys.key = 0;
}

std::string IO_GetKeyboardLastChar() {
  const char16_t& last = Input().keys.lastChar;
  return Text_ToUtf8(std::u16string_view(&last, last == 0 ? 0 : 1)); // none yet: no character
}

void IO_SetKeyboardLastChar(const RValue& value) {
  if (value.Kind() != kString || !value.string || value.string->length == 0) return;
  const auto first = static_cast<char16_t>(static_cast<uint8_t>(value.string->text[0]));
  Input().keys.lastChar = first;
  Input().pendingKeys.lastChar = first;
}

std::string IO_GetKeyboardString() { return Text_ToUtf8(std::u16string_view(Input().keys.text.data())); }

void IO_SetKeyboardString(const RValue& value) {
  constexpr size_t kLongest = 1024;
  InputState& input = Input();
  std::u16string units;
  if (value.Kind() == kString && value.string)
    units = Text_ToUtf16({value.string->text, value.string->length});
  units.resize(std::min(units.size(), kLongest));
  input.keys.text.fill(0);
  std::copy(units.begin(), units.end(), input.keys.text.begin());
  input.textLength = static_cast<int32_t>(units.size());
  input.pendingKeys.text = input.keys.text;
}

namespace {

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&keyboard_check>("keyboard_check"),
    Builtin<&keyboard_check_pressed>("keyboard_check_pressed"),
    Builtin<&keyboard_check_released>("keyboard_check_released"),
    Builtin<&keyboard_check_direct>("keyboard_check_direct"),
    Builtin<&keyboard_key_press>("keyboard_key_press"),
    Builtin<&keyboard_key_release>("keyboard_key_release"),
    Builtin<&keyboard_set_map>("keyboard_set_map"),
    Builtin<&keyboard_get_map>("keyboard_get_map"),
    Builtin<&keyboard_unset_map>("keyboard_unset_map"),
    Builtin<&keyboard_clear>("keyboard_clear"),
    Builtin<&mouse_clear>("mouse_clear"),
    Builtin<&io_clear>("io_clear"),
    Builtin<&keyboard_get_numlock>("keyboard_get_numlock"),
    Builtin<&keyboard_set_numlock>("keyboard_set_numlock"),
    Builtin<&mouse_check_button>("mouse_check_button"),
    Builtin<&mouse_check_button_pressed>("mouse_check_button_pressed"),
    Builtin<&mouse_check_button_released>("mouse_check_button_released"),
    Builtin<&mouse_wheel_up>("mouse_wheel_up"),
    Builtin<&mouse_wheel_down>("mouse_wheel_down"),
    Builtin<&device_mouse_check_button>("device_mouse_check_button"),
    Builtin<&device_mouse_check_button_pressed>("device_mouse_check_button_pressed"),
    Builtin<&device_mouse_check_button_released>("device_mouse_check_button_released"),
    Builtin<&device_mouse_x>("device_mouse_x"),
    Builtin<&device_mouse_y>("device_mouse_y"),
    Builtin<&device_mouse_raw_x>("device_mouse_raw_x"),
    Builtin<&device_mouse_raw_y>("device_mouse_raw_y"),
    Builtin<&virtual_key_add>("virtual_key_add"),
    Builtin<&virtual_key_delete>("virtual_key_delete"),
    Builtin<&virtual_key_show>("virtual_key_show"),
    Builtin<&virtual_key_hide>("virtual_key_hide"),
};

} // namespace

void Function_AddInput() { Function_Add(kBuiltins); }

} // namespace vesk
