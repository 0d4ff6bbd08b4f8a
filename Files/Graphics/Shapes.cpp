#include "Files/Graphics/Shapes.h"

#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Files/Graphics/Batch.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/PageDraw.h"
#include "Files/Graphics/Texture.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace vesk {

namespace {

constexpr float kPixelMiddle = 0.5f;
constexpr float kCornerRadius = 10; // of a round rectangle
constexpr int32_t kMostSegments = 64;
constexpr float kHeadWidth = 2.0f / 3;  // of an arrow, as a share of its length
constexpr size_t kMostVertices = 65536; // of a free primitive

struct Point {
  float x, y;
};

struct ShapeState {
  int32_t segments = 24;
  int32_t kind = 0; // of the primitive between begin and end; 0 none
  int32_t texture = -1;
  std::vector<TexturedVertex> vertices;
  std::vector<Point> outline; // of the shape being built
};
ShapeState g_shapes;

TextureHandle Blank() { return Texture_Get(Graphics().blankTexture); }

uint32_t Word(int32_t colour) {
  return static_cast<uint32_t>(Drawing().alphaByte) << 24 | SwapRedBlue(static_cast<uint32_t>(colour));
}
int32_t DrawColour() { return draw_get_colour(); }

ShapeVertex Vertex(Point at, uint32_t word) { return {at.x, at.y, Drawing().depth, word}; }

void Triangle(const ShapeVertex& a, const ShapeVertex& b, const ShapeVertex& c) {
  ShapeVertex* v = AllocVerts<ShapeVertex>(pr_trianglelist, Blank(), 3);
  v[0] = a;
  v[1] = b;
  v[2] = c;
}
void Line(const ShapeVertex& a, const ShapeVertex& b) {
  ShapeVertex* v = AllocVerts<ShapeVertex>(pr_linelist, Blank(), 2);
  v[0] = a;
  v[1] = b;
}

// The closed row of points in g_shapes.outline, as lines or filled from the middle.
void DrawClosed(Point middle, int32_t middleColour, int32_t edgeColour, bool outline) {
  const std::vector<Point>& points = g_shapes.outline;
  const uint32_t inner = Word(middleColour), edge = Word(edgeColour);
  for (size_t i = 0; i < points.size(); ++i) {
    const Point from = points[i], to = points[(i + 1) % points.size()];
    if (outline)
      Line(Vertex(from, edge), Vertex(to, edge));
    else
      Triangle(Vertex(middle, inner), Vertex(from, edge), Vertex(to, edge));
  }
}

// A part of an ellipse, from quarter turn to quarter turn, clockwise on the screen from the right.
void AddArc(Point middle, float radiusX, float radiusY, int32_t fromQuarter, int32_t quarters, bool closed) {
  const int32_t steps = g_shapes.segments * quarters / 4;
  for (int32_t i = 0; i < steps + (closed ? 0 : 1); ++i) {
    const float turn =
        static_cast<float>(fromQuarter) / 4 + static_cast<float>(i) / static_cast<float>(g_shapes.segments);
    const float angle = turn * 2 * kPi;
    g_shapes.outline.push_back({middle.x + std::cos(angle) * radiusX, middle.y + std::sin(angle) * radiusY});
  }
}

void DrawOval(Point middle, float radiusX, float radiusY, int32_t inner, int32_t edge, bool outline) {
  g_shapes.outline.clear();
  AddArc(middle, radiusX, radiusY, 0, 4, true);
  DrawClosed(middle, inner, edge, outline);
}

struct Sorted {
  float left, top, right, bottom;
};
Sorted Sort(float x1, float y1, float x2, float y2) {
  return {std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2)};
}

void DrawRound(float x1, float y1, float x2, float y2, float radiusX, float radiusY, int32_t inner,
               int32_t edge, bool outline) {
  Sorted box = Sort(x1, y1, x2, y2);
  if (outline)
    box = {box.left + kPixelMiddle, box.top + kPixelMiddle, box.right + kPixelMiddle,
           box.bottom + kPixelMiddle};
  else // covers the end pixels
    box = {box.left, box.top, box.right + 1, box.bottom + 1};
  const float rx = std::clamp(radiusX, 0.0f, (box.right - box.left) / 2);
  const float ry = std::clamp(radiusY, 0.0f, (box.bottom - box.top) / 2);
  g_shapes.outline.clear();
  AddArc({box.right - rx, box.bottom - ry}, rx, ry, 0, 1, false);
  AddArc({box.left + rx, box.bottom - ry}, rx, ry, 1, 1, false);
  AddArc({box.left + rx, box.top + ry}, rx, ry, 2, 1, false);
  AddArc({box.right - rx, box.top + ry}, rx, ry, 3, 1, false);
  DrawClosed({(box.left + box.right) / 2, (box.top + box.bottom) / 2}, inner, edge, outline);
}

uint8_t Between(int32_t low, int32_t high, int shift, float share) {
  const auto from = static_cast<float>(low >> shift & 0xFF), to = static_cast<float>(high >> shift & 0xFF);
  return static_cast<uint8_t>(from + (to - from) * share);
}

void FillInColour(float x1, float y1, float x2, float y2, int32_t colour, bool outline) {
  const int32_t kept = draw_get_colour();
  draw_set_colour(colour);
  draw_rectangle(x1, y1, x2, y2, outline);
  draw_set_colour(kept);
}

void AddVertex(float x, float y, float u, float v, uint32_t word) {
  if (g_shapes.kind == 0) {
    ReportError("A vertex of a primitive stands outside draw_primitive_begin and draw_primitive_end.");
    return;
  }
  if (g_shapes.vertices.size() >= kMostVertices) return; // told at the end
  const bool filled = g_shapes.kind >= pr_trianglelist || g_shapes.texture >= 0;
  const float offset = filled ? 0 : kPixelMiddle;
  g_shapes.vertices.push_back({x + offset, y + offset, Drawing().depth, word, u, v});
}

} // namespace

void Shapes_Reset() { g_shapes = {}; }

void draw_set_circle_precision(int32_t segments) {
  g_shapes.segments = std::clamp(segments / 4 * 4, 4, kMostSegments);
}

void draw_circle(float x, float y, float radius, bool outline) {
  draw_circle_colour(x, y, radius, DrawColour(), DrawColour(), outline);
}

void draw_circle_colour(float x, float y, float radius, int32_t middle, int32_t edge, bool outline) {
  DrawOval({x + kPixelMiddle, y + kPixelMiddle}, radius, radius, middle, edge, outline);
}

void draw_ellipse(float x1, float y1, float x2, float y2, bool outline) {
  draw_ellipse_colour(x1, y1, x2, y2, DrawColour(), DrawColour(), outline);
}

void draw_ellipse_colour(float x1, float y1, float x2, float y2, int32_t middle, int32_t edge, bool outline) {
  const float reach = outline ? 0 : kPixelMiddle; // filled, it covers the end pixels
  DrawOval({(x1 + x2) / 2 + kPixelMiddle, (y1 + y2) / 2 + kPixelMiddle}, std::fabs(x2 - x1) / 2 + reach,
           std::fabs(y2 - y1) / 2 + reach, middle, edge, outline);
}

void draw_roundrect(float x1, float y1, float x2, float y2, bool outline) {
  draw_roundrect_ext(x1, y1, x2, y2, kCornerRadius, kCornerRadius, outline);
}

void draw_roundrect_ext(float x1, float y1, float x2, float y2, float radiusX, float radiusY, bool outline) {
  DrawRound(x1, y1, x2, y2, radiusX, radiusY, DrawColour(), DrawColour(), outline);
}

void draw_roundrect_colour(float x1, float y1, float x2, float y2, int32_t middle, int32_t edge,
                           bool outline) {
  DrawRound(x1, y1, x2, y2, kCornerRadius, kCornerRadius, middle, edge, outline);
}

void draw_triangle(float x1, float y1, float x2, float y2, float x3, float y3, bool outline) {
  draw_triangle_colour(x1, y1, x2, y2, x3, y3, DrawColour(), DrawColour(), DrawColour(), outline);
}

void draw_triangle_colour(float x1, float y1, float x2, float y2, float x3, float y3, int32_t colour1,
                          int32_t colour2, int32_t colour3, bool outline) {
  const auto corner = [](float x, float y, int32_t colour) {
    return Vertex({x + kPixelMiddle, y + kPixelMiddle}, Word(colour));
  };
  const ShapeVertex a = corner(x1, y1, colour1), b = corner(x2, y2, colour2), c = corner(x3, y3, colour3);
  if (!outline) return Triangle(a, b, c);
  Line(a, b);
  Line(b, c);
  Line(c, a);
}

void draw_rectangle_colour(float x1, float y1, float x2, float y2, int32_t colour1, int32_t colour2,
                           int32_t colour3, int32_t colour4, bool outline) {
  const Sorted box = Sort(x1, y1, x2, y2);
  const float low = outline ? kPixelMiddle : 0, high = outline ? kPixelMiddle : 1;
  const ShapeVertex corners[] = {Vertex({box.left + low, box.top + low}, Word(colour1)),
                                 Vertex({box.right + high, box.top + low}, Word(colour2)),
                                 Vertex({box.right + high, box.bottom + high}, Word(colour3)),
                                 Vertex({box.left + low, box.bottom + high}, Word(colour4))};
  if (!outline) {
    Triangle(corners[0], corners[1], corners[2]);
    Triangle(corners[2], corners[3], corners[0]);
    return;
  }
  for (size_t i = 0; i < 4; ++i) Line(corners[i], corners[(i + 1) % 4]);
}

void draw_arrow(float x1, float y1, float x2, float y2, float size) {
  const float dx = x2 - x1, dy = y2 - y1;
  const float length = std::sqrt(dx * dx + dy * dy);
  if (!(length > 0)) return;
  const float head = std::min(size, length);
  const float alongX = dx / length, alongY = dy / length;
  const float neckX = x2 - alongX * head, neckY = y2 - alongY * head;
  const float half = head * kHeadWidth / 2;
  draw_line(x1, y1, x2, y2);
  draw_triangle(x2, y2, neckX - alongY * half, neckY + alongX * half, neckX + alongY * half,
                neckY - alongX * half, false);
}

void draw_healthbar(float x1, float y1, float x2, float y2, float amount, int32_t back, int32_t low,
                    int32_t high, int32_t direction, bool showBack, bool showBorder) {
  const Sorted box = Sort(x1, y1, x2, y2);
  if (showBack) {
    FillInColour(box.left, box.top, box.right, box.bottom, back, false);
    if (showBorder) FillInColour(box.left, box.top, box.right, box.bottom, c_black, true);
  }
  const float share = std::clamp(amount / 100, 0.0f, 1.0f);
  if (!(share > 0)) return;
  const int32_t colour = make_colour_rgb(Between(low, high, 0, share), Between(low, high, 8, share),
                                         Between(low, high, 16, share));
  Sorted bar = box;
  const float wide = (box.right - box.left) * share, tall = (box.bottom - box.top) * share;
  switch (direction) {
  case 1: bar.left = box.right - wide; break;
  case 2: bar.bottom = box.top + tall; break;
  case 3: bar.top = box.bottom - tall; break;
  default: bar.right = box.left + wide; break;
  }
  FillInColour(bar.left, bar.top, bar.right, bar.bottom, colour, false);
  if (showBorder) FillInColour(bar.left, bar.top, bar.right, bar.bottom, c_black, true);
}

// ---- free primitives ----

void draw_primitive_begin(int32_t kind) { draw_primitive_begin_texture(kind, -1); }

void draw_primitive_begin_texture(int32_t kind, int32_t texture) {
  g_shapes.vertices.clear();
  g_shapes.kind = 0;
  if (kind < pr_pointlist || kind > pr_trianglefan) {
    ReportError("draw_primitive_begin: there is no primitive of kind %d", kind);
    return;
  }
  g_shapes.kind = kind;
  g_shapes.texture = texture;
}

void draw_vertex(float x, float y) { AddVertex(x, y, 0, 0, Drawing().colourWord); }

void draw_vertex_colour(float x, float y, int32_t colour, float alpha) {
  AddVertex(x, y, 0, 0, ColourWord(static_cast<uint32_t>(colour), alpha));
}

void draw_vertex_texture(float x, float y, float u, float v) { AddVertex(x, y, u, v, Drawing().colourWord); }

void draw_vertex_texture_colour(float x, float y, float u, float v, int32_t colour, float alpha) {
  AddVertex(x, y, u, v, ColourWord(static_cast<uint32_t>(colour), alpha));
}

void draw_primitive_end() {
  if (g_shapes.kind == 0) {
    ReportError("draw_primitive_end without draw_primitive_begin.");
    return;
  }
  const auto kind = static_cast<Primitive>(g_shapes.kind);
  g_shapes.kind = 0;
  if (g_shapes.vertices.size() >= kMostVertices)
    ReportError("A primitive can have at most %d vertices.", static_cast<int>(kMostVertices));
  if (g_shapes.vertices.empty()) return;
  const TextureSlot* texture = Texture_Find(g_shapes.texture);
  if (texture) // shares of the picture, which may not fill the texture
    for (TexturedVertex& vertex : g_shapes.vertices) {
      vertex.u *= static_cast<float>(texture->width) * texture->invWidth;
      vertex.v *= static_cast<float>(texture->height) * texture->invHeight;
    }
  const TextureHandle handle = texture ? texture->handle : Blank();
  TexturedVertex* out =
      AllocVerts<TexturedVertex>(kind, handle, static_cast<int32_t>(g_shapes.vertices.size()));
  std::copy(g_shapes.vertices.begin(), g_shapes.vertices.end(), out);
}

void Function_AddShapes() {
  static constexpr BuiltinRow kBuiltins[] = {
      Builtin<&draw_set_circle_precision>("draw_set_circle_precision"),
      Builtin<&draw_circle>("draw_circle"),
      Builtin<&draw_circle_colour>("draw_circle_colour"),
      Builtin<&draw_circle_colour>("draw_circle_color"),
      Builtin<&draw_ellipse>("draw_ellipse"),
      Builtin<&draw_ellipse_colour>("draw_ellipse_colour"),
      Builtin<&draw_ellipse_colour>("draw_ellipse_color"),
      Builtin<&draw_roundrect>("draw_roundrect"),
      Builtin<&draw_roundrect_ext>("draw_roundrect_ext"),
      Builtin<&draw_roundrect_colour>("draw_roundrect_colour"),
      Builtin<&draw_roundrect_colour>("draw_roundrect_color"),
      Builtin<&draw_triangle>("draw_triangle"),
      Builtin<&draw_triangle_colour>("draw_triangle_colour"),
      Builtin<&draw_triangle_colour>("draw_triangle_color"),
      Builtin<&draw_rectangle_colour>("draw_rectangle_colour"),
      Builtin<&draw_rectangle_colour>("draw_rectangle_color"),
      Builtin<&draw_arrow>("draw_arrow"),
      Builtin<&draw_healthbar>("draw_healthbar"),
      Builtin<&draw_primitive_begin>("draw_primitive_begin"),
      Builtin<&draw_primitive_begin_texture>("draw_primitive_begin_texture"),
      Builtin<&draw_vertex>("draw_vertex"),
      Builtin<&draw_vertex_colour>("draw_vertex_colour"),
      Builtin<&draw_vertex_colour>("draw_vertex_color"),
      Builtin<&draw_vertex_texture>("draw_vertex_texture"),
      Builtin<&draw_vertex_texture_colour>("draw_vertex_texture_colour"),
      Builtin<&draw_vertex_texture_colour>("draw_vertex_texture_color"),
      Builtin<&draw_primitive_end>("draw_primitive_end"),
  };
  Function_Add(kBuiltins);
}

} // namespace vesk
