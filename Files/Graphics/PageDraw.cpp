#include "Files/Graphics/PageDraw.h"

#include "Files/Graphics/Draw.h"
#include "Files/Graphics/Texture.h"
#include "Files/Graphics/View.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

constexpr int32_t kMostVertices = 65536 / 6 * 6; // of one request
constexpr float kStraight = 0.001f;              // radians below which nothing is turned
constexpr float kLeastTiledScale = 0.0001f;

struct Box {
  float left, top, right, bottom;
};

float TargetWidth(const PageEntry& entry) { return entry.targetWidth ? entry.targetWidth : 1.0f; }
float TargetHeight(const PageEntry& entry) { return entry.targetHeight ? entry.targetHeight : 1.0f; }

Box TextureBox(const PageEntry& entry, const TextureSlot& page) {
  return {static_cast<float>(entry.sourceX) * page.invWidth,
          static_cast<float>(entry.sourceY) * page.invHeight,
          static_cast<float>(entry.sourceX + entry.sourceWidth) * page.invWidth,
          static_cast<float>(entry.sourceY + entry.sourceHeight) * page.invHeight};
}

CornerColours Corners(const CornerColours& words) {
  if (!Drawing().cornerIds) return words;
  constexpr uint32_t kIds[] = {0, 1, 0x10000, 0x10001};
  CornerColours marked;
  for (size_t i = 0; i < words.size(); ++i) marked[i] = (words[i] & ~0x00010001u) | kIds[i];
  return marked;
}
CornerColours Corners(uint32_t word) { return Corners(CornerColours{word, word, word, word}); }

void WriteQuad(TexturedVertex* v, const Box& at, const Box& uv, float depth, const CornerColours& c) {
  v[0] = {at.left, at.top, depth, c[0], uv.left, uv.top};
  v[1] = {at.right, at.top, depth, c[1], uv.right, uv.top};
  v[2] = {at.right, at.bottom, depth, c[2], uv.right, uv.bottom};
  v[3] = {at.right, at.bottom, depth, c[2], uv.right, uv.bottom};
  v[4] = {at.left, at.bottom, depth, c[3], uv.left, uv.bottom};
  v[5] = {at.left, at.top, depth, c[0], uv.left, uv.top};
}

// The box lies relative to (x, y) and turns about that point.
void WriteTurnedQuad(TexturedVertex* v, float x, float y, const Box& at, float angle, const Box& uv,
                     float depth, const CornerColours& c) {
  const float sine = std::sin(angle), cosine = std::cos(angle);
  const auto corner = [&](float dx, float dy, uint32_t colour, float u, float w) {
    return TexturedVertex{x + cosine * dx + sine * dy, y - sine * dx + cosine * dy, depth, colour, u, w};
  };
  v[0] = corner(at.left, at.top, c[0], uv.left, uv.top);
  v[1] = corner(at.right, at.top, c[1], uv.right, uv.top);
  v[2] = v[3] = corner(at.right, at.bottom, c[2], uv.right, uv.bottom);
  v[4] = corner(at.left, at.bottom, c[3], uv.left, uv.bottom);
  v[5] = v[0];
}

void DrawBox(TextureHandle page, float x, float y, const Box& at, float angle, const Box& uv,
             const CornerColours& colours) {
  TexturedVertex* v = AllocVerts<TexturedVertex>(pr_trianglelist, page, 6);
  if (std::fabs(angle) < kStraight)
    WriteQuad(v, {x + at.left, y + at.top, x + at.right, y + at.bottom}, uv, Drawing().depth, colours);
  else
    WriteTurnedQuad(v, x, y, at, angle, uv, Drawing().depth, colours);
}

const TextureSlot* Page(const PageEntry& entry) {
  const TextureSlot* page = Texture_Find(entry.texture);
  return page && page->handle ? page : nullptr;
}

struct TiledAxis {
  float start;
  int32_t count;
};

TiledAxis Tile(bool tiled, float position, float size, int32_t low, int32_t high) {
  if (!tiled) return {position, 1};
  const auto from = static_cast<float>(low), to = static_cast<float>(high);
  return {std::fmod(position - from, size) + from - size,
          static_cast<int32_t>((to - from + size - 1) / size + 2)};
}

} // namespace

PageEntry Page_OfTexture(int32_t texture, int32_t width, int32_t height) {
  const auto w = static_cast<uint16_t>(width), h = static_cast<uint16_t>(height);
  return {0, 0, w, h, 0, 0, w, h, w, h, static_cast<int16_t>(texture)};
}

CornerColours CornerWords(int32_t leftTop, int32_t rightTop, int32_t rightBottom, int32_t leftBottom,
                          float alpha) {
  const auto word = [alpha](int32_t colour) { return ColourWord(static_cast<uint32_t>(colour), alpha); };
  return {word(leftTop), word(rightTop), word(rightBottom), word(leftBottom)};
}

bool Page_Draw(const PageEntry& entry, float x, float y, float originX, float originY, float alpha) {
  const TextureSlot* page = Page(entry);
  if (!page) return false;
  const float left = x - originX + entry.targetX, top = y - originY + entry.targetY;
  TexturedVertex* v = AllocVerts<TexturedVertex>(pr_trianglelist, page->handle, 6);
  WriteQuad(v, {left, top, left + TargetWidth(entry), top + TargetHeight(entry)}, TextureBox(entry, *page),
            Drawing().depth, Corners(ColourWord(0xFFFFFF, alpha)));
  return true;
}

bool Page_DrawExt(const PageEntry& entry, const PagePlace& place) {
  const TextureSlot* page = Page(entry);
  if (!page) return false;
  Box at;
  at.left = -(place.originX - entry.targetX) * place.xscale;
  at.top = -(place.originY - entry.targetY) * place.yscale;
  at.right = at.left + place.xscale * TargetWidth(entry);
  at.bottom = at.top + place.yscale * TargetHeight(entry);
  DrawBox(page->handle, place.x, place.y, at, ToRadians(place.rotation), TextureBox(entry, *page),
          Corners(ColourWord(place.colour, place.alpha)));
  return true;
}

bool Page_DrawStretched(const PageEntry& entry, int32_t frameWidth, int32_t frameHeight, PagePlace place,
                        float width, float height) {
  if (!(width > 0) || !(height > 0) || frameWidth <= 0 || frameHeight <= 0) return true;
  place.originX = place.originY = place.rotation = 0;
  place.xscale = width / static_cast<float>(frameWidth);
  place.yscale = height / static_cast<float>(frameHeight);
  return Page_DrawExt(entry, place);
}

bool Page_DrawPart(const PageEntry& entry, const PagePart& part, const PagePlace& place) {
  const uint32_t word = ColourWord(place.colour, place.alpha);
  return Page_DrawGeneral(entry, part, place, {word, word, word, word});
}

bool Page_DrawGeneral(const PageEntry& entry, const PagePart& part, const PagePlace& place,
                      const CornerColours& colours) {
  const TextureSlot* page = Page(entry);
  if (!page) return false;
  const float angle = ToRadians(place.rotation), cosine = std::cos(angle), sine = std::sin(angle);
  float x = place.x, y = place.y, width = part.width, height = part.height;
  float sourceLeft = part.left - entry.targetX, sourceTop = part.top - entry.targetY;
  if (sourceLeft < 0) {
    const float skip = -sourceLeft;
    x += std::trunc(skip * cosine * place.xscale);
    y -= std::trunc(skip * sine * place.yscale);
    width -= skip;
    sourceLeft = 0;
  }
  if (sourceTop < 0) {
    const float skip = -sourceTop;
    x += std::trunc(skip * sine * place.xscale);
    y += std::trunc(skip * cosine * place.yscale);
    height -= skip;
    sourceTop = 0;
  }
  const float targetWidth = TargetWidth(entry), targetHeight = TargetHeight(entry);
  width = std::min(width, targetWidth - sourceLeft);
  height = std::min(height, targetHeight - sourceTop);
  if (!(width > 0) || !(height > 0)) return true;
  const float fx = entry.sourceWidth / targetWidth, fy = entry.sourceHeight / targetHeight;
  Box uv;
  uv.left = (entry.sourceX + fx * sourceLeft) * page->invWidth;
  uv.top = (entry.sourceY + fy * sourceTop) * page->invHeight;
  uv.right = uv.left + fx * width * page->invWidth;
  uv.bottom = uv.top + fy * height * page->invHeight;
  DrawBox(page->handle, x, y, {0, 0, width * place.xscale, height * place.yscale}, angle, uv,
          Corners(colours));
  return true;
}

bool Page_DrawGlyph(const PageEntry& entry, const PagePart& glyph, float border, const PagePlace& place,
                    const CornerColours& colours) {
  const TextureSlot* page = Page(entry);
  if (!page) return false;
  const float left = entry.sourceX + glyph.left, top = entry.sourceY + glyph.top;
  const Box at{-border * place.xscale, -border * place.yscale, (glyph.width + border) * place.xscale,
               (glyph.height + border) * place.yscale};
  const Box uv{(left - border) * page->invWidth, (top - border) * page->invHeight,
               (left + glyph.width + border) * page->invWidth,
               (top + glyph.height + border) * page->invHeight};
  DrawBox(page->handle, place.x, place.y, at, ToRadians(place.rotation), uv, Corners(colours));
  return true;
}

bool Page_DrawTiled(const PageEntry& entry, const PagePlace& place, bool htiled, bool vtiled) {
  if (place.xscale < kLeastTiledScale || place.yscale < kLeastTiledScale) return true;
  if (!htiled && !vtiled) return Page_DrawExt(entry, place);
  const TextureSlot* page = Page(entry);
  if (!page) return false;
  const float stepX = entry.boundingWidth * place.xscale, stepY = entry.boundingHeight * place.yscale;
  if (!(stepX > 0) || !(stepY > 0)) return true;
  const DrawRect& view = View().viewBounds;
  const TiledAxis columns = Tile(htiled, place.x, stepX, view.left, view.right);
  const TiledAxis rows = Tile(vtiled, place.y, stepY, view.top, view.bottom);
  if (columns.count <= 0 || rows.count <= 0) return true;
  const Box uv = TextureBox(entry, *page);
  const CornerColours colours = Corners(ColourWord(place.colour, place.alpha));
  const float width = TargetWidth(entry) * place.xscale, height = TargetHeight(entry) * place.yscale;
  const float insetX = entry.targetX * place.xscale, insetY = entry.targetY * place.yscale;
  int64_t left = int64_t{columns.count} * rows.count * 6; // vertices still to be asked for
  TexturedVertex *v = nullptr, *end = nullptr;
  for (int32_t row = 0; row < rows.count; ++row)
    for (int32_t column = 0; column < columns.count; ++column) {
      if (v == end) {
        const auto run = static_cast<int32_t>(std::min<int64_t>(left, kMostVertices));
        v = AllocVerts<TexturedVertex>(pr_trianglelist, page->handle, run);
        end = v + run;
        left -= run;
      }
      const float x = columns.start + static_cast<float>(column) * stepX + insetX;
      const float y = rows.start + static_cast<float>(row) * stepY + insetY;
      WriteQuad(v, {x, y, x + width, y + height}, uv, Drawing().depth, colours);
      v += 6;
    }
  return true;
}

bool Page_DrawCorners(const PageEntry& entry, const std::array<float, 8>& at, float alpha) {
  const TextureSlot* page = Page(entry);
  if (!page) return false;
  const Box uv = TextureBox(entry, *page);
  const CornerColours c = Corners(ColourWord(0xFFFFFF, alpha));
  const float depth = Drawing().depth;
  TexturedVertex* v = AllocVerts<TexturedVertex>(pr_trianglelist, page->handle, 6);
  v[0] = v[5] = {at[0], at[1], depth, c[0], uv.left, uv.top};
  v[1] = {at[2], at[3], depth, c[1], uv.right, uv.top};
  v[2] = v[3] = {at[4], at[5], depth, c[2], uv.right, uv.bottom};
  v[4] = {at[6], at[7], depth, c[3], uv.left, uv.bottom};
  return true;
}

} // namespace vesk
