// Round and cornered shapes and free primitives: which pixels they cover, on both devices.
#include "Files/Graphics/Shapes.h"

#include "Files/Background/Background.h"
#include "Files/Function/Function.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/DrawScreen.h"
#include "Files/Graphics/View.h"
#include "Files/Sprite/DrawSprite.h"
#include "tests/runner/code_Report.h"
#include "tests/runner/graphics_Picture.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vesk::test {
namespace {

class Shapes : public PictureTest {
protected:
  Shapes() : PictureTest(64, 64) {}
  void SetUp() override {
    PictureTest::SetUp();
    if (stage) Clean();
  }
  static void Clean() {
    draw_clear(c_black);
    draw_set_colour(c_white);
  }
  void Look() { m_picture = Graphics_ReadBackBuffer(); }
  int Red(int x, int y) const { return m_picture.pixels[static_cast<size_t>(y * kWidth + x) * 4]; }
  bool Lit(int x, int y) const { return Red(x, y) > 127; }
  int Count() const {
    int count = 0;
    for (int y = 0; y < kHeight; ++y)
      for (int x = 0; x < kWidth; ++x) count += Lit(x, y);
    return count;
  }

private:
  WindowPicture m_picture;
};
INSTANTIATE_TEST_SUITE_P(Devices, Shapes, testing::Bool(), DeviceName);

TEST_P(Shapes, CirclesAndEllipsesLieAboutTheirPixels) {
  draw_set_circle_precision(64);
  draw_circle(30, 20, 10, false);
  Look();
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x) {
      const double distance = std::hypot(x - 30, y - 20);
      if (std::fabs(distance - 10) <= 1) continue; // the edge is a matter of segments
      EXPECT_EQ(Lit(x, y), distance < 10) << x << ", " << y;
    }
  Clean();
  draw_circle(30, 20, 10, true);
  Look();
  EXPECT_FALSE(Lit(30, 20));
  EXPECT_TRUE(Lit(30, 10) && Lit(30, 30) && Lit(20, 20) && Lit(40, 20));
  Clean();
  draw_ellipse(10, 40, 50, 50, false);
  Look();
  EXPECT_TRUE(Lit(11, 45) && Lit(49, 45) && Lit(30, 40) && Lit(30, 50));
  EXPECT_FALSE(Lit(12, 41) || Lit(9, 45) || Lit(51, 45) || Lit(30, 39));
}

TEST_P(Shapes, RoundRectanglesTrianglesAndArrows) {
  draw_roundrect(40, 30, 5, 5, false); // corners in any order
  Look();
  EXPECT_FALSE(Lit(5, 5) || Lit(40, 30) || Lit(6, 6));
  EXPECT_TRUE(Lit(20, 5) && Lit(20, 30) && Lit(5, 17) && Lit(40, 17));
  EXPECT_FALSE(Lit(20, 31) || Lit(41, 17));
  Clean();
  draw_triangle(10, 10, 30, 10, 10, 30, false);
  Look();
  EXPECT_TRUE(Lit(12, 12) && Lit(18, 18));
  EXPECT_FALSE(Lit(22, 22) || Lit(9, 12));
  Clean();
  draw_arrow(5, 20, 45, 20, 12);
  Look();
  EXPECT_TRUE(Lit(8, 20) && Lit(35, 22));
  EXPECT_FALSE(Lit(20, 22) || Lit(35, 26));
}

TEST_P(Shapes, ColoursRunFromCornerToCorner) {
  draw_rectangle_colour(0, 0, 63, 63, c_black, c_white, c_white, c_black, false);
  Look();
  EXPECT_LT(Red(2, 30), 16);
  EXPECT_GT(Red(61, 30), 239);
  EXPECT_NEAR(Red(32, 10), 128, 6);
  EXPECT_EQ(draw_get_colour(), c_white);
  Clean();
  draw_circle_colour(32, 32, 20, c_white, c_black, false);
  Look();
  EXPECT_GT(Red(32, 32), 230);
  EXPECT_NEAR(Red(42, 32), 128, 16);
}

TEST_P(Shapes, HealthBarsFillFromTheirSide) {
  const struct {
    int direction, litX, litY, darkX, darkY;
  } cases[] = {{0, 12, 25, 48, 25}, {1, 48, 25, 12, 25}, {2, 30, 22, 30, 28}, {3, 30, 28, 30, 22}};
  for (const auto& it : cases) {
    Clean();
    draw_healthbar(10, 20, 50, 30, 50, c_blue, c_white, c_white, it.direction, true, false);
    Look();
    EXPECT_TRUE(Lit(it.litX, it.litY)) << it.direction;
    EXPECT_FALSE(Lit(it.darkX, it.darkY)) << it.direction;
  }
  Clean();
  draw_healthbar(10, 20, 50, 30, 0, c_black, c_white, c_white, 0, true, true);
  Look();
  EXPECT_EQ(Count(), 0);
}

TEST_P(Shapes, FreePrimitivesPlainColouredAndTextured) {
  draw_primitive_begin(pr_trianglestrip);
  draw_vertex(10, 10);
  draw_vertex(20, 10);
  draw_vertex_colour(10, 20, c_white, 1);
  draw_vertex(20, 20);
  draw_primitive_end();
  Look();
  EXPECT_EQ(Count(), 100);
  Clean();
  draw_primitive_begin_texture(pr_trianglefan, stage->page);
  draw_vertex_texture(0, 0, 0, 0);
  draw_vertex_texture(32, 0, 0.5f, 0);
  draw_vertex_texture(32, 32, 0.5f, 0.5f);
  draw_vertex_texture(0, 32, 0, 0.5f);
  draw_primitive_end();
  Look();
  for (const int at : {1, 9, 30}) EXPECT_EQ(Red(at, 12), PagePixel(at, 12)[0]);
  EXPECT_TRUE(ReportOf([] { draw_primitive_end(); }).Says("draw_primitive_end without"));
  EXPECT_TRUE(ReportOf([] { draw_vertex(1, 1); }).Says("outside draw_primitive_begin"));
  EXPECT_TRUE(ReportOf([] { draw_primitive_begin(9); }).Says("no primitive of kind 9"));
}

// A line of some width lies half on each side of its segment; nothing is added to it.
TEST_P(Shapes, WideLinesLieAboutTheSegment) {
  draw_line_width(10, 20, 30, 20, 4);
  draw_line_width(40, 40, 40, 40, 4);
  Look();
  EXPECT_EQ(Count(), 20 * 4);
  EXPECT_TRUE(Lit(10, 18) && Lit(29, 21));
  EXPECT_FALSE(Lit(10, 22) || Lit(30, 20));
}

} // namespace
} // namespace vesk::test
