// A whole game, from the container's bytes to the shutdown, as often as it likes in one process.
#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Code/Self.h"
#include "Files/Graphics_API/RecordingDevice.h"
#include "Files/IO/IO_Functions.h"
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
                           "Math..\n",
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
