// What surrounds a level: the controller's commands, settings and files, the list of levels, the pause menu.
#include "Files/Background/DrawBackground.h"
#include "Files/Base/Error.h"
#include "Files/Function/Function_External.h"
#include "Files/Graphics/Surface.h"
#include "apps/container/EmbeddedContainer.h"
#include "game/Game.h"
#include "sim/Look.h"
#include "sim/Script.h"
#include "tests/scenarios/DrawnFrame.h"
#include "tests/scenarios/EditorDesk.h"
#include "tests/scenarios/Stage.h"
#include "tests/support/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace vesk {

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr int kJumpKey = 16;

const Rows kFloor = {"S       ", "        ", "########"};

void Tap(Stage& stage, int key) {
  stage.Game().Key(key, true);
  stage.Step();
  stage.Game().Key(key, false);
  stage.Step();
}

} // namespace

TEST(MenuController, KeysScrollTheListWhileTheMouseLiesAtAnEdge) {
  EditorDesk desk;
  for (char c = 'a'; c < 'q'; ++c) desk.Write(std::string("level ") + c, LevelText(kFloor));
  desk.OpenMenu();
  desk.MoveTo(0, 0); // where a mouse is that was never moved
  desk.Hold(kKeyDown);
  desk.Step(4);
  desk.Release(kKeyDown);
  EXPECT_EQ(desk.ViewY(), 20);
  desk.Hold(kKeyUp);
  desk.MoveTo(192, 214);
  desk.Step(4);
  desk.Release(kKeyUp);
  EXPECT_EQ(desk.ViewY(), 0);
}

// "Randomize" stays in sight when its button has scrolled away; a row's "Edit" below it is no trap.
TEST(MenuController, ARowUnderTheBarTakesNoClick) {
  EditorDesk desk;
  for (char c = 'a'; c < 'q'; ++c) desk.Write(std::string("level ") + c, LevelText(kFloor));
  desk.OpenMenu();
  desk.Hold(kKeyDown);
  while (desk.ViewY() < 32) desk.Step();
  desk.Release(kKeyDown);
  desk.Click(345, 18);
  desk.Step(30);
  EXPECT_EQ(desk.RoomNow(), rm_mainmenu);
  desk.Click(345, 50); // the next row's
  desk.Step(30);
  EXPECT_EQ(desk.RoomNow(), rm_editor);
}

TEST(MenuController, DamagedSettingsBecomeSettingsAgain) {
  const std::string directory = (std::filesystem::temp_directory_path() / "vesk-damaged-settings").string();
  std::filesystem::create_directories(directory);
  for (const auto& [damaged, kept] : std::map<std::string, std::string>{{"nan\n3\n1e308\n", "0\n3\n1\n"},
                                                                        {"7\nnan\n-2\n", "1\n4\n0\n"},
                                                                        {"1", "1\n4\n0\n"},
                                                                        {"\xFF\n1e9\n", "0\n4\n0\n"}}) {
    std::ofstream(directory + "/Settings.dat") << damaged;
    { EditorDesk(directory).Step(3); }
    std::ifstream file(directory + "/Settings.dat");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), kept) << damaged;
  }
  std::filesystem::remove_all(directory);
}

// Whatever a file is called, its row and the end of its level show a name on one line.
TEST(MenuController, NamesOfAnyFileFitWhereTheyAreShown) {
  const std::string level = LevelText(kFloor);
  const std::string endless(120, 'w');
  EditorDesk desk;
  for (const std::string& name : {std::string("a#b"), std::string("\xD1\x8F\xC3\xBC x"), endless})
    desk.Write(name, level);
  desk.OpenMenu();
  const DrawnFrame menu = LookAtFrame(desk);
  EXPECT_TRUE(menu.Reads("a#b")) << menu.Words();
  EXPECT_TRUE(menu.Reads("?? x")) << menu.Words();
  EXPECT_THAT(Misfits(menu), IsEmpty());
  desk.Type("www");
  desk.ClickNotify("PLAY");
  desk.Step(150);
  instance_create(0, 0, obj_levelender);
  desk.Step(600);
  const DrawnFrame end = LookAtFrame(desk);
  EXPECT_TRUE(end.Reads("Press any button to continue.")) << end.Words();
  for (const DrawnLine& line : end.lines)
    EXPECT_TRUE((Box{0, 0, 384, 216}.Holds(line.ink))) << line.text << ' ' << line.ink.Words();
}

TEST(MenuController, NothingOverlapsInTheMenuAndThePauseMenu) {
  EditorDesk desk;
  for (char c = 'a'; c < 'k'; ++c) desk.Write(std::string("level ") + c, LevelText(kFloor));
  desk.OpenMenu();
  desk.ClickNotify("NEW");
  EXPECT_TRUE(LookAtFrame(desk).Reads("Type a level name!"));
  EXPECT_THAT(Misfits(LookAtFrame(desk)), IsEmpty());
  desk.ClickNotify("RANDOM");
  EXPECT_TRUE(LookAtFrame(desk).Reads("Level must have a name!"));
  EXPECT_THAT(Misfits(LookAtFrame(desk)), IsEmpty());
  desk.ClickNotify("NEW");
  EXPECT_TRUE(LookAtFrame(desk).Reads("New Level"));
  desk.ClickNotify("PLAY");
  desk.Step(150);
  ASSERT_EQ(desk.Count(obj_tovin), 1u);
  desk.Tap(kKeyEnter);
  for (const char* entry : {"Continue", "Restart Level", "Return to Main Menu"})
    EXPECT_TRUE(LookAtFrame(desk).Reads(entry)) << entry;
  EXPECT_THAT(Misfits(LookAtFrame(desk)), IsEmpty());
}

// The folder is the player's to mend: plain words, no report of the game's code, and nothing is lost.
TEST(MenuController, AFolderThatCantBeWrittenIsToldInPlainWords) {
  EditorDesk desk;
  desk.OpenNew("lost");
  auto& shown = desk.Game().Devices().dialogs.shown;
  std::filesystem::remove_all(desk.Directory() + "/Level");
  std::ofstream(desk.Directory() + "/Level") << "in the way";
  std::filesystem::create_directory(desk.Directory() + "/Settings.dat");
  Error().showBox = true;
  desk.ClickButton("Save");
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_FALSE(shown[0].error);
  EXPECT_EQ(shown[0].title, "Vesk Editor");
  EXPECT_THAT(shown[0].text, HasSubstr("can't be written"));
  EXPECT_THAT(shown[0].text, testing::Not(HasSubstr("called from")));
  with(obj_persistent, [](Self controller) { event_perform(controller, ev_other, ev_game_end); });
  ASSERT_EQ(shown.size(), 2u);
  EXPECT_THAT(shown[1].text, HasSubstr("Settings.dat"));
}

TEST(MenuController, AltROutOfAPauseFreesWhatTheSleepersHold) {
  Stage stage(kFloor);
  stage.Step(3);
  const int light = static_cast<int>(stage.Real("obj_lightmanager", "lightsurf"));
  ASSERT_TRUE(surface_exists(light));
  Tap(stage, kKeyEnter);
  ASSERT_EQ(stage.Count("obj_pausemenu"), 1u);
  const int picture = static_cast<int>(stage.Real("obj_pausemenu", "back"));
  ASSERT_TRUE(background_exists(picture));
  stage.Game().Key(kKeyAlt, true);
  stage.Step();
  Tap(stage, 'R');
  stage.Game().Key(kKeyAlt, false);
  stage.Step(40);
  EXPECT_EQ(stage.Count("obj_titlescreen"), 1u);
  EXPECT_FALSE(surface_exists(light));
  EXPECT_FALSE(background_exists(picture));
}

// A door to a section that was deleted since leads to an empty room, out of which the pause menu leads.
TEST(MenuController, ASectionThatIsGoneLeavesAnEmptyRoomAndAWayOut) {
  Stage stage(kFloor);
  const double width = stage.Global("room_width");
  stage.SetGlobal("section", "Gone");
  stage.SetGlobal("post_section", "door");
  ASSERT_EQ(stage.Game().Room("rm_template"), "");
  stage.Step(30);
  EXPECT_EQ(stage.Count("obj_tovin"), 0u);
  EXPECT_EQ(stage.Count("obj_levelmanager"), 1u);
  EXPECT_EQ(stage.Global("room_width"), width);
  Tap(stage, kKeyEnter);
  Tap(stage, kKeyDown);
  EXPECT_EQ(stage.Text("obj_pausemenu", "menu[1]"), "Restart Level");
  Tap(stage, kJumpKey);
  stage.Step(150);
  EXPECT_EQ(stage.GlobalText("section"), "Main");
  EXPECT_EQ(stage.Count("obj_tovin"), 1u);
  EXPECT_EQ(stage.Game().FatalReport(), "");
}

// Unplugged, the pad lets go; switched off by Alt+G, what it holds stays held until the keyboard lets go.
TEST(MenuController, KeysHeldByAPadThatIsUnpluggedOrSwitchedOff) {
  constexpr uint16_t kPadRight = 0x8;
  Stage stage(
      {"S                           ", "                            ", "############################"});
  auto& devices = stage.Game().Devices();
  PadInfo info;
  info.standard = true;
  const auto plug_in_and_run = [&] {
    const int32_t device = devices.pads.Attach(info);
    devices.messages.PadsChanged();
    stage.Set("obj_persistent", "gamepad", 1);
    stage.Step(2);
    devices.pads.Find(device)->standard.buttons = kPadRight;
    stage.Step(20);
    EXPECT_GT(stage.Real("obj_tovin", "hspeed"), 1);
    return device;
  };
  devices.pads.Detach(plug_in_and_run());
  devices.messages.PadsChanged();
  stage.Step(60);
  EXPECT_EQ(stage.Real("obj_tovin", "hspeed"), 0);

  const int32_t device = plug_in_and_run();
  stage.Game().Key(kKeyAlt, true);
  stage.Step();
  Tap(stage, 'G');
  stage.Game().Key(kKeyAlt, false);
  EXPECT_EQ(stage.Text("obj_persistent", "message"), "Gamepad Off");
  devices.pads.Find(device)->standard.buttons = 0;
  stage.Step(30);
  EXPECT_GT(stage.Real("obj_tovin", "hspeed"), 1);
  Tap(stage, kKeyRight);
  stage.Step(60);
  EXPECT_EQ(stage.Real("obj_tovin", "hspeed"), 0);
}

TEST(MenuController, AnEmptyGunIsCarriedOverEmpty) {
  Stage stage(kFloor);
  for (const auto& [item, depth] : {std::pair{obj_pistol, -6}, std::pair{obj_shell, -4}}) {
    stage.SetGlobal("carrieditem", item);
    stage.SetGlobal("ammo", 0);
    ASSERT_EQ(stage.Game().Room("rm_template"), "");
    ASSERT_EQ(InstancesOf(item).size(), 1u);
    EXPECT_EQ(RealOf(InstancesOf(item)[0], "depth"), depth);
    EXPECT_EQ(RealOf(InstancesOf(item)[0], "held"), 1);
  }
  stage.SetGlobal("carrieditem", obj_pistol);
  ASSERT_EQ(stage.Game().Room("rm_template"), "");
  EXPECT_EQ(stage.Real("obj_pistol", "ammo"), 0);
  EXPECT_EQ(stage.Global("carrieditem"), noone);
}

TEST(MenuController, FlagsWaveAndAreTaken) {
  LevelSettings settings;
  settings.objects = {{"4,11", "Checkpoint"}};
  EditorDesk desk;
  desk.Write("Flag", LevelText({"S         ", "          ", "##########"}, settings));
  ASSERT_EQ(desk.Game().Play(desk.Directory() + "/Level/Flag.json", "Main"), "");
  std::set<int> frames;
  for (int step = 0; step < 30; ++step) {
    const DrawnFrame room = LookAtRoom(desk);
    if (const auto flag = room.Find("spr_flag_drommel")) frames.insert(flag->frame);
  }
  EXPECT_THAT(frames, testing::ElementsAre(0, 1, 2, 3));
  health = 3;
  desk.Hold(kKeyRight);
  desk.Step(60);
  desk.Release(kKeyRight);
  EXPECT_EQ(health.Get(), 25);
  EXPECT_TRUE(LookAtRoom(desk).Find("spr_flag_tovin"));
  EXPECT_EQ(desk.Global("checkpoint_x"), 4 * 16 + 8);
}

// As -ext does: every call of the file library gives the number 0.
TEST(MenuController, WithoutTheFileLibraryTheListIsEmpty) {
  EditorDesk desk;
  desk.Write("there", LevelText(kFloor));
  desk.Step(2);
  External_DisableCalls();
  desk.OpenMenu();
  EXPECT_EQ(desk.Count(obj_mainmenu_level), 0u);
  desk.ClickNotify("NEW");
  desk.Type("New");
  desk.ClickNotify("RANDOM");
  desk.Step(40);
  EXPECT_EQ(desk.RoomNow(), rm_editor);
}

TEST(MenuController, TheCommandLineIsAnsweredInWords) {
  const std::string nowhere = (std::filesystem::temp_directory_path() / "vesk-nowhere.json").string();
  const std::string folder = std::filesystem::temp_directory_path().string();
  const struct {
    std::string arguments;
    bool well;
    std::string words;
  } lines[] = {
      {"--help", true, "--play FILE  "},     {"-h", true, "--play FILE  "},
      {"--version", true, "Vesk Editor 1."}, {"--play " + nowhere, false, nowhere},
      {"--play=" + nowhere, false, nowhere}, {"--play " + folder, false, "directory"},
      {"--play", false, "--play"},           {"--colour", false, "--colour"},
  };
  for (const auto& line : lines) {
    const ProgramRun run = RunProgram("vesk-editor", line.arguments);
    EXPECT_EQ(run.code == 0, line.well) << line.arguments << ": " << run.code;
    EXPECT_THAT(run.out, HasSubstr(line.words)) << line.arguments;
  }
}

// The runner reads the same game out of a file as out of the program.
TEST(MenuController, AContainerFilePlaysAsTheEmbeddedOne) {
  const std::string file = (std::filesystem::temp_directory_path() / "vesk-container-test.win").string();
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(EmbeddedContainer()),
             static_cast<std::streamsize>(EmbeddedContainerSize()));
  const std::string level = (std::filesystem::temp_directory_path() / "vesk-container-test.json").string();
  std::ofstream(level) << LevelText(kFloor);
  const auto run = [&](const std::string& container) {
    SimulationSettings settings;
    if (container.empty()) settings.container = {EmbeddedContainer(), EmbeddedContainerSize()};
    settings.containerFile = container;
    Simulation simulation(settings);
    std::istringstream script("step 30\nplay " + level +
                              "\npress right\nstep 40\ntap x 10\nstep 50\nchecksum\n");
    std::ostringstream said, problems;
    EXPECT_EQ(RunScript(simulation, script, {said, problems}), ScriptResult::kAllWell) << problems.str();
    return said.str();
  };
  const std::string embedded = run("");
  EXPECT_THAT(embedded, HasSubstr("checksum"));
  EXPECT_EQ(run(file), embedded);

  std::filesystem::resize_file(file, 100000);
  SimulationSettings settings;
  settings.containerFile = file;
  EXPECT_THAT(Simulation(settings).Start(), HasSubstr("size field"));
  settings.containerFile = "nowhere.win";
  EXPECT_THAT(Simulation(settings).Start(), HasSubstr("nowhere.win"));
  std::filesystem::remove(file);
  std::filesystem::remove(level);
}

} // namespace vesk
