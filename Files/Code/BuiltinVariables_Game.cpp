// The built-in variables of the room, the game and the system, in their order.
#include "Files/Base/Error.h"
#include "Files/Code/VariableRows.h"
#include "Files/Graphics/DrawScreen.h"
#include "Files/Run/Run_Events.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"
#include "Platform/Platform.h"

#include <ctime>
#include <utility>

namespace vesk {

using rows::Row;

namespace {

constexpr int kArgumentCount = 16;
constexpr int32_t kOsLinux = 6;

bool GetArgument(CInstance*, int32_t index, RValue& out) {
  const RValue* arguments = Code().arguments;
  if (!arguments) {
    out.SetUndefined();
    return false;
  }
  out = arguments[builtin::ClampIndex(index, kArgumentCount)];
  return true;
}
bool SetArgument(CInstance*, int32_t index, const RValue& in) {
  RValue* arguments = Code().arguments;
  if (!arguments) return false;
  arguments[builtin::ClampIndex(index, kArgumentCount)] = in;
  return true;
}
template <int N> bool GetArgumentNumber(CInstance* instance, int32_t, RValue& out) {
  return GetArgument(instance, N, out);
}
template <int N> bool SetArgumentNumber(CInstance* instance, int32_t, const RValue& in) {
  return SetArgument(instance, N, in);
}
double ArgumentCount() { return Code().argumentCount; }

template <int64_t Address> bool GetPointer(CInstance*, int32_t, RValue& out) {
  out.SetUndefined();
  out.int64 = Address;
  out.kind = kPtr;
  return true;
}
bool GetUndefined(CInstance*, int32_t, RValue& out) {
  out.SetUndefined();
  return true;
}

double RoomFirst() { return Rooms().order.empty() ? -1 : Rooms().order.front(); }
double RoomLast() { return Rooms().order.empty() ? -1 : Rooms().order.back(); }

bool GetInstanceId(CInstance*, int32_t index, RValue& out) {
  const CRoom* room = CurrentRoom();
  CInstance* it = room ? room->active.head : nullptr;
  for (int32_t i = 0; it && i < index; ++i) it = it->next;
  out.SetReal(it ? it->id : noone);
  return true;
}

std::string RoomCaption() { return CurrentRoom() ? CurrentRoom()->caption : std::string(); }
void WriteRoomCaption(std::string_view text) {
  if (CurrentRoom()) CurrentRoom()->caption = text;
}

template <auto Field> std::string GameText() { return Game().*Field; }
template <auto Field> void WriteGameText(std::string_view text) { Game().*Field = text; }

std::string SaveArea() { return Files_Locations().saveArea; }

double EventType() { return Run().event.type; }
double EventNumber() { return Run().event.number; }
double EventObject() { return Run().event.object; }
double ErrorOccurred() { return Error().occurred; }
void WriteErrorOccurred(double v) { Error().occurred = v > 0.5; }
std::string ErrorLast() { return Error().last; }
void WriteErrorLast(std::string_view text) { Error().last = text; }
double CursorSprite() { return Screen().cursorSprite; }
void WriteCursorSprite(double v) { Screen().cursorSprite = RoundToInt32(v); }

// A part of the calendar date and time of now, in local time.
template <auto Part, int Add = 0> double Now() {
  const std::time_t seconds = Platform_Get().clock->CalendarSeconds();
  std::tm parts{};
  localtime_r(&seconds, &parts);
  return parts.*Part + Add;
}

template <auto Get, auto Set = kReadOnly> constexpr VariableRow Number(const char* name) {
  return Row(name, RunVariable<Get, Set>{});
}
template <auto Get, auto Set = kReadOnly> constexpr VariableRow Text(const char* name) {
  return Row(name, RunText<Get, Set>{});
}
template <auto Field> constexpr VariableRow GameNumber(const char* name) {
  return Number<&builtin::ReadGame<Field>, &builtin::WriteGame<Field>>(name);
}
template <auto Field> constexpr VariableRow Caption(const char* name) {
  return Text<&GameText<Field>, &WriteGameText<Field>>(name);
}

#define VESK_ROW(name) Row(#name, name)
#define VESK_ARGUMENT(n)                                                                                     \
  { "argument" #n, GetArgumentNumber<n>, SetArgumentNumber<n> }

constexpr VariableRow kRows[] = {
    {"argument_relative", rows::GetConstant<0>},
    {"argument", GetArgument, SetArgument},
    VESK_ARGUMENT(0),
    VESK_ARGUMENT(1),
    VESK_ARGUMENT(2),
    VESK_ARGUMENT(3),
    VESK_ARGUMENT(4),
    VESK_ARGUMENT(5),
    VESK_ARGUMENT(6),
    VESK_ARGUMENT(7),
    VESK_ARGUMENT(8),
    VESK_ARGUMENT(9),
    VESK_ARGUMENT(10),
    VESK_ARGUMENT(11),
    VESK_ARGUMENT(12),
    VESK_ARGUMENT(13),
    VESK_ARGUMENT(14),
    VESK_ARGUMENT(15),
    Number<&ArgumentCount>("argument_count"),
    Number<&builtin::ReadGame<&GameVariables::debugMode>>("debug_mode"),
    {"pointer_invalid", GetPointer<-1>},
    {"pointer_null", GetPointer<0>},
    {"undefined", GetUndefined},
    VESK_ROW(room),
    Number<&RoomFirst>("room_first"),
    Number<&RoomLast>("room_last"),
    GameNumber<&GameVariables::transitionKind>("transition_kind"),
    GameNumber<&GameVariables::transitionSteps>("transition_steps"),
    VESK_ROW(score),
    VESK_ROW(lives),
    VESK_ROW(health),
    Number<&builtin::ReadGame<&GameVariables::gameId>>("game_id"),
    Text<&GameText<&GameVariables::gameGuid>>("game_guid"),
    Text<&GameText<&GameVariables::gameDisplayName>>("game_display_name"),
    Text<&GameText<&GameVariables::gameProjectName>>("game_project_name"),
    Text<&SaveArea>("game_save_id"),
    VESK_ROW(working_directory),
    Text<&Directory_Temporary>("temp_directory"),
    Text<&builtin::WorkingDirectory>("program_directory"),
    VESK_ROW(instance_count),
    {"instance_id", GetInstanceId},
    VESK_ROW(room_width),
    VESK_ROW(room_height),
    Text<&RoomCaption, &WriteRoomCaption>("room_caption"),
    VESK_ROW(room_speed),
    VESK_ROW(room_persistent),
    Row("background_color", background_colour),
    Row("background_showcolor", background_showcolour),
    VESK_ROW(background_colour),
    VESK_ROW(background_showcolour),
    VESK_ROW(background_visible),
    VESK_ROW(background_foreground),
    VESK_ROW(background_index),
    VESK_ROW(background_x),
    VESK_ROW(background_y),
    VESK_ROW(background_width),
    VESK_ROW(background_height),
    VESK_ROW(background_htiled),
    VESK_ROW(background_vtiled),
    VESK_ROW(background_xscale),
    VESK_ROW(background_yscale),
    VESK_ROW(background_hspeed),
    VESK_ROW(background_vspeed),
    VESK_ROW(background_blend),
    VESK_ROW(background_alpha),
    VESK_ROW(view_enabled),
    VESK_ROW(view_current),
    VESK_ROW(view_visible),
    VESK_ROW(view_xview),
    VESK_ROW(view_yview),
    VESK_ROW(view_wview),
    VESK_ROW(view_hview),
    VESK_ROW(view_xport),
    VESK_ROW(view_yport),
    VESK_ROW(view_wport),
    VESK_ROW(view_hport),
    VESK_ROW(view_angle),
    VESK_ROW(view_hborder),
    VESK_ROW(view_vborder),
    VESK_ROW(view_hspeed),
    VESK_ROW(view_vspeed),
    VESK_ROW(view_object),
    VESK_ROW(view_surface_id),
    VESK_ROW(view_camera),
    VESK_ROW(mouse_x),
    VESK_ROW(mouse_y),
    VESK_ROW(mouse_button),
    VESK_ROW(mouse_lastbutton),
    VESK_ROW(keyboard_key),
    VESK_ROW(keyboard_lastkey),
    VESK_ROW(keyboard_lastchar),
    VESK_ROW(keyboard_string),
    Number<&CursorSprite, &WriteCursorSprite>("cursor_sprite"),
    GameNumber<&GameVariables::showScore>("show_score"),
    GameNumber<&GameVariables::showLives>("show_lives"),
    GameNumber<&GameVariables::showHealth>("show_health"),
    Caption<&GameVariables::captionScore>("caption_score"),
    Caption<&GameVariables::captionLives>("caption_lives"),
    Caption<&GameVariables::captionHealth>("caption_health"),
    VESK_ROW(fps),
    VESK_ROW(fps_real),
    VESK_ROW(current_time),
    Number<&Now<&std::tm::tm_year, 1900>>("current_year"),
    Number<&Now<&std::tm::tm_mon, 1>>("current_month"),
    Number<&Now<&std::tm::tm_mday>>("current_day"),
    Number<&Now<&std::tm::tm_wday>>("current_weekday"),
    Number<&Now<&std::tm::tm_hour>>("current_hour"),
    Number<&Now<&std::tm::tm_min>>("current_minute"),
    Number<&Now<&std::tm::tm_sec>>("current_second"),
    Number<&EventType>("event_type"),
    Number<&EventNumber>("event_number"),
    Number<&EventObject>("event_object"),
    {"event_action", rows::GetConstant<0>},
    {"secure_mode", rows::GetConstant<0>},
    Number<&ErrorOccurred, &WriteErrorOccurred>("error_occurred"),
    Text<&ErrorLast, &WriteErrorLast>("error_last"),
    Number<&application_surface>("application_surface"),
    GameNumber<&GameVariables::fontTexturePageSize>("font_texture_page_size"),
};

constexpr VariableRow kSystemRows[] = {
    {"os_type", rows::GetConstant<kOsLinux>}, {"os_device", rows::GetConstant<-1>},
    {"os_version", rows::GetConstant<0>},     {"os_browser", rows::GetConstant<-1>},
    {"browser_width", rows::GetConstant<0>},  {"browser_height", rows::GetConstant<0>},
};

#undef VESK_ROW
#undef VESK_ARGUMENT

} // namespace

std::span<const VariableRow> GameRoomVariables() { return kRows; }
std::span<const VariableRow> SystemVariables() { return kSystemRows; }

} // namespace vesk
