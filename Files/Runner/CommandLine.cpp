#include "Files/Runner/CommandLine.h"

#include <algorithm>
#include <cstdlib>

namespace vesk {

namespace {

CommandLine state;

constexpr int32_t kDebugOverlay = 2;
constexpr uint32_t kAudioOverlay = 16;

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
  void (*apply)(CommandLine& options, Words& words);
};

template <auto Member> void Set(CommandLine& options, Words&) { options.*Member = true; }
template <auto Member> void Text(CommandLine& options, Words& words) { options.*Member = words.Take(); }

constexpr OptionRow kOptions[] = {
    {"-game", Text<&CommandLine::game>},
    {"-exit", Text<&CommandLine::exitGame>},
    {"-dir", Text<&CommandLine::directory>},
    {"-debug",
     [](CommandLine& options, Words&) {
       if (!options.game.empty()) return;
       options.debug = true;
       options.overlayMode = kDebugOverlay;
     }},
    {"-trace", Set<&CommandLine::trace>},
    {"-vmtrace", Set<&CommandLine::extendedTrace>},
    {"-ext", Set<&CommandLine::noExternalCalls>},
    {"-noerrors", Set<&CommandLine::noErrors>},
    {"-oldexec", Set<&CommandLine::noExecution>},
    {"-noaudio", Set<&CommandLine::noAudio>},
    {"-inawindow", Set<&CommandLine::inAWindow>},
    {"-record", Text<&CommandLine::record>},
    {"-playback", Text<&CommandLine::playback>},
    {"-software", Set<&CommandLine::softwareVertices>},
    {"-intel", Set<&CommandLine::manualClear>},
    {"-audiodebug", [](CommandLine& options, Words&) { options.overlayMask += kAudioOverlay; }},
    {"-networkdebug", Set<&CommandLine::networkLog>},
    {"-vanillaGFX", Set<&CommandLine::vanillaGraphics>},
    {"-output", Text<&CommandLine::output>},
    {"-debugoutput", Text<&CommandLine::debugOutput>},
    {"-headless", Set<&CommandLine::headless>},
    {"-profiledump",
     [](CommandLine& options, Words& words) {
       options.profileFile = words.Take();
       options.profileFrames = words.TakeNumber();
     }},
    {"-sleepmargin",
     [](CommandLine& options, Words& words) { options.sleepMargin = std::max(words.TakeNumber(), 0); }},
    {"-multivb", Set<&CommandLine::multipleVertexBuffers>},
    {"-novb", Set<&CommandLine::noVertexBuffers>},
    {"-compresstextures", Set<&CommandLine::compressTextures>},
    {"-manualvsync", Set<&CommandLine::alternateSync>},
    {"-nodirectinput", Set<&CommandLine::noDirectInput>},
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
