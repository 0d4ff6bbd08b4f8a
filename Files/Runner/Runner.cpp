#include "Files/Runner/Runner.h"

#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Code/BuiltinVariables.h"
#include "Files/Function/Function_External.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/Texture.h"
#include "Files/IO/IO.h"
#include "Files/Object/Object.h"
#include "Files/Room/Room.h"
#include "Files/Run/Event_Name.h"
#include "Files/Run/Profiler.h"
#include "Files/Run/Run_Events.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Run/Run_FrameBody.h"
#include "Files/Run/Run_Game.h"
#include "Files/Run/Timing.h"
#include "Files/Runner/Builtins.h"
#include "Files/Runner/CommandLine.h"
#include "Files/Runner/Load.h"
#include "Files/Runner/Runner_Load.h"
#include "Files/Runner/Runner_Window.h"
#include "Files/Script/Script.h"
#include "Files/Sound/Audio_Main.h"
#include "Platform/Crash.h"
#include "Platform/Files.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace vesk {

namespace {

RunnerState state;

void Log(const char* text) { DebugConsole().Output("%s", text); }

// A fault while nobody watches: the call chain on the channels, no box.
void OnHeadlessFault(uint32_t code, void* address) {
  ReleaseConsole().Output("Exception detected during headless!\n");
  ReleaseConsole().Output("%s", Error_CallChain().c_str());
  ReleaseConsole().Output("Failing function is\n");
  ReleaseConsole().Output("%s\n", Code().currentFunction);
  ErrorConsole().Output("Exception happened code=%08x address=%p", code, address);
}

// Relative names on the command line mean the folder in which the program was started, and the program moves
// to the game's folder.
void AnchorNames(CommandLine& options) {
  for (std::string* name : {&options.record, &options.playback, &options.output, &options.debugOutput,
                            &options.profileFile, &options.game})
    if (!name->empty() && !Path_IsAbsolute(*name)) *name = Path_Full(state.startDirectory + *name);
}

void ParseCommandLine() {
  Options() = CommandLine_Parse(state.commandLine, Runner_FindDataFile());
  CommandLine& options = Options();
  AnchorNames(options);
  Console_Open(!options.headless, options.output, options.debugOutput);
  if (state.setup.quiet)
    Consoles().release = std::make_unique<TConsole>(TConsole::Stream::Nothing, options.output);
  Error().showBox = !options.headless && !options.noErrors;
  Error().restarted = state.launchedByRestart;
  Code().execute = !options.noExecution;
  if (options.networkLog) ReleaseConsole().Output("-networkdebug: there is no network layer to log\n");
  if (options.vanillaGraphics)
    ReleaseConsole().Output("-vanillaGFX: no adapter is treated in a way of its own anyway\n");
  if (options.headless) Crash_Install(&OnHeadlessFault);
  state.gameFile = options.game;
  state.nextGame = options.exitGame;
  state.nextExit.clear();
}

bool NameRunningEvent(std::string& eventName, std::string& objectName, int& action) {
  const EventContext& event = Run().event;
  if (event.type < 0) return false;
  eventName = Event_Name(event.type, event.number);
  objectName = Object_Name(event.object);
  action = 1;
  return true;
}

// -headless ends in the start of the first room, before its room-start event.
void OnRoomReady(bool) {
  if (!Options().headless) return;
  state.headlessDone = true;
  Rooms().request = RoomRequestEndGame;
}

// What needs no game data.
void InitialiseSubsystems() {
  Random_Seed(0);
  BuiltinVariables_Init();
  state.temporaryDirectory = Directory_Temporary();
  Error().runningEvent = &NameRunningEvent;
  Run_ConnectServices();
  FrameBody().services.roomReady = &OnRoomReady;
  ProcessMessages();
}

bool InitialiseGraphics() {
  Log("Init Graphics\n");
  Log("GR_D3D_Init()\n");
  bool ready = false;
  if (state.setup.makeDevice) {
    std::unique_ptr<IRenderDevice> device = state.setup.makeDevice();
    // Without a device everything but the picture works.
    ready = device ? GR_D3D_Init(std::move(device)) : true;
  } else {
    ready = GR_D3D_Init();
  }
  if (!ready) return false;
  Log("Background_InitTextures()\n");
  Log("Sprite_InitTextures()\n");
  Log("Font_InitTextures()\n");
  return true;
}

bool PrepareGame() {
  Log("PrepareGame()\n");
  std::string why;
  if (!Script_Prepare(Load().records.startScripts, why)) {
    Error_ShowBox("Failed to compile the scripts.");
    ErrorConsole().Output("%s\n", why.c_str());
    return false;
  }
  BuildEventLists();
  return true;
}

bool DoTheWork(const ContainerView& container) {
  Log("Do The Work\n");
  std::srand(static_cast<unsigned>(Platform_Get().clock->CalendarSeconds()));
  Log("LoadGameData()\n");
  if (!LoadGameData(container, *state.setup.descriptor)) {
    ReleaseConsole().Output("Failed to load the game\n");
    ErrorConsole().Output("%s\n", Load().error.c_str());
    return false;
  }
  Audio_Init(!Options().noAudio && (Load().records.options.flags & container::kOptionNewAudio) != 0);
  if (Options().noExternalCalls) External_DisableCalls();
  if (!PrepareGame()) return false;
  Log("Run_Start\n");
  state.started = true;
  Run_Start();
  if (state.setup.afterStart) state.setup.afterStart();
  return true;
}

// The first page, which every picture needs, decodes while the window and its context are made. The others
// take no memory before something is drawn from them.
void PrefetchFirstPage() {
  if (state.setup.makeDevice || Options().headless) return; // perhaps nothing is ever drawn
  const auto& pages = Load().records.textures;
  if (!pages.empty() && pages[0])
    Texture_Prefetch(pages[0]->data.data(), static_cast<uint32_t>(pages[0]->data.size()));
}

bool StartTheGame() {
  Log("Create Error Form\n");
  DebugConsole().Output(
      "\n***************************************\n*     Kelda Games Runner v%d.%d(%d)[r%d]    *\n"
      "***************************************\t \n",
      1, 0, 999, 32908);
  ContainerView container;
  if (!RunnerLoadGame(container)) return false;
  Loop().startTime = Platform_Get().clock->CalendarSeconds();
  Log("Get Resolution\n");
  const auto codes = static_cast<int32_t>(state.setup.descriptor->codeTable.size());
  if (!Container_PreScan(container, codes, Runner_BuiltinGroups())) {
    Error_ShowBox(Load().error);
    return false;
  }
  Runner_ApplyOptions();
  PrefetchFirstPage();
  Log("Create Window\n");
  if (!Runner_CreateWindow() || !InitialiseGraphics()) return false;
  Log("IO Init\n");
  if (!IO_Init()) return false;
  Log("Process Messages\n");
  ProcessMessages();
  Log("Splash!\n");
  if (!Options().headless) Graphics_Splash((state.workingDirectory + "splash.png").c_str(), &ProcessMessages);
  Log("Start Frame\n");
  BeginFrame();
  Log("Part Create Textures\n");
  Log("Debug Init Remote Interface\n");
  Log("VM Init\n");
  Log("Create Score Form\n");
  Log("Create Load Form\n");
  return DoTheWork(container);
}

// What is left in the queue, a quit message above all, is not for the next game.
void DropMessages() {
  Message message;
  while (Platform_Get().messages->Next(message)) {}
}

// A follow-up game becomes the command line of the next pass.
void ApplyRestart() {
  state.restart = false;
  if (state.nextGame.empty()) return;
  constexpr size_t kLongestLine = 4096; // bytes, the end mark included
  std::string line = "-game \"" + state.nextGame + "\"";
  if (!state.nextExit.empty()) line = "-game \"" + state.nextGame + "\" -exit \"" + state.nextExit + "\"";
  line.resize(std::min(line.size(), kLongestLine - 1));
  state.commandLine = line;
  state.restart = true;
  state.launchedByRestart = true;
  state.savePrefix.clear();
  state.gameName.clear();
}

} // namespace

RunnerState& Runner() { return state; }

void Runner_Begin(RunnerSetup setup) {
  state = RunnerState{};
  state.setup = std::move(setup);
  state.commandLine = state.setup.commandLine;
  state.originalCommandLine = state.commandLine;
  state.startDirectory = Directory_Current();
  state.programDirectory = Path_Folder(Path_Executable());
}

bool Runner_Open() {
  state.restart = false;
  state.headlessDone = false;
  ParseCommandLine();
  InitialiseSubsystems();
  if (!StartTheGame()) {
    if (state.exitCode == 0) state.exitCode = EXIT_FAILURE;
    Loop().running = false;
    return false;
  }
  Platform_Get().window->Focus();
  const int32_t request = Rooms().request;
  if (request == RoomRequestEndGame || request == RoomRequestAbortGame)
    Loop().running = false; // ended in its first room
  return Loop().running;
}

bool Runner_Pass() {
  if (!Loop().running) return false;
  IO_StartFrame();
  Run_Frame();
  ProcessMessages();
  return Loop().running;
}

void Runner_Close() {
  Loop().running = false;
  if (state.started && !state.headlessDone) EndGame();
  state.started = false;
  Input().record.Close();
  Input().playback.Close();
  Profiler_Stop();
  // A game that another one went on with ends quietly, whatever happened in it.
  if (Error().fatalCount > 0 && !state.launchedByRestart) state.exitCode = EXIT_FAILURE;
  ApplyRestart();
  Runner_Shutdown();
  state.container.clear();
  state.debugInformation.clear();
  DropMessages();
}

int Runner_Main(RunnerSetup setup) {
  Runner_Begin(std::move(setup));
  if (state.startDirectory == state.programDirectory) Runner_SweepDirectory(); // never somebody else's files
  do {
    if (Runner_Open())
      while (Runner_Pass()) {}
    Runner_Close();
  } while (state.restart);
  return state.exitCode;
}

} // namespace vesk
