#pragma once
// Viewport, view and matrices in force, and the box outside which nothing need be drawn.
#include "Files/Graphics/DrawScreen.h"
#include "Files/Graphics_API/RenderDevice.h"

#include <cstdint>

namespace vesk {

struct CullRect {
  float left = 0, top = 0, right = 0, bottom = 0;
};

struct ViewState {
  int32_t viewportX = 0, viewportY = 0, viewportW = 0, viewportH = 0; // target pixels
  float viewX = 0, viewY = 0, viewW = 0, viewH = 0, viewAngle = 0;    // room pixels, degrees
  DrawRect viewBounds;
  CullRect cullRect;
  bool cullDirty = true;
  bool customProjection = false; // culling is off then
  Matrix matrices[3];            // view, projection, world
  Matrix worldView, worldViewProjection;
};
ViewState& View();
void View_Reset();

void SetViewport(int32_t x, int32_t y, int32_t width, int32_t height); // flushes
void SetView(float x, float y, float width, float height, float angle);
void SetMatrix(int32_t slot, const Matrix& matrix); // flushes; view, projection or world
void Clear(uint32_t colour, float depth, uint32_t stencil, uint32_t flags); // flushes; ARGB
// A view whose matrix is given instead of made, with its box in view coordinates.
void SetViewMatrix(const Matrix& view, const DrawRect& bounds);
Matrix OrthographicProjection(float width,
                              float height); // near 1, far 32000; a negative height grows downward

// The view's bounds taken back through the world matrix; computed when asked for after a change.
const CullRect& CullBox();

} // namespace vesk
