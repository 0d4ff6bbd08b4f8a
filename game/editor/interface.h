#pragma once
// What menus and editor windows are made of: buttons that tell their owner, and a reader of typed text.
#include "Files/Code/Self.h"
#include "game/Keys.h"

#include <string>
#include <string_view>

namespace vesk {

inline constexpr int kGold = 248 + 192 * 256 + 40 * 65536; // of prompts and refusals

inline constexpr std::string_view kRefusedInNames = "\\/:*?<>|"; // what a file name can't hold

enum ReaderMode { kNames = 0, kAnyText = 1, kMessageText = 2 };

struct ButtonLook {
  int body;       // sprite of the body
  int image = -1; // icon; -1 none
  int imageFrame = 0;
  const char* label = ""; // beside the icon
};

// A button at a view position that sets `note` of its owner and runs the owner's user event 0 on a click.
// `tooltip` is shown under the mouse.
Self make_button(Self owner, double left, double top, const std::string& notify, const std::string& tooltip,
                 const ButtonLook& look, int object);
void destroy_buttons_of(Self owner);

// Reads typed text into its `words`; runs user event 8 of the owner after each change.
Self make_key_reader(Self owner, ReaderMode mode);

// Text in the present font on a dark backing, so that it can be read over anything. Moved as far as the view
// would cut it off, and not above `highest`.
void draw_backed_text(double left, double top, const std::string& text, int colour, double highest = 2);

// Plays the sound of a refusal and keeps its words in `error` of the owner; they show while the sound plays.
void refuse(Self owner, const std::string& words);
// The prompt of a text box: what was typed, else a refusal while it sounds, else the hint; sets the colour.
std::string prompt(const std::string& typed, const std::string& refusal, const std::string& hint);

} // namespace vesk
