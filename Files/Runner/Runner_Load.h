#pragma once
// The steps of the start that find the game and its settings.
#include "Files/Runner/Container.h"

#include <string>

namespace vesk {

// Finds the container's bytes and the game's place, and applies options.ini. False when there is no game to
// run; the reason was shown.
bool RunnerLoadGame(ContainerView& container);
// "data.win" beside the program, or "".
std::string Runner_FindDataFile();
// Files whose names hold "@" are unpacked archives: each becomes a path with "@" as separator.
void Runner_SweepDirectory();
// Where this game's save files go, made on first use.
std::string Runner_SavePrefix();
// What the header and options of the pre-scanned container mean for clock, errors, window and drawing.
void Runner_ApplyOptions();

} // namespace vesk
