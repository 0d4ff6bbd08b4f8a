#include "game/level/level_file.h"

#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/level/files.h"
#include "game/play/levelmanager.h"

namespace vesk {

namespace {

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

bool IsNumber(const RValue& value) { return value.IsNumber(); }
bool IsText(const RValue& value) { return value.IsString(); }
bool IsMap(const RValue& value) { return value.IsNumber() && ds_exists(ValueAsInt32(value), ds_type_map); }

struct SectionKey {
  const char* key;
  bool (*fits)(const RValue&);
  const char* kind;
};
constexpr SectionKey kSectionKeys[] = {
    {"HEIGHT", IsNumber, "a number"},      {"WIDTH", IsNumber, "a number"},       {"MUSIC", IsText, "a text"},
    {"BACKGROUND", IsText, "a text"},      {"RAIN", IsNumber, "a number"},        {"DARKNESS", IsNumber, "a number"},
    {"WATER_LEVEL", IsNumber, "a number"}, {"WATER_COLOR", IsText, "a text"},     {"TILES", IsMap, "a map of cells"},
    {"TILES_BG", IsMap, "a map of cells"}, {"OBJECTS", IsMap, "a map of cells"},  {"MODIFIERS", IsMap, "a map of cells"},
    {"MARKERS", IsMap, "a map of cells"},
};

std::string SectionProblem(const std::string& name, int section) {
  for (const SectionKey& wanted : kSectionKeys) {
    const RValue value = ds_map_find_value(section, wanted.key);
    if (value.IsUndefined()) return "Section \"" + name + "\" has no \"" + wanted.key + "\".";
    if (!wanted.fits(value)) return "Section \"" + name + "\": \"" + wanted.key + "\" is not " + wanted.kind + ".";
  }
  for (const char* size : {"WIDTH", "HEIGHT"})
    if (ValueAsReal(ds_map_find_value(section, size)) < 1)
      return "Section \"" + name + "\": \"" + size + "\" is below 1.";
  for (const char* layer : kLayers) {
    const int map = ValueAsInt32(ds_map_find_value(section, layer));
    for (RValue cell = ds_map_find_first(map); !cell.IsUndefined(); cell = ds_map_find_next(map, cell))
      if (!IsText(ds_map_find_value(map, cell)))
        return "Section \"" + name + "\", " + layer + ", cell " + ValueAsText(cell) + ": the code is not a text.";
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
      {"HEIGHT", 32}, {"WIDTH", 250},  {"MUSIC", "Sick"},   {"BACKGROUND", "Wall"},
      {"RAIN", 0},    {"DARKNESS", 0}, {"WATER_LEVEL", 0}, {"WATER_COLOR", "Red"},
  };
  for (const Setting& setting : settings) ds_map_add(section, setting.key, setting.value);
  for (const char* layer : kLayers) ds_map_add_map(section, layer, ds_map_create());
  ds_map_add_map(global[leveldata], name, section);
}

void scr_level_save(std::string name) {
  const DebugFrame frame("scr_level_save");
  const double file = FS_file_text_open_write(LevelPath(name));
  FS_file_text_write_string(file, json_encode(global[leveldata]));
  FS_file_text_close(file);
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
    if (!IsMap(section)) return "\"" + ValueAsText(name) + "\" is not a section.";
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
