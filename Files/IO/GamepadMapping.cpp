#include "Files/IO/GamepadMapping.h"

#include "Files/Base/Console.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace vesk {

namespace {

std::vector<HardwareMapping> mappings;

constexpr const char* kTargetNames[kMappingTargets] = {
    "a",
    "b",
    "x",
    "y",
    "leftshoulder",
    "rightshoulder",
    "lefttrigger",
    "righttrigger",
    "guide",
    "start",
    "leftstick",
    "rightstick",
    "dpup",
    "dpdown",
    "dpleft",
    "dpright",
    "leftx",
    "lefty",
    "rightx",
    "righty",
    "back",
};

struct PlatformRow {
  int32_t platform;
  const char* name;
};
constexpr PlatformRow kPlatforms[] = {
    {kPlatformWindows, "windows"}, {kPlatformMacOsX, "mac os x"}, {kPlatformLinux, "linux"}};

bool EqualWithoutCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
}

// Cuts the text up to the separator off the front; all of it when there is none.
std::string_view Cut(std::string_view& text, char separator) {
  const size_t end = text.find(separator);
  const std::string_view part = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return part;
}

bool ReadNumber(std::string_view text, int32_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number >= 0;
}

bool ReadEntry(std::string_view value, MappingEntry& entry) {
  MappingEntry read;
  std::string_view rest = value.substr(1);
  switch (value[0]) {
  case 'a': read.kind = MappingEntry::Axis; break;
  case 'b': read.kind = MappingEntry::Button; break;
  case 'h': {
    read.kind = MappingEntry::Hat;
    const std::string_view hat = Cut(rest, '.');
    if (!ReadNumber(rest, read.mask)) return false;
    rest = hat;
    break;
  }
  default: return false;
  }
  if (!ReadNumber(rest, read.index)) return false;
  entry = read;
  return true;
}

void ReadPair(std::string_view pair, HardwareMapping& mapping) {
  const std::string_view key = Cut(pair, ':');
  if (pair.empty()) return;
  if (key == "platform") {
    for (const PlatformRow& row : kPlatforms)
      if (EqualWithoutCase(pair, row.name)) mapping.platform = row.platform;
    return;
  }
  const int32_t target = GamepadMapping_Target(key);
  if (target < 0) return;
  if (!ReadEntry(pair, mapping.entries[static_cast<size_t>(target)]))
    ReleaseConsole().Output("Unable to parse gamepad mapping value - %s\n", std::string(pair).c_str());
}

void ReadLine(std::string_view line) {
  if (line.starts_with('#')) return;
  if (std::count(line.begin(), line.end(), ',') < 2) {
    ReleaseConsole().Output("Unable to parse mapping string - %s\n", std::string(line).c_str());
    return;
  }
  HardwareMapping mapping;
  mapping.guid = Cut(line, ',');
  mapping.name = Cut(line, ',');
  while (!line.empty()) ReadPair(Cut(line, ','), mapping);
  mappings.insert(mappings.begin(), std::move(mapping));
}

} // namespace

std::vector<HardwareMapping>& GamepadMappings() { return mappings; }

void GamepadMapping_Parse(std::string_view text) {
  constexpr std::string_view kLineEnds = "\r\n";
  while (true) {
    const size_t begin = text.find_first_not_of(kLineEnds);
    if (begin == std::string_view::npos) return;
    text.remove_prefix(begin);
    const size_t end = std::min(text.find_first_of(kLineEnds), text.size());
    ReadLine(text.substr(0, end));
    text.remove_prefix(end);
  }
}

std::string GamepadMapping_Text(const HardwareMapping& mapping) {
  std::string text = mapping.guid + "," + mapping.name + ",";
  for (size_t target = 0; target < kMappingTargets; ++target) {
    const MappingEntry& entry = mapping.entries[target];
    if (entry.kind == MappingEntry::None) continue;
    text += FormatText("%s:", kTargetNames[target]);
    if (entry.kind == MappingEntry::Axis) text += FormatText("a%d,", entry.index);
    if (entry.kind == MappingEntry::Button) text += FormatText("b%d,", entry.index);
    if (entry.kind == MappingEntry::Hat) text += FormatText("h%d.%d,", entry.index, entry.mask);
  }
  for (const PlatformRow& row : kPlatforms)
    if (row.platform == mapping.platform) text += FormatText("platform:%s,", row.name);
  return text;
}

int32_t GamepadMapping_Find(std::string_view guid) {
  for (size_t at = 0; at < mappings.size(); ++at) {
    const HardwareMapping& mapping = mappings[at];
    const bool fits = mapping.platform == kPlatformLinux || mapping.platform == kPlatformUnknown;
    if (fits && EqualWithoutCase(mapping.guid, guid)) return static_cast<int32_t>(at);
  }
  return -1;
}

int32_t GamepadMapping_Target(std::string_view name) {
  for (size_t target = 0; target < kMappingTargets; ++target)
    if (name == kTargetNames[target]) return static_cast<int32_t>(target);
  return -1;
}

} // namespace vesk
