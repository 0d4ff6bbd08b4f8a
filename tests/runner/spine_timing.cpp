// Pacing on a clock that is driven by hand.
#include "Files/Base/Error.h"
#include "Files/Room/Room.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Run/Run_FrameBody.h"
#include "Files/Run/Timing.h"
#include "Platform/HandDriven.h"
#include "tests/runner/SmallGame.h"

#include <gtest/gtest.h>

using namespace vesk;

namespace {

class Pacing : public testing::Test {
protected:
  Pacing() {
    Platform_Set(&hand.Interfaces());
    Timing_Reset();
    Loop_Reset();
  }
  ~Pacing() override {
    Timing_Reset();
    Loop_Reset();
    Platform_Set(nullptr);
  }
  CHandDrivenPlatform hand;
};

// A whole loop over a game that works for a while in each step.
class Frames : public Pacing {
protected:
  Frames() {
    const int worker = game.Object("worker");
    game.On(worker, ev_step, ev_step_normal, [this](Self, Self) { hand.clock.Advance(workMicroseconds); });
    game.Place(0, worker, 0, 0);
    game.Start();
    Loop().running = true;
    Loop().frameStart = Timing_Time();
  }
  test::SmallGame game;
  int64_t workMicroseconds = 0;
};

} // namespace

TEST_F(Pacing, AWaitSleepsToTheMarginAndSpinsTheRest) {
  Timing().sleepMargin = 10;
  Timing_Wait(16666);
  EXPECT_EQ(hand.clock.Slept(), 6000); // whole milliseconds of 6.666
  EXPECT_EQ(hand.clock.Spun(), 10666);
  EXPECT_EQ(hand.clock.Microseconds(), 16666);

  Timing_Wait(9000); // all inside the margin
  EXPECT_EQ(hand.clock.Slept(), 6000);
  EXPECT_EQ(hand.clock.Microseconds(), 25666);

  Timing().sleepMargin = 0;
  Timing_Wait(16666);
  EXPECT_EQ(hand.clock.Slept(), 22000);

  Timing().sleepingAllowed = false;
  Timing_Wait(20000);
  EXPECT_EQ(hand.clock.Slept(), 22000);
}

TEST_F(Pacing, WaitsAreBounded) {
  Timing_Wait(0);
  Timing_Wait(-5);
  EXPECT_EQ(hand.clock.Microseconds(), 0);
  Timing_Wait(10000000);
  EXPECT_EQ(hand.clock.Microseconds(), 3000000);
  display_set_sleep_margin(-3);
  EXPECT_EQ(display_get_sleep_margin(), 0);
}

namespace {
// Jumps back on its first spin.
class CBackwardClock final : public IClock {
public:
  int64_t Microseconds() const override { return now; }
  void Sleep(int64_t microseconds) override { now += microseconds; }
  void Spin(int64_t) override { now = -1000, ++spins; }
  int64_t CalendarSeconds() const override { return 0; }
  int64_t now = 5000;
  int spins = 0;
};
} // namespace

TEST_F(Pacing, AClockThatStepsBackEndsTheWait) {
  CBackwardClock clock;
  Platform platform = hand.Interfaces();
  platform.clock = &clock;
  Platform_Set(&platform);
  Timing_Wait(500);
  EXPECT_EQ(clock.spins, 1);
}

TEST_F(Pacing, MessagesAreServedInsideTheWaitAndQuitIsSeen) {
  Loop().running = true;
  hand.messages.Close();
  Timing_Wait(100); // closing posts the quit message, which the same pump takes
  EXPECT_FALSE(Loop().running);
  EXPECT_TRUE(Timing().quitSeen);
}

TEST_F(Pacing, TheFrameWaitIsMeasuredFromTheFrameStart) {
  Loop().frameStart = 1000;
  EXPECT_EQ(Run_FrameWait(1000, 60), 16666);
  EXPECT_EQ(Run_FrameWait(11000, 60), 6666);
  EXPECT_EQ(Run_FrameWait(20000, 60), 0);
  EXPECT_EQ(Run_FrameWait(1000, 1), 1000000);
  Loop().frameStart = 5000000; // the clock is behind: the wait is cut
  EXPECT_EQ(Run_FrameWait(0, 1), 1000000);
}

TEST_F(Frames, FramesDoNotDriftWhateverTheirWork) {
  for (int frame = 0; frame < 600; ++frame) {
    workMicroseconds = frame * 37 % 12000;
    Run_Frame();
    // A frame starts one period after the one before; its work counts against the period.
    ASSERT_EQ(Loop().frameStart, 16666 * (frame + 1)) << frame;
  }
  EXPECT_EQ(Run_Fps(), 60);
  EXPECT_EQ(Error().fatalCount, 0);
}

TEST_F(Frames, ALongFrameIsFollowedAtOnceAndNothingIsCaughtUp) {
  Run_Frame();
  workMicroseconds = 50000;
  Run_Frame();
  const int64_t start = Loop().frameStart;
  workMicroseconds = 0;
  Run_Frame();
  EXPECT_EQ(Loop().frameStart, start + 50000);
  Run_Frame();
  EXPECT_EQ(Loop().frameStart, start + 50000 + 16666); // one period later, not sooner
}

TEST_F(Frames, AClockThatStepsBackSetsTheFrameStartToThePresent) {
  Run_Frame();
  Run_Frame();
  hand.clock.Advance(-20000);
  const int64_t now = Timing_Time();
  Run_Frame();
  EXPECT_EQ(Loop().frameStart, now + 16666);
}

TEST_F(Frames, ARoomSpeedBelowOneBecomesOne) {
  CurrentRoom()->speed = -3;
  Run_Frame();
  EXPECT_EQ(CurrentRoom()->speed, 1);
  EXPECT_EQ(Loop().frameStart, 1000000);
}

TEST_F(Frames, TheRealRateLeavesOutTheWaits) {
  workMicroseconds = 2000;
  Run_Frame();
  Run_Frame();
  EXPECT_FLOAT_EQ(static_cast<float>(Run_FpsReal()), 500.0f);
}

TEST_F(Frames, APauseOfTheDebuggerKeepsTheWorldStill) {
  Loop().debuggerPause = true;
  Run_Frame();
  EXPECT_EQ(Rooms().frameCounter, 0);
  Loop().debuggerPause = false;
  Run_Frame();
  EXPECT_EQ(Rooms().frameCounter, 1);
}

TEST_F(Frames, RequestsAreActedOnAfterTheBody) {
  game.AddRoom("second");
  Rooms().request = 1;
  Run_Frame();
  EXPECT_EQ(Rooms().currentIndex, 1);
  EXPECT_TRUE(Loop().running);
  Rooms().request = RoomRequestLoadGame;
  Error().showBox = false;
  Run_Frame();
  EXPECT_EQ(Rooms().request, kNoRoomRequest);
  EXPECT_TRUE(Error().occurred);
  Rooms().request = RoomRequestRestartGame;
  Run_Frame();
  EXPECT_EQ(Rooms().currentIndex, 0);
  EXPECT_TRUE(Loop().running);
  Loop().changeGame = true; // any request ends this game now
  Rooms().request = 1;
  Run_Frame();
  EXPECT_FALSE(Loop().running);
  EXPECT_EQ(Rooms().currentIndex, 0);
}
