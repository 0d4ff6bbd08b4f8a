#pragma once
// The things that codes in a level stand for.
#include <string>

namespace vesk {

// Make the thing of a code at a cell "cx,cy" in play.
void scr_gen_object_level(std::string key, std::string code);
void scr_gen_marker_level(std::string key, std::string code);
void scr_gen_modifier_level(std::string key, std::string value);

} // namespace vesk
