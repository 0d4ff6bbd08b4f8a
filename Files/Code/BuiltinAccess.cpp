// Built-in variables that do more than read or store a field.
#include "Files/Code/BuiltinAccess.h"

#include "Files/Background/Background.h"
#include "Files/Base/Error.h"
#include "Files/Graphics/DrawScreen.h"
#include "Files/IO/IO_Functions.h"
#include "Files/Run/Run_Events.h"
#include "Files/Run/Run_Frame.h"
#include "Files/Run/Run_FrameBody.h"
#include "Files/Support/Support_Files.h"

#include <cstdio>
#include <utility>

namespace vesk {

namespace {

GameVariables g_game;

CBackground* PictureOf(int index) {
  const CRoom* room = CurrentRoom();
  return room ? Background_Find(room->backgrounds[builtin::ClampIndex(index, kRoomSlots)].index) : nullptr;
}

} // namespace

GameVariables& Game() { return g_game; }
void Game_Reset() { g_game = {}; }

void Game_SetIdentity(uint32_t id, const std::array<uint8_t, 16>& guid, std::string_view displayName,
                      std::string_view projectName) {
  g_game.gameId = static_cast<int32_t>(id);
  g_game.gameGuid.clear();
  char digits[3];
  for (size_t i = 0; i < guid.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) g_game.gameGuid += '-';
    std::snprintf(digits, sizeof digits, "%02x", guid[i]);
    g_game.gameGuid += digits;
  }
  g_game.gameDisplayName = displayName;
  g_game.gameProjectName = projectName;
}

namespace builtin {

double BackgroundWidth(int index) {
  const CBackground* picture = PictureOf(index);
  return picture ? picture->width : 0;
}
double BackgroundHeight(int index) {
  const CBackground* picture = PictureOf(index);
  return picture ? picture->height : 0;
}

void WriteRoomSpeed(double v) {
  // The test rounds, the store truncates: 0.6 passes and leaves 0, which the frame takes as 1.
  if (RoundToInt32(v) < 1)
    ReportError("Trying to set the room speed to a value <= 0.");
  else if (CurrentRoom())
    CurrentRoom()->speed = TruncateToInt32(v);
}

double ReadRoomIndex() { return Rooms().currentIndex; }

void WriteRoomIndex(double v) {
  const int32_t index = RoundToInt32(v);
  const auto& templates = Rooms().templates;
  if (index >= 0 && static_cast<size_t>(index) < templates.size() && templates[static_cast<size_t>(index)]) {
    Rooms().request = index;
  } else {
    ShowError("Unexisting room number: %d", index);
    Rooms().request = RoomRequestAbortGame;
  }
}

double InstanceCount() { return CurrentRoom() ? CurrentRoom()->active.count : 0; }

void WriteLives(double v) {
  const double before = std::exchange(g_game.lives, v);
  if (before >= 1 && v < 1) BroadcastEvent(ev_other, ev_no_more_lives);
}

void WriteHealth(double v) {
  const double before = std::exchange(g_game.health, v);
  if (before > 0 && v <= 0) BroadcastEvent(ev_other, ev_no_more_health);
}

double Fps() { return Run_Fps(); }
double FpsReal() { return Run_FpsReal(); }
double CurrentTime() { return Run_CurrentTime(); }
double DeltaTime() { return static_cast<double>(FrameBody().deltaTime); }
double ViewCurrent() { return Screen().viewCurrent; }
double MouseX() { return IO_MouseX(); }
double MouseY() { return IO_MouseY(); }
double MouseButton() { return IO_GetMouseButton(); }
void WriteMouseButton(double v) { IO_SetMouseButton(RoundToInt32(v)); }
double MouseLastButton() { return IO_GetMouseLastButton(); }
void WriteMouseLastButton(double v) { IO_SetMouseLastButton(RoundToInt32(v)); }
double KeyboardKey() { return IO_GetKeyboardKey(); }
void WriteKeyboardKey(double v) { IO_SetKeyboardKey(RoundToInt32(v)); }
double KeyboardLastKey() { return IO_GetKeyboardLastKey(); }
void WriteKeyboardLastKey(double v) { IO_SetKeyboardLastKey(RoundToInt32(v)); }
std::string KeyboardLastChar() { return IO_GetKeyboardLastChar(); }
void WriteKeyboardLastChar(std::string_view text) { IO_SetKeyboardLastChar(RValue(text)); }
std::string KeyboardString() { return IO_GetKeyboardString(); }
void WriteKeyboardString(std::string_view text) { IO_SetKeyboardString(RValue(text)); }
std::string WorkingDirectory() { return Files_Locations().bundle; }

} // namespace builtin
} // namespace vesk
