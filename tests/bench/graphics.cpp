// Vertices through the batch, sprites, tiled rooms and text, on a device that draws nothing.
#include "Files/Graphics/Graphics.h"
#include "Files/Font/Font.h"
#include "Files/Graphics/Batch.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/PageDraw.h"
#include "Files/Graphics/Texture.h"
#include "Files/Graphics/View.h"
#include "Files/Graphics_API/RecordingDevice.h"
#include "Files/Room/Tile.h"
#include "Files/Sprite/DrawSprite.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <vector>

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

// Tiles of a room that grows to the right, 16 by 16 in two layers; the view stays as large as it is. The
// index beside a plain scan of the same list.
TileList RoomOfTiles(int64_t count) {
  TileList tiles;
  for (int64_t i = 0; i < count; ++i) {
    Tile tile;
    tile.id = static_cast<int32_t>(i + 1);
    tile.background = 0;
    tile.width = tile.height = 16;
    tile.depth = i < count / 2 ? 12 : 9;
    const int64_t at = i % (count / 2);
    tile.x = static_cast<float>(at / 30 * 16);
    tile.y = static_cast<float>(at % 30 * 16);
    tiles.Add(tile);
  }
  tiles.SortByDepth();
  return tiles;
}
constexpr TileArea kView{1000, 100, 1384, 316};

void TilesInView_Index(benchmark::State& state) {
  TileList tiles = RoomOfTiles(state.range(0));
  for (auto _ : state) {
    tiles.SortByDepth();
    benchmark::DoNotOptimize(tiles.FindIn(kView).data());
  }
  state.counters["found"] = static_cast<double>(tiles.FindIn(kView).size());
}
BENCHMARK(TilesInView_Index)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

void TilesInView_PlainScan(benchmark::State& state) {
  const TileList tiles = RoomOfTiles(state.range(0));
  std::vector<uint32_t> found;
  for (auto _ : state) {
    found.clear();
    if (!std::is_sorted(tiles.begin(), tiles.end(),
                        [](const Tile& a, const Tile& b) { return a.depth > b.depth; }))
      state.SkipWithError("not in order");
    for (uint32_t i = 0; i < tiles.size(); ++i)
      if (tiles[i].visible && Tile_Meets(tiles[i], kView)) found.push_back(i);
    benchmark::DoNotOptimize(found.data());
  }
  state.counters["found"] = static_cast<double>(found.size());
}
BENCHMARK(TilesInView_PlainScan)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

// One tile moves before each frame, as a moving block's does.
void TilesInView_OneMoves(benchmark::State& state) {
  TileList tiles = RoomOfTiles(state.range(0));
  float x = 1000;
  for (auto _ : state) {
    tiles.Edit(5)->x = x = x < 1300 ? x + 1 : 1000;
    tiles.SortByDepth();
    benchmark::DoNotOptimize(tiles.FindIn(kView).data());
  }
}
BENCHMARK(TilesInView_OneMoves)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

} // namespace
