#include "Platform/Sdl/Sdl.h"

namespace vesk {

namespace {

struct ScanRow {
  SDL_Scancode scan;
  int key;
};

// Keys that stand for themselves on every layout.
constexpr ScanRow kScans[] = {
    {SDL_SCANCODE_BACKSPACE, 8},      {SDL_SCANCODE_TAB, 9},          {SDL_SCANCODE_CLEAR, 12},
    {SDL_SCANCODE_RETURN, 13},        {SDL_SCANCODE_KP_ENTER, 13},    {SDL_SCANCODE_LSHIFT, 160},
    {SDL_SCANCODE_RSHIFT, 161},       {SDL_SCANCODE_LCTRL, 162},      {SDL_SCANCODE_RCTRL, 163},
    {SDL_SCANCODE_LALT, 164},         {SDL_SCANCODE_RALT, 165},       {SDL_SCANCODE_PAUSE, 19},
    {SDL_SCANCODE_CAPSLOCK, 20},      {SDL_SCANCODE_ESCAPE, 27},      {SDL_SCANCODE_SPACE, 32},
    {SDL_SCANCODE_PAGEUP, 33},        {SDL_SCANCODE_PAGEDOWN, 34},    {SDL_SCANCODE_END, 35},
    {SDL_SCANCODE_HOME, 36},          {SDL_SCANCODE_LEFT, 37},        {SDL_SCANCODE_UP, 38},
    {SDL_SCANCODE_RIGHT, 39},         {SDL_SCANCODE_DOWN, 40},        {SDL_SCANCODE_PRINTSCREEN, 44},
    {SDL_SCANCODE_INSERT, 45},        {SDL_SCANCODE_DELETE, 46},      {SDL_SCANCODE_LGUI, 91},
    {SDL_SCANCODE_RGUI, 92},          {SDL_SCANCODE_APPLICATION, 93}, {SDL_SCANCODE_KP_MULTIPLY, 106},
    {SDL_SCANCODE_KP_PLUS, 107},      {SDL_SCANCODE_KP_MINUS, 109},   {SDL_SCANCODE_KP_DIVIDE, 111},
    {SDL_SCANCODE_NUMLOCKCLEAR, 144}, {SDL_SCANCODE_SCROLLLOCK, 145}, {SDL_SCANCODE_AUDIOMUTE, 173},
    {SDL_SCANCODE_VOLUMEDOWN, 174},   {SDL_SCANCODE_VOLUMEUP, 175},   {SDL_SCANCODE_NONUSBACKSLASH, 226},
};

// Keypad keys are digits with num lock and movement keys without.
struct KeypadRow {
  SDL_Scancode scan;
  int locked;
  int plain;
};
constexpr KeypadRow kKeypad[] = {
    {SDL_SCANCODE_KP_0, 96, 45},  {SDL_SCANCODE_KP_1, 97, 35},       {SDL_SCANCODE_KP_2, 98, 40},
    {SDL_SCANCODE_KP_3, 99, 34},  {SDL_SCANCODE_KP_4, 100, 37},      {SDL_SCANCODE_KP_5, 101, 12},
    {SDL_SCANCODE_KP_6, 102, 39}, {SDL_SCANCODE_KP_7, 103, 36},      {SDL_SCANCODE_KP_8, 104, 38},
    {SDL_SCANCODE_KP_9, 105, 33}, {SDL_SCANCODE_KP_PERIOD, 110, 46},
};

// Punctuation by place on the board, for layouts whose own sign has no code.
constexpr ScanRow kPlaces[] = {
    {SDL_SCANCODE_SEMICOLON, 186},    {SDL_SCANCODE_EQUALS, 187},      {SDL_SCANCODE_COMMA, 188},
    {SDL_SCANCODE_MINUS, 189},        {SDL_SCANCODE_PERIOD, 190},      {SDL_SCANCODE_SLASH, 191},
    {SDL_SCANCODE_GRAVE, 192},        {SDL_SCANCODE_LEFTBRACKET, 219}, {SDL_SCANCODE_BACKSLASH, 220},
    {SDL_SCANCODE_RIGHTBRACKET, 221}, {SDL_SCANCODE_APOSTROPHE, 222},
};

int KeyOfScan(SDL_Scancode scan) {
  for (const ScanRow& row : kScans)
    if (row.scan == scan) return row.key;
  if (scan >= SDL_SCANCODE_F1 && scan <= SDL_SCANCODE_F12) return 112 + (scan - SDL_SCANCODE_F1);
  if (scan >= SDL_SCANCODE_F13 && scan <= SDL_SCANCODE_F24) return 124 + (scan - SDL_SCANCODE_F13);
  return 0;
}

} // namespace

int Sdl_KeyCode(const SDL_Keysym& key) {
  for (const KeypadRow& row : kKeypad)
    if (row.scan == key.scancode) return (key.mod & KMOD_NUM) ? row.locked : row.plain;
  if (const int code = KeyOfScan(key.scancode)) return code;
  // Letters and digits follow the layout: the key that types a z is Z wherever it lies.
  if (key.sym >= SDLK_a && key.sym <= SDLK_z) return static_cast<int>(key.sym) - SDLK_a + 'A';
  if (key.sym >= SDLK_0 && key.sym <= SDLK_9) return static_cast<int>(key.sym);
  if (key.scancode >= SDL_SCANCODE_1 && key.scancode <= SDL_SCANCODE_9)
    return '1' + (key.scancode - SDL_SCANCODE_1);
  if (key.scancode == SDL_SCANCODE_0) return '0';
  bool shift = false;
  if (key.sym > 32 && key.sym < 127)
    if (const int code = KeyCode_ForCharacter(static_cast<char16_t>(key.sym), shift); code != 0 && !shift)
      return code;
  for (const ScanRow& row : kPlaces)
    if (row.scan == key.scancode) return row.key;
  // A layout without Latin letters: by place, so that the game can be played.
  if (key.scancode >= SDL_SCANCODE_A && key.scancode <= SDL_SCANCODE_Z)
    return 'A' + (key.scancode - SDL_SCANCODE_A);
  return 0;
}

} // namespace vesk
