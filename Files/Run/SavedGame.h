#pragma once
// The state of a running game in a file of the save area, and back: room, instances with their variables,
// tiles, globals, data structures, counters, key map, random state. Assets, surfaces and voices made at run
// time are no part of it.
#include <string>
#include <string_view>

namespace vesk {

// Writes the state as it is at the call. What can't be written is a non-fatal error report.
void game_save(std::string_view file);
// Asks for the state of the file at the end of the frame. A file that can't be taken is then a non-fatal
// error report, and the game goes on as it was.
void game_load(std::string_view file);

// The frame function's part of game_load. No event runs.
void SavedGame_Load();
void SavedGame_Reset();
void Function_AddSavedGame();

} // namespace vesk
