#include "sim/Script.h"

#include "Files/Code/Self.h"
#include "Files/Object/Function_Instance.h"
#include "Files/Object/Object.h"
#include "Files/Room/Room.h"
#include "Files/Run/WorldState.h"
#include "Files/Sound/Audio_Main.h"
#include "game/level/level_build.h"
#include "game/text.h"
#include "sim/Expression.h"
#include "sim/Journal.h"
#include "sim/Look.h"
#include "sim/Picture.h"

#include <charconv>
#include <cmath>
#include <istream>
#include <memory>
#include <ostream>
#include <sstream>

namespace vesk {

// ---- words ----

bool SplitWords(std::string_view line, std::vector<std::string>& words) {
  words.clear();
  for (size_t at = 0; at < line.size();) {
    if (line[at] == ' ' || line[at] == '\t' || line[at] == '\r') {
      ++at;
      continue;
    }
    std::string word;
    if (line[at] == '"') { // kept as its first character, so that a quoted text is told from a name
      word += line[at++];
      while (at < line.size() && line[at] != '"') {
        if (line[at] == '\\' && at + 1 < line.size()) ++at;
        word += line[at++];
      }
      if (at >= line.size()) return false;
      ++at;
    } else {
      while (at < line.size() && line[at] != ' ' && line[at] != '\t' && line[at] != '\r') word += line[at++];
    }
    words.push_back(std::move(word));
  }
  return true;
}

namespace {

// A word without the mark of its quotes.
std::string Plain(const std::string& word) { return !word.empty() && word[0] == '"' ? word.substr(1) : word; }

// The first words again, with their quotes.
std::string AsWritten(const std::vector<std::string>& words, size_t count) {
  std::string text;
  for (size_t at = 0; at < count; ++at) {
    const bool quoted = !words[at].empty() && words[at][0] == '"';
    text += (at ? " " : "") + (quoted ? JsonText(Plain(words[at])) : words[at]);
  }
  return text;
}

struct NamedKey {
  std::string_view name;
  int code;
};
struct PadButtonName {
  std::string_view name;
  uint16_t bit; // of StandardPadState
};
constexpr PadButtonName kPadButtons[] = {
    {"dpup", 0x1},           {"dpdown", 0x2},
    {"dpleft", 0x4},         {"dpright", 0x8},
    {"start", 0x10},         {"back", 0x20},
    {"leftstick", 0x40},     {"rightstick", 0x80},
    {"leftshoulder", 0x100}, {"rightshoulder", 0x200},
    {"guide", 0x400},        {"a", 0x1000},
    {"b", 0x2000},           {"x", 0x4000},
    {"y", 0x8000},
};
struct PadAxisName {
  std::string_view name;
  int16_t StandardPadState::*axis;
  int sign; // of the device for 1
};
constexpr PadAxisName kPadAxes[] = {
    {"leftx", &StandardPadState::leftX, 1},
    {"lefty", &StandardPadState::leftY, -1},
    {"rightx", &StandardPadState::rightX, 1},
    {"righty", &StandardPadState::rightY, -1},
};
constexpr NamedKey kKeys[] = {
    {"left", 37},  {"up", 38},    {"right", 39}, {"down", 40}, {"enter", 13},    {"escape", 27},
    {"space", 32}, {"shift", 16}, {"ctrl", 17},  {"alt", 18},  {"backspace", 8}, {"tab", 9},
};

bool ParseInteger(const std::string& text, int64_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}
bool ParseReal(const std::string& text, double& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

} // namespace

int KeyCode(std::string_view name) {
  for (const NamedKey& key : kKeys)
    if (key.name == name) return key.code;
  if (name.size() == 1 && name[0] >= 'a' && name[0] <= 'z') return name[0] - 'a' + 'A';
  if (name.size() == 1 && name[0] >= '0' && name[0] <= '9') return name[0];
  int64_t number = 0;
  if (name.size() >= 2 && name[0] == 'f' && ParseInteger(std::string(name.substr(1)), number) &&
      number >= 1 && number <= 12)
    return static_cast<int>(111 + number);
  if (name.size() >= 2 && ParseInteger(std::string(name), number) && number >= 1 && number <= 255)
    return static_cast<int>(number);
  return -1;
}

// ---- the interpreter ----

namespace {

using Words = std::vector<std::string>;

class Interpreter {
public:
  Interpreter(Simulation& simulation, const ScriptOutput& output)
      : m_simulation(simulation), m_output(output),
        m_watcher(simulation.OnFrame([this] { KeepJournals(); })) {}
  ~Interpreter() { m_simulation.ForgetWatcher(m_watcher); }
  Interpreter(const Interpreter&) = delete;
  Interpreter& operator=(const Interpreter&) = delete;

  ScriptResult Run(std::istream& script);

  struct Command {
    std::string_view name;
    size_t fewest, most; // words behind the name
    void (Interpreter::*run)(const Words& words);
    std::string_view usage;
  };
  static const Command kCommands[];

private:
  void Execute(const std::string& line);
  void Refuse(const std::string& why) {
    if (m_result != ScriptResult::kAllWell) return;
    m_result = ScriptResult::kBadScript;
    m_output.errors << "line " << m_line << ": " << why << "\n";
  }
  void Fail(const std::string& why) {
    if (m_result != ScriptResult::kAllWell) return;
    m_result = ScriptResult::kExpectationFailed;
    m_output.errors << "line " << m_line << ": " << why << "\n";
  }
  // A start in words: "" is well.
  void Judge(const std::string& problem) {
    if (!problem.empty()) Refuse(problem);
  }
  // The program runs from its first command on.
  bool Ready() {
    if (!m_started) {
      m_started = true;
      Judge(m_simulation.Start());
    }
    return m_result == ScriptResult::kAllWell;
  }
  bool Count(const std::string& word, int64_t& count) {
    if (ParseInteger(word, count) && count >= 0) return true;
    Refuse("\"" + word + "\" is not a number of frames");
    return false;
  }
  bool Number(const std::string& word, double& number) {
    if (ParseReal(word, number)) return true;
    Refuse("\"" + word + "\" is not a number");
    return false;
  }
  bool Key(const std::string& word, int& key) {
    key = KeyCode(word);
    if (key < 0) Refuse("\"" + word + "\" is not a key");
    return key >= 0;
  }
  bool Object(const std::string& word, int32_t& object) {
    object = Object_FindByName(word);
    if (object < 0) Refuse("there is no object \"" + word + "\"");
    return object >= 0;
  }
  bool MouseButton(const std::string& word, int& button) {
    button = word == "left" ? 1 : word == "right" ? 2 : word == "middle" ? 3 : 0;
    if (button == 0) Refuse("\"" + word + "\" is not a mouse button");
    return button != 0;
  }

  void Step(int64_t frames);
  void PrintWatch();
  void PrintInstances(int32_t object, const Words& words);
  void PrintGlobals(const Words& words);
  std::string FrameField() const { return "{\"frame\":" + std::to_string(m_simulation.Frame()); }

  void Play(const Words& w) { Judge(m_simulation.Play(Plain(w[0]), w.size() > 1 ? Plain(w[1]) : "Main")); }
  void Edit(const Words& w) { Judge(m_simulation.Edit(Plain(w[0]), w.size() > 1 ? Plain(w[1]) : "Main")); }
  void New(const Words& w) { Judge(m_simulation.New(Plain(w[0]))); }
  void Room(const Words& w) { Judge(m_simulation.Room(w[0])); }
  void StepCommand(const Words& w);
  void Press(const Words& w);
  void Release(const Words& w);
  void Tap(const Words& w);
  void Type(const Words& w);
  void Mouse(const Words& w);
  void Button(const Words& w);
  void Click(const Words& w);
  void Drag(const Words& w);
  void Wheel(const Words& w);
  void Pad(const Words& w);
  void PadPlugged(bool connect);
  void PadButton(const std::string& name, const std::string& way);
  void PadAxis(const std::string& name, const std::string& value);
  void Playback(const Words& w);
  void Record(const Words& w);
  void Journal(const Words& w);
  void EndJournals();
  void KeepJournals();
  void Until(const Words& w);
  void Dump(const Words& w);
  void Watch(const Words& w);
  void Unwatch(const Words&) { m_watched.clear(); }
  void CountCommand(const Words& w);
  void Tiles(const Words& w);
  void Checksum(const Words& w);
  void Sounds(const Words& w);
  void Draws(const Words& w);
  void Shot(const Words& w);
  void Expect(const Words& w);
  void Create(const Words& w);
  void Destroy(const Words& w);
  void Set(const Words& w);
  void TileCommand(const Words& w);

  Simulation& m_simulation;
  ScriptOutput m_output;
  size_t m_watcher;
  ScriptResult m_result = ScriptResult::kAllWell;
  int m_line = 0;
  bool m_started = false;
  int32_t m_pad = -1;                          // device of the pad; -1 none
  std::vector<Words> m_watched;                // object, variables
  std::unique_ptr<JournalWriter> m_journal;    // being written
  std::unique_ptr<JournalReader> m_comparison; // being held against
};

constexpr size_t kAny = 1000;

const Interpreter::Command Interpreter::kCommands[] = {
    {"play", 1, 2, &Interpreter::Play, "play FILE [SECTION]"},
    {"edit", 1, 2, &Interpreter::Edit, "edit FILE [SECTION]"},
    {"new", 1, 1, &Interpreter::New, "new NAME"},
    {"room", 1, 1, &Interpreter::Room, "room NAME"},
    {"step", 0, 1, &Interpreter::StepCommand, "step [N]"},
    {"press", 1, kAny, &Interpreter::Press, "press KEY…"},
    {"release", 1, kAny, &Interpreter::Release, "release KEY…"},
    {"tap", 1, 2, &Interpreter::Tap, "tap KEY [N]"},
    {"type", 1, 1, &Interpreter::Type, "type TEXT"},
    {"mouse", 2, 2, &Interpreter::Mouse, "mouse X Y"},
    {"button", 2, 2, &Interpreter::Button, "button left|right|middle down|up"},
    {"click", 2, 3, &Interpreter::Click, "click X Y [left|right|middle]"},
    {"drag", 4, 5, &Interpreter::Drag, "drag X1 Y1 X2 Y2 [BUTTON]"},
    {"wheel", 1, 1, &Interpreter::Wheel, "wheel up|down"},
    {"pad", 1, 3, &Interpreter::Pad, "pad connect|disconnect, pad button NAME down|up, pad axis NAME VALUE"},
    {"playback", 1, 1, &Interpreter::Playback, "playback FILE"},
    {"record", 1, 1, &Interpreter::Record, "record FILE|end"},
    {"journal", 1, 2, &Interpreter::Journal, "journal write FILE, journal check FILE, journal end"},
    {"until", 3, 4, &Interpreter::Until, "until TERM OP TERM [MAX]"},
    {"dump", 2, kAny, &Interpreter::Dump, "dump OBJECT|global VAR…"},
    {"watch", 2, kAny, &Interpreter::Watch, "watch OBJECT|global VAR…"},
    {"unwatch", 0, 0, &Interpreter::Unwatch, "unwatch"},
    {"count", 1, kAny, &Interpreter::CountCommand, "count OBJECT…"},
    {"tiles", 1, 1, &Interpreter::Tiles, "tiles DEPTH"},
    {"checksum", 0, 0, &Interpreter::Checksum, "checksum"},
    {"sounds", 0, 0, &Interpreter::Sounds, "sounds"},
    {"draws", 0, 0, &Interpreter::Draws, "draws"},
    {"shot", 1, 1, &Interpreter::Shot, "shot FILE.png"},
    {"expect", 3, 3, &Interpreter::Expect, "expect TERM OP TERM"},
    {"create", 3, 3, &Interpreter::Create, "create OBJECT X Y"},
    {"destroy", 1, 1, &Interpreter::Destroy, "destroy OBJECT"},
    {"set", 3, 3, &Interpreter::Set, "set OBJECT|global VAR VALUE"},
    {"tile", 5, 5, &Interpreter::TileCommand, "tile TX TY X Y DEPTH"},
};

ScriptResult Interpreter::Run(std::istream& script) {
  std::string line;
  while (m_result == ScriptResult::kAllWell && std::getline(script, line)) {
    ++m_line;
    Execute(line);
  }
  EndJournals();
  return m_result;
}

void Interpreter::Execute(const std::string& line) {
  Words words;
  if (!SplitWords(line, words)) return Refuse("a double quote is open");
  if (words.empty() || words[0][0] == '#') return;
  for (const Command& command : kCommands) {
    if (command.name != words[0]) continue;
    words.erase(words.begin());
    if (words.size() < command.fewest || words.size() > command.most)
      return Refuse("usage: " + std::string(command.usage));
    // A pad that is there before the program starts is plugged in before it.
    const bool before = !m_started && command.run == &Interpreter::Pad;
    if (before || Ready()) (this->*command.run)(words);
    return;
  }
  Refuse("unknown command \"" + words[0] + "\"");
}

// ---- time and input ----

void Interpreter::Step(int64_t frames) {
  for (; frames > 0 && m_result == ScriptResult::kAllWell; --frames) {
    m_simulation.Step();
    PrintWatch();
    if (const std::string report = m_simulation.FatalReport(); !report.empty()) {
      m_result = ScriptResult::kFatalError;
      m_output.errors << "line " << m_line << ": the game reported a fatal error in frame "
                      << m_simulation.Frame() << "\n"
                      << report << "\n";
    } else if (!m_simulation.Running()) {
      if (frames > 1) Refuse("the game has ended in frame " + std::to_string(m_simulation.Frame()));
      return;
    }
  }
}

void Interpreter::StepCommand(const Words& w) {
  int64_t frames = 1;
  if (w.empty() || Count(w[0], frames)) Step(frames);
}

void Interpreter::Press(const Words& w) {
  for (const std::string& word : w)
    if (int key = 0; Key(word, key)) m_simulation.Key(key, true);
}

void Interpreter::Release(const Words& w) {
  for (const std::string& word : w)
    if (int key = 0; Key(word, key)) m_simulation.Key(key, false);
}

void Interpreter::Tap(const Words& w) {
  int key = 0;
  int64_t frames = 1;
  if (!Key(w[0], key) || (w.size() > 1 && !Count(w[1], frames))) return;
  m_simulation.Key(key, true);
  Step(frames);
  m_simulation.Key(key, false);
  Step(1);
}

void Interpreter::Type(const Words& w) {
  for (const char character : Plain(w[0])) {
    m_simulation.Type(character);
    PrintWatch();
  }
}

void Interpreter::Mouse(const Words& w) {
  double viewX = 0, viewY = 0;
  if (Number(w[0], viewX) && Number(w[1], viewY)) m_simulation.Mouse(viewX, viewY);
}

void Interpreter::Button(const Words& w) {
  int button = 0;
  if (!MouseButton(w[0], button)) return;
  if (w[1] != "down" && w[1] != "up") return Refuse("a button goes down or up");
  m_simulation.Button(button, w[1] == "down");
}

void Interpreter::Click(const Words& w) {
  int button = 1;
  Mouse(w);
  if (w.size() > 2 && !MouseButton(w[2], button)) return;
  Step(1);
  m_simulation.Button(button, true);
  Step(1);
  m_simulation.Button(button, false);
  Step(1);
}

void Interpreter::Drag(const Words& w) {
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  int button = 1;
  if (!Number(w[0], x1) || !Number(w[1], y1) || !Number(w[2], x2) || !Number(w[3], y2)) return;
  if (w.size() > 4 && !MouseButton(w[4], button)) return;
  m_simulation.Mouse(x1, y1);
  Step(1);
  m_simulation.Button(button, true);
  Step(1);
  const int moves = static_cast<int>(std::ceil(std::hypot(x2 - x1, y2 - y1) / 8));
  for (int move = 1; move <= moves; ++move) {
    m_simulation.Mouse(x1 + (x2 - x1) * move / moves, y1 + (y2 - y1) * move / moves);
    Step(1);
  }
  m_simulation.Button(button, false);
  Step(1);
}

void Interpreter::Wheel(const Words& w) {
  if (w[0] != "up" && w[0] != "down") return Refuse("the wheel goes up or down");
  m_simulation.Wheel(w[0] == "up");
}

void Interpreter::PadPlugged(bool connect) {
  CHandDrivenPlatform& devices = m_simulation.Devices();
  if (connect == (m_pad >= 0)) return Refuse(connect ? "a pad is connected already" : "no pad is connected");
  if (connect) {
    PadInfo info;
    info.name = "Pad";
    info.standard = true;
    m_pad = devices.pads.Attach(info);
  } else {
    devices.pads.Detach(m_pad);
    m_pad = -1;
  }
  if (m_started) devices.messages.PadsChanged();
}

void Interpreter::PadButton(const std::string& name, const std::string& way) {
  if (way != "down" && way != "up") return Refuse("a button goes down or up");
  StandardPadState& state = m_simulation.Devices().pads.Find(m_pad)->standard;
  for (const PadButtonName& row : kPadButtons) {
    if (row.name != name) continue;
    state.buttons = static_cast<uint16_t>(way == "down" ? state.buttons | row.bit : state.buttons & ~row.bit);
    return;
  }
  Refuse("\"" + name + "\" is not a pad's button");
}

void Interpreter::PadAxis(const std::string& name, const std::string& value) {
  double amount = 0;
  if (!Number(value, amount)) return;
  if (amount < -1 || amount > 1) return Refuse("an axis goes from -1 to 1");
  StandardPadState& state = m_simulation.Devices().pads.Find(m_pad)->standard;
  for (const PadAxisName& row : kPadAxes) {
    if (row.name != name) continue;
    state.*row.axis = static_cast<int16_t>(std::lround(amount * row.sign * 32767));
    return;
  }
  Refuse("\"" + name + "\" is not a pad's axis");
}

void Interpreter::Pad(const Words& w) {
  if (w.size() == 1 && w[0] == "connect") return PadPlugged(true);
  if (w.size() == 1 && w[0] == "disconnect") return PadPlugged(false);
  if (w.size() != 3 || (w[0] != "button" && w[0] != "axis"))
    return Refuse("usage: pad connect|disconnect, pad button NAME down|up, pad axis NAME VALUE");
  if (m_pad < 0) return Refuse("no pad is connected");
  if (w[0] == "button")
    PadButton(w[1], w[2]);
  else
    PadAxis(w[1], w[2]);
}

void Interpreter::Playback(const Words& w) {
  int64_t frames = 0;
  Judge(m_simulation.BeginPlayback(Plain(w[0]), frames));
  if (m_result != ScriptResult::kAllWell) return;
  Step(frames);
  m_simulation.EndPlayback();
}

void Interpreter::Record(const Words& w) { Judge(m_simulation.Record(w[0] == "end" ? "" : Plain(w[0]))); }

void Interpreter::Journal(const Words& w) {
  if (w.size() == 1 && w[0] == "end") return EndJournals();
  if (w.size() != 2 || (w[0] != "write" && w[0] != "check"))
    return Refuse("usage: journal write FILE, journal check FILE, journal end");
  EndJournals();
  if (w[0] == "write") {
    m_journal = std::make_unique<JournalWriter>();
    Judge(m_journal->Open(Plain(w[1])));
  } else {
    m_comparison = std::make_unique<JournalReader>();
    Judge(m_comparison->Open(m_simulation.FullName(Plain(w[1]))));
  }
}

void Interpreter::KeepJournals() {
  if (m_result != ScriptResult::kAllWell) return;
  if (m_journal) m_journal->Frame();
  if (!m_comparison) return;
  const std::string difference = m_comparison->Check();
  if (!difference.empty())
    Fail("frame " + std::to_string(m_simulation.Frame()) + " differs from the journal: " + difference);
}

void Interpreter::EndJournals() {
  if (m_journal) Judge(m_journal->Close());
  const std::string rest = m_comparison ? m_comparison->Close() : "";
  if (!rest.empty()) Fail(rest);
  m_journal.reset();
  m_comparison.reset();
}

void Interpreter::Until(const Words& w) {
  int64_t most = 600;
  Expression expression;
  Judge(ParseExpression({w.begin(), w.begin() + 3}, expression));
  if (m_result != ScriptResult::kAllWell || (w.size() > 3 && !Count(w[3], most))) return;
  for (int64_t frame = 0; !Holds(expression); ++frame) {
    if (frame == most)
      return Fail("until " + AsWritten(w, 3) + ": still not so after " + std::to_string(most) +
                  " frames; found " + JsonValue(w[0], Evaluate(expression.left)));
    Step(1);
    if (m_result != ScriptResult::kAllWell) return;
  }
}

// ---- looking ----

void Interpreter::PrintInstances(int32_t object, const Words& words) {
  for (CInstance* it : InstancesOf(object)) {
    m_output.lines << FrameField() << ",\"id\":" << it->id
                   << ",\"object\":" << JsonText(Object_Name(it->objectIndex));
    for (size_t at = 1; at < words.size(); ++at) {
      VariablePath path;
      ParseVariable(words[at], path);
      m_output.lines << "," << JsonText(words[at]) << ":" << JsonValue(path.name, ReadVariable(it, path));
    }
    m_output.lines << "}\n";
  }
}

void Interpreter::PrintGlobals(const Words& words) {
  m_output.lines << FrameField();
  for (size_t at = 1; at < words.size(); ++at) {
    VariablePath path;
    ParseVariable(words[at], path);
    m_output.lines << "," << JsonText(words[at]) << ":" << JsonValue(path.name, ReadVariable(nullptr, path));
  }
  m_output.lines << "}\n";
}

void Interpreter::Dump(const Words& w) {
  for (size_t at = 1; at < w.size(); ++at) {
    VariablePath path;
    if (!ParseVariable(w[at], path) || !VariableExists(path.name))
      return Refuse("there is no variable \"" + w[at] + "\"");
  }
  int32_t object = -1;
  if (w[0] == "global")
    PrintGlobals(w);
  else if (Object(w[0], object))
    PrintInstances(object, w);
}

void Interpreter::Watch(const Words& w) {
  int32_t object = -1;
  if (w[0] != "global" && !Object(w[0], object)) return;
  m_watched.push_back(w);
}

void Interpreter::PrintWatch() {
  for (const Words& words : m_watched) Dump(words);
}

void Interpreter::CountCommand(const Words& w) {
  std::string line = FrameField();
  for (const std::string& word : w) {
    int32_t object = -1;
    if (!Object(word, object)) return;
    line += "," + JsonText(word) + ":" + std::to_string(InstancesOf(object).size());
  }
  m_output.lines << line << "}\n";
}

void Interpreter::Tiles(const Words& w) {
  double depth = 0;
  if (Number(w[0], depth))
    m_output.lines << FrameField() << ",\"depth\":" << JsonNumber(depth) << ",\"tiles\":" << CountTiles(depth)
                   << "}\n";
}

void Interpreter::Checksum(const Words&) {
  char digits[17];
  std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(World_Checksum()));
  m_output.lines << FrameField() << ",\"checksum\":\"" << digits << "\"}\n";
}

void Interpreter::Sounds(const Words&) {
  const auto list = [](const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ",") + JsonText(name);
    return "[" + text + "]";
  };
  m_output.lines << FrameField() << ",\"playing\":" << list(Audio_Playing())
                 << ",\"started\":" << list(Audio_TakeStarted()) << "}\n";
}

void Interpreter::Draws(const Words&) {
  const DrawCounts counts = LastFrameDraws();
  m_output.lines << FrameField() << ",\"batches\":" << counts.batches << ",\"quads\":" << counts.quads
                 << "}\n";
}

void Interpreter::Shot(const Words& w) { Judge(WriteShot(Plain(w[0]))); }

void Interpreter::Expect(const Words& w) {
  Expression expression;
  Judge(ParseExpression(w, expression));
  if (m_result != ScriptResult::kAllWell || Holds(expression)) return;
  Fail("expect " + AsWritten(w, 3) + ": found " + JsonValue(w[0], Evaluate(expression.left)));
}

// ---- arranging ----

void Interpreter::Create(const Words& w) {
  int32_t object = -1;
  double atX = 0, atY = 0;
  if (Object(w[0], object) && Number(w[1], atX) && Number(w[2], atY))
    instance_create(static_cast<float>(atX), static_cast<float>(atY), object);
}

void Interpreter::Destroy(const Words& w) {
  int32_t object = -1;
  if (!Object(w[0], object)) return;
  for (CInstance* it : InstancesOf(object)) instance_destroy(Self(it));
}

void Interpreter::Set(const Words& w) {
  VariablePath path;
  if (!ParseVariable(w[1], path) || !VariableExists(path.name))
    return Refuse("there is no variable \"" + w[1] + "\"");
  RValue written(Plain(w[2]));
  if (w[2][0] != '"') {
    double number = 0;
    if (!Number(w[2], number)) return;
    written = RValue(number);
  }
  if (w[0] == "global") {
    if (!WriteVariable(nullptr, path, written)) Refuse("\"" + w[1] + "\" can't be written");
    return;
  }
  int32_t object = -1;
  if (!Object(w[0], object)) return;
  for (CInstance* it : InstancesOf(object))
    if (!WriteVariable(it, path, written)) return Refuse("\"" + w[1] + "\" can't be written");
}

void Interpreter::TileCommand(const Words& w) {
  double numbers[5];
  for (size_t at = 0; at < 5; ++at)
    if (!Number(w[at], numbers[at])) return;
  const auto cell = [](double pixels) { return static_cast<int>(std::floor(pixels / kCellSize)); };
  scr_gen_tile(cell_key(cell(numbers[2]), cell(numbers[3])),
               cell_key(static_cast<int>(numbers[0]), static_cast<int>(numbers[1])), numbers[4]);
}

} // namespace

std::string ScriptCommands() {
  std::string text;
  for (const auto& command : Interpreter::kCommands) text += "  " + std::string(command.usage) + "\n";
  return text;
}

bool AsksForPictures(const std::string& script) {
  std::istringstream lines(script);
  std::vector<std::string> words;
  for (std::string line; std::getline(lines, line);)
    if (SplitWords(line, words) && !words.empty() && words[0] == "shot") return true;
  return false;
}

ScriptResult RunScript(Simulation& simulation, std::istream& script, const ScriptOutput& output) {
  return Interpreter(simulation, output).Run(script);
}

} // namespace vesk
