#include "pack/studio/Studio.h"

#include <algorithm>
#include <stdexcept>

namespace vesk {

namespace {

constexpr uint32_t kPaper = 0xff808080, kInk = 0xffffffff, kBox = 0xff40c0ff, kOrigin = 0xff3030ff;
constexpr int kGap = 4, kTextHeight = 10, kWidest = 1500;

void Set(Picture& sheet, int x, int y, uint32_t colour) {
  if (x >= 0 && y >= 0 && x < sheet.width && y < sheet.height)
    sheet.rgba[static_cast<size_t>(y) * static_cast<size_t>(sheet.width) + static_cast<size_t>(x)] = colour;
}

uint32_t Over(uint32_t above, uint32_t below) {
  const uint32_t alpha = above >> 24;
  uint32_t out = 0xff000000u;
  for (int shift = 0; shift < 24; shift += 8)
    out |= (((above >> shift & 255) * alpha + (below >> shift & 255) * (255 - alpha)) / 255) << shift;
  return out;
}

// Letters of the game's own font when it is there already; returns the pen's new place.
int Write(Studio& studio, Picture& sheet, int x, int y, const std::string& text) {
  const auto& font = studio.Frames("spr_spritefont");
  for (const char c : text) {
    const size_t frame = static_cast<size_t>(c - '!');
    if (c <= ' ' || frame >= font.size()) {
      x += 5;
      continue;
    }
    const Picture& glyph = font[frame];
    int left = glyph.width, right = 0;
    for (int j = 0; j < glyph.height; ++j)
      for (int i = 0; i < glyph.width; ++i)
        if (glyph.rgba[static_cast<size_t>(j * glyph.width + i)] >> 24)
          left = std::min(left, i), right = std::max(right, i);
    for (int j = 0; j < glyph.height; ++j)
      for (int i = left; i <= right; ++i)
        if (glyph.rgba[static_cast<size_t>(j * glyph.width + i)] == 0xffffffffu)
          Set(sheet, x + i - left, y + j, kInk);
    x += std::max(2, right - left);
  }
  return x;
}

struct Cell {
  const PictureSpec* spec;
  int frame, x, y;
};

} // namespace

Picture Enlarge(const Picture& picture, const std::vector<int>& area, int scale) {
  if (scale < 1 || scale > 16) throw std::runtime_error("the scale is 1 to 16");
  const bool some = area.size() == 4;
  const int left = some ? area[0] : 0, top = some ? area[1] : 0;
  Picture out{(some ? area[2] : picture.width) * scale, (some ? area[3] : picture.height) * scale, {}};
  if (out.width < 1 || out.height < 1 || out.width > 16384 || out.height > 16384)
    throw std::runtime_error("the area has no sensible size");
  for (int y = 0; y < out.height; ++y)
    for (int x = 0; x < out.width; ++x) {
      const int px = left + x / scale, py = top + y / scale;
      const bool inside = px >= 0 && py >= 0 && px < picture.width && py < picture.height;
      out.rgba.push_back(
          Over(inside ? picture.rgba[static_cast<size_t>(py * picture.width + px)] : 0, kPaper));
    }
  return out;
}

Picture MakeSheet(Studio& studio, const std::string& prefix, int scale, bool placeholders) {
  if (scale < 1 || scale > 16) throw std::runtime_error("the scale of a sheet is 1 to 16");
  std::vector<Cell> cells;
  struct Title {
    int x, y;
    std::string text;
  };
  std::vector<Title> titles;
  int x = kGap, y = kGap, widest = 0, bottom = 0;
  const bool exact = studio.Find(prefix) != nullptr;
  for (const PictureSpec& spec : studio.Specs()) {
    if (exact ? spec.name != prefix : spec.name.compare(0, prefix.size(), prefix) != 0) continue;
    if (!studio.Has(spec.name) && !placeholders) continue;
    const int wide = std::min(kWidest, std::max(spec.frames * (spec.width * scale + kGap),
                                                static_cast<int>(spec.name.size()) * 6 + 8));
    if (x > kGap && x + wide > kWidest) x = kGap, y = bottom + kGap;
    titles.push_back({x, y, spec.name + (studio.Has(spec.name) ? "" : " (placeholder)")});
    int fx = x, fy = y + kTextHeight;
    for (int frame = 0; frame < spec.frames; ++frame) {
      if (fx > x && fx + spec.width * scale > kWidest) fx = x, fy += spec.height * scale + kGap;
      cells.push_back({&spec, frame, fx, fy});
      fx += spec.width * scale + kGap;
      widest = std::max(widest, fx);
    }
    bottom = std::max(bottom, fy + spec.height * scale + kGap);
    x += wide + kGap;
    widest = std::max(widest, x);
  }
  if (cells.empty()) throw std::runtime_error("no picture's name starts with " + prefix);
  Picture sheet{widest, bottom + kGap, {}};
  sheet.rgba.assign(static_cast<size_t>(sheet.width) * static_cast<size_t>(sheet.height), kPaper);
  for (const Title& t : titles) Write(studio, sheet, t.x, t.y, t.text);
  for (const Cell& cell : cells) {
    const PictureSpec& spec = *cell.spec;
    const std::vector<Picture> dummy =
        studio.Has(spec.name) ? std::vector<Picture>() : studio.Placeholder(spec);
    const Picture& picture = dummy.empty() ? studio.Frames(spec.name)[static_cast<size_t>(cell.frame)]
                                           : dummy[static_cast<size_t>(cell.frame)];
    for (int j = 0; j < spec.height * scale; ++j)
      for (int i = 0; i < spec.width * scale; ++i)
        Set(sheet, cell.x + i, cell.y + j,
            Over(picture.rgba[static_cast<size_t>(j / scale * spec.width + i / scale)], kPaper));
    if (scale < 2 || spec.background) continue;
    const auto corner = [&](int px, int py, int sx, int sy) { // a small angle at a corner of the box
      for (int i = 0; i < scale; ++i) {
        Set(sheet, cell.x + px + sx * i, cell.y + py, kBox);
        Set(sheet, cell.x + px, cell.y + py + sy * i, kBox);
      }
    };
    corner(spec.boxLeft * scale - 1, spec.boxTop * scale - 1, 1, 1);
    corner((spec.boxRight + 1) * scale, spec.boxTop * scale - 1, -1, 1);
    corner(spec.boxLeft * scale - 1, (spec.boxBottom + 1) * scale, 1, -1);
    corner((spec.boxRight + 1) * scale, (spec.boxBottom + 1) * scale, -1, -1);
    for (int i = -scale; i <= scale; ++i) {
      Set(sheet, cell.x + spec.originX * scale + i, cell.y + spec.originY * scale, kOrigin);
      Set(sheet, cell.x + spec.originX * scale, cell.y + spec.originY * scale + i, kOrigin);
    }
  }
  return sheet;
}

} // namespace vesk
