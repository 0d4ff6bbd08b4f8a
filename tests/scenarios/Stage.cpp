#include "tests/scenarios/Stage.h"

#include "Files/Graphics/Graphics.h"
#include "Files/Object/Object.h"
#include "apps/container/EmbeddedContainer.h"
#include "sim/Look.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace vesk {

namespace {

constexpr size_t kFewestColumns = 24, kFewestRows = 14; // what the view shows

struct Drawn {
  char letter;
  const char* atlas; // a cell of the atlas with that collision
};
constexpr Drawn kDrawn[] = {
    {'#', "0,4"},  {'=', "1,4"}, {'|', "33,7"}, {'%', "36,27"}, {'G', "39,12"}, {'H', "39,11"}, {'/', "0,0"},
    {'\\', "2,0"}, {'K', "4,0"}, {'L', "5,0"},  {'M', "0,3"},   {'N', "2,3"},   {'O', "4,3"},   {'P', "5,3"},
};

struct NamedKey {
  char letter;
  int code;
};
constexpr NamedKey kKeys[] = {{'L', 37}, {'U', 38}, {'R', 39}, {'D', 40}, {'J', 'X'}, {'A', 'Z'}};

std::string CellName(size_t cx, size_t cy) { return std::to_string(cx) + "," + std::to_string(cy); }

std::string MapText(const std::map<std::string, std::string>& cells) {
  std::string text = "{";
  for (const auto& [cell, code] : cells)
    text += (text.size() > 1 ? "," : "") + JsonText(cell) + ":" + JsonText(code);
  return text + "}";
}

VariablePath PathOf(std::string_view variable) {
  VariablePath path;
  EXPECT_TRUE(ParseVariable(variable, path) && VariableExists(path.name)) << "no variable " << variable;
  return path;
}

} // namespace

Rows Framed(const Rows& rows) {
  size_t columns = kFewestColumns;
  for (const std::string& row : rows) columns = std::max(columns, row.size());
  Rows framed(rows.size() < kFewestRows ? kFewestRows - rows.size() : 0, "");
  framed.insert(framed.end(), rows.begin(), rows.end());
  for (std::string& row : framed) row.resize(columns, '.');
  return framed;
}

std::string SectionText(const Rows& rows, const LevelSettings& settings) {
  const Rows framed = Framed(rows);
  std::map<std::string, std::string> tiles, objects = settings.objects;
  for (size_t cy = 0; cy < framed.size(); ++cy)
    for (size_t cx = 0; cx < framed[cy].size(); ++cx) {
      const char letter = framed[cy][cx];
      if (letter == 'S') objects[CellName(cx, cy)] = settings.hero;
      for (const Drawn& drawn : kDrawn)
        if (drawn.letter == letter) tiles[CellName(cx, cy)] = drawn.atlas;
    }
  std::ostringstream text;
  text << "{\"HEIGHT\":" << framed.size() << ",\"WIDTH\":" << framed[0].size()
       << ",\"MUSIC\":" << JsonText(settings.music) << ",\"BACKGROUND\":" << JsonText(settings.background)
       << ",\"RAIN\":" << settings.rain << ",\"DARKNESS\":" << settings.darkness
       << ",\"WATER_LEVEL\":" << settings.water << ",\"WATER_COLOR\":" << JsonText(settings.waterColor)
       << ",\"TILES\":" << MapText(tiles) << ",\"TILES_BG\":{},\"OBJECTS\":" << MapText(objects)
       << ",\"MODIFIERS\":" << MapText(settings.modifiers) << ",\"MARKERS\":" << MapText(settings.markers)
       << "}";
  return text.str();
}

std::string LevelText(const Rows& rows, const LevelSettings& settings) {
  return "{\"Main\":" + SectionText(rows, settings) + "}";
}

Stage::Stage(int32_t seed, bool pictures) {
  SimulationSettings settings;
  settings.seed = seed;
  settings.pictures = pictures;
  settings.container = {EmbeddedContainer(), EmbeddedContainerSize()};
  m_game = std::make_unique<Simulation>(settings);
  m_game->DrawPictures(false);
  EXPECT_EQ(m_game->Start(), "");
}

Stage::Stage(const Rows& rows, const LevelSettings& settings, int32_t seed, bool pictures)
    : Stage(seed, pictures) {
  WriteLevel("drawn", LevelText(rows, settings));
  EXPECT_EQ(m_game->Play(LevelFile("drawn"), "Main"), "");
}

Stage::~Stage() { EXPECT_EQ(m_game->FatalReport(), ""); }

std::string Stage::LevelFile(const std::string& name) const {
  return m_game->Directory() + "/Level/" + name + ".json";
}

void Stage::WriteLevel(const std::string& name, const std::string& text) const {
  std::ofstream file(LevelFile(name), std::ios::binary);
  file << text << "\n";
  ASSERT_TRUE(file.good());
}

std::string Stage::ReadLevel(const std::string& name) const {
  std::ifstream file(LevelFile(name), std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

void Stage::Draw(int64_t frames) {
  Step(frames - 1);
  m_game->DrawPictures(true);
  Step();
  m_game->DrawPictures(false);
}

void Stage::Hold(std::string_view keys) {
  for (const NamedKey& key : kKeys) {
    const bool before = m_held.find(key.letter) != std::string::npos;
    const bool now = keys.find(key.letter) != std::string_view::npos;
    if (before != now) m_game->Key(key.code, now);
  }
  m_held = keys;
}

void Stage::Settle() {
  for (int frame = 0; frame < 200; ++frame) {
    if (Real("obj_tovin", "state") == 0 && Real("obj_tovin", "gravity") == 0 &&
        Real("obj_tovin", "vspeed") == 0 && Real("obj_tovin", "statedelay") == 0)
      return;
    Step();
  }
  FAIL() << "the hero never stands";
}

std::vector<CInstance*> Stage::All(std::string_view object) const {
  const int32_t index = Object_FindByName(std::string(object).c_str());
  EXPECT_GE(index, 0) << "no object " << object;
  return InstancesOf(index);
}

Pixel Stage::At(int x, int y) const {
  const WindowPicture picture = Graphics_ReadBackBuffer();
  EXPECT_TRUE(x >= 0 && x < picture.width && y >= 0 && y < picture.height) << x << ", " << y;
  const size_t at =
      4 * (static_cast<size_t>(y) * static_cast<size_t>(picture.width) + static_cast<size_t>(x));
  if (at + 2 >= picture.pixels.size()) return {};
  return {picture.pixels[at], picture.pixels[at + 1], picture.pixels[at + 2]};
}

size_t Stage::Count(std::string_view object) const { return All(object).size(); }

double RealOf(CInstance* instance, std::string_view variable) {
  return ValueAsReal(ReadVariable(instance, PathOf(variable)));
}

std::string TextOf(CInstance* instance, std::string_view variable) {
  const VariablePath path = PathOf(variable);
  const RValue value = ReadVariable(instance, path);
  if (value.IsString()) return std::string(value.Text());
  std::string text = JsonValue(path.name, value);
  std::erase(text, '"');
  return text;
}

double Stage::Real(std::string_view object, std::string_view variable) const {
  const auto found = All(object);
  EXPECT_FALSE(found.empty()) << "no " << object << " lives";
  return found.empty() ? 0 : RealOf(found.front(), variable);
}

std::string Stage::Text(std::string_view object, std::string_view variable) const {
  const auto found = All(object);
  EXPECT_FALSE(found.empty()) << "no " << object << " lives";
  return found.empty() ? "" : TextOf(found.front(), variable);
}

double Stage::Global(std::string_view variable) const { return RealOf(nullptr, variable); }
std::string Stage::GlobalText(std::string_view variable) const { return TextOf(nullptr, variable); }

void Stage::Set(std::string_view object, std::string_view variable, double value) {
  for (CInstance* it : All(object))
    EXPECT_TRUE(WriteVariable(it, PathOf(variable), RValue(value))) << variable;
}

void Stage::SetGlobal(std::string_view variable, double value) {
  EXPECT_TRUE(WriteVariable(nullptr, PathOf(variable), RValue(value))) << variable;
}

void Stage::SetGlobal(std::string_view variable, const std::string& value) {
  EXPECT_TRUE(WriteVariable(nullptr, PathOf(variable), RValue(value))) << variable;
}

} // namespace vesk
