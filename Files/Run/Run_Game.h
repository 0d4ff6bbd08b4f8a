#pragma once
// Start and end of a game whose data is loaded, and its restart.
#include <cstdint>

namespace vesk {

// Makes the loop ready and starts the game unless it runs.
void Run_Start();
// Enters the first room of the room order; a report when there is none.
void StartGame();
// Room-end and game-end events, then no room is left.
void EndGame();
// Acts on the room request that a frame body left behind.
void Run_RoomRequest();

struct StartSettings {
  bool showCursor = false;   // of the data
  bool skipProfiler = false; // the data's debug byte
  bool headless = false;     // the process ends at the first room's start
};
StartSettings& Run_Settings();

} // namespace vesk
