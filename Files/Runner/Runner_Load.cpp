#include "Files/Runner/Runner_Load.h"

#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Code/BuiltinAccess.h"
#include "Files/Code/Code.h"
#include "Files/Graphics/DebugOverlay.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/Graphics.h"
#include "Files/IO/Gamepad.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Run/Run_Game.h"
#include "Files/Run/Timing.h"
#include "Files/Runner/CommandLine.h"
#include "Files/Runner/Load.h"
#include "Files/Runner/Runner.h"
#include "Files/Support/Ini.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"
#include "Platform/Platform.h"

#include <algorithm>
#include <cstdlib>

namespace vesk {

namespace {

constexpr const char* kDataFile = "data.win";
constexpr size_t kFileMargin = 128; // bytes behind a container that was read from a file
constexpr uint64_t kFeatureStandardPads = 0x4;
constexpr uint32_t kHeaderSynchronised = 0x2;
constexpr uint32_t kHeaderSoftwareVertices = 0x4;
constexpr uint32_t kHeaderLinearFilter = 0x8;

// "True", "False" or a number.
bool ReadSwitch(IniFile& ini, const char* key) {
  const std::string value = ini.ReadString("DEFAULT", key, "0");
  if (value == "True") return true;
  return value != "False" && std::atoi(value.c_str()) != 0;
}

void ApplyIni(IniFile& ini) {
  constexpr const char* kSection = "Windows";
  CommandLine& options = Options();
  GraphicsState& graphics = Graphics();
  const auto has = [&](const char* section, const char* key) {
    return ini.FindEntry(section, key) != nullptr;
  };
  const bool lockedBuffers = options.multipleVertexBuffers || options.noVertexBuffers;
  if (has(kSection, "VertexBufferMethod") && !lockedBuffers) {
    const int32_t method = ini.ReadInt(kSection, "VertexBufferMethod", 0);
    if (method >= 0 && method <= 2) graphics.bufferMethod = method;
  }
  if (has(kSection, "CreateTexturesOnDemand") && ini.ReadInt(kSection, "CreateTexturesOnDemand", 0) != 0)
    graphics.settings.texturesOnDemand = true;
  if (has(kSection, "AlternateSyncMethod") && !options.alternateSync)
    graphics.alternateSync = ini.ReadInt(kSection, "AlternateSyncMethod", 0) != 0;
  if (has(kSection, "SleepMargin") && !options.sleepMargin)
    options.sleepMargin = std::max(ini.ReadInt(kSection, "SleepMargin", 0), 0);
  if (ReadSwitch(ini, "Debug")) {
    options.debug = true;
    options.overlay |= kOverlayFrame;
  }
  if (ReadSwitch(ini, "Trace")) options.trace = true;
  options.orientations = {ReadSwitch(ini, "OrientLandscape"), ReadSwitch(ini, "OrientLandscapeFlipped"),
                          ReadSwitch(ini, "OrientPortrait"), ReadSwitch(ini, "OrientPortraitFlipped")};
}

void LoadOptionsFile(const std::string& folder) {
  const std::string path = folder + "options.ini";
  ReleaseConsole().Output("Checking if INIFile exists at %s\n", path.c_str());
  if (!File_Exists(path)) return;
  ReleaseConsole().Output("INIFile %s Exists, loading....\n", path.c_str());
  IniFile ini;
  if (IniFile::FromFile(path, ini))
    ApplyIni(ini);
  else
    ErrorConsole().Output("%s can't be read\n", path.c_str());
}

// Debug information is optional; a damaged file is as good as none.
void LoadDebugInformation(const std::string& gamePath) {
  const std::string name = Path_Name(gamePath);
  const size_t point = name.find_last_of('.');
  const std::string path = Path_Folder(gamePath) + name.substr(0, point) + ".zqdebug";
  std::string bytes;
  if (!File_Exists(path) || !File_ReadAll(path, bytes)) return;
  const ContainerView view(reinterpret_cast<uint8_t*>(bytes.data()), static_cast<uint32_t>(bytes.size()));
  std::vector<Chunk> chunks;
  if (const LoadError error = Container_ListChunks(view, chunks)) {
    ErrorConsole().Output("%s: %s\n", path.c_str(), error.text.c_str());
    return;
  }
  for (const Chunk& chunk : chunks) {
    const std::string tag = ChunkName(chunk.tag);
    if (tag == "DBGI" || tag == "SCPT" || tag == "INST")
      DebugConsole().Output("Process Chunk: %s   %d\n", tag.c_str(), static_cast<int>(chunk.size));
  }
  Runner().debugInformation = std::move(bytes);
}

// A file given by name, looked for in the save area when it does not exist as named, or asked for.
bool FindGameFile() {
  RunnerState& runner = Runner();
  if (runner.gameFile.empty() && !Options().headless)
    runner.gameFile = Platform_Get().dialogs->AskOpenFile("Open game", "*.*");
  if (runner.gameFile.empty()) {
    if (runner.launchedByRestart) return false;
    ErrorConsole().Output("No game was named\n");
    runner.exitCode = EXIT_FAILURE;
    return false;
  }
  if (!File_Exists(runner.gameFile)) {
    const std::string saved = Files_SavePath(runner.gameFile);
    if (!saved.empty() && File_Exists(saved)) runner.gameFile = saved;
  }
  return true;
}

bool ReadContainerFile(const std::string& path) {
  RunnerState& runner = Runner();
  std::string bytes;
  if (!File_ReadAll(path, bytes)) {
    ErrorConsole().Output("FAILED to load File %s\n", path.c_str());
    return false;
  }
  ReleaseConsole().Output("Loaded File %s(%d)\n", path.c_str(), static_cast<int>(bytes.size()));
  runner.container.assign(bytes.begin(), bytes.end());
  runner.container.resize(bytes.size() + kFileMargin, 0);
  return true;
}

// The bundle is where the Level folder stands: beside the program, or where the program was started.
std::string ChooseBundle(const std::string& gameFolder) {
  const RunnerState& runner = Runner();
  if (!runner.setup.directory.empty()) {
    std::string folder = Path_Full(runner.setup.directory);
    if (!folder.ends_with('/')) folder += '/';
    return folder;
  }
  if (!Directory_Exists(gameFolder + "Level") && Directory_Exists(runner.startDirectory + "Level"))
    return runner.startDirectory;
  return gameFolder;
}

} // namespace

std::string Runner_FindDataFile() {
  const std::string path = Runner().programDirectory + kDataFile;
  CFile file;
  return File_Exists(path) && file.Open(path, "rb") ? path : std::string();
}

void Runner_SweepDirectory() {
  for (const FileInfo& info : Directory_Find("", "*@*")) {
    if (info.directory || info.readOnly || info.hidden) continue;
    std::string path = info.name;
    std::replace(path.begin(), path.end(), '@', '/');
    if (path.front() == '/' || path.back() == '/' || path.find("//") != std::string::npos) continue;
    if (path.find("..") != std::string::npos || File_Exists(path) || Directory_Exists(path)) continue;
    std::string why;
    if (!Directory_Make(Path_Folder(path), &why) || !File_Rename(info.name, path, &why))
      ErrorConsole().Output("%s: %s\n", info.name.c_str(), why.c_str());
  }
}

std::string Runner_SavePrefix() {
  RunnerState& runner = Runner();
  if (!runner.savePrefix.empty() || runner.gameName.empty()) return runner.savePrefix;
  const std::string base = runner.setup.saveBase.empty() ? Directory_UserData() : runner.setup.saveBase;
  if (base.empty()) return {};
  const std::string prefix = base + "/" + runner.gameName + "/";
  std::string why;
  if (!Directory_Make(prefix, &why)) {
    ErrorConsole().Output("Save area: %s\n", why.c_str());
    return {};
  }
  runner.savePrefix = prefix;
  DebugConsole().Output("SavePrePend = %s\n", prefix.c_str());
  return prefix;
}

bool RunnerLoadGame(ContainerView& container) {
  RunnerState& runner = Runner();
  GameDescriptor& descriptor = *runner.setup.descriptor;
  ReleaseConsole().Output("RunnerLoadGame: %s\n", runner.gameFile.c_str());
  Code().table = descriptor.codeTable;
  Code().instanceSlotCount = descriptor.instanceSlotCount;
  if (descriptor.container)
    runner.gameFile = Path_Executable();
  else if (!FindGameFile())
    return false;
  ReleaseConsole().Output("RunnerLoadGame() - %s\n", runner.gameFile.c_str());
  runner.workingDirectory = ChooseBundle(Path_Folder(runner.gameFile));
  Files_Locations().bundle = runner.workingDirectory;
  ReleaseConsole().Output("ZqG Game launching. Game file: %s\n", runner.gameFile.c_str());
  LoadOptionsFile(runner.workingDirectory);
  LoadDebugInformation(runner.gameFile);
  ReleaseConsole().Output("Reading File %s\n", runner.gameFile.c_str());
  if (descriptor.container) {
    container = ContainerView(descriptor.container, descriptor.containerSize);
  } else {
    if (!ReadContainerFile(runner.gameFile)) {
      Error_ShowBox("Unable to find game!!: " + runner.gameFile);
      runner.exitCode = EXIT_FAILURE;
      return false;
    }
    container =
        ContainerView(runner.container.data(), static_cast<uint32_t>(runner.container.size() - kFileMargin));
  }
  if (container.U32(0) == ChunkTag("FORM")) ReleaseConsole().Output("IFF wad found\n");
  return true;
}

void Runner_ApplyOptions() {
  const container::HeaderRecord& header = Load().records.header;
  const container::OptionsRecord& records = Load().records.options;
  const CommandLine& options = Options();
  RunnerState& runner = Runner();
  runner.gameName = header.name;
  Error().gameName = header.displayName;
  Game_SetIdentity(header.gameId, header.guid, header.displayName, header.name);
  Game().debugMode = options.debug;
  if (options.trace) Code().trace = CodeTrace::kEntries;
  if (options.extendedTrace) Code().trace = CodeTrace::kExtended;
  Error().allFatal = (records.flags & container::kOptionAbortOnError) != 0;
  Files_Locations().saveArea = Runner_SavePrefix();

  if (const char* margin = Load_Constant("@@SleepMargin")) display_set_sleep_margin(std::atoi(margin));
  if (options.sleepMargin) display_set_sleep_margin(*options.sleepMargin);

  Loop().freezeWithoutFocus = (records.flags & container::kOptionFreezeUnfocused) != 0;
  Loop().altEnter = (records.flags & container::kOptionAltEnter) != 0;
  Gamepads().pollStandard = (header.featureMask & kFeatureStandardPads) != 0;
  Run_Settings().showCursor = (header.flags & container::kHeaderShowCursor) != 0 &&
                              (records.flags & container::kOptionShowCursor) != 0;
  Run_Settings().skipProfiler = header.debug != 0;
  Run_Settings().headless = options.headless;

  GraphicsState& graphics = Graphics();
  graphics.settings.keepAspect = (header.flags & container::kHeaderKeepAspect) != 0;
  graphics.settings.synchronised = (header.flags & kHeaderSynchronised) != 0;
  graphics.settings.softwareVertices =
      options.softwareVertices || (header.flags & kHeaderSoftwareVertices) != 0;
  graphics.settings.linearFilter = (header.flags & kHeaderLinearFilter) != 0;
  graphics.settings.windowColour = records.windowColour;
  graphics.settings.applicationWidth = header.windowWidth;
  graphics.settings.applicationHeight = header.windowHeight;
  graphics.settings.oneBatchABuffer = options.manualClear;
  graphics.settings.compressTextures = options.compressTextures;
  if (options.alternateSync) graphics.alternateSync = true;
  if (options.multipleVertexBuffers) graphics.bufferMethod = 1;
  if (options.noVertexBuffers) graphics.bufferMethod = 2;
  graphics.overlay = options.overlay;
}

} // namespace vesk
