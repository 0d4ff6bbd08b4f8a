// vesk-editor: the game in its window.
#include "Files/Runner/CommandLine.h"
#include "Files/Runner/Function_Runner.h"
#include "Files/Runner/Runner.h"
#include "Platform/Files.h"
#include "Platform/Platform.h"
#include "apps/container/EmbeddedContainer.h"
#include "game/GameTables.h"
#include "game/play/start.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using namespace vesk;

constexpr const char* kVersion = "Vesk Editor 1.0.0";

// Words with two dashes are the program's own, with what they take; all others go to the runner as they
// stand.
struct Words {
  std::vector<std::string> own;
  std::vector<std::string> runner;
};

Words Separate(int argc, char** argv) {
  Words words;
  for (int at = 1; at < argc; ++at) {
    const std::string word = argv[at];
    if (!word.starts_with("--") && word != "-h") {
      words.runner.push_back(word);
      continue;
    }
    words.own.push_back(word);
    if (word == "--play" && at + 1 < argc) words.own.emplace_back(argv[++at]);
  }
  return words;
}

int Play(const std::string& level, const std::vector<std::string>& runnerWords) {
  CDesktopPlatform desktop;
  Platform_Set(&desktop.Interfaces());
  GameDescriptor descriptor = MakeGameDescriptor(EmbeddedContainer(), EmbeddedContainerSize());
  RunnerSetup setup;
  setup.descriptor = &descriptor;
  setup.commandLine = CommandLine_Join(runnerWords);
  setup.quiet = true;
  // The level is given from where the program was started; the game looks from its own folder.
  const std::string file = level.empty() ? "" : Path_Full(level);
  if (!file.empty())
    setup.afterStart = [file, first = true]() mutable {
      if (!first) return; // a restarted game begins as usual
      first = false;
      const std::string problem = start_level(file, "Main");
      if (!problem.empty()) show_message(file + ": " + problem);
    };
  const int code = Runner_Main(std::move(setup));
  Platform_Set(nullptr);
  return code;
}

} // namespace

int main(int argc, char** argv) {
  Words words = Separate(argc, argv);
  CLI::App app("Vesk Editor: a platform game with its level editor.", "vesk-editor");
  app.footer(
      "Options of the runner, each one word with one dash:\n" + CommandLine_Help() +
      "\noptions.ini beside the game, [Windows]: CreateTexturesOnDemand, VertexBufferMethod (0 to 2),\n"
      "AlternateSyncMethod, SleepMargin. [DEFAULT]: Debug, Trace; OrientLandscape, OrientPortrait and\n"
      "their Flipped forms say how a screen that turns may be held.");
  app.set_help_flag("-h,--help", "Prints this text");
  app.set_version_flag("--version", kVersion, "Prints the version");
  std::string level;
  app.add_option("--play", level, "Plays this level file at once")
      ->option_text("FILE")
      ->check(CLI::ExistingFile);
  std::reverse(words.own.begin(), words.own.end()); // as the parser takes them
  try {
    app.parse(words.own);
  } catch (const CLI::ParseError& error) { return app.exit(error); }
  return Play(level, words.runner);
}
