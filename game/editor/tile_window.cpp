// obj_ewindow_tile: the atlas in a pane; a stamp is dragged out of it.
#include "game/Game.h"
#include "game/editor/interface.h"
#include "game/editor/window.h"
#include "game/level/level_build.h"

namespace vesk {

namespace {

// The pane in the view, and how far the atlas can be moved in it.
constexpr int kPaneLeft = 16, kPaneTop = 66, kPaneRight = 368, kPaneBottom = 202;
constexpr int kPaneWidth = kPaneRight - kPaneLeft, kPaneHeight = kPaneBottom - kPaneTop;
constexpr int kMaxOffsetX = 288, kMaxOffsetY = 504;
constexpr int kPaneFrame = 5; // of spr_editor_window

struct Point {
  double x, y;
};
Point mouse_in_view() { return {mouse_x - view_xview[0], mouse_y - view_yview[0]}; }
bool in_pane(Point p) { return p.x > kPaneLeft && p.x < kPaneRight && p.y > kPaneTop && p.y < kPaneBottom; }

void Create(Self self) {
  event_inherited(self);
  self[num_options] = 2;
  self[text] = "Tiles";
  self[image_index] = kPaneFrame;
  make_tab_button(self, 0, 2, "TILES", "Tiles", spr_editor_top_icons, 1);
  make_tab_button(self, 1, 2, "BG TILES", "Background Tiles", spr_editor_top_icons, 8);
  const Self editor = first(obj_editor);
  self[x_offset] = editor[t_x];
  self[y_offset] = editor[t_y];
  self[ontile] = 0;
  self[mtt_mode] = 0;
  self[mtt_x] = 1;
  self[mtt_y] = 1;
  self[xx] = 0;
  self[yy] = 0;
}

void Destroy(Self self) {
  event_inherited(self);
  with(obj_editor, [&](Self editor) {
    editor[t_x] = self[x_offset];
    editor[t_y] = self[y_offset];
  });
}

void Notified(Self self) {
  event_inherited(self);
  const bool background = self[note] == "BG TILES";
  if (!background && !(self[note] == "TILES")) return;
  self[tab] = background ? 1 : 0;
  self[text] = background ? "Background Tiles" : "Tiles";
}

// The keys scroll at once; the mouse only after it has been in the pane, when it is pushed beyond the frame.
void scroll(Self self, Point mouse) {
  const int step = keyboard_check(kControlKey) ? 15 : 5;
  const bool pushes = self[ontile] == 1;
  if (keyboard_check(kLeftKey) || (pushes && mouse.x < 13)) self[x_offset] -= step;
  if (keyboard_check(kRightKey) || (pushes && mouse.x > 371)) self[x_offset] += step;
  if (keyboard_check(kUpKey) || (pushes && mouse.y < 39)) self[y_offset] -= step;
  if (keyboard_check(kDownKey) || (pushes && mouse.y > 205)) self[y_offset] += step;
  self[x_offset] = min(max(self[x_offset], 0), kMaxOffsetX);
  self[y_offset] = min(max(self[y_offset], 0), kMaxOffsetY);
}

double cell_of(double position) { return floor(position / kCellSize) * kCellSize; }

void take_stamp(Self self, Point mouse) {
  const double cell_x = cell_of(mouse.x - kPaneLeft + self[x_offset].Get());
  const double cell_y = cell_of(mouse.y - kPaneTop + self[y_offset].Get());
  if (self[mtt_mode] == 0) {
    self[xx] = cell_x;
    self[yy] = cell_y;
  } else {
    self[mtt_x] = max(1, (cell_x - self[xx]) / kCellSize + 1);
    self[mtt_y] = max(1, (cell_y - self[yy]) / kCellSize + 1);
  }
}

void EndStep(Self self) {
  const Point mouse = mouse_in_view();
  if (in_pane(mouse)) self[ontile] = 1;
  scroll(self, mouse);
  take_stamp(self, mouse);
  if (!in_pane(mouse)) { // a drag that leaves the pane is dropped
    self[mtt_mode] = 0;
    self[mtt_x] = 1;
    self[mtt_y] = 1;
    return;
  }
  if (mouse_check_button_pressed(kLeftButton)) self[mtt_mode] = 1;
  if (mouse_check_button_released(kLeftButton)) {
    audio_play_sound(snd_pistolplus, 0, false);
    choose_tiles(self[xx], self[yy], self[mtt_x], self[mtt_y], self[tab] == 1);
    instance_destroy(self);
  }
}

void DrawGui(Self self) {
  event_inherited(self);
  draw_sprite(self, spr_editor_tilemenu, 0, 13, 63);
  draw_background_part(bg_tiles, self[x_offset], self[y_offset], kPaneWidth, kPaneHeight, kPaneLeft,
                       kPaneTop);
  if (!in_pane(mouse_in_view())) return;
  const double left = kPaneLeft + self[xx] - self[x_offset], top = kPaneTop + self[yy] - self[y_offset];
  draw_set_colour(c_green);
  draw_set_alpha(0.4f);
  draw_rectangle(max(left, kPaneLeft), max(top, kPaneTop),
                 min(left + kCellSize * self[mtt_x] - 1, kPaneRight),
                 min(top + kCellSize * self[mtt_y] - 1, kPaneBottom), false);
  draw_set_alpha(1);
  draw_set_colour(c_white);
}

} // namespace

const EventTable obj_ewindow_tile_events = {
    {ev_create, 0, Create},           {ev_destroy, 0, Destroy},   {ev_step, ev_step_end, EndStep},
    {ev_other, ev_user(0), Notified}, {ev_draw, ev_gui, DrawGui},
};

} // namespace vesk
