#pragma once
// The runner's own command line.
#include "Platform/Window.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

struct CommandLine {
  std::string game; // file to run; may be set before parsing
  std::string exitGame;
  std::string directory;
  bool debug = false;
  uint32_t overlay = 0; // a sum of OverlayPart
  bool trace = false;
  bool extendedTrace = false;
  ScreenOrientations orientations; // of options.ini
  bool noExternalCalls = false;
  bool noErrors = false;
  bool noExecution = false; // -oldexec
  bool noAudio = false;
  bool inAWindow = false;
  std::string record;
  std::string playback;
  bool softwareVertices = false;
  bool manualClear = false; // -intel
  bool networkLog = false;
  bool vanillaGraphics = false;
  std::string output;      // file of the release channel
  std::string debugOutput; // file of the debug channel
  bool headless = false;
  std::string profileFile;
  int32_t profileFrames = 0;
  std::optional<int32_t> sleepMargin; // milliseconds, not below 0
  bool multipleVertexBuffers = false;
  bool noVertexBuffers = false;
  bool compressTextures = false;
  bool alternateSync = false;
  bool noDirectInput = false;
  std::string launchParameter;
};
CommandLine& Options();
void CommandLine_Reset();

// Words between blanks; a word in double quotes keeps its blanks and loses its quotes.
std::vector<std::string> CommandLine_Words(std::string_view line);
// One line out of separate words, quoted where needed.
std::string CommandLine_Join(const std::vector<std::string>& words);
// One line an option: its name, what it takes, what it does.
std::string CommandLine_Help();
// All options anew from the line. `knownGame` is the file already found ("data.win" beside the program) or
// empty.
CommandLine CommandLine_Parse(std::string_view line, std::string_view knownGame);

} // namespace vesk
