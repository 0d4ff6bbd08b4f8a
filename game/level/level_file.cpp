#include "game/level/level_file.h"

#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/level/collision_codes.h"
#include "game/level/files.h"
#include "game/play/enter_leave.h"

#include <charconv>
#include <cmath>
#include <string_view>

namespace vesk {

namespace {

constexpr int kMostCells = 100000; // of a side; far beyond what a level needs

std::string LevelPath(const std::string& name) { return "Level/" + name + ".json"; }

struct Setting {
  const char* key;
  RValue value;
};

void DestroyLevel() {
  if (ds_exists(global[leveldata], ds_type_map)) ds_map_destroy(global[leveldata]);
}

void ReadLevel(const std::string& path) {
  DestroyLevel();
  const double file = FS_file_text_open_read(path);
  global[leveldata] = json_decode(FS_file_text_read_string(file));
  FS_file_text_close(file);
}

// ---- what a level must be ----

constexpr int kMostCellDigits = 6; // of one number of a key
constexpr int kAtlasRows = static_cast<int>(kCollisionCodes.size()) / kAtlasColumns;

enum class Kind { kNumber, kText, kMap };
struct SectionKey {
  const char* key;
  Kind kind;
};
constexpr SectionKey kSectionKeys[] = {
    {"HEIGHT", Kind::kNumber},      {"WIDTH", Kind::kNumber},     {"MUSIC", Kind::kText},
    {"BACKGROUND", Kind::kText},    {"RAIN", Kind::kNumber},      {"DARKNESS", Kind::kNumber},
    {"WATER_LEVEL", Kind::kNumber}, {"WATER_COLOR", Kind::kText}, {"TILES", Kind::kMap},
    {"TILES_BG", Kind::kMap},       {"OBJECTS", Kind::kMap},      {"MODIFIERS", Kind::kMap},
    {"MARKERS", Kind::kMap},
};

std::string NotOfKind(int section, const SectionKey& wanted) {
  const RValue value = ds_map_find_value(section, wanted.key);
  const bool map = ds_map_owns_map(section, wanted.key), list = ds_map_owns_list(section, wanted.key);
  switch (wanted.kind) {
  case Kind::kNumber: return value.IsNumber() && !map && !list ? "" : "a number";
  case Kind::kText: return value.IsString() ? "" : "a text";
  default: return map ? "" : "a map of cells";
  }
}

std::string SizeProblem(int section, const char* key, double least, double most) {
  const double size = ValueAsReal(ds_map_find_value(section, key));
  if (size >= least && size <= most && size == std::floor(size)) return "";
  return "\"" + std::string(key) + "\" is not a whole number from " +
         std::to_string(static_cast<int>(least)) + " to " + std::to_string(static_cast<int>(most));
}

// "12,7": the number of a column or row each.
bool IsPair(std::string_view text, int least, int most) {
  const size_t comma = text.find(',');
  if (comma == std::string_view::npos) return false;
  for (std::string_view part : {text.substr(0, comma), text.substr(comma + 1)}) {
    int number = 0;
    const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), number);
    if (error != std::errc() || end != part.data() + part.size() || part.size() > kMostCellDigits)
      return false;
    if (number < least || number > most) return false;
  }
  return true;
}

std::string LayerProblem(int section, const char* layer) {
  const bool tiles = std::string_view(layer).starts_with("TILES");
  const int map = ValueAsInt32(ds_map_find_value(section, layer));
  for (RValue cell = ds_map_find_first(map); !cell.IsUndefined(); cell = ds_map_find_next(map, cell)) {
    const std::string where = std::string(layer) + ", cell \"" + ValueAsText(cell) + "\": ";
    if (!IsPair(ValueAsText(cell), -kMostCells, 2 * kMostCells))
      return where + "a cell is named by column and row, as \"12,7\"";
    const RValue code = ds_map_find_value(map, cell);
    if (!code.IsString()) return where + "the code is not a text";
    if (tiles && !IsPair(code.Text(), 0, kAtlasColumns - 1))
      return where + "\"" + std::string(code.Text()) + "\" is no cell of the tile atlas of " +
             std::to_string(kAtlasColumns) + " by " + std::to_string(kAtlasRows);
  }
  return "";
}

std::string SectionProblem(int section) {
  for (const SectionKey& wanted : kSectionKeys) {
    if (!ds_map_exists(section, wanted.key)) return "there is no \"" + std::string(wanted.key) + "\"";
    if (const std::string kind = NotOfKind(section, wanted); !kind.empty())
      return "\"" + std::string(wanted.key) + "\" is not " + kind;
  }
  for (const char* size : {"WIDTH", "HEIGHT"})
    if (const std::string problem = SizeProblem(section, size, 1, kMostCells); !problem.empty())
      return problem;
  const double height = ValueAsReal(ds_map_find_value(section, "HEIGHT"));
  if (const std::string problem = SizeProblem(section, "WATER_LEVEL", 0, height); !problem.empty())
    return problem;
  for (const char* layer : kLayers)
    if (const std::string problem = LayerProblem(section, layer); !problem.empty()) return problem;
  return "";
}

} // namespace

void scr_level_new() {
  const DebugFrame frame("scr_level_new");
  DestroyLevel();
  global[leveldata] = ds_map_create();
  scr_level_add_section(kMainSection);
}

void scr_level_add_section(std::string name) {
  const DebugFrame frame("scr_level_add_section");
  const int section = ds_map_create();
  const Setting settings[] = {
      {"HEIGHT", 32}, {"WIDTH", 250},  {"MUSIC", "Sick"},  {"BACKGROUND", "Wall"},
      {"RAIN", 0},    {"DARKNESS", 0}, {"WATER_LEVEL", 0}, {"WATER_COLOR", "Red"},
  };
  for (const Setting& setting : settings) ds_map_add(section, setting.key, setting.value);
  for (const char* layer : kLayers) ds_map_add_map(section, layer, ds_map_create());
  ds_map_add_map(global[leveldata], name, section);
}

bool save_level(const std::string& name) {
  const double file = FS_file_text_open_write(LevelPath(name));
  if (file < 0) return false;
  FS_file_text_write_string(file, json_encode(global[leveldata]));
  return FS_file_text_close(file) > 0.5;
}

void scr_level_save(std::string name) {
  const DebugFrame frame("scr_level_save");
  save_level(name);
}

void scr_level_load(std::string name) {
  const DebugFrame frame("scr_level_load");
  ReadLevel(LevelPath(name));
}

double scr_level_get_levels() {
  const DebugFrame frame("scr_level_get_levels");
  const int list = ds_list_create();
  for (std::string name = FS_file_find_first("Level/*.json"); !name.empty(); name = FS_file_find_next())
    ds_list_add(list, string_replace(name, ".json", ""));
  return list;
}

std::string scr_level_load_file(std::string path) {
  const DebugFrame frame("scr_level_load_file");
  if (!FS_file_exists(path)) return "There is no file \"" + path + "\".";
  ReadLevel(path);
  return scr_level_problem();
}

std::string scr_level_problem() {
  const DebugFrame frame("scr_level_problem");
  if (!ds_exists(global[leveldata], ds_type_map)) return "The file is not JSON text of a level.";
  const int root = global[leveldata];
  if (!ds_map_exists(root, kMainSection))
    return ds_map_exists(root, "default") ? "The file is not JSON text of a level."
                                          : "The level has no section \"Main\".";
  for (RValue name = ds_map_find_first(root); !name.IsUndefined(); name = ds_map_find_next(root, name)) {
    if (!ds_map_owns_map(root, name)) return "\"" + ValueAsText(name) + "\" is not a section.";
    const std::string problem = SectionProblem(ValueAsInt32(ds_map_find_value(root, name)));
    if (!problem.empty()) return "Section \"" + ValueAsText(name) + "\": " + problem + ".";
  }
  return "";
}

void scr_level_play(std::string name) {
  const DebugFrame frame("scr_level_play");
  global[onoffblockprev] = 0; // another level's checkpoint must not set this one's switch
  scr_clearvars();
  global[section] = name;
  global[gamemode] = 1;
  room_goto(rm_template);
}

} // namespace vesk
