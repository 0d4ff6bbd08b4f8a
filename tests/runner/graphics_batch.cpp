// The batch and the state cache: what joins, what breaks, what reaches the device and when.
#include "Files/Base/Error.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/RenderState.h"
#include "Files/Graphics/Surface.h"
#include "Files/Graphics/Texture.h"
#include "Files/Sprite/DrawSprite.h"
#include "tests/runner/graphics_Stage.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace vesk::test {
namespace {

using Kind = CRecordingDevice::Kind;

int StateCalls(const CRecordingDevice& device) {
  int count = 0;
  for (const auto& call : device.calls) count += call.kind == Kind::State || call.kind == Kind::Sampler;
  return count;
}

TEST(Batch, WhatJoinsAndWhatBreaks) {
  RecordingStage stage;
  const int sprite = stage.Piece(0, 0, 16, 16);
  struct Case {
    const char* name;
    std::function<void()> between;
    size_t draws;
  };
  const Case cases[] = {
      {"nothing", [] {}, 1},
      {"a blend mode that was set already", [] { draw_set_blend_mode(bm_normal); }, 1},
      {"another blend mode", [] { draw_set_blend_mode(bm_add); }, 2},
      {"blending off and on again",
       [] {
         draw_enable_alphablend(false);
         draw_enable_alphablend(true);
       },
       1},
      {"colour and alpha", [] { draw_set_colour(c_red), draw_set_alpha(0.5f); }, 1},
      {"a flush", [] { FlushBatch(); }, 2},
      {"another texture", [] { draw_rectangle(0, 0, 1, 1, false); }, 3},
      {"another format", [] { draw_line(0, 0, 5, 5); }, 3},
      {"a clear", [] { draw_clear(0); }, 2},
  };
  for (const Case& it : cases) {
    draw_sprite(nullptr, sprite, 0, 10, 10);
    it.between();
    draw_sprite(nullptr, sprite, 0, 40, 10);
    EXPECT_EQ(stage.Draws().size(), it.draws) << it.name;
    draw_set_blend_mode(bm_normal);
    FlushBatch();
    stage.device.Forget();
  }
}

TEST(Batch, StripsAndFansStandAloneListsJoin) {
  RecordingStage stage;
  draw_rectangle(0, 0, 9, 9, true); // a strip and a list of points
  draw_rectangle(0, 0, 9, 9, true);
  const auto outlines = stage.Draws();
  ASSERT_EQ(outlines.size(), 4u);
  EXPECT_EQ(outlines[0].primitive, pr_linestrip);
  EXPECT_EQ(outlines[0].count, 5);
  EXPECT_EQ(outlines[1].primitive, pr_pointlist);
  EXPECT_EQ(outlines[1].count, 4);

  AllocVerts<ShapeVertex>(pr_linestrip, 1, 3);
  AllocVerts<ShapeVertex>(pr_linestrip, 1, 3);
  AllocVerts<ShapeVertex>(pr_trianglefan, 1, 4);
  AllocVerts<ShapeVertex>(pr_trianglestrip, 1, 4);
  EXPECT_EQ(stage.Draws().size(), 4u);

  draw_line(0, 0, 9, 0);
  draw_line(0, 1, 9, 1);
  draw_line_width(0, 0, 0, 0, 4); // no length: nothing
  const auto lines = stage.Draws();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].count, 4);
}

TEST(Batch, TwoThousandSpritesOfAPageAreOneDrawCall) {
  RecordingStage stage;
  const int sprite = stage.Piece(0, 0, 16, 16);
  for (int i = 0; i < 2000; ++i)
    draw_sprite(nullptr, sprite, 0, static_cast<float>(i % 380), static_cast<float>(i % 200));
  const auto draws = stage.Draws();
  ASSERT_EQ(draws.size(), 1u);
  EXPECT_EQ(draws[0].count, 2000 * 6);
  EXPECT_EQ(Batch().frame.quads, 2000u);
  EndFrame(false);
  EXPECT_EQ(Batch().lastFrame.batches, 1u);
  EXPECT_EQ(Batch().frame.quads, 0u);
}

TEST(Batch, RingWrapsDiscardsAndDoubles) {
  RecordingStage stage;
  const int quads = static_cast<int>(kRingBytes) / (6 * 24);
  stage.device.discards = 0;
  for (int i = 0; i < quads + 10; ++i) AllocVerts<TexturedVertex>(pr_trianglelist, 1, 6);
  const auto draws = stage.Draws();
  ASSERT_EQ(draws.size(), 2u);
  EXPECT_EQ(draws[0].count, quads * 6);
  EXPECT_EQ(draws[1].count, 60);
  EXPECT_EQ(stage.device.discards, 2); // the first mapping and the one after the wrap
  EndFrame(false);
  BeginFrame();
  AllocVerts<TexturedVertex>(pr_trianglelist, 1, 6); // the ring goes on where it stood
  FlushBatch();
  EXPECT_EQ(stage.device.discards, 2);

  AllocVerts<TexturedVertex>(pr_trianglelist, 1, quads * 6 * 3); // more than the ring, more than twice of it
  FlushBatch();
  EXPECT_EQ(Batch_Statistics().buffers, 1);
  EXPECT_EQ(Batch_Statistics().bytes, int64_t{kRingBytes} * 4);
}

TEST(Batch, ListOfBuffersTakesOneThatRestedFourFrames) {
  RecordingStage stage;
  display_set_windows_vertex_buffer_method(1);
  const auto frame = [] {
    BeginFrame();
    AllocVerts<TexturedVertex>(pr_trianglelist, 1, 6);
    EndFrame(false);
  };
  for (int i = 0; i < 12; ++i) frame();
  // Each rests for five frames before it is taken again.
  EXPECT_EQ(stage.device.buffersMade, 5);
  BeginFrame();
  AllocVerts<ShapeVertex>(pr_linelist, 1, 2); // another format wants a buffer of its own
  AllocVerts<ShapeVertex>(pr_trianglelist, 1, kListCapacity + 3);
  FlushBatch();
  EXPECT_EQ(stage.device.buffersMade, 7);
  EXPECT_EQ(display_get_windows_vertex_buffer_method(), 1);
}

TEST(Batch, BuffersThatTakeOneBatchEach) {
  RecordingStage stage;
  Graphics().settings.oneBatchABuffer = true;
  display_set_windows_vertex_buffer_method(1);
  EndFrame(false);
  BeginFrame();
  for (int i = 0; i < 3; ++i) {
    AllocVerts<TexturedVertex>(pr_trianglelist, 1, 6);
    FlushBatch();
  }
  EXPECT_EQ(stage.device.buffersMade, 3);
  EXPECT_EQ(Batch_Statistics().bytes, int64_t{3} * kSingleCapacity * 24);
  EXPECT_EQ(stage.Draws().size(), 3u);
}

TEST(Batch, AFormatCodeGivesTheSizeOfItsVertices) {
  RecordingStage stage;
  // Position and texture coordinates: 20 bytes.
  AllocVertsBytes(pr_trianglelist, 1, kVertexPosition | kVertexTexture, 3);
  AllocVertsBytes(pr_trianglelist, 1, kVertexPosition | kVertexTexture, 3);
  AllocVertsBytes(pr_trianglelist, 1, 36, 3);
  const auto draws = stage.Draws();
  ASSERT_EQ(draws.size(), 2u);
  EXPECT_EQ(draws[0].stride, 20);
  EXPECT_EQ(draws[0].count, 6);
  EXPECT_EQ(draws[1].stride, 36);
  EXPECT_EQ(VertexStride(66), 16);
  EXPECT_EQ(VertexStride(322), 24);
  EXPECT_EQ(VertexStride(338), 36);
  EXPECT_EQ(VertexColourAt(338), 24);
}

TEST(Batch, AllMethodsDrawTheSameVertices) {
  for (const int method : {0, 1, 2}) {
    RecordingStage stage;
    display_set_windows_vertex_buffer_method(method);
    const int sprite = stage.Piece(4, 8, 16, 16);
    for (int i = 0; i < 3000; ++i) draw_sprite(nullptr, sprite, 0, static_cast<float>(i % 300), 7);
    size_t quads = 0;
    for (const auto& draw : stage.Draws())
      for (size_t i = 0; i < static_cast<size_t>(draw.count) / 6; ++i, ++quads)
        ASSERT_EQ(QuadBox(draw, i),
                  (Box{static_cast<float>(quads % 300), 7, static_cast<float>(quads % 300) + 16, 23}))
            << method;
    EXPECT_EQ(quads, 3000u) << method;
  }
}

TEST(Batch, ReturnedVerticesAreNotDrawn) {
  RecordingStage stage;
  AllocVerts<TexturedVertex>(pr_trianglelist, 1, 18);
  ReturnVerts(12);
  const auto draws = stage.Draws();
  ASSERT_EQ(draws.size(), 1u);
  EXPECT_EQ(draws[0].count, 6);
  AllocVerts<TexturedVertex>(pr_trianglelist, 1, 6);
  ReturnVerts(6);
  EXPECT_TRUE(stage.Draws().empty());
}

TEST(Batch, FallsBackOnPlainBuffersAndReportsWhenThereAreNone) {
  RecordingStage stage;
  display_set_windows_vertex_buffer_method(1);
  stage.device.failDynamicBuffers = true;
  AllocVerts<ShapeVertex>(pr_linelist, 1, 2);
  EXPECT_EQ(stage.Draws().size(), 1u);
  stage.device.failBuffers = true;
  AllocVerts<TexturedVertex>(pr_trianglelist, 1, 6);
  EXPECT_NE(Error().lastReport.find("Can not create vertex buffer of size 393216 bytes"), std::string::npos);
  EXPECT_EQ(stage.Draws().size(), 1u); // the frame goes on from client memory
}

TEST(Batch, NothingHappensWithoutADevice) {
  Graphics_Reset();
  for (int i = 0; i < 20000; ++i) AllocVerts<TexturedVertex>(pr_trianglelist, 1, 6);
  FlushBatch();
  draw_clear(0);
  draw_rectangle(0, 0, 5, 5, false);
  EXPECT_FALSE(surface_set_target(0));
  EXPECT_EQ(surface_create(8, 8), -1);
  EXPECT_EQ(Batch().total.batches, 0u);
  Graphics_Reset();
}

TEST(RenderStates, SentAtTheFlushAndOnlyWhenDifferent) {
  RecordingStage stage;
  draw_set_blend_mode(bm_subtract);
  EXPECT_EQ(StateCalls(stage.device), 0);
  FlushBatch();
  EXPECT_EQ(StateCalls(stage.device), 2); // both factors; the separate ones are only stored
  stage.device.Forget();
  draw_set_blend_mode(bm_normal);
  draw_set_blend_mode(bm_subtract);
  FlushBatch();
  EXPECT_EQ(StateCalls(stage.device), 0);
  draw_set_blend_mode(99); // unknown ones are the normal one
  EXPECT_EQ(RenderStates().RenderState(kStateSourceBlend), 5u);
  EXPECT_EQ(RenderStates().RenderState(kStateSeparateDestinationBlend), 6u);
  texture_set_interpolation(true);
  FlushBatch();
  EXPECT_EQ(RenderStates().SamplerState(7, kSamplerMinify), 1u);
}

// After game_restart: what the device holds then is not what the cache starts with.
TEST(RenderStates, AResetCacheSendsAlsoWhatIsSetToZero) {
  RecordingStage stage;
  RenderStates().Reset();
  draw_enable_alphablend(false);
  texture_set_repeat(true);
  stage.device.Forget();
  FlushBatch();
  int blending = -1, address = -1;
  for (const auto& call : stage.device.calls) {
    if (call.kind == Kind::State && call.index == kStateBlending) blending = static_cast<int>(call.value);
    if (call.kind == Kind::Sampler && call.index == kSamplerAddressU) address = static_cast<int>(call.value);
  }
  EXPECT_EQ(blending, 0);
  EXPECT_EQ(address, 0);
  stage.device.Forget();
  RenderStates().ResendAll(stage.device);
  EXPECT_GT(StateCalls(stage.device), 30);
}

TEST(RenderStates, ABatchIsDrawnWithTheStatesOfItsTime) {
  RecordingStage stage;
  const int sprite = stage.Piece(0, 0, 16, 16);
  draw_sprite(nullptr, sprite, 0, 10, 10);
  draw_enable_alphablend(false);
  draw_sprite(nullptr, sprite, 0, 10, 10);
  FlushBatch();
  std::string order;
  for (const auto& call : stage.device.calls)
    order += call.kind == Kind::Draw ? "draw " : call.kind == Kind::State ? "state " : "";
  EXPECT_EQ(order, "draw state draw ");
}

TEST(RenderStates, StackSavesThirtyTwoAndSaysWhenItIsMisused) {
  RecordingStage stage;
  RenderStateCache& states = RenderStates();
  states.Pop(); // at the bottom: nothing changes
  for (uint32_t i = 0; i < 40; ++i) {
    states.SetRenderState(kStateAlphaReference, i);
    states.Push();
  }
  states.SetRenderState(kStateAlphaReference, 99);
  states.Pop();
  EXPECT_EQ(states.RenderState(kStateAlphaReference), 31u);
  for (int i = 0; i < 31; ++i) states.Pop();
  EXPECT_EQ(states.RenderState(kStateAlphaReference), 0u);
}

TEST(DrawColour, WordAlphaAndClears) {
  RecordingStage stage;
  EXPECT_EQ(Drawing().colourWord, 0xFF000000u);
  draw_set_colour(make_colour_rgb(1, 2, 3));
  EXPECT_EQ(Drawing().colourWord, 0xFF010203u);
  EXPECT_EQ(draw_get_colour(), 0x030201);
  draw_set_alpha(0.5f);
  EXPECT_EQ(Drawing().colourWord, 0x7F010203u);
  draw_set_alpha(1.5f);
  EXPECT_EQ(Drawing().alphaByte, 255);
  draw_set_alpha(-1);
  EXPECT_EQ(Drawing().alphaByte, 0);
  EXPECT_EQ(make_colour_rgb(256, 0, 0), 0);
  EXPECT_EQ(ColourWord(0xFFFFFF, 2.0f) >> 24, 255u);
  EXPECT_EQ(ColourWord(0xFFFFFF, -3.0f) >> 24, 0u);
  stage.device.Forget();
  draw_clear(0);
  draw_clear_alpha(0, 0);
  draw_clear_alpha(c_red, 0.5f);
  ASSERT_EQ(stage.device.calls.size(), 3u);
  EXPECT_EQ(stage.device.calls[0].value, 0xFF000000u);
  EXPECT_EQ(stage.device.calls[1].value, 0u);
  EXPECT_EQ(stage.device.calls[2].value, 0x7FFF0000u);
}

TEST(Textures, SlotsAreUsedAgainAndBrokenImagesDrawNothing) {
  RecordingStage stage;
  const uint8_t pixel[4] = {1, 2, 3, 4};
  const int first = Texture_CreateFromPixels(1, 1, pixel, 4);
  Texture_Free(first);
  Texture_Free(first);
  Texture_Free(-5);
  EXPECT_EQ(Texture_Find(first), nullptr);
  EXPECT_EQ(Texture_CreateFromPixels(1, 1, pixel, 4), first);
  EXPECT_EQ(Texture_CreateFromPixels(2, 2, pixel, 4), -1);
  const uint8_t rubbish[40] = {0x89, 'P', 'N', 'G', 1, 2, 3};
  const int broken = Texture_CreateFromData(rubbish, sizeof(rubbish));
  EXPECT_GE(broken, 0);
  EXPECT_EQ(Texture_Get(broken), 0u);
  PageEntry entry = stage.Entry(0, 0, 8, 8);
  entry.texture = static_cast<int16_t>(broken);
  draw_sprite(nullptr, stage.Sprite(8, 8, {entry}), 0, 10, 10);
  EXPECT_TRUE(stage.Draws().empty());
  EXPECT_FALSE(Error().occurred);

  // A well-formed head over a broken body shows only when the page is first bound.
  std::vector<uint8_t> cut = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13, 'I', 'H',
                              'D',  'R', 0,   0,   0,    8,    0,    0,    0, 8, 8, 6,  0,   0,
                              0,    1,   2,   3,   4,    0,    0,    0,    0, 0, 0, 0};
  const int torn = Texture_CreateFromData(cut.data(), static_cast<uint32_t>(cut.size()));
  EXPECT_EQ(Texture_Find(torn)->width, 8);
  entry.texture = static_cast<int16_t>(torn);
  const int tornSprite = stage.Sprite(8, 8, {entry});
  draw_sprite(nullptr, tornSprite, 0, 10, 10);
  EXPECT_TRUE(stage.Draws().empty());
  EXPECT_EQ(Texture_Get(torn), 0u);
  draw_sprite(nullptr, tornSprite, 0, 10, 10);
  EXPECT_TRUE(stage.Draws().empty());
}

} // namespace
} // namespace vesk::test
