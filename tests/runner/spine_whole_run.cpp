// A whole game, from the container's bytes to the shutdown, as often as it likes in one process.
#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Code/BuiltinVariables.h"
#include "Files/Code/Self.h"
#include "Files/Font/Font.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/RenderState.h"
#include "Files/Graphics_API/RecordingDevice.h"
#include "Files/IO/IO_Functions.h"
#include "Files/Object/Function_Instance.h"
#include "Files/Object/Object.h"
#include "Files/Room/Function_Room.h"
#include "Files/Room/Room.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Run/Timing.h"
#include "Files/Runner/CommandLine.h"
#include "Files/Runner/Load.h"
#include "Files/Runner/Runner.h"
#include "Files/Runner/Runner_Window.h"
#include "Platform/Files.h"
#include "Platform/HandDriven.h"
#include "pack/ContainerWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace vesk {
int32_t
display_get_windows_vertex_buffer_method(); // its header and the container writer's both name a Picture
} // namespace vesk

using namespace vesk;

namespace {

std::string seen; // what the game's events did

void Create(Self) { seen += "create "; }
void Step(Self) { seen += keyboard_check_pressed('E') ? "end " : "step "; }
void StepEnds(Self self) {
  Step(self);
  if (keyboard_check_pressed('E')) game_end();
}
void RoomStart(Self) { seen += "room-start "; }
void RoomEnd(Self) { seen += "room-end "; }
void GameEnd(Self) { seen += "game-end "; }

const CodeEntry kCode[] = {
    {"fbl_Object_obj_one_Create_0", EventFunction(&Create)},
    {"fbl_Object_obj_one_Step_0", EventFunction(&StepEnds)},
    {"fbl_Object_obj_one_Other_4", EventFunction(&RoomStart)},
    {"fbl_Object_obj_one_Other_5", EventFunction(&RoomEnd)},
    {"fbl_Object_obj_one_Other_3", EventFunction(&GameEnd)},
};

std::vector<uint8_t> SmallContainer() {
  pack::Game game;
  game.header.name = "SmallGame";
  game.header.displayName = "A small game";
  pack::Object one;
  one.name = "obj_one";
  one.persistent = true;
  one.events = {{ev_create, 0, 0},
                {ev_step, ev_step_normal, 1},
                {ev_other, ev_room_start, 2},
                {ev_other, ev_room_end, 3},
                {ev_other, ev_game_end, 4}};
  game.objects.push_back(one);
  pack::Room room;
  room.name = "rm_one";
  pack::RoomInstance instance;
  instance.object = 0;
  room.instances.push_back(instance);
  game.rooms.push_back(room);
  return pack::Write(game);
}

class WholeRun : public testing::Test {
protected:
  WholeRun() {
    Platform_Set(&hand.Interfaces());
    char pattern[] = "/tmp/vesk_run_XXXXXX";
    folder = std::string(mkdtemp(pattern)) + "/";
    container = SmallContainer();
    seen.clear();
  }
  ~WholeRun() override {
    Console_Reset();
    Platform_Set(nullptr);
    std::filesystem::remove_all(folder);
  }
  RunnerSetup Setup(const std::string& line) {
    descriptor = GameDescriptor{};
    descriptor.container = container.data();
    descriptor.containerSize = static_cast<uint32_t>(container.size());
    descriptor.globalSlotCount = 8;
    descriptor.instanceSlotCount = 8;
    descriptor.codeTable = kCode;
    RunnerSetup setup;
    setup.descriptor = &descriptor;
    setup.commandLine = line;
    setup.directory = folder;
    setup.saveBase = folder + "save";
    setup.quiet = true;
    setup.makeDevice = [] { return std::make_unique<CRecordingDevice>(); };
    return setup;
  }
  CHandDrivenPlatform hand;
  GameDescriptor descriptor;
  std::vector<uint8_t> container;
  std::string folder;
};

} // namespace

TEST_F(WholeRun, AGameStartsRunsAndEndsTheSameWayEveryTime) {
  const std::vector<uint8_t> before = container;
  for (int run = 0; run < 3; ++run) {
    seen.clear();
    Runner_Begin(Setup("-noaudio"));
    ASSERT_TRUE(Runner_Open()) << Load().error;
    EXPECT_EQ(hand.window.Title(), "A small game");
    EXPECT_EQ(Timing().sleepMargin, 0); // the data says so
    EXPECT_TRUE(Directory_Exists(folder + "save/SmallGame"));
    EXPECT_TRUE(Runner_Pass());
    EXPECT_TRUE(Runner_Pass());
    hand.messages.KeyAlone('E', true);
    hand.messages.KeyAlone('E', false);
    EXPECT_FALSE([] {
      for (int pass = 0; pass < 3; ++pass)
        if (!Runner_Pass()) return false;
      return true;
    }());
    Runner_Close();
    EXPECT_EQ(seen, "create room-start step step end room-end game-end ") << run;
    EXPECT_EQ(Runner().exitCode, 0);
    EXPECT_FALSE(hand.window.Exists());
    EXPECT_EQ(container, before); // the data is as it was, for the next start
  }
}

TEST_F(WholeRun, ClosingTheWindowEndsTheGameInTheNormalOrder) {
  Runner_Begin(Setup("-noaudio"));
  ASSERT_TRUE(Runner_Open());
  hand.messages.Close();
  while (Runner_Pass()) {}
  Runner_Close();
  EXPECT_THAT(seen, testing::EndsWith("room-end game-end "));
}

TEST_F(WholeRun, HeadlessEndsBeforeTheRoomStartEvent) {
  EXPECT_EQ(Runner_Main(Setup("-headless -noaudio")), 0);
  EXPECT_EQ(seen, "create ");
}

TEST_F(WholeRun, NoCodeRunsWithTheOldExecution) {
  Runner_Begin(Setup("-oldexec -noaudio"));
  ASSERT_TRUE(Runner_Open());
  Runner_Pass();
  Runner_Close();
  EXPECT_EQ(seen, "");
}

TEST_F(WholeRun, AContainerThatIsCutIsRefusedInWords) {
  container.resize(container.size() / 2);
  EXPECT_EQ(Runner_Main(Setup("-noaudio")), 1);
  ASSERT_EQ(hand.dialogs.shown.size(), 1u);
  EXPECT_FALSE(hand.dialogs.shown[0].text.empty());
  EXPECT_EQ(seen, "");
}

TEST_F(WholeRun, OptionsBesideTheGameGiveWayToTheCommandLine) {
  ASSERT_TRUE(File_WriteAll(folder + "options.ini", "[Windows]\nSleepMargin=7\nVertexBufferMethod=2\n"));
  Runner_Begin(Setup("-noaudio"));
  ASSERT_TRUE(Runner_Open());
  EXPECT_EQ(Timing().sleepMargin, 7);
  EXPECT_EQ(display_get_windows_vertex_buffer_method(), 2);
  Runner_Close();
  Runner_Begin(Setup("-noaudio -sleepmargin 3 -multivb"));
  ASSERT_TRUE(Runner_Open());
  EXPECT_EQ(Timing().sleepMargin, 3);
  EXPECT_EQ(display_get_windows_vertex_buffer_method(), 1);
  Runner_Close();
}

TEST_F(WholeRun, DebugModeIsSwitchedOnByTheLineOrTheOptions) {
  const auto debugged = [this](const std::string& line) {
    Runner_Begin(Setup("-noaudio " + line));
    EXPECT_TRUE(Runner_Open());
    RValue mode;
    Variable_GetValue(nullptr, BuiltinVariables_Find("debug_mode"), kNoIndex, mode);
    Runner_Close();
    return mode.real == 1;
  };
  EXPECT_FALSE(debugged(""));
  EXPECT_TRUE(debugged("-debug"));
  EXPECT_FALSE(debugged("-game x.win -debug")) << "a game file is known by then";
  ASSERT_TRUE(File_WriteAll(folder + "options.ini", "[DEFAULT]\nDebug=1\n"));
  EXPECT_TRUE(debugged(""));
}

TEST_F(WholeRun, TheStepsOfTheStartAreLoggedInTheirOrder) {
  Runner_Begin(Setup("-noaudio -debugoutput " + folder + "debug.txt -headless"));
  Runner_Open();
  Runner_Close();
  std::string log;
  ASSERT_TRUE(File_ReadAll(folder + "debug.txt", log));
  size_t at = 0;
  for (const char* line : {"Create Error Form\n",
                           "Kelda Games Runner v1.0(999)[r32908]",
                           "Get Resolution\n",
                           "Get Header Information\n",
                           "Game..Math..Graphic..",
                           "Fini\n",
                           "SavePrePend = ",
                           "Create Window\n",
                           "Init Graphics\n",
                           "GR_D3D_Init()\n",
                           "Background_InitTextures()\n",
                           "Sprite_InitTextures()\n",
                           "Font_InitTextures()\n",
                           "IO Init\n",
                           "Process Messages\n",
                           "Splash!\n",
                           "Start Frame\n",
                           "Part Create Textures\n",
                           "Debug Init Remote Interface\n",
                           "VM Init\n",
                           "Create Score Form\n",
                           "Create Load Form\n",
                           "Do The Work\n",
                           "LoadGameData()\n",
                           "Process Chunk: GEN8 ",
                           "PrepareGame()\n",
                           "Run_Start\n",
                           "Entering main loop.\n"}) {
    const size_t found = log.find(line, at);
    ASSERT_NE(found, std::string::npos) << line;
    at = found;
  }
}

// ---- what the container asks for at the start ----

namespace {

constexpr Slot kStarted{0};
bool startedAsGlobal = false;

void StartUp(Self self, Other other) {
  startedAsGlobal = self.instance == GlobalInstance() && other.instance == GlobalInstance();
  self[kStarted] = 5;
  self[depth] = 3; // what an instance in lists would be noted for
  instance_destroy(self);
  EXPECT_EQ(instance_copy(self, true), noone);
  EXPECT_EQ(Drawing().colourWord, 0x80402010u);
  draw_set_font(0);
}
void RestartOnce(Self) {
  seen += "room-start ";
  if (global[kStarted] == 5) {
    global[kStarted] = 6;
    game_restart();
  }
}

const CodeEntry kStartCode[] = {
    {"fbl_Script_start", EventFunction(&StartUp)},
    {"fbl_Object_obj_one_Other_4", EventFunction(&RestartOnce)},
};

pack::Game StartGame() {
  pack::Game game;
  game.header.name = "SmallGame";
  game.options.constants = {{"@@DrawColour", "2151686160"}}; // 0x80402010
  game.startScripts = {0};
  game.backgrounds.push_back({"bg_letters", pack::SolidPicture(32, 16, 0xFFFFFFFF)});
  pack::Font font;
  font.name = "fnt_small";
  font.displayName = "Small";
  font.background = 0;
  font.glyphs = {{'B', 8, 0, 6, 9, 7, 1}, {'A', 0, 0, 7, 12, 8, 0}};
  game.fonts.push_back(font);
  pack::Object one;
  one.name = "obj_one";
  one.events = {{ev_other, ev_room_start, 1}};
  game.objects.push_back(one);
  pack::Room room;
  room.name = "rm_one";
  room.instances.push_back({});
  game.rooms.push_back(room);
  return game;
}

} // namespace

TEST_F(WholeRun, StartUpCodeRunsAsTheGlobalObject) {
  container = pack::Write(StartGame());
  startedAsGlobal = false;
  RunnerSetup setup = Setup("-noaudio");
  descriptor.codeTable = kStartCode;
  Runner_Begin(std::move(setup));
  ASSERT_TRUE(Runner_Open()) << Load().error;
  EXPECT_TRUE(startedAsGlobal);
  EXPECT_EQ(Drawing().colourWord, 0xFF000000u) << "a game starts in black";
  EXPECT_EQ(draw_get_font(), -1);
  EXPECT_EQ(Error().fatalCount, 0);
  Runner_Close();
}

TEST_F(WholeRun, AGameThatRestartsInItsFirstRoomStartsAgain) {
  container = pack::Write(StartGame());
  RunnerSetup setup = Setup("-noaudio");
  descriptor.codeTable = kStartCode;
  Runner_Begin(std::move(setup));
  ASSERT_TRUE(Runner_Open());
  EXPECT_TRUE(Runner_Pass());
  EXPECT_EQ(seen, "room-start room-start ");
  Runner_Close();
}

TEST_F(WholeRun, FontsOfTheContainerAreThereByIndex) {
  container = pack::Write(StartGame());
  RunnerSetup setup = Setup("-noaudio");
  descriptor.codeTable = kStartCode;
  Runner_Begin(std::move(setup));
  ASSERT_TRUE(Runner_Open());
  ASSERT_TRUE(font_exists(0));
  const CFontFb& font = *Font_Find(0);
  EXPECT_EQ(font.assetName, "fnt_small");
  EXPECT_EQ(font.name, "Small");
  EXPECT_EQ(font.antialias, 1);
  EXPECT_EQ(font.height, 12);
  EXPECT_EQ(font.textureWidth, 32);
  EXPECT_EQ(font.textureHeight, 16);
  draw_set_font(0);
  EXPECT_EQ(string_width("AB"), 15);
  EXPECT_EQ(string_height("B"), 12);
  ASSERT_NE(font.FindGlyph('B'), nullptr) << "found though the file has them in another order";
  EXPECT_EQ(font.FindGlyph('B')->offset, 1);
  EXPECT_EQ(font.FindGlyph('C'), nullptr);
  Runner_Close();
}

TEST(MainWindow, TurnsTheOptionsCodesIntoADisplayMode) {
  container::OptionsRecord options;
  options.colourDepth = 1;
  options.resolution = 4;
  options.frequency = 5;
  EXPECT_EQ(Runner_WantedDisplay(options), DisplayMode{}) << "the flag is clear";
  options.flags = container::kOptionChangeResolution;
  EXPECT_EQ(Runner_WantedDisplay(options), (DisplayMode{1024, 768, 16, 120}));
  options.colourDepth = 3;
  options.resolution = 0;
  options.frequency = 6;
  EXPECT_EQ(Runner_WantedDisplay(options), DisplayMode{});
}

TEST(MainWindow, IsCutToTheDesktopAndKeepsItsShapeWhenAsked) {
  const Extent desktop{1000, 600}, frame{6, 30};
  const auto fit = [&](Extent size, bool borderless, bool keepAspect) {
    const Extent fitted = Runner_FitWindow({size, borderless, keepAspect}, desktop, frame);
    return std::pair(fitted.width, fitted.height);
  };
  EXPECT_EQ(fit({384, 216}, false, true), std::pair(384, 216));
  EXPECT_EQ(fit({2000, 400}, false, false), std::pair(1000, 400));
  EXPECT_EQ(fit({2000, 400}, false, true), std::pair(1000, 200));
  EXPECT_EQ(fit({500, 800}, false, false), std::pair(500, 570));
  EXPECT_EQ(fit({500, 800}, true, false), std::pair(500, 600));
  EXPECT_EQ(fit({500, 800}, true, true), std::pair(375, 600));
}

// ---- what the window shows ----

namespace {

// A run whose device is watched.
class ShownRun : public WholeRun {
protected:
  void Open(const std::string& line) {
    RunnerSetup setup = Setup(line);
    setup.makeDevice = [this] {
      auto made = std::make_unique<CRecordingDevice>(true);
      device = made.get();
      return made;
    };
    Runner_Begin(std::move(setup));
    ASSERT_TRUE(Runner_Open()) << Load().error;
  }
  int64_t PresentsOf(int passes) {
    const int64_t before = device->presents;
    for (int pass = 0; pass < passes; ++pass) Runner_Pass();
    return device->presents - before;
  }
  size_t DrawsOfAPass() {
    device->Forget();
    Runner_Pass();
    return device->Draws().size();
  }
  void GiveFocus(bool active) {
    Message message;
    message.kind = MessageKind::Activate;
    message.active = active;
    hand.messages.Post(message);
  }
  CRecordingDevice* device = nullptr;
};

} // namespace

TEST_F(ShownRun, AFrozenGameKeepsThePictureThatItShows) {
  pack::Game game;
  game.options.flags |= 0x8000; // freeze without focus
  game.objects.push_back({});
  game.rooms.push_back({});
  container = pack::Write(game);
  Open("-noaudio");
  EXPECT_EQ(PresentsOf(3), 3);
  GiveFocus(false);
  PresentsOf(1); // hears of it while it waits
  const int64_t frames = Rooms().frameCounter;
  EXPECT_EQ(PresentsOf(5), 0) << "nothing was drawn that could be shown";
  EXPECT_EQ(Rooms().frameCounter, frames);
  GiveFocus(true);
  PresentsOf(1);
  EXPECT_EQ(PresentsOf(3), 3);
  Runner_Close();
}

TEST_F(ShownRun, AFrameThatEndsTheGameShowsNothing) {
  Open("-noaudio");
  EXPECT_EQ(PresentsOf(2), 2);
  hand.messages.KeyAlone('E', true); // a step asks for the end, so the draw pass doesn't come
  EXPECT_EQ(PresentsOf(2), 0);
  EXPECT_FALSE(Loop().running);
  Runner_Close();
}

TEST_F(ShownRun, TheOverlayShowsFrameAndAudioWhenAskedTo) {
  const auto drawn = [this](const std::string& line) {
    Open(line);
    Runner_Pass(); // the stages of one frame are known from here on
    const size_t draws = DrawsOfAPass();
    Runner_Close();
    return draws;
  };
  const size_t plain = drawn("-noaudio");
  EXPECT_GT(drawn("-noaudio -debug"), plain);
  EXPECT_GT(drawn("-noaudio -audiodebug"), plain);
  EXPECT_EQ(drawn("-noaudio -game x.win -debug"), plain);
  ASSERT_TRUE(File_WriteAll(folder + "options.ini", "[DEFAULT]\nDebug=1\n"));
  EXPECT_GT(drawn("-noaudio"), plain);
}

TEST_F(ShownRun, TheOverlayLeavesTheDrawingStateAlone) {
  Open("-noaudio -debug -audiodebug");
  draw_set_colour(c_red);
  draw_set_alpha(0.5f);
  draw_set_halign(fa_right);
  draw_set_blend_mode(bm_add);
  const uint32_t blend = RenderStates().RenderState(kStateDestinationBlend);
  Runner_Pass();
  EXPECT_EQ(draw_get_colour(), c_red);
  EXPECT_FLOAT_EQ(draw_get_alpha(), 127 / 255.0f);
  EXPECT_EQ(draw_get_halign(), fa_right);
  EXPECT_EQ(RenderStates().RenderState(kStateDestinationBlend), blend);
  Runner_Close();
}

// ---- traces and the options of screens that turn ----

TEST_F(WholeRun, TracesNameTheCodeThatRuns) {
  const auto traced = [this](const std::string& line) {
    std::filesystem::remove(folder + "debug.txt");
    Runner_Begin(Setup("-noaudio -debugoutput " + folder + "debug.txt " + line));
    EXPECT_TRUE(Runner_Open());
    Runner_Pass();
    Runner_Close();
    std::string log;
    EXPECT_TRUE(File_ReadAll(folder + "debug.txt", log));
    return log;
  };
  const std::string entered = "\nfbl_Object_obj_one_Step_0\n", event = "\nStep Event of obj_one 100000\n";
  EXPECT_THAT(traced(""), testing::Not(testing::HasSubstr(entered)));
  const std::string plain = traced("-trace");
  EXPECT_THAT(plain, testing::HasSubstr(entered));
  EXPECT_THAT(plain, testing::Not(testing::HasSubstr(event)));
  EXPECT_THAT(traced("-vmtrace"), testing::HasSubstr(event + "  fbl_Object_obj_one_Step_0\n"));
  ASSERT_TRUE(File_WriteAll(folder + "options.ini", "[DEFAULT]\nTrace=True\n"));
  EXPECT_THAT(traced(""), testing::HasSubstr(entered));
}

TEST_F(WholeRun, TheWindowHearsHowTheScreenMayBeHeld) {
  ASSERT_TRUE(File_WriteAll(folder + "options.ini", "[DEFAULT]\nOrientLandscape=True\nOrientPortrait=False\n"
                                                    "OrientPortraitFlipped=1\n"));
  Runner_Begin(Setup("-noaudio"));
  ASSERT_TRUE(Runner_Open());
  const ScreenOrientations& allowed = hand.window.Settings().orientations;
  EXPECT_TRUE(allowed.landscape);
  EXPECT_FALSE(allowed.landscapeFlipped);
  EXPECT_FALSE(allowed.portrait);
  EXPECT_TRUE(allowed.portraitFlipped);
  Runner_Close();
}
