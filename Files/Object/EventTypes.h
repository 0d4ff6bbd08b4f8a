#pragma once
// Event types and the subtypes that rules name. The numbers are data: records and code names hold them.

namespace vesk {

inline constexpr int kEventTypeCount = 15;

enum EventType {
  ev_create = 0,
  ev_destroy = 1,
  ev_alarm = 2,
  ev_step = 3,
  ev_collision = 4,
  ev_keyboard = 5,
  ev_mouse = 6,
  ev_other = 7,
  ev_draw = 8,
  ev_keypress = 9,
  ev_keyrelease = 10,
  ev_trigger = 11,
  ev_cleanup = 12,
  ev_gesture = 13,
  ev_pre_create = 14,
};

enum StepEvent { ev_step_normal = 0, ev_step_begin = 1, ev_step_end = 2 };

enum OtherEvent {
  ev_outside = 0,
  ev_boundary = 1,
  ev_game_start = 2,
  ev_game_end = 3,
  ev_room_start = 4,
  ev_room_end = 5,
  ev_no_more_lives = 6,
  ev_animation_end = 7,
  ev_end_of_path = 8,
  ev_no_more_health = 9,
  ev_user0 = 10, // to ev_user15 = 25
  ev_close_button = 30,
  ev_outside_view0 = 40,  // to 47
  ev_boundary_view0 = 50, // to 57
  ev_system_event = 75,
};
constexpr int ev_user(int n) { return ev_user0 + n; }

enum DrawEvent {
  ev_draw_normal = 0,
  ev_gui = 64,
  ev_draw_resize = 65,
  ev_draw_begin = 72,
  ev_draw_end = 73,
  ev_gui_begin = 74,
  ev_gui_end = 75,
  ev_draw_pre = 76,
  ev_draw_post = 77,
};

enum MouseEvent {
  ev_left_button = 0,
  ev_no_button = 3,
  ev_left_press = 4,
  ev_left_release = 7,
  ev_mouse_enter = 10,
  ev_mouse_leave = 11,
  ev_global_press = 12,
  ev_global_release = 13,
  ev_global_left_button = 50,
  ev_global_right_button = 51,
  ev_global_middle_button = 52,
  ev_global_left_press = 53,
  ev_global_left_release = 56,
  ev_mouse_wheel_up = 60,
  ev_mouse_wheel_down = 61,
};

} // namespace vesk
