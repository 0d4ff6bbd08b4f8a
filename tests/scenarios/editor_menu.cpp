// From the logos to the list of levels, and what is refused there.
#include "tests/scenarios/EditorDesk.h"

#include "apps/container/EmbeddedContainer.h"
#include "sim/Look.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace vesk {

namespace {

using ::testing::ElementsAre;

const std::string kSmallLevel =
    R"({"Main":{"HEIGHT":14,"WIDTH":24,"MUSIC":"Cool","BACKGROUND":"Wall","RAIN":0,"DARKNESS":0,"WATER_LEVEL":0,)"
    R"("WATER_COLOR":"Blue","TILES":{"0,12":"0,4","1,12":"0,4"},"TILES_BG":{},"OBJECTS":{"1,10":"Durian"},)"
    R"("MODIFIERS":{},"MARKERS":{}}})";

std::string Replaced(std::string text, const std::string& part, const std::string& with) {
  return text.replace(text.find(part), part.size(), with);
}

std::vector<std::string> Rows() {
  std::vector<std::string> names;
  for (CInstance* row : InstancesOf(obj_mainmenu_level))
    names.push_back(ValueAsText(ReadVariable(row, {"name", kNoIndex})));
  return names;
}

std::string Typed() {
  return ValueAsText(ReadVariable(InstancesOf(obj_keyreader).front(), {"words", kNoIndex}));
}

} // namespace

TEST(EditorMenu, LogosStandForTheirTimeAndLeadToTheTitle) {
  EditorDesk desk;
  desk.Step();
  EXPECT_EQ(desk.RoomNow(), rm_logo);
  EXPECT_EQ(desk.ViewX(), 0);
  while (desk.ViewX() == 0 && desk.Game().Frame() < 1000) desk.Step();
  EXPECT_NEAR(static_cast<double>(desk.Game().Frame()), 215, 2); // 200 and the fade of 15
  const int64_t second = desk.Game().Frame();
  while (desk.RoomNow() == rm_logo && desk.Game().Frame() < 1000) desk.Step();
  EXPECT_NEAR(static_cast<double>(desk.Game().Frame() - second), 150, 2);
  EXPECT_EQ(desk.RoomNow(), rm_title);
  desk.Step(30);
  EXPECT_THAT((std::vector<double>{0, 768, 1536, 2304}), testing::Contains(desk.ViewX()));
  EXPECT_EQ(desk.Real(obj_persistent, "activeshader"), sha_bloom);
}

TEST(EditorMenu, EnterCutsTheLogosShortAndLeavesTheTitleButNotWithAlt) {
  EditorDesk desk;
  desk.Step(20);
  desk.Tap(kKeyEnter);
  desk.Step(17);
  EXPECT_EQ(desk.ViewX(), 384);
  desk.Step(20);
  desk.Tap(kKeyEnter);
  desk.Step(40);
  ASSERT_EQ(desk.RoomNow(), rm_title);
  desk.Hold(kKeyAlt);
  desk.Tap(kKeyEnter);
  desk.Release(kKeyAlt);
  desk.Step(3);
  EXPECT_EQ(desk.RoomNow(), rm_title);
  EXPECT_EQ(desk.Text(obj_persistent, "message"), "Fullscreen");
  desk.Tap(kKeyEnter);
  EXPECT_EQ(desk.RoomNow(), rm_mainmenu);
}

TEST(EditorMenu, EveryTitleSceneComesUpWithItsLight) {
  std::map<double, double> lights;
  for (int32_t seed = 1; seed <= 24 && lights.size() < 4; ++seed) {
    EditorDesk desk("", seed);
    EXPECT_EQ(desk.Game().Room("rm_title"), "");
    lights[desk.ViewX()] = desk.Real(obj_lightmanager, "ambientlight");
    EXPECT_EQ(desk.Count(obj_spitbloom_green), desk.ViewX() == 2304 ? 1u : 0u);
  }
  EXPECT_EQ(lights, (std::map<double, double>{{0, 32 + 32 * 256 + 64 * 65536},
                                              {768, 40 + 48 * 256 + 128 * 65536},
                                              {1536, 32 + 32 * 256 + 64 * 65536},
                                              {2304, 111 + 0 * 256 + 15 * 65536}}));
}

TEST(EditorMenu, TypingFiltersTheListInAnyCaseAndClosesItUp) {
  EditorDesk desk;
  for (const char* name : {"Cabbage", "Xyz", "grab", "other"}) desk.Write(name, kSmallLevel);
  desk.OpenMenu();
  EXPECT_EQ(Rows().size(), 4u);
  desk.Type("AB");
  EXPECT_THAT(Rows(), ElementsAre("Cabbage", "grab"));
  EXPECT_EQ(ValueAsReal(ReadVariable(InstancesOf(obj_mainmenu_level)[1], {"y", kNoIndex})), 36 + 32);
  desk.ClickNotify("RANDOM");
  EXPECT_THAT(Rows(), testing::UnorderedElementsAre("Cabbage", "grab")); // shuffled, still filtered
  desk.Tap(kKeyBackspace);
  desk.Tap(kKeyBackspace);
  EXPECT_EQ(Rows().size(), 4u);
}

TEST(EditorMenu, NamesAreRefusedInTheLine) {
  EditorDesk desk;
  desk.Write("Taken", kSmallLevel);
  desk.OpenMenu();
  desk.Type("Tak");
  desk.ClickNotify("NEW"); // empties what was typed
  EXPECT_EQ(Typed(), "");
  EXPECT_EQ(Rows().size(), 1u);
  desk.SoundsStarted();
  desk.ClickNotify("RANDOM");
  EXPECT_EQ(desk.Text(obj_mainmenu, "error"), "Level must have a name!");
  EXPECT_THAT(desk.SoundsStarted(), testing::Contains("snd_wrong"));
  desk.Type("Taken");
  desk.ClickNotify("RANDOM");
  EXPECT_EQ(desk.Text(obj_mainmenu, "error"), "Level already exists!");
  EXPECT_EQ(Typed(), "");
  desk.Type("a/b\\c:d*e?f<g>h|i #j");
  EXPECT_EQ(Typed(), "abcdefghi j");
  for (int i = 0; i < 80; ++i) desk.Game().Type('w');
  EXPECT_LT(Typed().size(), 40u); // as wide as its box
  desk.ClickNotify("NEW");        // reads "Cancel" now
  EXPECT_EQ(Typed(), "");
  desk.ClickNotify("NEW");
  desk.Type("Fresh one");
  desk.ClickNotify("RANDOM");
  desk.Step(40);
  EXPECT_EQ(desk.RoomNow(), rm_editor);
  EXPECT_EQ(desk.GlobalText("levelname"), "Fresh one");
  EXPECT_EQ(desk.Read("Fresh one"), ""); // nothing is written before the first save
}

TEST(EditorMenu, RowsPlayAndEdit) {
  for (const char* way : {"PLAY", "EDIT"}) {
    EditorDesk desk;
    desk.Write("Small", kSmallLevel);
    desk.OpenMenu();
    desk.ClickNotify(way);
    desk.Step(200);
    EXPECT_EQ(desk.RoomNow(), way == std::string("PLAY") ? rm_template : rm_editor);
    EXPECT_EQ(desk.GlobalText("levelname"), "Small");
    EXPECT_EQ(desk.Count(way == std::string("PLAY") ? obj_tovin : obj_editor_object), 1u);
  }
}

TEST(EditorMenu, DamagedLevelsAreRefusedAndTheMenuStands) {
  const struct {
    const char* name;
    std::string text;
  } damaged[] = {
      {"empty", ""},
      {"cut", kSmallLevel.substr(0, 90)},
      {"number", "17"},
      {"list", "[1,2]"},
      {"nomain", R"({"Other":{}})"},
      {"nokeys", R"({"Main":{"HEIGHT":14}})"},
      {"textsize", R"({"Main":"x"})"},
      {"alias", R"({"Main":1})"}, // a number is no section, whatever it stands for
      {"huge", Replaced(kSmallLevel, "\"WIDTH\":24", "\"WIDTH\":1e18")},
      {"layer", Replaced(kSmallLevel, "\"TILES_BG\":{}", "\"TILES_BG\":0")},
      {"binary", std::string("\0\x01\xFF\xFE{", 5)},
  };
  EditorDesk desk;
  for (const auto& level : damaged) desk.Write(level.name, level.text);
  desk.OpenMenu();
  for (const auto& level : damaged) {
    SCOPED_TRACE(level.name);
    desk.Type(level.name);
    for (const char* way : {"PLAY", "EDIT"}) {
      desk.ClickNotify(way);
      desk.Step(20);
      ASSERT_EQ(desk.RoomNow(), rm_mainmenu);
      EXPECT_EQ(desk.Text(obj_mainmenu, "error"), "This level is damaged!");
      desk.ExpectHealthy();
    }
    for (size_t i = 0; level.name[i]; ++i) desk.Tap(kKeyBackspace);
  }
  desk.Write("gone", kSmallLevel);
  desk.OpenMenu();
  std::filesystem::remove(desk.Directory() + "/Level/gone.json");
  desk.Type("gone");
  desk.ClickNotify("PLAY");
  EXPECT_EQ(desk.Text(obj_mainmenu, "error"), "The level is gone!");
  EXPECT_EQ(desk.RoomNow(), rm_mainmenu);
}

TEST(EditorMenu, ScrollsByKeysEdgeAndWheelButNotPastTheLastRow) {
  EditorDesk desk;
  for (char c = 'a'; c < 'q'; ++c) desk.Write(std::string("level ") + c, kSmallLevel);
  desk.OpenMenu();
  desk.Hold(kKeyDown);
  desk.Step(2);
  desk.Release(kKeyDown);
  EXPECT_EQ(desk.ViewY(), 10);
  desk.Hold(kKeyCtrl);
  desk.Step();
  desk.Game().Wheel(false);
  desk.Step();
  desk.Release(kKeyCtrl);
  desk.Step(2);
  EXPECT_EQ(desk.ViewY(), 35); // 15 with Ctrl and 10 for the notch
  desk.MoveTo(192, 212);
  desk.Step(300);
  const double last = 36 + 15 * 32;
  EXPECT_GT(desk.ViewY() + 216, last + 28); // the last row is in sight
  EXPECT_LT(desk.ViewY() + 192, last + 40); // and nothing but it below
  desk.MoveTo(192, 108);
  desk.Type("b");
  EXPECT_EQ(desk.ViewY(), 0); // every keystroke goes back to the top
  desk.MoveTo(192, 212);
  desk.Step(30);
  EXPECT_EQ(desk.ViewY(), 0); // a list that fits doesn't scroll
}

TEST(EditorMenu, SettingsSurviveARestart) {
  const std::string directory = (std::filesystem::temp_directory_path() / "vesk-settings-test").string();
  std::filesystem::remove_all(directory);
  std::filesystem::create_directories(directory);
  const auto command = [](EditorDesk& desk, int key) {
    desk.Hold(kKeyAlt);
    desk.Step();
    desk.Tap(key);
    desk.Release(kKeyAlt);
    desk.Step();
  };
  {
    EditorDesk desk(directory);
    desk.Step(5);
    EXPECT_EQ(desk.Real(obj_persistent, "filter"), 4); // the display is 1920 by 1080
    command(desk, '2');
    EXPECT_EQ(desk.Text(obj_persistent, "message"), "2X Scale");
    command(desk, 'V');
    EXPECT_EQ(desk.Text(obj_persistent, "message"), "VSync On");
    desk.Step(61);
    EXPECT_EQ(desk.Text(obj_persistent, "message"), "");
    command(desk, 'F');
    EXPECT_EQ(desk.Real(obj_persistent, "showfps"), 1);
  }
  {
    std::ifstream file(directory + "/Settings.dat");
    std::string lines[3];
    for (std::string& line : lines) std::getline(file, line);
    EXPECT_THAT(lines, ElementsAre("0", "2", "1"));
    EditorDesk desk(directory);
    desk.Step(5);
    EXPECT_EQ(desk.Real(obj_persistent, "filter"), 2);
    EXPECT_EQ(desk.Real(obj_persistent, "vsync"), 1);
    EXPECT_EQ(desk.Real(obj_persistent, "fullscreen"), 0);
    command(desk, 115); // F4 ends the program
    EXPECT_FALSE(desk.Game().Running());
  }
  std::ofstream(directory + "/Settings.dat") << "rubbish\n\xFF\n";
  {
    EditorDesk desk(directory);
    desk.Step(5);
    EXPECT_EQ(desk.Real(obj_persistent, "filter"), 4);
  }
  std::filesystem::remove_all(directory);
}

TEST(EditorMenu, TheFirstWindowIsTheLargestThatTheDisplayHolds) {
  const struct {
    Extent display;
    double scale;
  } cases[] = {{{1920, 1080}, 4}, {{1536, 864}, 4}, {{1366, 768}, 3}, {{1152, 647}, 2}, {{1024, 768}, 2}};
  for (const auto& row : cases) {
    SimulationSettings settings;
    settings.container = {EmbeddedContainer(), EmbeddedContainerSize()};
    Simulation simulation(settings);
    simulation.Devices().window.desktop = row.display;
    ASSERT_EQ(simulation.Start(), "");
    simulation.Step(3);
    const auto controller = InstancesOf(obj_persistent);
    ASSERT_EQ(controller.size(), 1u);
    EXPECT_EQ(ValueAsReal(ReadVariable(controller[0], {"filter", kNoIndex})), row.scale) << row.display.width;
    EXPECT_EQ(simulation.Devices().window.Settings().size.width, 384 * static_cast<int>(row.scale));
    EXPECT_EQ(simulation.Devices().window.Settings().size.height, 216 * static_cast<int>(row.scale));
  }
}

// Fifteen steps to black over the last picture, in which all else sleeps, and fifteen back.
TEST(EditorMenu, AChangeOfRoomsFades) {
  EditorDesk desk;
  desk.OpenMenu();
  desk.ClickNotify("NEW");
  desk.Type("Fade");
  EXPECT_GE(desk.Real(obj_persistent, "done"), 1);
  desk.ClickNotify("RANDOM");
  for (int i = 0; i < 3 && desk.RoomNow() != rm_editor; ++i) desk.Step();
  ASSERT_EQ(desk.RoomNow(), rm_editor);
  int covered = 0, uncovered = 0;
  for (; desk.Real(obj_persistent, "mode") == 1 && covered < 60; ++covered) {
    desk.Step();
    const bool asleep = covered > 0 && desk.Real(obj_persistent, "mode") == 1;
    EXPECT_TRUE(!asleep || desk.Count(obj_editor) == 0u) << covered;
  }
  EXPECT_NEAR(covered, 15, 1);
  EXPECT_EQ(desk.Count(obj_editor), 1u);
  for (; desk.Real(obj_persistent, "done") < 1 && uncovered < 60; ++uncovered) desk.Step();
  EXPECT_NEAR(uncovered, 15, 1);
  EXPECT_EQ(desk.Real(obj_persistent, "back"), -1); // the picture is gone
}

TEST(EditorMenu, AltROfAnOpenLevelLeadsToTheTitle) {
  EditorDesk desk;
  desk.OpenNew("Lost");
  desk.Hold(kKeyAlt);
  desk.Step();
  desk.Tap('R');
  desk.Release(kKeyAlt);
  desk.Step(40);
  EXPECT_EQ(desk.RoomNow(), rm_title);
  desk.Tap(kKeyEnter);
  desk.Step(40);
  EXPECT_EQ(desk.RoomNow(), rm_mainmenu);
}

} // namespace vesk
