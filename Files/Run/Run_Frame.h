#pragma once
// The frame function and the frame's clock. Game thread only. Times are microseconds on the clock of
// Timing_Time.
#include <cstdint>

namespace vesk {

struct LoopState {
  bool running = false;            // the frame loop goes on
  bool debuggerPause = false;      // the body of the frame is skipped
  bool changeGame = false;         // another game was asked for: any request ends this one
  bool focused = true;             // the main window is the active one
  bool altEnter = false;           // option of the data: Alt+Enter toggles full screen
  bool freezeWithoutFocus = false; // option of the data: no frame body while unfocused

  int64_t frameStart = 0;
  int64_t frameEnd = 0;     // when the frame function was entered
  int64_t fpsSample = 0;    // last change of fps
  int32_t frameCounter = 0; // frames of the current second
  int32_t fps = 0;          // frames of the second before
  float fpsReal = 0;        // frames a second without the waits
  int64_t bodyStart = 0;    // first mark of the last frame body
  int64_t startTime = 0;    // calendar seconds at the start of the game
};
LoopState& Loop();
void Loop_Reset();

// One pass of the loop: waits for the frame's time, feeds audio, runs the frame body, acts on the room
// request.
void Run_Frame();
int32_t Run_RoomSpeed(); // frames a second; 60 without a room
// Microseconds that the frame function will wait when it is entered now.
int64_t Run_FrameWait(int64_t now, int32_t roomSpeed);

// Connects the frame body with clock, audio, input and drawing.
void Run_ConnectServices();

// Built-in variables.
int32_t Run_Fps();
double Run_FpsReal();
double Run_CurrentTime(); // milliseconds since the process started

} // namespace vesk
