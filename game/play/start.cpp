#include "game/play/start.h"

#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/editor/interface.h"
#include "game/level/files.h"
#include "game/level/level_file.h"

namespace vesk {

namespace {

// "Level/first-steps.json" gives "first-steps".
std::string name_of(const std::string& file) {
  const size_t slash = file.find_last_of("/\\");
  std::string base = slash == std::string::npos ? file : file.substr(slash + 1);
  if (base.ends_with(".json")) base.resize(base.size() - 5);
  return base;
}

// Loads the file; on failure the game goes to the main menu, as there is no level.
std::string load_for(const std::string& file, const std::string& wanted_section) {
  skip_logos();
  std::string problem = scr_level_load_file(file);
  if (problem.empty() && !ds_map_exists(global[leveldata], wanted_section))
    problem = "The level has no section \"" + wanted_section + "\".";
  if (problem.empty())
    global[levelname] = name_of(file);
  else
    room_goto(rm_mainmenu);
  return problem;
}

} // namespace

void skip_logos() {
  with(obj_persistent, [](Self controller) {
    for (const int logo : {4, 6, 7}) controller[alarm][logo] = -1;
    controller[activeshader] = sha_bloom; // as the title leaves it
  });
  audio_stop_all();
}

std::string start_level(const std::string& file, const std::string& first_section) {
  const std::string problem = load_for(file, first_section);
  if (problem.empty()) scr_level_play(first_section);
  return problem;
}

std::string start_editing(const std::string& file, const std::string& shown_section) {
  const std::string problem = load_for(file, shown_section);
  if (!problem.empty()) return problem;
  global[section] = shown_section;
  room_goto(rm_editor);
  return "";
}

std::string start_new_level(const std::string& level) {
  if (level.empty()) return "A level must have a name.";
  if (level.find_first_of(kRefusedInNames) != std::string::npos)
    return "\"" + level + "\" holds a character that no file name can have.";
  if (FS_file_exists("Level/" + level + ".json")) return "The level \"" + level + "\" exists already.";
  skip_logos();
  global[levelname] = level;
  global[section] = kMainSection;
  scr_level_new();
  room_goto(rm_editor);
  return "";
}

} // namespace vesk
