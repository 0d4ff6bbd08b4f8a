#pragma once
// Fonts, measuring and drawing of text. "#" breaks a line, "\#" shows the sign. Sizes are whole pixels.
#include "Files/Code/Self.h"
#include "Files/Sprite/Sprite.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

enum TextAlign : int32_t {
  fa_left = 0,
  fa_center = 1,
  fa_right = 2,
  fa_top = 0,
  fa_middle = 1,
  fa_bottom = 2
};

struct Glyph {
  uint16_t character = 0; // UTF-16
  int16_t x = 0, y = 0;   // on the page
  int16_t frame = 0;      // of the sprite; the width on the page for a page font
  int16_t height = 0;
  int16_t advance = 0; // pen movement
  int16_t offset = 0;  // added to x when drawn
};

class CFontFb {
public:
  std::string name;
  std::string assetName;
  int32_t size = 0;
  bool bold = false, italic = false;
  int32_t charset = 0, antialias = 0;
  int32_t first = 0, last = 0;
  int32_t spriteIndex = -1; // -1: a page font
  int32_t textureWidth = 0, textureHeight = 0;
  int32_t height = 0; // the largest glyph's: default line height
  const PageEntry* page = nullptr;
  std::unique_ptr<PageEntry> ownedPage;
  std::vector<Glyph> glyphs; // ascending by character
  float scaleX = 1, scaleY = 1;
  float texelOffset = 0.5f;

  // The glyph of the character, else the one of 9647, else null.
  const Glyph* FindGlyph(uint16_t character) const;
};

struct FontState {
  std::vector<std::unique_ptr<CFontFb>> table; // by index; null for a hole
  std::unique_ptr<CFontFb> builtIn;            // made at first need
  int32_t builtInTexture = -1;
  int32_t current = -1;
  int32_t halign = 0, valign = 0;
};
FontState& Fonts();
void Font_Reset();
void Font_ResetText(); // font -1, alignment left and top
CFontFb* Font_Find(int32_t index);
int32_t Font_FindByName(std::string_view name);
CFontFb& Font_Current(); // the built-in one when there is no other

// The text in lines of UTF-16. `width` below 0: no wrap.
std::vector<std::u16string> SplitLines(const CFontFb& font, std::string_view text, int32_t width);
int32_t Font_LineWidth(const CFontFb& font, std::u16string_view line);

int32_t font_add_sprite_ext(int32_t sprite, std::string_view map, bool proportional, int32_t separation);
int32_t font_add_sprite(int32_t sprite, int32_t first, bool proportional, int32_t separation);
bool font_exists(int32_t font);
void font_delete(int32_t font);
void draw_set_font(int32_t font);
int32_t draw_get_font();
void draw_set_halign(int32_t align);
void draw_set_valign(int32_t align);
int32_t draw_get_halign();
int32_t draw_get_valign();

int32_t string_width(std::string_view text);
int32_t string_height(std::string_view text);
int32_t string_width_ext(std::string_view text, int32_t separation, int32_t width);
int32_t string_height_ext(std::string_view text, int32_t separation, int32_t width);

// `value` of any kind is turned into text. A separation below 0 takes the font's height; a width below 0
// never wraps.
void draw_text(float x, float y, const RValue& value);
void draw_text_ext(float x, float y, const RValue& value, int32_t separation, int32_t width);
void draw_text_transformed(float x, float y, const RValue& value, float xscale, float yscale, float angle);
void draw_text_ext_transformed(float x, float y, const RValue& value, int32_t separation, int32_t width,
                               float xscale, float yscale, float angle);
// Four corner colours: top left, top right, bottom right, bottom left of the whole text.
void draw_text_colour(float x, float y, const RValue& value, int32_t colour1, int32_t colour2,
                      int32_t colour3, int32_t colour4, float alpha);
void draw_text_ext_colour(float x, float y, const RValue& value, int32_t separation, int32_t width,
                          int32_t colour1, int32_t colour2, int32_t colour3, int32_t colour4, float alpha);
void draw_text_transformed_colour(float x, float y, const RValue& value, float xscale, float yscale,
                                  float angle, int32_t colour1, int32_t colour2, int32_t colour3,
                                  int32_t colour4, float alpha);
void draw_text_ext_transformed_colour(float x, float y, const RValue& value, int32_t separation,
                                      int32_t width, float xscale, float yscale, float angle, int32_t colour1,
                                      int32_t colour2, int32_t colour3, int32_t colour4, float alpha);

// Variables as rules write them: draw_text(x, y, self[text]).
template <class V>
requires requires(const V& v) { v.value(); }
void draw_text(float x, float y, const V& variable) { draw_text(x, y, variable.value()); }
template <class V>
requires requires(const V& v) { v.value(); }
void draw_text_transformed(float x, float y, const V& variable, float xscale, float yscale, float angle) {
  draw_text_transformed(x, y, variable.value(), xscale, yscale, angle);
}

} // namespace vesk
