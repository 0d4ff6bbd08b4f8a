#pragma once
// A picture in the making: pixels as palette colours, shapes with light from the upper left, and the passes
// that work on whole layers. Coordinates are pixels; the middle of pixel (3,4) is (3,4).
#include "pack/studio/Palette.h"

#include <string>
#include <utility>
#include <vector>

namespace vesk::studio {

struct Dot {
  Colour colour = kClear;
  uint8_t alpha = 255;
};

struct Area {
  int left, top, right, bottom; // inclusive
  bool Contains(int x, int y) const { return x >= left && x <= right && y >= top && y <= bottom; }
};

// A shape with its surface normals, before it gets a colour.
struct Solid {
  Area area{0, 0, -1, -1};
  struct Point {
    bool inside = false;
    float x = 0, y = 0, z = 1;
  };
  std::vector<Point> points;
  const Point& At(int x, int y) const {
    return points[static_cast<size_t>(y - area.top) * static_cast<size_t>(area.right - area.left + 1) +
                  static_cast<size_t>(x - area.left)];
  }
};

using Corner = std::pair<double, double>;

Solid Ellipse(double x, double y, double rx, double ry, double degrees);
Solid Capsule(double x0, double y0, double x1, double y1, double r0, double r1);
Solid Polygon(const std::vector<Corner>& corners, double bevel);
Solid Union(const std::vector<Solid>& solids); // the nearest surface wins

enum class Parting { None, Line, Dark, Shadow };

// How a solid is painted.
struct Paint {
  int ramp = 0;
  std::string material; // soft cloth shell metal fur leaf; empty is soft
  int flat = -1;        // one step instead of light
  double bias = 0;      // added to the light, about -0.5 to 0.5
  double noise = 0;
  int seed = 1;
  Parting parting = Parting::None; // what parts it from pixels that lie below
  bool under = false;              // only on clear pixels
  bool inside = false;             // only on pixels already set
  uint8_t alpha = 255;
};

// The cells of a picture that belong together: neighbours of one letter are one piece, a dot is alone. What
// is drawn stays in the piece where its middle lies.
class Pieces {
public:
  static constexpr int kAny = -2;
  int only = -1; // of four sets of pieces the one that is drawn; below 0 all are

  Pieces(const std::vector<std::string>& letters, int cellSize);
  int At(int x, int y) const;                 // number of the piece, -1 outside
  bool Takes(int x, int y, int wanted) const; // wanted: a piece or kAny
  int SetOf(int number) const;                // 0 to 3; neighbours are seldom in the same one

private:
  int cell_, columns_, rows_;
  std::vector<int> piece_, firstColumn_, firstRow_; // of a cell; of a piece
};

class Canvas {
public:
  Canvas(const Palette& palette, int width, int height);

  int Width() const { return width_; }
  int Height() const { return height_; }
  Area clip;
  bool wrap = false; // drawing beyond an edge comes in at the other one
  const Pieces* pieces = nullptr;

  // While it lives, drawing stays in the piece at that point; nothing happens on a canvas without pieces.
  class Within {
  public:
    Within(Canvas& canvas, double x, double y);
    ~Within() { canvas_.piece_ = before_; }
    Within(const Within&) = delete;
    Within& operator=(const Within&) = delete;

  private:
    Canvas& canvas_;
    int before_;
  };

  Dot At(int x, int y) const; // clear outside
  void Set(int x, int y, Dot dot);
  void Draw(const Solid& solid, const Paint& paint);
  void Line(double x0, double y0, double x1, double y1, Dot dot);

  // Stamps a layer. line: a dark line where it lies over something; full: all round.
  enum class Edge { None, Line, Full };
  void Stamp(const Canvas& layer, int x, int y, Edge edge, bool under);

  void Outline();        // dark line of the ramp it touches, within clip
  void Rim();            // edges that face up one step lighter
  void Glint();          // up two lighter, left one lighter, down and right one darker
  void Bulge(double by); // ball light
  void Cylinder();       // upright cylinder light
  void Despeckle();      // drops pixels without any neighbour
  void Shade(int by);    // ink stays
  void Recolour(int from, int to);
  void FlipX();
  void FlipY();
  void Turn();                // 90 degrees clockwise
  void Shift(int dx, int dy); // comes in again at the other side
  void Narrow(int width);
  void Fade(uint8_t alpha);

private:
  const Palette* palette_;
  int width_, height_;
  std::vector<Dot> dots_;
  int ink_;
  int piece_ = Pieces::kAny;

  bool Parted(int x, int y, int u, int v) const { return pieces && pieces->At(x, y) != pieces->At(u, v); }
  Colour LineColour(int x, int y) const;
  bool Solid_(int x, int y) const { return At(x, y).colour != kClear; }
};

} // namespace vesk::studio
