#pragma once
// The program's spine: start-up in its fixed order, the loop, the shutdown, and the restart with another
// game. Game thread only. The platform must be set before.
#include "Files/Code/Code.h"
#include "Files/Graphics_API/RenderDevice.h"
#include "Platform/Platform.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vesk {

struct RunnerSetup {
  GameDescriptor* descriptor = nullptr; // all that the runner knows of the game; outlives the run
  std::string commandLine;              // without the program's name
  std::string directory;                // the game's directory; empty: the program's own
  std::string saveBase;                 // folder that holds save areas; empty: the user's data folder
  // Makes the render device; null for OpenGL on the platform's window. May give null: then nothing is drawn.
  std::function<std::unique_ptr<IRenderDevice>()> makeDevice;
  std::function<void()> afterStart; // called once the first room has begun; null for nothing
  bool quiet = false;               // the terminal gets errors only
};

struct RunnerState {
  RunnerSetup setup;
  std::string commandLine;         // of this pass
  std::string originalCommandLine; // for parameter_count and parameter_string
  std::string startDirectory;      // where the program was started
  std::string programDirectory;    // ends in "/"
  std::string temporaryDirectory;
  std::string gameFile;         // as it is reported
  std::string gameName;         // of the data; names the save area
  std::string savePrefix;       // ends in "/"; empty before it is known
  std::string workingDirectory; // ends in "/"
  std::string nextGame;         // game to go on with
  std::string nextExit;         // the follow-up of that one
  bool restart = false;         // another pass follows
  bool launchedByRestart = false;
  bool started = false;      // the game was entered: it has to be ended
  bool headlessDone = false; // -headless ends at the first room
  int exitCode = 0;
  std::vector<uint8_t> container; // a container that was read from a file
  std::string debugInformation;   // ".zqdebug" beside the game
};
RunnerState& Runner();

// All of it: passes until no restart follows. The process's exit code.
int Runner_Main(RunnerSetup setup);

// The same step by step, for programs that drive the frames themselves.
void Runner_Begin(RunnerSetup setup);
bool Runner_Open();     // true when the game runs; Runner_Close is due either way
bool Runner_Pass();     // one round of the loop; false when the game has ended
void Runner_Close();    // ends the game and closes all areas in their order
void Runner_Shutdown(); // the closing alone: every area as before the start

} // namespace vesk
