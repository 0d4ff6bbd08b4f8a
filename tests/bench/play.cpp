// What play costs: frames of the first level with the hero running, and the load of a large section.
#include "apps/container/EmbeddedContainer.h"
#include "sim/Look.h"
#include "sim/Picture.h"
#include "sim/Simulation.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <fstream>
#include <string>

namespace vesk {
namespace {

constexpr int kRight = 39, kLeft = 37;

SimulationSettings Settings() {
  SimulationSettings settings;
  settings.container = {EmbeddedContainer(), EmbeddedContainerSize()};
  return settings;
}

// A frame with the hero running to and fro over the first level.
void BM_FrameOfFirstSteps(benchmark::State& state) {
  Simulation simulation(Settings());
  std::string problem = simulation.Start();
  if (problem.empty()) problem = simulation.Play("Level/first-steps.json", "Main");
  if (!problem.empty()) return state.SkipWithError(problem.c_str());
  int held = kRight;
  simulation.Key(held, true);
  int64_t frames = 0, draws = 0, quads = 0;
  for (auto _ : state) {
    simulation.Step();
    const DrawCounts counts = LastFrameDraws();
    draws = std::max(draws, counts.batches);
    quads = std::max(quads, counts.quads);
    if (++frames % 70 == 0) { // before the first step of the ground
      simulation.Key(held, false);
      held = held == kRight ? kLeft : kRight;
      simulation.Key(held, true);
    }
  }
  if (!simulation.FatalReport().empty()) return state.SkipWithError(simulation.FatalReport().c_str());
  state.SetItemsProcessed(frames); // frames a second
  state.counters["most draw calls"] = static_cast<double>(draws);
  state.counters["most quads"] = static_cast<double>(quads);
}
BENCHMARK(BM_FrameOfFirstSteps)->Unit(benchmark::kMicrosecond);

// Processor time of the game thread, so that a busy machine does not count.
double ThreadSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

std::string LargeSection(int columns, int rows) {
  std::string tiles;
  for (int row = 0; row < rows; ++row)
    for (int column = 0; column < columns; ++column)
      tiles += (tiles.empty() ? "\"" : ",\"") + std::to_string(column) + "," + std::to_string(row + 20) +
               "\":\"0,4\"";
  return "{\"Main\":{\"HEIGHT\":" + std::to_string(rows + 20) + ",\"WIDTH\":" + std::to_string(columns) +
         ",\"MUSIC\":\"Sick\",\"BACKGROUND\":\"Wall\",\"RAIN\":0,\"DARKNESS\":0,\"WATER_LEVEL\":0,\"WATER_"
         "COLOR\":\"Red\","
         "\"TILES\":{" +
         tiles + "},\"TILES_BG\":{},\"OBJECTS\":{},\"MODIFIERS\":{},\"MARKERS\":{}}}";
}

// From the file to the frame in which the section of 10,000 blocks stands, the change of the room's size
// included.
void BM_LoadSectionOf10000Tiles(benchmark::State& state) {
  for (auto _ : state) {
    Simulation simulation(Settings());
    std::string problem = simulation.Start();
    const std::string file = simulation.Directory() + "/Level/large.json";
    std::ofstream(file) << LargeSection(400, 25) << "\n";
    double seconds = -1;
    const double start = ThreadSeconds();
    simulation.OnFrame([&] {
      if (seconds < 0 && CountTiles(9) == 10000) seconds = ThreadSeconds() - start;
    });
    if (problem.empty()) problem = simulation.Play(file, "Main");
    if (problem.empty() && seconds < 0) problem = "the section never stands";
    if (!problem.empty()) return state.SkipWithError(problem.c_str());
    state.SetIterationTime(seconds);
  }
}
BENCHMARK(BM_LoadSectionOf10000Tiles)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

} // namespace
} // namespace vesk
