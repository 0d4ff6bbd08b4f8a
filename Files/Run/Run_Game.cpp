#include "Files/Run/Run_Game.h"

#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Code/BuiltinAccess.h"
#include "Files/Font/Font.h"
#include "Files/Graphics/DebugOverlay.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/Surface.h"
#include "Files/IO/Gamepad.h"
#include "Files/Room/Room.h"
#include "Files/Run/Profiler.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Run/Run_FrameBody.h"
#include "Files/Run/SavedGame.h"
#include "Files/Run/Timing.h"
#include "Files/Runner/CommandLine.h"
#include "Files/Sound/Audio_Main.h"
#include "Platform/Memory.h"
#include "Platform/Platform.h"

namespace vesk {

namespace {

StartSettings settings;

void LogMemory() {
  DebugConsole().Output("Current Memory Stats\n");
  DebugConsole().Output("resident %lld, most %lld bytes\n", static_cast<long long>(Memory_ResidentBytes()),
                        static_cast<long long>(Memory_PeakBytes()));
}

} // namespace

StartSettings& Run_Settings() { return settings; }

void Run_Start() {
  LoopState& loop = Loop();
  if (!loop.running) {
    loop.running = true;
    StartGame();
  }
  loop.running = true;
  loop.debuggerPause = false;
  loop.frameStart = loop.frameEnd = loop.fpsSample = Timing_Time();
  loop.frameCounter = 0;
  DebugConsole().Output("**********************************.\n");
  DebugConsole().Output("Entering main loop.\n");
  DebugConsole().Output("**********************************.\n");
  LogMemory();
  const CommandLine& options = Options();
  const bool timesAreShown = (Graphics().overlay & kOverlayFrame) != 0;
  if (!settings.skipProfiler || !options.profileFile.empty() || timesAreShown)
    Profiler_Start(options.profileFile, options.profileFrames);
}

void StartGame() {
  Game().score = 0;
  Game().lives = -1;
  Game().health = 100;
  Font_ResetText();
  draw_set_colour(c_black);
  draw_set_alpha(1);
  Platform_Get().window->ShowCursor(settings.showCursor);
  Room_StartGame();
}

void EndGame() {
  Room_EndGame();
  while (!Surfaces().stack.empty() && surface_reset_target()) {}
  Audio_StopAll(true);
  Async_DropPending();
}

void Run_RoomRequest() {
  LoopState& loop = Loop();
  int32_t& request = Rooms().request;
  if (request == kNoRoomRequest) return;
  if (loop.changeGame) request = RoomRequestAbortGame;
  switch (request) {
  case RoomRequestEndGame:
  case RoomRequestAbortGame: loop.running = false; return;
  case RoomRequestRestartGame:
    EndGame();
    request = kNoRoomRequest;
    Graphics_RestartGame();
    Gamepad_AnnounceAll();
    StartGame();
    return;
  case RoomRequestLoadGame:
    request = kNoRoomRequest;
    SavedGame_Load();
    return;
  default:
    if (request >= 0) {
      const CRoom* room = static_cast<size_t>(request) < Rooms().templates.size()
                              ? Rooms().templates[static_cast<size_t>(request)].get()
                              : nullptr;
      DebugConsole().Output("SwitchRoom to %s\n", room ? room->name.c_str() : "<undefined>");
      SwitchRoom(request);
    }
  }
}

} // namespace vesk
