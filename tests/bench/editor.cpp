// A section filled solid: opening, saving, an editor frame, a flood fill.
#include "Files/Function/Function_Data_Structures.h"
#include "apps/container/EmbeddedContainer.h"
#include "game/Game.h"
#include "game/editor/window.h"
#include "game/level/level_build.h"
#include "game/level/level_file.h"
#include "sim/Simulation.h"
#include "tests/support/SolidLevel.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <memory>

namespace vesk {

namespace {

std::unique_ptr<Simulation> Started() {
  SimulationSettings settings;
  settings.container = {EmbeddedContainer(), EmbeddedContainerSize()};
  auto simulation = std::make_unique<Simulation>(settings);
  if (!simulation->Start().empty()) return nullptr;
  return simulation;
}

std::unique_ptr<Simulation> OpenSolid() {
  auto simulation = Started();
  const std::string file = simulation->Directory() + "/Level/solid.json";
  std::ofstream(file) << SolidLevel();
  if (!simulation->Edit(file, "Main").empty()) return nullptr;
  return simulation;
}

// Reading the file and building the room: to the first frame of the editor.
void EditorOpensASolidSection(benchmark::State& state) {
  auto simulation = Started();
  const std::string file = simulation->Directory() + "/Level/solid.json";
  std::ofstream(file) << SolidLevel();
  for (auto _ : state) {
    scr_level_load("solid");
    global[section] = "Main";
    room_goto(rm_editor);
    simulation->Step(2);
    state.PauseTiming();
    room_goto(rm_mainmenu);
    simulation->Step(2);
    state.ResumeTiming();
  }
}
BENCHMARK(EditorOpensASolidSection)->Unit(benchmark::kMillisecond);

void EditorSavesASolidSection(benchmark::State& state) {
  auto simulation = OpenSolid();
  for (auto _ : state) scr_level_save("solid");
}
BENCHMARK(EditorSavesASolidSection)->Unit(benchmark::kMillisecond);

void EditorFrameOfASolidSection(benchmark::State& state) {
  auto simulation = OpenSolid();
  for (auto _ : state) simulation->Step();
}
BENCHMARK(EditorFrameOfASolidSection)->Unit(benchmark::kMillisecond);

void EditorFloodsAnEmptySection(benchmark::State& state) {
  auto simulation = Started();
  for (auto _ : state) {
    state.PauseTiming();
    simulation->New("flood");
    with(obj_editor, [](Self editor) {
      editor[height] = 100;
      event_user(editor, 1);
    });
    choose_tiles(16, 64, 1, 1, false);
    simulation->Step(10);
    simulation->Key(16, true);
    simulation->Button(1, true);
    state.ResumeTiming();
    simulation->Step();
    state.PauseTiming();
    simulation->Button(1, false);
    simulation->Key(16, false);
    simulation->Step();
    const int cells = ValueAsInt32(ds_map_find_value(edited_section(), "TILES"));
    if (ds_map_size(cells) != 25000) state.SkipWithError("the flood left cells out");
    state.ResumeTiming();
  }
}
BENCHMARK(EditorFloodsAnEmptySection)->Unit(benchmark::kMillisecond);

} // namespace

} // namespace vesk
