// From sprites and backgrounds to quads: frames, crops, scales, parts, tiling, culling.
#include "Files/Background/DrawBackground.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/PngImage.h"
#include "Files/Graphics/Surface.h"
#include "Files/Graphics/View.h"
#include "Files/Object/Instance.h"
#include "Files/Object/Object.h"
#include "Files/Sprite/DrawSprite.h"
#include "Files/Sprite/RuntimeSprite.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"
#include "tests/runner/code_Report.h"
#include "tests/runner/graphics_Stage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace vesk::test {
namespace {

PageEntry Crop(const Stage& stage) {
  PageEntry entry = stage.Entry(3, 7, 16, 27);
  entry.targetX = 8;
  entry.targetY = 5;
  entry.boundingWidth = entry.boundingHeight = 32;
  return entry;
}

TEST(SpriteDraw, CroppedFrameKeepsItsPlace) {
  RecordingStage stage;
  const int sprite = stage.Sprite(32, 32, {Crop(stage)}, 16, 0);
  draw_sprite(nullptr, sprite, 0, 100, 100);
  const auto draws = stage.Draws();
  ASSERT_EQ(draws.size(), 1u);
  EXPECT_EQ(QuadBox(draws[0]), (Box{92, 105, 108, 132}));
  EXPECT_EQ(QuadTexture(draws[0]), (Box{3, 7, 19, 34}));
  EXPECT_EQ(Vertices(draws[0])[0].colour, 0xFFFFFFFFu);

  draw_sprite_ext(nullptr, sprite, 0, 100, 100, -1, 2, 0, c_red, 0.5f);
  const auto mirrored = stage.Draws();
  EXPECT_EQ(QuadBox(mirrored[0]), (Box{108, 110, 92, 164})); // the origin still at x
  EXPECT_EQ(Vertices(mirrored[0])[0].colour, 0x7FFF0000u);
}

TEST(SpriteDraw, TurnsCounterClockwiseAboutTheOrigin) {
  RecordingStage stage;
  const int sprite = stage.Piece(0, 0, 16, 8, 4, 2);
  draw_sprite_ext(nullptr, sprite, 0, 50, 60, 1, 1, 90, c_white, 1);
  const auto v = Vertices(stage.Draws()[0]);
  // The left top corner lies 4 left and 2 up of the origin: a quarter turn puts it 2 left and 4 down.
  EXPECT_NEAR(v[0].x, 48, 1e-4);
  EXPECT_NEAR(v[0].y, 64, 1e-4);
  EXPECT_NEAR(v[2].x, 56, 1e-4);
  EXPECT_NEAR(v[2].y, 48, 1e-4);
}

TEST(SpriteDraw, ImageNumbersWrapAndNegativeOnesMeanTheInstance) {
  RecordingStage stage;
  const int sprite =
      stage.Sprite(8, 8, {stage.Entry(0, 0, 8, 8), stage.Entry(8, 0, 8, 8), stage.Entry(16, 0, 8, 8)});
  CObjectFb object;
  CInstance self(&object, 0, 0, 100001, 0);
  self.imageIndex = 2.7f;
  const auto frame = [&](int image) {
    draw_sprite(&self, sprite, image, 20, 20);
    return QuadTexture(stage.Draws()[0]).left / 8;
  };
  EXPECT_EQ(frame(-1), 2);
  EXPECT_EQ(frame(-2), 2);
  EXPECT_EQ(frame(3), 0);
  EXPECT_EQ(frame(7), 1);
  self.imageIndex = -1; // wraps as well
  EXPECT_EQ(frame(-1), 2);
  draw_sprite(&self, stage.Sprite(8, 8, {}), 0, 20, 20);
  EXPECT_TRUE(stage.Draws().empty());
  EXPECT_TRUE(ReportOf([&] { draw_sprite(&self, 99, 0, 0, 0); }).Says("Trying to draw non-existing sprite."));
  EXPECT_TRUE(ReportOf([] { draw_background(99, 0, 0); }).Says("Trying to draw non-existing background."));
}

TEST(SpriteDraw, CullsByRadiusAboutTheDrawPosition) {
  RecordingStage stage;
  const int sprite = stage.Piece(0, 0, 16, 16); // radius 23
  const auto drawn = [&](float x, float y, float scale) {
    if (scale == 1)
      draw_sprite(nullptr, sprite, 0, x, y);
    else
      draw_sprite_ext(nullptr, sprite, 0, x, y, scale, 0.01f, 0, c_white, 1);
    return !stage.Draws().empty();
  };
  EXPECT_TRUE(drawn(-23, 50, 1)); // the box begins at 0
  EXPECT_FALSE(drawn(-24, 50, 1));
  EXPECT_TRUE(drawn(384 + 23, 50, 1)); // although nothing of it shows
  EXPECT_FALSE(drawn(384 + 24, 50, 1));
  EXPECT_FALSE(drawn(50, -24, 1));
  EXPECT_FALSE(drawn(50, 216 + 24, 1));
  EXPECT_TRUE(drawn(-40, 50, -2)); // the larger scale counts
  EXPECT_FALSE(drawn(-47, 50, -2));

  // A turned view has a larger box.
  EXPECT_FALSE(drawn(-60, 50, 1));
  SetView(0, 0, 384, 216, 45);
  EXPECT_TRUE(drawn(-40, 50, 1));
  SetView(1000, 0, 384, 216, 0);
  EXPECT_FALSE(drawn(50, 50, 1));
  draw_sprite_part(nullptr, sprite, 0, 0, 0, 4, 4, 50, 50); // parts are not culled
  EXPECT_EQ(stage.Draws().size(), 1u);
}

TEST(SpriteDraw, PartsHonourTheCrop) {
  RecordingStage stage;
  const int sprite = stage.Sprite(32, 32, {Crop(stage)}, 16, 0); // visible (8, 5) to (24, 32)
  const auto part = [&](float left, float top, float width, float height, float xscale, float yscale) {
    draw_sprite_part_ext(nullptr, sprite, 0, left, top, width, height, 100, 50, xscale, yscale, c_white, 1);
    return stage.Draws();
  };
  auto draws = part(0, 0, 32, 32, 1, 1);
  EXPECT_EQ(QuadBox(draws[0]), (Box{108, 55, 124, 82}));
  EXPECT_EQ(QuadTexture(draws[0]), (Box{3, 7, 19, 34}));
  draws = part(4, 10, 8, 6, 2, 3);
  EXPECT_EQ(QuadBox(draws[0]), (Box{108, 50, 116, 68}));
  EXPECT_EQ(QuadTexture(draws[0]), (Box{3, 12, 7, 18}));
  draws = part(20, 30, 12, 9, 1, 1);
  EXPECT_EQ(QuadBox(draws[0]), (Box{100, 50, 104, 52}));
  EXPECT_TRUE(part(0, 0, 8, 32, 1, 1).empty()); // only the cropped margin
  EXPECT_TRUE(part(0, 0, 32, 4, 1, 1).empty());
  EXPECT_TRUE(part(24, 0, 8, 32, 1, 1).empty());
}

TEST(SpriteDraw, StretchedGeneralAndFreeCorners) {
  RecordingStage stage;
  const int sprite = stage.Piece(0, 0, 16, 16, 8, 8);
  draw_sprite_stretched(nullptr, sprite, 0, 10, 20, 32, 8);
  EXPECT_EQ(QuadBox(stage.Draws()[0]), (Box{10, 20, 42, 28}));
  draw_sprite_stretched(nullptr, sprite, 0, 10, 20, 0, 8);
  EXPECT_TRUE(stage.Draws().empty());
  draw_sprite_general(nullptr, sprite, 0, 0, 0, 16, 16, 10, 20, 1, 1, 0, c_red, c_lime, c_blue, c_white, 1);
  const auto v = Vertices(stage.Draws()[0]);
  EXPECT_EQ(v[0].colour, 0xFFFF0000u);
  EXPECT_EQ(v[1].colour, 0xFF00FF00u);
  EXPECT_EQ(v[2].colour, 0xFF0000FFu);
  EXPECT_EQ(v[4].colour, 0xFFFFFFFFu);
  draw_sprite_pos(nullptr, sprite, 0, 1, 2, 30, 4, 33, 44, 5, 40, 1);
  EXPECT_EQ(QuadBox(stage.Draws()[0]), (Box{1, 2, 33, 44}));
  shader_enable_corner_id(true);
  draw_sprite(nullptr, sprite, 0, 50, 50);
  const auto marked = Vertices(stage.Draws()[0]);
  EXPECT_EQ(marked[0].colour & 0x10001, 0u);
  EXPECT_EQ(marked[1].colour & 0x10001, 0x1u);
  EXPECT_EQ(marked[2].colour & 0x10001, 0x10000u);
  EXPECT_EQ(marked[4].colour & 0x10001, 0x10001u);
}

TEST(BackgroundDraw, TilingCoversTheViewWithoutGaps) {
  RecordingStage stage;
  const int background = stage.Background(stage.Entry(0, 0, 40, 50));
  for (const float x : {0.0f, -13.0f, 27.5f, 4000.0f, -4000.0f}) {
    draw_background_tiled(background, x, x);
    const auto draws = stage.Draws();
    ASSERT_EQ(draws.size(), 1u);
    const size_t quads = static_cast<size_t>(draws[0].count) / 6;
    float left = 1e9f, right = -1e9f, top = 1e9f, bottom = -1e9f;
    for (size_t i = 0; i < quads; ++i) {
      const Box box = QuadBox(draws[0], i);
      left = std::min(left, box.left), right = std::max(right, box.right);
      top = std::min(top, box.top), bottom = std::max(bottom, box.bottom);
      EXPECT_NEAR(std::remainder(box.left - x, 40), 0, 1e-3);
      EXPECT_NEAR(std::remainder(box.top - x, 50), 0, 1e-3);
    }
    EXPECT_LE(left, 0);
    EXPECT_GE(right, 384);
    EXPECT_LE(top, 0);
    EXPECT_GE(bottom, 216);
  }
  draw_background_tiled_ext(background, 0, 0, 0, 1, c_white, 1); // no scale
  EXPECT_TRUE(stage.Draws().empty());
  const int dot = stage.Background(stage.Entry(0, 0, 1, 1));
  draw_background_tiled(dot, 0, 0);
  int quads = 0;
  for (const auto& draw : stage.Draws()) {
    EXPECT_EQ(draw.count % 6, 0);
    quads += draw.count / 6;
  }
  EXPECT_EQ(quads, 386 * 218);
}

// From an image file of three frames, from a surface, replaced and deleted; bad files leave all as it was.
TEST(RuntimeSprites, ComeFromFilesAndSurfaces) {
  RecordingStage stage;
  const std::string folder = Directory_Temporary() + "vesk-sprites/";
  ASSERT_TRUE(Directory_Make(folder));
  Files_Locations().bundle = folder;
  PngImage image{12, 4, std::vector<uint8_t>(12 * 4 * 4, 255)};
  const auto paint = [&](int x, int y, Rgba colour) {
    std::copy(colour.begin(), colour.end(), image.pixels.begin() + (y * 12 + x) * 4);
  };
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 12; ++x) paint(x, y, {9, 9, 9, 255});
  paint(1, 1, {255, 0, 0, 255});
  paint(4 + 2, 2, {0, 255, 0, 255});
  std::string bytes, why;
  ASSERT_TRUE(Png_Encode(image, bytes, why) && File_WriteAll(folder + "strip.png", bytes));
  ASSERT_TRUE(File_WriteAll(folder + "broken.png", bytes.substr(0, bytes.size() / 2)));

  const int sprite = sprite_add("strip.png", 3, true, false, 1, 2);
  ASSERT_GE(sprite, 0);
  EXPECT_EQ(sprite_get_number(sprite), 3);
  EXPECT_EQ(sprite_get_width(sprite), 4);
  EXPECT_EQ(sprite_get_xoffset(sprite), 1);
  const CSprite& made = *Sprite_Find(sprite);
  EXPECT_EQ((Box{float(made.left), float(made.top), float(made.right), float(made.bottom)}),
            (Box{1, 1, 2, 2}));
  draw_sprite(nullptr, sprite, 4, 50, 60);
  EXPECT_EQ(QuadBox(stage.Draws().at(0)), (Box{49, 58, 53, 62}));
  const std::pair<const char*, const char*> bad[] = {{"none.png", "does not exist"},
                                                     {"broken.png", "broken.png"}};
  for (const auto& [file, words] : bad) {
    const Report report = ReportOf([&] {
      EXPECT_EQ(sprite_add(file, 1, false, false, 0, 0), -1);
      EXPECT_FALSE(sprite_replace(sprite, file, 1, false, false, 0, 0));
      EXPECT_EQ(background_add(file, false, false), -1);
    });
    EXPECT_TRUE(report.Says(words)) << report.text;
    EXPECT_FALSE(report.fatal);
  }
  EXPECT_TRUE(
      ReportOf([] { EXPECT_EQ(sprite_add("strip.png", 13, false, false, 0, 0), -1); }).Says("13 frames"));
  EXPECT_EQ(sprite_get_number(sprite), 3);
  EXPECT_TRUE(sprite_replace(sprite, "strip.png", 1, false, false, 0, 0));
  EXPECT_EQ(sprite_get_width(sprite), 12);

  const int surface = surface_create(16, 16);
  const int copied = sprite_create_from_surface(surface, 0, 0, 8, 6, false, false, 4, 3);
  sprite_add_from_surface(copied, surface, 0, 0, 16, 16, false, false);
  EXPECT_EQ(sprite_get_number(copied), 2);
  EXPECT_EQ(sprite_get_height(copied), 6);
  draw_sprite(nullptr, copied, 1, 20, 20);
  EXPECT_EQ(QuadBox(stage.Draws().at(0)), (Box{16, 17, 24, 23}));
  const size_t textures = stage.device.textures.size();
  EXPECT_TRUE(sprite_delete(copied));
  EXPECT_EQ(stage.device.textures.size(), textures - 2);
  EXPECT_FALSE(sprite_exists(copied));
  EXPECT_TRUE(ReportOf([&] { sprite_delete(copied); }).Says("non-existing sprite"));
  EXPECT_TRUE(ReportOf([] {
                EXPECT_EQ(sprite_create_from_surface(77, 0, 0, 4, 4, false, false, 0, 0), -1);
              }).Says("Trying to use non-existing surface."));

  const int background = background_add("strip.png", false, true);
  EXPECT_EQ(background_get_width(background), 12);
  EXPECT_TRUE(background_delete(background));
  Files_ResetLocations();
}

TEST(BackgroundDraw, MadeFromASurfaceAndDeleted) {
  RecordingStage stage;
  const int surface = surface_create(100, 60);
  stage.device.readBack = {9, 8, 7, 6};
  const int made = background_create_from_surface(surface, 0, 0, 100, 60, false, false);
  ASSERT_TRUE(background_exists(made));
  EXPECT_EQ(background_get_width(made), 100);
  EXPECT_EQ(Background_Find(made)->name, "__newbackground0");
  draw_background(made, 5, 6);
  draw_background_part(made, 10, 10, 20, 20, 0, 0);
  EXPECT_EQ(stage.Draws().size(), 1u);
  const int empty = background_create_from_surface(77, 0, 0, 10, 10, false, false);
  EXPECT_EQ(empty, made + 1); // the index is given even so
  draw_background(empty, 0, 0);
  EXPECT_TRUE(stage.Draws().empty());
  draw_background(made, 5, 6);
  stage.device.Forget();
  EXPECT_TRUE(background_delete(made)); // what was drawn with it is still drawn
  EXPECT_EQ(stage.device.Draws().size(), 1u);
  EXPECT_FALSE(background_exists(made));
  EXPECT_TRUE(ReportOf([&] {
                EXPECT_FALSE(background_delete(made));
              }).Says("Trying to delete non-existing background."));
  EXPECT_EQ(background_get_width(made), -1);

  stage.device.maxTexture = 64;
  stage.device.readBack.clear();
  const int cut = background_create_from_surface(surface, 0, 0, 100, 60, false, false);
  EXPECT_EQ(background_get_width(cut), 64);
}

} // namespace
} // namespace vesk::test
