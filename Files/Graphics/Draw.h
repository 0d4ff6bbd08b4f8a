#pragma once
// Draw colour, clears, blending and shapes: built-ins as typed functions. Coordinates are pixels of the
// current view, colours as scripts have them (red in the low byte), alphas 0 to 1.
#include <cstdint>

namespace vesk {

enum BlendMode : int32_t { bm_normal = 0, bm_add = 1, bm_max = 2, bm_subtract = 3 };
enum BlendFactor : int32_t {
  bm_zero = 1,
  bm_one = 2,
  bm_src_colour = 3,
  bm_inv_src_colour = 4,
  bm_src_alpha = 5,
  bm_inv_src_alpha = 6,
  bm_dest_alpha = 7,
  bm_inv_dest_alpha = 8,
  bm_dest_colour = 9,
  bm_inv_dest_colour = 10,
  bm_src_alpha_sat = 11,
};

enum ScriptColour : int32_t {
  c_black = 0x000000,
  c_dkgray = 0x404040,
  c_gray = 0x808080,
  c_ltgray = 0xC0C0C0,
  c_white = 0xFFFFFF,
  c_red = 0x0000FF,
  c_maroon = 0x000080,
  c_lime = 0x00FF00,
  c_green = 0x008000,
  c_blue = 0xFF0000,
  c_navy = 0x800000,
  c_yellow = 0x00FFFF,
  c_olive = 0x008080,
  c_aqua = 0xFFFF00,
  c_teal = 0x808000,
  c_fuchsia = 0xFF00FF,
  c_purple = 0x800080,
  c_silver = 0xC0C0C0,
  c_orange = 0x40A0FF,
};

struct DrawState {
  uint32_t colourWord = 0xFF000000; // ARGB, as vertices have it
  uint8_t alphaByte = 255;
  float depth = 0; // z of every vertex
  bool culling = true;
  bool cornerIds = false; // corners of textured quads carry their number in two colour bits
};
namespace detail {
extern DrawState g_draw;
}
inline DrawState& Drawing() { return detail::g_draw; }

// 24 bits with red and blue swapped: script order to vertex order and back.
constexpr uint32_t SwapRedBlue(uint32_t colour) {
  return (colour & 0xFF) << 16 | (colour & 0xFF00) | (colour >> 16 & 0xFF);
}
// ARGB word of a script colour; alpha is truncated after times 255, then clamped.
uint32_t ColourWord(uint32_t colour, float alpha);

void draw_set_colour(int32_t colour);
inline void draw_set_color(int32_t colour) { draw_set_colour(colour); }
int32_t draw_get_colour();
inline int32_t draw_get_color() { return draw_get_colour(); }
void draw_set_alpha(float alpha);
float draw_get_alpha();
constexpr int32_t make_colour_rgb(int32_t red, int32_t green, int32_t blue) {
  return (red & 0xFF) | (green & 0xFF) << 8 | (blue & 0xFF) << 16;
}
constexpr int32_t make_color_rgb(int32_t red, int32_t green, int32_t blue) {
  return make_colour_rgb(red, green, blue);
}
void draw_clear(int32_t colour);
void draw_clear_alpha(int32_t colour, float alpha);
void draw_enable_alphablend(bool on);
void draw_set_blend_mode(int32_t mode);
void draw_set_blend_mode_ext(int32_t source, int32_t destination);
void draw_set_colour_write_enable(bool red, bool green, bool blue, bool alpha);
void draw_set_alpha_test(bool on);
void draw_set_alpha_test_ref_value(int32_t value);
void draw_enable_drawevent(bool on); // off: frames run, and are neither drawn nor shown
void shader_enable_corner_id(bool on);
void texture_set_interpolation(bool on);
void texture_set_repeat(bool on);

void draw_point(float x, float y);
void draw_line(float x1, float y1, float x2, float y2);
void draw_line_width(float x1, float y1, float x2, float y2, float width);
void draw_line_colour(float x1, float y1, float x2, float y2, int32_t colour1, int32_t colour2);
void draw_rectangle(float x1, float y1, float x2, float y2, bool outline);

} // namespace vesk
