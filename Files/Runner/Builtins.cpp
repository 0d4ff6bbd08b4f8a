#include "Files/Runner/Builtins.h"

#include "Files/Function/Function_Array.h"
#include "Files/Function/Function_Audio.h"
#include "Files/Function/Function_Data_Structures.h"
#include "Files/Function/Function_External.h"
#include "Files/Function/Function_File.h"
#include "Files/Function/Function_Game.h"
#include "Files/Function/Function_Ini.h"
#include "Files/Function/Function_Math.h"
#include "Files/Function/Function_String.h"
#include "Files/Graphics/Registration.h"
#include "Files/IO/Gamepad.h"
#include "Files/IO/IO_Functions.h"
#include "Files/Motion/Function_Motion.h"
#include "Files/Object/Function_Collision.h"
#include "Files/Object/Function_Instance.h"
#include "Files/Path/Function_Path.h"
#include "Files/Room/Function_Room.h"
#include "Files/Room/Function_Tile.h"
#include "Files/Run/Run_Events.h"
#include "Files/Run/SavedGame.h"
#include "Files/Run/Timing.h"
#include "Files/Runner/Function_Runner.h"

namespace vesk {

namespace {

void AddGame() {
  Function_AddEvent();
  Function_AddRunner();
  Function_AddGame();
  Function_AddSavedGame();
}

void AddMath() {
  Function_AddMath();
  Function_AddString();
  Function_AddArray();
}

void AddFile() {
  Function_AddFile();
  Function_AddIni();
  Function_AddExternal();
}

void AddGraphic() {
  Function_AddDraw();
  Function_AddSurface();
  Function_AddFont();
  Function_AddWindow();
  Function_AddTiming();
}

void AddResource() {
  Function_AddSprite();
  Function_AddBackground();
  Function_AddPath();
  Function_AddRoom();
  Function_AddObject();
}

void AddInteraction() {
  Function_AddInput();
  Function_AddInstance();
  Function_AddTile();
  Function_AddMotion();
  Function_AddCollision();
}

void AddGamepad() {
  Function_AddGamepad();
  Gamepad_Init();
}

// A group without a function has no built-in that any game of this runner reaches.
constexpr BuiltinGroup kGroups[] = {
    {"HighScore..", nullptr},
    {"Game..", &AddGame},
    {"Math..", &AddMath},
    {"Graphic..", &AddGraphic},
    {"Action..", nullptr},
    {"File..", &AddFile},
    {"Resource..", &AddResource},
    {"Interaction..", &AddInteraction},
    {"3D..", nullptr},
    {"Particle..", nullptr},
    {"Misc..", nullptr},
    {"DS..", &Function_AddDs},
    {"Sound..", &Function_AddAudio},
    {"Physics..", nullptr},
    {"Gamepad..", &AddGamepad},
    {"Buffers..", nullptr},
    {"Networking..", nullptr},
    {"Shaders..", &Function_AddShader},
    {"Kelda..", nullptr},
};

} // namespace

std::span<const BuiltinGroup> Runner_BuiltinGroups() { return kGroups; }

} // namespace vesk
