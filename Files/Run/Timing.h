#pragma once
// The runner's clock, the wait between frames, and the message pump that runs inside it. Game thread only.
#include "Platform/Messages.h"

#include <cstdint>

namespace vesk {

// Microseconds since the process started.
int64_t Timing_Time();
// Waits that long, at most 3 s: sleeps up to the margin, then spins and serves messages. 0 and below return
// at once.
void Timing_Wait(int64_t microseconds);
// Dispatches every waiting message. Returns at once on any thread but the main one.
void ProcessMessages();

struct TimingState {
  int32_t sleepMargin = 10; // milliseconds of each wait that are spun
  bool sleepingAllowed = true;
  bool quitSeen = false;
  // Takes each message before the runner does; null for none. A message that it takes goes no further.
  bool (*modelessDialog)(const Message&) = nullptr;
};
TimingState& Timing();
void Timing_Reset();

// Built-ins.
void display_set_sleep_margin(int32_t milliseconds);
int32_t display_get_sleep_margin();
void Function_AddTiming();

} // namespace vesk
