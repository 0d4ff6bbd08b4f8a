// The first level from end to end by keys alone, and what a run costs.
#include "Files/Graphics/Batch.h"
#include "Files/Run/WorldState.h"
#include "apps/container/EmbeddedContainer.h"
#include "sim/Look.h"
#include "sim/Picture.h"
#include "sim/Script.h"
#include "sim/Simulation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <sstream>

namespace vesk {
namespace {

struct Played {
  ScriptResult result = ScriptResult::kBadScript;
  std::string lines, errors;
  std::vector<uint64_t> checksums; // of every frame
  int64_t mostDraws = 0;
};

std::string FileText(const std::string& name) {
  std::ifstream file(name);
  EXPECT_TRUE(file) << name << " is not there: run from the root of the sources";
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

Played PlayScript(const std::string& script, int32_t seed = 1) {
  SimulationSettings settings;
  settings.seed = seed;
  settings.container = {EmbeddedContainer(), EmbeddedContainerSize()};
  Simulation simulation(settings);
  Played run;
  simulation.OnFrame([&] {
    run.checksums.push_back(World_Checksum());
    run.mostDraws = std::max(run.mostDraws, LastFrameDraws().batches);
  });
  std::istringstream text(script);
  std::ostringstream lines, errors;
  run.result = RunScript(simulation, text, {lines, errors});
  run.lines = lines.str();
  run.errors = errors.str();
  return run;
}

TEST(FirstSteps, ArePlayedToTheFarEnd) {
  const std::string script = FileText("tests/scenarios/first-steps.sim");
  const Played first = PlayScript(script);
  EXPECT_EQ(first.result, ScriptResult::kAllWell) << first.errors;
  EXPECT_EQ(first.errors, "");
  EXPECT_GT(first.checksums.size(), 600u);

  const Played again = PlayScript(script);
  EXPECT_EQ(again.lines, first.lines);
  ASSERT_EQ(again.checksums.size(), first.checksums.size());
  for (size_t frame = 0; frame < first.checksums.size(); ++frame)
    ASSERT_EQ(again.checksums[frame], first.checksums[frame]) << "frame " << frame;

  const Played otherChance = PlayScript(script, 4711);
  EXPECT_EQ(otherChance.result, ScriptResult::kAllWell) << otherChance.errors;
  EXPECT_NE(otherChance.checksums.back(), first.checksums.back()) << "the seed reaches nothing";

  // One key a frame later is another world from there on, so the comparison can fail.
  std::string late = script;
  const size_t at = late.find("press right");
  ASSERT_NE(at, std::string::npos);
  late.insert(at, "step\n");
  const Played spoiled = PlayScript(late);
  EXPECT_NE(std::mismatch(first.checksums.begin(), first.checksums.end(), spoiled.checksums.begin(),
                          spoiled.checksums.end())
                .first,
            first.checksums.end());
}

TEST(FirstSteps, TakeSixDrawCallsAFrameAtMost) {
  const Played run = PlayScript(FileText("tests/scenarios/first-steps.sim"));
  EXPECT_LE(run.mostDraws, 6);
  EXPECT_GT(run.mostDraws, 1);
}

TEST(FirstSteps, TheGapIsDeadly) {
  const Played run =
      PlayScript("play Level/first-steps.json\n"
                 "set obj_tovin x 1080\nset obj_tovin y 208\nset obj_levelmanager barrier 1\nstep\n"
                 "until count(obj_tovin) == 0 200\nexpect global.health == 0\nexpect global.died == 1\n"
                 "count obj_deadtovin\n");
  EXPECT_EQ(run.result, ScriptResult::kAllWell) << run.errors;
}

} // namespace
} // namespace vesk
