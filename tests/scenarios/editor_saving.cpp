// Large sections come and go whole, and a save that is broken off leaves a whole file.
#include "tests/scenarios/EditorDesk.h"

#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"
#include "game/editor/window.h"
#include "game/level/level_file.h"
#include "sim/Look.h"
#include "tests/support/SolidLevel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace vesk {

namespace {

void OpenSolid(EditorDesk& desk) {
  desk.Write("solid", SolidLevel());
  ASSERT_EQ(desk.Game().Edit(desk.Directory() + "/Level/solid.json", "Main"), "");
}

} // namespace

TEST(EditorSaving, ASolidSectionIsShownWholeAndSavedAsItIs) {
  EditorDesk desk;
  OpenSolid(desk);
  EXPECT_EQ(CountTiles(9), kSolidTiles);
  EXPECT_EQ(desk.Count(obj_editor_object), static_cast<size_t>(kSolidObjects));
  const Cells tiles = desk.Layer("TILES"), objects = desk.Layer("OBJECTS");
  desk.ClickButton("Save");
  const std::string saved = desk.Read("solid");
  ASSERT_EQ(desk.Game().Edit(desk.Directory() + "/Level/solid.json", "Main"), "");
  EXPECT_EQ(desk.Layer("TILES"), tiles);
  EXPECT_EQ(desk.Layer("OBJECTS"), objects);
  desk.ClickButton("Save");
  EXPECT_EQ(desk.Read("solid"), saved);
}

TEST(EditorSaving, AFloodFillsALargeEmptySection) {
  EditorDesk desk;
  desk.OpenNew("sea");
  with(obj_editor, [](Self editor) {
    editor[height] = 100;
    event_user(editor, 1);
  });
  desk.ChooseTiles(1, 4);
  desk.Hold(kKeyShift);
  desk.ClickCell(10, 8);
  desk.Release(kKeyShift);
  EXPECT_EQ(desk.Layer("TILES").size(), 25000u);
  EXPECT_EQ(CountTiles(9), 25000);
  desk.Hold(kKeyShift);
  desk.ClickCell(10, 8, Mouse::kRight);
  desk.Release(kKeyShift);
  EXPECT_EQ(desk.Layer("TILES").size(), 0u);
  EXPECT_EQ(CountTiles(9), 0);
}

// A hundred saving processes end at a moment of chance; what is left is one of the two levels that they
// write.
TEST(EditorSaving, AKillAtAnyMomentLeavesTheOldFileOrTheNewOne) {
  EditorDesk desk;
  OpenSolid(desk);
  const int objects = ValueAsInt32(ds_map_find_value(edited_section(), "OBJECTS"));
  const auto save = [&](bool other) {
    ds_map_replace(objects, "3,3", other ? "Key" : "Coin");
    scr_level_save("solid");
  };
  save(true);
  const std::string one = desk.Read("solid");
  save(false);
  const std::string two = desk.Read("solid");
  ASSERT_NE(one, two);
  std::mt19937 chance(1);
  int kept[2] = {0, 0};
  for (int round = 0; round < 100; ++round) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      for (bool other = round % 2 == 0;; other = !other) save(other);
    }
    usleep(static_cast<useconds_t>(200 + chance() % 20000));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the saving process ended by itself";
    const std::string left = desk.Read("solid");
    ASSERT_TRUE(left == one || left == two) << "round " << round << ": " << left.size() << " bytes are left";
    ++kept[left == one ? 0 : 1];
  }
  EXPECT_GT(kept[0], 0); // both were written at times
  EXPECT_GT(kept[1], 0);
  const int levels = static_cast<int>(scr_level_get_levels());
  EXPECT_EQ(ds_list_size(levels), 1) << "what a broken save leaves beside is no level";
  ds_list_destroy(levels);
  save(true); // and the next save works
  EXPECT_EQ(desk.Read("solid"), one);
}

TEST(EditorSaving, ASaveThatFailsIsToldAndNothingIsLost) {
  EditorDesk desk;
  desk.OpenNew("lost");
  desk.Choose("Item", "", "Coin");
  desk.ClickCell(6, 6);
  std::filesystem::remove_all(desk.Directory() + "/Level");
  std::ofstream(desk.Directory() + "/Level") << "in the way";
  desk.SoundsStarted();
  desk.ClickButton("Save");
  desk.ExpectHealthy();
  EXPECT_THAT(Error().lastReport, testing::HasSubstr("can't be written"));
  EXPECT_THAT(desk.SoundsStarted(), testing::Not(testing::Contains("snd_whistle")));
  EXPECT_EQ(desk.Layer("OBJECTS").size(), 1u);
  std::filesystem::remove(desk.Directory() + "/Level");
  desk.ClickButton("Save");
  EXPECT_THAT(desk.Read("lost"), testing::HasSubstr("\"6,6\": \"Coin\""));
}

} // namespace vesk
