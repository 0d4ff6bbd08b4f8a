// Moves that feel their way with the collision tests, and the plain ones.
#include "Files/Motion/Function_Motion.h"
#include "Files/Object/Function_Collision.h"
#include "tests/runner/collision_world.h"

#include <gtest/gtest.h>

namespace vesk {
namespace {

class Moves : public testing::Test {
protected:
  CollisionWorld world{320, 240};
  int32_t wall = world.Object(world.Sprite(16, 16));
  CInstance& me = world.Add(world.Object(world.Sprite(16, 16)), 100, 100);

  CInstance& Solid(float x, float y) {
    CInstance& it = world.Add(wall, x, y);
    it.solid = true;
    return it;
  }
};

TEST_F(Moves, ContactGoesUpToTheObstacle) {
  CInstance& it = Solid(150, 100);
  move_contact_solid(&me, 0, -1);
  EXPECT_EQ(me.x, 134); // boxes touch
  move_contact_solid(&me, 180, 10.4f);
  EXPECT_EQ(me.x, 124);
  EXPECT_NEAR(me.y, 100, 0.001);
  it.solid = false;
  move_contact_solid(&me, 0, 0); // nothing in the way: 1000 steps
  EXPECT_EQ(me.x, 1124);
  me.SetPosition(100, 100);
  move_contact_all(&me, 0, 100);
  EXPECT_EQ(me.x, 134);
  me.SetPosition(145, 100);
  move_contact_all(&me, 0, 100); // not free to begin with
  EXPECT_EQ(me.x, 145);
  move_contact_all(&me, 0, 0.3f); // no whole step
  EXPECT_EQ(me.x, 145);
}

TEST_F(Moves, OutsideGoesUntilFree) {
  Solid(100, 110);
  move_outside_solid(&me, 90, -1);
  EXPECT_EQ(me.y, 94);
  move_outside_solid(&me, 90, -1); // free already
  EXPECT_EQ(me.y, 94);
  me.SetPosition(100, 105);
  move_outside_solid(&me, 90, 3);
  EXPECT_EQ(me.y, 102);
  move_contact(&me, 90); // the old form: out of it
  EXPECT_EQ(me.y, 94);
  me.SetPosition(100, 50);
  move_contact(&me, 270); // or up to it
  EXPECT_EQ(me.y, 94);
}

TEST_F(Moves, BouncesTurnTheAxisThatIsBlocked) {
  Solid(120, 100);
  me.SetHspeed(6);
  me.SetVspeed(1);
  move_bounce_solid(&me, false);
  EXPECT_EQ(me.hspeed, -6);
  EXPECT_EQ(me.vspeed, 1);
  me.SetHspeed(-3);
  move_bounce_solid(&me, false); // free
  EXPECT_EQ(me.hspeed, -3);
  // Only the corner is blocked.
  me.SetPosition(100, 82);
  me.SetHspeed(6);
  me.SetVspeed(4);
  move_bounce_solid(&me, false);
  EXPECT_EQ(me.hspeed, -6);
  EXPECT_EQ(me.vspeed, -4);
  // Inside: back to the previous place first.
  me.xPrevious = 100;
  me.yPrevious = 100;
  me.SetPosition(110, 100);
  me.SetHspeed(6);
  me.SetVspeed(0);
  move_bounce_all(&me, false);
  EXPECT_EQ(me.x, 100);
  EXPECT_EQ(me.hspeed, -6);
}

TEST_F(Moves, AdvancedBounceReflectsFromAWall) {
  for (float y = 0; y < 240; y += 16) Solid(120, y);
  motion_set(&me, 0, 8);
  move_bounce_solid(&me, true);
  EXPECT_EQ(me.direction, 180); // straight on: straight back
  motion_set(&me, 30, 8);
  move_bounce_solid(&me, true);
  EXPECT_NEAR(me.direction, 150, 10);
  motion_set(&me, 180, 8);
  move_bounce_solid(&me, true); // nothing there
  EXPECT_EQ(me.direction, 180);
}

TEST_F(Moves, WrapLeavesNoGap) {
  me.SetPosition(-0.5f, 10);
  move_wrap(&me, true, true, 0);
  EXPECT_EQ(me.x, 319.5f);
  EXPECT_EQ(me.y, 10);
  me.SetPosition(-8, 250);
  move_wrap(&me, true, true, 8); // not yet beyond the margin
  EXPECT_EQ(me.x, -8);
  EXPECT_EQ(me.y, -6);
  me.SetPosition(329, 250);
  move_wrap(&me, true, false, 8);
  EXPECT_EQ(me.x, -7);
  EXPECT_EQ(me.y, 250);
  me.SetPosition(-400, 0); // one round only
  move_wrap(&me, true, false, 0);
  EXPECT_EQ(me.x, -80);
}

TEST_F(Moves, SnapRoundsTiesToEven) {
  me.SetPosition(24, 40.1f);
  move_snap(&me, 16, 16);
  EXPECT_EQ(me.x, 32); // 1.5 to 2
  EXPECT_EQ(me.y, 48);
  me.SetPosition(40, 7);
  move_snap(&me, 16, 0);
  EXPECT_EQ(me.x, 32); // 2.5 to 2
  EXPECT_EQ(me.y, 7);
}

TEST_F(Moves, DirectionsAndSpeeds) {
  move_towards_point(&me, 100, 60, 2);
  EXPECT_EQ(me.direction, 90);
  EXPECT_EQ(me.vspeed, -2);
  EXPECT_EQ(me.hspeed, 0);
  motion_set(&me, 0, 3);
  EXPECT_EQ(me.hspeed, 3);
  motion_add(&me, 270, 4);
  EXPECT_EQ(me.speed, 5);
  EXPECT_EQ(me.vspeed, 4);
}

TEST_F(Moves, RandomPlacesAreFreeAndInTheRoom) {
  for (float x = 0; x < 320; x += 32) Solid(x, 32);
  Random_Seed(7);
  std::vector<float> places;
  for (int i = 0; i < 50; ++i) {
    move_random(&me, 8, 8);
    EXPECT_TRUE(place_free(&me, me.x, me.y));
    EXPECT_TRUE(place_snapped(&me, 8, 8));
    EXPECT_GE(me.x, 0);
    EXPECT_LE(me.x, 304);
    EXPECT_GE(me.y, 0);
    EXPECT_LE(me.y, 224);
    places.push_back(me.x);
  }
  std::sort(places.begin(), places.end());
  EXPECT_GT(std::unique(places.begin(), places.end()) - places.begin(), 5);
}

} // namespace
} // namespace vesk
