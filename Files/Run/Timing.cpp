#include "Files/Run/Timing.h"

#include "Files/Function/Function.h"
#include "Files/IO/IO_Window.h"
#include "Files/Run/Run_Frame.h"
#include "Platform/Platform.h"

#include <algorithm>

namespace vesk {

namespace {

TimingState state;

constexpr int64_t kLongestWait = 3000000; // microseconds

} // namespace

int64_t Timing_Time() { return Platform_Get().clock->Microseconds(); }

void Timing_Wait(int64_t microseconds) {
  if (microseconds <= 0) return;
  const int64_t wait = std::min(microseconds, kLongestWait);
  IClock& clock = *Platform_Get().clock;
  const int64_t start = Timing_Time();
  const int64_t target = start + wait;
  if (state.sleepingAllowed) {
    const int64_t milliseconds = (wait - static_cast<int64_t>(state.sleepMargin) * 1000) / 1000;
    if (milliseconds > 0) clock.Sleep(milliseconds * 1000);
  }
  int64_t now = 0;
  do {
    ProcessMessages();
    clock.Spin(target);
    now = Timing_Time();
  } while (now >= start && now < target);
}

void ProcessMessages() {
  if (!Platform_IsMainThread()) return;
  Message message;
  while (Platform_Get().messages->Next(message)) {
    if (state.modelessDialog && state.modelessDialog(message)) continue;
    if (message.kind == MessageKind::Quit) {
      Loop().running = false;
      state.quitSeen = true;
      return;
    }
    WindowProcedure(message);
  }
}

TimingState& Timing() { return state; }
void Timing_Reset() { state = TimingState{}; }

void display_set_sleep_margin(int32_t milliseconds) { state.sleepMargin = std::max(milliseconds, 0); }
int32_t display_get_sleep_margin() { return state.sleepMargin; }

namespace {
constexpr BuiltinRow kBuiltins[] = {
    Builtin<&display_set_sleep_margin>("display_set_sleep_margin"),
    Builtin<&display_get_sleep_margin>("display_get_sleep_margin"),
};
} // namespace

void Function_AddTiming() { Function_Add(kBuiltins); }

} // namespace vesk
