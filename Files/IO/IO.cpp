#include "Files/IO/IO.h"

#include "Files/Base/Console.h"
#include "Files/IO/Gamepad.h"
#include "Files/IO/IO_Record.h"
#include "Files/IO/VirtualKeys.h"
#include "Files/Runner/CommandLine.h"
#include "Platform/Platform.h"

#include <algorithm>

namespace vesk {

namespace {

InputState state;

void CopyText(const KeyTables& from, KeyTables& to) { to.text = from.text; }

void ClearKeys(KeyTables& keys) { keys = KeyTables{}; }

// Position and device stay.
void ClearMouse(MouseTables& mouse) {
  const int32_t x = mouse.x, y = mouse.y;
  mouse = MouseTables{};
  mouse.x = x;
  mouse.y = y;
}

// A press or release can be missed by the window when both shift keys are used together, so their sides are
// asked for.
void PollShift(int32_t code) {
  const auto at = static_cast<size_t>(code);
  KeyTables& pending = state.pendingKeys;
  const bool held = Platform_Get().messages->KeyHeld(code);
  pending.down[at] = held;
  pending.pressed[at] = held && state.keys.down[at] != 1;
  pending.released[at] = !held && state.keys.down[at] != 0;
}

void TransferKeys() {
  KeyTables& visible = state.keys;
  KeyTables& pending = state.pendingKeys;
  CopyText(pending, visible);
  visible.key = pending.key;
  visible.lastKey = pending.lastKey;
  visible.lastChar = pending.lastChar;
  visible.down = pending.down;
  for (size_t key = 0; key < kKeys; ++key) {
    if (pending.pressed[key]) visible.pressed[key] = 1;
    if (pending.released[key]) visible.released[key] = 1;
  }
  pending.pressed.fill(0);
  pending.released.fill(0);
}

void TransferMouse() {
  MouseTables& visible = state.mice[0];
  MouseTables& pending = state.pendingMouse;
  visible.button = pending.button;
  visible.lastButton = pending.lastButton;
  visible.down = pending.down;
  visible.wheelUp = pending.wheelUp;
  visible.wheelDown = pending.wheelDown;
  for (size_t button = 0; button < kMouseButtons; ++button) {
    if (pending.pressed[button]) visible.pressed[button] = 1;
    if (pending.released[button]) visible.released[button] = 1;
  }
  pending.pressed.fill(0);
  pending.released.fill(0);
  pending.wheelUp = 0;
  pending.wheelDown = 0;
}

void Transfer() {
  if (!state.transferred) {
    state.transferred = true;
    state.pendingKeys = state.keys;
    const MouseTables reported = state.pendingMouse;
    state.pendingMouse = state.mice[0];
    state.pendingMouse.x = reported.x;
    state.pendingMouse.y = reported.y;
  }
  Platform_Get().window->CursorPosition(state.cursorX, state.cursorY);
  state.mice[0].x = state.pendingMouse.x;
  state.mice[0].y = state.pendingMouse.y;
  state.pointers[0].x = state.pendingMouse.x;
  state.pointers[0].y = state.pendingMouse.y;
  PollShift(vk_lshift);
  PollShift(vk_rshift);
  TransferKeys();
  TransferMouse();
}

bool OpenRecords() {
  const CommandLine& options = Options();
  state.record.Close();
  state.playback.Close();
  std::string why;
  if (!options.playback.empty()) {
    if (state.playback.Open(options.playback, "rb", &why)) return true;
    ErrorConsole().Output("Input playback: %s\n", why.c_str());
    return false;
  }
  if (options.record.empty() || state.record.Open(options.record, "w+b", &why)) return true;
  ErrorConsole().Output("Input record: %s\n", why.c_str());
  return false;
}

} // namespace

InputState& Input() { return state; }

bool IO_Init() {
  state.pointers.fill(Pointer{});
  state.previousPointers.fill(Pointer{});
  IO_Clear();
  for (int32_t key = 0; key < kKeys; ++key) state.keyMap[static_cast<size_t>(key)] = key;
  VirtualKeys_Init();
  return OpenRecords();
}

void IO_StartFrame() { state.previousPointers = state.pointers; }

void IO_Update() {
  state.keys.pressed.fill(0);
  state.keys.released.fill(0);
  for (MouseTables& mouse : state.mice) {
    mouse.wheelUp = 0;
    mouse.wheelDown = 0;
    mouse.pressed.fill(0);
    mouse.released.fill(0);
  }
  if (state.playback.IsOpen()) {
    IO_ReadRecord();
  } else {
    Transfer();
    Gamepad_Poll();
    VirtualKeys_Update();
  }
  if (state.record.IsOpen()) IO_WriteRecord();
}

void IO_Clear() {
  ClearKeys(state.keys);
  ClearKeys(state.pendingKeys);
  state.textLength = 0;
  state.previousKey = 0;
  ClearMouse(state.mice[0]);
  ClearMouse(state.pendingMouse);
}

void IO_Quit() {
  state.record.Close();
  state.playback.Close();
  state.virtualKeys.clear();
  Gamepad_Reset();
}

void IO_Reset() {
  IO_Quit();
  state = InputState{};
  for (int32_t key = 0; key < kKeys; ++key) state.keyMap[static_cast<size_t>(key)] = key;
}

std::string IO_KeyName(int32_t key) {
  struct Row {
    int32_t key;
    const char* name;
  };
  static constexpr Row kNames[] = {
      {vk_nokey, "<no key>"},  {vk_anykey, "<any key>"},  {vk_backspace, "<Backspace>"},
      {vk_tab, "<Tab>"},       {vk_enter, "<Enter>"},     {vk_shift, "<Shift>"},
      {vk_control, "<Ctrl>"},  {vk_alt, "<Alt>"},         {vk_escape, "<Escape>"},
      {vk_space, "<Space>"},   {vk_pageup, "<Page Up>"},  {vk_pagedown, "<Page Down>"},
      {vk_end, "<End>"},       {vk_home, "<Home>"},       {vk_left, "<Left>"},
      {vk_up, "<Up>"},         {vk_right, "<Right>"},     {vk_down, "<Down>"},
      {vk_insert, "<Insert>"}, {vk_delete, "<Delete>"},   {vk_multiply, "Keypad *"},
      {vk_add, "Keypad +"},    {vk_subtract, "Keypad -"}, {vk_decimal, "Keypad ."},
      {vk_divide, "Keypad /"},
  };
  for (const Row& row : kNames)
    if (row.key == key) return row.name;
  if ((key >= '0' && key <= '9') || (key >= 'A' && key <= 'Z')) return FormatText("%c-key", key);
  if (key >= vk_numpad0 && key <= vk_numpad9) return FormatText("Keypad-%d", key - vk_numpad0);
  return "<unknown>";
}

} // namespace vesk
