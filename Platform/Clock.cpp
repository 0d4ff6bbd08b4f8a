#include "Platform/Clock.h"

#include <algorithm>
#include <cerrno>
#include <ctime>

#include <sys/prctl.h>
#include <time.h>

namespace vesk {

namespace {

// A nap is late by some tens of microseconds, so the last stretch before the goal is a true busy wait.
constexpr int64_t kNapMargin = 100;
constexpr int64_t kLongestNap = 4000; // messages are served in between

int64_t ReadClock(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<int64_t>(now.tv_sec) * 1000000 + now.tv_nsec / 1000;
}

int64_t MonotonicMicroseconds() { return ReadClock(CLOCK_MONOTONIC); }

void SleepUntil(int64_t monotonic) {
  timespec until{};
  until.tv_sec = static_cast<time_t>(monotonic / 1000000);
  until.tv_nsec = static_cast<long>(monotonic % 1000000 * 1000);
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {}
}

} // namespace

CSystemClock::CSystemClock() : m_start(MonotonicMicroseconds()) {
  // The default slack of 50 µs would end each frame's sleep that much late.
  prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
}

int64_t CSystemClock::Microseconds() const { return MonotonicMicroseconds() - m_start; }

int64_t CSystemClock::ThreadMicroseconds() const { return ReadClock(CLOCK_THREAD_CPUTIME_ID); }

void CSystemClock::Sleep(int64_t microseconds) {
  if (microseconds > 0) SleepUntil(MonotonicMicroseconds() + microseconds);
}

void CSystemClock::Spin(int64_t until) {
  const int64_t now = MonotonicMicroseconds();
  const int64_t left = until + m_start - now;
  if (left > kNapMargin) SleepUntil(now + std::min(left - kNapMargin, kLongestNap));
}

int64_t CSystemClock::CalendarSeconds() const { return static_cast<int64_t>(std::time(nullptr)); }

void CVirtualClock::Sleep(int64_t microseconds) {
  if (microseconds <= 0) return;
  m_now += microseconds;
  m_slept += microseconds;
}

void CVirtualClock::Spin(int64_t until) {
  if (until <= m_now) return;
  m_spun += until - m_now;
  m_now = until;
}

} // namespace vesk
