// A frame in which nothing is born and nothing dies takes nothing from the heap.
#include "Files/Code/BuiltinVariables.h"
#include "Files/Code/Events.h"
#include "Files/Function/Function_Math.h"
#include "Files/Object/Function_Collision.h"
#include "Files/Object/Function_Instance.h"
#include "Files/Run/Run_Events.h"
#include "tests/runner/SmallGame.h"
#include "tests/runner/allocation_Count.h"

#include <gtest/gtest.h>

namespace vesk::test {
namespace {

constexpr Slot hp{3};

TEST(SteadyFrame, TakesNothingFromTheHeap) {
  SmallGame game;
  const int32_t sprite = game.Sprite(16, 16, 4);
  const int32_t wall = game.Object("wall", {.sprite = sprite});
  const int32_t walker = game.Object("walker", {.sprite = sprite});
  const int32_t manager = game.Object("manager", {.depth = -7});
  game.On(walker, ev_step, ev_step_normal, [=](Self self, Self) {
    self[hp] += 1;
    if (place_meeting(self, self[x] + 1, self[y], wall)) self[vspeed] = 0;
    self[hspeed] = self[x] > self[xstart] ? -3 : 1; // to and fro
    self[depth] = irandom(3);
    if (collision_rectangle(self, 0, 0, 200, 200, wall, false, true) != noone) event_user(self, 0);
  });
  game.On(walker, ev_other, ev_user(0), [](Self self, Self) { self[alarm][0] = 2; });
  game.On(walker, ev_alarm, 0, [](Self self, Self) { self[image_angle] += 1; });
  game.On(walker, ev_collision, wall, [](Self, Self other) { other[hp] = 0; });
  game.On(manager, ev_step, ev_step_end, [=](Self self, Self) {
    with(wall, [&](Self outer) {
      with(walker, [&](Self inner) {
        with(inner.number(), [&](Self it) { it[hp] += 1; });
        return inner[hp] > 5;
      });
      outer[hp] = 1;
    });
    instance_deactivate_object(wall);
    instance_activate_region(0, 0, 300, 300, true);
    with(wall, [](Self it) { it[hp] += 1; });
    self[hp] = distance_to_object(self, self, walker);
  });
  game.Start();
  for (int i = 0; i < 40; ++i) {
    instance_create(static_cast<float>(i % 10 * 16), static_cast<float>(i / 10 * 16), wall);
    instance_create(static_cast<float>(i % 8 * 20), static_cast<float>(i / 8 * 12), walker);
  }
  with(all, [](Self it) { it[hp] = 0; });
  instance_create(0, 0, manager);
  game.Step(200); // everything has grown to its size
  const size_t before = Allocations();
  game.Step(20);
  EXPECT_EQ(Allocations() - before, 0u);
}

} // namespace
} // namespace vesk::test
