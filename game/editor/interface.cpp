// Buttons and the key reader.
#include "game/editor/interface.h"

#include "game/Game.h"
#include "game/text.h"

namespace vesk {

namespace {

constexpr int kBackspace = 8;
constexpr double kNameWidth = 178;                         // pixels of a name's box
constexpr double kMessageWidth = 292, kMessageHeight = 54; // pixels of a message box
constexpr double kPanelAlpha = 0.7;
enum Frame { kIdle, kHovered, kPressed };

// ---- buttons ----

void ButtonCreate(Self self) {
  self[notify] = "";
  self[notifyto] = noone;
  self[text] = "";
  self[image] = -1;
  self[frame] = 0;
  self[name] = "";
  self[image_speed] = 0;
}

void ToggleCreate(Self self) {
  event_inherited(self);
  self[toggle] = 0;
}

void tell_owner(Self self) {
  const std::string said = self[notify].text();
  with(self[notifyto], [&](Self owner) {
    owner[note] = said;
    event_user(owner, 0);
  });
}

void follow_mouse(Self self, bool toggles) {
  if (!place_meeting(self, self[x], self[y], obj_cursorparent)) {
    self[image_index] = kIdle;
    return;
  }
  if (self[image_index] == kIdle) {
    audio_play_sound(snd_reload, 0, false);
    with(obj_cursorparent, [&](Self cursor) { cursor[text] = self[text]; });
  }
  self[image_index] = kHovered;
  if (mouse_check_button_released(kLeftButton)) {
    if (toggles) self[toggle] = self[toggle] == 0 ? 1 : 0;
    tell_owner(self);
  } else if (mouse_check_button(kLeftButton)) {
    self[image_index] = kPressed;
  }
}

void ButtonEndStep(Self self) { follow_mouse(self, false); }
void ToggleEndStep(Self self) { follow_mouse(self, true); }

void draw_button(Self self, double left, double top) {
  draw_sprite_ext(self, self[sprite_index], self[image_index], left, top, 1, 1, 0, c_white, kPanelAlpha);
  if (self[image] != -1) draw_sprite(self, self[image], self[frame], left + 3, top + 3);
  if (self[name] == "") return;
  draw_set_font(global[font]);
  draw_text(left + 24, top + 7, self[name]);
}

// All of it is in the GUI layer; without this the sprite would stand in the room as well.
void DrawNothing(Self) {}

void ButtonDrawGui(Self self) { draw_button(self, self[x], self[y]); }

// Stands in the room, not in the view.
void FixedDrawGui(Self self) { draw_button(self, self[x] - view_xview[0], self[y] - view_yview[0]); }

void ToggleDrawGui(Self self) {
  draw_button(self, self[x], self[y]);
  draw_set_font(global[font]);
  if (self[toggle] == 1)
    draw_text(self[x] + 14, self[y] + 7, "On");
  else
    draw_text(self[x] + 12, self[y] + 7, "Off");
}

// ---- key reader ----

void forget_key() {
  keyboard_lastkey = -1;
  keyboard_lastchar = "#";
}

// A key that was pressed before there was a reader is no text.
void ReaderCreate(Self self) {
  forget_key();
  self[words] = "";
  self[mode] = kNames;
  self[notifyto] = noone;
}

void tell_change(Self self) {
  with(self[notifyto], [](Self owner) { event_user(owner, 8); });
}

bool is_text_key(int key) {
  return (key >= 48 && key <= 90) || (key >= 186 && key <= 222) || key == kSpaceKey;
}

bool fits(Self self, const std::string& longer, const std::string& typed) {
  draw_set_font(global[font]);
  switch (static_cast<int>(self[mode])) {
  case kNames:
    return kRefusedInNames.find(typed) == std::string_view::npos && string_width(longer) < kNameWidth;
  case kMessageText: {
    const std::string wrapped = string_make_width(longer, kMessageWidth);
    return string_height(wrapped) < kMessageHeight && string_width(wrapped) <= kMessageWidth;
  }
  default: return true;
  }
}

void ReaderStep(Self self) {
  const int key = keyboard_lastkey;
  if (key == -1 || keyboard_check(kControlKey)) return;
  const std::string before = self[words].text();
  if (key == kBackspace) {
    if (before.empty()) return;
    self[words] = string_copy(before, 1, string_length(before) - 1);
    tell_change(self);
    audio_play_sound(snd_click, 0, false);
    return;
  }
  const std::string typed = keyboard_lastchar;
  if (!is_text_key(key) || typed.empty() || typed == "#" || !fits(self, before + typed, typed)) return;
  self[words] = before + typed;
  tell_change(self);
  audio_play_sound(snd_rapidfire, 0, false);
}

void ReaderEndStep(Self) { forget_key(); }

} // namespace

Self make_button(Self owner, double left, double top, const std::string& said, const std::string& tooltip,
                 const ButtonLook& look, int object) {
  const Self button = make(left, top, object);
  button[sprite_index] = look.body;
  button[image] = look.image;
  button[frame] = look.imageFrame;
  button[name] = look.label;
  button[notify] = said;
  button[text] = tooltip;
  button[notifyto] = owner.number();
  return button;
}

void destroy_buttons_of(Self owner) {
  with(obj_button, [&](Self button) {
    if (button[notifyto] == owner.number()) instance_destroy(button);
  });
}

Self make_key_reader(Self owner, ReaderMode reads) {
  const Self reader = make(0, 0, obj_keyreader);
  reader[mode] = static_cast<int>(reads);
  reader[notifyto] = owner.number();
  return reader;
}

void draw_backed_text(double left, double top, const std::string& shown, int colour, double highest) {
  left = max(2, min(left, view_wview[0] - 2 - string_width(shown)));
  top = max(highest, min(top, view_hview[0] - 1 - string_height(shown)));
  draw_set_colour(c_black);
  draw_set_alpha(0.7f);
  draw_rectangle(static_cast<float>(left - 2), static_cast<float>(top - 1),
                 static_cast<float>(left + string_width(shown)),
                 static_cast<float>(top + string_height(shown)), false);
  draw_set_alpha(1);
  draw_set_colour(colour);
  draw_text(static_cast<float>(left), static_cast<float>(top), shown);
  draw_set_colour(c_white);
}

void refuse(Self owner, const std::string& why) {
  audio_play_sound(snd_wrong, 0, false);
  owner[error] = why;
}

std::string prompt(const std::string& typed, const std::string& refusal, const std::string& hint) {
  if (!typed.empty()) {
    draw_set_colour(c_white);
    return typed;
  }
  draw_set_colour(kGold);
  return audio_is_playing(snd_wrong) && !refusal.empty() ? refusal : hint;
}

const EventTable obj_button_events = {
    {ev_create, 0, ButtonCreate},
    {ev_step, ev_step_end, ButtonEndStep},
    {ev_draw, ev_draw_normal, DrawNothing},
    {ev_draw, ev_gui, ButtonDrawGui},
};
const EventTable obj_button_fixed_events = {{ev_draw, ev_gui, FixedDrawGui}};
const EventTable obj_button_toggle_events = {
    {ev_create, 0, ToggleCreate},
    {ev_step, ev_step_end, ToggleEndStep},
    {ev_draw, ev_gui, ToggleDrawGui},
};
const EventTable obj_keyreader_events = {
    {ev_create, 0, ReaderCreate},
    {ev_step, ev_step_normal, ReaderStep},
    {ev_step, ev_step_end, ReaderEndStep},
};
// The mouse as buttons meet it.
const EventTable obj_cursorparent_events = {};

} // namespace vesk
