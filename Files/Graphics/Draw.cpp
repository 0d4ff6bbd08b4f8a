#include "Files/Graphics/Draw.h"

#include "Files/Function/Function.h"
#include "Files/Graphics/Batch.h"
#include "Files/Graphics/DrawScreen.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/Registration.h"
#include "Files/Graphics/RenderState.h"
#include "Files/Graphics/Shapes.h"
#include "Files/Graphics/Texture.h"
#include "Files/Graphics/View.h"
#include "Files/Run/Run_Events.h"

#include <algorithm>
#include <cmath>

namespace vesk {

DrawState detail::g_draw;

namespace {

// A filled rectangle covers its last pixels; points and lines run through the middles of theirs.
constexpr float kEndPixel = 1.0f;
constexpr float kPixelMiddle = 0.5f;

TextureHandle Blank() { return Texture_Get(Graphics().blankTexture); }

// What is no number counts as 0.
uint8_t AlphaByte(float alpha) {
  return alpha > 0 ? static_cast<uint8_t>(std::min(alpha, 1.0f) * 255.0f) : uint8_t{0};
}

uint32_t WithDrawAlpha(int32_t colour) {
  return static_cast<uint32_t>(Drawing().alphaByte) << 24 | SwapRedBlue(static_cast<uint32_t>(colour));
}

ShapeVertex ShapePoint(float x, float y, uint32_t colour) {
  return {x + kPixelMiddle, y + kPixelMiddle, Drawing().depth, colour};
}

void SetBlend(uint32_t source, uint32_t destination) {
  RenderStateCache& states = RenderStates();
  states.SetRenderState(kStateSourceBlend, source);
  states.SetRenderState(kStateDestinationBlend, destination);
  states.SetRenderState(kStateSeparateSourceBlend, source);
  states.SetRenderState(kStateSeparateDestinationBlend, destination);
}

void DrawOutline(float left, float top, float right, float bottom) {
  const float depth = Drawing().depth;
  const uint32_t colour = Drawing().colourWord;
  left += kPixelMiddle, top += kPixelMiddle, right += kPixelMiddle, bottom += kPixelMiddle;
  const TexturedVertex corners[] = {{left, top, depth, colour, 0, 0},
                                    {right, top, depth, colour, 0, 0},
                                    {right, bottom, depth, colour, 0, 0},
                                    {left, bottom, depth, colour, 0, 0}};
  TexturedVertex* v = AllocVerts<TexturedVertex>(pr_linestrip, Blank(), 5);
  for (int i = 0; i < 5; ++i) v[i] = corners[i % 4];
  v = AllocVerts<TexturedVertex>(pr_pointlist, Blank(), 4);
  std::copy(std::begin(corners), std::end(corners), v);
}

void DrawFilled(float left, float top, float right, float bottom) {
  const float depth = Drawing().depth;
  const uint32_t colour = Drawing().colourWord;
  right += kEndPixel, bottom += kEndPixel;
  TexturedVertex* v = AllocVerts<TexturedVertex>(pr_trianglelist, Blank(), 6);
  v[0] = v[5] = {left, top, depth, colour, 0, 0};
  v[1] = {right, top, depth, colour, 0, 0};
  v[2] = v[3] = {right, bottom, depth, colour, 0, 0};
  v[4] = {left, bottom, depth, colour, 0, 0};
}

} // namespace

uint32_t ColourWord(uint32_t colour, float alpha) {
  return static_cast<uint32_t>(AlphaByte(alpha)) << 24 | SwapRedBlue(colour);
}

void draw_set_colour(int32_t colour) { Drawing().colourWord = WithDrawAlpha(colour); }

int32_t draw_get_colour() { return static_cast<int32_t>(SwapRedBlue(Drawing().colourWord)); }

void draw_set_alpha(float alpha) {
  Drawing().alphaByte = AlphaByte(alpha);
  Drawing().colourWord = static_cast<uint32_t>(Drawing().alphaByte) << 24 | (Drawing().colourWord & 0xFFFFFF);
}

float draw_get_alpha() { return static_cast<float>(Drawing().alphaByte) / 255.0f; }

void draw_clear(int32_t colour) {
  Clear(0xFF000000 | SwapRedBlue(static_cast<uint32_t>(colour)), 1, 0, kClearAll);
}

void draw_clear_alpha(int32_t colour, float alpha) {
  Clear(static_cast<uint32_t>(AlphaByte(alpha)) << 24 | SwapRedBlue(static_cast<uint32_t>(colour)), 1, 0,
        kClearAll);
}

void draw_enable_alphablend(bool on) { RenderStates().SetRenderState(kStateBlending, on); }

void draw_set_blend_mode(int32_t mode) {
  switch (mode) {
  case bm_add: return SetBlend(bm_src_alpha, bm_one);
  case bm_max: return SetBlend(bm_src_alpha, bm_inv_src_colour);
  case bm_subtract: return SetBlend(bm_zero, bm_inv_src_colour);
  default: return SetBlend(bm_src_alpha, bm_inv_src_alpha);
  }
}

void draw_set_blend_mode_ext(int32_t source, int32_t destination) {
  SetBlend(static_cast<uint32_t>(source), static_cast<uint32_t>(destination));
}

void draw_set_colour_write_enable(bool red, bool green, bool blue, bool alpha) {
  RenderStates().SetRenderState(kStateColourMask,
                                static_cast<uint32_t>(red | green << 1 | blue << 2 | alpha << 3));
}

void draw_set_alpha_test(bool on) { RenderStates().SetRenderState(kStateAlphaTest, on); }

void draw_set_alpha_test_ref_value(int32_t value) {
  RenderStates().SetRenderState(kStateAlphaReference, static_cast<uint32_t>(std::clamp(value, 0, 255)));
}

void draw_enable_drawevent(bool on) { Run().automaticDrawing = on; }

void shader_enable_corner_id(bool on) { Drawing().cornerIds = on; }

void texture_set_interpolation(bool on) {
  for (int32_t stage = 0; stage < kSamplerStages; ++stage)
    for (const int32_t index : {kSamplerMagnify, kSamplerMinify})
      RenderStates().SetSamplerState(stage, index, on);
}

void texture_set_repeat(bool on) {
  for (int32_t stage = 0; stage < kSamplerStages; ++stage)
    for (const int32_t index : {kSamplerAddressU, kSamplerAddressV})
      RenderStates().SetSamplerState(stage, index, !on);
}

void draw_point(float x, float y) {
  *AllocVerts<ShapeVertex>(pr_pointlist, Blank(), 1) = ShapePoint(x, y, Drawing().colourWord);
}

void draw_line(float x1, float y1, float x2, float y2) {
  ShapeVertex* v = AllocVerts<ShapeVertex>(pr_linelist, Blank(), 2);
  v[0] = ShapePoint(x1, y1, Drawing().colourWord);
  v[1] = ShapePoint(x2, y2, Drawing().colourWord);
}

void draw_line_colour(float x1, float y1, float x2, float y2, int32_t colour1, int32_t colour2) {
  ShapeVertex* v = AllocVerts<ShapeVertex>(pr_linelist, Blank(), 2);
  v[0] = ShapePoint(x1, y1, WithDrawAlpha(colour1));
  v[1] = ShapePoint(x2, y2, WithDrawAlpha(colour2));
}

void draw_line_width(float x1, float y1, float x2, float y2, float width) {
  const float dx = x2 - x1, dy = y2 - y1;
  const float length = std::sqrt(dx * dx + dy * dy);
  if (length == 0) return;
  const float sideX = dy / length * (width / 2), sideY = -dx / length * (width / 2);
  ShapeVertex* v = AllocVerts<ShapeVertex>(pr_trianglefan, Blank(), 4);
  const float depth = Drawing().depth;
  const uint32_t colour = Drawing().colourWord;
  v[0] = {x1 + sideX, y1 + sideY, depth, colour};
  v[1] = {x2 + sideX, y2 + sideY, depth, colour};
  v[2] = {x2 - sideX, y2 - sideY, depth, colour};
  v[3] = {x1 - sideX, y1 - sideY, depth, colour};
}

void draw_rectangle(float x1, float y1, float x2, float y2, bool outline) {
  const auto [left, right] = std::minmax(x1, x2);
  const auto [top, bottom] = std::minmax(y1, y2);
  if (outline)
    DrawOutline(left, top, right, bottom);
  else
    DrawFilled(left, top, right, bottom);
}

void Function_AddDraw() {
  static constexpr BuiltinRow kBuiltins[] = {
      Builtin<&draw_set_colour>("draw_set_colour"),
      Builtin<&draw_set_colour>("draw_set_color"),
      Builtin<&draw_get_colour>("draw_get_colour"),
      Builtin<&draw_get_colour>("draw_get_color"),
      Builtin<&draw_set_alpha>("draw_set_alpha"),
      Builtin<&draw_get_alpha>("draw_get_alpha"),
      Builtin<&make_colour_rgb>("make_colour_rgb"),
      Builtin<&make_colour_rgb>("make_color_rgb"),
      Builtin<&draw_clear>("draw_clear"),
      Builtin<&draw_clear_alpha>("draw_clear_alpha"),
      Builtin<&draw_enable_alphablend>("draw_enable_alphablend"),
      Builtin<&draw_set_blend_mode>("draw_set_blend_mode"),
      Builtin<&draw_set_blend_mode_ext>("draw_set_blend_mode_ext"),
      Builtin<&draw_set_colour_write_enable>("draw_set_colour_write_enable"),
      Builtin<&draw_set_colour_write_enable>("draw_set_color_write_enable"),
      Builtin<&draw_set_alpha_test>("draw_set_alpha_test"),
      Builtin<&draw_set_alpha_test_ref_value>("draw_set_alpha_test_ref_value"),
      Builtin<&draw_enable_drawevent>("draw_enable_drawevent"),
      Builtin<&texture_set_interpolation>("texture_set_interpolation"),
      Builtin<&texture_set_repeat>("texture_set_repeat"),
      Builtin<&draw_point>("draw_point"),
      Builtin<&draw_line>("draw_line"),
      Builtin<&draw_line_width>("draw_line_width"),
      Builtin<&draw_line_colour>("draw_line_colour"),
      Builtin<&draw_line_colour>("draw_line_color"),
      Builtin<&draw_rectangle>("draw_rectangle"),
      Builtin<&application_surface_draw_enable>("application_surface_draw_enable"),
      Builtin<&application_surface_enable>("application_surface_enable"),
  };
  Function_Add(kBuiltins);
  Function_AddShapes();
}

} // namespace vesk
