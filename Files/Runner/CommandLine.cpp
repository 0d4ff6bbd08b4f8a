#include "Files/Runner/CommandLine.h"

#include "Files/Graphics/DebugOverlay.h"

#include <algorithm>
#include <cstdlib>

namespace vesk {

namespace {

CommandLine state;

// Walks the words; an option that asks for more than there are gets empty text.
class Words {
public:
  explicit Words(const std::vector<std::string>& words) : m_words(words) {}
  bool Left() const { return m_next < m_words.size(); }
  std::string Take() { return Left() ? m_words[m_next++] : std::string(); }
  int32_t TakeNumber() { return static_cast<int32_t>(std::strtol(Take().c_str(), nullptr, 10)); }

private:
  const std::vector<std::string>& m_words;
  size_t m_next = 0;
};

struct OptionRow {
  const char* name;
  const char* argument; // as the help names it
  const char* help;
  void (*apply)(CommandLine& options, Words& words);
};

template <auto Member> void Set(CommandLine& options, Words&) { options.*Member = true; }
template <auto Member> void Text(CommandLine& options, Words& words) { options.*Member = words.Take(); }

constexpr OptionRow kOptions[] = {
    {"-game", "FILE", "names the game file; the game inside the program only takes its name",
     Text<&CommandLine::game>},
    {"-exit", "FILE", "goes on with that game file when this game has ended", Text<&CommandLine::exitGame>},
    {"-dir", "PATH", "is kept and read by nothing", Text<&CommandLine::directory>},
    {"-debug", "", "debug mode, with rates, counts and times over the picture; not behind -game",
     [](CommandLine& options, Words&) {
       if (!options.game.empty()) return;
       options.debug = true;
       options.overlay |= kOverlayFrame;
     }},
    {"-trace", "", "names every script and event that is entered on the debug channel",
     Set<&CommandLine::trace>},
    {"-vmtrace", "", "the same with depth, instances and built-ins called by index",
     Set<&CommandLine::extendedTrace>},
    {"-ext", "", "every call of an external library gives 0", Set<&CommandLine::noExternalCalls>},
    {"-noerrors", "", "no error box", Set<&CommandLine::noErrors>},
    {"-oldexec", "", "no script and no event runs", Set<&CommandLine::noExecution>},
    {"-noaudio", "", "no sound", Set<&CommandLine::noAudio>},
    {"-inawindow", "", "no full screen at the start", Set<&CommandLine::inAWindow>},
    {"-record", "FILE", "writes keys, mouse and pads of every frame to it", Text<&CommandLine::record>},
    {"-playback", "FILE", "plays such a record in place of the devices", Text<&CommandLine::playback>},
    {"-software", "", "names software vertex processing in the log; the driver decides",
     Set<&CommandLine::softwareVertices>},
    {"-intel", "", "one batch a vertex buffer; clears need no help here", Set<&CommandLine::manualClear>},
    {"-audiodebug", "", "the voices that play, over the picture",
     [](CommandLine& options, Words&) { options.overlay |= kOverlayAudio; }},
    {"-networkdebug", "", "without effect: there is no network layer to log", Set<&CommandLine::networkLog>},
    {"-vanillaGFX", "", "without effect: no adapter is treated in a way of its own",
     Set<&CommandLine::vanillaGraphics>},
    {"-output", "FILE", "appends the release channel to it", Text<&CommandLine::output>},
    {"-debugoutput", "FILE", "opens the debug channel and appends it to the file",
     Text<&CommandLine::debugOutput>},
    {"-headless", "", "no box, no splash, no console; ends at the start of the first room",
     Set<&CommandLine::headless>},
    {"-profiledump", "FILE COUNT", "writes what each stage took after so many frames",
     [](CommandLine& options, Words& words) {
       options.profileFile = words.Take();
       options.profileFrames = words.TakeNumber();
     }},
    {"-sleepmargin", "MILLISECONDS", "how much of each wait is spent awake",
     [](CommandLine& options, Words& words) { options.sleepMargin = std::max(words.TakeNumber(), 0); }},
    {"-multivb", "", "one vertex buffer a batch", Set<&CommandLine::multipleVertexBuffers>},
    {"-novb", "", "no vertex buffers", Set<&CommandLine::noVertexBuffers>},
    {"-compresstextures", "", "without effect: textures are stored as they are",
     Set<&CommandLine::compressTextures>},
    {"-manualvsync", "", "frames are paced behind the picture instead of ahead of it",
     Set<&CommandLine::alternateSync>},
    {"-nodirectinput", "", "no joysticks; standard pads work", Set<&CommandLine::noDirectInput>},
};

constexpr std::string_view kLaunchPrefix = "fbplayer:";

// "fbplayer:text", "fbplayer://text/" give "text".
bool TakeLaunchParameter(std::string_view word, std::string& parameter) {
  if (!word.starts_with(kLaunchPrefix)) return false;
  word.remove_prefix(kLaunchPrefix.size());
  if (word.starts_with("//")) word.remove_prefix(2);
  if (word.ends_with('/')) word.remove_suffix(1);
  parameter = word;
  return true;
}

bool IsBlank(char letter) { return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n'; }

} // namespace

CommandLine& Options() { return state; }
void CommandLine_Reset() { state = CommandLine{}; }

std::vector<std::string> CommandLine_Words(std::string_view line) {
  std::vector<std::string> words;
  size_t at = 0;
  while (true) {
    while (at < line.size() && IsBlank(line[at])) ++at;
    if (at >= line.size()) return words;
    std::string word;
    bool quoted = false;
    for (; at < line.size() && (quoted || !IsBlank(line[at])); ++at) {
      if (line[at] == '"')
        quoted = !quoted;
      else
        word += line[at];
    }
    words.push_back(std::move(word));
  }
}

std::string CommandLine_Join(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) {
    if (!line.empty()) line += ' ';
    const bool quote = word.empty() || std::any_of(word.begin(), word.end(), IsBlank);
    line += quote ? "\"" + word + "\"" : word;
  }
  return line;
}

std::string CommandLine_Help() {
  constexpr size_t kColumn = 28;
  std::string text;
  for (const OptionRow& option : kOptions) {
    std::string line = std::string("  ") + option.name;
    if (*option.argument) line += std::string(" ") + option.argument;
    line.resize(std::max(line.size() + 1, kColumn), ' ');
    text += line + option.help + "\n";
  }
  return text;
}

CommandLine CommandLine_Parse(std::string_view line, std::string_view knownGame) {
  CommandLine options;
  options.game = knownGame;
  const std::vector<std::string> all = CommandLine_Words(line);
  Words words(all);
  while (words.Left()) {
    const std::string word = words.Take();
    const auto row = std::find_if(std::begin(kOptions), std::end(kOptions),
                                  [&](const OptionRow& option) { return word == option.name; });
    if (row != std::end(kOptions))
      row->apply(options, words);
    else
      TakeLaunchParameter(word, options.launchParameter);
  }
  return options;
}

} // namespace vesk
