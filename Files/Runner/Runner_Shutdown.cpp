// Closing of all areas, in one list.
#include "Files/Background/Background.h"
#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Code/BuiltinAccess.h"
#include "Files/Code/BuiltinVariables.h"
#include "Files/Code/Code.h"
#include "Files/Code/Slots.h"
#include "Files/Code/Value.h"
#include "Files/Font/Font.h"
#include "Files/Function/Function.h"
#include "Files/Function/Function_External.h"
#include "Files/Function/Function_File.h"
#include "Files/Function/Function_Ini.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/Shader.h"
#include "Files/Graphics/Surface.h"
#include "Files/Graphics/Texture.h"
#include "Files/IO/Gamepad.h"
#include "Files/IO/IO.h"
#include "Files/Object/Collision.h"
#include "Files/Object/CollisionIndex.h"
#include "Files/Object/Object.h"
#include "Files/Path/Path.h"
#include "Files/Room/Room.h"
#include "Files/Run/Profiler.h"
#include "Files/Run/Run_Events.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Run/Run_FrameBody.h"
#include "Files/Run/SavedGame.h"
#include "Files/Run/Timing.h"
#include "Files/Runner/CommandLine.h"
#include "Files/Runner/Load.h"
#include "Files/Runner/Runner.h"
#include "Files/Script/Script.h"
#include "Files/Sound/Audio_Main.h"
#include "Files/Sprite/Sprite.h"
#include "Files/Support/FileBridge.h"
#include "Files/Support/Support_Data_Structures.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Platform.h"

namespace vesk {

namespace {

struct AreaRow {
  const char* name;
  void (*close)();
};

// Instances go before the objects, sprites and slots that they stand on; the data's bytes are put back in
// order before anything lets go of them.
constexpr AreaRow kAreas[] = {
    {"event lists", &Run_ResetEvents},
    {"frame body", &Run_ResetFrameBody},
    {"saved game", &SavedGame_Reset},
    {"data structures", &Ds_Reset},
    {"sounds", &Audio_Quit},
    {"built-in functions", &Function_Reset},
    {"collision index", &CollisionIndex_Reset},
    {"rooms", &Room_Reset},
    {"objects", &Object_Reset},
    {"global object", &GlobalObject_Reset},
    {"values", &Value_Reset},
    {"code", &Code_Reset},
    {"variables", &BuiltinVariables_Reset},
    {"sprites", &Sprite_Reset},
    {"scripts", &Script_Reset},
    {"input", &IO_Reset},
    {"backgrounds", &Background_Reset},
    {"fonts", &Font_Reset},
    {"paths", &Path_Reset},
    {"shaders", &Shader_Reset},
    {"surfaces", &Surface_Reset},
    {"textures", &Texture_Reset},
    {"game variables", &Game_Reset},
    {"profiler", &Profiler_Reset},
    {"display", &Graphics_Reset},
    {"container", &Load_Reset},
    {"text files", &File_Reset},
    {"INI file", &Ini_Reset},
    {"external functions", &External_Reset},
    {"file library", &FileBridge_Reset},
    {"locations", &Files_ResetLocations},
    {"waits", &Timing_Reset},
    {"loop", &Loop_Reset},
    {"errors", &Error_Reset},
};

} // namespace

void Runner_Shutdown() {
  for (const AreaRow& area : kAreas) {
    DebugConsole().Output("Close %s\n", area.name);
    area.close();
  }
  Platform_Get().window->Destroy();
}

} // namespace vesk
