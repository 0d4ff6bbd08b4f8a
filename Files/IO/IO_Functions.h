#pragma once
// Built-ins and built-in variables of keyboard, mouse and virtual keys. All read the visible set.
#include "Files/Code/Value.h"

#include <cstdint>
#include <string>

namespace vesk {

bool keyboard_check(int32_t key); // 0: no key held; 1: any held
bool keyboard_check_pressed(int32_t key);
bool keyboard_check_released(int32_t key);
bool keyboard_check_direct(int32_t key); // the key itself, now, without the map
void keyboard_key_press(int32_t key);    // comes back through the window at the next pump
void keyboard_key_release(int32_t key);
void keyboard_set_map(int32_t from, int32_t to);
int32_t keyboard_get_map(int32_t key);
void keyboard_unset_map();
void keyboard_clear(int32_t key);
bool keyboard_get_numlock();
void keyboard_set_numlock(bool on);

void mouse_clear(int32_t button);
bool mouse_check_button(int32_t button);
bool mouse_check_button_pressed(int32_t button);
bool mouse_check_button_released(int32_t button);
bool mouse_wheel_up();
bool mouse_wheel_down();
bool device_mouse_check_button(int32_t device, int32_t button);
bool device_mouse_check_button_pressed(int32_t device, int32_t button);
bool device_mouse_check_button_released(int32_t device, int32_t button);
double device_mouse_x(int32_t device); // room pixels
double device_mouse_y(int32_t device);
int32_t device_mouse_raw_x(int32_t device); // client pixels
int32_t device_mouse_raw_y(int32_t device);
void io_clear();

int32_t virtual_key_add(int32_t x, int32_t y, int32_t width, int32_t height,
                        int32_t key); // slot, -1 when full
void virtual_key_delete(int32_t slot);
void virtual_key_show(int32_t slot);
void virtual_key_hide(int32_t slot);

// Built-in variables. Setters ignore values outside their range.
double IO_MouseX();
double IO_MouseY();
int32_t IO_GetMouseButton();
void IO_SetMouseButton(int32_t button);
int32_t IO_GetMouseLastButton();
void IO_SetMouseLastButton(int32_t button);
int32_t IO_GetKeyboardKey();
void IO_SetKeyboardKey(int32_t key);
int32_t IO_GetKeyboardLastKey();
void IO_SetKeyboardLastKey(int32_t key);
std::string IO_GetKeyboardLastChar();
void IO_SetKeyboardLastChar(const RValue& value);
std::string IO_GetKeyboardString();
void IO_SetKeyboardString(const RValue& value);

// Registers what stands above.
void Function_AddInput();

} // namespace vesk
