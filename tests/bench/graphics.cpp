// Vertices through the batch, sprites, tiled rooms and text, on a device that draws nothing.
#include "Files/Graphics/Graphics.h"
#include "Files/Font/Font.h"
#include "Files/Graphics/Batch.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/PageDraw.h"
#include "Files/Graphics/Texture.h"
#include "Files/Graphics/View.h"
#include "Files/Graphics_API/RecordingDevice.h"
#include "Files/Sprite/DrawSprite.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using namespace vesk;

struct Bench {
  Bench() {
    Graphics_Reset();
    GR_D3D_Init(std::make_unique<CRecordingDevice>());
    const std::vector<uint8_t> pixels(256 * 256 * 4, 255);
    page = Texture_CreateFromPixels(256, 256, pixels.data(), static_cast<uint32_t>(pixels.size()));
    entry = Page_OfTexture(page, 16, 16);
    auto sprite = std::make_unique<CSprite>();
    sprite->width = sprite->height = 16;
    sprite->boundingRadius = 23;
    sprite->frames.push_back(&entry);
    Sprites().table.push_back(std::move(sprite));
    BeginFrame();
    SetView(0, 0, 384, 216, 0);
  }
  ~Bench() {
    Sprite_Reset();
    Font_Reset();
    Graphics_Reset();
  }
  int32_t page;
  PageEntry entry;
};

void QuadsThroughAllocVerts(benchmark::State& state) {
  Bench bench;
  const TextureHandle texture = Texture_Get(bench.page);
  float x = 0;
  for (auto _ : state) {
    TexturedVertex* v = AllocVerts<TexturedVertex>(pr_trianglelist, texture, 6);
    v[0] = v[5] = {x, 0, 0, 0xFFFFFFFF, 0, 0};
    v[1] = {x + 16, 0, 0, 0xFFFFFFFF, 1, 0};
    v[2] = v[3] = {x + 16, 16, 0, 0xFFFFFFFF, 1, 1};
    v[4] = {x, 16, 0, 0xFFFFFFFF, 0, 1};
    x += 1;
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(QuadsThroughAllocVerts);

void Sprites_Plain(benchmark::State& state) {
  Bench bench;
  int i = 0;
  for (auto _ : state) draw_sprite(nullptr, 0, 0, static_cast<float>(++i % 384), 100);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Sprites_Plain);

void Sprites_OutOfView(benchmark::State& state) {
  Bench bench;
  for (auto _ : state) draw_sprite(nullptr, 0, 0, 1000, 100);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Sprites_OutOfView);

void Sprites_Turned(benchmark::State& state) {
  Bench bench;
  for (auto _ : state) draw_sprite_ext(nullptr, 0, 0, 100, 100, 1.5f, 1, 30, c_red, 0.5f);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Sprites_Turned);

void Text_OneLine(benchmark::State& state) {
  Bench bench;
  for (auto _ : state) draw_text(10, 10, "Score 0012345  Coins 99");
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(Text_OneLine);

} // namespace
