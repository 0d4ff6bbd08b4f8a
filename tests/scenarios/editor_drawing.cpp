// Drawing a section with the mouse: placing, stamps, fills, erasing, saving, and the map that holds it all.
#include "tests/scenarios/DrawnFrame.h"
#include "tests/scenarios/EditorDesk.h"

#include "game/GameTables.h"
#include "game/level/catalogue.h"
#include "game/level/level_build.h"
#include "game/text.h"
#include "sim/Look.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <random>
#include <set>

namespace vesk {

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

const std::string kNewLevel =
    R"({ "Main": { "MUSIC": "Sick", "DARKNESS": 0.000000, "OBJECTS": { }, "WATER_COLOR": "Red", "TILES_BG": { }, )"
    R"("WIDTH": 250.000000, "MODIFIERS": { }, "HEIGHT": 32.000000, "BACKGROUND": "Wall", "MARKERS": { }, )"
    R"("WATER_LEVEL": 0.000000, "RAIN": 0.000000, "TILES": { } } })";

std::string Replaced(std::string text, const std::string& part, const std::string& with) {
  const size_t at = text.find(part);
  EXPECT_NE(at, std::string::npos) << part;
  return at == std::string::npos ? text : text.replace(at, part.size(), with);
}

void Open(EditorDesk& desk, const std::string& level, const std::string& text) {
  desk.Write(level, text);
  ASSERT_EQ(desk.Game().Edit(desk.Directory() + "/Level/" + level + ".json", "Main"), "");
  desk.MoveTo(192, 108);
}

std::string SmallLevel() {
  return Replaced(Replaced(kNewLevel, "250.000000", "24.000000"), "\"HEIGHT\": 32.000000",
                  "\"HEIGHT\": 14.000000");
}

} // namespace

TEST(EditorDrawing, ANewLevelIsNamedDrawnAndSavedToTheExpectedBytes) {
  EditorDesk desk;
  desk.OpenMenu();
  desk.ClickNotify("NEW");
  desk.Type("My first");
  desk.ClickNotify("RANDOM");
  desk.Step(40);
  ASSERT_EQ(desk.RoomNow(), rm_editor);
  desk.ClickButton("Save");
  EXPECT_EQ(desk.Read("My first"), kNewLevel + "\n");
  desk.Choose("Item", "", "Coin");
  desk.ClickCell(5, 6);
  desk.Choose("Modifier", "ITEM", "Star");
  desk.ClickCell(5, 6);
  desk.Choose("Warp", "", "Door");
  desk.ClickCell(7, 6);
  desk.ChooseTiles(1, 3);
  desk.ClickCell(3, 8);
  desk.ChooseTiles(2, 4, 1, 1, true);
  desk.ClickCell(3, 8);
  EXPECT_EQ(desk.Read("My first"), kNewLevel + "\n"); // until it is saved
  desk.SoundsStarted();
  desk.ClickButton("Save");
  EXPECT_THAT(desk.SoundsStarted(), Contains("snd_whistle"));
  std::string drawn = kNewLevel;
  drawn = Replaced(drawn, R"("OBJECTS": { })", R"("OBJECTS": { "5,6": "Coin" })");
  drawn = Replaced(drawn, R"("MODIFIERS": { })", R"("MODIFIERS": { "5,6": "Star" })");
  drawn = Replaced(drawn, R"("MARKERS": { })", R"("MARKERS": { "7,6": "Door" })");
  drawn = Replaced(drawn, R"("TILES_BG": { })", R"("TILES_BG": { "3,8": "2,4" })");
  drawn = Replaced(drawn, R"("TILES": { })", R"("TILES": { "3,8": "1,3" })");
  EXPECT_EQ(desk.Read("My first"), drawn + "\n");
  desk.ClickButton("Quit");
  desk.ClickNotify("QUIT");
  desk.Step(40);
  ASSERT_EQ(desk.RoomNow(), rm_mainmenu);
  desk.ClickNotify("EDIT");
  desk.Step(40);
  ASSERT_EQ(desk.RoomNow(), rm_editor);
  desk.Write("My first", "");
  desk.ClickButton("Save");
  EXPECT_EQ(desk.Read("My first"), drawn + "\n"); // what was loaded is saved as it was
}

namespace {

// What stands in the room at the cell under the mouse, with all that moves at its first frame.
DrawnFrame ShownOfThings(EditorDesk& desk, int cx, int cy) {
  desk.MoveToCell(cx, cy);
  for (const int object : {obj_editor_sticky, obj_editor_placeparent})
    for (CInstance* it : InstancesOf(object))
      if (ValueAsReal(ReadVariable(it, {"image_speed", kNoIndex})) != 0)
        WriteVariable(it, {"image_index", kNoIndex}, RValue(0));
  DrawnFrame frame = LookAtRoom(desk);
  std::erase_if(frame.pictures, [](const DrawnPicture& picture) {
    return picture.name.empty() || picture.name.starts_with("bg_");
  });
  return frame;
}

template <class Rows> std::vector<std::string> Codes(const Rows& rows) {
  std::vector<std::string> codes;
  for (const auto& row : rows) codes.emplace_back(row.code);
  return codes;
}

} // namespace

// Each entry of each palette shows at the mouse, stands on the map as it showed, and is rubbed out whole.
TEST(EditorDrawing, EveryButtonOfEveryPalettePlacesItsCodeAndDrawsIt) {
  struct Tab {
    const char* tool;
    const char* notify;
    const char* layer;
    size_t entries;
  };
  constexpr Tab kTabs[] = {
      {"Control", "MAIN", "OBJECTS", 11},    {"Control", "NPC", "OBJECTS", 10},
      {"Item", "MAIN", "OBJECTS", 38},       {"Item", "PLATFORM", "OBJECTS", 20},
      {"Item", "GUN", "OBJECTS", 13},        {"Item", "LIGHT", "OBJECTS", 17},
      {"Item", "DECOR", "OBJECTS", 15},      {"Block", "", "OBJECTS", 33},
      {"Enemy", "MAIN", "OBJECTS", 41},      {"Enemy", "CAVE", "OBJECTS", 27},
      {"Enemy", "CASTLE", "OBJECTS", 33},    {"Warp", "", "MARKERS", 13},
      {"Modifier", "ITEM", "MODIFIERS", 12}, {"Modifier", "GUN", "MODIFIERS", 13},
      {"Modifier", "ARROW", "MARKERS", 10},
  };
  EditorDesk desk;
  desk.OpenNew("All");
  std::map<std::string, std::vector<std::string>> placed;
  size_t letters = 0;
  for (const Tab& tab : kTabs) {
    SCOPED_TRACE(std::string(tab.tool) + " " + tab.notify);
    for (size_t entry = 0; entry < tab.entries; ++entry) {
      desk.ClickButton(tab.tool);
      if (*tab.notify) desk.ClickNotify(tab.notify);
      desk.Click(13 + static_cast<double>(entry % 15) * 24 + 11,
                 63 + static_cast<double>(entry / 15) * 24 + 11);
      ASSERT_EQ(desk.Count(obj_editor_sticky), 1u) << entry;
      const std::string code = desk.Text(obj_editor_sticky, "o_name");
      SCOPED_TRACE(code);
      desk.Step(6);
      const DrawnFrame preview = ShownOfThings(desk, 10, 8);
      EXPECT_EQ(desk.Count(obj_editor_light), 0u);
      desk.ClickCell(10, 8);
      EXPECT_THAT(desk.Layer(tab.layer), ElementsAre(Pair("10,8", code)));
      desk.Tap(kKeyEscape);
      const DrawnFrame shown = ShownOfThings(desk, 10, 8);
      EXPECT_GT(shown.pictures.size() + shown.lines.size(), 0u);
      EXPECT_EQ(shown.pictures, preview.pictures);
      EXPECT_EQ(shown.Words(), preview.Words());
      letters += shown.Words().size();
      desk.ClickCell(10, 8, Mouse::kRight);
      EXPECT_THAT(desk.Layer(tab.layer), IsEmpty());
      EXPECT_EQ(desk.Count(obj_editor_placeparent) + desk.Count(obj_editor_light), 0u);
      const DrawnFrame erased = ShownOfThings(desk, 10, 8);
      EXPECT_EQ(erased.pictures.size() + erased.lines.size(), 0u);
      placed[tab.layer].push_back(code);
    }
  }
  EXPECT_EQ(placed["OBJECTS"], Codes(ObjectCatalogue()));
  EXPECT_EQ(placed["MARKERS"], Codes(MarkerCatalogue()));
  EXPECT_EQ(placed["MODIFIERS"], Codes(ModifierCatalogue()));
  EXPECT_GT(letters, 50u); // the tags were read
}

TEST(EditorDrawing, TheClickThatChoosesNeverPlaces) {
  EditorDesk desk;
  desk.OpenNew("Careful");
  desk.ClickButton("Item");
  desk.MoveTo(24, 74);
  desk.Down();
  desk.Step();
  desk.Up();
  desk.Step();
  desk.Down(); // at once again, over the map by now
  desk.MoveTo(100, 120);
  desk.Step(20);
  EXPECT_THAT(desk.Layer("OBJECTS"), IsEmpty());
  desk.Up();
  desk.Step(3);
  desk.Down();
  desk.Step(2);
  desk.Up();
  EXPECT_EQ(desk.Layer("OBJECTS").size(), 1u);
}

TEST(EditorDrawing, DraggingPaintsAndTakenCellsStayAsTheyAre) {
  EditorDesk desk;
  desk.OpenNew("Line");
  desk.Choose("Item", "", "Coin");
  desk.ClickCell(8, 5);
  desk.Choose("Item", "", "P-Coin");
  desk.SoundsStarted();
  desk.Drag(6 * 16 + 8, 5 * 16 + 8, 11 * 16 + 8, 5 * 16 + 8);
  Cells expected;
  for (int cx = 6; cx <= 11; ++cx) expected[std::to_string(cx) + ",5"] = cx == 8 ? "Coin" : "P-Coin";
  EXPECT_EQ(desk.Layer("OBJECTS"), expected);
  EXPECT_EQ(desk.Count(obj_editor_object), 6u);
  const auto sounds = desk.SoundsStarted();
  EXPECT_EQ(std::count(sounds.begin(), sounds.end(), "snd_rapidfire"), 5);
  desk.ClickCell(8, 5); // taken: no sound, no change
  EXPECT_THAT(desk.SoundsStarted(), testing::Not(Contains("snd_rapidfire")));
}

TEST(EditorDrawing, AStampOverTheEdgePlacesWhatFits) {
  EditorDesk desk;
  Open(desk, "Edge", SmallLevel());
  desk.Hold(kKeyRight);
  desk.Hold(kKeyDown);
  desk.Step(10);
  desk.Release(kKeyRight);
  desk.Release(kKeyDown);
  desk.ChooseTiles(1, 3, 3, 3);
  desk.ClickCell(22, 7);
  EXPECT_EQ(desk.Layer("TILES"), (Cells{{"22,7", "1,3"},
                                        {"23,7", "2,3"},
                                        {"22,8", "1,4"},
                                        {"23,8", "2,4"},
                                        {"22,9", "1,5"},
                                        {"23,9", "2,5"}}));
  desk.ClickCell(24, 7); // outside
  EXPECT_EQ(desk.Layer("TILES").size(), 6u);
  EXPECT_EQ(desk.Real(obj_editor_sticky, "mtt_x"), 3);
  // Over the bottom, around a cell that is taken already.
  desk.Tap(kKeyEscape);
  for (const int cx : {22, 23})
    for (const int cy : {7, 8, 9}) desk.ClickCell(cx, cy, Mouse::kRight);
  desk.ChooseTiles(9, 4);
  desk.ClickCell(19, 13);
  desk.ChooseTiles(1, 3, 3, 3);
  desk.ClickCell(18, 12);
  EXPECT_EQ(desk.Layer("TILES"), (Cells{{"18,12", "1,3"},
                                        {"19,12", "2,3"},
                                        {"20,12", "3,3"},
                                        {"18,13", "1,4"},
                                        {"19,13", "9,4"},
                                        {"20,13", "3,4"}}));
  EXPECT_EQ(CountTiles(kTileDepth), 6);
  desk.ClickCell(19, 13); // the corner is taken: nothing of the stamp is placed
  EXPECT_EQ(desk.Layer("TILES").size(), 6u);
}

// A ring with a gap at a corner, which a flood can't pass and a diagonal can.
TEST(EditorDrawing, FillsAndErasesOfAnOddRegion) {
  EditorDesk desk;
  desk.OpenNew("Odd");
  desk.ChooseTiles(3, 3);
  const std::string wall = "3,3";
  Cells ring;
  for (int i = 4; i <= 10; ++i)
    for (const auto& [cx, cy] : {std::pair{i, 4}, std::pair{i, 10}, std::pair{4, i}, std::pair{10, i}}) {
      if (cx == 10 && cy == 10) continue;
      ring[std::to_string(cx) + "," + std::to_string(cy)] = wall;
    }
  ring["7,5"] = wall; // a nose inside
  for (const auto& [key, value] : ring) {
    const size_t comma = key.find(',');
    desk.ClickCell(std::stoi(key.substr(0, comma)), std::stoi(key.substr(comma + 1)));
  }
  ASSERT_EQ(desk.Layer("TILES"), ring);

  desk.ChooseTiles(5, 5);
  desk.Hold(kKeyShift);
  desk.SoundsStarted();
  desk.ClickCell(6, 6);
  desk.Release(kKeyShift);
  EXPECT_THAT(desk.SoundsStarted(), testing::AllOf(Contains("snd_rapidfire"), Contains("snd_magic")));
  Cells flooded = ring;
  for (int cx = 5; cx <= 9; ++cx)
    for (int cy = 5; cy <= 9; ++cy) flooded.emplace(std::to_string(cx) + "," + std::to_string(cy), "5,5");
  EXPECT_EQ(desk.Layer("TILES"), flooded);

  desk.Hold(kKeyShift);
  desk.ClickCell(9, 9, Mouse::kRight); // what has the clicked value goes, what surrounds it stays
  desk.Release(kKeyShift);
  EXPECT_EQ(desk.Layer("TILES"), ring);

  desk.Hold('C');
  desk.ClickCell(6, 6);
  desk.Release('C');
  const Cells checkered = desk.Layer("TILES");
  for (int cx = 5; cx <= 9; ++cx)
    for (int cy = 5; cy <= 9; ++cy)
      EXPECT_EQ(checkered.contains(std::to_string(cx) + "," + std::to_string(cy)),
                (cx + cy) % 2 == 0 || (cx == 7 && cy == 5))
          << cx << "," << cy;
  EXPECT_TRUE(checkered.contains("10,10")); // out through the missing corner
  EXPECT_TRUE(checkered.contains("249,31"));
  desk.Hold('C');
  desk.ClickCell(6, 6, Mouse::kRight);
  desk.Release('C');
  EXPECT_EQ(desk.Layer("TILES"), ring);
  EXPECT_EQ(desk.Count(obj_editor_fill_tool), 0u);
}

namespace {

// What a fill reaches, found by looking over and over for a cell that the rule lets one more step reach.
std::set<std::pair<int, int>> Reached(const std::set<std::pair<int, int>>& open, std::pair<int, int> from,
                                      bool diagonal) {
  std::set<std::pair<int, int>> reached{from};
  for (bool grows = true; grows;) {
    grows = false;
    for (const auto& [x, y] : open) {
      if (reached.contains({x, y})) continue;
      const auto beside = [&](int dx, int dy) { return reached.contains({x + dx, y + dy}); };
      if (diagonal ? beside(-1, -1) || beside(1, -1) || beside(-1, 1) || beside(1, 1)
                   : beside(-1, 0) || beside(1, 0) || beside(0, -1) || beside(0, 1))
        grows |= reached.insert({x, y}).second;
    }
  }
  return reached;
}

} // namespace

TEST(EditorDrawing, FillsAndErasesOfRandomRegionsReachWhatTheRuleReaches) {
  std::mt19937 chance(3);
  for (int round = 0; round < 12; ++round) {
    SCOPED_TRACE(round);
    const bool diagonal = round % 2 == 1;
    const int key = diagonal ? int{'C'} : int{kKeyShift};
    std::string walls;
    std::set<std::pair<int, int>> open;
    for (int cx = 0; cx < 24; ++cx)
      for (int cy = 0; cy < 14; ++cy)
        if (chance() % 100 < (diagonal ? 30u : 38u))
          walls += (walls.empty() ? "" : ",") + ("\"" + cell_key(cx, cy)) + "\": \"3,3\"";
        else
          open.insert({cx, cy});
    std::pair<int, int> from;
    do from = {3 + static_cast<int>(chance() % 18), 3 + static_cast<int>(chance() % 9)};
    while (!open.contains(from));
    EditorDesk desk;
    Open(desk, "Random", Replaced(SmallLevel(), "\"TILES\": { }", "\"TILES\": {" + walls + "}"));
    const Cells before = desk.Layer("TILES");
    Cells filled = before;
    for (const auto& [cx, cy] : Reached(open, from, diagonal)) filled[cell_key(cx, cy)] = "5,5";
    desk.ChooseTiles(5, 5);
    desk.Hold(key);
    desk.ClickCell(from.first, from.second);
    EXPECT_EQ(desk.Layer("TILES"), filled);
    EXPECT_EQ(CountTiles(kTileDepth), static_cast<int>(filled.size()));
    desk.ClickCell(from.first, from.second, Mouse::kRight);
    desk.Release(key);
    EXPECT_EQ(desk.Layer("TILES"), before);
    EXPECT_EQ(CountTiles(kTileDepth), static_cast<int>(before.size()));
  }
}

// A file may hold cells beyond the section's edge; they can be rubbed out as well.
TEST(EditorDrawing, WhatStandsOutsideTheSectionCanBeErased) {
  EditorDesk desk;
  Open(desk, "Outside",
       Replaced(SmallLevel(), "\"TILES\": { }",
                R"("TILES": {"-1,6":"3,3","-2,6":"3,3","-1,7":"3,3","-1,8":"5,5","-2,8":"3,3"})"));
  desk.Hold(kKeyLeft);
  desk.Step(16);
  desk.Release(kKeyLeft);
  desk.ChooseTiles(3, 3);
  desk.Hold(kKeyShift);
  desk.ClickCell(-1, 6, Mouse::kRight);
  desk.Release(kKeyShift);
  EXPECT_EQ(desk.Layer("TILES"), (Cells{{"-1,8", "5,5"}, {"-2,8", "3,3"}}));
  EXPECT_EQ(CountTiles(kTileDepth), 2);
  desk.ClickCell(-1, 8, Mouse::kRight);
  EXPECT_EQ(desk.Layer("TILES"), (Cells{{"-2,8", "3,3"}}));
  desk.ClickCell(-1, 8); // but not drawn
  EXPECT_EQ(desk.Layer("TILES").size(), 1u);
}

TEST(EditorDrawing, ErasingWithAndWithoutAChoice) {
  EditorDesk desk;
  desk.OpenNew("Rub");
  const auto fill = [&] {
    desk.ChooseTiles(3, 3);
    desk.ClickCell(9, 6);
    desk.Choose("Item", "LIGHT", "Torch Fire");
    desk.ClickCell(9, 6);
    desk.Choose("Modifier", "ITEM", "Key");
    desk.ClickCell(9, 6);
  };
  fill();
  EXPECT_EQ(desk.Count(obj_editor_light), 1u);
  desk.ChooseTiles(3, 3, 1, 1, true);
  desk.ClickCell(9, 6, Mouse::kRight); // nothing of the choice's layer is there
  EXPECT_EQ(desk.Layer("OBJECTS").size() + desk.Layer("TILES").size() + desk.Layer("MODIFIERS").size(), 3u);
  desk.Choose("Modifier", "ITEM", "Star");
  desk.ClickCell(9, 6, Mouse::kRight); // the layer counts, not the code
  EXPECT_THAT(desk.Layer("MODIFIERS"), IsEmpty());
  desk.Choose("Item", "", "Coin");
  desk.ClickCell(9, 6, Mouse::kRight);
  EXPECT_THAT(desk.Layer("OBJECTS"), IsEmpty());
  EXPECT_EQ(desk.Count(obj_editor_light), 0u);
  desk.Tap(kKeyEscape);
  desk.ClickCell(9, 6, Mouse::kRight);
  EXPECT_THAT(desk.Layer("TILES"), IsEmpty());
  fill();
  desk.ClickButton("Clear Selection");
  desk.SoundsStarted();
  desk.ClickCell(9, 6, Mouse::kRight);
  const auto sounds = desk.SoundsStarted();
  EXPECT_EQ(std::count(sounds.begin(), sounds.end(), "snd_click"), 3); // one a layer
  EXPECT_EQ(desk.Layer("OBJECTS").size() + desk.Layer("TILES").size() + desk.Layer("MODIFIERS").size(), 0u);
  EXPECT_EQ(desk.Count(obj_editor_placeparent) + desk.Count(obj_editor_light), 0u);
}

TEST(EditorDrawing, AFullUnknownCellOccupiesAndIsErased) {
  EditorDesk desk;
  desk.Write("Strange",
             Replaced(kNewLevel, R"("OBJECTS": { })", R"("OBJECTS": { "9,6": "From the future" })"));
  EXPECT_EQ(desk.Game().Edit(desk.Directory() + "/Level/Strange.json", "Main"), "");
  desk.Choose("Item", "", "Coin");
  desk.ClickCell(9, 6);
  EXPECT_THAT(desk.Layer("OBJECTS"), ElementsAre(Pair("9,6", "From the future")));
  desk.ClickCell(9, 6, Mouse::kRight);
  EXPECT_THAT(desk.Layer("OBJECTS"), IsEmpty());
}

TEST(EditorDrawing, TextsAndDestinationsTakeWhatWasTyped) {
  EditorDesk desk;
  desk.OpenNew("Words");
  desk.ClickButton("Modifier");
  desk.ClickNotify("TEXT");
  desk.ClickNotify("TEXT:");
  EXPECT_EQ(desk.Text(obj_ewindow_modifier, "error"), "Type something first!");
  EXPECT_EQ(desk.Count(obj_editor_sticky), 0u);
  desk.Type("Boss Room, Entry: \"1/2\"");
  desk.ClickNotify("TEXT:");
  desk.Step(6);
  desk.ClickCell(6, 6);
  desk.ClickCell(9, 6); // each placement writes the same
  desk.ClickButton("Modifier");
  desk.ClickNotify("TEXT");
  desk.Type("Entry");
  desk.ClickNotify("DESTINATION:");
  desk.Step(6);
  desk.ClickCell(12, 6);
  EXPECT_EQ(desk.Layer("MODIFIERS"), (Cells{{"6,6", "TEXT:Boss Room, Entry: \"1/2\""},
                                            {"9,6", "TEXT:Boss Room, Entry: \"1/2\""},
                                            {"12,6", "DESTINATION:Entry"}}));
  desk.ClickButton("Modifier");
  desk.ClickNotify("TEXT");
  for (int i = 0; i < 400; ++i) desk.Game().Type(i % 6 == 5 ? ' ' : 'm');
  const size_t typed = desk.Text(obj_keyreader, "words").size();
  EXPECT_GT(typed, 100u);
  EXPECT_LT(typed, 300u); // four lines of the box
}

// ---- what is shown at the mouse ----

TEST(EditorDrawing, TheCellAndTheChoiceShowAtTheMouse) {
  constexpr uint32_t kGreen = 0x66008000, kRed = 0x66FF0000; // at four tenths
  EditorDesk desk;
  desk.OpenNew("Mouse");
  const auto marked = [](const DrawnFrame& frame, Box cell, uint32_t colour) {
    return std::ranges::any_of(frame.pictures, [&](const DrawnPicture& picture) {
      return picture.name.empty() && picture.box == cell && picture.colour == colour;
    });
  };
  const Box cell = {10 * 16, 6 * 16, 11 * 16, 7 * 16};
  desk.MoveToCell(10, 6);
  EXPECT_TRUE(marked(LookAtRoom(desk), cell, kGreen));
  desk.Down(Mouse::kRight);
  EXPECT_TRUE(marked(LookAtRoom(desk), cell, kRed));
  desk.Up(Mouse::kRight);

  desk.Choose("Item", "", "Big Ice");
  desk.MoveToCell(10, 6);
  const auto preview = LookAtRoom(desk).Find("spr_ice_big");
  ASSERT_TRUE(preview);
  EXPECT_EQ(preview->box.left, cell.left);
  EXPECT_EQ(preview->box.top, cell.top);
  const auto cursor = LookAtFrame(desk).Find("spr_target");
  ASSERT_TRUE(cursor);
  EXPECT_EQ(cursor->frame, 1);
  desk.Down(Mouse::kRight);
  EXPECT_FALSE(LookAtRoom(desk).Find("spr_ice_big")); // while it erases
  desk.Up(Mouse::kRight);
  desk.MoveTo(200, 20);
  EXPECT_FALSE(LookAtRoom(desk).Find("spr_ice_big")); // over the toolbar

  desk.ChooseTiles(1, 3, 3, 2);
  desk.MoveToCell(10, 6);
  const auto stamp = LookAtRoom(desk).Find("bg_tiles");
  ASSERT_TRUE(stamp);
  EXPECT_EQ(stamp->box, (Box{10 * 16, 6 * 16, 13 * 16, 8 * 16}));
  EXPECT_EQ(stamp->column, 16);
  EXPECT_EQ(stamp->row, 48);
}

// What the view shows beyond the section is dark grey, all of it and nothing else.
TEST(EditorDrawing, MarginsCoverWhatLiesOutside) {
  constexpr uint32_t kDarkGrey = 0xFF303030;
  EditorDesk desk;
  Open(desk, "Margins", SmallLevel());
  const Box section = {0, 0, 24 * 16, 14 * 16};
  for (const auto& [mouse_x, mouse_y] :
       {std::pair{2, 100}, std::pair{192, 2}, std::pair{382, 100}, std::pair{192, 214}, std::pair{2, 214}}) {
    desk.MoveTo(mouse_x, mouse_y);
    desk.Step(130);
    const double left = desk.ViewX(), top = desk.ViewY();
    const Box view = {left, top, left + 384, top + 216};
    double covered = 0;
    for (const DrawnPicture& picture : LookAtRoom(desk).pictures) {
      if (!picture.name.empty() || picture.colour != kDarkGrey) continue;
      EXPECT_FALSE(picture.box.Touches(section)) << picture;
      covered += (std::min(view.right, picture.box.right) - std::max(view.left, picture.box.left)) *
                 (std::min(view.bottom, picture.box.bottom) - std::max(view.top, picture.box.top));
    }
    const double shown_of_section =
        std::max(0.0, std::min(view.right, section.right) - std::max(view.left, section.left)) *
        std::max(0.0, std::min(view.bottom, section.bottom) - std::max(view.top, section.top));
    EXPECT_EQ(covered, 384 * 216 - shown_of_section) << left << "," << top;
  }
}

// ---- the section's size and the view ----

TEST(EditorDrawing, ResizingStopsAtTheLeastSizeAndAtContent) {
  EditorDesk desk;
  desk.Write("Size", Replaced(Replaced(kNewLevel, "250.000000", "26.000000"), "\"HEIGHT\": 32.000000",
                              "\"HEIGHT\": 15.000000"));
  EXPECT_EQ(desk.Game().Edit(desk.Directory() + "/Level/Size.json", "Main"), "");
  desk.MoveTo(192, 108);
  desk.Hold(kKeyRight);
  desk.Step(12);
  desk.Release(kKeyRight);
  desk.Hold(kKeyDown);
  desk.Step(12);
  desk.Release(kKeyDown);
  desk.ChooseTiles(3, 3, 1, 1, true);
  desk.ClickCell(24, 9);
  desk.Tap(kKeyEscape);
  const auto resize = [&](int key) {
    desk.Hold(kKeyShift);
    desk.Step();
    desk.Tap(key);
    desk.Release(kKeyShift);
    desk.Step();
  };
  resize(kKeyLeft);
  EXPECT_EQ(desk.Setting("WIDTH"), 25);
  resize(kKeyLeft);
  EXPECT_EQ(desk.Setting("WIDTH"), 25) << "a background tile stands in the last column";
  desk.ClickCell(24, 9, Mouse::kRight);
  desk.Choose("Item", "", "Coin");
  desk.ClickCell(24, 9);
  resize(kKeyLeft);
  EXPECT_EQ(desk.Setting("WIDTH"), 25) << "an object stands in the last column";
  desk.ClickCell(24, 9, Mouse::kRight);
  resize(kKeyLeft);
  resize(kKeyLeft);
  EXPECT_EQ(desk.Setting("WIDTH"), 24);
  resize(kKeyUp);
  resize(kKeyUp);
  EXPECT_EQ(desk.Setting("HEIGHT"), 14);
  resize(kKeyDown);
  EXPECT_EQ(desk.Setting("HEIGHT"), 15);
  const double x = desk.ViewX(), y = desk.ViewY();
  resize(kKeyRight);
  EXPECT_EQ(desk.Setting("WIDTH"), 25);
  EXPECT_EQ(desk.ViewX(), x); // the arrows don't scroll meanwhile
  EXPECT_EQ(desk.ViewY(), y);
  desk.Hold(kKeyShift);
  desk.Hold(kKeyRight);
  desk.Step(29);
  EXPECT_EQ(desk.Setting("WIDTH"), 26); // the first at once, the repeat after 30 steps
  desk.Step(11);
  EXPECT_NEAR(desk.Setting("WIDTH"), 36, 1);
  desk.Release(kKeyRight);
  desk.Release(kKeyShift);
}

TEST(EditorDrawing, WaterKeepsToTheSection) {
  EditorDesk desk;
  desk.Write("Wet", Replaced(Replaced(kNewLevel, "\"HEIGHT\": 32.000000", "\"HEIGHT\": 15.000000"),
                             "\"WATER_LEVEL\": 0.000000", "\"WATER_LEVEL\": 14.000000"));
  EXPECT_EQ(desk.Game().Edit(desk.Directory() + "/Level/Wet.json", "Main"), "");
  EXPECT_EQ(desk.Real(obj_watershader_editor, "y"), 16);
  EXPECT_EQ(desk.Text(obj_watershader_editor, "sprite_index"), std::to_string(spr_watertop_r));
  const DrawnFrame wet = LookAtRoom(desk);
  EXPECT_GE(std::ranges::count(wet.pictures, "spr_watertop_r", &DrawnPicture::name), 24); // all in view
  EXPECT_TRUE(std::ranges::any_of(wet.pictures, [](const DrawnPicture& picture) { // from there to the bottom
    return picture.box == Box{0, 32, 250 * 16, 15 * 16};
  }));
  desk.ClickButton("Settings");
  for (int i = 0; i < 3; ++i) desk.ClickNotify("WATER_INC");
  EXPECT_EQ(desk.Setting("WATER_LEVEL"), 15);
  desk.ClickNotify("COLOR_INC");
  EXPECT_EQ(desk.SettingText("WATER_COLOR"), "Blue");
  desk.ClickNotify("COLOR_INC");
  EXPECT_EQ(desk.SettingText("WATER_COLOR"), "Green");
  EXPECT_EQ(desk.Text(obj_watershader_editor, "sprite_index"), std::to_string(spr_watertop_g));
  desk.ClickNotify("COLOR_DEC");
  desk.ClickNotify("COLOR_DEC");
  EXPECT_EQ(desk.SettingText("WATER_COLOR"), "Red");
  desk.ClickNotify("DARK");
  desk.ClickNotify("RAIN");
  EXPECT_EQ(desk.Setting("DARKNESS") + desk.Setting("RAIN"), 2);
  desk.ClickNotify("DARK");
  EXPECT_EQ(desk.Setting("DARKNESS"), 0);
  desk.ClickNotify("CLOSE");
  EXPECT_EQ(desk.Count(obj_editor_window), 0u);
  desk.Hold(kKeyShift);
  desk.Step();
  desk.Tap(kKeyUp);
  EXPECT_EQ(desk.Setting("HEIGHT"), 14);
  EXPECT_EQ(desk.Setting("WATER_LEVEL"), 14); // falls with the height
  desk.Tap(kKeyDown);
  desk.Release(kKeyShift);
  EXPECT_EQ(desk.Real(obj_watershader_editor, "y"), 16); // the surface keeps its distance from the bottom
  desk.ClickButton("Settings");
  for (int i = 0; i < 16; ++i) desk.ClickNotify("WATER_DEC");
  EXPECT_EQ(desk.Setting("WATER_LEVEL"), 0);
  EXPECT_EQ(desk.Count(obj_watershader_editor), 0u);
}

TEST(EditorDrawing, TheViewMovesByKeysEdgesAndMiddleButtonAndIsClamped) {
  EditorDesk desk;
  desk.OpenNew("View");
  EXPECT_EQ(desk.ViewX(), 0);
  desk.Hold(kKeyRight);
  desk.Step(4);
  EXPECT_EQ(desk.ViewX(), 20);
  desk.Hold(kKeyCtrl);
  desk.Step(2);
  desk.Release(kKeyRight);
  desk.Release(kKeyCtrl);
  EXPECT_EQ(desk.ViewX(), 50);
  desk.Step();
  desk.Down(Mouse::kMiddle);
  desk.MoveTo(192, 108);
  desk.MoveTo(182, 102);
  desk.MoveTo(162, 92);
  desk.Up(Mouse::kMiddle);
  desk.Step();
  EXPECT_EQ(desk.ViewX(), 80);
  EXPECT_EQ(desk.ViewY(), 16);
  for (const auto& [x, y] : {std::pair{2, 100}, std::pair{192, 2}}) {
    desk.MoveTo(x, y);
    desk.Step(200);
  }
  EXPECT_EQ(desk.ViewX(), -160);
  EXPECT_EQ(desk.ViewY(), -120);
  desk.Hold(kKeyCtrl);
  for (const auto& [x, y] : {std::pair{380, 100}, std::pair{192, 214}}) {
    desk.MoveTo(x, y);
    desk.Step(400);
  }
  desk.Release(kKeyCtrl);
  EXPECT_EQ(desk.ViewX(), 250 * 16 + 160 - 384);
  EXPECT_EQ(desk.ViewY(), 32 * 16 + 120 - 216);
  EXPECT_EQ(desk.Global("background_x[0]"), desk.ViewX() / 2);
}

TEST(EditorDrawing, GridLightAndAWindowThatHoldsTheMouse) {
  EditorDesk desk;
  desk.OpenNew("Small things");
  desk.Tap(kKeySpace);
  EXPECT_EQ(desk.Real(obj_editor, "grid"), 0);
  for (int i = 0; i < 3; ++i) {
    desk.Game().Wheel(false);
    desk.Step();
  }
  EXPECT_EQ(desk.Real(obj_editor, "flashlight"), 104);
  for (int i = 0; i < 30; ++i) {
    desk.Game().Wheel(false);
    desk.Step();
  }
  EXPECT_EQ(desk.Real(obj_editor, "flashlight"), 0);
  for (int i = 0; i < 20; ++i) {
    desk.Game().Wheel(true);
    desk.Step();
  }
  EXPECT_EQ(desk.Real(obj_editor, "flashlight"), 128);
  EXPECT_EQ(desk.Real(obj_editor, "ready"), 0);
  desk.MoveTo(200, 20);
  desk.Step();
  EXPECT_EQ(desk.Real(obj_editor, "ready"), 1);
  desk.ClickButton("Tiles");
  desk.Step();
  EXPECT_EQ(desk.Real(obj_editor, "ready"), 2);
  desk.Tap(kKeySpace);
  EXPECT_EQ(desk.Real(obj_editor, "grid"), 0); // the keys are the window's
  desk.Hold(kKeyRight);
  desk.Hold(kKeyDown);
  desk.Step(10);
  desk.Release(kKeyRight);
  desk.Release(kKeyDown);
  EXPECT_EQ(desk.ViewX(), 0);
  EXPECT_EQ(desk.Real(obj_ewindow_tile, "x_offset"), 50);
  desk.Step();
  desk.ClickNotify("CLOSE");
  desk.ClickButton("Tiles");
  EXPECT_EQ(desk.Real(obj_ewindow_tile, "y_offset"), 50); // remembered
  desk.MoveTo(100, 100);
  desk.Hold(kKeyCtrl);
  desk.MoveTo(380, 212);
  desk.Step(60);
  desk.Release(kKeyCtrl);
  EXPECT_EQ(desk.Real(obj_ewindow_tile, "x_offset"), 288);
  EXPECT_EQ(desk.Real(obj_ewindow_tile, "y_offset"), 504);
  desk.Drag(100, 100, 100 + 3 * 16, 380); // leaves the pane: dropped
  EXPECT_EQ(desk.Count(obj_editor_sticky), 0u);
  EXPECT_EQ(desk.Count(obj_ewindow_tile), 1u);
  desk.Drag(2 * 16 + 20, 100, 5 * 16 + 20, 132);
  EXPECT_EQ(desk.Real(obj_editor_sticky, "mtt_x"), 4);
  EXPECT_EQ(desk.Real(obj_editor_sticky, "mtt_y"), 3);
  desk.ClickButton("Enemy"); // any button ends the choice
  EXPECT_EQ(desk.Count(obj_editor_sticky), 0u);
  desk.Tap(kKeyEscape);
  EXPECT_EQ(desk.Count(obj_editor_window), 0u);
}

TEST(EditorDrawing, MusicAndBackgroundAreSetAtOnce) {
  EditorDesk desk;
  desk.OpenNew("Mood");
  desk.Step(3);
  desk.ClickButton("Music");
  desk.SoundsStarted();
  desk.ClickNotify("Sick"); // plays already
  EXPECT_THAT(desk.SoundsStarted(), testing::Not(Contains("Sick")));
  EXPECT_EQ(desk.Count(obj_editor_window), 0u);
  for (const MusicLabel& row : MusicLabels()) {
    desk.ClickButton("Music");
    desk.ClickNotify(std::string(row.label));
    EXPECT_EQ(desk.SettingText("MUSIC"), row.label);
    EXPECT_EQ(desk.Real(obj_editor, "music"), row.sound);
  }
  for (const BackgroundLabel& row : BackgroundLabels()) {
    desk.ClickButton("Background");
    desk.ClickNotify(std::string(row.label));
    EXPECT_EQ(desk.SettingText("BACKGROUND"), row.label);
    EXPECT_EQ(desk.Global("background_index[0]"), row.background);
    EXPECT_EQ(desk.Count(obj_bganimator), row.animated ? 1u : 0u);
    EXPECT_EQ(desk.Real(obj_lightmanager, "ambientlight"), row.red + row.green * 256 + row.blue * 65536);
  }
}

// Which codes still make things that stand there without rules. The list shrinks; what a level can't do
// without is in it no more.
TEST(EditorDrawing, CodesWithoutRulesAreKnown) {
  std::string without;
  size_t count = 0;
  for (const auto& catalogue : {ObjectCatalogue(), MarkerCatalogue()})
    for (const CatalogueRow& row : catalogue) {
      ASSERT_GE(row.object, 0);
      if (IsBuilt(row.object)) continue;
      without += (without.empty() ? "" : ", ") + std::string(row.code);
      ++count;
    }
  for (const ModifierRow& row : ModifierCatalogue()) EXPECT_TRUE(IsBuilt(row.carrier)) << row.code;
  for (const char* needed : {"Durian", "Rhubarb", "Goal", "Autoscroller"})
    EXPECT_TRUE(IsBuilt(FindObjectCode(needed)->object)) << needed;
  std::cout << count << " codes make objects without rules: " << without << "\n";
}

} // namespace vesk
