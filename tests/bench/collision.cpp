// The grid against the plain walks, in one run: single queries and whole frames of a crowded section.
// Argument 0 walks the lists, argument 1 uses the grid.
#include "Files/Object/Function_Collision.h"
#include "tests/runner/collision_world.h"

#include <benchmark/benchmark.h>

#include <cmath>

namespace vesk {
namespace {

constexpr int32_t kBlocks = 10000, kMovers = 500, kColumns = 200; // blocks in rows with gaps between

// A section of terrain in 16-pixel blocks: 200 columns, every second row filled.
class Section {
public:
  explicit Section(bool grid) {
    CollisionIndex().enabled = grid;
    const int32_t sprite = m_world.Sprite(16, 16);
    parent = m_world.Object(sprite);
    block = m_world.Object(sprite, parent);
    mover = m_world.Object(m_world.Sprite(12, 14));
    hero = m_world.Object(sprite);
    for (int32_t i = 0; i < kBlocks; ++i)
      m_world.Add(block, static_cast<float>(i % kColumns * 16), static_cast<float>(i / kColumns * 48));
    tovin = &m_world.Add(hero, 100, 17);
  }
  ~Section() { CollisionIndex().enabled = true; }
  void AddMovers() {
    for (int32_t i = 0; i < kMovers; ++i) {
      CInstance& it = m_world.Add(mover, Scatter(i) * 3100, std::floor(Scatter(i + 999) * 48) * 48 + 20);
      it.SetHspeed(i % 2 ? 1.25f : -0.75f);
      movers.push_back(&it);
    }
  }
  // Where the n-th thing stands, 0 to 1: spread without a pattern, the same in every run.
  static float Scatter(int32_t n) {
    return static_cast<float>(static_cast<uint32_t>(n) * 2654435761u >> 8) / 16777216.0f;
  }

  int32_t parent, block, mover, hero;
  CInstance* tovin;
  std::vector<CInstance*> movers;

private:
  CollisionWorld m_world{3200, 9600};
};

void Rectangle(benchmark::State& state) {
  Section section(state.range(0) != 0);
  int32_t n = 0;
  for (auto _ : state) {
    const float x = Section::Scatter(++n) * 3100, y = Section::Scatter(n + 5) * 2300;
    benchmark::DoNotOptimize(
        collision_rectangle(section.tovin, x, y, x + 14, y + 20, section.parent, false, true));
  }
}
BENCHMARK(Rectangle)->Arg(0)->Arg(1);

void RectangleOfAll(benchmark::State& state) {
  Section section(state.range(0) != 0);
  int32_t n = 0;
  for (auto _ : state) {
    const float x = Section::Scatter(++n) * 3100, y = Section::Scatter(n + 5) * 2300;
    benchmark::DoNotOptimize(collision_rectangle(section.tovin, x, y, x + 14, y + 20, all, false, true));
  }
}
BENCHMARK(RectangleOfAll)->Arg(0)->Arg(1);

void PlaceMeeting(benchmark::State& state) {
  Section section(state.range(0) != 0);
  int32_t n = 0;
  for (auto _ : state) {
    const float x = Section::Scatter(++n) * 3100, y = Section::Scatter(n + 5) * 2300;
    benchmark::DoNotOptimize(place_meeting(section.tovin, x, y, section.parent));
  }
}
BENCHMARK(PlaceMeeting)->Arg(0)->Arg(1);

// Every thing that moves feels for the ground, for a wall and for an edge, and turns; then the collision
// pass.
void Frame(benchmark::State& state) {
  Section section(state.range(0) != 0);
  section.AddMovers();
  const CollisionPair pairs[] = {CollisionWorld::Pair(section.hero, section.mover),
                                 CollisionWorld::Pair(section.mover, section.mover),
                                 CollisionWorld::Pair(section.block, section.mover)};
  int64_t met = 0;
  for (auto _ : state) {
    for (CInstance* it : section.movers) {
      it->SetPosition(it->x + it->hspeed, it->y + it->vspeed);
      const bool grounded = place_meeting(it, it->x, it->y + 1, section.parent);
      it->SetVspeed(grounded ? 0.0f : 0.5f);
      const float ahead = it->x + (it->hspeed > 0 ? 13.0f : -1.0f);
      if (collision_rectangle(it, ahead, it->y, ahead, it->y + 12, section.parent, true, false) != noone ||
          collision_point(it, ahead, it->y + 16, section.parent, true, false) == noone || ahead > 3190)
        it->SetHspeed(-it->hspeed);
    }
    for (const CollisionPair& pair : pairs)
      ForEachCollidingPair(pair, Rooms().passCounter++, [&](CInstance&, CInstance&) { ++met; });
  }
  state.counters["met"] = benchmark::Counter(static_cast<double>(met), benchmark::Counter::kAvgIterations);
}
BENCHMARK(Frame)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(20);

} // namespace
} // namespace vesk
