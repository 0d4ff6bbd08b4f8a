#pragma once
// Starts that skip the logos, for the command line and for scripted play. The controller stands as after the
// logos.
#include <string>

namespace vesk {

// The logos' alarms and sounds end, the final picture takes the shader of the title; the next room is the
// caller's to ask for.
void skip_logos();
// Loads the level file and starts it in a section. "" or, in words, what is wrong with the file; then the
// game goes to the main menu.
std::string start_level(const std::string& file, const std::string& section);
// The same into the editor.
std::string start_editing(const std::string& file, const std::string& section);
// Opens a new level in the editor; nothing is written before the first save. "" or why the name can't be
// taken.
std::string start_new_level(const std::string& name);

} // namespace vesk
