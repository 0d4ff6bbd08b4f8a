#pragma once
// What a file of rules starts with: the handles, the variables, the names of objects and assets, and the
// built-ins that rules of every family call.
#include "Files/Background/DrawBackground.h"
#include "Files/Base/Error.h"
#include "Files/Code/BuiltinVariables.h"
#include "Files/Code/Events.h"
#include "Files/Code/Self.h"
#include "Files/Font/Font.h"
#include "Files/Function/Function_Audio.h"
#include "Files/Function/Function_Game.h"
#include "Files/Function/Function_Math.h"
#include "Files/Function/Function_String.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/DrawScreen.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/Shader.h"
#include "Files/Graphics/Surface.h"
#include "Files/IO/IO_Functions.h"
#include "Files/Motion/Function_Motion.h"
#include "Files/Object/Function_Collision.h"
#include "Files/Object/Function_Instance.h"
#include "Files/Room/Function_Room.h"
#include "Files/Room/Function_Tile.h"
#include "Files/Runner/Function_Runner.h"
#include "Files/Sprite/DrawSprite.h"
#include "game/AssetNames.h"
#include "game/EventTable.h"
#include "game/Numbers.h"
#include "game/ObjectNames.h"
#include "game/Variables.h"

namespace vesk {

using namespace var; // rules name variables plainly

// An instance at (x, y), as a handle.
inline Self make(double x, double y, int object) {
  return first(instance_create(static_cast<float>(x), static_cast<float>(y), object));
}

} // namespace vesk
