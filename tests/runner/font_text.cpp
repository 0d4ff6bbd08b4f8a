// Fonts from sprites, lines, widths and where glyphs land.
#include "Files/Font/Font.h"
#include "Files/Graphics/Draw.h"
#include "tests/runner/code_Report.h"
#include "tests/runner/graphics_Stage.h"

#include <gtest/gtest.h>

namespace vesk::test {
namespace {

// Glyphs of an 8 by 10 cell: "a" with columns 3 to 6, "b" with columns 0 to 7, "c" with columns 2 to 2.
struct FontStage : RecordingStage {
  FontStage() {
    const auto frame = [this](int x, int left, int width) {
      PageEntry entry = Entry(x, 0, width, 10);
      entry.targetX = static_cast<uint16_t>(left);
      entry.boundingWidth = 8;
      return entry;
    };
    sprite = RecordingStage::Sprite(8, 10, {frame(0, 3, 4), frame(8, 0, 8), frame(16, 2, 1)});
    font = font_add_sprite_ext(sprite, "abc", true, -1);
    draw_set_font(font);
  }
  int sprite, font;
  std::vector<Box> Glyphs() {
    std::vector<Box> boxes;
    for (const auto& draw : Draws())
      for (size_t i = 0; i < static_cast<size_t>(draw.count) / 6; ++i) boxes.push_back(QuadBox(draw, i));
    return boxes;
  }
};

TEST(SpriteFont, OfASpriteWithoutFrames) {
  RecordingStage stage;
  const int nothing = stage.Sprite(8, 10, {});
  draw_set_font(
      font_add_sprite_ext(nothing, "a ", true, 0)); // a blank is asked for, and there is no frame for it
  EXPECT_EQ(string_width("a a"), 0);
  draw_text(0, 0, "a a");
  draw_set_font(font_add_sprite_ext(nothing, "a", true, 0));
  EXPECT_EQ(string_height("a"), 10);
}

TEST(SpriteFont, AdvancesOffsetsAndTheBlank) {
  FontStage stage;
  const CFontFb& font = *Font_Find(stage.font);
  EXPECT_EQ(font.height, 10);
  EXPECT_EQ(font.FindGlyph('a')->advance, 3);
  EXPECT_EQ(font.FindGlyph('a')->offset, -3);
  EXPECT_EQ(font.FindGlyph('b')->advance, 7);
  EXPECT_EQ(font.FindGlyph('c')->advance, 0);
  EXPECT_EQ(font.FindGlyph(' ')->advance, 7); // that of the widest
  EXPECT_EQ(font.FindGlyph('z'), nullptr);
  EXPECT_EQ(font.first, ' ');
  EXPECT_EQ(font.last, ' ' + 4);

  const int fixed =
      font_add_sprite_ext(stage.sprite, "c ab", false, 2); // holds a blank; three frames for four
  const CFontFb& other = *Font_Find(fixed);
  EXPECT_EQ(other.glyphs.size(), 3u);
  EXPECT_EQ(other.FindGlyph(' ')->advance, 10);
  EXPECT_EQ(other.FindGlyph('a')->frame, 2);
  EXPECT_EQ(other.FindGlyph('b'), nullptr);
  EXPECT_EQ(other.assetName, "__newfont1");
  EXPECT_TRUE(ReportOf([] {
                EXPECT_EQ(font_add_sprite_ext(55, "a", true, 0), -1);
              }).Says("Trying to create font from non-existing sprite."));
  EXPECT_TRUE(ReportOf([] { font_delete(44); }).Says("Trying to delete non-existing font."));
  font_delete(fixed);
  EXPECT_FALSE(font_exists(fixed));
}

TEST(Text, SizesOfLines) {
  FontStage stage;
  const struct {
    const char* text;
    int width, height;
  } cases[] = {
      {"", 0, 0},           {"ab", 10, 10},    {"a#bb", 14, 20},  {"#a", 3, 20},
      {"a#", 3, 10},        {"a\\#b", 10, 10}, {"a\r\nb", 7, 20}, {"a\r\n", 3, 10},
      {"a\r\n\r\n", 3, 20}, {"a\n\nb", 7, 30}, {"xyz", 0, 10},    {"a zb", 17, 10},
  };
  for (const auto& it : cases) {
    EXPECT_EQ(string_width(it.text), it.width) << it.text;
    EXPECT_EQ(string_height(it.text), it.height) << it.text;
  }
  EXPECT_EQ(string_height_ext("a#b#c", 15, -1), 10 + 2 * 15);
}

TEST(Text, WrapsAtBlanksAndLeavesLongWordsWhole) {
  FontStage stage;
  const CFontFb& font = *Font_Find(stage.font);
  const auto split = [&](const char* text, int width) {
    std::string joined;
    for (const std::u16string& line : SplitLines(font, text, width)) {
      for (const char16_t c : line) joined += static_cast<char>(c);
      joined += '|';
    }
    return joined;
  };
  EXPECT_EQ(split("bb bb bb", 36), "bb bb|bb|");
  EXPECT_EQ(split("bbbbbbb b", 20), "bbbbbbb|b|");
  EXPECT_EQ(split("b bbbbbbb b", 20), "b|bbbbbbb|b|");
  EXPECT_EQ(split("bb#bb bb", 200), "bb|bb bb|");
  EXPECT_EQ(split("bb", 5), ""); // not even one character fits
  EXPECT_EQ(split("", 20), "");
}

TEST(Text, GlyphsLandOnThePen) {
  FontStage stage;
  draw_set_colour(c_lime);
  draw_text(100, 50, "ab c");
  const auto draws = stage.Draws();
  ASSERT_EQ(draws.size(), 1u);
  EXPECT_EQ(draws[0].count, 18);                            // the blank draws nothing
  EXPECT_EQ(QuadBox(draws[0], 0), (Box{100, 50, 104, 60})); // the first visible column on the pen
  EXPECT_EQ(QuadBox(draws[0], 1), (Box{103, 50, 111, 60}));
  EXPECT_EQ(QuadBox(draws[0], 2), (Box{117, 50, 118, 60}));
  EXPECT_EQ(Vertices(draws[0])[0].colour, 0xFF00FF00u);

  draw_set_halign(fa_center); // odd width 17: halved toward zero
  draw_set_valign(fa_middle);
  draw_text(100, 50, "ab b#b");
  auto glyphs = stage.Glyphs();
  ASSERT_EQ(glyphs.size(), 4u);
  EXPECT_EQ(glyphs[0].left, 100 - 24 / 2);
  EXPECT_EQ(glyphs[0].top, 40);
  EXPECT_EQ(glyphs[3].left, 97);
  EXPECT_EQ(glyphs[3].top, 50);
  draw_set_halign(fa_right);
  draw_set_valign(fa_bottom);
  draw_text(100, 50, "b");
  EXPECT_EQ(stage.Glyphs()[0], (Box{93, 40, 101, 50}));
  draw_set_halign(9);
  EXPECT_EQ(draw_get_halign(), 0);

  draw_text(0, 100, RValue(12.0)); // digits are not in the map: text of a number, no glyphs
  EXPECT_TRUE(stage.Glyphs().empty());
}

TEST(Text, TransformedScalesAndTurns) {
  FontStage stage;
  draw_text_transformed(100, 50, "bb#b", 2, 3, 0);
  auto glyphs = stage.Glyphs();
  EXPECT_EQ(glyphs[0], (Box{100, 50, 116, 80}));
  EXPECT_EQ(glyphs[1].left, 114);
  EXPECT_EQ(glyphs[2], (Box{100, 80, 116, 110}));
  draw_set_halign(fa_center);
  draw_text_transformed(100, 50, "b", 1, 1, 0);
  EXPECT_EQ(stage.Glyphs()[0].left, 96.5f); // on fractions here
  draw_set_halign(fa_left);
  draw_text_transformed(100, 100, "bb", 1, 1, 90);
  const auto v = Vertices(stage.Draws()[0]);
  EXPECT_NEAR(v[0].x, 100, 1e-3); // text runs upward
  EXPECT_NEAR(v[0].y, 100, 1e-3);
  EXPECT_NEAR(v[6].y, 93, 1e-3);
}

// A font of the data: glyphs on a page, each drawn with half a texel more on every side.
TEST(Text, PageFontsDrawTheirGlyphsFromThePage) {
  FontStage stage;
  auto font = std::make_unique<CFontFb>();
  const PageEntry page = stage.Entry(8, 4, 40, 20);
  font->page = &page;
  font->height = 9;
  font->glyphs = {{'a', 2, 3, 5, 9, 6, 1}, {'b', 10, 3, 4, 9, 5, 0}, {9647, 20, 3, 4, 9, 5, 0}};
  Fonts().table.push_back(std::move(font));
  draw_set_font(static_cast<int32_t>(Fonts().table.size()) - 1);
  EXPECT_EQ(string_width("abz"), 16); // "z" is the box
  EXPECT_EQ(string_height("a#b"), 18);
  draw_set_colour(c_red);
  draw_set_alpha(0.5f);
  draw_text(100, 50, "ab z");
  const auto draws = stage.Draws();
  ASSERT_EQ(draws.size(), 1u);
  ASSERT_EQ(draws[0].count, 18) << "a blank only moves the pen";
  EXPECT_EQ(QuadBox(draws[0], 0), (Box{100.5f, 49.5f, 106.5f, 59.5f}));
  EXPECT_EQ(QuadTexture(draws[0], 0), (Box{9.5f, 6.5f, 15.5f, 16.5f}));
  EXPECT_EQ(QuadBox(draws[0], 1), (Box{105.5f, 49.5f, 110.5f, 59.5f}));
  EXPECT_EQ(QuadTexture(draws[0], 1), (Box{17.5f, 6.5f, 22.5f, 16.5f}));
  EXPECT_EQ(Vertices(draws[0])[0].colour, 0x7FFF0000u);
  draw_text_transformed(0, 0, "b", 2, 3, 0);
  EXPECT_EQ(stage.Glyphs()[0], (Box{-1, -1.5f, 9, 28.5f}));
}

TEST(Text, BuiltInFontServesWhenNoneIsChosen) {
  FontStage stage;
  draw_set_font(77);
  EXPECT_EQ(draw_get_font(), -1);
  EXPECT_EQ(string_width("Hi!"), 18);
  draw_text(10, 10, "Hi!");
  EXPECT_EQ(stage.Glyphs().size(), 3u);
  draw_set_font(stage.font);
  Sprites().table[static_cast<size_t>(stage.sprite)].reset();
  draw_text(10, 10, "abc"); // its sprite is gone: nothing drawn, widths stay
  EXPECT_TRUE(stage.Glyphs().empty());
  EXPECT_EQ(string_width("ab"), 10);
}

} // namespace
} // namespace vesk::test
