// Tiles: adding, look-ups, order.
#include "Files/Background/Background.h"
#include "Files/Base/Error.h"
#include "Files/Room/Function_Room.h"
#include "Files/Room/Function_Tile.h"
#include "tests/runner/SmallGame.h"

#include <gtest/gtest.h>

#include <random>

namespace vesk::test {
namespace {

class RoomTiles : public testing::Test {
protected:
  RoomTiles() {
    Background_Reset();
    Backgrounds().table.push_back(std::make_unique<CBackground>());
    Rooms().nextTileId = 10000560;
    game.Start();
  }
  ~RoomTiles() override { Background_Reset(); }
  int32_t Add(float x, float y, float depth, int32_t size = 16) {
    return tile_add(0, 0, 0, size, size, x, y, depth);
  }
  std::string Order() {
    CurrentRoom()->tiles.SortByDepth();
    std::string text;
    for (const Tile& tile : CurrentRoom()->tiles)
      text += (text.empty() ? "" : " ") + std::to_string(tile.id - 10000560);
    return text;
  }

  SmallGame game;
};

TEST_F(RoomTiles, IdsCountOnAndErrorsAreReported) {
  EXPECT_EQ(Add(0, 0, 10), 10000561);
  EXPECT_EQ(tile_add(3, 0, 0, 16, 16, 0, 0, 0), -1);
  EXPECT_NE(Error().lastReport.find("Background does not exist."), std::string::npos);
  EXPECT_TRUE(tile_exists(10000561));
  tile_delete(10000561);
  EXPECT_FALSE(tile_exists(10000561));
  Error().lastReport.clear();
  tile_delete(10000561);
  EXPECT_NE(Error().lastReport.find("Tile does not exist."), std::string::npos);
  EXPECT_EQ(Error().fatalCount, 0);
  EXPECT_EQ(Add(0, 0, 10), 10000562);
  room_restart();
  game.Step();
  EXPECT_TRUE(CurrentRoom()->tiles.empty()) << "tiles go with the running room";
}

TEST_F(RoomTiles, OrderIsDepthThenAge) {
  for (const float depth : {5.0f, 9.0f, 5.0f, 9.0f, -1.0f}) Add(0, 0, depth);
  EXPECT_EQ(Order(), "2 4 1 3 5");
  Add(0, 0, 5);
  EXPECT_EQ(Order(), "2 4 1 3 6 5");
  tile_delete(10000564);
  tile_set_depth(10000561, -1);
  EXPECT_EQ(Order(), "2 3 6 1 5") << "a stable sort: it stood before those of its new depth";
  EXPECT_EQ(tile_get_depth(10000561), -1);
  tile_layer_depth(5, 20);
  EXPECT_EQ(Order(), "3 6 2 1 5");
}

TEST_F(RoomTiles, FieldsByIdAndByLayer) {
  const int32_t a = Add(1, 2, 10), b = Add(5, 6, 10), c = Add(0, 0, 11);
  tile_set_position(a, 30, 40);
  tile_set_region(a, 1, 2, 3, 4);
  tile_set_scale(a, 2, -1);
  tile_set_blend(a, 0xFF102030);
  tile_set_alpha(a, 0.25f);
  EXPECT_EQ(tile_get_x(a), 30);
  EXPECT_EQ(tile_get_height(a), 4);
  EXPECT_EQ(tile_get_yscale(a), -1);
  EXPECT_EQ(tile_get_blend(a), 0x102030u);
  EXPECT_EQ(tile_get_alpha(a), 0.25f);
  tile_layer_shift(10, 1, -1);
  EXPECT_EQ(tile_get_y(a), 39);
  EXPECT_EQ(tile_get_x(b), 6);
  EXPECT_EQ(tile_get_x(c), 0);
  tile_layer_hide(10);
  EXPECT_FALSE(tile_get_visible(b));
  EXPECT_TRUE(tile_get_visible(c));
  tile_layer_show(10);
  EXPECT_TRUE(tile_get_visible(a));
  tile_layer_delete(10);
  EXPECT_FALSE(tile_exists(a) || tile_exists(b));
  EXPECT_TRUE(tile_exists(c));
  EXPECT_EQ(tile_get_x(a), 0);
}

TEST_F(RoomTiles, FindsTheNearestAtExactlyThatDepth) {
  const int32_t a = Add(0, 0, 9), b = Add(8, 0, 9), c = Add(0, 0, 12);
  EXPECT_EQ(tile_layer_find(9, 0, 0), a);
  EXPECT_EQ(tile_layer_find(9, 11.5f, 8), a) << "nearer to the first centre";
  EXPECT_EQ(tile_layer_find(9, 12, 8), a) << "a tie goes to the first";
  EXPECT_EQ(tile_layer_find(9, 12.5f, 8), b);
  EXPECT_EQ(tile_layer_find(9, 23.9f, 15.9f), b);
  EXPECT_EQ(tile_layer_find(9, 24, 8), -1);
  EXPECT_EQ(tile_layer_find(9, 8, 16), -1);
  EXPECT_EQ(tile_layer_find(12, 15, 15), c);
  EXPECT_EQ(tile_layer_find(10, 8, 8), -1);
  tile_set_scale(a, -1, 1); // the box turns over to the left
  EXPECT_EQ(tile_layer_find(9, -10, 8), a);
  tile_delete(b);
  EXPECT_EQ(tile_layer_find(9, 12, 8), -1);
  tile_layer_delete_at(12, 4, 4);
  EXPECT_FALSE(tile_exists(c));
}

// Against a plain scan, with tiles of all sizes coming, going and moving.
TEST_F(RoomTiles, SearchByPlaceAgreesWithAPlainScan) {
  std::mt19937 random(5);
  const auto pick = [&](int n) { return static_cast<int32_t>(random() % static_cast<unsigned>(n)); };
  std::vector<int32_t> ids;
  int hits = 0;
  for (int step = 0; step < 4000; ++step) {
    const int32_t some = ids.empty() ? -1 : ids[static_cast<size_t>(pick(static_cast<int>(ids.size())))];
    switch (pick(12)) {
    case 0:
    case 1:
    case 2:
      ids.push_back(Add(static_cast<float>(pick(300) - 50), static_cast<float>(pick(300) - 50),
                        static_cast<float>(pick(3)), pick(40) == 0 ? 600 : 1 + pick(40)));
      break;
    case 3:
      if (tile_exists(some)) tile_delete(some);
      break;
    case 4:
      if (tile_exists(some))
        tile_set_position(some, static_cast<float>(pick(300)), static_cast<float>(pick(300)));
      break;
    case 5:
      if (tile_exists(some)) tile_set_scale(some, static_cast<float>(pick(5)) / 2 - 1, 1);
      break;
    case 6:
      if (pick(10) == 0) CurrentRoom()->tiles.SortByDepth();
      break;
    default: {
      const auto depth = static_cast<float>(pick(3)), x = static_cast<float>(pick(300) - 50) + 0.5f,
                 y = static_cast<float>(pick(300) - 50);
      int32_t expected = -1;
      float nearest = 0;
      for (const Tile& tile : CurrentRoom()->tiles) {
        if (tile.id < 0 || tile.depth != depth) continue;
        const float x2 = tile.x + static_cast<float>(tile.width) * tile.xscale,
                    y2 = tile.y + static_cast<float>(tile.height);
        const float left = std::min(tile.x, x2), right = std::max(tile.x, x2);
        if (x < left || x >= right || y < tile.y || y >= y2) continue;
        const float dx = (left + right) / 2 - x, dy = (tile.y + y2) / 2 - y;
        if (expected >= 0 && dx * dx + dy * dy >= nearest) continue;
        expected = tile.id;
        nearest = dx * dx + dy * dy;
      }
      ASSERT_EQ(tile_layer_find(depth, x, y), expected) << "step " << step;
      hits += expected >= 0;
    }
    }
  }
  EXPECT_GT(hits, 500);
}

} // namespace
} // namespace vesk::test
