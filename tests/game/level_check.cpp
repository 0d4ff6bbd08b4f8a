// What the checker of level files finds, and that it says where.
#include "game/level/level_check.h"

#include "Files/Function/Function_Data_Structures.h"
#include "Files/Graphics/PngImage.h"
#include "game/text.h"
#include "tests/support/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>

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

ProgramRun VeskLevel(const std::string& arguments) { return RunProgram("vesk-level", arguments); }

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
          R"(,"Boss":)" +
          Section(
              R"("OBJECTS":{"8,2":"Zephlet","9,2":"Zephlet","4,4":"Timed Platform","5,4":"Security Sensor"},)"
              R"("MARKERS":{"6,4":"Speed"},)"
              R"("MODIFIERS":{"8,2":"TEXT:There","9,2":"TEXT:Here","20,2":"DESTINATION:Here",)"
              R"("4,4":"TEXT:soon","5,4":"TEXT:45,90","6,4":"TEXT:"})") +
          "}"),
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
          "section \"Main\", MODIFIERS, cell 7,7: section \"Boss\" has no destination \"Gone\"",
          "section \"Boss\", MODIFIERS, cell 8,2: flies to \"There\", which is no destination here",
          "section \"Boss\", MODIFIERS, cell 4,4: \"Timed Platform\" asks for a number, and \"soon\" has "
          "none",
          "section \"Boss\", MODIFIERS, cell 6,4: \"Speed\" asks for a number, and \"\" has none"));
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

namespace {

// A folder of the test's own with level files in it.
class LevelFolder {
public:
  LevelFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "vesk-level-XXXXXX").string();
    m_folder = mkdtemp(name.data());
  }
  ~LevelFolder() { std::filesystem::remove_all(m_folder); }

  std::string Path(const std::string& name) const { return (m_folder / name).string(); }
  std::string Write(const std::string& name, const std::string& text) const {
    std::ofstream(Path(name)) << text;
    return Path(name);
  }
  // What `render` draws; the test fails when it doesn't.
  PngImage Render(const std::string& level, const std::string& options = "") const {
    const std::string picture = Path("picture.png");
    const ProgramRun outcome = VeskLevel("render '" + level + "' " + options + " -o '" + picture + "'");
    EXPECT_EQ(outcome.code, 0) << outcome.out;
    std::ifstream file(picture, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), {});
    PngImage image;
    std::string why;
    EXPECT_TRUE(Png_Decode(reinterpret_cast<const uint8_t*>(bytes.data()),
                           static_cast<uint32_t>(bytes.size()), image, why))
        << why;
    return image;
  }

private:
  std::filesystem::path m_folder;
};

std::array<uint8_t, 3> PixelAt(const PngImage& image, int x, int y) {
  const size_t at = (static_cast<size_t>(y) * static_cast<size_t>(image.width) + static_cast<size_t>(x)) * 4;
  return {image.pixels[at], image.pixels[at + 1], image.pixels[at + 2]};
}

// 30 by 20 cells, larger than what is drawn at a time, with one and the same tile everywhere.
constexpr int kColumns = 30, kRows = 20;
std::string UniformLevel(const std::string& layers) {
  std::string tiles;
  for (int cx = 0; cx < kColumns; ++cx)
    for (int cy = 0; cy < kRows; ++cy)
      tiles += (tiles.empty() ? "\"" : ",\"") + cell_key(cx, cy) + "\":\"2,5\"";
  return R"({"Main":)" + Section("\"TILES\":{" + tiles + "}" + (layers.empty() ? "" : ",") + layers) + "}";
}

} // namespace

TEST(LevelProgram, TellsByItsExitCodeAndInWords) {
  const LevelFolder folder;
  const std::string good =
      folder.Write("good.json", R"({"Main":)" + Section(R"("TILES":{"3,4":"1,4"})") + "}");
  const std::string bad =
      folder.Write("bad.json", R"({"Main":)" + Section(R"("OBJECTS":{"3,4":"Coinn"})") + "}");
  const std::string none = folder.Path("none.json");
  const ProgramRun fine = VeskLevel("check '" + good + "'");
  EXPECT_EQ(fine.code, 0);
  EXPECT_EQ(fine.out, good + ": all well\n");
  const ProgramRun all = VeskLevel("check '" + bad + "' '" + none + "' '" + good + "'");
  EXPECT_EQ(all.code, 1);
  EXPECT_THAT(all.out,
              testing::HasSubstr(bad + ": section \"Main\", OBJECTS, cell 3,4: unknown code \"Coinn\"\n"));
  EXPECT_THAT(all.out, testing::HasSubstr(none + ": "));
  EXPECT_THAT(all.out, testing::HasSubstr(good + ": all well\n")); // whatever stood before it
  EXPECT_EQ(VeskLevel("check '" + none + "'").code, 1);
  EXPECT_EQ(VeskLevel("check").code, 2);
  EXPECT_EQ(VeskLevel("examine").code, 2);
  EXPECT_EQ(VeskLevel("info '" + none + "'").code, 1);
}

TEST(LevelProgram, InfoCounts) {
  const LevelFolder folder;
  const std::string level = folder.Write(
      "level.json",
      R"({"Main":)" +
          Section(R"("TILES":{"3,4":"1,4","4,4":"1,4"},"OBJECTS":{"1,1":"Key","2,1":"Coin","3,1":"Coin"},)"
                  R"("MARKERS":{"6,6":"Door"},"MODIFIERS":{"6,6":"TEXT:Here","7,7":"DESTINATION:Here"})") +
          "}");
  const ProgramRun info = VeskLevel("info '" + level + "'");
  EXPECT_EQ(info.code, 0);
  EXPECT_EQ(info.out,
            level +
                ": 1 section\n"
                "  \"Main\": 30 by 20 cells, music Cool, background Wall, Blue water of 3 cells, darkness\n"
                "    MARKERS 1, MODIFIERS 2, OBJECTS 3, TILES 2, TILES_BG 0\n"
                "    objects: Coin 2, Key 1\n"
                "    modifiers: DESTINATION: 1, TEXT: 1\n"
                "    markers: Door 1\n");
}

TEST(LevelProgram, RendersASectionWithoutSeams) {
  const LevelFolder folder;
  const std::string level = folder.Write("uniform.json", UniformLevel(""));
  for (const char* options : {"", "--no-lights --no-water"}) {
    SCOPED_TRACE(options);
    const PngImage image = folder.Render(level, options);
    ASSERT_EQ(image.width, kColumns * 16);
    ASSERT_EQ(image.height, kRows * 16);
    // The same from cell to cell, above the water downwards too.
    const int surface = std::string_view(options).ends_with("--no-water") ? kRows * 16 : (kRows - 3) * 16;
    int64_t odd = 0;
    for (int y = 0; y < image.height; ++y)
      for (int x = 0; x < image.width; ++x) {
        if (x >= 16) odd += PixelAt(image, x, y) != PixelAt(image, x - 16, y);
        if (y >= 16 && y < surface) odd += PixelAt(image, x, y) != PixelAt(image, x, y - 16);
      }
    EXPECT_EQ(odd, 0);
  }
}

TEST(LevelProgram, LightsWaterAndGridAreDrawnByChoice) {
  const LevelFolder folder;
  // One torch far from where two pieces of the picture meet, one right there.
  const std::string level =
      folder.Write("lights.json", UniformLevel(R"("OBJECTS":{"8,9":"Torch Fire","19,9":"Torch Fire"})"));
  const PngImage lit = folder.Render(level), plain = folder.Render(level, "--no-lights"),
                 dry = folder.Render(level, "--no-water"), ruled = folder.Render(level, "--grid");
  int64_t odd = 0, below = 0, above = 0, off_grid = 0, on_grid = 0;
  for (int y = 0; y < lit.height; ++y)
    for (int x = 0; x < lit.width; ++x) {
      if (x >= 4 * 16 && x < 13 * 16) odd += PixelAt(lit, x, y) != PixelAt(lit, x + 11 * 16, y);
      (y < (kRows - 3) * 16 ? above : below) += PixelAt(lit, x, y) != PixelAt(dry, x, y);
      (x % 16 == 0 || y % 16 == 0 ? on_grid : off_grid) += PixelAt(lit, x, y) != PixelAt(ruled, x, y);
    }
  EXPECT_EQ(odd, 0) << "a torch's light is another where pieces meet";
  EXPECT_EQ(above, 0);
  EXPECT_GT(below, 1000);
  EXPECT_EQ(off_grid, 0);
  EXPECT_GT(on_grid, 1000);
  const auto brightness = [](const PngImage& image, int x, int y) {
    int sum = 0;
    for (int dy = 0; dy < 16; ++dy)
      for (int dx = 0; dx < 16; ++dx)
        for (const uint8_t channel : PixelAt(image, x * 16 + dx, y * 16 + dy)) sum += channel;
    return sum;
  };
  EXPECT_GT(brightness(lit, 9, 9), 2 * brightness(lit, 28, 9)); // beside the torch, and far from both
  EXPECT_EQ(brightness(plain, 10, 9), brightness(plain, 28, 9));
}

TEST(LevelProgram, SaysWhyItCantRender) {
  const LevelFolder folder;
  const std::string good = folder.Write("good.json", R"({"Main":)" + Section("") + "}");
  const std::string bad = folder.Write("bad.json", "{");
  const auto said = [&](const std::string& arguments) {
    const ProgramRun outcome = VeskLevel("render " + arguments);
    EXPECT_EQ(outcome.code, 1) << outcome.out;
    return outcome.out;
  };
  const std::string picture = " -o '" + folder.Path("p.png") + "'";
  EXPECT_THAT(said("'" + good + "' --section Gone" + picture), testing::HasSubstr("Gone"));
  EXPECT_THAT(said("'" + bad + "'" + picture), testing::HasSubstr("not JSON text of a level"));
  EXPECT_THAT(said("'" + folder.Path("none.json") + "'" + picture), testing::HasSubstr("none.json"));
  EXPECT_FALSE(std::filesystem::exists(folder.Path("p.png")));
  EXPECT_THAT(said("'" + good + "' -o '" + folder.Path("nowhere/p.png") + "'"),
              testing::HasSubstr("can't be written"));
  EXPECT_EQ(VeskLevel("render '" + good + "'").code, 2);
}

} // namespace vesk
