#pragma once
// Time as the runner sees it: monotonic microseconds, a coarse sleep, one round of a busy wait.
#include <cstdint>

namespace vesk {

class IClock {
public:
  virtual ~IClock() = default;
  // Microseconds since the clock was made; any thread.
  virtual int64_t Microseconds() const = 0;
  // Processor time of the calling thread; 0 where it isn't counted.
  virtual int64_t ThreadMicroseconds() const { return 0; }
  // Sleeps about that long; may be late by the system's timer slack. 0 and below return at once.
  virtual void Sleep(int64_t microseconds) = 0;
  // One round of a busy wait whose goal is `until`: returns soon, never later than `until` by more than a few
  // microseconds. A clock driven by hand moves to `until`.
  virtual void Spin(int64_t until) = 0;
  // Seconds since 1970, for calendar dates and for seeds.
  virtual int64_t CalendarSeconds() const = 0;
};

// The system's clock.
class CSystemClock final : public IClock {
public:
  CSystemClock();
  int64_t Microseconds() const override;
  int64_t ThreadMicroseconds() const override;
  void Sleep(int64_t microseconds) override;
  void Spin(int64_t until) override;
  int64_t CalendarSeconds() const override;

private:
  int64_t m_start;
};

// Stands still unless it is moved, slept on or spun on.
class CVirtualClock final : public IClock {
public:
  int64_t Microseconds() const override { return m_now; }
  void Sleep(int64_t microseconds) override;
  void Spin(int64_t until) override;
  int64_t CalendarSeconds() const override { return m_calendarStart + m_now / 1000000; }

  void Advance(int64_t microseconds) { m_now += microseconds; } // negative: the clock steps back
  void SetCalendarStart(int64_t seconds) { m_calendarStart = seconds; }
  int64_t Slept() const { return m_slept; } // microseconds of all sleeps
  int64_t Spun() const { return m_spun; }   // microseconds of all busy waits

private:
  int64_t m_now = 0;
  int64_t m_calendarStart = 946684800; // 2000-01-01
  int64_t m_slept = 0;
  int64_t m_spun = 0;
};

} // namespace vesk
