#pragma once
// The script language of vesk-sim: one command a line.
#include "sim/Simulation.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

// What the exit code tells.
enum class ScriptResult { kAllWell = 0, kExpectationFailed = 1, kBadScript = 2, kFatalError = 3 };

struct ScriptOutput {
  std::ostream& lines;  // JSON lines, in order
  std::ostream& errors; // what went wrong, with the line number
};

// A line in words; a word in double quotes keeps its blanks, \" and \\ stand for the signs. False when a
// quote is open.
bool SplitWords(std::string_view line, std::vector<std::string>& words);
// A key's code: left, x, 7, f5, or a number of two or more digits; -1 for an unknown name.
int KeyCode(std::string_view name);

// Every command with what it takes, one a line.
std::string ScriptCommands();
// Whether any command of the script needs the frames drawn.
bool AsksForPictures(const std::string& script);

// Runs the script to its end or to the first failure.
ScriptResult RunScript(Simulation& simulation, std::istream& script, const ScriptOutput& output);

} // namespace vesk
