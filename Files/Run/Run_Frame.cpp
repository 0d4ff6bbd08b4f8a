#include "Files/Run/Run_Frame.h"

#include "Files/Base/Error.h"
#include "Files/Function/Function_Data_Structures.h"
#include "Files/Graphics/DebugOverlay.h"
#include "Files/Graphics/DrawScreen.h"
#include "Files/Graphics/Graphics.h"
#include "Files/IO/Gamepad.h"
#include "Files/IO/IO.h"
#include "Files/IO/VirtualKeys.h"
#include "Files/Object/EventTypes.h"
#include "Files/Object/Object.h"
#include "Files/Room/Room.h"
#include "Files/Run/Profiler.h"
#include "Files/Run/Run_Events.h"
#include "Files/Run/Run_FrameBody.h"
#include "Files/Run/Run_Game.h"
#include "Files/Run/Timing.h"
#include "Files/Sound/Audio_Main.h"
#include "Platform/Platform.h"

#include <algorithm>

namespace vesk {

namespace {

LoopState state;

constexpr int64_t kSecond = 1000000; // microseconds
constexpr int32_t kSpeedWithoutRoom = 60;

void SampleFps(int64_t now) {
  if (now / kSecond != state.fpsSample / kSecond) {
    state.fps = state.frameCounter;
    state.frameCounter = 0;
    state.fpsSample = now;
  }
  ++state.frameCounter;
}

void RunBody() {
  Graphics_Settle();
  BeginFrame();
  state.bodyStart = Timing_Time();
  RunFrameBody();
  if (FrameBody().drawn) DebugOverlay_Draw();
  const int64_t spent = Timing_Time() - state.bodyStart;
  if (spent > 0) state.fpsReal = static_cast<float>(kSecond) / static_cast<float>(spent);
  Profiler_Mark("Present");
  // A body that ended early left the back buffer as an older frame had it: the window keeps its picture.
  EndFrame(Rooms().request < 0 && Run().automaticDrawing && FrameBody().drawn);
}

// The frame body's neighbours

void ReadStepInput(StepInput& step) {
  const InputState& input = Input();
  for (size_t key = 0; key < kKeys; ++key) {
    step.keyDown[key] = input.keys.down[key] != 0;
    step.keyPressed[key] = input.keys.pressed[key] != 0;
    step.keyReleased[key] = input.keys.released[key] != 0;
  }
  const MouseTables& mouse = input.mice[0];
  for (size_t button = 0; button < kMouseButtons; ++button) {
    step.buttonDown[button] = mouse.down[button] != 0;
    step.buttonPressed[button] = mouse.pressed[button] != 0;
    step.buttonReleased[button] = mouse.released[button] != 0;
  }
  step.wheelUp = mouse.wheelUp != 0;
  step.wheelDown = mouse.wheelDown != 0;
  const RoomPoint point = IO_MouseInRoom(0);
  step.mouseX = static_cast<float>(point.x);
  step.mouseY = static_cast<float>(point.y);
}

bool Frozen() { return state.freezeWithoutFocus && !state.focused; }

void AnnouncePad(bool discovered, int32_t pad) {
  const int32_t map = ds_map_create();
  ds_map_add(map, RValue("event_type"), RValue(discovered ? "gamepad discovered" : "gamepad lost"));
  ds_map_add(map, RValue("pad_index"), RValue(pad));
  Async_Post(ev_system_event, map);
}

} // namespace

int32_t Run_RoomSpeed() {
  CRoom* room = CurrentRoom();
  if (!room) return kSpeedWithoutRoom;
  room->speed = std::max(room->speed, 1);
  return room->speed;
}

LoopState& Loop() { return state; }
void Loop_Reset() { state = LoopState{}; }

int64_t Run_FrameWait(int64_t now, int32_t roomSpeed) {
  const double elapsed = static_cast<double>(now - state.frameStart);
  double wait = static_cast<double>(kSecond) / roomSpeed - elapsed;
  wait = std::clamp(wait, 0.0, static_cast<double>(kSecond));
  return static_cast<int64_t>(static_cast<float>(wait));
}

void Run_Frame() {
  int64_t now = Timing_Time();
  state.frameEnd = now;
  if (now < state.frameStart) state.frameStart = now; // the clock stepped back
  const int64_t wait = Graphics_PacesFrames() ? 0 : Run_FrameWait(now, Run_RoomSpeed());
  Profiler_Mark("TimingWait");
  const IClock& clock = *Platform_Get().clock;
  const int64_t spentBefore = clock.ThreadMicroseconds();
  Timing_Wait(wait);
  if (!state.running) return;
  const int64_t due = now + wait;
  now = Timing_Time();
  if (wait > 0) Profiler_FrameStarted(now - due, clock.ThreadMicroseconds() - spentBefore);
  state.frameStart = now;
  SampleFps(now);
  Audio_Update();
  if (!state.debuggerPause) {
    RunBody();
    Run_RoomRequest();
  }
  Profiler_EndFrame();
}

void Run_ConnectServices() {
  FrameServices& services = FrameBody().services;
  services.now = &Timing_Time;
  services.updateInput = &IO_Update;
  services.readInput = &ReadStepInput;
  services.frozen = &Frozen;
  services.drawScreen = &DrawScreen;
  services.clearInput = &IO_Clear;
  services.resetVirtualKeys = &VirtualKeys_ForgetTouches;
  services.mark = &Profiler_Mark;
  Async_OnDone(&ds_map_destroy);
  Gamepads().announce = &AnnouncePad;
}

int32_t Run_Fps() { return state.fps; }
double Run_FpsReal() { return static_cast<double>(state.fpsReal); }
double Run_CurrentTime() {
  const int64_t milliseconds = Timing_Time() / 1000;
  return static_cast<double>(milliseconds);
}

} // namespace vesk
