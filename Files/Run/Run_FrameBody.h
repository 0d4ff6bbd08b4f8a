#pragma once
// One frame of the game world: the fixed order of passes, the draw pass, the background scroll.
#include <array>
#include <cstdint>

namespace vesk {

// What the keyboard and mouse passes see of this step's input.
struct StepInput {
  std::array<bool, 256> keyDown{}, keyPressed{}, keyReleased{};        // by key code
  std::array<bool, 3> buttonDown{}, buttonPressed{}, buttonReleased{}; // left, right, middle
  bool wheelUp = false, wheelDown = false;
  float mouseX = 0, mouseY = 0; // room pixels
};

// The parts of a frame that other areas do, in the order in which they run. Each may be null: then nothing is
// done.
struct FrameServices {
  int64_t (*now)() = nullptr;      // microseconds, monotonic
  void (*feedAudio)() = nullptr;   // before input
  void (*updateInput)() = nullptr; // pending input becomes visible
  void (*readInput)(StepInput& input) = nullptr;
  bool (*frozen)() = nullptr;      // true: the game stands still this frame
  void (*runServices)() = nullptr; // network and platform services; may call Async_Post
  void (*updateParticles)() = nullptr;
  void (*drawScreen)() = nullptr;          // the draw pass
  void (*clearInput)() = nullptr;          // at the start of a game
  void (*roomReady)(bool first) = nullptr; // all instances are made, the room-start event has not run
  void (*resetVirtualKeys)() = nullptr;    // a room ends
  void (*mark)(const char* name) =
      nullptr; // profile marks: "Garbage Collector", "IO&Kelda", "Update", "Draw", "Scroll"
};

struct FrameBodyState {
  FrameServices services;
  StepInput input;
  int64_t lastEntry = -1; // time of the previous frame body, -1 before the first
  int64_t deltaTime = 0;  // delta_time, microseconds
  bool drawn = false;     // the draw pass of the last frame body ran to its end
};
FrameBodyState& FrameBody();
void Run_ResetFrameBody(); // keeps the services

// Runs one step of the world. Ends early when an event asks for another room or for the end of the game:
// Rooms().request then holds the wish, and nothing is drawn.
void RunFrameBody();

// Queues an asynchronous event: ev_other `subtype` (60 to 75) runs for all that handle it, with async_load
// naming `map` while it does. The map is destroyed afterwards by the owner given to Async_OnDone. Game thread
// only.
void Async_Post(int32_t subtype, int32_t map);
void Async_OnDone(void (*destroyMap)(int32_t map));
void Async_DropPending();
int32_t Async_Load(); // async_load: the map of the running asynchronous event, else -1

} // namespace vesk
