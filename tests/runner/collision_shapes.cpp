// The shape tests and the built-ins on them: every edge that decides between a hit and a miss.
#include "Files/Function/Function.h"
#include "Files/Object/Function_Collision.h"
#include "Files/Support/Support_Data_Structures.h"
#include "tests/runner/collision_world.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace vesk {
namespace {

const std::vector<std::string_view> kSlope = {"#...", "##..", "###.", "####"};

class Collision : public testing::Test {
protected:
  CollisionWorld world;
  int32_t block = world.Object(world.Sprite(16, 16));
  int32_t mover = world.Object(world.Sprite(16, 16));
};

TEST_F(Collision, BoxesMustOverlapNotTouch) {
  CInstance& floor = world.Add(block, 0, 16);
  CInstance& hero = world.Add(mover, 0, 0);
  EXPECT_FALSE(place_meeting(&hero, 0, 0, block));
  EXPECT_TRUE(place_meeting(&hero, 0, 1, block));
  EXPECT_FALSE(place_meeting(&hero, 16, 1, block));
  EXPECT_TRUE(place_meeting(&hero, 15, 1, block));
  // The box rounds: half a pixel is a tie and goes to the even side.
  EXPECT_FALSE(place_meeting(&hero, 0, 0.5f, block));
  EXPECT_TRUE(place_meeting(&hero, 0, 0.51f, block));
  EXPECT_EQ(hero.x, 0);
  EXPECT_EQ(hero.y, 0);
  EXPECT_EQ(instance_place(&hero, 0, 1, block), floor.id);
  EXPECT_EQ(instance_place(&hero, 0, 1, floor.id), floor.id);
  EXPECT_EQ(instance_place(&hero, 0, 1, hero.id), noone);
}

TEST_F(Collision, RectanglesAreClosedBoxesHalfOpen) {
  CInstance& it = world.Add(block, 32, 32); // 32 to 47
  const auto rect = [&](float x1, float y1, float x2, float y2) {
    return collision_rectangle(nullptr, x1, y1, x2, y2, block, true, false);
  };
  EXPECT_EQ(rect(0, 0, 32, 32), it.id);
  EXPECT_EQ(rect(32, 32, 0, 0), it.id); // corners in any order
  EXPECT_EQ(rect(0, 0, 31.5f, 40), noone);
  EXPECT_EQ(rect(0, 0, 40, 31.5f), noone);
  EXPECT_EQ(rect(47.9f, 40, 60, 40), it.id);
  EXPECT_EQ(rect(48, 40, 60, 40), noone);
  EXPECT_EQ(rect(40, 48, 40, 60), noone);
}

TEST_F(Collision, PointsCountByTheirRealPosition) {
  CInstance& it = world.Add(block, 32, 32);
  const auto point = [&](float x, float y) { return collision_point(nullptr, x, y, block, false, false); };
  EXPECT_EQ(point(32, 32), it.id);
  EXPECT_EQ(point(31.9f, 32), noone);
  EXPECT_EQ(point(47.5f, 47.5f), it.id);
  EXPECT_EQ(point(48, 40), noone);
  EXPECT_EQ(point(40, 48), noone);
  EXPECT_FALSE(position_empty(40, 40));
  EXPECT_TRUE(position_empty(48, 40));
}

TEST_F(Collision, NamesSelectWhatTheirFamilySays) {
  CInstance& a = world.Add(block, 0, 0);
  CInstance& me = world.Add(mover, 0, 0);
  EXPECT_EQ(collision_rectangle(&me, 0, 0, 9, 9, self_, false, false), noone);
  EXPECT_EQ(collision_rectangle(&me, 0, 0, 9, 9, other_, false, false), noone);
  EXPECT_EQ(collision_rectangle(&me, 0, 0, 9, 9, noone, false, false), noone);
  EXPECT_FALSE(place_meeting(&me, 0, 0, self_));
  EXPECT_FALSE(place_meeting(&me, 0, 0, noone));
  EXPECT_TRUE(place_meeting(&me, 0, 0, all));
  EXPECT_TRUE(position_meeting(&me, 5, 5, self_));
  EXPECT_EQ(collision_point(&me, 5, 5, mover, false, true), noone); // not me
  EXPECT_EQ(collision_point(&me, 5, 5, me.id, false, true), noone);
  EXPECT_EQ(collision_point(&me, 5, 5, me.id, false, false), me.id);
  EXPECT_EQ(collision_point(&me, 5, 5, 9999, false, false), noone);   // no such object
  EXPECT_EQ(collision_point(&me, 5, 5, 999999, false, false), noone); // no such instance

  // `other` is known by name only.
  RValue result, args[] = {RValue(0), RValue(0), RValue(other_)};
  Function_AddCollision();
  int32_t placeMeeting = -1;
  ASSERT_TRUE(Function_Find("place_meeting", placeMeeting));
  CallBuiltin(&me, &a, result, 3, placeMeeting, args);
  EXPECT_EQ(result.real, 1);
  a.SetPosition(100, 100);
  CallBuiltin(&me, &a, result, 3, placeMeeting, args);
  EXPECT_EQ(result.real, 0);
  Function_Reset();

  a.deactivated = true;
  EXPECT_EQ(instance_place(&me, 100, 100, a.id), noone);
  EXPECT_EQ(instance_place(&me, 100, 100, block), noone);
  a.deactivated = false;
  EXPECT_EQ(instance_place(&me, 100, 100, block), a.id);
  a.marked = true;
  EXPECT_EQ(instance_place(&me, 100, 100, block), noone);
  EXPECT_EQ(instance_place(&me, 100, 100, a.id), noone);
}

TEST_F(Collision, ParentsGiveTheOldestAllGivesTheLowestDepth) {
  const int32_t sprite = world.Sprite(16, 16);
  const int32_t parent = world.Object(sprite), child = world.Object(sprite, parent, 5),
                low = world.Object(sprite, parent, -5);
  CInstance& oldest = world.Add(child, 0, 0);
  CInstance& lowest = world.Add(low, 0, 0);
  world.Add(parent, 0, 0);
  EXPECT_EQ(collision_rectangle(nullptr, 0, 0, 5, 5, parent, false, false), oldest.id);
  EXPECT_EQ(collision_rectangle(nullptr, 0, 0, 5, 5, all, false, false), lowest.id);
  // A new depth counts from the next clean-up on.
  oldest.SetDepth(-9);
  EXPECT_EQ(collision_rectangle(nullptr, 0, 0, 5, 5, all, false, false), lowest.id);
  CleanUpInstances();
  EXPECT_EQ(collision_rectangle(nullptr, 0, 0, 5, 5, all, false, false), oldest.id);
}

TEST_F(Collision, ShapesWithoutASpriteOrFrames) {
  const int32_t bare = world.Object(-1),
                empty = world.Object(world.Sprite(16, 16, SpriteKind::kRectangle, 0));
  CInstance& me = world.Add(mover, 0, 0);
  CInstance& dot = world.Add(bare, 5.9f, 5.9f);
  CInstance& hollow = world.Add(empty, 100, 100);
  EXPECT_FALSE(place_meeting(&me, 0, 0, bare));
  EXPECT_EQ(collision_point(&me, 5, 5, bare, false, false), noone);
  EXPECT_EQ(collision_line(&me, 0, 5, 9, 5, bare, false, false), noone);
  EXPECT_EQ(collision_rectangle(&me, 0, 0, 5, 5, bare, true, false), dot.id); // only its box, one pixel
  EXPECT_EQ(collision_rectangle(&me, 6, 0, 9, 9, bare, false, false), noone);
  EXPECT_FALSE(place_meeting(&me, 100, 100, empty));
  EXPECT_EQ(collision_point(&me, 105, 105, empty, false, false), noone);
  EXPECT_EQ(collision_rectangle(&me, 105, 105, 106, 106, empty, true, false), hollow.id);
  // A mask without frames disables an instance that has a picture.
  CInstance& target = world.Add(block, 200, 200);
  EXPECT_TRUE(place_meeting(&me, 200, 200, block));
  target.SetMaskIndex(hollow.spriteIndex);
  EXPECT_FALSE(place_meeting(&me, 200, 200, block));
}

TEST_F(Collision, PrecisePointsAreRoundedToPixels) {
  const int32_t slope = world.Object(world.Masked(4, kSlope));
  CInstance& it = world.Add(slope, 10, 10);
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column) {
      const float x = static_cast<float>(10 + column), y = static_cast<float>(10 + row);
      EXPECT_EQ(collision_point(nullptr, x, y, slope, true, false) == it.id, column <= row) << row << column;
      EXPECT_EQ(collision_point(nullptr, x, y, slope, false, false), it.id);
    }
  EXPECT_EQ(collision_point(nullptr, 11.4f, 11, slope, true, false), it.id);
  EXPECT_EQ(collision_point(nullptr, 11.6f, 11, slope, true, false), noone);
  EXPECT_EQ(collision_point(nullptr, 10.5f, 10, slope, true, false), it.id); // tie to even: 10
  EXPECT_EQ(collision_point(nullptr, 13, 12.5f, slope, true, false), noone); // tie to even: 12
  it.SetPosition(10.6f, 10);                                                 // the mask stands at 11
  EXPECT_EQ(collision_point(nullptr, 10, 13, slope, true, false), noone);
  EXPECT_EQ(collision_point(nullptr, 11, 10, slope, true, false), it.id);
}

TEST_F(Collision, FiguresFindSetPixels) {
  const int32_t slope = world.Object(world.Masked(4, kSlope));
  CInstance& it = world.Add(slope, 10, 10);
  const auto rect = [&](float x1, float y1, float x2, float y2) {
    return collision_rectangle(nullptr, x1, y1, x2, y2, slope, true, false) == it.id;
  };
  EXPECT_FALSE(rect(12, 10, 13, 11)); // the empty corner
  EXPECT_TRUE(rect(12, 10, 13, 12));
  EXPECT_TRUE(rect(12, 10, 13, 11.6f));
  const auto line = [&](float x1, float y1, float x2, float y2) {
    return collision_line(nullptr, x1, y1, x2, y2, slope, true, false) == it.id;
  };
  EXPECT_FALSE(line(11, 10, 13, 12)); // beside the diagonal
  EXPECT_TRUE(line(10, 13, 13, 10));
  EXPECT_TRUE(line(13, 10, 10, 13));
  EXPECT_FALSE(line(12, 10, 12, 11));
  EXPECT_TRUE(line(12, 10, 12, 12));
  EXPECT_TRUE(line(0, 12, 30, 12));
  EXPECT_FALSE(line(0, 2, 9, 2));
  EXPECT_EQ(collision_circle(nullptr, 13, 10, 1, slope, true, false), noone);
  EXPECT_EQ(collision_circle(nullptr, 12, 12, 2, slope, true, false), it.id);
}

TEST_F(Collision, PixelsOfTwoInstances) {
  const int32_t slope = world.Object(world.Masked(4, kSlope)), dot = world.Object(world.Sprite(1, 1));
  CInstance& it = world.Add(slope, 10, 10);
  CInstance& me = world.Add(dot, 0, 0);
  const auto picture = [&] {
    std::string rows;
    for (int y = 8; y < 16; ++y) {
      for (int x = 8; x < 16; ++x)
        rows += place_meeting(&me, static_cast<float>(x), static_cast<float>(y), slope) ? '#' : '.';
      rows += '\n';
    }
    return rows;
  };
  EXPECT_EQ(picture(), "........\n........\n..#.....\n..##....\n..###...\n..####..\n........\n........\n");
  // Mirrored about its origin: one pixel before it, so that the pixels stay in the box.
  it.SetImageXScale(-1);
  it.SetPosition(14, 10);
  EXPECT_EQ(picture(), "........\n........\n.....#..\n....##..\n...###..\n..####..\n........\n........\n");
  it.SetImageXScale(1);
  it.SetImageYScale(-1);
  it.SetPosition(10, 14);
  EXPECT_EQ(picture(), "........\n........\n..####..\n..###...\n..##....\n..#.....\n........\n........\n");
  // Twice the size.
  it.SetImageXScale(2);
  it.SetImageYScale(2);
  it.SetPosition(8, 8);
  EXPECT_EQ(picture(), "##......\n##......\n####....\n####....\n######..\n######..\n########\n########\n");
  // A quarter turn counter-clockwise about the corner of the slope.
  it.SetImageXScale(1);
  it.SetImageYScale(1);
  it.SetImageAngle(180);
  it.SetPosition(13, 13);
  const std::string turned = picture();
  EXPECT_EQ(std::count(turned.begin(), turned.end(), '#') > 6, true) << turned;
  EXPECT_TRUE(place_meeting(&me, 9, 10, slope)) << turned;  // the long side is up now
  EXPECT_FALSE(place_meeting(&me, 9, 12, slope)) << turned; // and the thin end to the lower right
}

TEST_F(Collision, FramesChooseTheirMask) {
  const int32_t sprite = world.Masked(2, {"#.", "..", ".#", ".."}, 2);
  const int32_t blinking = world.Object(sprite);
  CInstance& it = world.Add(blinking, 10, 10);
  const auto left = [&](float frame) {
    it.imageIndex = frame;
    return collision_point(nullptr, 10, 10, blinking, true, false) == it.id;
  };
  EXPECT_TRUE(left(0));
  EXPECT_TRUE(left(0.9f));
  EXPECT_FALSE(left(1));
  EXPECT_TRUE(left(2));
  EXPECT_FALSE(left(-1)); // wraps to the last
  EXPECT_TRUE(left(-2));
  world.At(sprite).expandedMasks.clear();
  world.At(sprite).maskCount = 1; // one mask for all frames
  EXPECT_TRUE(left(1));
  world.At(sprite).maskCount = 0; // none: every pixel is set
  it.imageIndex = 0;
  EXPECT_EQ(collision_point(nullptr, 11, 11, blinking, true, false), it.id);
  EXPECT_EQ(collision_rectangle(nullptr, 11, 11, 11, 11, blinking, true, false), it.id);
  EXPECT_EQ(collision_line(nullptr, 11, 11, 12, 12, blinking, true, false), it.id);
}

TEST(SpriteMask, RowsEndAtWholeBytes) {
  CollisionWorld world;
  const CSprite& sprite = world.At(world.Masked(9, {"#.......#", "........#", "#........"}));
  const uint8_t* mask = sprite.Mask(0);
  ASSERT_NE(mask, nullptr);
  EXPECT_EQ(std::vector<uint8_t>(mask, mask + 27),
            (std::vector<uint8_t>{1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0,
                                  0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(sprite.Mask(7), mask);
  EXPECT_EQ(world.At(world.Sprite(4, 4)).Mask(0), nullptr);
}

TEST_F(Collision, TurnedBoxesSeparateAlongTheirEdges) {
  const int32_t sprite = world.Sprite(16, 16, SpriteKind::kRotatedRectangle);
  world.At(sprite).originX = world.At(sprite).originY = 8;
  const int32_t diamond = world.Object(sprite);
  CInstance& it = world.Add(diamond, 100, 100);
  it.SetImageAngle(45); // its tips 11 from the middle
  CInstance& me = world.Add(mover, 0, 0);
  EXPECT_TRUE(place_meeting(&me, 100, 100, diamond));
  EXPECT_FALSE(place_meeting(&me, 107, 107, diamond)); // boxes overlap, the tips' corner is empty
  EXPECT_TRUE(place_meeting(&me, 104, 104, diamond));
  EXPECT_EQ(collision_line(&me, 106, 109, 109, 106, diamond, false, false), noone);
  EXPECT_EQ(collision_line(&me, 90, 100, 110, 100, diamond, false, false), it.id);
  // Edge along edge they touch, which separates; the boxes overlap by far.
  CInstance& twin = world.Add(diamond, 0, 0);
  twin.SetImageAngle(45);
  EXPECT_FALSE(place_meeting(&twin, 111, 111, it.id));
  EXPECT_TRUE(place_meeting(&twin, 110, 111, it.id));
  // Upright, two such boxes that touch are separated, as with plain ones.
  it.SetImageAngle(0);
  EXPECT_FALSE(place_meeting(&me, 108, 100, diamond));
  EXPECT_TRUE(place_meeting(&me, 107, 100, diamond));
}

TEST_F(Collision, LinesAreClippedWithOnePixelMoreInTheSlope) {
  CInstance& it = world.Add(block, 100, 100); // 100 to 115
  const auto line = [&](float x1, float y1, float x2, float y2) {
    return collision_line(nullptr, x1, y1, x2, y2, block, true, false) == it.id;
  };
  EXPECT_TRUE(line(0, 0, 200, 200));
  EXPECT_FALSE(line(0, 130, 115, 20)); // passes the left top corner outside
  // By plain geometry this one leaves the box at y = 100.24; the rule makes it 99.88 and a miss.
  EXPECT_FALSE(line(0, 84, 200, 84 + 28));
  EXPECT_TRUE(line(0, 84, 200, 84 + 29));
  EXPECT_TRUE(line(100, 50, 100, 150)); // upright: no clipping in x
  EXPECT_FALSE(line(116, 50, 116, 150));
  EXPECT_TRUE(line(115.5f, 50, 115.5f, 150));
}

TEST_F(Collision, EllipsesTouchThroughTheMiddleOrACorner) {
  CInstance& it = world.Add(block, 100, 100);
  const auto circle = [&](float x, float y, float r) {
    return collision_circle(nullptr, x, y, r, block, true, false) == it.id;
  };
  EXPECT_TRUE(circle(108, 90, 10)); // straight above
  EXPECT_FALSE(circle(108, 89, 10));
  EXPECT_TRUE(circle(93, 93, 10));   // the corner (100, 100) is 9.9 away
  EXPECT_FALSE(circle(92, 92, 10));  // 11.3
  EXPECT_TRUE(circle(122, 122, 10)); // the corner (115, 115)
  EXPECT_FALSE(circle(123, 123, 10));
  // So thin that it is a line of pixels: the rectangle decides.
  EXPECT_EQ(collision_ellipse(nullptr, 90, 99, 101, 99.4f, block, true, false), noone);
  EXPECT_EQ(collision_ellipse(nullptr, 90, 100, 101, 100.4f, block, true, false), it.id);
}

TEST_F(Collision, ListFormsCollectAllInOrderOrNearestFirst) {
  std::vector<int32_t> row;
  for (int i = 0; i < 30; ++i) row.push_back(world.Add(block, static_cast<float>(i * 20), 0).id);
  CInstance& me = world.Add(mover, 52, 8);
  const int32_t list = Ds().lists.Create(std::make_unique<CDS_List>());
  const auto taken = [list] {
    std::vector<int32_t> ids;
    for (const RValue& value : Ds().lists.Find(list)->values) ids.push_back(ValueAsInt32(value));
    Ds().lists.Find(list)->values.clear();
    return ids;
  };
  using Ids = std::vector<int32_t>;
  EXPECT_EQ(collision_rectangle_list(&me, 30, 4, 85, 5, block, false, true, list, false), 4);
  EXPECT_EQ(taken(), (Ids{row[1], row[2], row[3], row[4]}));
  EXPECT_EQ(collision_rectangle_list(&me, 30, 4, 85, 5, block, false, true, list, true), 4);
  EXPECT_EQ(taken(), (Ids{row[3], row[2], row[4], row[1]})); // middle 57.5: 60, 40, 80, 20
  EXPECT_EQ(collision_rectangle_list(&me, 50, 10, 60, 12, all, false, false, list, false), 3);
  EXPECT_EQ(taken(), (Ids{row[2], row[3], me.id}));
  EXPECT_EQ(collision_line_list(&me, 0, 15, 25, 15, block, false, true, list, false), 2);
  EXPECT_EQ(collision_circle_list(&me, 18, 8, 4, block, false, true, list, false), 2);
  EXPECT_EQ(collision_ellipse_list(&me, 14, 4, 22, 12, block, false, true, list, false), 2);
  EXPECT_EQ(taken(), (Ids{row[0], row[1], row[0], row[1], row[0], row[1]}));
  EXPECT_EQ(collision_point_list(&me, 5, 5, block, false, true, list, false), 1);
  EXPECT_EQ(instance_position_list(25, 5, block, list, false), 1);
  EXPECT_EQ(instance_place_list(&me, 50, 8, block, list, false), 2);
  EXPECT_EQ(taken(), (Ids{row[0], row[1], row[2], row[3]}));
  EXPECT_EQ(collision_point_list(&me, 5, 5, block, false, true, 77, false), 0); // no such list
  Ds_Reset();
}

TEST_F(Collision, NearestAndFurthestGoByPlaceAndAge) {
  CInstance& a = world.Add(block, 10, 0);
  CInstance& b = world.Add(block, -10, 0);
  CInstance& c = world.Add(mover, 30, 0);
  EXPECT_EQ(instance_nearest(0, 0, block), a.id); // a tie goes to the older
  EXPECT_EQ(instance_furthest(0, 0, block), a.id);
  EXPECT_EQ(instance_nearest(-1, 0, block), b.id);
  EXPECT_EQ(instance_furthest(0, 0, all), c.id);
  EXPECT_EQ(instance_nearest(0, 0, a.id), noone);
  EXPECT_EQ(instance_nearest(0, 0, noone), noone);
  a.deactivated = true;
  EXPECT_EQ(instance_nearest(0, 0, block), b.id);

  EXPECT_EQ(distance_to_point(&c, 35, 5), 0);
  EXPECT_EQ(distance_to_point(&c, 27, -4), 5);
  EXPECT_EQ(distance_to_object(&c, nullptr, block), 25); // box ends at 5
  EXPECT_EQ(distance_to_object(&c, nullptr, mover), 1000000);
}

TEST_F(Collision, PlacesAreFreeOfSolidsOrOfAll) {
  CInstance& wall = world.Add(block, 50, 50);
  CInstance& me = world.Add(mover, 0, 0);
  EXPECT_TRUE(place_free(&me, 50, 50));
  EXPECT_FALSE(place_empty(&me, 50, 50));
  wall.solid = true;
  EXPECT_FALSE(place_free(&me, 50, 50));
  EXPECT_TRUE(place_empty(&me, 0, 0)); // itself doesn't count
}

TEST_F(Collision, PlaceSnappedToleratesAThousandth) {
  CInstance& me = world.Add(mover, 32.0005f, 47);
  EXPECT_TRUE(place_snapped(&me, 16, 0));
  EXPECT_FALSE(place_snapped(&me, 16, 16));
  EXPECT_TRUE(place_snapped(&me, 0, -5));
  me.SetPosition(32.01f, 48);
  EXPECT_FALSE(place_snapped(&me, 16, 16));
}

} // namespace
} // namespace vesk
