// Thousands of frames of keys pressed at random in crowded places, each frame against the model.
#include "tests/scenarios/HeroModel.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <set>

namespace vesk {
namespace {

const Rows kYard = {
    "..............................##................",  "..............................##................",
    "....====..........|...........O##P..............",  "..................|...%%%%......................",
    ".........##.......|...%%%%..........====........",  ".....====##.......|...%%%%......................",
    ".........##.......|...............#..........#..",  "..==.....##..==...|......./.##\\...#..........#..",
    ".........##.......|...../.######\\.#...====...#..", "...........==..#####..../.########\\#..........#..",
    "......#..............................#####...#..",  "..S...#....K##L.................==...........#..",
    "......#...K####L.......#.....#...............#..",  "################################################",
};

std::string RandomKeys(std::mt19937& chance) {
  std::string keys;
  for (const char key : std::string("LRUDJA"))
    if (chance() % (key == 'L' || key == 'R' ? 2u : key == 'J' ? 3u : 6u) == 0) keys += key;
  return keys;
}

// Somewhere in the air, falling or rising.
void Throw(Duel& duel, const Rows& rows, std::mt19937& chance) {
  for (;;) {
    const size_t row = chance() % (rows.size() - 1), column = chance() % rows[row].size();
    if (rows[row][column] == '#' || rows[row + 1][column] == '#') continue;
    const auto set = [&](const char* name, double value) { duel.Game().Set("obj_tovin", name, value); };
    set("x", static_cast<double>(column) * 16 + 8);
    set("y", static_cast<double>(row) * 16);
    set("state", 2);
    set("statedelay", 5);
    set("gravity", 0.3);
    set("hspeed", static_cast<double>(chance() % 61) / 10 - 3);
    set("vspeed", static_cast<double>(chance() % 81) / 10 - 4);
    duel.Game().Set("obj_levelmanager", "barrier", 1); // until the view has followed
    duel.Game().Step();
    duel.Game().Set("obj_levelmanager", "barrier", 0);
    return duel.Resume();
  }
}

void PlayAtRandom(const Rows& rows, const LevelSettings& settings, unsigned seed, int frames,
                  std::set<std::string>& poses) {
  std::mt19937 chance(seed);
  std::optional<Duel> duel;
  duel.emplace(rows, settings);
  std::string keys;
  for (int frame = 0, left = 0; frame < frames; ++frame, --left) {
    if (frame % 300 == 299) Throw(*duel, rows, chance);
    if (left == 0) {
      left = 1 + static_cast<int>(chance() % 24);
      keys = RandomKeys(chance);
    }
    ASSERT_TRUE(duel->PlayFrame(keys)) << "seed " << seed << ", " << settings.hero;
    poses.insert(duel->Hero().pose);
    if (duel->Hero().slides || duel->Hero().dies) { // another object leads now: begin again
      duel.reset();                                 // one game at a time
      duel.emplace(rows, settings);
      left = 1;
    }
  }
}

class RandomKeysOf : public testing::TestWithParam<const char*> {};

TEST_P(RandomKeysOf, MatchTheModel) {
  LevelSettings settings;
  settings.hero = GetParam();
  std::set<std::string> poses;
  for (unsigned seed = 1; seed <= 3; ++seed) {
    settings.water = seed == 3 ? 6 : 0;
    ASSERT_NO_FATAL_FAILURE(PlayAtRandom(kYard, settings, seed, 3000, poses));
  }
  for (const char* pose : {"walk", "jump", "skid", "climb", "swim", "duck"})
    EXPECT_TRUE(poses.contains(pose)) << pose;
}

INSTANTIATE_TEST_SUITE_P(Characters, RandomKeysOf,
                         testing::Values("Durian", "Cashew", "Pistachio", "Rhubarb"));

} // namespace
} // namespace vesk
