#pragma once
// Built-in variables: the constants through which rules read and write them, and the table by name through
// which everything else does.
#include "Files/Code/BuiltinAccess.h"
#include "Files/Code/Code.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vesk {

// clang-format off
#define VESK_FIELD(field) &builtin::Read<&CInstance::field>, &builtin::Write<&CInstance::field>
#define VESK_SETTER(field, setter) &builtin::Read<&CInstance::field>, &builtin::Call<&CInstance::setter>

// ---- of an instance: self[x] ----
inline constexpr BuiltinVariable<&builtin::Read<&CInstance::x>, &builtin::WriteX> x{};
inline constexpr BuiltinVariable<&builtin::Read<&CInstance::y>, &builtin::WriteY> y{};
inline constexpr BuiltinVariable<VESK_FIELD(xPrevious)> xprevious{};
inline constexpr BuiltinVariable<VESK_FIELD(yPrevious)> yprevious{};
inline constexpr BuiltinVariable<VESK_FIELD(xStart)> xstart{};
inline constexpr BuiltinVariable<VESK_FIELD(yStart)> ystart{};
inline constexpr BuiltinVariable<VESK_SETTER(hspeed, SetHspeed)> hspeed{};
inline constexpr BuiltinVariable<VESK_SETTER(vspeed, SetVspeed)> vspeed{};
inline constexpr BuiltinVariable<VESK_SETTER(direction, SetDirection)> direction{};
inline constexpr BuiltinVariable<VESK_SETTER(speed, SetSpeed)> speed{};
inline constexpr BuiltinVariable<VESK_FIELD(friction)> friction{};
inline constexpr BuiltinVariable<VESK_FIELD(gravity)> gravity{};
inline constexpr BuiltinVariable<VESK_FIELD(gravityDirection)> gravity_direction{};
inline constexpr BuiltinVariable<&builtin::Read<&CInstance::objectIndex>, kReadOnly> object_index{};
inline constexpr BuiltinVariable<&builtin::Read<&CInstance::id>, kReadOnly> id{};
inline constexpr IndexedVariable<&builtin::ReadAlarm, &builtin::WriteAlarm> alarm{}; // 0 to 11
inline constexpr BuiltinVariable<VESK_FIELD(solid)> solid{};
inline constexpr BuiltinVariable<VESK_FIELD(visible)> visible{};
inline constexpr BuiltinVariable<VESK_FIELD(persistent)> persistent{};
inline constexpr BuiltinVariable<VESK_SETTER(depth, SetDepth)> depth{};
inline constexpr BuiltinVariable<&builtin::Left, kReadOnly> bbox_left{};
inline constexpr BuiltinVariable<&builtin::Right, kReadOnly> bbox_right{};
inline constexpr BuiltinVariable<&builtin::Top, kReadOnly> bbox_top{};
inline constexpr BuiltinVariable<&builtin::Bottom, kReadOnly> bbox_bottom{};
inline constexpr BuiltinVariable<VESK_SETTER(spriteIndex, SetSpriteIndex)> sprite_index{};
inline constexpr BuiltinVariable<VESK_FIELD(imageIndex)> image_index{};
inline constexpr BuiltinVariable<&builtin::Ask<&CInstance::ImageSingle>, &builtin::Call<&CInstance::SetImageSingle>> image_single{};
inline constexpr BuiltinVariable<&builtin::Ask<&CInstance::ImageNumber>, kReadOnly> image_number{};
inline constexpr BuiltinVariable<&builtin::Ask<&CInstance::SpriteWidth>, kReadOnly> sprite_width{};
inline constexpr BuiltinVariable<&builtin::Ask<&CInstance::SpriteHeight>, kReadOnly> sprite_height{};
inline constexpr BuiltinVariable<&builtin::Ask<&CInstance::SpriteXOffset>, kReadOnly> sprite_xoffset{};
inline constexpr BuiltinVariable<&builtin::Ask<&CInstance::SpriteYOffset>, kReadOnly> sprite_yoffset{};
inline constexpr BuiltinVariable<VESK_SETTER(imageXScale, SetImageXScale)> image_xscale{};
inline constexpr BuiltinVariable<VESK_SETTER(imageYScale, SetImageYScale)> image_yscale{};
inline constexpr BuiltinVariable<VESK_SETTER(imageAngle, SetImageAngle)> image_angle{};
inline constexpr BuiltinVariable<VESK_FIELD(imageAlpha)> image_alpha{};
inline constexpr BuiltinVariable<&builtin::ReadBlend, &builtin::WriteBlend> image_blend{};
inline constexpr BuiltinVariable<VESK_FIELD(imageSpeed)> image_speed{};
inline constexpr BuiltinVariable<VESK_SETTER(maskIndex, SetMaskIndex)> mask_index{};
inline constexpr BuiltinVariable<&builtin::Read<&CInstance::pathIndex>, kReadOnly> path_index{};
inline constexpr BuiltinVariable<&builtin::Read<&CInstance::pathPosition>, &builtin::WriteUnit<&CInstance::pathPosition>> path_position{};
inline constexpr BuiltinVariable<&builtin::Read<&CInstance::pathPositionPrevious>, &builtin::WriteUnit<&CInstance::pathPositionPrevious>> path_positionprevious{};
inline constexpr BuiltinVariable<VESK_FIELD(pathSpeed)> path_speed{};
inline constexpr BuiltinVariable<VESK_FIELD(pathScale)> path_scale{};
inline constexpr BuiltinVariable<VESK_FIELD(pathOrientation)> path_orientation{};
inline constexpr BuiltinVariable<VESK_FIELD(pathEndAction)> path_endaction{};
inline constexpr BuiltinVariable<VESK_FIELD(timelineIndex)> timeline_index{};
inline constexpr BuiltinVariable<VESK_FIELD(timelinePosition)> timeline_position{};
inline constexpr BuiltinVariable<VESK_FIELD(timelineSpeed)> timeline_speed{};
inline constexpr BuiltinVariable<VESK_FIELD(timelineRunning)> timeline_running{};
inline constexpr BuiltinVariable<VESK_FIELD(timelineLoop)> timeline_loop{};
inline constexpr BuiltinVariable<VESK_FIELD(layerId)> layer{};

#undef VESK_FIELD
#undef VESK_SETTER
#define VESK_ROOM(field) &builtin::ReadRoom<&CRoom::field>, &builtin::WriteRoom<&CRoom::field>
#define VESK_VIEW(field) &builtin::ReadView<&ViewSlot::field>, &builtin::WriteView<&ViewSlot::field>
#define VESK_BACKGROUND(field) &builtin::ReadBackground<&BackgroundSlot::field>, &builtin::WriteBackground<&BackgroundSlot::field>

// ---- of the run and the room: room_width, health = 25 ----
inline constexpr RunVariable<&builtin::ReadRoomIndex, &builtin::WriteRoomIndex> room{};
inline constexpr RunVariable<&builtin::ReadGame<&GameVariables::score>, &builtin::WriteGame<&GameVariables::score>> score{};
inline constexpr RunVariable<&builtin::ReadGame<&GameVariables::lives>, &builtin::WriteLives> lives{};
inline constexpr RunVariable<&builtin::ReadGame<&GameVariables::health>, &builtin::WriteHealth> health{};
inline constexpr RunVariable<&builtin::InstanceCount, kReadOnly> instance_count{};
inline constexpr RunVariable<&builtin::ReadRoom<&CRoom::width>, &builtin::WriteRoom<&CRoom::width>> room_width{};
inline constexpr RunVariable<&builtin::ReadRoom<&CRoom::height>, &builtin::WriteRoom<&CRoom::height>> room_height{};
inline constexpr RunVariable<&builtin::ReadRoom<&CRoom::speed>, &builtin::WriteRoomSpeed> room_speed{};
inline constexpr RunVariable<VESK_ROOM(persistent)> room_persistent{};
inline constexpr RunVariable<VESK_ROOM(colour)> background_colour{};
inline constexpr RunVariable<VESK_ROOM(showColour)> background_showcolour{};
inline constexpr RunArray<VESK_BACKGROUND(visible)> background_visible{}; // backgrounds and views: 0 to 7
inline constexpr RunArray<VESK_BACKGROUND(foreground)> background_foreground{};
inline constexpr RunArray<VESK_BACKGROUND(index)> background_index{};
inline constexpr RunArray<VESK_BACKGROUND(x)> background_x{};
inline constexpr RunArray<VESK_BACKGROUND(y)> background_y{};
inline constexpr RunArray<&builtin::BackgroundWidth, kReadOnly> background_width{};
inline constexpr RunArray<&builtin::BackgroundHeight, kReadOnly> background_height{};
inline constexpr RunArray<VESK_BACKGROUND(htiled)> background_htiled{};
inline constexpr RunArray<VESK_BACKGROUND(vtiled)> background_vtiled{};
inline constexpr RunArray<VESK_BACKGROUND(xscale)> background_xscale{};
inline constexpr RunArray<VESK_BACKGROUND(yscale)> background_yscale{};
inline constexpr RunArray<VESK_BACKGROUND(hspeed)> background_hspeed{};
inline constexpr RunArray<VESK_BACKGROUND(vspeed)> background_vspeed{};
inline constexpr RunArray<VESK_BACKGROUND(blend)> background_blend{};
inline constexpr RunArray<VESK_BACKGROUND(alpha)> background_alpha{};
inline constexpr RunVariable<VESK_ROOM(viewsEnabled)> view_enabled{};
inline constexpr RunVariable<&builtin::ViewCurrent, kReadOnly> view_current{};
inline constexpr RunArray<VESK_VIEW(visible)> view_visible{};
inline constexpr RunArray<VESK_VIEW(xview)> view_xview{};
inline constexpr RunArray<VESK_VIEW(yview)> view_yview{};
inline constexpr RunArray<VESK_VIEW(wview)> view_wview{};
inline constexpr RunArray<VESK_VIEW(hview)> view_hview{};
inline constexpr RunArray<VESK_VIEW(xport)> view_xport{};
inline constexpr RunArray<VESK_VIEW(yport)> view_yport{};
inline constexpr RunArray<VESK_VIEW(wport)> view_wport{};
inline constexpr RunArray<VESK_VIEW(hport)> view_hport{};
inline constexpr RunArray<VESK_VIEW(angle)> view_angle{};
inline constexpr RunArray<VESK_VIEW(hborder)> view_hborder{};
inline constexpr RunArray<VESK_VIEW(vborder)> view_vborder{};
inline constexpr RunArray<VESK_VIEW(hspeed)> view_hspeed{};
inline constexpr RunArray<VESK_VIEW(vspeed)> view_vspeed{};
inline constexpr RunArray<VESK_VIEW(object)> view_object{};
inline constexpr RunArray<VESK_VIEW(surface)> view_surface_id{};
inline constexpr RunArray<VESK_VIEW(camera)> view_camera{};
inline constexpr RunVariable<&builtin::MouseX, kReadOnly> mouse_x{};
inline constexpr RunVariable<&builtin::MouseY, kReadOnly> mouse_y{};
inline constexpr RunVariable<&builtin::MouseButton, &builtin::WriteMouseButton> mouse_button{};
inline constexpr RunVariable<&builtin::MouseLastButton, &builtin::WriteMouseLastButton> mouse_lastbutton{};
inline constexpr RunVariable<&builtin::KeyboardKey, &builtin::WriteKeyboardKey> keyboard_key{};
inline constexpr RunVariable<&builtin::KeyboardLastKey, &builtin::WriteKeyboardLastKey> keyboard_lastkey{};
inline constexpr RunText<&builtin::KeyboardLastChar, &builtin::WriteKeyboardLastChar> keyboard_lastchar{};
inline constexpr RunText<&builtin::KeyboardString, &builtin::WriteKeyboardString> keyboard_string{};
inline constexpr RunText<&builtin::WorkingDirectory, kReadOnly> working_directory{};
inline constexpr RunVariable<&builtin::Fps, kReadOnly> fps{};
inline constexpr RunVariable<&builtin::FpsReal, kReadOnly> fps_real{};
inline constexpr RunVariable<&builtin::CurrentTime, kReadOnly> current_time{};
inline constexpr RunVariable<&builtin::DeltaTime, kReadOnly> delta_time{};

#undef VESK_ROOM
#undef VESK_VIEW
#undef VESK_BACKGROUND
// clang-format on

struct Undefined {
  operator RValue() const { return {}; }
};
inline constexpr Undefined undefined{};

// ---- the table by name ----

inline constexpr int32_t kVariableIdBase = 100000;     // id of a script variable: its slot above this
inline constexpr int32_t kFirstScriptVariable = 10000; // ids below are built-in variables
inline constexpr int32_t kBuiltinVariableLimit = 500;

// Both give false when there is nothing to read or write. `instance` may be null: then only variables of the
// run and the room answer.
using VariableGetter = bool (*)(CInstance* instance, int32_t arrayIndex, RValue& out);
using VariableSetter = bool (*)(CInstance* instance, int32_t arrayIndex, const RValue& in);

struct VariableRow {
  const char* name;
  VariableGetter getter;
  VariableSetter setter = nullptr; // null: read only
};
// The three groups in their order.
std::span<const VariableRow> InstanceVariables();
std::span<const VariableRow> GameRoomVariables();
std::span<const VariableRow> SystemVariables();

// Registers all; does nothing the second time.
void BuiltinVariables_Init();
void BuiltinVariables_Reset();
void BuiltinVariables_Add(std::span<const VariableRow> rows);
int32_t BuiltinVariables_Count();
int32_t BuiltinVariables_Find(std::string_view name); // -1 none
const char* BuiltinVariables_Name(int32_t index);
bool BuiltinVariables_CanWrite(int32_t index);

// The two rounds over the descriptor's table: before the data is read, and after.
void Variables_Intern(std::span<VariableEntry> table, int32_t slotCount);
void Variables_Number(std::span<VariableEntry> table);
// The slot of a script variable's name, -1 for an unknown one. After the first round.
int32_t Variable_SlotOf(std::string_view name);
const char* Variable_NameOfSlot(int32_t slot); // "" for an unknown one

// `id` is a built-in's index or kVariableIdBase + slot; `arrayIndex` kNoIndex or as arrays count. False when
// the holder has no slots, no built-in has the id, or it can't be written; `out` is then unchanged.
bool Variable_GetValue(ZqObjectBase* holder, int32_t id, int32_t arrayIndex, RValue& out);
bool Variable_SetValue(ZqObjectBase* holder, int32_t id, int32_t arrayIndex, const RValue& in);

// target.variable, for built-ins by id and for script variables by slot. A read without a target sets
// VariableAccess().readFailed and leaves `out`; a write to an id that is not there is an error report.
bool GetVarOf(int32_t target, int32_t id, int32_t arrayIndex, RValue& out);
bool SetVarOf(int32_t target, int32_t id, int32_t arrayIndex, const RValue& in);
bool GetSlotOf(int32_t target, int32_t slot, int32_t arrayIndex, RValue& out);
bool SetSlotOf(int32_t target, int32_t slot, int32_t arrayIndex, const RValue& in);
struct VariableAccessState {
  bool readFailed = false;
};
VariableAccessState& VariableAccess();

} // namespace vesk
