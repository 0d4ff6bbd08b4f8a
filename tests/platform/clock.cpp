#include "Platform/Clock.h"

#include <gtest/gtest.h>

using namespace vesk;

TEST(Clock, TheVirtualOneMovesOnlyWhenItIsTold) {
  CVirtualClock clock;
  EXPECT_EQ(clock.Microseconds(), 0);
  clock.Sleep(1500);
  clock.Sleep(-5);
  clock.Spin(2000);
  clock.Spin(100); // the goal has passed
  EXPECT_EQ(clock.Microseconds(), 2000);
  EXPECT_EQ(clock.Slept(), 1500);
  EXPECT_EQ(clock.Spun(), 500);
  clock.Advance(-1000);
  EXPECT_EQ(clock.Microseconds(), 1000);
  const int64_t start = clock.CalendarSeconds();
  clock.Advance(3000000);
  EXPECT_EQ(clock.CalendarSeconds(), start + 3);
}

TEST(Clock, TheSystemsOneSleepsAtLeastAsLongAndSpinsToItsGoal) {
  CSystemClock clock;
  const int64_t start = clock.Microseconds();
  clock.Sleep(3000);
  const int64_t slept = clock.Microseconds();
  EXPECT_GE(slept - start, 3000);
  const int64_t goal = slept + 2500;
  while (clock.Microseconds() < goal) clock.Spin(goal);
  EXPECT_LT(clock.Microseconds() - goal, 200000); // a busy machine may be late, but it ends
}
