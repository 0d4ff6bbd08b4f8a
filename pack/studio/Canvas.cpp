#include "pack/studio/Canvas.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace vesk::studio {

namespace {

constexpr double kPi = 3.14159265358979323846;
// Towards the light: upper left, a little to the front.
constexpr double kLight[3] = {-0.520, -0.660, 0.540};

struct Material {
  const char* name;
  double step2, step3, step4; // light from which on that step is used; below the first it is step 1
};
constexpr Material kMaterials[] = {{"soft", -.02, .5, .9},   {"cloth", .05, .62, .97},
                                   {"shell", .02, .52, .84}, {"metal", .12, .55, .8},
                                   {"fur", 0, .5, .88},      {"leaf", .1, .5, .86}};

Solid Frame(double left, double top, double right, double bottom) {
  Solid solid;
  solid.area = {static_cast<int>(std::floor(left)), static_cast<int>(std::floor(top)),
                static_cast<int>(std::ceil(right)), static_cast<int>(std::ceil(bottom))};
  const int width = std::max(0, solid.area.right - solid.area.left + 1);
  const int height = std::max(0, solid.area.bottom - solid.area.top + 1);
  solid.points.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
  return solid;
}

template <typename F> void EachPoint(Solid& solid, F&& f) {
  size_t i = 0;
  for (int y = solid.area.top; y <= solid.area.bottom; ++y)
    for (int x = solid.area.left; x <= solid.area.right; ++x) f(solid.points[i++], x, y);
}

double Hash(int x, int y, int seed) {
  uint32_t h = static_cast<uint32_t>(x) * 374761393u + static_cast<uint32_t>(y) * 668265263u +
               static_cast<uint32_t>(seed) * 2246822519u;
  h = (h ^ h >> 13) * 1274126177u;
  return (h ^ h >> 16) / 4294967296.0;
}

} // namespace

Solid Ellipse(double cx, double cy, double rx, double ry, double degrees) {
  const double reach = std::max(rx, ry);
  const double a = degrees * kPi / 180, c = std::cos(a), s = std::sin(a);
  Solid solid = degrees == 0 ? Frame(cx - rx, cy - ry, cx + rx, cy + ry)
                             : Frame(cx - reach, cy - reach, cx + reach, cy + reach);
  EachPoint(solid, [&](Solid::Point& p, int x, int y) {
    const double dx = x - cx, dy = y - cy;
    const double u = (dx * c + dy * s) / rx, v = (-dx * s + dy * c) / ry, q = u * u + v * v;
    if (q > 1) return;
    p = {true, static_cast<float>(u * c - v * s), static_cast<float>(u * s + v * c),
         static_cast<float>(std::sqrt(1 - q))};
  });
  return solid;
}

Solid Capsule(double x0, double y0, double x1, double y1, double r0, double r1) {
  const double reach = std::max(r0, r1);
  Solid solid = Frame(std::min(x0, x1) - reach, std::min(y0, y1) - reach, std::max(x0, x1) + reach,
                      std::max(y0, y1) + reach);
  const double dx = x1 - x0, dy = y1 - y0, length = dx * dx + dy * dy + 1e-9;
  EachPoint(solid, [&](Solid::Point& p, int x, int y) {
    const double t = std::clamp(((x - x0) * dx + (y - y0) * dy) / length, 0.0, 1.0);
    const double px = x - (x0 + t * dx), py = y - (y0 + t * dy), r = r0 + (r1 - r0) * t;
    if (px * px + py * py > r * r) return;
    const double nx = px / r, ny = py / r;
    p = {true, static_cast<float>(nx), static_cast<float>(ny),
         static_cast<float>(std::sqrt(std::max(0.0, 1 - nx * nx - ny * ny)))};
  });
  return solid;
}

Solid Polygon(const std::vector<Corner>& corners, double bevel) {
  double left = 1e9, top = 1e9, right = -1e9, bottom = -1e9;
  for (const auto& [x, y] : corners) {
    left = std::min(left, x), right = std::max(right, x);
    top = std::min(top, y), bottom = std::max(bottom, y);
  }
  Solid solid = Frame(left, top, right, bottom);
  const size_t n = corners.size();
  const auto edgeDistance = [&](double x, double y, double& nx, double& ny) {
    double best = 1e9;
    for (size_t i = 0, j = n - 1; i < n; j = i++) {
      const auto [ax, ay] = corners[j];
      const auto [bx, by] = corners[i];
      const double ex = bx - ax, ey = by - ay;
      const double t = std::clamp(((x - ax) * ex + (y - ay) * ey) / (ex * ex + ey * ey + 1e-9), 0.0, 1.0);
      const double dx = ax + t * ex - x, dy = ay + t * ey - y, d = std::sqrt(dx * dx + dy * dy);
      if (d < best) best = d, nx = dx / (d + 1e-9), ny = dy / (d + 1e-9);
    }
    return best;
  };
  EachPoint(solid, [&](Solid::Point& p, int x, int y) {
    bool inside = false;
    for (size_t i = 0, j = n - 1; i < n; j = i++) {
      const auto [xi, yi] = corners[i];
      const auto [xj, yj] = corners[j];
      if ((yi > y) != (yj > y) && x < (xj - xi) * (y - yi) / (yj - yi) + xi) inside = !inside;
    }
    double nx = 0, ny = 0;
    const double d = edgeDistance(x, y, nx, ny);
    if (!inside && d > 0.02) return; // pixels right on an edge belong to the shape
    const double slope = bevel > 0 ? std::clamp(1 - (d + .5) / bevel, 0.0, 1.0) : 0;
    p = {true, static_cast<float>(nx * slope), static_cast<float>(ny * slope),
         static_cast<float>(std::sqrt(1 - slope * slope))};
  });
  return solid;
}

Solid Union(const std::vector<Solid>& solids) {
  Area area{1 << 20, 1 << 20, -(1 << 20), -(1 << 20)};
  for (const Solid& s : solids) {
    area.left = std::min(area.left, s.area.left), area.right = std::max(area.right, s.area.right);
    area.top = std::min(area.top, s.area.top), area.bottom = std::max(area.bottom, s.area.bottom);
  }
  if (solids.empty()) return {};
  Solid out = Frame(area.left, area.top, area.right, area.bottom);
  EachPoint(out, [&](Solid::Point& p, int x, int y) {
    for (const Solid& s : solids) {
      if (!s.area.Contains(x, y)) continue;
      const Solid::Point& q = s.At(x, y);
      if (q.inside && (!p.inside || q.z > p.z)) p = q;
    }
  });
  return out;
}

Pieces::Pieces(const std::vector<std::string>& letters, int cellSize)
    : cell_(cellSize), columns_(static_cast<int>(letters[0].size())), rows_(static_cast<int>(letters.size())),
      piece_(static_cast<size_t>(columns_ * rows_), -1) {
  const auto letter = [&](int c, int r) { return letters[static_cast<size_t>(r)][static_cast<size_t>(c)]; };
  for (int r = 0; r < rows_; ++r)
    for (int c = 0; c < columns_; ++c) {
      if (piece_[static_cast<size_t>(r * columns_ + c)] >= 0) continue;
      const int number = static_cast<int>(firstColumn_.size());
      firstColumn_.push_back(c), firstRow_.push_back(r);
      std::vector<std::pair<int, int>> open{{c, r}};
      while (!open.empty()) {
        const auto [u, v] = open.back();
        open.pop_back();
        if (u < 0 || v < 0 || u >= columns_ || v >= rows_ || letter(u, v) != letter(c, r)) continue;
        int& here = piece_[static_cast<size_t>(v * columns_ + u)];
        if (here >= 0) continue;
        here = number;
        if (letter(c, r) != '.') open.insert(open.end(), {{u + 1, v}, {u - 1, v}, {u, v + 1}, {u, v - 1}});
      }
    }
}

bool Pieces::Takes(int x, int y, int wanted) const {
  const int here = At(x, y);
  return (wanted == kAny || here == wanted) && (only < 0 || here < 0 || SetOf(here) == only);
}

int Pieces::SetOf(int number) const {
  return (firstColumn_[static_cast<size_t>(number)] & 1) + 2 * (firstRow_[static_cast<size_t>(number)] & 1);
}

int Pieces::At(int x, int y) const {
  const int c = x >= 0 ? x / cell_ : -1, r = y >= 0 ? y / cell_ : -1;
  return c >= 0 && r >= 0 && c < columns_ && r < rows_ ? piece_[static_cast<size_t>(r * columns_ + c)] : -1;
}

Canvas::Within::Within(Canvas& canvas, double x, double y) : canvas_(canvas), before_(canvas.piece_) {
  if (canvas.pieces && before_ == Pieces::kAny)
    canvas.piece_ = canvas.pieces->At(static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y)));
}

Canvas::Canvas(const Palette& palette, int width, int height)
    : clip{0, 0, width - 1, height - 1}, palette_(&palette), width_(width), height_(height),
      dots_(static_cast<size_t>(width) * static_cast<size_t>(height)), ink_(palette.Ramp("ink")) {}

Dot Canvas::At(int x, int y) const {
  if (wrap) x = (x % width_ + width_) % width_, y = (y % height_ + height_) % height_;
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return {};
  return dots_[static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x)];
}

void Canvas::Set(int x, int y, Dot dot) {
  if (wrap) x = (x % width_ + width_) % width_, y = (y % height_ + height_) % height_;
  if (x < 0 || y < 0 || x >= width_ || y >= height_ || !clip.Contains(x, y)) return;
  if (pieces && !pieces->Takes(x, y, piece_)) return;
  dots_[static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x)] = dot;
}

void Canvas::Draw(const Solid& solid, const Paint& paint) {
  const Within within(*this, (solid.area.left + solid.area.right + 1) * .5,
                      (solid.area.top + solid.area.bottom + 1) * .5);
  const Material* material = &kMaterials[0];
  for (const Material& m : kMaterials)
    if (paint.material == m.name) material = &m;
  const int last = palette_->Steps(paint.ramp) - 1;
  const bool metal = material->name == kMaterials[3].name;
  const auto inside = [&](int x, int y) { return solid.area.Contains(x, y) && solid.At(x, y).inside; };
  if (paint.parting != Parting::None) {
    for (int y = solid.area.top - 1; y <= solid.area.bottom + 1; ++y)
      for (int x = solid.area.left - 1; x <= solid.area.right + 1; ++x) {
        const Dot below = At(x, y);
        if (below.colour == kClear || inside(x, y)) continue;
        const bool side = inside(x + 1, y) || inside(x - 1, y) || inside(x, y + 1) || inside(x, y - 1);
        const bool lit = inside(x - 1, y) || inside(x, y - 1) || inside(x - 1, y - 1);
        if (paint.parting == Parting::Line && side)
          Set(x, y, {static_cast<Colour>(paint.ramp * kStepsPerRamp), below.alpha});
        if (paint.parting == Parting::Dark && side && below.colour % kStepsPerRamp > 1)
          Set(x, y, {static_cast<Colour>(below.colour / kStepsPerRamp * kStepsPerRamp + 1), below.alpha});
        if (paint.parting == Parting::Shadow && lit && below.colour % kStepsPerRamp > 1)
          Set(x, y, {palette_->Step(below.colour, -1), below.alpha});
      }
  }
  for (int y = solid.area.top; y <= solid.area.bottom; ++y)
    for (int x = solid.area.left; x <= solid.area.right; ++x) {
      const Solid::Point& p = solid.At(x, y);
      if (!p.inside) continue;
      const bool set = At(x, y).colour != kClear;
      if ((paint.under && set) || (paint.inside && !set)) continue;
      int step = paint.flat;
      if (step < 0) {
        double light = p.x * kLight[0] + p.y * kLight[1] + p.z * kLight[2] + paint.bias;
        if (paint.noise != 0) light += paint.noise * (Hash(x, y, paint.seed) - .5);
        step = 1 + (light > material->step2) + (light > material->step3) + (light > material->step4);
        if (metal && p.x * .6 + p.y * .6 > .62) step = std::max(step, 2); // light thrown back from the ground
      }
      Set(x, y, {static_cast<Colour>(paint.ramp * kStepsPerRamp + std::min(step, last)), paint.alpha});
    }
}

void Canvas::Line(double x0, double y0, double x1, double y1, Dot dot) {
  const Within within(*this, (x0 + x1 + 1) * .5, (y0 + y1 + 1) * .5);
  const int n = std::max(1, static_cast<int>(std::ceil(std::max(std::abs(x1 - x0), std::abs(y1 - y0)))));
  for (int i = 0; i <= n; ++i)
    Set(static_cast<int>(std::floor(x0 + (x1 - x0) * i / n + .5)),
        static_cast<int>(std::floor(y0 + (y1 - y0) * i / n + .5)), dot);
}

// The outline colour of a clear pixel next to a set one, the neighbour below first; kClear if it touches
// none.
Colour Canvas::LineColour(int x, int y) const {
  constexpr int kSides[4][2] = {{0, 1}, {1, 0}, {0, -1}, {-1, 0}};
  for (const auto& side : kSides) {
    const Colour c = At(x + side[0], y + side[1]).colour;
    if (Parted(x, y, x + side[0], y + side[1])) continue;
    if (c != kClear && !(c & kGrey)) return static_cast<Colour>(c / kStepsPerRamp * kStepsPerRamp);
  }
  return kClear;
}

void Canvas::Stamp(const Canvas& layer, int ox, int oy, Edge edge, bool under) {
  if (edge != Edge::None)
    for (int y = -1; y <= layer.height_; ++y)
      for (int x = -1; x <= layer.width_; ++x) {
        if (layer.Solid_(x, y)) continue;
        const Colour line = layer.LineColour(x, y);
        if (line != kClear && (edge == Edge::Full || Solid_(x + ox, y + oy)))
          Set(x + ox, y + oy, {line, 255});
      }
  for (int y = 0; y < layer.height_; ++y)
    for (int x = 0; x < layer.width_; ++x) {
      const Dot dot = layer.At(x, y);
      if (dot.colour != kClear && !(under && Solid_(x + ox, y + oy))) Set(x + ox, y + oy, dot);
    }
}

void Canvas::Outline() {
  Canvas out = *this;
  for (int y = 0; y < height_; ++y)
    for (int x = 0; x < width_; ++x)
      if (!Solid_(x, y))
        if (const Colour line = LineColour(x, y); line != kClear) out.Set(x, y, {line, 255});
  *this = out;
}

void Canvas::Rim() {
  Canvas out = *this;
  for (int y = 0; y < height_; ++y)
    for (int x = 0; x < width_; ++x) {
      const Dot d = At(x, y);
      if (d.colour != kClear && d.colour % kStepsPerRamp >= 2 && d.colour / kStepsPerRamp != ink_ &&
          !Solid_(x, y - 1))
        out.Set(x, y, {palette_->Step(d.colour, 1), d.alpha});
    }
  *this = out;
}

void Canvas::Glint() {
  Canvas out = *this;
  for (int y = 0; y < height_; ++y)
    for (int x = 0; x < width_; ++x) {
      const Dot d = At(x, y);
      const int step = d.colour % kStepsPerRamp;
      if (d.colour == kClear || d.colour / kStepsPerRamp == ink_ || step == 0) continue;
      const bool up = !Solid_(x, y - 1), left = !Solid_(x - 1, y), down = !Solid_(x, y + 1),
                 right = !Solid_(x + 1, y);
      int by = 0;
      if (up && !down)
        by = 2;
      else if (left && !right)
        by = 1;
      else if ((down || right) && step > 1)
        by = -1;
      out.Set(x, y, {palette_->Step(d.colour, by), d.alpha});
    }
  *this = out;
}

void Canvas::Bulge(double by) {
  const int w = width_ + 8, h = height_ + 8;
  std::vector<float> m(static_cast<size_t>(w) * static_cast<size_t>(h)), blurred;
  const auto at = [&](std::vector<float>& v, int x, int y) -> float& {
    return v[static_cast<size_t>(std::clamp(y, 0, h - 1)) * static_cast<size_t>(w) +
             static_cast<size_t>(std::clamp(x, 0, w - 1))];
  };
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) at(m, x, y) = Solid_(x - 4, y - 4) ? 1.f : 0.f;
  for (int pass = 0; pass < 4; ++pass) {
    blurred = m;
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x) {
        float sum = 0;
        for (int j = -1; j <= 1; ++j)
          for (int i = -1; i <= 1; ++i) sum += at(m, x + i, y + j);
        at(blurred, x, y) = sum / 9;
      }
    m = blurred;
  }
  for (int y = 0; y < height_; ++y)
    for (int x = 0; x < width_; ++x) {
      const Dot d = At(x, y);
      if (d.colour == kClear || d.colour / kStepsPerRamp == ink_ || d.colour % kStepsPerRamp == 0) continue;
      const double light = ((at(m, x + 5, y + 4) - at(m, x + 3, y + 4)) * .6 +
                            (at(m, x + 4, y + 5) - at(m, x + 4, y + 3)) * .8) *
                           by;
      const Colour c = palette_->Step(d.colour, light > .12 ? 1 : light < -.10 ? -1 : 0);
      Set(x, y, {c % kStepsPerRamp ? c : static_cast<Colour>(c + 1), d.alpha});
    }
}

void Canvas::Cylinder() {
  for (int y = 0; y < height_; ++y) {
    int left = width_, right = -1;
    for (int x = 0; x < width_; ++x)
      if (Solid_(x, y)) left = std::min(left, x), right = std::max(right, x);
    for (int x = left; x <= right; ++x) {
      const Dot d = At(x, y);
      if (d.colour == kClear || d.colour / kStepsPerRamp == ink_ || d.colour % kStepsPerRamp == 0) continue;
      const double u = (x - left + .5) / (right - left + 1);
      const Colour c = palette_->Step(d.colour, u < .12 ? 0 : u < .32 ? 1 : u < .6 ? 0 : u < .86 ? -1 : -2);
      Set(x, y, {c % kStepsPerRamp ? c : static_cast<Colour>(c + 1), d.alpha});
    }
  }
}

void Canvas::Despeckle() {
  Canvas out = *this;
  for (int y = 0; y < height_; ++y)
    for (int x = 0; x < width_; ++x) {
      bool alone = Solid_(x, y);
      for (int j = -1; j <= 1; ++j)
        for (int i = -1; i <= 1; ++i)
          if ((i || j) && Solid_(x + i, y + j)) alone = false;
      if (alone) out.Set(x, y, {});
    }
  *this = out;
}

void Canvas::Shade(int by) {
  for (Dot& d : dots_)
    if (d.colour / kStepsPerRamp != ink_) d.colour = palette_->Step(d.colour, by);
}

void Canvas::Recolour(int from, int to) {
  for (Dot& d : dots_)
    if (d.colour != kClear && d.colour / kStepsPerRamp == from) d.colour = palette_->InRamp(d.colour, to);
}

void Canvas::FlipX() {
  for (int y = 0; y < height_; ++y)
    std::reverse(dots_.begin() + y * width_, dots_.begin() + (y + 1) * width_);
}

void Canvas::FlipY() {
  for (int y = 0; y < height_ / 2; ++y)
    std::swap_ranges(dots_.begin() + y * width_, dots_.begin() + (y + 1) * width_,
                     dots_.begin() + (height_ - 1 - y) * width_);
}

void Canvas::Turn() {
  Canvas out(*palette_, height_, width_);
  out.wrap = wrap;
  for (int y = 0; y < width_; ++y)
    for (int x = 0; x < height_; ++x) out.Set(x, y, At(y, height_ - 1 - x));
  *this = out;
}

void Canvas::Shift(int dx, int dy) {
  Canvas out(*palette_, width_, height_);
  out.clip = clip;
  for (int y = 0; y < height_; ++y)
    for (int x = 0; x < width_; ++x)
      out.dots_[static_cast<size_t>(((y + dy) % height_ + height_) % height_) * static_cast<size_t>(width_) +
                static_cast<size_t>(((x + dx) % width_ + width_) % width_)] = At(x, y);
  out.wrap = wrap;
  *this = out;
}

void Canvas::Narrow(int width) {
  width = std::max(1, width);
  Canvas out(*palette_, width, height_);
  for (int y = 0; y < height_; ++y)
    for (int x = 0; x < width; ++x)
      out.Set(x, y, At(static_cast<int>(std::floor(x * (width_ - 1.0) / std::max(1, width - 1) + .5)), y));
  *this = out;
}

void Canvas::Fade(uint8_t alpha) {
  for (Dot& d : dots_) d.alpha = static_cast<uint8_t>(d.alpha * alpha / 255);
}

} // namespace vesk::studio
