// The commands of scripted play, its refusals and its exit codes.
#include "Files/IO/IO.h"
#include "Files/Object/Object.h"
#include "apps/container/EmbeddedContainer.h"
#include "game/GameTables.h"
#include "sim/Look.h"
#include "sim/Script.h"
#include "tests/scenarios/Stage.h"
#include "tests/support/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace vesk {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Outcome {
  ScriptResult result;
  std::string lines, errors;
};

// `level` stands as Level/here.json in the directory of the run.
Outcome RunIn(const std::string& directory, const std::string& script, bool pictures = false) {
  SimulationSettings settings;
  settings.directory = directory;
  settings.container = {EmbeddedContainer(), EmbeddedContainerSize()};
  settings.pictures = pictures;
  Simulation simulation(settings);
  std::istringstream text(script);
  std::ostringstream lines, errors;
  const ScriptResult result = RunScript(simulation, text, {lines, errors});
  return {result, lines.str(), errors.str()};
}

class Scripts : public testing::Test {
protected:
  void SetUp() override {
    std::string name = (std::filesystem::temp_directory_path() / "scripts-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    directory = name;
    std::filesystem::create_directory(directory + "/Level");
    Write("Level/here.json", LevelText({"..S", "", std::string(60, '#')}));
  }
  void TearDown() override { std::filesystem::remove_all(directory); }
  void Write(const std::string& name, const std::string& text) {
    std::ofstream(directory + "/" + name, std::ios::binary) << text << "\n";
  }
  Outcome Run(const std::string& script, bool pictures = false) { return RunIn(directory, script, pictures); }
  std::string Play() const { return "play \"" + directory + "/Level/here.json\"\n"; }

  std::string directory;
};

TEST_F(Scripts, PrintWhatIsAskedFor) {
  const Outcome run = Run(Play() + "step 40\n"
                                   "# a remark\n\n"
                                   "dump obj_tovin x y state sprite_index mask_index alarm[0] object_index\n"
                                   "dump global health section coins\n"
                                   "count obj_tovin obj_solid obj_coin\n"
                                   "tiles 9\n"
                                   "tile 1 4 64 64 9\n"
                                   "tiles 9\n"
                                   "create obj_coin 32 48\n"
                                   "count obj_coin\n"
                                   "set obj_coin image_xscale 2\n"
                                   "dump obj_coin x y image_xscale\n"
                                   "destroy obj_coin\n"
                                   "count obj_coin\n"
                                   "set global levelname \"a name\"\n"
                                   "dump global levelname\n");
  EXPECT_EQ(run.result, ScriptResult::kAllWell) << run.errors;
  EXPECT_EQ(run.errors, "");
  std::vector<std::string> lines;
  std::istringstream text(run.lines);
  for (std::string line; std::getline(text, line);) lines.push_back(line.substr(line.find(',') + 1));
  ASSERT_EQ(lines.size(), 9u) << run.lines;
  EXPECT_THAT(lines[0], HasSubstr("\"object\":\"obj_tovin\",\"x\":40,\"y\":176,\"state\":0,\"sprite_index\":"
                                  "\"spr_player_durian_walk\",\"mask_index\":\"spr_bigmask\",\"alarm[0]\":-1,"
                                  "\"object_index\":\"obj_tovin\"}"));
  EXPECT_EQ(lines[1], "\"health\":25,\"section\":\"Main\",\"coins\":0}");
  EXPECT_EQ(lines[2], "\"obj_tovin\":1,\"obj_solid\":60,\"obj_coin\":0}");
  EXPECT_EQ(lines[3], "\"depth\":9,\"tiles\":60}");
  EXPECT_EQ(lines[4], "\"depth\":9,\"tiles\":61}");
  EXPECT_EQ(lines[5], "\"obj_coin\":1}");
  EXPECT_THAT(lines[6], HasSubstr("\"object\":\"obj_coin\",\"x\":32,\"y\":48,\"image_xscale\":2}"));
  EXPECT_EQ(lines[7], "\"obj_coin\":0}");
  EXPECT_EQ(lines[8], "\"levelname\":\"a name\"}");
}

TEST_F(Scripts, OpenTheEditorAsTheMenuDoes) {
  const Outcome fresh = Run("new \"Fresh one\"\nexpect global.room == 3\nexpect obj_persistent.done >= 1\n"
                            "mouse 192 108\nclick 72 18\nexpect count(obj_ewindow_item) == 1\nclick 24 74\n"
                            "step 6\nclick 104 104\nclick 312 18\ndump global levelname section\n");
  EXPECT_EQ(fresh.result, ScriptResult::kAllWell) << fresh.errors;
  EXPECT_THAT(fresh.lines, HasSubstr("\"levelname\":\"Fresh one\",\"section\":\"Main\""));
  EXPECT_TRUE(std::filesystem::exists(directory + "/Level/Fresh one.json"));
  EXPECT_EQ(Run("new \"Fresh one\"\n").result, ScriptResult::kBadScript); // it exists now
  EXPECT_EQ(Run("new a/b\n").result, ScriptResult::kBadScript);
  const Outcome opened =
      Run("edit \"" + directory + "/Level/here.json\"\nexpect count(obj_editor_object) == 1\n");
  EXPECT_EQ(opened.result, ScriptResult::kAllWell) << opened.errors;
  const Outcome missing = Run("edit \"" + directory + "/Level/here.json\" Cellar\n");
  EXPECT_EQ(missing.result, ScriptResult::kBadScript);
  EXPECT_THAT(missing.errors, HasSubstr("no section \"Cellar\""));
}

// The mouse begins in the middle: at an edge it would scroll the section away.
TEST_F(Scripts, FindTheEditorAtItsCorner) {
  const Outcome run = Run("new Still\nstep 30\nexpect global.view_xview == 0\nexpect global.view_yview == 0\n"
                          "mouse 200 100\nstep\nexpect obj_editor.xx == 192\nexpect obj_editor.yy == 96\n");
  EXPECT_EQ(run.result, ScriptResult::kAllWell) << run.errors;
}

TEST_F(Scripts, WatchEveryFrameUntilToldNotTo) {
  const Outcome run =
      Run(Play() + "watch obj_tovin y\nwatch global health\nstep 5\ntap x 2\nunwatch\nstep 5\n");
  EXPECT_EQ(run.result, ScriptResult::kAllWell) << run.errors;
  EXPECT_EQ(std::count(run.lines.begin(), run.lines.end(), '\n'), 2 * (5 + 3));
}

TEST_F(Scripts, PressKeysMouseAndWheelAsAWindowWould) {
  const Outcome run = Run(
      Play() + "step 60\npress left\nstep\nexpect obj_tovin.direct == -1\nrelease left\npress "
               "right up\nstep\nexpect obj_tovin.direct == 1\nrelease right up\n"
               "tap x\nexpect obj_tovin.state == 2\n"
               "mouse 100 50\nstep\nexpect global.mouse_x == 100\n"
               "click 20 30\ndrag 10 10 60 10\nwheel up\nstep\nbutton middle down\nstep\nbutton middle up\n"
               "type \"Ab 1\"\nexpect global.keyboard_string == \"xAb 1\"\n"
               "press 37\nstep\nrelease 37\npress f5\nrelease f5\n");
  EXPECT_EQ(run.result, ScriptResult::kAllWell) << run.errors;
}

TEST_F(Scripts, PadLeadsTheHero) {
  const Outcome run =
      Run("pad connect\n" + Play() +
          "step 60\npad axis leftx 1\nstep 20\nexpect obj_tovin.hspeed > 1\npad axis leftx 0\n"
          "pad button a down\nstep 2\nexpect obj_tovin.state == 2\npad button a up\nstep 60\n"
          "pad button dpleft down\nstep 60\nexpect obj_tovin.direct == -1\npad button dpleft up\nstep\n"
          "pad disconnect\nstep 5\n");
  EXPECT_EQ(run.result, ScriptResult::kAllWell) << run.errors;
}

TEST_F(Scripts, SoundsArePlayingAndHaveStarted) {
  const Outcome run = Run(Play() + "sounds\nstep 60\nsounds\ntap x\nsounds\nsounds\n");
  ASSERT_EQ(run.result, ScriptResult::kAllWell) << run.errors;
  std::vector<std::string> lines;
  std::istringstream text(run.lines);
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_THAT(lines[1], HasSubstr("\"playing\":[\"Sick\"],\"started\":"));
  EXPECT_THAT(lines[2], HasSubstr("\"started\":[\"snd_jump\"]}"));
  EXPECT_THAT(lines[3], HasSubstr("\"started\":[]}"));
}

// A recorded play is the same world frame by frame; a record that was spoiled is not, and what differs first
// is named.
TEST_F(Scripts, RepeatARecordedPlayAndNameWhatASpoiledOneChanges) {
  const std::string record = directory + "/walk.rec", journal = directory + "/walk.journal";
  const std::string quoted = "\"" + record + "\"", quotedJournal = "\"" + journal + "\"";
  const Outcome made =
      Run(Play() + "step 60\nrecord " + quoted + "\njournal write " + quotedJournal +
          "\npress right\nstep 30\ntap x 20\nrelease right\nstep 25\njournal end\nrecord end\n"
          "dump global room\nchecksum\n");
  ASSERT_EQ(made.result, ScriptResult::kAllWell) << made.errors;
  const std::string replay = Play() + "step 60\njournal check " + quotedJournal + "\nplayback " + quoted +
                             "\njournal end\nchecksum\n";
  const Outcome repeated = Run(replay);
  EXPECT_EQ(repeated.result, ScriptResult::kAllWell) << repeated.errors;
  EXPECT_THAT(made.lines, testing::EndsWith(repeated.lines));

  constexpr int kSpoiled = 10, kKeyDown = 2060, kRight = 39; // frame of the record; places in its record
  {
    std::fstream file(record, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(kSpoiled * kRecordSize + kKeyDown + kRight);
    file.put(0);
  }
  const Outcome spoiled = Run(replay);
  EXPECT_EQ(spoiled.result, ScriptResult::kExpectationFailed);
  const std::string frame = std::to_string(std::stoi(made.lines.substr(9)) - 76 + kSpoiled + 1);
  EXPECT_THAT(spoiled.errors, HasSubstr("frame " + frame + " differs from the journal: "));
  EXPECT_THAT(spoiled.errors,
              testing::ContainsRegex("instance [0-9]+ \\(obj_tovin\\): [a-z.]+ is .*, recorded was "));

  const Outcome shorter =
      Run(Play() + "step 60\njournal check " + quotedJournal + "\npress right\nstep\njournal end\n");
  EXPECT_THAT(shorter.errors, HasSubstr("the journal has more than the 1 frames that were played"));
  Write("torn.journal", "vesk-journal 1\nframe 0\nnonsense");
  const Outcome torn = Run(Play() + "journal check \"" + directory + "/torn.journal\"\nstep\n");
  EXPECT_THAT(torn.errors, HasSubstr("line 3 of the journal says nothing known"));
}

TEST_F(Scripts, RefuseATornRecord) {
  Write("torn.rec", "half a frame");
  const Outcome torn = Run(Play() + "playback \"" + directory + "/torn.rec\"\n");
  EXPECT_EQ(torn.result, ScriptResult::kBadScript);
  EXPECT_THAT(torn.errors, HasSubstr("line 2: \"" + directory + "/torn.rec\" is no input record"));
  EXPECT_EQ(Run("playback nowhere.rec\n").result, ScriptResult::kBadScript);
}

TEST_F(Scripts, AreDeterministicByteForByte) {
  const std::string script =
      Play() + "watch obj_tovin x y vspeed\npress right\nstep 50\ntap x 10\nstep 50\nchecksum\ndraws\n";
  const Outcome one = Run(script), two = Run(script);
  EXPECT_EQ(one.result, ScriptResult::kAllWell) << one.errors;
  EXPECT_EQ(one.lines, two.lines);
  EXPECT_GT(one.lines.size(), 1000u);
}

TEST_F(Scripts, ShootPictures) {
  const std::string picture = directory + "/shot.png";
  const Outcome run = Run(Play() + "step 40\nshot \"" + picture + "\"\n", true);
  EXPECT_EQ(run.result, ScriptResult::kAllWell) << run.errors;
  std::ifstream file(picture, std::ios::binary);
  std::string head(24, '\0');
  file.read(head.data(), 24);
  EXPECT_EQ(head.substr(1, 3), "PNG");
  EXPECT_EQ((static_cast<uint8_t>(head[18]) << 8) + static_cast<uint8_t>(head[19]), 384);
  EXPECT_EQ(static_cast<uint8_t>(head[23]), 216);
  EXPECT_EQ(Run(Play() + "step\nshot /nowhere/shot.png\n", true).result, ScriptResult::kBadScript);
}

TEST_F(Scripts, FailWithTheValueFound) {
  struct Row {
    const char* command;
    const char* error;
  };
  for (const Row& row :
       {Row{"expect obj_tovin.x == 41", "expect obj_tovin.x == 41: found 40"},
        Row{"expect global.section != \"Main\"", "expect global.section != \"Main\": found \"Main\""},
        Row{"expect count(obj_tovin) > 1", "found 1"}, Row{"expect tiles(9) < 60", "found 60"},
        Row{"expect obj_krandle.x == 0", "found null"},
        Row{"until obj_tovin.x > 1000 25", "still not so after 25 frames; found 40"}}) {
    const Outcome run = Run(Play() + "step 40\n" + row.command + "\nstep 10\nchecksum\n");
    EXPECT_EQ(run.result, ScriptResult::kExpectationFailed) << row.command;
    EXPECT_THAT(run.errors, StartsWith("line 3: ")) << row.command;
    EXPECT_THAT(run.errors, HasSubstr(row.error));
    EXPECT_EQ(run.lines, "") << "nothing runs after a failure";
  }
  const Outcome holds = Run(
      Play() + "step 40\nexpect obj_tovin.x == 40.000009\nexpect obj_tovin.x >= 40\nexpect obj_tovin.x <= "
               "40\nexpect \"a\" == \"a\"\nuntil obj_tovin.x == 40 0\n");
  EXPECT_EQ(holds.result, ScriptResult::kAllWell) << holds.errors;
}

TEST_F(Scripts, RefuseWhatTheyDontUnderstandWithTheLine) {
  struct Row {
    const char* command;
    const char* error;
  };
  for (const Row& row : {Row{"dance", "unknown command \"dance\""},
                         Row{"step two", "\"two\" is not a number of frames"},
                         Row{"step -1", "\"-1\" is not a number of frames"},
                         Row{"press hyper", "\"hyper\" is not a key"},
                         Row{"press", "usage: press KEY"},
                         Row{"dump obj_nothing x", "there is no object \"obj_nothing\""},
                         Row{"dump obj_tovin nothing", "there is no variable \"nothing\""},
                         Row{"count obj_nothing", "there is no object"},
                         Row{"watch obj_nothing x", "there is no object"},
                         Row{"expect obj_tovin.x =", "usage: expect"},
                         Row{"expect obj_tovin.x ~ 1", "\"~\""},
                         Row{"mouse left 1", "\"left\" is not a number"},
                         Row{"button thumb down", "is not a mouse button"},
                         Row{"button left sideways", "a button goes down or up"},
                         Row{"wheel around", "the wheel goes"},
                         Row{"type \"open", "a double quote is open"},
                         Row{"play nowhere.json", "nowhere.json"},
                         Row{"room rm_nowhere", "there is no room \"rm_nowhere\""},
                         Row{"tiles deep", "is not a number"},
                         Row{"set obj_persistent id 3", "can't be written"},
                         Row{"create obj_nothing 1 1", "there is no object"},
                         Row{"pad fly", "usage: pad"},
                         Row{"pad button a down", "no pad"},
                         Row{"tap x y", "number of frames"}}) {
    const Outcome run = Run("# one\n\n" + std::string(row.command) + "\nstep\n");
    EXPECT_EQ(run.result, ScriptResult::kBadScript) << row.command;
    EXPECT_THAT(run.errors, StartsWith("line 3: ")) << row.command;
    EXPECT_THAT(run.errors, HasSubstr(row.error));
  }
}

TEST_F(Scripts, TellOfAFatalErrorWhole) {
  const Outcome run =
      Run("pad connect\n" + Play() + "set obj_persistent leftstick 1\npad axis leftx 1\nstep 3\nchecksum\n");
  EXPECT_EQ(run.result, ScriptResult::kFatalError);
  EXPECT_THAT(run.errors, StartsWith("line 5: the game reported a fatal error in frame "));
  EXPECT_THAT(run.errors, HasSubstr("for object obj_persistent"));
  EXPECT_EQ(run.lines, "");
}

// ---- the program itself ----

ProgramRun Execute(const std::string& arguments) { return RunProgram("vesk-sim", arguments); }

TEST_F(Scripts, ProgramGivesItsExitCodes) {
  Write("well.sim", Play() + "step 40\nexpect obj_tovin.x == 40");
  Write("fails.sim", Play() + "step 40\nexpect obj_tovin.x == 1");
  Write("bad.sim", "dance");
  EXPECT_EQ(Execute("--dir " + directory + " --quiet " + directory + "/well.sim").code, 0);
  EXPECT_EQ(Execute("--dir " + directory + " --quiet " + directory + "/well.sim").out, "");
  EXPECT_THAT(Execute("--dir " + directory + " --seed 5 " + directory + "/well.sim").out,
              HasSubstr("frames a second"));
  EXPECT_EQ(Execute("--quiet " + directory + "/fails.sim").code, 1);
  EXPECT_EQ(Execute("--quiet - < " + directory + "/bad.sim").code, 2);
  EXPECT_THAT(Execute("--quiet " + directory + "/bad.sim").out, HasSubstr("line 1: unknown command"));
  EXPECT_EQ(Execute("--quiet " + directory + "/none.sim").code, 2);
  EXPECT_EQ(Execute("--wrong").code, 2);
}

TEST_F(Scripts, ProgramTellsWhatHasNoRulesYet) {
  int unbuilt = 0;
  while (unbuilt < static_cast<int>(GameObjects().size()) && IsBuilt(unbuilt)) ++unbuilt;
  if (unbuilt == static_cast<int>(GameObjects().size())) GTEST_SKIP() << "everything has rules";
  const std::string name = GameObjects()[static_cast<size_t>(unbuilt)].name;
  Write("meets.sim", Play() + "create " + name + " 50 50\nstep 2");
  const ProgramRun run = Execute("--quiet " + directory + "/meets.sim");
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.out, name + " has no rules yet; it stands still\n");
}

} // namespace
} // namespace vesk
