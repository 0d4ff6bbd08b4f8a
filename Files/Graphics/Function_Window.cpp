// Registry rows of display and window.
#include "Files/Function/Function.h"
#include "Files/Graphics/DebugOverlay.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/Registration.h"
#include "Platform/Platform.h"

namespace vesk {

namespace {

IWindow& Window() { return *Platform_Get().window; }

int32_t window_get_width() { return Window().Size().width; }
int32_t window_get_height() { return Window().Size().height; }
int32_t window_get_x() {
  int32_t x = 0, y = 0;
  Window().Position(x, y);
  return x;
}
int32_t window_get_y() {
  int32_t x = 0, y = 0;
  Window().Position(x, y);
  return y;
}
void window_set_position(int32_t x, int32_t y) { Window().SetPosition(x, y); }
void window_set_caption(std::string_view text) { Window().SetTitle(std::string(text)); }
std::string window_get_caption() { return Window().Title(); }
void window_set_visible(bool on) { Window().SetVisible(on); }
bool window_has_focus() { return Window().HasFocus(); }
void window_set_colour(int32_t colour) { Graphics().windowColour = static_cast<uint32_t>(colour) & 0xFFFFFF; }
int32_t window_get_colour() { return static_cast<int32_t>(Graphics().windowColour); }

struct CursorRow {
  WindowCursor constant;
  CursorShape shape;
};
constexpr CursorRow kCursors[] = {
    {cr_default, CursorShape::Default},     {cr_none, CursorShape::None},
    {cr_arrow, CursorShape::Arrow},         {cr_cross, CursorShape::Cross},
    {cr_beam, CursorShape::Beam},           {cr_size_nesw, CursorShape::SizeNESW},
    {cr_size_ns, CursorShape::SizeNS},      {cr_size_nwse, CursorShape::SizeNWSE},
    {cr_size_we, CursorShape::SizeWE},      {cr_uparrow, CursorShape::UpArrow},
    {cr_hourglass, CursorShape::HourGlass}, {cr_drag, CursorShape::Drag},
    {cr_appstart, CursorShape::AppStart},   {cr_handpoint, CursorShape::HandPoint},
    {cr_size_all, CursorShape::SizeAll},
};

} // namespace

void window_set_cursor(int32_t cursor) {
  for (const CursorRow& row : kCursors)
    if (row.constant == cursor) Window().SetCursor(row.shape);
}

void Function_AddWindow() {
  static constexpr BuiltinRow kBuiltins[] = {
      Builtin<&display_get_width>("display_get_width"),
      Builtin<&display_get_height>("display_get_height"),
      Builtin<&display_reset>("display_reset"),
      Builtin<&display_set_gui_size>("display_set_gui_size"),
      Builtin<&display_get_gui_width>("display_get_gui_width"),
      Builtin<&display_get_gui_height>("display_get_gui_height"),
      Builtin<&display_set_windows_vertex_buffer_method>("display_set_windows_vertex_buffer_method"),
      Builtin<&display_get_windows_vertex_buffer_method>("display_get_windows_vertex_buffer_method"),
      Builtin<&display_set_windows_alternate_sync>("display_set_windows_alternate_sync"),
      Builtin<&display_get_windows_alternate_sync>("display_get_windows_alternate_sync"),
      Builtin<&window_set_size>("window_set_size"),
      Builtin<&window_set_fullscreen>("window_set_fullscreen"),
      Builtin<&window_get_fullscreen>("window_get_fullscreen"),
      Builtin<&window_center>("window_center"),
      Builtin<&window_get_width>("window_get_width"),
      Builtin<&window_get_height>("window_get_height"),
      Builtin<&window_get_x>("window_get_x"),
      Builtin<&window_get_y>("window_get_y"),
      Builtin<&window_set_position>("window_set_position"),
      Builtin<&window_set_caption>("window_set_caption"),
      Builtin<&window_get_caption>("window_get_caption"),
      Builtin<&window_set_visible>("window_set_visible"),
      Builtin<&window_has_focus>("window_has_focus"),
      Builtin<&window_set_colour>("window_set_colour"),
      Builtin<&window_set_colour>("window_set_color"),
      Builtin<&window_get_colour>("window_get_colour"),
      Builtin<&window_get_colour>("window_get_color"),
      Builtin<&window_set_cursor>("window_set_cursor"),
      Builtin<&show_debug_overlay>("show_debug_overlay"),
  };
  Function_Add(kBuiltins);
}

} // namespace vesk
