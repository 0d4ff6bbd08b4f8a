#include "tests/scenarios/EditorDesk.h"

#include "Files/Function/Function_Data_Structures.h"
#include "Files/Object/Instance.h"
#include "Files/Object/Object.h"
#include "Files/Room/Room.h"
#include "Files/Sound/Audio_Main.h"
#include "apps/container/EmbeddedContainer.h"
#include "game/level/level_build.h"
#include "sim/Look.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace vesk {

namespace {

RValue Read(CInstance* instance, const std::string& variable) {
  VariablePath path;
  EXPECT_TRUE(ParseVariable(variable, path)) << variable;
  return ReadVariable(instance, path);
}

CInstance* Oldest(int object) {
  const auto all = InstancesOf(object);
  if (all.empty()) ADD_FAILURE() << "no " << Object_Name(object);
  return all.empty() ? nullptr : all.front();
}

int SectionMap() { return ValueAsInt32(Read(Oldest(obj_editor), "section_data")); }

} // namespace

EditorDesk::EditorDesk(const std::string& directory, int32_t seed) {
  SimulationSettings settings;
  settings.directory = directory;
  settings.seed = seed;
  settings.container = {EmbeddedContainer(), EmbeddedContainerSize()};
  m_game = std::make_unique<Simulation>(settings);
  EXPECT_EQ(m_game->Start(), "");
}
EditorDesk::~EditorDesk() { ExpectHealthy(); }

void EditorDesk::OpenNew(const std::string& level) {
  MoveTo(192, 108);
  EXPECT_EQ(m_game->New(level), "");
}

void EditorDesk::OpenMenu() {
  MoveTo(192, 108);
  EXPECT_EQ(m_game->Room("rm_mainmenu"), "");
}

void EditorDesk::Write(const std::string& level, const std::string& text) const {
  std::filesystem::create_directories(Directory() + "/Level");
  std::ofstream(Directory() + "/Level/" + level + ".json", std::ios::binary) << text;
}

std::string EditorDesk::Read(const std::string& level) const {
  std::ifstream file(Directory() + "/Level/" + level + ".json", std::ios::binary);
  std::ostringstream whole;
  whole << file.rdbuf();
  return whole.str();
}

// ---- hands ----

void EditorDesk::MoveTo(double x, double y) {
  m_game->Mouse(x, y);
  Step();
}

void EditorDesk::Click(double x, double y, Mouse button) {
  MoveTo(x, y);
  Down(button);
  Step();
  Up(button);
  Step();
}

void EditorDesk::Drag(double x1, double y1, double x2, double y2, Mouse button) {
  MoveTo(x1, y1);
  Down(button);
  Step();
  const int moves = std::max(1, static_cast<int>(std::ceil(std::hypot(x2 - x1, y2 - y1) / 8)));
  for (int move = 1; move <= moves; ++move)
    MoveTo(x1 + (x2 - x1) * move / moves, y1 + (y2 - y1) * move / moves);
  Up(button);
  Step();
}

void EditorDesk::Tap(int key, int64_t frames) {
  Hold(key);
  Step(frames);
  Release(key);
  Step();
}

void EditorDesk::Type(const std::string& text) {
  for (const char character : text) m_game->Type(character);
  Step();
}

CInstance* EditorDesk::ButtonWhose(const std::string& variable, const std::string& text) const {
  for (CInstance* button : InstancesOf(obj_button))
    if (ValueAsText(vesk::Read(button, variable)) == text) return button;
  ADD_FAILURE() << "no button whose " << variable << " is \"" << text << "\"";
  return nullptr;
}

void EditorDesk::ClickOn(CInstance* button) {
  if (!button) return;
  const bool fixed = button->objectIndex == obj_button_fixed; // in the room
  Click(ValueAsReal(vesk::Read(button, "x")) + 11 - (fixed ? ViewX() : 0),
        ValueAsReal(vesk::Read(button, "y")) + 11 - (fixed ? ViewY() : 0));
}

void EditorDesk::ClickButton(const std::string& tooltip) { ClickOn(ButtonWhose("text", tooltip)); }
void EditorDesk::ClickNotify(const std::string& notify) { ClickOn(ButtonWhose("notify", notify)); }

void EditorDesk::Choose(const std::string& tool, const std::string& tab, const std::string& entry) {
  ClickButton(tool);
  if (!tab.empty()) ClickNotify(tab);
  if (!entry.empty()) ClickNotify(entry);
  if (!entry.empty()) Step(6); // until the click that chose is over
}

void EditorDesk::ChooseTiles(int column, int row, int columns, int rows, bool background) {
  ClickButton("Tiles");
  if (background) ClickNotify("BG TILES");
  const double x = 16 + column * kCellSize + 8, y = 66 + row * kCellSize + 8;
  Drag(x, y, x + (columns - 1) * kCellSize, y + (rows - 1) * kCellSize);
  Step(6);
}

void EditorDesk::MoveToCell(int cx, int cy) {
  const double x = cx * kCellSize + 8 - ViewX(), y = cy * kCellSize + 8 - ViewY();
  EXPECT_TRUE(x > 8 && x < 376 && y > 33 && y < 208) << cx << "," << cy << " is not in reach";
  MoveTo(x, y);
}

void EditorDesk::ClickCell(int cx, int cy, Mouse button) {
  MoveToCell(cx, cy);
  Down(button);
  Step();
  Up(button);
  Step();
}

// ---- looking ----

int EditorDesk::RoomNow() const { return Rooms().currentIndex; }
size_t EditorDesk::Count(int object) const { return InstancesOf(object).size(); }
double EditorDesk::Real(int object, const std::string& variable) const {
  CInstance* it = Oldest(object);
  return it ? ValueAsReal(vesk::Read(it, variable)) : NAN;
}
std::string EditorDesk::Text(int object, const std::string& variable) const {
  CInstance* it = Oldest(object);
  return it ? ValueAsText(vesk::Read(it, variable)) : "";
}
double EditorDesk::Global(const std::string& variable) const {
  return ValueAsReal(vesk::Read(nullptr, variable));
}
std::string EditorDesk::GlobalText(const std::string& variable) const {
  return ValueAsText(vesk::Read(nullptr, variable));
}

Cells EditorDesk::Layer(const std::string& layer) const {
  Cells cells;
  const int map = ValueAsInt32(ds_map_find_value(SectionMap(), layer));
  for (RValue key = ds_map_find_first(map); !key.IsUndefined(); key = ds_map_find_next(map, key))
    cells[ValueAsText(key)] = ValueAsText(ds_map_find_value(map, key));
  return cells;
}

double EditorDesk::Setting(const std::string& key) const {
  return ValueAsReal(ds_map_find_value(SectionMap(), key));
}
std::string EditorDesk::SettingText(const std::string& key) const {
  return ValueAsText(ds_map_find_value(SectionMap(), key));
}

std::vector<std::string> EditorDesk::Sections() const {
  std::vector<std::string> names;
  const int root = static_cast<int>(Global("leveldata"));
  for (RValue key = ds_map_find_first(root); !key.IsUndefined(); key = ds_map_find_next(root, key))
    names.push_back(ValueAsText(key));
  return names;
}

std::vector<std::string> EditorDesk::SoundsStarted() const { return Audio_TakeStarted(); }

void EditorDesk::ExpectHealthy() const { EXPECT_EQ(m_game->FatalReport(), ""); }

} // namespace vesk
