#pragma once
// Round and cornered shapes, bars and free primitives in the draw colour: built-ins as typed functions. A
// shape lies about the middle of the pixel that it names. Colours are in script order.
#include <cstdint>

namespace vesk {

// Segments of a whole circle: a multiple of 4 from 4 to 64, 24 at start.
void draw_set_circle_precision(int32_t segments);
void draw_circle(float x, float y, float radius, bool outline);
void draw_circle_colour(float x, float y, float radius, int32_t middle, int32_t edge, bool outline);
void draw_ellipse(float x1, float y1, float x2, float y2, bool outline);
void draw_ellipse_colour(float x1, float y1, float x2, float y2, int32_t middle, int32_t edge, bool outline);
void draw_roundrect(float x1, float y1, float x2, float y2, bool outline);
void draw_roundrect_ext(float x1, float y1, float x2, float y2, float radiusX, float radiusY, bool outline);
void draw_roundrect_colour(float x1, float y1, float x2, float y2, int32_t middle, int32_t edge,
                           bool outline);
void draw_triangle(float x1, float y1, float x2, float y2, float x3, float y3, bool outline);
void draw_triangle_colour(float x1, float y1, float x2, float y2, float x3, float y3, int32_t colour1,
                          int32_t colour2, int32_t colour3, bool outline);
// Corner colours: left top, right top, right bottom, left bottom.
void draw_rectangle_colour(float x1, float y1, float x2, float y2, int32_t colour1, int32_t colour2,
                           int32_t colour3, int32_t colour4, bool outline);
void draw_arrow(float x1, float y1, float x2, float y2, float size); // the head is `size` long
// A bar filled to `amount` hundredths, from the side of `direction`: 0 left, 1 right, 2 top, 3 bottom. Its
// colour runs from `low` at 0 to `high` at 100.
void draw_healthbar(float x1, float y1, float x2, float y2, float amount, int32_t back, int32_t low,
                    int32_t high, int32_t direction, bool showBack, bool showBorder);

// Vertices between begin and end make up one primitive; a begin forgets those of an unfinished one. With a
// texture id, u and v are its shares from 0 to 1. End without a begin is a non-fatal error.
void draw_primitive_begin(int32_t kind);
void draw_primitive_begin_texture(int32_t kind, int32_t texture);
void draw_vertex(float x, float y);
void draw_vertex_colour(float x, float y, int32_t colour, float alpha);
void draw_vertex_texture(float x, float y, float u, float v);
void draw_vertex_texture_colour(float x, float y, float u, float v, int32_t colour, float alpha);
void draw_primitive_end();

void Shapes_Reset();
void Function_AddShapes();

} // namespace vesk
