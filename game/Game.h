#pragma once
// What a file of rules starts with: the handles, the variables, the names of objects and assets, and the built-ins
// that rules of every family call.
#include "Files/Base/Error.h"
#include "Files/Code/BuiltinVariables.h"
#include "Files/Code/Events.h"
#include "Files/Code/Self.h"
#include "Files/Function/Function_Math.h"
#include "Files/Function/Function_Random.h"
#include "Files/Function/Function_String.h"
#include "Files/Graphics/Function_Draw.h"
#include "Files/IO/Function_Keyboard.h"
#include "Files/Motion/Function_Motion.h"
#include "Files/Object/Function_Collision.h"
#include "Files/Object/Function_Instance.h"
#include "Files/Room/Function_Room.h"
#include "Files/Room/Function_Tile.h"
#include "Files/Sound/Function_Audio.h"
#include "game/AssetNames.h"
#include "game/EventTable.h"
#include "game/ObjectNames.h"
#include "game/Variables.h"

namespace vesk {

using namespace var; // rules name variables plainly

// Colours as scripts have them: red in the low byte.
inline constexpr int c_white = 0xFFFFFF;
inline constexpr int c_black = 0;
inline constexpr int c_red = 255;

// An instance at (x, y), as a handle.
inline Self make(double x, double y, int object) {
  return first(instance_create(static_cast<float>(x), static_cast<float>(y), object));
}

} // namespace vesk
