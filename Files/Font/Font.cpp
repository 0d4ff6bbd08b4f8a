#include "Files/Font/Font.h"

#include "Files/Base/Error.h"
#include "Files/Font/BuiltInFont.h"
#include "Files/Graphics/Texture.h"
#include "Files/Sprite/DrawSprite.h"
#include "Platform/Text.h"

#include <algorithm>

namespace vesk {

namespace {

constexpr uint16_t kMissing = 9647; // a page font's box for characters that it hasn't got

FontState g_fonts;

const Glyph* Search(const std::vector<Glyph>& glyphs, uint16_t character) {
  const auto found =
      std::lower_bound(glyphs.begin(), glyphs.end(), character,
                       [](const Glyph& glyph, uint16_t wanted) { return glyph.character < wanted; });
  return found != glyphs.end() && found->character == character ? &*found : nullptr;
}

int32_t Add(std::unique_ptr<CFontFb> font) {
  const auto index = static_cast<int32_t>(g_fonts.table.size());
  font->assetName = "__newfont" + std::to_string(index);
  g_fonts.table.push_back(std::move(font));
  return index;
}

// The visible columns of a frame; the whole sprite where there are none to go by. The right one is exclusive.
struct Columns {
  int32_t left, right;
};
Columns VisibleColumns(const CSprite& sprite, int32_t frame, bool proportional) {
  const PageEntry* entry =
      proportional && frame < sprite.FrameCount() ? sprite.frames[static_cast<size_t>(frame)] : nullptr;
  if (!entry) return {0, sprite.width};
  return {entry->targetX, entry->targetX + entry->targetWidth};
}

std::unique_ptr<CFontFb> MakeSpriteFont(const CSprite& sprite, std::u16string characters, bool proportional,
                                        int32_t separation) {
  auto font = std::make_unique<CFontFb>();
  font->spriteIndex = sprite.index;
  font->texelOffset = 0;
  const bool blankGiven = characters.find(u' ') != std::u16string::npos;
  characters.resize(std::min(characters.size(), static_cast<size_t>(sprite.FrameCount())));
  const size_t drawn = characters.size();
  if (!blankGiven) characters.push_back(u' ');
  int32_t widest = 0;
  for (size_t i = 0; i < characters.size(); ++i) {
    const auto frame = static_cast<int32_t>(i);
    const Columns columns = VisibleColumns(sprite, frame, proportional);
    Glyph glyph;
    glyph.character = characters[i];
    glyph.frame = static_cast<int16_t>(frame);
    glyph.height = static_cast<int16_t>(sprite.height);
    glyph.advance = static_cast<int16_t>(columns.right + separation - columns.left);
    glyph.offset = static_cast<int16_t>(-columns.left);
    if (glyph.character != u' ') widest = std::max<int32_t>(widest, glyph.advance);
    if (i >= drawn) glyph.advance = static_cast<int16_t>(widest);
    font->height = std::max<int32_t>(font->height, glyph.height);
    font->glyphs.push_back(glyph);
  }
  std::stable_sort(font->glyphs.begin(), font->glyphs.end(),
                   [](const Glyph& a, const Glyph& b) { return a.character < b.character; });
  font->first = font->glyphs.empty() ? 0 : font->glyphs.front().character; // a blank without a frame
  font->last = font->first + static_cast<int32_t>(font->glyphs.size());
  return font;
}

int32_t AddSpriteFont(int32_t sprite, std::u16string characters, bool proportional, int32_t separation) {
  const CSprite* it = Sprite_Find(sprite);
  if (!it) {
    ReportError("Trying to create font from non-existing sprite.");
    return -1;
  }
  auto font = MakeSpriteFont(*it, std::move(characters), proportional, separation);
  font->spriteIndex = sprite;
  return Add(std::move(font));
}

} // namespace

FontState& Fonts() { return g_fonts; }

void Font_Reset() {
  Texture_Free(g_fonts.builtInTexture);
  g_fonts = {};
}

void Font_ResetText() {
  g_fonts.current = -1;
  g_fonts.halign = g_fonts.valign = 0;
}

CFontFb* Font_Find(int32_t index) {
  const auto& table = g_fonts.table;
  return index >= 0 && static_cast<size_t>(index) < table.size() ? table[static_cast<size_t>(index)].get()
                                                                 : nullptr;
}

int32_t Font_FindByName(std::string_view name) {
  for (size_t i = 0; i < g_fonts.table.size(); ++i)
    if (g_fonts.table[i] && g_fonts.table[i]->assetName == name) return static_cast<int32_t>(i);
  return -1;
}

CFontFb& Font_Current() {
  if (CFontFb* font = Font_Find(g_fonts.current)) return *font;
  if (!g_fonts.builtIn || !Texture_Find(g_fonts.builtInTexture))
    g_fonts.builtIn = BuiltInFont_Make(g_fonts.builtInTexture);
  return *g_fonts.builtIn;
}

const Glyph* CFontFb::FindGlyph(uint16_t character) const {
  const Glyph* glyph = Search(glyphs, character);
  return glyph || character == kMissing ? glyph : Search(glyphs, kMissing);
}

int32_t font_add_sprite_ext(int32_t sprite, std::string_view map, bool proportional, int32_t separation) {
  return AddSpriteFont(sprite, Text_ToUtf16(map), proportional, separation);
}

int32_t font_add_sprite(int32_t sprite, int32_t first, bool proportional, int32_t separation) {
  std::u16string characters;
  const int32_t count = std::max(0, sprite_get_number(sprite));
  for (int32_t i = 0; i < count; ++i) characters.push_back(static_cast<char16_t>(first + i));
  return AddSpriteFont(sprite, std::move(characters), proportional, separation);
}

bool font_exists(int32_t font) { return Font_Find(font) != nullptr; }

void font_delete(int32_t font) {
  if (Font_Find(font))
    g_fonts.table[static_cast<size_t>(font)].reset();
  else
    ReportError("Trying to delete non-existing font.");
}

void draw_set_font(int32_t font) { g_fonts.current = Font_Find(font) ? font : -1; }
int32_t draw_get_font() { return g_fonts.current; }
void draw_set_halign(int32_t align) { g_fonts.halign = align == 1 || align == 2 ? align : 0; }
void draw_set_valign(int32_t align) { g_fonts.valign = align == 1 || align == 2 ? align : 0; }
int32_t draw_get_halign() { return g_fonts.halign; }
int32_t draw_get_valign() { return g_fonts.valign; }

} // namespace vesk
