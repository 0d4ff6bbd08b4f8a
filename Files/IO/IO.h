#pragma once
// Input as a frame sees it. Messages of the window fill the pending set at any moment; IO_Update empties it
// once a frame into the visible set, which alone is read by events and built-ins. Game thread only.
#include "Platform/Files.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace vesk {

inline constexpr int kKeys = 256;
inline constexpr int kMouseDevices = 10;
inline constexpr int kMouseButtons = 3;
inline constexpr int kPointers = 128;
inline constexpr int kVirtualKeys = 128;
inline constexpr int kKeyboardString = 1025; // UTF-16 units, the end mark included

enum VirtualKeyCode : int32_t { // the codes that rules and passes name; letters and digits are their ASCII
                                // codes
  vk_nokey = 0,
  vk_anykey = 1,
  vk_backspace = 8,
  vk_tab = 9,
  vk_enter = 13,
  vk_return = 13,
  vk_shift = 16,
  vk_control = 17,
  vk_alt = 18,
  vk_pause = 19,
  vk_escape = 27,
  vk_space = 32,
  vk_pageup = 33,
  vk_pagedown = 34,
  vk_end = 35,
  vk_home = 36,
  vk_left = 37,
  vk_up = 38,
  vk_right = 39,
  vk_down = 40,
  vk_printscreen = 44,
  vk_insert = 45,
  vk_delete = 46,
  vk_numpad0 = 96, // to vk_numpad9
  vk_numpad1,
  vk_numpad2,
  vk_numpad3,
  vk_numpad4,
  vk_numpad5,
  vk_numpad6,
  vk_numpad7,
  vk_numpad8,
  vk_numpad9,
  vk_multiply = 106,
  vk_add = 107,
  vk_subtract = 109,
  vk_decimal = 110,
  vk_divide = 111,
  vk_f1 = 112, // to vk_f12
  vk_f2,
  vk_f3,
  vk_f4,
  vk_f5,
  vk_f6,
  vk_f7,
  vk_f8,
  vk_f9,
  vk_f10,
  vk_f11,
  vk_f12,
  vk_numlock = 144,
  vk_lshift = 160,
  vk_rshift = 161,
  vk_lcontrol = 162,
  vk_rcontrol = 163,
  vk_lalt = 164,
  vk_ralt = 165,
};

enum MouseButtonCode : int32_t { mb_any = -1, mb_none = 0, mb_left = 1, mb_right = 2, mb_middle = 3 };

struct KeyTables {
  std::array<uint8_t, kKeys> down{};     // held
  std::array<uint8_t, kKeys> pressed{};  // went down since the last transfer
  std::array<uint8_t, kKeys> released{}; // went up since the last transfer
  int32_t key = 0;                       // keyboard_key: counts as held; 0 none
  int32_t lastKey = 0;
  char16_t lastChar = 0;
  std::array<char16_t, kKeyboardString> text{}; // keyboard_string, zero at the end
};

struct MouseTables { // the tables are indexed by button less 1
  std::array<uint8_t, kMouseButtons> down{};
  std::array<uint8_t, kMouseButtons> pressed{};
  std::array<uint8_t, kMouseButtons> released{};
  int32_t button = 0;
  int32_t lastButton = 0;
  uint8_t wheelUp = 0;
  uint8_t wheelDown = 0;
  int32_t x = 0; // client pixels
  int32_t y = 0;
};

inline constexpr uint32_t kPointerTouches = 0x80000000;

struct Pointer {
  uint32_t state = 0; // top bit: touching
  int32_t x = 0;      // client pixels
  int32_t y = 0;
  int32_t reserved = 0;
  int32_t extra = 0;
};

struct VirtualKey {
  uint16_t inUse = 0;
  uint16_t slot = 0;
  int32_t left = 0, top = 0, right = 0, bottom = 0; // display pixels, both ends inside
  int32_t sprite = -1;
  uint32_t colour = 0xFFFFFF;
  float alpha = 1;
  bool shown = false;
  int32_t key = 0;    // key code
  int32_t button = 0; // mouse button; 0 none
};

struct InputState {
  KeyTables keys; // visible
  KeyTables pendingKeys;
  int32_t previousKey = 0; // keyboard_key before the last key-down
  int32_t textLength = 0;  // units of keyboard_string, shared by both sets
  std::array<int32_t, kKeys> keyMap{};

  std::array<MouseTables, kMouseDevices> mice; // visible; device 0 is the mouse
  MouseTables pendingMouse;
  int32_t heldButtons = 0; // decides on the capture
  int32_t cursorX = 0;     // desktop pixels at the last transfer
  int32_t cursorY = 0;
  bool transferred = false;

  std::array<Pointer, kPointers> pointers;
  std::array<Pointer, kPointers> previousPointers;
  std::vector<VirtualKey> virtualKeys;
  std::array<bool, kVirtualKeys> touchedKeys{};

  CFile record;   // open while input is recorded
  CFile playback; // open while a record is played
};
InputState& Input();

// Opens the record or playback file named on the command line. False, with the reason reported, when one
// can't be opened.
bool IO_Init();
void IO_StartFrame();
void IO_Update();
void IO_Clear(); // everything but the key map and the position
void IO_Quit();
void IO_Reset();

// "<Left>", "A-key": how messages name a key.
std::string IO_KeyName(int32_t key);

// Positions in the room, and the plain conversion behind them.
struct RoomPoint {
  double x = 0;
  double y = 0;
};
RoomPoint IO_MouseInRoom(int32_t device); // (0, 0) for an unknown device

inline constexpr int kRecordSize = 3034; // bytes of one frame in an input record

} // namespace vesk
