// How exactly frames start: the wait of the frame function with its margin of sleep and spin, beside a pure
// spin and a plain sleep, 30 seconds each. Counters: microseconds between the due time and the start of a
// frame (median, 99 of 100, worst), mean error of the period, and the share of a core that the waiting takes.
// The same of the whole program: vesk-editor -profiledump FILE 1800.
#include "Files/Run/Run_Frame.h"
#include "Files/Run/Timing.h"
#include "Platform/Platform.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using namespace vesk;

constexpr int32_t kSpeed = 60;
constexpr double kPeriod = 1e6 / kSpeed;
constexpr int64_t kFrames = 1800; // 30 s
constexpr int64_t kWork = 3000;   // microseconds of each frame

void Work() {
  for (const int64_t until = Timing_Time() + kWork; Timing_Time() < until;) {}
}

template <class Wait> void Pace(benchmark::State& state, Wait wait) {
  CDesktopPlatform desktop;
  Platform_Set(&desktop.Interfaces());
  Loop_Reset();
  Loop().frameStart = Timing_Time();
  std::vector<double> errors;
  int64_t waiting = 0;
  const IClock& clock = *Platform_Get().clock;
  const int64_t begin = Timing_Time();
  for (auto _ : state) {
    Work();
    const int64_t now = Timing_Time();
    const double due = static_cast<double>(Loop().frameStart) + kPeriod;
    const int64_t before = clock.ThreadMicroseconds();
    wait(Run_FrameWait(now, kSpeed));
    waiting += clock.ThreadMicroseconds() - before;
    Loop().frameStart = Timing_Time();
    errors.push_back(std::fabs(static_cast<double>(Loop().frameStart) - due));
  }
  const double whole = static_cast<double>(Timing_Time() - begin);
  const double frames = static_cast<double>(errors.size());
  std::sort(errors.begin(), errors.end());
  state.counters["median_us"] = errors[errors.size() / 2];
  state.counters["p99_us"] = errors[errors.size() * 99 / 100];
  state.counters["worst_us"] = errors.back();
  state.counters["period_error_us"] = whole / frames - kPeriod;
  state.counters["waiting_percent"] = 100 * static_cast<double>(waiting) / whole;
  Timing_Reset();
  Platform_Set(nullptr);
}

void FrameWaitWithItsMargin(benchmark::State& state) { Pace(state, &Timing_Wait); }
void PureSpin(benchmark::State& state) {
  Pace(state, [](int64_t wait) {
    for (const int64_t until = Timing_Time() + wait; Timing_Time() < until;) {}
  });
}
void PlainSleep(benchmark::State& state) {
  Pace(state, [](int64_t wait) { Platform_Get().clock->Sleep(wait); });
}
BENCHMARK(FrameWaitWithItsMargin)->UseRealTime()->Iterations(kFrames)->Unit(benchmark::kMicrosecond);
BENCHMARK(PureSpin)->UseRealTime()->Iterations(kFrames)->Unit(benchmark::kMicrosecond);
BENCHMARK(PlainSleep)->UseRealTime()->Iterations(kFrames)->Unit(benchmark::kMicrosecond);

} // namespace
