// How exactly frames start: the wait of the frame function with its margin of sleep and spin, beside a pure
// spin and a plain sleep, five seconds each. Counters: microseconds between
// the due time and the start of a frame (median, 99 of 100, worst), mean error of the period, and the share
// of a core that the waiting takes.
#include "Files/Run/Run_Frame.h"
#include "Files/Run/Timing.h"
#include "Platform/Platform.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <vector>

namespace {

using namespace vesk;

constexpr int32_t kSpeed = 60;
constexpr double kPeriod = 1e6 / kSpeed;
constexpr int64_t kWork = 3000; // microseconds of each frame

double CpuMicroseconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

void Work() {
  for (const int64_t until = Timing_Time() + kWork; Timing_Time() < until;) {}
}

template <class Wait> void Pace(benchmark::State& state, Wait wait) {
  CDesktopPlatform desktop;
  Platform_Set(&desktop.Interfaces());
  Loop_Reset();
  Loop().frameStart = Timing_Time();
  std::vector<double> errors;
  double waiting = 0;
  const int64_t begin = Timing_Time();
  for (auto _ : state) {
    Work();
    const int64_t now = Timing_Time();
    const double due = static_cast<double>(Loop().frameStart) + kPeriod;
    const double before = CpuMicroseconds();
    wait(Run_FrameWait(now, kSpeed));
    waiting += CpuMicroseconds() - before;
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
  state.counters["waiting_percent"] = 100 * waiting / whole;
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
BENCHMARK(FrameWaitWithItsMargin)->UseRealTime()->MinTime(5)->Unit(benchmark::kMicrosecond);
BENCHMARK(PureSpin)->UseRealTime()->MinTime(5)->Unit(benchmark::kMicrosecond);
BENCHMARK(PlainSleep)->UseRealTime()->MinTime(5)->Unit(benchmark::kMicrosecond);

} // namespace
