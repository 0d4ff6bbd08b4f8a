#include "Files/Graphics/View.h"

#include "Files/Graphics/Batch.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/Shader.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

constexpr float kEyeDistance = 16000;
constexpr float kNear = 1, kFar = 32000;
constexpr float kRadians = 0.01745329238474369f;

ViewState g_view;

DrawRect StraightBounds(float x, float y, float width, float height) {
  return {static_cast<int32_t>(x - 0.999f), static_cast<int32_t>(y - 0.999f),
          static_cast<int32_t>(x + width + 0.999f), static_cast<int32_t>(y + height + 0.999f)};
}

DrawRect TurnedBounds(float x, float y, float width, float height, float angle) {
  const float c = std::fabs(std::cos(angle)), s = std::fabs(std::sin(angle));
  const float wide = c * width + s * height, high = s * width + c * height;
  return {static_cast<int32_t>((width - wide) / 2 + x), static_cast<int32_t>((height - high) / 2 + y),
          static_cast<int32_t>((wide + width) / 2 + x), static_cast<int32_t>((high + height) / 2 + y)};
}

Matrix LookFromAbove(float centreX, float centreY, float roll) {
  const float upX = std::sin(roll), upY = std::cos(roll);
  Matrix view;
  view.m[0] = upY;
  view.m[1] = upX;
  view.m[4] = -upX;
  view.m[5] = upY;
  view.m[12] = -(centreX * upY - centreY * upX);
  view.m[13] = -(centreX * upX + centreY * upY);
  view.m[14] = kEyeDistance;
  return view;
}

} // namespace

ViewState& View() { return g_view; }
void View_Reset() { g_view = {}; }

Matrix Multiply(const Matrix& a, const Matrix& b) {
  Matrix result;
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column) {
      float sum = 0;
      for (int k = 0; k < 4; ++k) sum += a.m[row * 4 + k] * b.m[k * 4 + column];
      result.m[row * 4 + column] = sum;
    }
  return result;
}

Matrix OrthographicProjection(float width, float height) {
  Matrix projection;
  projection.m[0] = width != 0 ? 2 / width : 0;
  projection.m[5] = height != 0 ? 2 / height : 0;
  projection.m[10] = 1 / (kFar - kNear);
  projection.m[14] = -kNear / (kFar - kNear);
  return projection;
}

void SetViewport(int32_t x, int32_t y, int32_t width, int32_t height) {
  FlushBatch();
  g_view.viewportX = x;
  g_view.viewportY = y;
  g_view.viewportW = width;
  g_view.viewportH = height;
  if (Graphics().device) Graphics().device->SetViewport(x, y, width, height);
}

void SetView(float x, float y, float width, float height, float angle) {
  g_view.viewX = x;
  g_view.viewY = y;
  g_view.viewW = width;
  g_view.viewH = height;
  g_view.viewAngle = angle;
  g_view.viewBounds = std::fabs(angle) < 0.001f ? StraightBounds(x, y, width, height)
                                                : TurnedBounds(x, y, width, height, angle * kRadians);
  g_view.cullDirty = true;
  SetMatrix(kMatrixView, LookFromAbove(x + width / 2, y + height / 2, -angle * kRadians));
  SetMatrix(kMatrixProjection, OrthographicProjection(width, -height));
}

void SetViewMatrix(const Matrix& view, const DrawRect& bounds) {
  g_view.viewBounds = bounds;
  g_view.cullDirty = true;
  SetMatrix(kMatrixView, view);
}

void SetMatrix(int32_t slot, const Matrix& matrix) {
  FlushBatch();
  g_view.matrices[slot] = matrix;
  if (slot == kMatrixWorld) g_view.cullDirty = true;
  g_view.worldView = Multiply(g_view.matrices[kMatrixWorld], g_view.matrices[kMatrixView]);
  g_view.worldViewProjection = Multiply(g_view.worldView, g_view.matrices[kMatrixProjection]);
  if (!Graphics().device) return;
  Graphics().device->SetMatrix(slot, matrix);
  Shader_MatricesChanged();
}

void Clear(uint32_t colour, float depth, uint32_t stencil, uint32_t flags) {
  FlushBatch();
  if (Graphics().device) Graphics().device->Clear(colour, depth, stencil, flags);
}

const CullRect& CullBox() {
  if (!g_view.cullDirty) return g_view.cullRect;
  g_view.cullDirty = false;
  const DrawRect& box = g_view.viewBounds;
  CullRect& cull = g_view.cullRect;
  cull = {static_cast<float>(box.left), static_cast<float>(box.top), static_cast<float>(box.right),
          static_cast<float>(box.bottom)};
  const Matrix& world = g_view.matrices[kMatrixWorld];
  if (world == Matrix{}) return cull;
  const float determinant = world.m[0] * world.m[5] - world.m[1] * world.m[4];
  if (determinant == 0) return cull;
  const float xs[2] = {cull.left, cull.right}, ys[2] = {cull.top, cull.bottom};
  bool first = true;
  for (const float cornerX : xs)
    for (const float cornerY : ys) {
      const float dx = cornerX - world.m[12], dy = cornerY - world.m[13];
      const float x = (dx * world.m[5] - dy * world.m[4]) / determinant;
      const float y = (dy * world.m[0] - dx * world.m[1]) / determinant;
      cull = first ? CullRect{x, y, x, y}
                   : CullRect{std::min(cull.left, x), std::min(cull.top, y), std::max(cull.right, x),
                              std::max(cull.bottom, y)};
      first = false;
    }
  return cull;
}

} // namespace vesk
