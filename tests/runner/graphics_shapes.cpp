// Round and cornered shapes and free primitives: which pixels they cover, on the software device.
#include "Files/Graphics/Shapes.h"

#include "Files/Background/Background.h"
#include "Files/Function/Function.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/DrawScreen.h"
#include "Files/Graphics/View.h"
#include "Files/Sprite/DrawSprite.h"
#include "tests/runner/code_Report.h"
#include "tests/runner/graphics_Stage.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vesk::test {
namespace {

constexpr int kSide = 64;

struct ShapeStage : Stage {
  ShapeStage() : Stage(RenderDevice_MakeSoftware(kSide, kSide), kSide, kSide) {
    SetViewport(0, 0, kSide, kSide);
    SetView(0, 0, kSide, kSide, 0);
    Clean();
  }
  void Clean() {
    draw_clear(c_black);
    draw_set_colour(c_white);
  }
  void Look() { picture = Graphics_ReadBackBuffer(); }
  int Red(int x, int y) const { return picture.pixels[static_cast<size_t>(y * kSide + x) * 4]; }
  bool Lit(int x, int y) const { return Red(x, y) > 127; }
  int Count() const {
    int count = 0;
    for (int y = 0; y < kSide; ++y)
      for (int x = 0; x < kSide; ++x) count += Lit(x, y);
    return count;
  }
  WindowPicture picture;
};

TEST(Shapes, CirclesAndEllipsesLieAboutTheirPixels) {
  ShapeStage stage;
  draw_set_circle_precision(64);
  draw_circle(30, 20, 10, false);
  stage.Look();
  for (int y = 0; y < kSide; ++y)
    for (int x = 0; x < kSide; ++x) {
      const double distance = std::hypot(x - 30, y - 20);
      if (std::fabs(distance - 10) <= 1) continue; // the edge is a matter of segments
      EXPECT_EQ(stage.Lit(x, y), distance < 10) << x << ", " << y;
    }
  stage.Clean();
  draw_circle(30, 20, 10, true);
  stage.Look();
  EXPECT_FALSE(stage.Lit(30, 20));
  EXPECT_TRUE(stage.Lit(30, 10) && stage.Lit(30, 30) && stage.Lit(20, 20) && stage.Lit(40, 20));
  stage.Clean();
  draw_ellipse(10, 40, 50, 50, false);
  stage.Look();
  EXPECT_TRUE(stage.Lit(11, 45) && stage.Lit(49, 45) && stage.Lit(30, 40) && stage.Lit(30, 50));
  EXPECT_FALSE(stage.Lit(12, 41) || stage.Lit(9, 45) || stage.Lit(51, 45) || stage.Lit(30, 39));
}

TEST(Shapes, RoundRectanglesTrianglesAndArrows) {
  ShapeStage stage;
  draw_roundrect(40, 30, 5, 5, false); // corners in any order
  stage.Look();
  EXPECT_FALSE(stage.Lit(5, 5) || stage.Lit(40, 30) || stage.Lit(6, 6));
  EXPECT_TRUE(stage.Lit(20, 5) && stage.Lit(20, 30) && stage.Lit(5, 17) && stage.Lit(40, 17));
  EXPECT_FALSE(stage.Lit(20, 31) || stage.Lit(41, 17));
  stage.Clean();
  draw_triangle(10, 10, 30, 10, 10, 30, false);
  stage.Look();
  EXPECT_TRUE(stage.Lit(12, 12) && stage.Lit(18, 18));
  EXPECT_FALSE(stage.Lit(22, 22) || stage.Lit(9, 12));
  stage.Clean();
  draw_arrow(5, 20, 45, 20, 12);
  stage.Look();
  EXPECT_TRUE(stage.Lit(8, 20) && stage.Lit(35, 22));
  EXPECT_FALSE(stage.Lit(20, 22) || stage.Lit(35, 26));
}

TEST(Shapes, ColoursRunFromCornerToCorner) {
  ShapeStage stage;
  draw_rectangle_colour(0, 0, 63, 63, c_black, c_white, c_white, c_black, false);
  stage.Look();
  EXPECT_LT(stage.Red(2, 30), 16);
  EXPECT_GT(stage.Red(61, 30), 239);
  EXPECT_NEAR(stage.Red(32, 10), 128, 6);
  EXPECT_EQ(draw_get_colour(), c_white);
  stage.Clean();
  draw_circle_colour(32, 32, 20, c_white, c_black, false);
  stage.Look();
  EXPECT_GT(stage.Red(32, 32), 230);
  EXPECT_NEAR(stage.Red(42, 32), 128, 16);
}

TEST(Shapes, HealthBarsFillFromTheirSide) {
  ShapeStage stage;
  const struct {
    int direction, litX, litY, darkX, darkY;
  } cases[] = {{0, 12, 25, 48, 25}, {1, 48, 25, 12, 25}, {2, 30, 22, 30, 28}, {3, 30, 28, 30, 22}};
  for (const auto& it : cases) {
    stage.Clean();
    draw_healthbar(10, 20, 50, 30, 50, c_blue, c_white, c_white, it.direction, true, false);
    stage.Look();
    EXPECT_TRUE(stage.Lit(it.litX, it.litY)) << it.direction;
    EXPECT_FALSE(stage.Lit(it.darkX, it.darkY)) << it.direction;
  }
  stage.Clean();
  draw_healthbar(10, 20, 50, 30, 0, c_black, c_white, c_white, 0, true, true);
  stage.Look();
  EXPECT_EQ(stage.Count(), 0);
}

TEST(Shapes, FreePrimitivesPlainColouredAndTextured) {
  ShapeStage stage;
  draw_primitive_begin(pr_trianglestrip);
  draw_vertex(10, 10);
  draw_vertex(20, 10);
  draw_vertex_colour(10, 20, c_white, 1);
  draw_vertex(20, 20);
  draw_primitive_end();
  stage.Look();
  EXPECT_EQ(stage.Count(), 100);
  stage.Clean();
  draw_primitive_begin_texture(pr_trianglefan, stage.page);
  draw_vertex_texture(0, 0, 0, 0);
  draw_vertex_texture(32, 0, 0.5f, 0);
  draw_vertex_texture(32, 32, 0.5f, 0.5f);
  draw_vertex_texture(0, 32, 0, 0.5f);
  draw_primitive_end();
  stage.Look();
  for (const int at : {1, 9, 30}) EXPECT_EQ(stage.Red(at, 12), PagePixel(at, 12)[0]);
  EXPECT_TRUE(ReportOf([] { draw_primitive_end(); }).Says("draw_primitive_end without"));
  EXPECT_TRUE(ReportOf([] { draw_vertex(1, 1); }).Says("outside draw_primitive_begin"));
  EXPECT_TRUE(ReportOf([] { draw_primitive_begin(9); }).Says("no primitive of kind 9"));
}

// A line of some width lies half on each side of its segment; nothing is added to it.
TEST(Shapes, WideLinesLieAboutTheSegment) {
  ShapeStage stage;
  draw_line_width(10, 20, 30, 20, 4);
  draw_line_width(40, 40, 40, 40, 4);
  stage.Look();
  EXPECT_EQ(stage.Count(), 20 * 4);
  EXPECT_TRUE(stage.Lit(10, 18) && stage.Lit(29, 21));
  EXPECT_FALSE(stage.Lit(10, 22) || stage.Lit(30, 20));
}

} // namespace
} // namespace vesk::test
