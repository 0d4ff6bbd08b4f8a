// Surfaces: ids, the stack of targets, reading back, loss, and what shaders see.
#include "Files/Base/Console.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/DrawScreen.h"
#include "Files/Graphics/PngImage.h"
#include "Files/Graphics/Shader.h"
#include "Files/Graphics/Surface.h"
#include "Files/Graphics/Texture.h"
#include "Files/Graphics/View.h"
#include "Files/Sprite/DrawSprite.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"
#include "tests/runner/code_Report.h"
#include "tests/runner/graphics_Stage.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

namespace vesk::test {
namespace {

using Kind = CRecordingDevice::Kind;

int TargetChanges(RecordingStage& stage) {
  int count = 0;
  for (const auto& call : stage.device.calls) count += call.kind == Kind::Target;
  stage.device.Forget();
  return count;
}

TEST(Surfaces, IdsGrowAndSizesRoundUpToPowersOfTwo) {
  RecordingStage stage;
  const int first = surface_create(384, 216);
  EXPECT_EQ(surface_get_width(first), 384);
  EXPECT_EQ(surface_get_height(first), 216);
  const TextureSlot* texture = Texture_Find(Surface_Find(first)->texture);
  EXPECT_EQ(texture->realWidth, 512);
  EXPECT_EQ(texture->realHeight, 256);
  surface_free(first);
  EXPECT_FALSE(surface_exists(first));
  const int second = surface_create(10, 10);
  EXPECT_GT(second, first);
  EXPECT_EQ(surface_get_width(first), -1);
  stage.device.failTextures = true;
  EXPECT_EQ(surface_create(10, 10), -1);
  EXPECT_FALSE(surface_exists(-1));
  EXPECT_TRUE(ReportOf([] {
                EXPECT_EQ(surface_create(0, 5), -1);
              }).Says("Can't create a surface with either a width or height of 0"));
  EXPECT_TRUE(ReportOf([&] { surface_resize(second, 0, 4); }).Says("Invalid surface dimensions"));
  EXPECT_TRUE(ReportOf([] { surface_resize(999, 4, 4); }).Says("Surface does not exist"));
  EXPECT_TRUE(ReportOf([] { draw_surface(999, 0, 0); }).Says("Trying to use non-existing surface."));
}

TEST(Surfaces, DrawnWholeAndInParts) {
  RecordingStage stage;
  const int surface = surface_create(384, 216);
  draw_surface(surface, 0, 0);
  auto draws = stage.Draws();
  EXPECT_EQ(QuadBox(draws[0]), (Box{0, 0, 384, 216}));
  EXPECT_FLOAT_EQ(Vertices(draws[0])[2].u, 0.75f);
  EXPECT_FLOAT_EQ(Vertices(draws[0])[2].v, 0.84375f);
  draw_surface_part(surface, 100, 50, 400, 20, 7, 8); // wider than what is left
  draws = stage.Draws();
  EXPECT_EQ(QuadBox(draws[0]), (Box{7, 8, 7 + 284, 28}));
  draw_surface_stretched(surface, 0, 0, 768, 432);
  EXPECT_EQ(QuadBox(stage.Draws()[0]), (Box{0, 0, 768, 432}));
}

TEST(SurfaceTargets, NestedAndSame) {
  RecordingStage stage;
  SetViewport(1, 2, 300, 200);
  SetView(10, 20, 300, 200, 30);
  const int a = surface_create(64, 32), b = surface_create(16, 16);
  stage.device.Forget();
  EXPECT_TRUE(surface_set_target(a));
  EXPECT_EQ(View().viewportW, 64);
  EXPECT_EQ(TargetChanges(stage), 1);
  EXPECT_TRUE(surface_set_target(a)); // in force already: the stack alone
  draw_rectangle(0, 0, 3, 3, false);
  EXPECT_EQ(TargetChanges(stage), 0);
  EXPECT_TRUE(surface_set_target(b));
  EXPECT_TRUE(surface_reset_target());
  EXPECT_EQ(View().viewportW, 64);
  EXPECT_EQ(TargetChanges(stage), 2);
  EXPECT_TRUE(surface_reset_target());
  EXPECT_EQ(TargetChanges(stage), 0);
  EXPECT_TRUE(surface_reset_target());
  EXPECT_EQ(TargetChanges(stage), 1);
  EXPECT_EQ(View().viewportX, 1);
  EXPECT_EQ(View().viewX, 10);
  EXPECT_EQ(View().viewAngle, 30);
  EXPECT_FALSE(surface_reset_target());
  EXPECT_FALSE(surface_set_target(999));
  EXPECT_TRUE(Surfaces().stack.empty());
}

TEST(SurfaceTargets, TheNinthNestedOneAndTheFortiethPush) {
  RecordingStage stage;
  std::vector<int> surfaces;
  for (int i = 0; i < 9; ++i) surfaces.push_back(surface_create(8, 8));
  for (int i = 0; i < 8; ++i) EXPECT_TRUE(surface_set_target(surfaces[static_cast<size_t>(i)]));
  EXPECT_TRUE(ReportOf([&] { EXPECT_FALSE(surface_set_target(surfaces[8])); }).Says("surface stack is full"));
  EXPECT_EQ(Surfaces().stack.size(), 9u); // out of balance
  EndFrame(false);
  EXPECT_TRUE(Surfaces().stack.empty());
  BeginFrame();
  for (int i = 0; i < 39; ++i) EXPECT_TRUE(surface_set_target(surfaces[0])) << i;
  EXPECT_FALSE(surface_set_target(surfaces[0]));
  EXPECT_EQ(Surfaces().stack.size(), 39u);
}

TEST(SurfaceTargets, FreeingTheCurrentTargetGoesBackFirst) {
  RecordingStage stage;
  const int surface = surface_create(64, 32);
  surface_set_target(surface);
  surface_free(surface);
  EXPECT_FALSE(surface_exists(surface));
  EXPECT_EQ(Surfaces().currentTarget[0], -1);
  EXPECT_TRUE(Surfaces().stack.empty());
  EXPECT_EQ(View().viewportW, 384);
}

TEST(Surfaces, ReadingOutsideGivesZeros) {
  RecordingStage stage;
  const int surface = surface_create(6, 6); // really 8 by 8
  stage.device.readBack = {50, 60, 70, 80};
  const auto at = [](const std::vector<uint8_t>& pixels, int width, int x, int y) {
    return pixels[static_cast<size_t>((y * width + x) * 4)];
  };
  const auto pixels = ReadSurfaceRect(surface, -2, 4, 12, 6);
  ASSERT_EQ(pixels.size(), 12u * 6 * 4);
  EXPECT_EQ(at(pixels, 12, 1, 0), 0);
  EXPECT_EQ(at(pixels, 12, 2, 0), 50);
  EXPECT_EQ(at(pixels, 12, 9, 3), 50);
  EXPECT_EQ(at(pixels, 12, 10, 3), 0);
  EXPECT_EQ(at(pixels, 12, 5, 4), 0);
  EXPECT_EQ(ReadSurfaceRect(surface, 100, 100, 2, 2), std::vector<uint8_t>(16));
  EXPECT_TRUE(ReadSurfaceRect(999, 0, 0, 1, 1).empty());
  EXPECT_TRUE(ReadSurfaceRect(surface, 0, 0, -1, 5).empty());
  EXPECT_EQ(surface_getpixel(surface, 0, 0), make_colour_rgb(50, 60, 70));
}

TEST(Surfaces, FormatsAreOneAndFurtherTargetsHaveNoPush) {
  RecordingStage stage;
  const int a = surface_create_special(4, 4, 2), b = surface_create_ext("b", 6, 4);
  EXPECT_EQ(surface_get_width(b), 6);
  EXPECT_TRUE(surface_set_target_ext(2, a));
  EXPECT_EQ(Surfaces().currentTarget[2], a);
  EXPECT_TRUE(Surfaces().stack.empty());
  EXPECT_TRUE(surface_set_target_ext(2, -1)); // and back
  EXPECT_EQ(Surfaces().currentTarget[2], -1);
  EXPECT_FALSE(surface_set_target_ext(4, a));
  EXPECT_FALSE(surface_set_target_ext(1, 999));
}

TEST(Surfaces, ADeviceWithOneTargetSaysSo) {
  Stage stage(RenderDevice_MakeSoftware(8, 8), 8, 8);
  const int only = surface_create(4, 4);
  testing::internal::CaptureStdout();
  Consoles().release = std::make_unique<TConsole>(TConsole::Stream::StandardOutput);
  EXPECT_FALSE(surface_set_target_ext(1, only));
  Console_Reset();
  EXPECT_NE(testing::internal::GetCapturedStdout().find("one colour target"), std::string::npos);
  EXPECT_EQ(Surfaces().currentTarget[1], -1);
}

TEST(Surfaces, ArePicturesInTheSaveArea) {
  Stage stage(RenderDevice_MakeSoftware(16, 16), 16, 16);
  const std::string folder = Directory_Temporary() + "vesk-surfaces/";
  Files_Locations().saveArea = folder;
  const int surface = surface_create(4, 3);
  surface_set_target(surface);
  draw_clear(make_colour_rgb(10, 20, 30));
  surface_reset_target();
  EXPECT_TRUE(surface_save(surface, "shots/one.png"));
  std::string bytes, why;
  PngImage image;
  ASSERT_TRUE(File_ReadAll(folder + "shots/one.png", bytes));
  ASSERT_TRUE(Png_Decode(reinterpret_cast<const uint8_t*>(bytes.data()), static_cast<uint32_t>(bytes.size()),
                         image, why));
  EXPECT_EQ(image.width, 4);
  EXPECT_EQ(image.height, 3);
  EXPECT_EQ(image.pixels[4], 10);
  EXPECT_TRUE(ReportOf([&] {
                EXPECT_FALSE(surface_save(surface, "/somewhere/else.png"));
              }).Says("outside the save area"));
  Files_ResetLocations();
}

TEST(Surfaces, AllAreLostWithTheDeviceAndTexturesStay) {
  RecordingStage stage;
  Screen().appSurface = surface_create(384, 216);
  surface_free(Screen().appSurface);
  EXPECT_TRUE(surface_exists(Screen().appSurface)); // not from a script
  const int surface = surface_create(20, 20);
  EndFrame(false);
  display_reset(0, false);
  Graphics_Settle();
  EXPECT_FALSE(surface_exists(surface));
  EXPECT_EQ(application_surface(), kNoSurface);
  EXPECT_NE(Texture_Get(stage.page), 0u);
  EXPECT_GT(surface_create(20, 20), surface);
}

// ---- shaders ----

struct ShaderStage : RecordingStage {
  ShaderStage() {
    device.programs["water"] = {{"fb_Matrices", 0, 16, 5, false, false, 0},
                                {"fb_BaseTexture", 5, 1, 1, true, true, 0},
                                {"_time", 6, 1, 1, false, false, 0},
                                {"offset", 7, 2, 3, false, false, 0}};
    plain = Shader_Load("plain", 1, "v", "plain", {});
    water = Shader_Load("water", 1, "v", "water", {});
  }
  int plain, water;
  int Count(Kind kind) const {
    int count = 0;
    for (const auto& call : device.calls) count += call.kind == kind;
    return count;
  }
};

TEST(Shaders, SetAndResetFlushOnlyWhenTheyChange) {
  ShaderStage stage;
  const int sprite = stage.Piece(0, 0, 8, 8);
  stage.device.Forget();
  draw_sprite(nullptr, sprite, 0, 9, 9);
  shader_set(stage.plain);
  draw_sprite(nullptr, sprite, 0, 9, 9);
  shader_set(stage.plain); // in force already
  draw_sprite(nullptr, sprite, 0, 9, 9);
  shader_reset();
  EXPECT_EQ(shader_current(), -1);
  const auto draws = stage.Draws();
  ASSERT_EQ(draws.size(), 2u);
  EXPECT_EQ(draws[0].program, 0u);
  EXPECT_EQ(draws[1].count, 12);
  EXPECT_TRUE(ReportOf([] { shader_set(7); }).Says("Illegal shader handle"));
  EXPECT_TRUE(ReportOf([] { shader_get_name(9); }).Says("Illegal shader index 9"));
  EXPECT_EQ(shader_get_name(stage.water), "water");
}

TEST(Shaders, UniformsByNameAndTheirFlush) {
  ShaderStage stage;
  const int time =
      shader_get_uniform(stage.water, "time"); // the source's name, whatever the compiler puts before it
  EXPECT_EQ(time, 2);
  EXPECT_EQ(shader_get_uniform(stage.water, "nothing"), -1);
  EXPECT_EQ(shader_get_sampler_index(stage.water, "fb_BaseTexture"), 0);
  EXPECT_EQ(shader_get_sampler_index(stage.water, "time"), -1);
  const int sprite = stage.Piece(0, 0, 8, 8);
  shader_set(stage.water);
  stage.device.Forget();
  draw_sprite(nullptr, sprite, 0, 9, 9);
  shader_set_uniform_f(time, 2.5f);
  draw_sprite(nullptr, sprite, 0, 9, 9);
  shader_set_uniform_f(time, 2.5f); // the same value flushes as well
  draw_sprite(nullptr, sprite, 0, 9, 9);
  FlushBatch();
  EXPECT_EQ(stage.Count(Kind::Draw), 3);
  EXPECT_EQ(stage.Count(Kind::Uniform), 2);
  stage.device.Forget();

  shader_set_uniform_f(3, 4.0f); // the second number is 0
  ASSERT_EQ(stage.device.calls.size(), 1u);
  float values[2];
  ASSERT_EQ(stage.device.calls[0].data.size(), sizeof(values));
  std::memcpy(values, stage.device.calls[0].data.data(), sizeof(values));
  EXPECT_EQ(values[0], 4);
  EXPECT_EQ(values[1], 0);
  stage.device.Forget();
  shader_set_uniform_f(-1, 1.0f);
  shader_set_uniform_f(40, 1.0f);
  EXPECT_TRUE(stage.device.calls.empty());

  SetView(5, 5, 10, 10, 0); // the matrices follow
  EXPECT_GT(stage.Count(Kind::Uniform), 0);

  RValue words("text");
  EXPECT_TRUE(ReportOf([&] { shader_set_uniform_f(time, Args(&words, 1)); }).Says("Illegal argument type"));
  RValue array;
  for (int i = 0; i < 7; ++i) ArrayWrite(array, i, RValue(i));
  EXPECT_TRUE(ReportOf([&] { shader_set_uniform_f_array(3, array); }).Says("Illegal array count"));
  shader_reset();
  stage.device.Forget();
  shader_set_uniform_f(time, 1.0f); // no shader in use
  EXPECT_TRUE(stage.device.calls.empty());
}

TEST(Shaders, OneThatDoesNotCompileIsFatalWhenSet) {
  ShaderStage stage;
  stage.device.failCompileWith = "line 3: what is this";
  const int broken = Shader_Load("broken", 1, "v", "f", {});
  const int missing = Shader_Load("missing", 1, "", "", {});
  EXPECT_FALSE(Error().occurred); // nothing stops the game at load
  EXPECT_FALSE(shader_is_compiled(broken));
  EXPECT_EQ(Shaders().table[static_cast<size_t>(broken)]->error,
            "Error in fragment shader \"broken\"\n\n line 3: what is this\n");
  EXPECT_EQ(Shaders().table[static_cast<size_t>(missing)]->error, "Invalid shader");
  const Report report = ReportOf([&] { shader_set(broken); });
  EXPECT_TRUE(report.fatal);
  EXPECT_TRUE(report.Says("Fragment Shader compilation\n\nShaderName: "));
  EXPECT_EQ(shader_current(), -1);
}

} // namespace
} // namespace vesk::test
