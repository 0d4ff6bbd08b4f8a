// Instances: construction, setters, motion, bounding boxes.
#include "Files/Object/Function_Instance.h"
#include "Files/Run/Run_Events.h"
#include "Files/Sprite/Sprite.h"
#include "tests/runner/SmallGame.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace vesk::test {
namespace {

class InstanceStateTest : public testing::Test {
protected:
  InstanceStateTest() {
    sprite = game.Sprite(16, 16, 4, 8, 8);
    object = game.Object("thing", {.sprite = sprite});
    game.Start();
  }
  CInstance& Make(float x = 0, float y = 0) { return *Instance_Find(instance_create(x, y, object)); }

  SmallGame game;
  int32_t sprite, object;
};

void ExpectBox(CInstance& it, int32_t left, int32_t top, int32_t right, int32_t bottom) {
  const BoundingBox& box = it.Bounds();
  EXPECT_EQ(box.left, left);
  EXPECT_EQ(box.top, top);
  EXPECT_EQ(box.right, right);
  EXPECT_EQ(box.bottom, bottom);
}

// Made while the original is on its way out, the copy is alive and dies its own death.
TEST_F(InstanceStateTest, ACopyMadeInTheDestroyEventLives) {
  const int32_t phoenix = game.Object("phoenix");
  int deaths = 0;
  game.On(phoenix, ev_destroy, 0, [&](Self self, Self) {
    if (++deaths == 1) instance_copy(self, false);
  });
  const int32_t first = instance_create(3, 4, phoenix);
  instance_destroy(first);
  RemoveMarked();
  ASSERT_EQ(instance_number(phoenix), 1);
  const int32_t second = instance_find(phoenix, 0);
  EXPECT_NE(second, first);
  EXPECT_EQ(Instance_Find(second)->x, 3);
  instance_destroy(second);
  EXPECT_EQ(deaths, 2);
  EXPECT_FALSE(instance_exists(second));
}

TEST_F(InstanceStateTest, BeginsAsItsObjectSays) {
  const int32_t special = game.Object(
      "special",
      {.sprite = sprite, .mask = 3, .depth = -7, .visible = false, .solid = true, .persistent = true});
  CInstance& it = *Instance_Find(instance_create(1.5f, -2, special));
  EXPECT_EQ(it.maskIndex, 3);
  EXPECT_EQ(it.depth, -7);
  EXPECT_TRUE(it.solid && it.persistent && !it.visible && it.created);
  EXPECT_EQ(it.xStart, 1.5f);
  EXPECT_EQ(it.yPrevious, -2);
  EXPECT_EQ(it.gravityDirection, 270);
  EXPECT_EQ(it.imageSpeed, 1);
  EXPECT_EQ(it.imageBlend, 0xFFFFFFu);
  EXPECT_EQ(it.pathIndex, -1);
  EXPECT_EQ(it.pathScale, 1);
  EXPECT_EQ(it.timelineIndex, -1);
  EXPECT_EQ(it.layerId, -1);
  for (const int32_t alarm : it.alarm) EXPECT_EQ(alarm, -1);
}

TEST_F(InstanceStateTest, SpeedAndVectorFollowEachOther) {
  CInstance& it = Make();
  it.SetDirection(360);
  EXPECT_EQ(it.direction, 0);
  it.SetDirection(-90);
  EXPECT_EQ(it.direction, 270);
  it.SetDirection(-1e-9f);
  EXPECT_EQ(it.direction, 0);
  it.SetDirection(1e30f);
  EXPECT_TRUE(it.direction >= 0 && it.direction < 360);
  it.SetDirection(std::numeric_limits<float>::infinity());
  EXPECT_EQ(it.direction, 0);

  it.SetSpeed(3);
  it.SetDirection(90);
  EXPECT_EQ(it.hspeed, 0); // snapped: the cosine isn't exactly 0
  EXPECT_EQ(it.vspeed, -3);
  it.SetDirection(0);
  it.SetSpeed(-3);
  EXPECT_EQ(it.hspeed, -3);
  it.SetHspeed(1);
  EXPECT_EQ(it.speed, 1);
  EXPECT_EQ(it.direction, 0);
  EXPECT_FALSE(std::signbit(it.direction));
  it.SetVspeed(1);
  EXPECT_EQ(it.direction, 315);
  EXPECT_EQ(it.speed, std::sqrt(2.0f));
  it.SetHspeed(0);
  EXPECT_EQ(it.direction, 270);
  it.SetVspeed(0);
  EXPECT_EQ(it.direction, 0);
  EXPECT_EQ(it.speed, 0);
  it.SetHspeed(-2);
  EXPECT_EQ(it.direction, 180);
  it.SetDirection(45);
  it.SetSpeed(5);
  EXPECT_EQ(it.hspeed,
            static_cast<float>(
                static_cast<double>(static_cast<float>(std::cos(static_cast<double>(0.78539819f)))) * 5));
}

TEST_F(InstanceStateTest, NearWholeNumbersSnap) {
  CInstance& it = Make();
  it.SetSpeed(2.99995f);
  EXPECT_EQ(it.hspeed, 3);
  it.SetSpeed(2.9998f);
  EXPECT_EQ(it.hspeed, 2.9998f);
}

TEST_F(InstanceStateTest, FrictionAndGravity) {
  CInstance& it = Make();
  it.friction = 0.5f;
  it.SetHspeed(1.25f);
  const float course[] = {0.75f, 0.25f, 0, 0};
  for (const float speed : course) {
    it.ApplyFrictionAndGravity();
    EXPECT_EQ(it.speed, speed);
    EXPECT_EQ(it.hspeed, speed);
  }
  it.SetSpeed(-0.75f);
  it.ApplyFrictionAndGravity();
  EXPECT_EQ(it.speed, -0.25f);
  it.ApplyFrictionAndGravity();
  EXPECT_EQ(it.speed, 0);
  it.friction = -0.5f; // drives what moves, leaves what rests
  it.ApplyFrictionAndGravity();
  EXPECT_EQ(it.speed, 0);
  it.SetSpeed(1);
  it.ApplyFrictionAndGravity();
  EXPECT_EQ(it.speed, 1.5f);
  it.friction = 0;
  it.gravity = 0.25f;
  it.ApplyFrictionAndGravity();
  EXPECT_EQ(it.vspeed, 0.25f);
  EXPECT_NEAR(it.hspeed, 1.5, 1e-6);
}

TEST_F(InstanceStateTest, ImageAdvanceWrapsOnceAStep) {
  CInstance& it = Make();
  const auto advance = [&](float index, float speed) {
    it.imageIndex = index;
    it.imageSpeed = speed;
    return it.AdvanceImage();
  };
  EXPECT_FALSE(advance(2.75f, 1));
  EXPECT_TRUE(advance(3, 1));
  EXPECT_EQ(it.imageIndex, 0);
  EXPECT_TRUE(advance(0, -0.25f));
  EXPECT_EQ(it.imageIndex, 3.75f);
  EXPECT_TRUE(advance(0, 13));
  EXPECT_EQ(it.imageIndex, 9);
  it.SetSpriteIndex(-1);
  EXPECT_EQ(it.imageIndex, 0) << "beyond the frames of the new sprite";
  EXPECT_TRUE(advance(0, 0));
  EXPECT_TRUE(advance(0, -0.5f)) << "its whole part is 0";
  EXPECT_TRUE(advance(0, -2)) << "below 0";
}

TEST_F(InstanceStateTest, SpriteChangeKeepsAFittingFrame) {
  CInstance& it = Make();
  const int32_t two = game.Sprite(4, 6, 2);
  it.imageIndex = 1.9f;
  it.SetSpriteIndex(two);
  EXPECT_EQ(it.imageIndex, 1.9f);
  it.imageIndex = 2;
  it.SetSpriteIndex(two);
  EXPECT_EQ(it.imageIndex, 0);
  it.SetImageSingle(1);
  EXPECT_EQ(it.imageSpeed, 0);
  EXPECT_EQ(it.ImageSingle(), 1);
  it.SetImageSingle(-1);
  EXPECT_EQ(it.imageSpeed, 1);
  EXPECT_EQ(it.ImageSingle(), -1);
  it.SetImageXScale(-2);
  EXPECT_EQ(it.SpriteWidth(), -8);
  EXPECT_EQ(it.ImageNumber(), 2);
}

TEST_F(InstanceStateTest, UprightBoxes) {
  CInstance& it = Make(100, 50);
  ExpectBox(it, 92, 42, 107, 57);
  it.SetPosition(100.5f, 51.5f); // halves go to the even side
  ExpectBox(it, 92, 44, 107, 59);
  it.SetPosition(100, 50);
  it.SetImageXScale(-1); // box 0 to 15 about origin 8
  ExpectBox(it, 92, 42, 107, 57);
  it.SetImageXScale(0.5f);
  ExpectBox(it, 96, 42, 103, 57);
  it.SetImageXScale(0);
  ExpectBox(it, 100, 42, 99, 57);
  it.SetImageXScale(1);
  it.SetSpriteIndex(-1);
  it.SetPosition(-1.75f, 2.75f);
  ExpectBox(it, -1, 2, -1, 2);
  it.SetMaskIndex(sprite);
  ExpectBox(it, -10, -5, 5, 10);
  it.SetPosition(1e20f, std::numeric_limits<float>::quiet_NaN());
  it.Bounds(); // clamped, whatever it is
  EXPECT_EQ(it.bbox.right, INT32_MAX);
}

TEST_F(InstanceStateTest, AMirroredBoxOffTheOriginIsTheMirrorImage) {
  CSprite& s = *Sprites().table[static_cast<size_t>(sprite)];
  s.left = 2;
  s.right = 5;
  s.originX = 3;
  CInstance& it = Make();
  ExpectBox(it, -1, -8, 2, 7);
  it.SetImageXScale(-1);
  ExpectBox(it, -3, -8, 0, 7);
}

TEST_F(InstanceStateTest, TurnedBoxes) {
  CInstance& it = Make(100, 50);
  Sprites().table[static_cast<size_t>(sprite)]->right = 7; // the left half: x from -8 to 0 about the origin
  it.SetImageAngle(90);                                    // left turns to down
  ExpectBox(it, 92, 50, 107, 57);
  it.SetImageAngle(180);
  ExpectBox(it, 100, 42, 107, 57);
  it.SetImageAngle(45);
  ExpectBox(it, 89, 44, 105, 60);
}

TEST_F(InstanceStateTest, CopyHasAllButIdentity) {
  CInstance& it = Make(3, 4);
  it.SetHspeed(2);
  it.alarm[5] = 9;
  it.imageAlpha = 0.5f;
  it.GetSlot(3).SetString("text");
  const int32_t id = instance_copy(&it, false);
  CInstance& copy = *Instance_Find(id);
  EXPECT_NE(copy.id, it.id);
  EXPECT_EQ(copy.hspeed, 2);
  EXPECT_EQ(copy.alarm[5], 9);
  EXPECT_EQ(copy.imageAlpha, 0.5f);
  EXPECT_EQ(copy.GetSlot(3).Text(), "text");
  copy.GetSlot(3).SetReal(1);
  EXPECT_EQ(it.GetSlot(3).Text(), "text");
  EXPECT_EQ(instance_number(object), 2);
}

} // namespace
} // namespace vesk::test
