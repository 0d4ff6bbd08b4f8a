#include "pack/studio/Icon.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace vesk::studio {

namespace {

constexpr double kCovered = .42; // of a new pixel, for it to be part of the silhouette
constexpr double kAccent = 1.5;  // how much more an eye or a glint counts than a plain pixel

int Brightness(uint32_t rgba) {
  return static_cast<int>((rgba & 255) * 3 + (rgba >> 8 & 255) * 5 + (rgba >> 16 & 255) * 2) / 10;
}

Canvas ToCanvas(const Palette& palette, const Picture& frame, const Area& part) {
  Canvas canvas(palette, part.right - part.left + 1, part.bottom - part.top + 1);
  std::map<uint32_t, Colour> known;
  for (int y = part.top; y <= part.bottom; ++y)
    for (int x = part.left; x <= part.right; ++x) {
      if (x < 0 || y < 0 || x >= frame.width || y >= frame.height) continue;
      const uint32_t pixel = frame.rgba[static_cast<size_t>(y * frame.width + x)];
      if (!(pixel >> 24)) continue;
      const auto [it, fresh] = known.try_emplace(pixel | 0xff000000u, kClear);
      if (fresh) it->second = palette.Find(pixel | 0xff000000u);
      canvas.Set(x - part.left, y - part.top, {it->second, static_cast<uint8_t>(pixel >> 24)});
    }
  return canvas;
}

Area Visible(const Canvas& canvas) {
  Area box{canvas.Width(), canvas.Height(), -1, -1};
  for (int y = 0; y < canvas.Height(); ++y)
    for (int x = 0; x < canvas.Width(); ++x)
      if (canvas.At(x, y).colour != kClear) {
        box.left = std::min(box.left, x), box.right = std::max(box.right, x);
        box.top = std::min(box.top, y), box.bottom = std::max(box.bottom, y);
      }
  return box;
}

// Takes away dark pixels that touch a clear one; tells whether most of the border was dark.
bool StripOutline(Canvas& canvas, const Palette& palette) {
  Canvas out = canvas;
  int dark = 0, border = 0;
  for (int y = 0; y < canvas.Height(); ++y)
    for (int x = 0; x < canvas.Width(); ++x) {
      const auto clear = [&](int u, int v) { return canvas.At(u, v).colour == kClear; };
      if (clear(x, y) || !(clear(x - 1, y) || clear(x + 1, y) || clear(x, y - 1) || clear(x, y + 1)))
        continue;
      ++border;
      if (Brightness(palette.Rgba(canvas.At(x, y).colour)) > 64) continue;
      ++dark;
      out.Set(x, y, {});
    }
  if (dark * 5 < border * 3) return false;
  canvas = out;
  return true;
}

Canvas Reduce(const Palette& palette, const Canvas& from, const Area& box, double by, int width, int height) {
  Canvas out(palette, width, height);
  for (int j = 0; j < height; ++j)
    for (int i = 0; i < width; ++i) {
      const double left = box.left + i * by, top = box.top + j * by, right = left + by, bottom = top + by;
      std::map<Colour, double> votes;
      double covered = 0;
      for (int y = static_cast<int>(top); y < bottom; ++y)
        for (int x = static_cast<int>(left); x < right; ++x) {
          const Dot dot = from.At(x, y);
          if (dot.colour == kClear || x > box.right || y > box.bottom) continue;
          const double share = (std::min(right, x + 1.0) - std::max(left, static_cast<double>(x))) *
                               (std::min(bottom, y + 1.0) - std::max(top, static_cast<double>(y)));
          const int light = Brightness(palette.Rgba(dot.colour));
          covered += share;
          votes[dot.colour] += share * (light < 30 || light > 235 ? kAccent : 1);
        }
      if (covered < kCovered * by * by) continue;
      const auto best = std::max_element(votes.begin(), votes.end(),
                                         [](const auto& a, const auto& b) { return a.second < b.second; });
      out.Set(i, j, {best->first, 255});
    }
  return out;
}

} // namespace

Canvas MakeIcon(const Palette& palette, const Picture& frame, const IconRule& rule) {
  const int size = rule.size;
  Area part = rule.part;
  const bool whole = part.right < part.left;
  if (whole) part = {0, 0, frame.width - 1, frame.height - 1};
  Canvas source = ToCanvas(palette, frame, part);
  if (source.Width() == size && source.Height() == size) return source;
  Canvas icon(palette, size, size);
  Area box = Visible(source);
  const auto width = [&] { return box.right - box.left + 1; };
  const auto height = [&] { return box.bottom - box.top + 1; };
  if (box.right < 0) return icon;
  if (rule.cut || (width() <= size && height() <= size)) {
    const int w = std::min(width(), size), h = std::min(height(), size);
    const int left = box.left + (width() - w) / 2;
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x)
        icon.Set((size - w) / 2 + x, (size - h + 1) / 2 + y, source.At(left + x, box.top + y));
    return icon;
  }
  const bool outlined = StripOutline(source, palette);
  box = Visible(source);
  const int room = outlined ? size - 2 : size;
  const double by = std::max(1.0, std::max(width(), height()) / static_cast<double>(room));
  const int w = std::min(room, static_cast<int>(std::lround(width() / by)));
  const int h = std::min(room, static_cast<int>(std::lround(height() / by)));
  icon.Stamp(Reduce(palette, source, box, by, std::max(1, w), std::max(1, h)), (size - w) / 2,
             (size - h + 1) / 2, Canvas::Edge::None, false);
  if (outlined) icon.Outline();
  return icon;
}

} // namespace vesk::studio
