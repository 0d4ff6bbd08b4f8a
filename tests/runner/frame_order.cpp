// The order of events within a frame.
#include "Files/Run/Run_Events.h"
#include "tests/runner/SmallGame.h"

#include <gtest/gtest.h>

namespace vesk::test {
namespace {

TEST(SmallGame, RunsAStepEvent) {
  SmallGame game;
  const int32_t coin = game.Object("coin");
  game.On(coin, ev_step, ev_step_normal, [](Self, Self) { Log("step"); });
  game.Start();
  instance_create(10, 20, coin);
  game.Step(3);
  EXPECT_EQ(Events(), "step step step");
}

} // namespace
} // namespace vesk::test
