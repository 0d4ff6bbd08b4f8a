#include "game/level/catalogue.h"

#include "Files/Base/Console.h"

namespace vesk {

namespace {

void SayUnknown(const char* layer, const std::string& key, const std::string& code) {
  ReleaseConsole().Output("%s %s: the code \"%s\" makes nothing yet\n", layer, key.c_str(), code.c_str());
}

} // namespace

void scr_gen_object_level(std::string key, std::string code) { SayUnknown("OBJECTS", key, code); }
void scr_gen_marker_level(std::string key, std::string code) { SayUnknown("MARKERS", key, code); }
void scr_gen_modifier_level(std::string key, std::string value) { SayUnknown("MODIFIERS", key, value); }

} // namespace vesk
