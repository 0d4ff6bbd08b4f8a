#pragma once
// Starts that skip the logos, for the command line and for scripted play. The controller stands as after the logos.
#include <string>

namespace vesk {

// The logos' alarms and sounds end, the final picture takes the shader of the title; the next room is the caller's to
// ask for.
void skip_logos();
// Loads the level file and starts it in a section. "" or, in words, what is wrong with the file; then the game goes
// to the main menu.
std::string start_level(const std::string& file, const std::string& section);

} // namespace vesk
