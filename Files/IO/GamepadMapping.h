#pragma once
// Which control of a raw device stands for which button or stick, in the public text form of controller
// mappings.
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

enum MappingTarget : int32_t { // the numbers are those of the pad's buttons, and of its axes less 16
  mt_a,
  mt_b,
  mt_x,
  mt_y,
  mt_leftshoulder,
  mt_rightshoulder,
  mt_lefttrigger,
  mt_righttrigger,
  mt_guide,
  mt_start,
  mt_leftstick,
  mt_rightstick,
  mt_dpup,
  mt_dpdown,
  mt_dpleft,
  mt_dpright,
  mt_leftx,
  mt_lefty,
  mt_rightx,
  mt_righty,
  mt_back,
  kMappingTargets,
};

enum MappingPlatform : int32_t {
  kPlatformUnknown = -1,
  kPlatformWindows = 0,
  kPlatformMacOsX = 1,
  kPlatformLinux = 6,
};

struct MappingEntry {
  enum Kind : int32_t { None, Axis, Button, Hat };
  Kind kind = None;
  int32_t index = -1;
  int32_t mask = -1; // of a hat: up 1, right 2, down 4, left 8
};

struct HardwareMapping {
  std::string guid; // 32 hexadecimal digits
  std::string name;
  int32_t platform = kPlatformUnknown;
  std::array<MappingEntry, kMappingTargets> entries;
};

// Newest first.
std::vector<HardwareMapping>& GamepadMappings();

// Adds the mappings of every line; bad lines are logged and left out. Lines end in CR or LF, "#" begins a
// comment.
void GamepadMapping_Parse(std::string_view text);
// One line a mapping, in the form that the parser reads.
std::string GamepadMapping_Text(const HardwareMapping& mapping);
// Index of the newest mapping for the device on this system, -1 none.
int32_t GamepadMapping_Find(std::string_view guid);
const char* GamepadMapping_OwnRows(); // the text that the program carries
// "a", "leftx" …; -1 for an unknown name.
int32_t GamepadMapping_Target(std::string_view name);

} // namespace vesk
