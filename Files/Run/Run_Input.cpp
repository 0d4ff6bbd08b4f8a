// The keyboard and mouse passes: what the input of this step makes happen.
#include "Files/Object/Collision.h"
#include "Files/Run/Run_Events.h"
#include "Files/Run/Run_FrameBody.h"
#include "Files/Run/Run_Passes.h"

namespace vesk {

namespace {

constexpr int kFirstKey = 8, kLastKey = 255;
constexpr int kNoKey = 0, kAnyKey = 1;
constexpr uint8_t kInside = 1, kOutside = 2, kEntered = 4, kLeft = 8; // of CInstance::mouseInside

bool MouseIsOver(CInstance& instance) {
  const StepInput& input = FrameBody().input;
  return PointHit(instance, input.mouseX, input.mouseY, true);
}

// Only the instances under the mouse.
void LocalMousePass(int32_t subtype) {
  if (Objects().eventObjects[ev_mouse][subtype].empty()) return;
  ForEachHandling(ev_mouse, subtype, BeginPass(), [=](CInstance* it) {
    if (MouseIsOver(*it)) PerformOwnEvent(it, it, ev_mouse, subtype);
  });
}

void NoteCrossing(CInstance* it, uint64_t limit) {
  if (it->creationStamp >= limit) return; // visited in this pass, or as young
  it->creationStamp = limit;
  const uint8_t now = MouseIsOver(*it) ? kInside : kOutside;
  it->mouseInside = static_cast<uint8_t>(((now ^ it->mouseInside) & 3) << 2 | now);
}

void EnterAndLeave() {
  const auto& lists = Objects().eventObjects[ev_mouse];
  if (lists[ev_mouse_enter].empty() && lists[ev_mouse_leave].empty()) return;
  const uint64_t limit = BeginPass();
  const auto note = [limit](CInstance* it) { NoteCrossing(it, limit); };
  ForEachHandling(ev_mouse, ev_mouse_enter, limit, note);
  ForEachHandling(ev_mouse, ev_mouse_leave, limit, note);
  ForEachHandling(ev_mouse, ev_mouse_enter, BeginPass(), [](CInstance* it) {
    if ((it->mouseInside & (kEntered | kInside)) == (kEntered | kInside))
      PerformOwnEvent(it, it, ev_mouse, ev_mouse_enter);
  });
  ForEachHandling(ev_mouse, ev_mouse_leave, BeginPass(), [](CInstance* it) {
    if ((it->mouseInside & (kLeft | kOutside)) == (kLeft | kOutside))
      PerformOwnEvent(it, it, ev_mouse, ev_mouse_leave);
  });
}

} // namespace

void KeyboardPass() {
  const StepInput& input = FrameBody().input;
  bool down = false, press = false, release = false;
  const auto run = [](bool happened, bool& any, int32_t type, int32_t key) {
    if (!happened) return;
    any = true;
    EventPass(type, key);
  };
  for (int32_t key = kFirstKey; key <= kLastKey; ++key) {
    const auto k = static_cast<size_t>(key);
    run(input.keyDown[k] || input.keyPressed[k], down, ev_keyboard, key);
    run(input.keyPressed[k], press, ev_keypress, key);
    run(input.keyReleased[k], release, ev_keyrelease, key);
  }
  EventPass(ev_keyboard, down ? kAnyKey : kNoKey);
  EventPass(ev_keypress, press ? kAnyKey : kNoKey);
  EventPass(ev_keyrelease, release ? kAnyKey : kNoKey);
}

void MousePass() {
  const StepInput& input = FrameBody().input;
  bool any = false;
  for (int32_t b = 0; b < 3; ++b) {
    const auto button = static_cast<size_t>(b);
    if (!input.buttonDown[button] && !input.buttonPressed[button]) continue;
    any = true;
    LocalMousePass(ev_left_button + b);
    EventPass(ev_mouse, ev_global_left_button + b);
  }
  if (!any) LocalMousePass(ev_no_button);
  for (int32_t b = 0; b < 3; ++b) {
    if (!input.buttonPressed[static_cast<size_t>(b)]) continue;
    LocalMousePass(ev_left_press + b);
    EventPass(ev_mouse, ev_global_press);
    EventPass(ev_mouse, ev_global_left_press + b);
  }
  for (int32_t b = 0; b < 3; ++b) {
    if (!input.buttonReleased[static_cast<size_t>(b)]) continue;
    LocalMousePass(ev_left_release + b);
    EventPass(ev_mouse, ev_global_release);
    EventPass(ev_mouse, ev_global_left_release + b);
  }
  EnterAndLeave();
  if (input.wheelUp) EventPass(ev_mouse, ev_mouse_wheel_up);
  if (input.wheelDown) EventPass(ev_mouse, ev_mouse_wheel_down);
}

} // namespace vesk
