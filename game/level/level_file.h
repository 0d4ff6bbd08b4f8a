#pragma once
// The level tree in global.leveldata and its file: one line of JSON in Level/<name>.json.
// Root: section name to section map. A section: thirteen keys, five of them maps of cell to code.
#include <string>

namespace vesk {

inline constexpr const char* kMainSection = "Main";
inline constexpr int kMaxSections = 75;

// The five layers of a section; each maps a cell "cx,cy" to a code or an atlas cell.
inline constexpr const char* kLayers[] = {"TILES", "TILES_BG", "OBJECTS", "MODIFIERS", "MARKERS"};

void scr_level_new();
void scr_level_add_section(std::string name);
void scr_level_save(std::string name);
// The same; false when the file couldn't be written, which has been told, and is as it was.
bool save_level(const std::string& name);
void scr_level_load(std::string name);
// A new list of the names of all level files; the caller owns it.
double scr_level_get_levels();

// Loads the file at any path in place of the present level. "" or, in words, what is wrong; the present level
// is gone either way.
std::string scr_level_load_file(std::string path);
// What keeps the tree in global.leveldata from being edited or played, in words; "" when nothing does.
std::string scr_level_problem();
// Starts the loaded level in a section, as the menu's Play does.
void scr_level_play(std::string section);

} // namespace vesk
