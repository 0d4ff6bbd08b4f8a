// Paths: sampling, points by position, and an instance that follows one.
#include "Files/Path/Function_Path.h"
#include "tests/runner/collision_world.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace vesk {
namespace {

class Follow : public testing::Test {
protected:
  CollisionWorld world;
  CInstance& me = world.Add(world.Object(-1), 200, 100);
  // 100 right, then 100 down.
  int32_t corner = Path_Add("pth_corner", 0, false, 4, {{10, 20, 100}, {110, 20, 100}, {110, 120, 100}});

  // One step as the motion of a frame has it.
  bool Step() {
    const bool ended = AdvancePath(me);
    EXPECT_EQ(me.hspeed, 0);
    EXPECT_EQ(me.vspeed, 0);
    EXPECT_EQ(me.speed, 0);
    return ended;
  }
};

TEST_F(Follow, PointsAlongAStraightPath) {
  const CPath& path = *Path_Find(corner);
  EXPECT_EQ(path.Length(), 200);
  EXPECT_EQ(path.Time(), 200);
  EXPECT_EQ(path.PointAt(0.25f).x, 60);
  EXPECT_EQ(path.PointAt(0.75f).y, 70);
  EXPECT_EQ(path.PointAt(0.5f).x, 110);
  EXPECT_EQ(path.PointAt(-1).x, 10);
  EXPECT_EQ(path.PointAt(2).y, 120);
  EXPECT_EQ(path.PointAt(1).y, 120);
  EXPECT_EQ(CPath().PointAt(0.5f).speed, 100);

  path_set_closed(corner, true); // back to the start: the third side
  EXPECT_NEAR(path_get_length(corner), 341.42f, 0.01);
  EXPECT_EQ(path_get_x(corner, 1), 10);
  EXPECT_EQ(path_get_y(corner, 1), 20);
}

TEST_F(Follow, ASmoothPathIsDividedUntilItsLegsAreShort) {
  // Legs of 4 pixels are not divided: one sample in the middle.
  const int32_t shortLegs = Path_Add("", 1, false, 4, {{0, 0, 100}, {8, 0, 100}, {8, 8, 100}});
  const auto& samples = Path_Find(shortLegs)->Samples();
  ASSERT_EQ(samples.size(), 3u);
  EXPECT_EQ(samples[1].x, 7); // (4 + 2 * 8 + 8) / 4
  EXPECT_EQ(samples[1].y, 1);
  EXPECT_EQ(samples[2].y, 8);
  // Longer ones as deep as the precision goes: 1, 3, 7 samples a corner.
  for (const int32_t precision : {1, 2, 3}) {
    const int32_t longLegs = Path_Add("", 1, false, precision, {{0, 0, 100}, {800, 0, 50}, {800, 800, 100}});
    EXPECT_EQ(Path_Find(longLegs)->Samples().size(), 2u + (1u << precision) - 1u);
    EXPECT_EQ(Path_Find(longLegs)->Samples()[1u << (precision - 1)].speed, 62.5f); // (75 + 2 * 50 + 75) / 4
  }
  // An absurd precision ends where the legs are fine.
  const int32_t absurd = Path_Add("", 1, false, 1000000, {{0, 0, 100}, {800, 0, 100}, {800, 800, 100}});
  EXPECT_LT(Path_Find(absurd)->Samples().size(), 1000u);
  EXPECT_EQ(Path_Find(Path_Add("", 1, true, 4, {}))->Samples().size(), 0u);
}

TEST_F(Follow, AClosedSmoothPathHasNoJump) {
  const int32_t ring = Path_Add("", 1, true, 4, {{0, 0, 100}, {100, 0, 100}, {100, 100, 100}, {0, 100, 100}});
  const CPath& path = *Path_Find(ring);
  EXPECT_EQ(path.Samples().front().x, path.Samples().back().x);
  EXPECT_EQ(path.Samples().front().y, path.Samples().back().y);
  path_start(&me, ring, 3, path_action_restart, true);
  for (int i = 0; i < 300; ++i) {
    const float x = me.x, y = me.y;
    Step();
    EXPECT_LT(std::hypot(me.x - x, me.y - y), 3.1f) << i;
    EXPECT_GT(std::hypot(me.x - x, me.y - y), 2.0f) << i;
  }
}

TEST_F(Follow, RelativeStaysAbsoluteJumps) {
  path_start(&me, corner, 2, path_action_stop, false);
  EXPECT_EQ(me.x, 200);
  EXPECT_FALSE(Step());
  EXPECT_EQ(me.x, 202);
  EXPECT_EQ(me.y, 100);
  EXPECT_EQ(me.direction, 0);
  path_start(&me, corner, 2, path_action_stop, true);
  EXPECT_EQ(me.x, 10);
  EXPECT_EQ(me.y, 20);
  me.pathPosition = 0.75f; // written by a script: shows at the next step
  Step();
  EXPECT_EQ(me.x, 110);
  EXPECT_NEAR(me.y, 72, 0.001);
  Step();
  EXPECT_EQ(me.direction, 270); // the tangent
  path_end(&me);
  EXPECT_FALSE(Step());
  EXPECT_NEAR(me.y, 74, 0.001);
}

TEST_F(Follow, EndActions) {
  struct Case {
    const char* name;
    int32_t action;
    float speed;
    int32_t index; // is the path still followed?
    float position, x, y;
  };
  // Five pixels before the end, then a step of 10.
  const Case cases[] = {
      {"stop", path_action_stop, 10, -1, 1, 110, 120},
      {"stop backward", path_action_stop, -10, -1, 0, 10, 20},
      {"restart", path_action_restart, 10, corner, 0.025f, 15, 20},
      {"restart backward", path_action_restart, -10, corner, 0.975f, 110, 115},
      {"continue", path_action_continue, 10, corner, 0.025f, 115, 120},
      {"continue backward", path_action_continue, -10, corner, 0.975f, 10, 15},
      {"reverse", path_action_reverse, 10, corner, 0.975f, 110, 115},
      {"reverse backward", path_action_reverse, -10, corner, 0.025f, 15, 20},
      {"anything else", 77, 10, -1, 1, 110, 120},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    path_start(&me, corner, c.speed, c.action, true);
    me.pathPosition = c.speed > 0 ? 0.975f : 0.025f;
    EXPECT_TRUE(Step());
    EXPECT_EQ(me.pathIndex, c.index);
    EXPECT_NEAR(me.pathPosition, c.position, 1e-5);
    EXPECT_NEAR(me.x, c.x, 0.01);
    EXPECT_NEAR(me.y, c.y, 0.01);
    if (c.action == path_action_reverse) { EXPECT_EQ(me.pathSpeed, -c.speed); }
  }
}

TEST_F(Follow, SpeedsOfPointsBlend) {
  const int32_t slow = Path_Add("", 0, false, 4, {{0, 0, 100}, {100, 0, 50}, {200, 0, 50}});
  path_start(&me, slow, 4, path_action_stop, true);
  me.pathPosition = 0.25f; // half way: 75
  Step();
  EXPECT_NEAR(me.x, 53, 0.001);
  me.pathPosition = 0.75f;
  Step();
  EXPECT_NEAR(me.x, 152, 0.001);
  EXPECT_NEAR(path_get_time(slow, 1), 100 / 0.75 + 200, 0.01);
}

TEST_F(Follow, OrientationAndScale) {
  StartPath(me, corner, 10, 2, 90, true, path_action_stop); // right becomes up, twice as far
  Step();
  EXPECT_NEAR(me.x, 200, 0.001);
  EXPECT_NEAR(me.y, 90, 0.001); // 5 pixels of the path
  EXPECT_NEAR(me.direction, 90, 0.01);
  me.pathScale = 0;
  Step();
  EXPECT_EQ(me.x, 200);
  EXPECT_EQ(me.y, 100);
}

TEST_F(Follow, PathsThatCanNotBeFollowed) {
  const int32_t dot = Path_Add("", 0, true, 4, {{5, 5, 100}});
  EXPECT_EQ(path_get_length(dot), 0);
  for (const int32_t path : {dot, 99, -5}) {
    path_start(&me, path, 1, path_action_stop, true);
    EXPECT_LT(me.pathIndex, 0);
    EXPECT_FALSE(Step());
    EXPECT_EQ(me.x, 200);
  }
  StartPath(me, corner, 1, -1, 0, false, 0);
  EXPECT_EQ(me.pathIndex, -1);
  path_start(&me, corner, 0, path_action_stop, false); // without speed it stays
  EXPECT_EQ(me.pathPosition, 0);
  EXPECT_FALSE(Step());
  EXPECT_EQ(me.x, 200);
  EXPECT_EQ(me.pathIndex, corner);
  path_delete(corner); // under way
  EXPECT_FALSE(Step());
}

TEST_F(Follow, RecordsKeepTheirPlaces) {
  Path_Reset();
  container::PathRecord bubbles;
  bubbles.name = "pth_bubbles";
  bubbles.kind = 1;
  bubbles.precision = 1;
  bubbles.points = {{32, 64, 100}, {40, 56, 100}, {24, 40, 100}, {32, 32, 100}};
  Path_Load({std::nullopt, bubbles});
  EXPECT_FALSE(path_exists(0));
  EXPECT_EQ(Path_FindByName("pth_bubbles"), 1);
  ASSERT_EQ(Path_Find(1)->Samples().size(), 4u);
  EXPECT_EQ(Path_Find(1)->Samples()[1].x, 37); // (36 + 2 * 40 + 32) / 4
  EXPECT_EQ(path_add(), 2);
  EXPECT_EQ(path_get_name(2), "__newpath2");
  path_add_point(2, 0, 0, 100);
  path_add_point(2, 10, 0, 100);
  EXPECT_EQ(path_get_length(2), 20); // closed: there and back
}

} // namespace
} // namespace vesk
