// Whole pictures: drawn on the CPU and, where there is OpenGL, on it; both against pixels worked out here by
// hand.
#include "Files/Background/DrawBackground.h"
#include "Files/Font/Font.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/DrawScreen.h"
#include "Files/Graphics/PngImage.h"
#include "Files/Graphics/Shader.h"
#include "Files/Graphics/Shapes.h"
#include "Files/Graphics/Surface.h"
#include "Files/Graphics/Texture.h"
#include "Files/Graphics/View.h"
#include "Files/Sprite/DrawSprite.h"
#include "Platform/Files.h"
#include "tests/runner/graphics_Picture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace vesk::test {
namespace {

Rgba Normal(Rgba source, Rgba old) {
  Rgba result;
  for (size_t i = 0; i < 4; ++i)
    result[i] = RoundToByte((source[i] * source[3] + old[i] * (255 - source[3])) / 255.0);
  return result;
}

class Pictures : public PictureTest {
protected:
  Pictures() : PictureTest(96, 80) {}
};
INSTANTIATE_TEST_SUITE_P(Devices, Pictures, testing::Bool(), DeviceName);

// What only a device with programs can draw.
class ShaderPictures : public Pictures {};
INSTANTIATE_TEST_SUITE_P(Devices, ShaderPictures, testing::Values(true), DeviceName);

TEST_P(Pictures, OpaqueSpritesMapTexelsToPixels) {
  const int sprite = stage->Piece(2, 3, 20, 16);
  draw_sprite(nullptr, sprite, 0, 10, 12);
  draw_sprite_ext(nullptr, sprite, 0, 90, 40, -1, 1, 0, c_white, 1);
  draw_sprite_part(nullptr, sprite, 0, 5, 4, 6, 7, 60, 5);
  draw_sprite_ext(nullptr, sprite, 0, 4, 40, 2, 2, 0, c_white, 1);
  Canvas canvas = NewCanvas();
  canvas.Fill(10, 12, 30, 28, [](int x, int y, Rgba) { return PagePixel(2 + x, 3 + y); });
  canvas.Fill(70, 40, 90, 56, [](int x, int y, Rgba) { return PagePixel(2 + 19 - x, 3 + y); });
  canvas.Fill(60, 5, 66, 12, [](int x, int y, Rgba) { return PagePixel(7 + x, 7 + y); });
  canvas.Fill(4, 40, 44, 72, [](int x, int y, Rgba) { return PagePixel(2 + x / 2, 3 + y / 2); });
  Expect(canvas, 0);
}

TEST_P(Pictures, BlendModes) {
  const int sprite = stage->Piece(40, 3, 16, 16); // alpha 128
  draw_set_colour(make_colour_rgb(100, 150, 30));
  draw_rectangle(0, 0, 95, 79, false);
  Canvas canvas = NewCanvas();
  canvas.Fill(0, 0, kWidth, kHeight, [](int, int, Rgba) { return Rgba{100, 150, 30, 255}; });
  const auto each = [&](int mode, int x, const std::function<double(double s, double a, double d)>& blend) {
    draw_set_blend_mode(mode);
    draw_sprite(nullptr, sprite, 0, static_cast<float>(x), 10);
    canvas.Fill(x, 10, x + 16, 26, [&](int px, int py, Rgba old) {
      const Rgba source = PagePixel(40 + px, 3 + py);
      Rgba result = old;
      for (size_t i = 0; i < 3; ++i)
        result[i] = RoundToByte(255 * blend(source[i] / 255.0, source[3] / 255.0, old[i] / 255.0));
      return result;
    });
  };
  each(bm_normal, 0, [](double s, double a, double d) { return s * a + d * (1 - a); });
  each(bm_add, 20, [](double s, double a, double d) { return s * a + d; });
  each(bm_max, 40, [](double s, double a, double d) { return s * a + d * (1 - s); });
  each(bm_subtract, 60, [](double s, double, double d) { return d * (1 - s); });
  draw_set_blend_mode(bm_normal);
  draw_enable_alphablend(false);
  draw_sprite(nullptr, sprite, 0, 0, 40);
  canvas.Fill(0, 40, 16, 56, [](int x, int y, Rgba) { return PagePixel(40 + x, 3 + y); });
  draw_enable_alphablend(true);
  draw_set_colour_write_enable(true, false, false, true);
  draw_set_colour(c_white);
  draw_rectangle(20, 40, 29, 49, false);
  draw_set_colour_write_enable(true, true, true, true);
  canvas.Fill(20, 40, 30, 50, [](int, int, Rgba old) { return Rgba{255, old[1], old[2], 255}; });
  draw_set_alpha_test(true);
  draw_set_alpha_test_ref_value(200);
  draw_sprite(nullptr, sprite, 0, 60, 40); // all of it below
  draw_set_alpha_test(false);
  Expect(canvas, 1);
}

TEST_P(Pictures, ShapesCoverTheirEndPixels) {
  draw_set_colour(c_white);
  draw_rectangle(20, 12, 10, 5, false); // corners in any order
  draw_rectangle(30, 5, 40, 12, true);
  draw_line(50, 5, 60, 5);
  draw_point(70, 5);
  Canvas canvas = NewCanvas();
  const auto white = [](int, int, Rgba) { return Rgba{255, 255, 255, 255}; };
  canvas.Fill(10, 5, 21, 13, white);
  canvas.Fill(30, 5, 41, 13, white);
  canvas.Fill(31, 6, 40, 12, [](int, int, Rgba) { return Rgba{0, 0, 0, 255}; });
  canvas.Fill(50, 5, 60, 6, white); // a line leaves its last pixel free
  canvas.Fill(70, 5, 71, 6, white);
  Expect(canvas, 0);
}

TEST_P(Pictures, ViewsScaleAndPortsClip) {
  const int sprite = stage->Piece(0, 0, 32, 32);
  SetViewport(16, 8, 48, 48);
  SetView(100, 200, 24, 24, 0);
  draw_clear(c_red);
  draw_sprite(nullptr, sprite, 0, 104, 204);
  Canvas canvas = NewCanvas();
  canvas.Fill(16, 8, 64, 56, [](int x, int y, Rgba) {
    return x < 8 || y < 8 ? Rgba{255, 0, 0, 255} : PagePixel((x - 8) / 2, (y - 8) / 2);
  });
  Expect(canvas, 0);
}

TEST_P(Pictures, SurfacesStandUprightAndKeepTheirAlpha) {
  const int sprite = stage->Piece(0, 0, 20, 20), glass = stage->Piece(40, 0, 20, 20);
  const int surface = surface_create(40, 24);
  ASSERT_TRUE(surface_set_target(surface));
  draw_clear_alpha(c_black, 0);
  draw_sprite(nullptr, sprite, 0, 2, 1);
  draw_sprite(nullptr, glass, 0, 22, 1);
  draw_set_colour(c_lime);
  draw_rectangle(0, 23, 39, 23, false); // the last row
  surface_reset_target();
  const std::vector<uint8_t> read = ReadSurfaceRect(surface, 2, 1, 1, 1);
  ASSERT_EQ(read.size(), 4u);
  EXPECT_EQ((Rgba{read[0], read[1], read[2], read[3]}), PagePixel(0, 0));
  const std::vector<uint8_t> thin = ReadSurfaceRect(surface, 30, 10, 1, 1);
  EXPECT_NEAR(thin[3], 128.0 * 128 / 255, 1); // the alpha is blended as the colours are
  draw_surface(surface, 10, 30);
  Canvas canvas = NewCanvas();
  canvas.Fill(12, 31, 32, 51, [](int x, int y, Rgba) { return PagePixel(x, y); });
  canvas.Fill(32, 31, 50, 51, [](int x, int y, Rgba old) {
    const Rgba glassy = Normal(PagePixel(40 + x, y), {0, 0, 0, 0});
    return Normal(glassy, old);
  });
  canvas.Fill(10, 53, 50, 54, [](int, int, Rgba) { return Rgba{0, 255, 0, 255}; });
  Expect(canvas, 1);
}

// The source is what the surface held before, and the draw itself goes on top.
TEST_P(Pictures, ASurfaceDrawnIntoItselfShowsWhatItHeld) {
  const int surface = surface_create(32, 16);
  surface_set_target(surface);
  draw_clear_alpha(c_black, 0);
  draw_sprite(nullptr, stage->Piece(0, 0, 16, 16), 0, 0, 0);
  draw_surface_part(surface, 0, 0, 16, 16, 4, 0); // overlaps what it is read from
  FlushBatch();
  draw_surface_part(surface, 4, 0, 16, 16, 12, 0);
  surface_reset_target();
  draw_surface(surface, 10, 10);
  Canvas canvas = NewCanvas();
  const auto piece = [](int x, int y, Rgba) { return PagePixel(x, y); };
  canvas.Fill(10, 10, 26, 26, piece);
  canvas.Fill(14, 10, 30, 26, piece);
  canvas.Fill(22, 10, 38, 26, piece);
  Expect(canvas, 0);
}

TEST_P(Pictures, TurnedSpritesShowTheRightTexels) {
  const int sprite = stage->Piece(0, 0, 16, 8);
  draw_sprite_ext(nullptr, sprite, 0, 40, 60, 1, 1, 90, c_white, 1);
  Canvas canvas = NewCanvas(); // a quarter turn: x runs upward, y to the right
  canvas.Fill(40, 44, 48, 60, [](int x, int y, Rgba) { return PagePixel(15 - y, x); });
  Expect(canvas, 0);
}

TEST_P(ShaderPictures, TheContainersShaderSourcesDoWhatTheyShould) {
  std::string vertex, invert, water, bloom, blur;
  ASSERT_TRUE(File_ReadAll("assets/shaders/default.vert", vertex));
  ASSERT_TRUE(File_ReadAll("assets/shaders/sha_invert.frag", invert));
  ASSERT_TRUE(File_ReadAll("assets/shaders/sha_bloom.frag", bloom));
  ASSERT_TRUE(File_ReadAll("assets/shaders/sha_blur.frag", blur));
  ASSERT_TRUE(File_ReadAll("assets/shaders/sha_water.frag", water));
  const int inverting = Shader_Load("sha_invert", 1, vertex, invert, {}),
            blooming = Shader_Load("sha_bloom", 1, vertex, bloom, {});
  const int blurring = Shader_Load("sha_blur", 1, vertex, blur, {}),
            waving = Shader_Load("sha_water", 1, vertex, water, {});
  for (const int shader : {inverting, blooming, blurring, waving})
    EXPECT_TRUE(shader_is_compiled(shader)) << Shaders().table[static_cast<size_t>(shader)]->error;
  const int sprite = stage->Piece(0, 0, 20, 20);
  shader_set(inverting);
  draw_sprite(nullptr, sprite, 0, 5, 5);
  shader_set(blooming);
  draw_sprite(nullptr, sprite, 0, 30, 5);
  shader_set(waving);
  const int time = shader_get_uniform(waving, "time");
  ASSERT_GE(time, 0);
  // A phase of a quarter at v = 0: the cosine shifts by next to nothing over the few rows of the sprite.
  shader_set_uniform_f(time, 3.14159265f / 2 / 0.08f);
  draw_sprite(nullptr, stage->Piece(8, 0, 20, 1), 0, 60, 5);
  shader_reset();
  draw_sprite(nullptr, sprite, 0, 5, 40);
  Canvas canvas = NewCanvas();
  canvas.Fill(5, 5, 25, 25, [](int x, int y, Rgba) {
    const Rgba p = PagePixel(x, y);
    return Rgba{static_cast<uint8_t>(255 - p[0]), static_cast<uint8_t>(255 - p[1]),
                static_cast<uint8_t>(255 - p[2]), 255};
  });
  canvas.Fill(30, 5, 50, 25, [](int x, int y, Rgba) {
    const Rgba p = PagePixel(x, y);
    return Rgba{static_cast<uint8_t>(std::min(255, 2 * p[0])), static_cast<uint8_t>(std::min(255, 2 * p[1])),
                255, 255};
  });
  canvas.Fill(60, 5, 80, 6, [](int x, int y, Rgba) { return PagePixel(8 + x, y); });
  canvas.Fill(5, 40, 25, 60, [](int x, int y, Rgba) { return PagePixel(x, y); });
  Expect(canvas, 1);

  // The same in a target, which is drawn upside down inside.
  const int surface = surface_create(32, 32);
  surface_set_target(surface);
  shader_set(inverting);
  draw_sprite(nullptr, sprite, 0, 0, 0);
  shader_reset();
  surface_reset_target();
  const std::vector<uint8_t> pixel = ReadSurfaceRect(surface, 3, 17, 1, 1);
  EXPECT_EQ(pixel[1], 255 - PagePixel(3, 17)[1]);
}

// Seven taps, worked out apart: the page is 512 wide, so that a step of the shader is one texel.
TEST_P(ShaderPictures, TheBlurIsTheGaussianOfItsTaps) {
  std::string vertex, blur;
  ASSERT_TRUE(File_ReadAll("assets/shaders/default.vert", vertex));
  ASSERT_TRUE(File_ReadAll("assets/shaders/sha_blur.frag", blur));
  const auto red = [](int x) { return (x * 37 + x / 3 * 91) % 256; };
  std::vector<uint8_t> pixels;
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 512; ++x)
      for (const int channel : {red(x), x % 7 == 0 ? 255 : 0, 255 - red(x), 255})
        pixels.push_back(static_cast<uint8_t>(channel));
  PageEntry entry = stage->Entry(100, 0, 80, 4);
  entry.texture = static_cast<int16_t>(
      Texture_CreateFromPixels(512, 4, pixels.data(), static_cast<uint32_t>(pixels.size())));
  shader_set(Shader_Load("sha_blur", 1, vertex, blur, {}));
  draw_sprite(nullptr, stage->Sprite(80, 4, {entry}), 0, 8, 10);
  shader_reset();
  const auto blurred = [&](int at, size_t channel) {
    double x = 1 / (std::sqrt(2 * 3.14159265358979) * 2.0), y = std::exp(-0.5 / 4), sum = 0, weight = 0;
    const double z = y * y;
    const auto tap = [&](int texel) { return double(pixels[static_cast<size_t>(texel) * 4 + channel]); };
    for (int pair = 0; pair <= 3; ++pair) {
      if (pair > 0) {
        x *= y;
        y *= z;
      }
      sum += pair == 0 ? tap(at) * x : (tap(at - pair) + tap(at + pair)) * x;
      weight += pair == 0 ? x : 2 * x;
    }
    return RoundToByte(sum / weight);
  };
  Canvas canvas = NewCanvas();
  canvas.Fill(8, 10, 88, 14, [&](int x, int, Rgba) {
    return Rgba{blurred(100 + x, 0), blurred(100 + x, 1), blurred(100 + x, 2), 255};
  });
  Expect(canvas, 1);
}

// On a page of 512 the shift is up to two texels, by the row's v and the time.
TEST_P(ShaderPictures, TheWaterShiftsEveryRowByItsCosine) {
  std::string vertex, water;
  ASSERT_TRUE(File_ReadAll("assets/shaders/default.vert", vertex));
  ASSERT_TRUE(File_ReadAll("assets/shaders/sha_water.frag", water));
  std::vector<uint8_t> pixels;
  for (int y = 0; y < 64; ++y)
    for (int x = 0; x < 512; ++x)
      for (const int channel : {x % 256, y * 4, 255 - x % 256, 128})
        pixels.push_back(static_cast<uint8_t>(channel));
  PageEntry entry = stage->Entry(100, 0, 80, 64);
  entry.texture = static_cast<int16_t>(
      Texture_CreateFromPixels(512, 64, pixels.data(), static_cast<uint32_t>(pixels.size())));
  const int sprite = stage->Sprite(80, 64, {entry});
  const int shader = Shader_Load("sha_water", 1, vertex, water, {});
  for (const float time : {0.0f, 17.0f}) {
    draw_clear(c_black);
    shader_set(shader);
    shader_set_uniform_f(shader_get_uniform(shader, "time"), time);
    draw_sprite(nullptr, sprite, 0, 8, 10);
    shader_reset();
    Canvas canvas = NewCanvas();
    canvas.Fill(8, 10, 88, 74, [&](int x, int y, Rgba) {
      const double v = (y + 0.5) / 64,
                   u = (100 + x + 0.5) + std::cos(v * 8 + double(time) * 0.08) * 0.004 * 512;
      if (std::fabs(u - std::round(u)) < 0.05) return Rgba{0, 0, 0, 0}; // between two texels
      const auto red = static_cast<int>(u) % 256;
      return Rgba{static_cast<uint8_t>(red), static_cast<uint8_t>(y * 4), static_cast<uint8_t>(255 - red),
                  255};
    });
    Expect(canvas, 1);
  }
}

TEST_P(Pictures, TiledBackgroundsRepeatInBothDirections) {
  PageEntry entry = stage->Entry(2, 3, 10, 12);
  entry.targetX = 3; // cropped: a frame of 16 by 16
  entry.targetY = 2;
  entry.boundingWidth = entry.boundingHeight = 16;
  const int background = stage->Background(entry);
  draw_clear(c_blue);
  draw_background_tiled(background, -5, 7);
  Canvas canvas = NewCanvas();
  canvas.Fill(0, 0, kWidth, kHeight, [](int x, int y, Rgba) {
    const int u = (x + 5 + 160) % 16 - 3, v = (y - 7 + 160) % 16 - 2;
    return u >= 0 && u < 10 && v >= 0 && v < 12 ? PagePixel(2 + u, 3 + v) : Rgba{0, 0, 255, 255};
  });
  Expect(canvas, 0);
}

TEST_P(Pictures, StretchedPicturesCoverTheirBoxFromItsCorner) {
  const int sprite = stage->Piece(2, 3, 10, 6, 4, 4); // the origin doesn't count
  const int background = stage->Background(stage->Entry(12, 20, 8, 8));
  const int surface = surface_create(10, 6);
  surface_set_target(surface);
  draw_sprite(nullptr, sprite, 0, 4, 4);
  surface_reset_target();
  draw_sprite_stretched(nullptr, sprite, 0, 3, 5, 20, 18);
  draw_background_stretched(background, 30, 5, 16, 24);
  draw_surface_stretched(surface, 50, 5, 30, 12);
  draw_sprite_stretched(nullptr, sprite, 0, 3, 50, -20, 18); // no box, no picture
  draw_background_stretched(background, 30, 50, 16, 0);
  draw_surface_stretched(surface, 50, 50, 0, 12);
  Canvas canvas = NewCanvas();
  canvas.Fill(3, 5, 23, 23, [](int x, int y, Rgba) { return PagePixel(2 + x / 2, 3 + y / 3); });
  canvas.Fill(30, 5, 46, 29, [](int x, int y, Rgba) { return PagePixel(12 + x / 2, 20 + y / 3); });
  canvas.Fill(50, 5, 80, 17, [](int x, int y, Rgba) { return PagePixel(2 + x / 3, 3 + y / 2); });
  Expect(canvas, 0);
}

// A frame of 16 by 16 whose visible piece lies at (3, 2).
TEST_P(Pictures, PartsTilesAndCornersOfACroppedFrame) {
  PageEntry entry = stage->Entry(2, 3, 10, 12);
  entry.targetX = 3, entry.targetY = 2;
  entry.boundingWidth = entry.boundingHeight = 16;
  const int sprite = stage->Sprite(16, 16, {entry}, 8, 8);
  draw_sprite_part(nullptr, sprite, 0, 0, 0, 8, 9, 2, 2);
  draw_sprite_part_ext(nullptr, sprite, 0, 5, 4, 20, 20, 20, 2, 2, 2, c_white, 1);
  draw_sprite_part(nullptr, sprite, 0, 0, 0, 3, 16, 60, 2);             // the clear margin alone
  draw_sprite_pos(nullptr, sprite, 0, 90, 2, 70, 2, 70, 26, 90, 26, 1); // mirrored, twice as large
  Canvas canvas = NewCanvas();
  canvas.Fill(5, 4, 10, 11, [](int x, int y, Rgba) { return PagePixel(2 + x, 3 + y); });
  canvas.Fill(20, 2, 36, 22, [](int x, int y, Rgba) { return PagePixel(4 + x / 2, 5 + y / 2); });
  canvas.Fill(70, 2, 90, 26, [](int x, int y, Rgba) { return PagePixel(2 + (19 - x) / 2, 3 + y / 2); });
  Expect(canvas, 0);

  const int surface = surface_create(9, 7);
  surface_set_target(surface);
  draw_sprite(nullptr, stage->Piece(2, 3, 9, 7), 0, 0, 0);
  surface_reset_target();
  draw_surface_tiled(surface, 4, -3);
  canvas.Fill(0, 0, kWidth, kHeight,
              [](int x, int y, Rgba) { return PagePixel(2 + (x - 4 + 90) % 9, 3 + (y + 3) % 7); });
  draw_sprite_tiled(nullptr, sprite, 0, 1, 1);
  canvas.Fill(0, 0, kWidth, kHeight, [](int x, int y, Rgba old) {
    const int u = (x - 1 + 160) % 16 - 3, v = (y - 1 + 160) % 16 - 2;
    return u >= 0 && u < 10 && v >= 0 && v < 12 ? PagePixel(2 + u, 3 + v) : old;
  });
  Expect(canvas, 0);
}

// Four texels in a row, ten times as wide: mixed with their neighbours, and going round where asked.
TEST_P(Pictures, FilteringMixesNeighboursAndRepeatingGoesRound) {
  const int red[] = {0, 100, 200, 240};
  std::vector<uint8_t> pixels;
  for (const int value : red)
    for (const int channel : {value, 0, 0, 255}) pixels.push_back(static_cast<uint8_t>(channel));
  const int32_t texture = Texture_CreateFromPixels(4, 1, pixels.data(), 16);
  PageEntry entry = stage->Entry(0, 0, 4, 1);
  entry.texture = static_cast<int16_t>(texture);
  const int sprite = stage->Sprite(4, 1, {entry});
  texture_set_interpolation(true);
  draw_sprite_stretched(nullptr, sprite, 0, 10, 5, 40, 8);
  FlushBatch();
  texture_set_interpolation(false);
  texture_set_repeat(true);
  draw_set_colour(c_white);
  draw_primitive_begin_texture(pr_trianglestrip, texture);
  draw_vertex_texture(10, 30, -1, 0);
  draw_vertex_texture(90, 30, 3, 0);
  draw_vertex_texture(10, 40, -1, 1);
  draw_vertex_texture(90, 40, 3, 1);
  draw_primitive_end();
  FlushBatch();
  texture_set_repeat(false);
  Canvas canvas = NewCanvas();
  canvas.Fill(10, 5, 50, 13, [&](int x, int, Rgba) {
    const double at = std::clamp((x + 0.5) / 10 - 0.5, 0.0, 3.0);
    const int left = std::min(static_cast<int>(at), 2);
    return Rgba{RoundToByte(red[left] + (red[left + 1] - red[left]) * (at - left)), 0, 0, 255};
  });
  canvas.Fill(10, 30, 90, 40, [&](int x, int, Rgba) {
    return Rgba{static_cast<uint8_t>(red[x / 5 % 4]), 0, 0, 255};
  });
  Expect(canvas, 2);
}

TEST_P(Pictures, CornerColoursRunThroughTheTriangles) {
  std::vector<uint8_t> pixels(4 * 64, 255);
  PageEntry entry = stage->Entry(0, 0, 8, 8);
  entry.texture = static_cast<int16_t>(Texture_CreateFromPixels(8, 8, pixels.data(), 256));
  const int sprite = stage->Sprite(8, 8, {entry});
  draw_sprite_general(nullptr, sprite, 0, 0, 0, 8, 8, 10, 8, 8, 8, 0, c_red, c_red, c_blue, c_blue, 1);
  draw_sprite_general(nullptr, sprite, 0, 0, 0, 8, 4, 90, 8, 1, 1, -90, c_lime, c_lime, c_lime, c_lime, 1);
  Canvas canvas = NewCanvas();
  canvas.Fill(10, 8, 74, 72, [&](int, int y, Rgba) {
    const double down = (y + 0.5) / 64;
    return Rgba{RoundToByte(255 * (1 - down)), 0, RoundToByte(255 * down), 255};
  });
  canvas.Fill(86, 8, 90, 16, [](int, int, Rgba) { return Rgba{0, 255, 0, 255}; }); // turned clockwise
  Expect(canvas, 1);
}

TEST_P(Pictures, BlendFactorsByName) {
  const int sprite = stage->Piece(40, 3, 16, 16); // alpha 128
  draw_set_colour(make_colour_rgb(100, 150, 30));
  draw_rectangle(0, 0, 95, 79, false);
  Canvas canvas = NewCanvas();
  canvas.Fill(0, 0, kWidth, kHeight, [](int, int, Rgba) { return Rgba{100, 150, 30, 255}; });
  const auto each = [&](int source, int destination, int x,
                        const std::function<double(double s, double a, double d)>& blend) {
    draw_set_blend_mode_ext(source, destination);
    draw_sprite(nullptr, sprite, 0, static_cast<float>(x), 10);
    canvas.Fill(x, 10, x + 16, 26, [&](int px, int py, Rgba old) {
      const Rgba from = PagePixel(40 + px, 3 + py);
      Rgba result = old;
      for (size_t i = 0; i < 3; ++i)
        result[i] = RoundToByte(255 * blend(from[i] / 255.0, from[3] / 255.0, old[i] / 255.0));
      return result;
    });
  };
  each(bm_dest_colour, bm_zero, 0, [](double s, double, double d) { return s * d; });
  each(bm_inv_dest_colour, bm_one, 20, [](double s, double, double d) { return s * (1 - d) + d; });
  each(bm_one, bm_inv_src_alpha, 40, [](double s, double a, double d) { return s + d * (1 - a); });
  each(bm_zero, bm_src_alpha, 60, [](double, double a, double d) { return d * a; });
  draw_set_blend_mode(bm_normal);
  Expect(canvas, 1);
}

// Two glyphs of a sprite font: twice as large, then turned by a quarter, with the second line to the right.
TEST_P(Pictures, TextOfASpriteFontStraightScaledAndTurned) {
  const int letters = stage->Sprite(8, 10, {stage->Entry(0, 0, 8, 10), stage->Entry(10, 20, 8, 10)});
  draw_set_font(font_add_sprite_ext(letters, "ab", false, 1)); // 9 from letter to letter
  draw_set_colour(c_white);
  draw_text(2, 2, "ab#b");
  draw_text_transformed(30, 2, "b a", 2, 3, 0);
  draw_text_transformed(4, 76, "ab#b", 2, 1, 90);
  Canvas canvas = NewCanvas();
  const auto a = [](int x, int y) { return PagePixel(x, y); };
  const auto b = [](int x, int y) { return PagePixel(10 + x, 20 + y); };
  canvas.Fill(2, 2, 10, 12, [&](int x, int y, Rgba) { return a(x, y); });
  canvas.Fill(11, 2, 19, 12, [&](int x, int y, Rgba) { return b(x, y); });
  canvas.Fill(2, 12, 10, 22, [&](int x, int y, Rgba) { return b(x, y); });
  canvas.Fill(30, 2, 46, 32, [&](int x, int y, Rgba) { return b(x / 2, y / 3); });
  canvas.Fill(66, 2, 82, 32, [&](int x, int y, Rgba) { return a(x / 2, y / 3); });
  // Turned, x runs upward and y to the right.
  canvas.Fill(4, 60, 14, 76, [&](int x, int y, Rgba) { return a((15 - y) / 2, x); });
  canvas.Fill(4, 42, 14, 58, [&](int x, int y, Rgba) { return b((15 - y) / 2, x); });
  canvas.Fill(14, 60, 24, 76, [&](int x, int y, Rgba) { return b((15 - y) / 2, x); });
  Expect(canvas, 0);
}

TEST_P(Pictures, TextInTheBuiltInFontReadsAsWritten) {
  draw_set_colour(c_yellow);
  draw_text(4, 4, "H!#L");
  const char* rows[] = {
      "#...#...#", "#...#...#", "#...#...#", "#####...#", "#...#...#", "#...#....", "#...#...#", ".........",
      "#........", "#........", "#........", "#........", "#........", "#........", "#####....",
  };
  Canvas canvas = NewCanvas();
  for (int y = 0; y < static_cast<int>(std::size(rows)); ++y)
    for (int x = 0; rows[y][x]; ++x)
      if (rows[y][x] == '#') canvas.At(4 + x, 4 + y) = {255, 255, 0, 255};
  Expect(canvas, 0);
}

TEST_P(Pictures, TextOfAPageFontIsThePiecesOfItsPage) {
  auto font = std::make_unique<CFontFb>();
  const PageEntry page = stage->Entry(0, 0, 64, 64);
  font->page = &page;
  font->height = 10;
  font->glyphs = {{'a', 4, 6, 7, 10, 9, 1}, {'b', 16, 20, 5, 10, 6, 0}};
  font->texelOffset = 0; // the page has no room between its pixels
  Fonts().table.push_back(std::move(font));
  draw_set_font(static_cast<int32_t>(Fonts().table.size()) - 1);
  draw_set_colour(c_white);
  draw_text(10, 12, "ab#b");
  Canvas canvas = NewCanvas();
  canvas.Fill(11, 12, 18, 22, [](int x, int y, Rgba) { return PagePixel(4 + x, 6 + y); });
  canvas.Fill(19, 12, 24, 22, [](int x, int y, Rgba) { return PagePixel(16 + x, 20 + y); });
  canvas.Fill(10, 22, 15, 32, [](int x, int y, Rgba) { return PagePixel(16 + x, 20 + y); });
  Expect(canvas, 0);
}

TEST(PngImage, RoundTripAndBrokenOnes) {
  PngImage image{3, 2, {}};
  for (int i = 0; i < 24; ++i) image.pixels.push_back(static_cast<uint8_t>(i * 10));
  std::string bytes, why;
  ASSERT_TRUE(Png_Encode(image, bytes, why));
  const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
  PngImage back;
  ASSERT_TRUE(Png_Decode(data, static_cast<uint32_t>(bytes.size()), back, why));
  EXPECT_EQ(back.pixels, image.pixels);
  for (uint32_t cut = 0; cut + 12 < bytes.size(); ++cut) {
    PngImage broken;
    EXPECT_FALSE(Png_Decode(data, cut, broken, why)) << cut;
    EXPECT_FALSE(why.empty());
  }
}

} // namespace
} // namespace vesk::test
