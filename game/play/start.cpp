#include "game/play/start.h"

#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
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

} // namespace

void skip_logos() {
  with(obj_persistent, [](Self controller) {
    for (const int logo : {4, 6, 7}) controller[alarm][logo] = -1;
    controller[activeshader] = sha_bloom; // as the title leaves it
  });
  audio_stop_all();
}

std::string start_level(const std::string& file, const std::string& first_section) {
  skip_logos();
  std::string problem = scr_level_load_file(file);
  if (problem.empty() && !ds_map_exists(global[leveldata], first_section))
    problem = "The level has no section \"" + first_section + "\".";
  if (!problem.empty()) {
    room_goto(rm_mainmenu);
    return problem;
  }
  global[levelname] = name_of(file);
  scr_level_play(first_section);
  return "";
}

} // namespace vesk
