#include "Files/Object/Collision.h"

#include "Files/Sprite/Sprite.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vesk {

namespace {

constexpr double kPi = 3.1415927410125732; // the float, as all angles here use it
constexpr int32_t kFarthest = 1 << 29;     // pixels; farther whole numbers are clamped to it
constexpr float kNoAngle = 0.0001f;        // degrees below which a pixel test takes a shape as upright

struct Point {
  float x, y;
};
using Quad = std::array<Point, 4>;

const CSprite* ShapeOf(const CInstance& instance) {
  const CSprite* sprite = Sprite_Find(instance.ShapeSprite());
  return sprite && sprite->FrameCount() > 0 ? sprite : nullptr;
}

bool IsTurnable(const CSprite& sprite) { return sprite.kind != SpriteKind::kRectangle; }
bool IsPrecise(const CSprite& sprite) { return sprite.kind == SpriteKind::kPrecise; }

// The far edge of an inclusive box side, as the float tests compare it.
float Beyond(int32_t edge) { return static_cast<float>(static_cast<int64_t>(edge) + 1); }
float Near(int32_t edge) { return static_cast<float>(edge); }

// To whole pixels; what no pixel can have becomes one that lies outside every sprite.
int32_t WholeOr(float value, int32_t outside) {
  return std::fabs(value) < 1e9f ? static_cast<int32_t>(value) : outside;
}
int32_t Truncated(float value) { return WholeOr(value, -1); }
int32_t Floored(float value) { return WholeOr(std::floor(value), -1); }

float Radians(float degrees) { return static_cast<float>(static_cast<double>(degrees) * kPi / 180.0); }

// Sine and cosine of the angle that turns room pixels back into sprite pixels.
struct Turn {
  float s, c;
  explicit Turn(float degrees)
      : s(static_cast<float>(std::sin(static_cast<double>(Radians(-degrees))))),
        c(static_cast<float>(std::cos(static_cast<double>(Radians(-degrees))))) {}
};

// ---- pixels of one shape ----

struct Pixels {
  const uint8_t* mask; // null: every pixel is set
  int32_t width, height;

  Pixels(const CSprite& sprite, const CInstance& instance)
      : mask(sprite.Mask(Truncated(instance.imageIndex))), width(sprite.width), height(sprite.height) {}
  bool Set(int32_t u, int32_t v) const {
    return u >= 0 && v >= 0 && u < width && v < height && (!mask || mask[v * width + u]);
  }
};

// Room pixel to sprite pixel, for points, figures and lines: pixel centres, rounded position.
class FigureSampler {
public:
  FigureSampler(const CSprite& sprite, const CInstance& instance)
      : m_pixels(sprite, instance),
        m_x(static_cast<float>(RoundToEven(static_cast<double>(instance.x)) - 0.5)),
        m_y(static_cast<float>(RoundToEven(static_cast<double>(instance.y)) - 0.5)),
        m_xscale(instance.imageXScale), m_yscale(instance.imageYScale),
        m_originX(static_cast<float>(sprite.originX)), m_originY(static_cast<float>(sprite.originY)),
        m_upright(std::fabs(instance.imageAngle) < kNoAngle), m_turn(instance.imageAngle) {}

  bool HasMask() const { return m_pixels.mask != nullptr; }
  bool IsPlain() const { return m_upright && m_xscale == 1 && m_yscale == 1; }

  // As a point is sampled.
  bool At(float px, float py) const { return m_upright ? Upright(px - m_x, py - m_y) : Turned(px, py); }
  // As a line is sampled: always through the turn.
  bool Turned(float px, float py) const {
    const float a = px - m_x, b = py - m_y;
    return m_pixels.Set(Floored((m_turn.s * b + m_turn.c * a) / m_xscale + m_originX),
                        Floored((m_turn.c * b - m_turn.s * a) / m_yscale + m_originY));
  }
  // As a figure samples a shape of scale 1: truncated, so half a pixel before the sprite counts as its first.
  bool Plain(float px, float py) const {
    return m_pixels.Set(Truncated(px - m_x + m_originX), Truncated(py - m_y + m_originY));
  }

private:
  bool Upright(float a, float b) const {
    return m_pixels.Set(Floored(a / m_xscale + m_originX), Floored(b / m_yscale + m_originY));
  }

  Pixels m_pixels;
  float m_x, m_y, m_xscale, m_yscale, m_originX, m_originY;
  bool m_upright;
  Turn m_turn;
};

// The part of a box that pixel tests look at: beyond it no float has a pixel of its own.
BoundingBox InReach(const BoundingBox& box) {
  return {std::max(box.left, -kFarthest), std::max(box.top, -kFarthest), std::min(box.right, kFarthest),
          std::min(box.bottom, kFarthest)};
}

// Walks the whole pixels that a figure's rectangle shares with the box, column by column.
template <class Also>
bool AnyPixelOf(const FigureSampler& sampler, const BoundingBox& whole, const BoundingBox& figure,
                Also also) {
  const BoundingBox box = InReach(whole);
  const bool plain = sampler.IsPlain();
  const int32_t right = std::min(figure.right, box.right), bottom = std::min(figure.bottom, box.bottom);
  for (int32_t px = std::max(figure.left, box.left); px <= right; ++px)
    for (int32_t py = std::max(figure.top, box.top); py <= bottom; ++py) {
      const float fx = static_cast<float>(px), fy = static_cast<float>(py);
      if ((plain ? sampler.Plain(fx, fy) : sampler.At(fx, fy)) && also(px, py)) return true;
    }
  return false;
}

BoundingBox Rounded(float left, float top, float right, float bottom) {
  return {RoundToEven(static_cast<double>(left)), RoundToEven(static_cast<double>(top)),
          RoundToEven(static_cast<double>(right)), RoundToEven(static_cast<double>(bottom))};
}

// ---- turned boxes ----

Quad Corners(const CInstance& i, const CSprite& sprite) {
  const auto edges = [](int32_t low, int32_t high, int32_t origin, float scale) {
    const int32_t l = low < high ? low : high, r = (low < high ? high : low) + 1;
    return std::array<double, 2>{(l - origin) * static_cast<double>(scale),
                                 (r - origin) * static_cast<double>(scale)};
  };
  const auto [x1, x2] = edges(sprite.left, sprite.right, sprite.originX, i.imageXScale);
  const auto [y1, y2] = edges(sprite.top, sprite.bottom, sprite.originY, i.imageYScale);
  const double a = static_cast<double>(Radians(-i.imageAngle)), c = std::cos(a), s = std::sin(a);
  const auto corner = [&i, c, s](double cx, double cy) {
    const float fx = static_cast<float>(static_cast<double>(i.x) + c * cx - s * cy);
    const float fy = static_cast<float>(static_cast<double>(i.y) + c * cy + s * cx);
    return Point{Near(RoundToEven(static_cast<double>(fx))), Near(RoundToEven(static_cast<double>(fy)))};
  };
  return {corner(x1, y1), corner(x2, y1), corner(x2, y2), corner(x1, y2)};
}

struct Span {
  float low, high;
};
template <size_t N> Span Project(const std::array<Point, N>& shape, Point axis) {
  Span span{shape[0].x * axis.x + shape[0].y * axis.y, 0};
  span.high = span.low;
  for (size_t i = 1; i < N; ++i) {
    const float at = shape[i].x * axis.x + shape[i].y * axis.y;
    span.low = std::min(span.low, at);
    span.high = std::max(span.high, at);
  }
  return span;
}

// Touching counts as separated. An edge of no length has no normal and separates nothing.
template <size_t N, size_t M>
bool SeparatedAlong(Point from, Point to, const std::array<Point, N>& a, const std::array<Point, M>& b) {
  const float dx = to.x - from.x, dy = to.y - from.y, length = std::sqrt(dx * dx + dy * dy);
  if (!(length > 0)) return false;
  const Point axis{-dy / length, dx / length};
  const Span sa = Project(a, axis), sb = Project(b, axis);
  return sa.low >= sb.high || sb.low >= sa.high;
}

bool Overlap(const Quad& a, const Quad& b) {
  return !SeparatedAlong(a[0], a[1], a, b) && !SeparatedAlong(a[1], a[2], a, b) &&
         !SeparatedAlong(b[0], b[1], a, b) && !SeparatedAlong(b[1], b[2], a, b);
}

// ---- pixels of two shapes ----

// Room pixel to sprite pixel for the test of two instances, in one of three forms by what the pair needs.
class PairSampler {
public:
  PairSampler(const CSprite& sprite, const CInstance& instance, bool scaled)
      : m_pixels(sprite, instance), m_x(RoundToEven(static_cast<double>(instance.x))),
        m_y(RoundToEven(static_cast<double>(instance.y))), m_originX(sprite.originX),
        m_originY(sprite.originY), m_xscale(instance.imageXScale), m_yscale(instance.imageYScale),
        m_reciprocalX(1.0f / m_xscale), m_reciprocalY(1.0f / m_yscale), m_turn(instance.imageAngle) {
    // A mirrored shape lies one pixel before its origin.
    if (scaled && m_xscale < 0) m_x -= 1;
    if (scaled && m_yscale < 0) m_y -= 1;
  }

  bool Plain(int32_t px, int32_t py) const {
    return m_pixels.Set(m_originX - m_x + px, m_originY - m_y + py);
  }
  bool Scaled(int32_t px, int32_t py) const {
    return m_pixels.Set(Truncated(Near(px - m_x) * m_reciprocalX + Near(m_originX)),
                        Truncated(Near(py - m_y) * m_reciprocalY + Near(m_originY)));
  }
  bool Turned(int32_t px, int32_t py) const {
    const float dx = Near(px - m_x), dy = Near(py - m_y);
    const float u = (dy * m_turn.s + dx * m_turn.c) / m_xscale + Near(m_originX);
    const float v = (dy * m_turn.c - dx * m_turn.s) / m_yscale + Near(m_originY);
    return u >= 0 && v >= 0 && m_pixels.Set(Truncated(u), Truncated(v));
  }

private:
  Pixels m_pixels;
  int32_t m_x, m_y, m_originX, m_originY;
  float m_xscale, m_yscale, m_reciprocalX, m_reciprocalY;
  Turn m_turn;
};

template <class SetInBoth>
bool AnyPixel(const BoundingBox& wholeA, const BoundingBox& b, SetInBoth setInBoth) {
  const BoundingBox a = InReach(wholeA);
  const int32_t right = std::min(a.right, b.right), bottom = std::min(a.bottom, b.bottom);
  for (int32_t px = std::max(a.left, b.left); px <= right; ++px)
    for (int32_t py = std::max(a.top, b.top); py <= bottom; ++py)
      if (setInBoth(px, py)) return true;
  return false;
}

bool PixelsMeet(const CInstance& a, const CSprite& spriteA, const CInstance& b, const CSprite& spriteB) {
  const bool turned = a.imageAngle != 0 || b.imageAngle != 0;
  const bool scaled =
      turned || a.imageXScale != 1 || a.imageYScale != 1 || b.imageXScale != 1 || b.imageYScale != 1;
  const PairSampler sa(spriteA, a, scaled), sb(spriteB, b, scaled);
  if (turned)
    return AnyPixel(a.bbox, b.bbox,
                    [&](int32_t px, int32_t py) { return sa.Turned(px, py) && sb.Turned(px, py); });
  if (scaled)
    return AnyPixel(a.bbox, b.bbox,
                    [&](int32_t px, int32_t py) { return sa.Scaled(px, py) && sb.Scaled(px, py); });
  return AnyPixel(a.bbox, b.bbox,
                  [&](int32_t px, int32_t py) { return sa.Plain(px, py) && sb.Plain(px, py); });
}

// ---- figures ----

bool OutsideBox(const BoundingBox& box, float left, float top, float right, float bottom) {
  return left >= Beyond(box.right) || right < Near(box.left) || top >= Beyond(box.bottom) ||
         bottom < Near(box.top);
}

bool RejectedByBox(CInstance& instance, float x1, float y1, float x2, float y2) {
  return OutsideBox(instance.Bounds(), std::min(x1, x2), std::min(y1, y2), std::max(x1, x2),
                    std::max(y1, y2)) ||
         instance.marked;
}

// Middle and radii in whole pixels. A radius of 0 makes the distance infinite, on the axis not a number.
struct Ellipse {
  int32_t cx, cy, rx, ry;
  explicit Ellipse(const BoundingBox& figure)
      : cx((figure.left + figure.right) / 2), cy((figure.top + figure.bottom) / 2),
        rx((figure.right - figure.left) / 2), ry((figure.bottom - figure.top) / 2) {}
  float SquaredDistance(int32_t px, int32_t py) const { // 1 on the rim
    const float dx = Near(px - cx) / Near(rx), dy = Near(py - cy) / Near(ry);
    return dx * dx + dy * dy;
  }
  bool Contains(int32_t px, int32_t py) const { return SquaredDistance(px, py) <= 1; }
  bool NearlyContains(int32_t px, int32_t py) const {
    return RoundToEven(static_cast<double>(SquaredDistance(px, py))) < 2;
  }
};

bool EllipseTouchesBox(const Ellipse& ellipse, const BoundingBox& box, float centreX, float centreY) {
  if (centreX >= Near(box.left) && centreX <= Near(box.right)) return true;
  if (centreY >= Near(box.top) && centreY <= Near(box.bottom)) return true;
  return ellipse.Contains(box.left, box.top) || ellipse.Contains(box.left, box.bottom) ||
         ellipse.Contains(box.right, box.top) || ellipse.Contains(box.right, box.bottom);
}

bool LinePixelHit(const FigureSampler& sampler, const BoundingBox& box, Point from, Point to) {
  BoundingBox ends = Rounded(from.x, from.y, to.x, to.y);
  if (ends.left == ends.right || ends.top == ends.bottom) {
    if (ends.top > ends.bottom) std::swap(ends.top, ends.bottom);
    return AnyPixelOf(sampler, box, ends, [](int32_t, int32_t) { return true; });
  }
  const float dx = Near(ends.right - ends.left), dy = Near(ends.bottom - ends.top);
  if (std::fabs(dx) >= std::fabs(dy)) {
    const float slope = dy / dx; // the ends stand in order of x
    const int32_t last = std::min(box.right, ends.right);
    for (int32_t px = std::max(box.left, ends.left); px <= last; ++px)
      if (sampler.Turned(Near(px), slope * Near(px - ends.left) + Near(ends.top))) return true;
    return false;
  }
  if (ends.top > ends.bottom) {
    std::swap(ends.left, ends.right);
    std::swap(ends.top, ends.bottom);
  }
  const float slope = dx / dy;
  const int32_t last = std::min(box.bottom, ends.bottom);
  for (int32_t py = std::max(box.top, ends.top); py <= last; ++py)
    if (sampler.Turned(slope * Near(py - ends.top) + Near(ends.left), Near(py))) return true;
  return false;
}

} // namespace

int32_t RoundToEven(double value) {
  constexpr double kLimit = kFarthest;
  if (!(value > -kLimit)) return std::isnan(value) ? 0 : static_cast<int32_t>(-kLimit);
  if (value > kLimit) return static_cast<int32_t>(kLimit);
  return static_cast<int32_t>(std::lrint(value));
}

bool Collide(CInstance& a, CInstance& b, bool precise) {
  if (&a == &b || a.marked || b.marked) return false;
  const BoundingBox &boxA = a.Bounds(), &boxB = b.Bounds();
  if (boxB.left > boxA.right || boxB.right < boxA.left || boxB.top > boxA.bottom || boxB.bottom < boxA.top)
    return false;
  const CSprite *spriteA = ShapeOf(a), *spriteB = ShapeOf(b);
  if (!spriteA || !spriteB) return false;
  if ((IsTurnable(*spriteA) || IsTurnable(*spriteB)) && !Overlap(Corners(a, *spriteA), Corners(b, *spriteB)))
    return false;
  if (!precise || (!IsPrecise(*spriteA) && !IsPrecise(*spriteB))) return true;
  return PixelsMeet(a, *spriteA, b, *spriteB);
}

bool PointHit(CInstance& instance, float x, float y, bool precise) {
  if (OutsideBox(instance.Bounds(), x, y, x, y) || instance.marked) return false;
  const CSprite* sprite = ShapeOf(instance);
  if (!sprite) return false;
  if (!precise || !IsPrecise(*sprite)) return true;
  return FigureSampler(*sprite, instance)
      .At(Near(RoundToEven(static_cast<double>(x))), Near(RoundToEven(static_cast<double>(y))));
}

bool RectHit(CInstance& instance, float x1, float y1, float x2, float y2, bool precise) {
  if (RejectedByBox(instance, x1, y1, x2, y2)) return false;
  if (!precise || !instance.precise) return true;
  const CSprite* sprite = ShapeOf(instance);
  if (!sprite) return false;
  const FigureSampler sampler(*sprite, instance);
  if (!sampler.HasMask()) return true;
  const BoundingBox figure = Rounded(std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2));
  return AnyPixelOf(sampler, instance.bbox, figure, [](int32_t, int32_t) { return true; });
}

bool EllipseHit(CInstance& instance, float x1, float y1, float x2, float y2, bool precise) {
  if (RejectedByBox(instance, x1, y1, x2, y2)) return false;
  const BoundingBox figure = Rounded(std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2));
  if (figure.left == figure.right || figure.top == figure.bottom)
    return RectHit(instance, x1, y1, x2, y2, precise);
  const Ellipse ellipse(figure);
  if (!EllipseTouchesBox(ellipse, instance.bbox, (x1 + x2) / 2, (y1 + y2) / 2)) return false;
  if (!precise || !instance.precise) return true;
  const CSprite* sprite = ShapeOf(instance);
  if (!sprite) return false;
  const FigureSampler sampler(*sprite, instance);
  if (!sampler.HasMask()) return true;
  return AnyPixelOf(sampler, instance.bbox, figure,
                    [&ellipse](int32_t px, int32_t py) { return ellipse.NearlyContains(px, py); });
}

bool LineHit(CInstance& instance, float x1, float y1, float x2, float y2, bool precise) {
  if (RejectedByBox(instance, x1, y1, x2, y2)) return false;
  const BoundingBox& box = instance.bbox;
  if (x2 < x1) {
    std::swap(x1, x2);
    std::swap(y1, y2);
  }
  // Kept as it is: both slopes count one pixel more than the distance.
  const float maxX = x2;
  if (Near(box.left) > x1) {
    const float m = (y2 - y1 + 1) / (maxX - x1 + 1);
    y1 = m * (Near(box.left) - x1) + y1;
    x1 = Near(box.left);
  }
  if (maxX > Beyond(box.right)) {
    const float m = (y2 - y1 + 1) / (maxX - x1 + 1);
    y2 = m * (Beyond(box.right) - maxX) + y2;
    x2 = Beyond(box.right);
  }
  if (Near(box.top) > y1 && Near(box.top) > y2) return false;
  if (y1 >= Beyond(box.bottom) && y2 >= Beyond(box.bottom)) return false;
  const CSprite* sprite = ShapeOf(instance);
  if (!sprite) return false;
  if (IsTurnable(*sprite)) {
    const Quad quad = Corners(instance, *sprite);
    const std::array<Point, 2> segment{{{x1, y1}, {x2, y2}}};
    if (SeparatedAlong(quad[0], quad[1], quad, segment) || SeparatedAlong(quad[1], quad[2], quad, segment) ||
        SeparatedAlong(segment[0], segment[1], quad, segment))
      return false;
  }
  if (!precise || !instance.precise) return true;
  const FigureSampler sampler(*sprite, instance);
  if (!sampler.HasMask()) return true;
  return LinePixelHit(sampler, box, {x1, y1}, {x2, y2});
}

} // namespace vesk
