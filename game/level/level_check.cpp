#include "game/level/level_check.h"

#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/GameTables.h"
#include "game/level/catalogue.h"
#include "game/level/collision_codes.h"
#include "game/level/level_build.h"
#include "game/level/level_file.h"
#include "game/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>
#include <optional>
#include <set>

namespace vesk {

namespace {

constexpr int kLeastWidth = 24, kLeastHeight = 14; // cells
constexpr int kAtlasRows = static_cast<int>(kCollisionCodes.size()) / kAtlasColumns;
constexpr std::string_view kWaterColours[] = {"Red", "Blue", "Green"};

// What takes a number out of the text on its cell.
struct Numbered {
  const char* layer;
  std::string_view code;
};
constexpr Numbered kNumbered[] = {
    {"OBJECTS", "Code Input Block"},        {"OBJECTS", "Timed Platform"},  {"OBJECTS", "Moving Rope"},
    {"OBJECTS", "Touch-Start Moving Rope"}, {"OBJECTS", "Security Sensor"}, {"MARKERS", "Speed"},
};

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

template <class Visit> void ForEach(int32_t map, Visit visit) {
  for (RValue key = ds_map_find_first(map); !key.IsUndefined(); key = ds_map_find_next(map, key))
    visit(ValueAsText(key), ds_map_find_value(map, key));
}

// "12,7" as two whole numbers of at least 0.
std::optional<Cell> ExactCell(std::string_view key) {
  Cell cell;
  const size_t comma = key.find(',');
  if (comma == std::string_view::npos) return {};
  const auto read = [](std::string_view digits, int& number) {
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && end == digits.data() + digits.size() && number >= 0 &&
           (digits.size() == 1 || digits[0] != '0');
  };
  if (!read(key.substr(0, comma), cell.x) || !read(key.substr(comma + 1), cell.y)) return {};
  return cell;
}

class Checker {
public:
  explicit Checker(int32_t root) : m_root(root) {}

  LevelReport Run() {
    if (!ds_map_exists(m_root, kMainSection)) Fault("there is no section \"Main\"");
    if (ds_map_size(m_root) > kMaxSections)
      Fault("there are " + std::to_string(ds_map_size(m_root)) + " sections; " +
            std::to_string(kMaxSections) + " are the most");
    ForEach(m_root, [&](const std::string& name, const RValue& section) {
      m_section = name;
      if (ds_map_owns_map(m_root, name))
        CheckSection(ValueAsInt32(section));
      else
        Fault("is not a section");
    });
    return std::move(m_report);
  }

private:
  void Fault(const std::string& what) {
    m_report.faults.push_back(m_section.empty() ? what : "section " + Quoted(m_section) + ": " + what);
  }
  void FaultAt(const std::string& layer, const std::string& cell, const std::string& what) {
    m_report.faults.push_back("section " + Quoted(m_section) + ", " + layer + ", cell " + cell + ": " + what);
  }

  // The whole number of a setting within its bounds; none after a fault.
  std::optional<int> Whole(int32_t section, const char* key, int low, int high) {
    const RValue value = ds_map_find_value(section, key);
    if (value.IsUndefined()) {
      Fault(std::string(key) + " is missing");
      return {};
    }
    const double number = value.IsNumber() && !ds_map_owns_map(section, key) ? ValueAsReal(value) : NAN;
    if (!(number >= low && number <= high) || number != std::floor(number)) {
      Fault(std::string(key) + " is " + (value.IsString() ? Quoted(value.Text()) : ValueAsText(value)) +
            ", not a whole number from " + std::to_string(low) + " to " + std::to_string(high));
      return {};
    }
    return static_cast<int>(number);
  }

  void Label(int32_t section, const char* key, const std::function<bool(std::string_view)>& known) {
    const RValue value = ds_map_find_value(section, key);
    if (value.IsUndefined())
      Fault(std::string(key) + " is missing");
    else if (!value.IsString())
      Fault(std::string(key) + " is not a text");
    else if (!known(value.Text()))
      Fault(std::string(key) + " is unknown: " + Quoted(value.Text()));
  }

  void CheckSection(int32_t section) {
    constexpr int kMost = 100000; // cells; far beyond what a screen can be scrolled over
    const std::optional<int> width = Whole(section, "WIDTH", kLeastWidth, kMost);
    const std::optional<int> height = Whole(section, "HEIGHT", kLeastHeight, kMost);
    m_width = width.value_or(kMost);
    m_height = height.value_or(kMost);
    Whole(section, "RAIN", 0, 1);
    Whole(section, "DARKNESS", 0, 1);
    Whole(section, "WATER_LEVEL", 0, m_height);
    Label(section, "MUSIC", [](std::string_view label) {
      return std::ranges::any_of(MusicLabels(), [&](const MusicLabel& row) { return row.label == label; });
    });
    Label(section, "BACKGROUND", [](std::string_view label) {
      return std::ranges::any_of(BackgroundLabels(),
                                 [&](const BackgroundLabel& row) { return row.label == label; });
    });
    Label(section, "WATER_COLOR", [](std::string_view label) {
      return std::ranges::find(kWaterColours, label) != std::end(kWaterColours);
    });
    constexpr std::string_view kSettings[] = {"HEIGHT", "WIDTH",    "MUSIC",       "BACKGROUND",
                                              "RAIN",   "DARKNESS", "WATER_LEVEL", "WATER_COLOR"};
    ForEach(section, [&](const std::string& key, const RValue&) {
      if (std::ranges::find(kSettings, key) == std::end(kSettings) &&
          std::ranges::find(kLayers, key) == std::end(kLayers))
        Fault("has an unknown key " + Quoted(key));
    });
    for (const char* layer : kLayers) CheckLayer(section, layer);
  }

  void CheckLayer(int32_t section, const std::string& layer) {
    const RValue map = ds_map_find_value(section, layer);
    if (map.IsUndefined()) return Fault(layer + " is missing");
    if (!ds_map_owns_map(section, layer)) return Fault(layer + " is not a map of cells");
    ForEach(ValueAsInt32(map), [&](const std::string& key, const RValue& value) {
      const std::optional<Cell> cell = ExactCell(key);
      if (!cell) return FaultAt(layer, Quoted(key), "is not a cell such as \"12,7\"");
      if (cell->x >= m_width || cell->y >= m_height)
        FaultAt(layer, key,
                "lies outside the section of " + std::to_string(m_width) + " by " + std::to_string(m_height));
      if (!value.IsString()) return FaultAt(layer, key, "the value is not a text");
      CheckCode(section, layer, key, *cell, std::string(value.Text()));
    });
  }

  void CheckCode(int32_t section, const std::string& layer, const std::string& key, Cell cell,
                 const std::string& code) {
    if (layer.starts_with("TILES")) {
      const std::optional<Cell> atlas = ExactCell(code);
      if (!atlas || atlas->x >= kAtlasColumns || atlas->y >= kAtlasRows)
        FaultAt(layer, key, "the atlas has no tile " + Quoted(code));
    } else if (layer == "MODIFIERS") {
      CheckModifier(section, key, cell, code);
    } else {
      const CatalogueRow* row = layer == "OBJECTS" ? FindObjectCode(code) : FindMarkerCode(code);
      if (!row) return FaultAt(layer, key, "unknown code " + Quoted(code));
      if (!IsBuilt(row->object)) ++m_report.withoutRules[code];
    }
  }

  void CheckModifier(int32_t section, const std::string& key, Cell cell, const std::string& code) {
    if (FindModifierCode(code)) return;
    if (code.starts_with(kDestinationPrefix)) {
      if (code.size() == kDestinationPrefix.size()) FaultAt("MODIFIERS", key, "the destination has no name");
    } else if (!code.starts_with(kTextPrefix)) {
      FaultAt("MODIFIERS", key, "unknown code " + Quoted(code));
    } else {
      const std::string text = code.substr(kTextPrefix.size());
      if (IsWayOut(section, cell)) CheckWayOut(section, key, text);
      if (IsPatrol(section, cell) && !Destinations(section).contains(text))
        FaultAt("MODIFIERS", key, "flies to " + Quoted(text) + ", which is no destination here");
      for (const Numbered& taker : kNumbered)
        if (Holds(section, taker.layer, cell, [&](std::string_view on) { return on == taker.code; }) &&
            text.find_first_of("0123456789") == std::string::npos)
          FaultAt("MODIFIERS", key,
                  Quoted(taker.code) + " asks for a number, and " + Quoted(text) + " has none");
    }
  }

  template <class Wanted>
  static bool Holds(int32_t section, const char* layer, Cell at, const Wanted& wanted) {
    const RValue map = ds_map_find_value(section, layer);
    if (!ds_map_owns_map(section, layer)) return false;
    const RValue code = ds_map_find_value(ValueAsInt32(map), cell_key(at.x, at.y));
    return code.IsString() && wanted(code.Text());
  }

  // Whether a text on the cell names the other end of a patrol.
  static bool IsPatrol(int32_t section, Cell cell) {
    return Holds(section, "OBJECTS", cell, [](std::string_view code) { return code == "Zephlet"; });
  }

  // Whether a text on the cell tells where something leads: doors fill their cell and the one below.
  static bool IsWayOut(int32_t section, Cell cell) {
    const auto door = [](std::string_view code) { return code.ends_with("Door"); };
    const auto marker = [](std::string_view code) { return code == "Warp Marker"; };
    const auto note = [](std::string_view code) { return code.ends_with("Warp Note Block"); };
    return Holds(section, "MARKERS", cell, door) || Holds(section, "MARKERS", {cell.x, cell.y - 1}, door) ||
           Holds(section, "MARKERS", cell, marker) || Holds(section, "OBJECTS", cell, note);
  }

  static std::set<std::string> Destinations(int32_t section) {
    std::set<std::string> names;
    const RValue modifiers = ds_map_find_value(section, "MODIFIERS");
    if (ds_map_owns_map(section, "MODIFIERS"))
      ForEach(ValueAsInt32(modifiers), [&](const std::string&, const RValue& code) {
        if (code.IsString() && code.Text().starts_with(kDestinationPrefix))
          names.emplace(code.Text().substr(kDestinationPrefix.size()));
      });
    return names;
  }

  void CheckWayOut(int32_t section, const std::string& key, const std::string& text) {
    const size_t comma = text.find(',');
    const std::string first = text.substr(0, comma);
    const std::string second = comma == std::string::npos ? "" : text.substr(comma + 1);
    const RValue other = ds_map_find_value(m_root, first);
    if (!ds_map_owns_map(m_root, first)) {
      if (!Destinations(section).contains(first))
        FaultAt("MODIFIERS", key,
                "leads to " + Quoted(first) + ", which is neither a section nor a destination here");
    } else if (!second.empty() && !Destinations(ValueAsInt32(other)).contains(second)) {
      FaultAt("MODIFIERS", key, "section " + Quoted(first) + " has no destination " + Quoted(second));
    }
  }

  int32_t m_root;
  std::string m_section;
  int m_width = 0, m_height = 0;
  LevelReport m_report;
};

} // namespace

LevelReport CheckLevel(int32_t root) { return Checker(root).Run(); }

std::vector<SectionCounts> CountLevel(int32_t root) {
  std::vector<SectionCounts> sections;
  ForEach(root, [&](const std::string& name, const RValue& value) {
    if (!ds_map_owns_map(root, name)) return;
    const int32_t map = ValueAsInt32(value);
    SectionCounts counts;
    counts.name = name;
    const auto number = [&](const char* key) { return ValueAsInt32(ds_map_find_value(map, key)); };
    const auto text = [&](const char* key) {
      const RValue found = ds_map_find_value(map, key);
      return found.IsString() ? std::string(found.Text()) : std::string();
    };
    counts.width = number("WIDTH");
    counts.height = number("HEIGHT");
    counts.waterLevel = number("WATER_LEVEL");
    counts.rain = number("RAIN") == 1;
    counts.darkness = number("DARKNESS") == 1;
    counts.music = text("MUSIC");
    counts.background = text("BACKGROUND");
    counts.waterColour = text("WATER_COLOR");
    for (const char* layer : kLayers) {
      const RValue cells = ds_map_find_value(map, layer);
      if (!ds_map_owns_map(map, layer)) continue;
      counts.layers[layer] = ds_map_size(ValueAsInt32(cells));
      const std::string_view kind = layer;
      auto* codes = kind == "OBJECTS"     ? &counts.objects
                    : kind == "MODIFIERS" ? &counts.modifiers
                    : kind == "MARKERS"   ? &counts.markers
                                          : nullptr;
      if (!codes) continue;
      ForEach(ValueAsInt32(cells), [&](const std::string&, const RValue& code) {
        std::string counted = ValueAsText(code);
        for (const std::string_view prefix : {kTextPrefix, kDestinationPrefix})
          if (counted.starts_with(prefix)) counted = prefix;
        ++(*codes)[counted];
      });
    }
    sections.push_back(std::move(counts));
  });
  return sections;
}

int32_t ReadLevelTree(std::string_view file, std::string& why) {
  if (file.starts_with("\xEF\xBB\xBF")) file.remove_prefix(3);
  const size_t end = file.find('\n');
  if (end != std::string_view::npos && file.find_first_not_of(" \t\r\n", end) != std::string_view::npos) {
    why = "a level is one line of JSON text, and more follows the first";
    return -1;
  }
  const int32_t root = json_decode(std::string(file.substr(0, end)));
  if (root >= 0 && !ds_map_exists(root, "default")) return root;
  if (root >= 0) ds_map_destroy(root);
  why = "the file is not JSON text of a level";
  return -1;
}

} // namespace vesk
