#include "game/level/level_file.h"

#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/level/files.h"
#include "game/play/levelmanager.h"

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

bool IsText(const RValue& value) { return value.IsString(); }

bool HoldsNumber(int map, const char* key) {
  return !ds_map_owns_map(map, key) && ds_map_find_value(map, key).IsNumber();
}
bool HoldsText(int map, const char* key) { return IsText(ds_map_find_value(map, key)); }
bool HoldsMap(int map, const char* key) { return ds_map_owns_map(map, key); }

struct SectionKey {
  const char* key;
  bool (*fits)(int map, const char* key);
  const char* kind;
};
constexpr SectionKey kSectionKeys[] = {
    {"HEIGHT", HoldsNumber, "a number"},      {"WIDTH", HoldsNumber, "a number"},
    {"MUSIC", HoldsText, "a text"},           {"BACKGROUND", HoldsText, "a text"},
    {"RAIN", HoldsNumber, "a number"},        {"DARKNESS", HoldsNumber, "a number"},
    {"WATER_LEVEL", HoldsNumber, "a number"}, {"WATER_COLOR", HoldsText, "a text"},
    {"TILES", HoldsMap, "a map of cells"},    {"TILES_BG", HoldsMap, "a map of cells"},
    {"OBJECTS", HoldsMap, "a map of cells"},  {"MODIFIERS", HoldsMap, "a map of cells"},
    {"MARKERS", HoldsMap, "a map of cells"},
};

std::string SectionProblem(const std::string& name, int section) {
  for (const SectionKey& wanted : kSectionKeys) {
    const RValue value = ds_map_find_value(section, wanted.key);
    if (value.IsUndefined()) return "Section \"" + name + "\" has no \"" + wanted.key + "\".";
    if (!wanted.fits(section, wanted.key))
      return "Section \"" + name + "\": \"" + wanted.key + "\" is not " + wanted.kind + ".";
  }
  for (const char* size : {"WIDTH", "HEIGHT"})
    if (const double cells = ValueAsReal(ds_map_find_value(section, size));
        !(cells >= 1 && cells <= kMostCells))
      return "Section \"" + name + "\": \"" + size + "\" is not from 1 to " + std::to_string(kMostCells) +
             ".";
  for (const char* layer : kLayers) {
    const int map = ValueAsInt32(ds_map_find_value(section, layer));
    for (RValue cell = ds_map_find_first(map); !cell.IsUndefined(); cell = ds_map_find_next(map, cell))
      if (!IsText(ds_map_find_value(map, cell)))
        return "Section \"" + name + "\", " + layer + ", cell " + ValueAsText(cell) +
               ": the code is not a text.";
  }
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
  if (ds_map_exists(root, "default")) return "The file is not JSON text of a level.";
  if (!ds_map_exists(root, kMainSection)) return "The level has no section \"Main\".";
  for (RValue name = ds_map_find_first(root); !name.IsUndefined(); name = ds_map_find_next(root, name)) {
    const RValue section = ds_map_find_value(root, name);
    if (!ds_map_owns_map(root, name)) return "\"" + ValueAsText(name) + "\" is not a section.";
    const std::string problem = SectionProblem(ValueAsText(name), ValueAsInt32(section));
    if (!problem.empty()) return problem;
  }
  return "";
}

void scr_level_play(std::string name) {
  const DebugFrame frame("scr_level_play");
  scr_clearvars();
  global[section] = name;
  global[gamemode] = 1;
  room_goto(rm_template);
}

} // namespace vesk
