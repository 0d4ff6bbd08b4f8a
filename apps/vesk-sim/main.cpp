// vesk-sim: plays the game without a window, from a script, as fast as the machine can.
#include "apps/container/EmbeddedContainer.h"
#include "sim/Script.h"

#include <CLI/CLI.hpp>
#include <sys/resource.h>

#include <chrono>
#include <fstream>
#include <iostream>
#include <sstream>

namespace {

using namespace vesk;

struct Options {
  std::string script, directory, container;
  int32_t seed = 1;
  bool quiet = false;
};

void PrintStatistics(int64_t frames, double seconds) {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  std::cerr << frames << " frames, " << seconds << " s, "
            << static_cast<int64_t>(seconds > 0 ? static_cast<double>(frames) / seconds : 0)
            << " frames a second, " << usage.ru_maxrss / 1024 << " MB\n";
}

int Run(const Options& options) {
  std::stringstream script;
  if (options.script == "-") {
    script << std::cin.rdbuf();
  } else {
    std::ifstream file(options.script);
    if (!file) {
      std::cerr << "vesk-sim: the script \"" << options.script << "\" can't be read\n";
      return static_cast<int>(ScriptResult::kBadScript);
    }
    script << file.rdbuf();
  }
  SimulationSettings settings;
  settings.directory = options.directory;
  settings.seed = options.seed;
  settings.container = {EmbeddedContainer(), EmbeddedContainerSize()};
  settings.containerFile = options.container;
  settings.remarks = true;
  settings.pictures = AsksForPictures(script.str());
  Simulation simulation(settings);

  const auto start = std::chrono::steady_clock::now();
  const ScriptResult result = RunScript(simulation, script, {std::cout, std::cerr});
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  std::cout.flush();
  if (!options.quiet) PrintStatistics(simulation.Frame(), seconds.count());
  return static_cast<int>(result);
}

} // namespace

int main(int argc, char** argv) {
  CLI::App app("Plays Vesk Editor without a window, from a script of one command a line.", "vesk-sim");
  app.footer("Commands of a script:\n" + ScriptCommands());
  Options options;
  app.add_option("SCRIPT", options.script, "The script file; - for standard input")->required();
  app.add_option("--dir", options.directory,
                 "The game's directory, with Level/ and Settings.dat (default: a fresh one)")
      ->type_name("DIR");
  app.add_option("--container", options.container,
                 "The data container to play (default: the one in this program)")
      ->option_text("FILE")
      ->check(CLI::ExistingFile);
  app.add_option("--seed", options.seed, "What randomize seeds with (default 1)")->type_name("N");
  app.add_flag("--quiet", options.quiet, "No statistics at the end");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int code = app.exit(error);
    return code == 0 ? 0 : static_cast<int>(ScriptResult::kBadScript);
  }
  return Run(options);
}
