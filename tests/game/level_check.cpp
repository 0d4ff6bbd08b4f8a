// What the checker of level files finds, and that it says where.
#include "game/level/level_check.h"

#include "Files/Function/Function_Data_Structures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>

namespace vesk {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

std::string Section(const std::string& layers, const std::string& settings = R"("WIDTH":30,"HEIGHT":20)") {
  std::string text =
      "{" + settings +
      R"(,"MUSIC":"Cool","BACKGROUND":"Wall","RAIN":0,"DARKNESS":1,"WATER_LEVEL":3,"WATER_COLOR":"Blue")";
  for (const char* layer : {"TILES", "TILES_BG", "OBJECTS", "MODIFIERS", "MARKERS"})
    if (layers.find("\"" + std::string(layer) + "\"") == std::string::npos)
      text += ",\"" + std::string(layer) + "\":{}";
  return text + (layers.empty() ? "" : ",") + layers + "}";
}

std::vector<std::string> Faults(const std::string& file) {
  std::string why;
  const int32_t root = ReadLevelTree(file, why);
  if (root < 0) return {why};
  const LevelReport report = CheckLevel(root);
  ds_map_destroy(root);
  return report.faults;
}

struct Outcome {
  int code;
  std::string output;
};

// Runs the program that stands beside this one.
Outcome VeskLevel(const std::string& arguments) {
  const std::string program = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "vesk-level";
  FILE* pipe = popen(("'" + program + "' " + arguments + " 2>&1").c_str(), "r");
  EXPECT_NE(pipe, nullptr);
  Outcome outcome{-1, ""};
  std::array<char, 512> piece{};
  while (fgets(piece.data(), piece.size(), pipe)) outcome.output += piece.data();
  outcome.code = WEXITSTATUS(pclose(pipe));
  return outcome;
}

} // namespace

TEST(LevelCheck, AGoodLevelHasNoFaults) {
  EXPECT_THAT(Faults(R"({"Main":)" +
                     Section(R"("TILES":{"0,0":"39,39","29,19":"0,0"},"OBJECTS":{"3,4":"Coin"},)"
                             R"("MARKERS":{"5,5":"Door","8,8":"Warp Marker"},)"
                             R"("MODIFIERS":{"5,5":"TEXT:Boss,In","5,6":"TEXT:Here","8,8":"TEXT:Boss",)"
                             R"("9,9":"DESTINATION:Here","3,4":"TEXT:just words"})") +
                     R"(,"Boss":)" + Section(R"("MODIFIERS":{"1,1":"DESTINATION:In","2,2":"Star"})") + "}"),
              IsEmpty());
}

TEST(LevelCheck, FilesThatAreNoLevels) {
  for (const char* text : {"", "17", "[1]", "{\"Main\":{", "\xFF\xFE"})
    EXPECT_THAT(Faults(text), ElementsAre("the file is not JSON text of a level")) << text;
  EXPECT_THAT(Faults("{\"Main\":" + Section("") + "}\n{}"),
              ElementsAre("a level is one line of JSON text, and more follows the first"));
  EXPECT_THAT(Faults("{\"Other\":" + Section("") + ",\"Wrong\":3}"),
              UnorderedElementsAre("there is no section \"Main\"", "section \"Wrong\": is not a section"));
}

TEST(LevelCheck, SettingsOutOfTheirRange) {
  EXPECT_THAT(Faults(R"({"Main":)" + Section("", R"("WIDTH":23,"HEIGHT":20.5,"EXTRA":1)") + "}"),
              UnorderedElementsAre("section \"Main\": WIDTH is 23, not a whole number from 24 to 100000",
                                   testing::StartsWith("section \"Main\": HEIGHT is 20.5"),
                                   "section \"Main\": has an unknown key \"EXTRA\""));
  std::string file = R"({"Main":)" + Section("") + "}";
  const auto replace = [&](const std::string& part, const std::string& with) {
    file.replace(file.find(part), part.size(), with);
  };
  replace("\"Cool\"", "\"Loud\"");
  replace("\"Wall\"", "7");
  replace("\"RAIN\":0", "\"RAIN\":2");
  replace("\"WATER_LEVEL\":3", "\"WATER_LEVEL\":21");
  replace("\"Blue\"", "\"Pink\"");
  replace(",\"DARKNESS\":1", "");
  EXPECT_THAT(Faults(file),
              UnorderedElementsAre("section \"Main\": MUSIC is unknown: \"Loud\"",
                                   "section \"Main\": BACKGROUND is not a text",
                                   "section \"Main\": RAIN is 2, not a whole number from 0 to 1",
                                   "section \"Main\": WATER_LEVEL is 21, not a whole number from 0 to 20",
                                   "section \"Main\": WATER_COLOR is unknown: \"Pink\"",
                                   "section \"Main\": DARKNESS is missing"));
}

TEST(LevelCheck, CellsAndCodesWithTheirPlace) {
  EXPECT_THAT(
      Faults(
          R"({"Main":)" +
          Section(
              R"("TILES":{"0,0":"40,2","30,0":"1,1","x":"1,1","03,1":"1,1","1,2":7},"OBJECTS":{"3,4":"Coinn","4,4":"coin"},)"
              R"("MARKERS":{"1,1":"Doors","5,5":"Bomb Door","7,7":"Warp Marker"},)"
              R"("MODIFIERS":{"2,2":"Starr","3,3":"DESTINATION:","5,6":"TEXT:Nowhere","7,7":"TEXT:Boss,Gone"})") +
          R"(,"Boss":)" + Section("") + "}"),
      UnorderedElementsAre(
          "section \"Main\", TILES, cell 0,0: the atlas has no tile \"40,2\"",
          "section \"Main\", TILES, cell 30,0: lies outside the section of 30 by 20",
          "section \"Main\", TILES, cell \"x\": is not a cell such as \"12,7\"",
          "section \"Main\", TILES, cell \"03,1\": is not a cell such as \"12,7\"",
          "section \"Main\", TILES, cell 1,2: the value is not a text",
          "section \"Main\", OBJECTS, cell 3,4: unknown code \"Coinn\"",
          "section \"Main\", OBJECTS, cell 4,4: unknown code \"coin\"",
          "section \"Main\", MARKERS, cell 1,1: unknown code \"Doors\"",
          "section \"Main\", MODIFIERS, cell 2,2: unknown code \"Starr\"",
          "section \"Main\", MODIFIERS, cell 3,3: the destination has no name",
          "section \"Main\", MODIFIERS, cell 5,6: leads to \"Nowhere\", which is neither a section nor a "
          "destination here",
          "section \"Main\", MODIFIERS, cell 7,7: section \"Boss\" has no destination \"Gone\""));
}

TEST(LevelCheck, CountsWhatIsInALevel) {
  std::string why;
  const int32_t root = ReadLevelTree(
      R"({"Main":)" +
          Section(
              R"("OBJECTS":{"1,1":"Coin","2,1":"Coin","3,1":"Key"},"MODIFIERS":{"1,1":"TEXT:a","2,2":"TEXT:b"})") +
          "}",
      why);
  ASSERT_GE(root, 0) << why;
  const auto sections = CountLevel(root);
  ds_map_destroy(root);
  ASSERT_EQ(sections.size(), 1u);
  EXPECT_EQ(sections[0].width, 30);
  EXPECT_TRUE(sections[0].darkness);
  EXPECT_EQ(sections[0].layers.at("OBJECTS"), 3);
  EXPECT_EQ(sections[0].objects, (std::map<std::string, int32_t>{{"Coin", 2}, {"Key", 1}}));
  EXPECT_EQ(sections[0].modifiers, (std::map<std::string, int32_t>{{"TEXT:", 2}}));
}

TEST(LevelCheck, TheProgramTellsByItsExitCodeAndDraws) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / "vesk-level-test";
  std::filesystem::create_directories(folder);
  const std::string good = folder / "good.json", bad = folder / "bad.json", picture = folder / "picture.png";
  std::ofstream(good) << R"({"Main":)" + Section(R"("TILES":{"3,4":"1,4"})") + "}";
  std::ofstream(bad) << R"({"Main":)" + Section(R"("OBJECTS":{"3,4":"Coinn"})") + "}";
  EXPECT_EQ(VeskLevel("check '" + good + "'").code, 0);
  const Outcome both = VeskLevel("check '" + good + "' '" + bad + "'");
  EXPECT_EQ(both.code, 1);
  EXPECT_THAT(both.output, testing::HasSubstr("OBJECTS, cell 3,4: unknown code \"Coinn\""));
  EXPECT_EQ(VeskLevel("check '" + (folder / "none.json").string() + "'").code, 1);
  EXPECT_EQ(VeskLevel("examine").code, 2);
  EXPECT_THAT(VeskLevel("info '" + good + "'").output, testing::HasSubstr("30 by 20 cells"));
  const Outcome drawn = VeskLevel("render '" + good + "' -o '" + picture + "'");
  EXPECT_EQ(drawn.code, 0) << drawn.output;
  std::ifstream file(picture, std::ios::binary);
  std::string head(24, '\0');
  file.read(head.data(), 24);
  const auto number = [&](size_t at) {
    return static_cast<unsigned char>(head[at]) * 256 + static_cast<unsigned char>(head[at + 1]);
  };
  EXPECT_EQ(number(18), 30 * 16);
  EXPECT_EQ(number(22), 20 * 16);
  EXPECT_EQ(VeskLevel("render '" + good + "' --section Gone -o '" + picture + "'").code, 1);
  std::filesystem::remove_all(folder);
}

} // namespace vesk
