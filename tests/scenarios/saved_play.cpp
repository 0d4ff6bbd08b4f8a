// A level in play that was saved goes on the same way in another run of the program.
#include "Files/Base/Error.h"
#include "Files/Run/SavedGame.h"
#include "Files/Run/WorldState.h"
#include "apps/container/EmbeddedContainer.h"
#include "tests/scenarios/Stage.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace vesk {
namespace {

TEST(SavedPlay, GoesOnTheSameWayInAnotherRun) {
  std::string directory = (std::filesystem::temp_directory_path() / "saved-XXXXXX").string();
  ASSERT_NE(mkdtemp(directory.data()), nullptr);
  const std::string level = directory + "/Level/here.json";
  std::filesystem::create_directory(directory + "/Level");
  LevelSettings things;
  things.objects = {{"12,5", "Krandle"}, {"20,5", "Coin"}};
  std::ofstream(level) << LevelText({"..S.....", "", std::string(60, '#')}, things);
  SimulationSettings settings;
  settings.directory = directory;
  settings.container = {EmbeddedContainer(), EmbeddedContainerSize()};

  const auto walk = [](Simulation& game) {
    std::vector<uint64_t> checksums;
    game.Key(39, true);
    for (int frame = 0; frame < 90; ++frame) {
      if (frame == 30) game.Key('X', true);
      game.Step();
      checksums.push_back(World_Checksum());
    }
    return checksums;
  };
  std::vector<uint64_t> wanted;
  {
    Simulation game(settings);
    ASSERT_EQ(game.Start(), "");
    ASSERT_EQ(game.Play(level, "Main"), "");
    game.Step(25);
    game_save("play.sav");
    ASSERT_FALSE(Error().occurred) << Error().last;
    wanted = walk(game);
  }
  Simulation game(settings);
  ASSERT_EQ(game.Start(), "");
  game.Step(40); // in the logos
  game_load("play.sav");
  game.Step();
  ASSERT_FALSE(Error().occurred) << Error().last;
  EXPECT_EQ(walk(game), wanted);
  EXPECT_EQ(game.FatalReport(), "");
  std::error_code ignored;
  std::filesystem::remove_all(directory, ignored);
}

} // namespace
} // namespace vesk
