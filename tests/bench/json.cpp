// A level of 4 MB read and written, beside json-c reading and printing the same text.
#include "Files/Function/Function_Data_Structures.h"
#include "Files/Support/Support_Data_Structures.h"

#include <string>

#include <benchmark/benchmark.h>
#include <json-c/json.h>

using namespace vesk;

namespace {

const std::string& LevelText() {
  static const std::string text = [] {
    const int32_t level = ds_map_create();
    for (int section = 0; section < 10; ++section) {
      const int32_t map = ds_map_create();
      ds_map_add_map(level, "Section " + std::to_string(section), map);
      for (const char* layer : {"TILES", "TILES_BG", "OBJECTS"}) {
        const int32_t cells = ds_map_create();
        ds_map_add_map(map, layer, cells);
        for (int cell = 0; cell < 7000; ++cell)
          ds_map_add(cells, std::to_string(cell % 250) + "," + std::to_string(cell / 250),
                     std::to_string(cell % 16) + "," + std::to_string(cell % 64));
      }
      ds_map_add(map, "WIDTH", 250);
    }
    std::string encoded = json_encode(level);
    ds_map_destroy(level);
    return encoded;
  }();
  return text;
}

void DecodeLevel(benchmark::State& state) {
  const RValue text(LevelText());
  for (auto _ : state) ds_map_destroy(json_decode(text));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(LevelText().size()));
}
BENCHMARK(DecodeLevel)->Unit(benchmark::kMillisecond);

void LibraryParsesLevel(benchmark::State& state) {
  for (auto _ : state) json_object_put(json_tokener_parse(LevelText().c_str()));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(LevelText().size()));
}
BENCHMARK(LibraryParsesLevel)->Unit(benchmark::kMillisecond);

void EncodeLevel(benchmark::State& state) {
  const int32_t level = json_decode(LevelText());
  for (auto _ : state) benchmark::DoNotOptimize(json_encode(level).size());
  ds_map_destroy(level);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(LevelText().size()));
}
BENCHMARK(EncodeLevel)->Unit(benchmark::kMillisecond);

void LibraryPrintsLevel(benchmark::State& state) {
  json_object* object = json_tokener_parse(LevelText().c_str());
  for (auto _ : state) {
    // A fresh text each time: the library keeps the last one and would only hand it out.
    json_object_object_add(object, "n", json_object_new_int(1));
    benchmark::DoNotOptimize(json_object_to_json_string_ext(object, JSON_C_TO_STRING_SPACED));
  }
  json_object_put(object);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(LevelText().size()));
}
BENCHMARK(LibraryPrintsLevel)->Unit(benchmark::kMillisecond);

// A section's walk as the construction of a level does it.
void WalkSection(benchmark::State& state) {
  const int32_t map = ds_map_create();
  for (int cell = 0; cell < 10000; ++cell)
    ds_map_add(map, std::to_string(cell % 250) + "," + std::to_string(cell / 250), cell);
  for (auto _ : state)
    for (RValue key = ds_map_find_first(map); !key.IsUndefined(); key = ds_map_find_next(map, key))
      benchmark::DoNotOptimize(key.string);
  ds_map_destroy(map);
}
BENCHMARK(WalkSection)->Unit(benchmark::kMillisecond);

} // namespace
