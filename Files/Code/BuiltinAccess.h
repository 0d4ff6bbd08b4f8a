#pragma once
// How built-in variables reach the fields behind them: one template for each kind of place, and the functions
// of those that do more than read or store.
#include "Files/Code/Self.h"
#include "Files/Object/Instance.h"
#include "Files/Room/Room.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace vesk {

// What belongs to the game as a whole and to no other area.
struct GameVariables {
  double score = 0;
  double lives = -1;
  double health = 100;
  bool showScore = true, showLives = false, showHealth = false;
  std::string captionScore = "Score: '", captionLives = "Lives: ", captionHealth = "Health: ";
  int32_t transitionKind = 0, transitionSteps = 80;
  int32_t fontTexturePageSize = 1024;
  bool debugMode = false;
  // From the header of the container.
  int32_t gameId = 0;
  std::string gameGuid = "00000000-0000-0000-0000-000000000000";
  std::string gameDisplayName, gameProjectName;
};
GameVariables& Game();
void Game_Reset();
// What the container says of the game.
void Game_SetIdentity(uint32_t id, const std::array<uint8_t, 16>& guid, std::string_view displayName,
                      std::string_view projectName);

namespace builtin {

// A number as a field stores it: whole numbers are rounded to nearest, ties to even; flags are set by any
// number that doesn't round to 0.
template <class Field> Field Stored(double value) {
  if constexpr (std::is_same_v<Field, bool>)
    return std::rint(value) != 0;
  else if constexpr (std::is_same_v<Field, uint32_t>)
    return static_cast<uint32_t>(TruncateToInt64(std::rint(value)));
  else if constexpr (std::is_integral_v<Field>)
    return RoundToInt32(value);
  else
    return static_cast<Field>(value);
}
// The slot that an index means: 0 for one that is out of range.
constexpr size_t ClampIndex(int index, int count) {
  return index >= 0 && index < count ? static_cast<size_t>(index) : 0;
}

// ---- fields and setters of an instance ----

template <class> struct MemberOf;
template <class Owner, class Field> struct MemberOf<Field Owner::*> { using Type = Field; };
template <class> struct ParameterOf;
template <class Owner, class Parameter> struct ParameterOf<void (Owner::*)(Parameter)> {
  using Type = Parameter;
};

template <auto Field> double Read(CInstance& i) { return static_cast<double>(i.*Field); }
template <auto Field> void Write(CInstance& i, double v) {
  i.*Field = Stored<typename MemberOf<decltype(Field)>::Type>(v);
}
template <auto Method> double Ask(CInstance& i) { return static_cast<double>((i.*Method)()); }
template <auto Method> void Call(CInstance& i, double v) {
  (i.*Method)(Stored<typename ParameterOf<decltype(Method)>::Type>(v));
}
// A position between the ends of a path.
template <auto Field> void WriteUnit(CInstance& i, double v) {
  i.*Field = static_cast<float>(v < 0 ? 0 : v > 1 ? 1 : v);
}

inline void WriteX(CInstance& i, double v) { i.SetPosition(static_cast<float>(v), i.y); }
inline void WriteY(CInstance& i, double v) { i.SetPosition(i.x, static_cast<float>(v)); }
inline double Left(CInstance& i) { return i.Bounds().left; }
inline double Top(CInstance& i) { return i.Bounds().top; }
inline double Right(CInstance& i) { return i.Bounds().right; }
inline double Bottom(CInstance& i) { return i.Bounds().bottom; }
inline double ReadAlarm(CInstance& i, int index) { return i.alarm[ClampIndex(index, kAlarmCount)]; }
inline void WriteAlarm(CInstance& i, int index, double v) {
  i.alarm[ClampIndex(index, kAlarmCount)] = RoundToInt32(v);
}
constexpr uint32_t SwapRedAndBlue(uint32_t colour) {
  return (colour & 0xFF00FF00) | (colour & 0xFF) << 16 | (colour >> 16 & 0xFF);
}
inline double ReadBlend(CInstance& i) { return SwapRedAndBlue(i.imageBlend); }
inline void WriteBlend(CInstance& i, double v) { i.imageBlend = SwapRedAndBlue(Stored<uint32_t>(v)); }

// ---- the current room; without one they read 0 and writes are lost ----

template <auto Field> double ReadRoom() {
  const CRoom* room = CurrentRoom();
  return room ? static_cast<double>(room->*Field) : 0;
}
template <auto Field> void WriteRoom(double v) {
  if (CRoom* room = CurrentRoom()) room->*Field = Stored<typename MemberOf<decltype(Field)>::Type>(v);
}
template <auto Field> double ReadView(int index) {
  const CRoom* room = CurrentRoom();
  return room ? static_cast<double>(room->views[ClampIndex(index, kRoomSlots)].*Field) : 0;
}
template <auto Field> void WriteView(int index, double v) {
  if (CRoom* room = CurrentRoom())
    room->views[ClampIndex(index, kRoomSlots)].*Field = Stored<typename MemberOf<decltype(Field)>::Type>(v);
}
template <auto Field> double ReadBackground(int index) {
  const CRoom* room = CurrentRoom();
  return room ? static_cast<double>(room->backgrounds[ClampIndex(index, kRoomSlots)].*Field) : 0;
}
template <auto Field> void WriteBackground(int index, double v) {
  if (CRoom* room = CurrentRoom())
    room->backgrounds[ClampIndex(index, kRoomSlots)].*Field =
        Stored<typename MemberOf<decltype(Field)>::Type>(v);
}
double BackgroundWidth(int index); // pixels of the slot's picture, 0 without one
double BackgroundHeight(int index);
void WriteRoomSpeed(double v); // below 1 is an error report and changes nothing
double ReadRoomIndex();
void WriteRoomIndex(double v); // asks for the room, as room_goto
double InstanceCount();        // of the current room, active ones

// ---- the game ----

template <auto Field> double ReadGame() { return static_cast<double>(Game().*Field); }
template <auto Field> void WriteGame(double v) {
  Game().*Field = Stored<typename MemberOf<decltype(Field)>::Type>(v);
}
void WriteLives(double v);  // from 1 or more to below 1: the event of no more lives
void WriteHealth(double v); // from above 0 to 0 or below: the event of no more health

// ---- what other areas keep ----

double Fps();
double FpsReal();
double CurrentTime(); // milliseconds since the start
double DeltaTime();   // microseconds of the last step
double ViewCurrent();
double MouseX(); // room pixels
double MouseY();
double MouseButton();
void WriteMouseButton(double v);
double MouseLastButton();
void WriteMouseLastButton(double v);
double KeyboardKey();
void WriteKeyboardKey(double v);
double KeyboardLastKey();
void WriteKeyboardLastKey(double v);
std::string KeyboardLastChar();
void WriteKeyboardLastChar(std::string_view text);
std::string KeyboardString();
void WriteKeyboardString(std::string_view text);
std::string WorkingDirectory(); // ends in a separator

} // namespace builtin
} // namespace vesk
