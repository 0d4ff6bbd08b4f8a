// Level files: their text to the letter, what is refused, and what stands when a file can't be written.
#include "game/level/level_file.h"
#include "Files/Base/Error.h"
#include "Files/Function/Function_Data_Structures.h"
#include "tests/scenarios/Stage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <filesystem>

namespace vesk {
namespace {

using testing::HasSubstr;

const char* const kNewLevel = "{ \"Main\": { \"MUSIC\": \"Sick\", \"DARKNESS\": 0.000000, \"OBJECTS\": { }, "
                              "\"WATER_COLOR\": \"Red\", \"TILES_BG\": { }, "
                              "\"WIDTH\": 250.000000, \"MODIFIERS\": { }, \"HEIGHT\": 32.000000, "
                              "\"BACKGROUND\": \"Wall\", \"MARKERS\": { }, "
                              "\"WATER_LEVEL\": 0.000000, \"RAIN\": 0.000000, \"TILES\": { } } }";

TEST(LevelFile, ANewLevelIsExactlyThisLine) {
  Stage stage;
  scr_level_new();
  scr_level_save("fresh");
  EXPECT_EQ(stage.ReadLevel("fresh"), std::string(kNewLevel) + "\n");
  scr_level_load("fresh");
  EXPECT_EQ(scr_level_problem(), "");
  scr_level_save("again");
  EXPECT_EQ(stage.ReadLevel("again"), stage.ReadLevel("fresh"));
}

TEST(LevelFile, SectionsSavedAndLoadedAreTheSameText) {
  Stage stage;
  LevelSettings settings;
  settings.water = 3;
  settings.objects = {{"3,2", "Coin"}, {"9,1", "Krandle"}};
  settings.modifiers = {{"3,2", "TEXT:a/b, \"c\" \\ d"}, {"4,2", "TEXT:"}, {"9,1", "DESTINATION:Warp 1"}};
  settings.markers = {{"5,5", "Warp Top"}};
  const Rows rows = {"..S.../.##", "==........", "##########"};
  stage.WriteLevel("drawn", "{\"Boss Room, 2!\":" + SectionText(rows) +
                                ",\"default\":" + SectionText(rows, settings) +
                                ",\"Main\":" + SectionText(rows, settings) + "}");
  scr_level_load("drawn");
  EXPECT_EQ(scr_level_problem(), "");
  scr_level_save("once");
  const std::string once = stage.ReadLevel("once");
  EXPECT_THAT(once, HasSubstr("\"TEXT:a\\/b, \\\"c\\\" \\\\ d\""));
  EXPECT_THAT(once, HasSubstr("\"HEIGHT\": 14.000000"));
  EXPECT_EQ(std::count(once.begin(), once.end(), '\n'), 1);
  scr_level_load("once");
  EXPECT_EQ(scr_level_problem(), "");
  scr_level_save("twice");
  EXPECT_EQ(stage.ReadLevel("twice"), once);
}

TEST(LevelFile, NamesAreThoseOfTheFolder) {
  Stage stage;
  const auto names = [&] {
    const int list = static_cast<int>(scr_level_get_levels());
    std::vector<std::string> found;
    for (int at = 0; at < ds_list_size(list); ++at) found.emplace_back(ds_list_find_value(list, at).Text());
    ds_list_destroy(list);
    std::sort(found.begin(), found.end());
    return found;
  };
  EXPECT_TRUE(names().empty());
  for (const char* name : {"b", "a level", "x.json.y"}) stage.WriteLevel(name, "{}");
  EXPECT_EQ(names(), (std::vector<std::string>{"a level", "b", "x.y.json"})); // the first ".json" goes
}

// ---- refusals ----

std::string Without(std::string text, const std::string& key) {
  const size_t at = text.find("\"" + key + "\":");
  EXPECT_NE(at, std::string::npos) << key;
  text.replace(at + 1, key.size(), "OTHER");
  return text;
}

// The value of a key of the first section, which is no map with anything in it.
std::string With(std::string text, const std::string& key, const std::string& value) {
  const size_t at = text.find("\"" + key + "\":") + key.size() + 3;
  const size_t end = text.find_first_of(",}", at) + (text[at] == '{' ? 1 : 0);
  return text.replace(at, end - at, value);
}

TEST(LevelFile, BadLevelsAreRefusedInWordsAndTheProgramGoesOn) {
  Stage stage;
  const std::string good = LevelText({"..S", ""});
  struct Bad {
    std::string text, words;
  };
  std::vector<Bad> table = {
      {"", "not JSON"},
      {"no json at all", "not JSON"},
      {"[1,2,3]", "not JSON text of a level"},
      {"17", "not JSON"},
      {good.substr(0, good.size() / 2), "not JSON"},
      {"{}", "no section \"Main\""},
      {"{\"Other\":" + SectionText({"S"}) + "}", "no section \"Main\""},
      {"{\"Main\":\"text\"}", "\"Main\" is not a section"},
      {"{\"Main\":[]}", "\"Main\" is not a section"},
      {"{\"Main\":1}", "\"Main\" is not a section"},
      {"{\"Main\":" + SectionText({"S"}) + ",\"Second\":{}}", "Section \"Second\": there is no \"HEIGHT\""},
  };
  for (const char* key : {"HEIGHT", "WIDTH", "MUSIC", "BACKGROUND", "RAIN", "DARKNESS", "WATER_LEVEL",
                          "WATER_COLOR", "TILES", "TILES_BG", "OBJECTS", "MODIFIERS", "MARKERS"})
    table.push_back({Without(good, key), "there is no \"" + std::string(key) + "\""});
  for (const char* key : {"HEIGHT", "WIDTH", "RAIN", "DARKNESS", "WATER_LEVEL"})
    for (const char* value : {"\"12\"", "{}", "[]"})
      table.push_back({With(good, key, value), "\"" + std::string(key) + "\" is not a number"});
  for (const char* key : {"MUSIC", "BACKGROUND", "WATER_COLOR"})
    for (const char* value : {"3", "{}", "true"}) table.push_back({With(good, key, value), "is not a text"});
  for (const char* key : {"TILES", "TILES_BG", "MODIFIERS", "MARKERS"})
    for (const char* value : {"0", "1", "2", "[]", "\"x\""})
      table.push_back({With(good, key, value), "is not a map of cells"});
  table.push_back({With(good, "RAIN", "null"), "there is no \"RAIN\""});
  for (const char* key : {"HEIGHT", "WIDTH"})
    for (const char* value : {"0", "-3", "100001", "1e9", "1e300", "14.5"})
      table.push_back({With(good, key, value), "is not a whole number from 1 to 100000"});
  for (const char* value : {"-1", "15", "0.5"})
    table.push_back({With(good, "WATER_LEVEL", value), "from 0 to 14"});
  for (const char* cells : {"{\"x\":\"1,4\"}", "{\"1\":\"1,4\"}", "{\"1,2,3\":\"1,4\"}",
                            "{\"1.5,2\":\"1,4\"}", "{\"99999999,1\":\"1,4\"}", "{\"\":\"1,4\"}"})
    table.push_back({With(good, "TILES", cells), "a cell is named by column and row"});
  for (const char* cells :
       {"{\"1,2\":\"1\"}", "{\"1,2\":\"40,0\"}", "{\"1,2\":\"-1,0\"}", "{\"1,2\":\"a,b\"}"})
    table.push_back({With(good, "TILES_BG", cells), "is no cell of the tile atlas"});
  for (const char* cells : {"{\"1,2\":5}", "{\"1,2\":{}}"})
    table.push_back({With(good, "MARKERS", cells), "the code is not a text"});

  for (const Bad& bad : table) {
    stage.WriteLevel("bad", bad.text);
    const std::string said = stage.Game().Play(stage.LevelFile("bad"), "Main");
    EXPECT_THAT(said, HasSubstr(bad.words)) << bad.text;
    stage.Step(2);
    ASSERT_TRUE(stage.Game().Running()) << bad.text;
    ASSERT_EQ(stage.Game().FatalReport(), "") << bad.text;
  }
  EXPECT_THAT(stage.Game().Play(stage.LevelFile("missing"), "Main"), HasSubstr("There is no file"));
  stage.WriteLevel("good", good);
  EXPECT_THAT(stage.Game().Play(stage.LevelFile("good"), "Cellar"), HasSubstr("no section \"Cellar\""));
  EXPECT_EQ(stage.Game().Play(stage.LevelFile("good"), "Main"), "");
}

TEST(LevelFile, WhatCantBeWrittenSaysSoAndTheOldFileStands) {
  Stage stage;
  scr_level_new();
  scr_level_save("kept");
  const std::string before = stage.ReadLevel("kept");
  scr_level_add_section("Second");

  // A disk that takes no more.
  rlimit limit{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
  const auto signal_before = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit full{100, limit.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &full), 0);
  Error().lastReport.clear();
  scr_level_save("kept");
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, signal_before);
  EXPECT_THAT(Error().lastReport, HasSubstr("The file can't be written, what was there before is unchanged"));
  EXPECT_EQ(stage.ReadLevel("kept"), before);

  // A folder in its place.
  std::filesystem::create_directory(stage.LevelFile("folder"));
  Error().lastReport.clear();
  scr_level_save("folder");
  EXPECT_THAT(Error().lastReport, HasSubstr("can't be written"));
  EXPECT_TRUE(std::filesystem::is_directory(stage.LevelFile("folder")));

  // Nothing is left beside them, and the game goes on.
  for (const auto& entry : std::filesystem::directory_iterator(stage.Game().Directory() + "/Level"))
    EXPECT_TRUE(entry.path().filename() == "kept.json" || entry.path().filename() == "folder.json")
        << entry.path();
  stage.Step(5);
  EXPECT_TRUE(stage.Game().Running());
  scr_level_save("kept");
  EXPECT_THAT(stage.ReadLevel("kept"), HasSubstr("\"Second\""));
}

} // namespace
} // namespace vesk
