#include "sim/Simulation.h"

#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Code/BuiltinVariables.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics_API/RecordingDevice.h"
#include "Files/IO/IO.h"
#include "Files/Object/Function_Instance.h"
#include "Files/Object/Object.h"
#include "Files/Room/Function_Room.h"
#include "Files/Room/Room.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Runner/CommandLine.h"
#include "Files/Runner/Runner.h"
#include "game/AssetNames.h"
#include "game/GameTables.h"
#include "game/ObjectNames.h"
#include "game/play/start.h"
#include "sim/Look.h"

#include <cstdlib>
#include <filesystem>

namespace vesk {

namespace {

constexpr int kMostOpeningFrames = 1200; // of a level, to the first frame in which the hero can move
constexpr int kViewWidth = 384, kViewHeight = 216; // pixels of every picture

std::string MakeTemporaryDirectory() {
  std::string name = (std::filesystem::temp_directory_path() / "vesk-sim-XXXXXX").string();
  if (!mkdtemp(name.data())) return "";
  std::filesystem::create_directory(std::filesystem::path(name) / "Level");
  return name;
}

GameDescriptor& Descriptor() {
  static GameDescriptor descriptor; // the runner keeps a pointer; one run at a time
  return descriptor;
}

} // namespace

Simulation::Simulation(const SimulationSettings& settings)
    : m_settings(settings), m_container(settings.container.begin(), settings.container.end()),
      m_directory(settings.directory) {
  m_ownsDirectory = m_directory.empty();
  m_directory = m_ownsDirectory ? MakeTemporaryDirectory() : std::filesystem::absolute(m_directory).string();
  m_startDirectory = std::filesystem::current_path().string();
}

Simulation::~Simulation() {
  if (m_started) Runner_Close();
  Platform_Set(nullptr);
  Random_ClockSeed().reset();
  std::error_code ignored;
  std::filesystem::current_path(m_startDirectory, ignored);
  if (m_ownsDirectory && !m_directory.empty()) std::filesystem::remove_all(m_directory, ignored);
}

std::string Simulation::Start() {
  if (m_directory.empty()) return "no temporary directory can be made";
  m_platform.window.fixedSize = {kViewWidth, kViewHeight};
  Platform_Set(&m_platform.Interfaces());
  Random_ClockSeed() = m_settings.seed;
  RunnerSetup setup;
  setup.descriptor = &Descriptor();
  std::vector<std::string> words = {"-noerrors"};
  if (m_settings.containerFile.empty()) {
    Descriptor() = MakeGameDescriptor(m_container.data(), static_cast<uint32_t>(m_container.size()));
  } else { // the runner finds it as it finds any game's file
    Descriptor() = MakeGameDescriptor(nullptr, 0);
    words.insert(words.end(), {"-game", FullName(m_settings.containerFile)});
  }
  setup.commandLine = CommandLine_Join(words);
  setup.directory = m_directory;
  setup.saveBase = m_directory;
  setup.quiet = true; // standard output is the script's
  setup.makeDevice = [this]() -> std::unique_ptr<IRenderDevice> {
    if (m_settings.pictures) return RenderDevice_MakeSoftware(384, 216, &m_blind);
    return std::make_unique<CRecordingDevice>();
  };
  Runner_Begin(std::move(setup));
  m_started = true;
  if (!Runner_Open()) return "the game can't be started: " + Error().lastReport;
  constexpr int kMiddleX = kViewWidth / 2, kMiddleY = kViewHeight / 2;
  Mouse(kMiddleX, kMiddleY); // at an edge it would scroll the editor
  if (m_settings.remarks) Consoles().release = std::make_unique<TConsole>(TConsole::Stream::StandardError);
  return "";
}

bool Simulation::Running() const { return m_started && Loop().running; }

std::string Simulation::FatalReport() const { return Error().fatalCount > 0 ? Error().lastReport : ""; }

void Simulation::Step(int64_t frames) {
  for (; frames > 0 && Running(); --frames) {
    Runner_Pass();
    ++m_frame;
    for (const auto& watcher : m_watchers)
      if (watcher) watcher();
  }
}

namespace {

// The key of a US keyboard that gives the character.
int KeyOf(char character) {
  struct Row {
    std::string_view characters;
    int key;
  };
  static constexpr Row kRows[] = {
      {";:", 186}, {"=+", 187},  {",<", 188}, {"-_", 189},  {".>", 190}, {"/?", 191}, {"`~", 192},
      {"[{", 219}, {"\\|", 220}, {"]}", 221}, {"'\"", 222}, {")", '0'},  {"!", '1'},  {"@", '2'},
      {"#", '3'},  {"$", '4'},   {"%", '5'},  {"^", '6'},   {"&", '7'},  {"*", '8'},  {"(", '9'},
  };
  for (const Row& row : kRows)
    if (row.characters.find(character) != std::string_view::npos) return row.key;
  return character >= 'a' && character <= 'z' ? character - 'a' + 'A' : character;
}

} // namespace

void Simulation::Type(char character) {
  const int key = KeyOf(character);
  m_platform.messages.KeyAlone(key & 0xFF, true);
  m_platform.messages.Character(static_cast<unsigned char>(character));
  Step();
  m_platform.messages.KeyAlone(key & 0xFF, false);
}

void Simulation::Mouse(double viewX, double viewY) {
  m_platform.messages.Mouse(static_cast<int32_t>(viewX), static_cast<int32_t>(viewY));
}

std::string Simulation::FullName(const std::string& file) const {
  const std::filesystem::path fromStart = std::filesystem::path(m_startDirectory) / file;
  return std::filesystem::exists(fromStart) ? fromStart.string() : file;
}

std::string Simulation::BeginPlayback(const std::string& file, int64_t& frames) {
  std::string why;
  if (!Input().playback.Open(FullName(file), "rb", &why)) return "\"" + file + "\" can't be played: " + why;
  const int64_t size = Input().playback.Size();
  frames = size / kRecordSize;
  if (size > 0 && size % kRecordSize == 0) return "";
  EndPlayback();
  return "\"" + file + "\" is no input record: its " + std::to_string(size) +
         " bytes are not whole frames of " + std::to_string(kRecordSize);
}

std::string Simulation::Record(const std::string& file) {
  std::string why;
  Input().record.Close();
  if (file.empty() || Input().record.Open(file, "w+b", &why)) return "";
  return "\"" + file + "\" can't be written: " + why;
}

void Simulation::EndPlayback() { Input().playback.Close(); }

std::string Simulation::Play(const std::string& file, const std::string& section) {
  const std::string problem = start_level(FullName(file), section);
  if (!problem.empty()) return "\"" + file + "\": " + problem;
  for (int frame = 0; frame < kMostOpeningFrames && Running() && FatalReport().empty(); ++frame) {
    Step();
    if (Rooms().currentIndex == rm_template && InstancesOf(obj_tovinstart).empty() &&
        !InstancesOf(obj_tovin).empty())
      return "";
  }
  return FatalReport().empty() ? "\"" + file + "\": no hero appears" : FatalReport();
}

// A change of rooms begins with a fade, in which everything else sleeps.
void Simulation::WaitForFade() {
  for (int frame = 0; frame < kMostOpeningFrames && Running(); ++frame) {
    const auto controller = InstancesOf(obj_persistent);
    if (controller.empty() || (ValueAsReal(ReadVariable(controller.front(), {"mode", kNoIndex})) == 0 &&
                               ValueAsReal(ReadVariable(controller.front(), {"done", kNoIndex})) >= 1))
      return;
    Step();
  }
}

std::string Simulation::Edit(const std::string& file, const std::string& section) {
  const std::string problem = start_editing(FullName(file), section);
  if (!problem.empty()) return "\"" + file + "\": " + problem;
  Step();
  WaitForFade();
  return FatalReport();
}

std::string Simulation::New(const std::string& level) {
  const std::string problem = start_new_level(level);
  if (!problem.empty()) return problem;
  Step();
  WaitForFade();
  return FatalReport();
}

std::string Simulation::Room(const std::string& name) {
  for (const auto& room : Rooms().templates) {
    if (!room || room->name != name) continue;
    skip_logos();
    room_goto(room->index);
    Step();
    WaitForFade();
    return "";
  }
  return "there is no room \"" + name + "\"";
}

} // namespace vesk
