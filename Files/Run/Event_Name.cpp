#include "Files/Run/Event_Name.h"

#include "Files/Base/Console.h"
#include "Files/IO/IO.h"
#include "Files/Object/Object.h"

namespace vesk {

namespace {

const char* StepName(int32_t number) {
  switch (number) {
  case ev_step_begin: return "Begin Step Event";
  case ev_step_end: return "End Step Event";
  default: return "Step Event";
  }
}

std::string OtherName(int32_t number) {
  static constexpr const char* kNames[] = {
      "Outside Room", "Intersect Boundary", "Game Start",    "Game End",    "Room Start",
      "Room End",     "No More Lives",      "Animation End", "End Of Path", "No More Health",
  };
  constexpr int32_t kUserEvents = 16, kViews = 8;
  if (number >= 0 && number < ev_user0) return FormatText("Other Event: %s", kNames[number]);
  if (number < ev_user0 + kUserEvents) return FormatText("Other Event: User Defined %d", number - ev_user0);
  if (number == ev_close_button) return "Other Event: Close Button";
  if (number >= ev_outside_view0 && number < ev_outside_view0 + kViews)
    return FormatText("Other Event: Outside View %d", number - ev_outside_view0);
  if (number >= ev_boundary_view0 && number < ev_boundary_view0 + kViews)
    return FormatText("Other Event: Boundary View %d", number - ev_boundary_view0);
  return FormatText("Other Event: Asynchronous %d", number);
}

const char* DrawName(int32_t number) {
  switch (number) {
  case ev_gui: return "Draw GUI Event";
  case ev_draw_resize: return "Window Resize Event";
  case ev_draw_begin: return "Draw Begin Event";
  case ev_draw_end: return "Draw End Event";
  case ev_gui_begin: return "Draw GUI Begin Event";
  case ev_gui_end: return "Draw GUI End Event";
  case ev_draw_pre: return "Pre Draw Event";
  case ev_draw_post: return "Post Draw Event";
  default: return "Draw Event";
  }
}

} // namespace

std::string Event_Name(int32_t type, int32_t number) {
  switch (type) {
  case ev_create: return "Create Event";
  case ev_destroy: return "Destroy Event";
  case ev_alarm: return FormatText("Alarm Event for alarm %d", number);
  case ev_step: return StepName(number);
  case ev_collision: return FormatText("Collision Event with object %s", Object_Name(number));
  case ev_keyboard: return FormatText("Keyboard Event for %s Key", IO_KeyName(number).c_str());
  case ev_keypress: return FormatText("Key Press Event for %s Key", IO_KeyName(number).c_str());
  case ev_keyrelease: return FormatText("Key Release Event for %s Key", IO_KeyName(number).c_str());
  case ev_mouse: return FormatText("Mouse Event %d", number);
  case ev_other: return OtherName(number);
  case ev_draw: return DrawName(number);
  case ev_trigger: return FormatText("Trigger Event %d", number);
  case ev_cleanup: return "Clean Up Event";
  case ev_gesture: return FormatText("Gesture Event %d", number);
  case ev_pre_create: return "Pre Create Event";
  default: return "<undefined>";
  }
}

} // namespace vesk
