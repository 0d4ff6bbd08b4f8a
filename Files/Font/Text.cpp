// Text: its lines, its size, its drawing.
#include "Platform/Text.h"
#include "Files/Font/Font.h"
#include "Files/Function/Function.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/PageDraw.h"
#include "Files/Graphics/Registration.h"
#include "Files/Graphics/Texture.h"
#include "Files/Sprite/DrawSprite.h"

#include <algorithm>
#include <cmath>

namespace vesk {

namespace {

constexpr int32_t kNoWrap = 10'000'000; // pixels
constexpr char16_t kReturn = 13, kNewLine = 10, kBlank = u' ';

// "#" becomes a line break; behind a backslash it stays and the backslash goes.
std::u16string WithBreaks(std::string_view text) {
  std::string copy;
  copy.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size() && text[i + 1] == '#') {
      copy.push_back('#');
      ++i;
    } else {
      copy.push_back(text[i] == '#' ? static_cast<char>(kReturn) : text[i]);
    }
  }
  return Text_ToUtf16(copy);
}

int32_t Advance(const CFontFb& font, char16_t character) {
  const Glyph* glyph = font.FindGlyph(character);
  return glyph ? glyph->advance : 0;
}

std::vector<std::u16string> SplitAtBreaks(const std::u16string& text) {
  std::vector<std::u16string> lines;
  size_t start = 0;
  for (size_t at = 0; at < text.size(); ++at) {
    const char16_t c = text[at];
    if (c != kReturn && c != kNewLine) continue;
    const char16_t before = at > 0 ? text[at - 1] : u'\0';
    // The second half of a two-character break emits nothing and heads the next line, where it has no glyph.
    if (at == start && at > 0 &&
        ((c == kNewLine && before == kReturn) || (c == kReturn && before == kNewLine)))
      continue;
    lines.push_back(text.substr(start, at - start));
    start = at + 1;
  }
  const bool onlyHalfABreak = start + 1 == text.size() && start > 0 &&
                              ((text[start] == kNewLine && text[start - 1] == kReturn) ||
                               (text[start] == kReturn && text[start - 1] == kNewLine));
  if (start < text.size() && !onlyHalfABreak) lines.push_back(text.substr(start));
  return lines;
}

std::vector<std::u16string> SplitToWidth(const CFontFb& font, const std::u16string& text, int32_t width) {
  std::vector<std::u16string> lines;
  const size_t end = text.size();
  size_t start = 0;
  while (start < end) {
    size_t at = start;
    while (at < end && text[at] == kBlank) ++at;
    int32_t sum = 0;
    while (at < end && text[at] != kReturn && sum < width) sum += Advance(font, text[at++]);
    if (sum > width) --at;
    if (at < end && text[at] == kReturn) {
      lines.push_back(text.substr(start, at - start));
      start = at + 1;
      continue;
    }
    if (at == start) break; // nothing fits: the rest is dropped
    bool atBlank = at < end && text[at] == kBlank;
    if (at < end && !atBlank) {
      size_t blank = at;
      while (blank > start && text[blank] != kBlank) --blank;
      atBlank = blank > start;
      if (atBlank)
        at = blank;
      else // one word, longer than the width, stands alone and overflows
        while (at < end && text[at] != kBlank && text[at] != kReturn) ++at;
    }
    if (atBlank)
      while (at > start && text[at - 1] == kBlank) --at;
    if (at > start) lines.push_back(text.substr(start, at - start));
    start = at + 1;
  }
  return lines;
}

struct TextBlock {
  const CFontFb& font;
  std::vector<std::u16string> lines;
  int32_t lineHeight;
};

TextBlock Layout(std::string_view text, int32_t separation, int32_t width) {
  const CFontFb& font = Font_Current();
  return {font, SplitLines(font, text, width), separation < 0 ? font.height : separation};
}

// How a run of glyphs is put: the pen, its direction, and the colours.
struct Pen {
  float x, y;
  float xscale = 1, yscale = 1;
  float angle = 0; // degrees
  float cosine = 1, sine = 0;
  const CornerColours* gradient = nullptr; // ARGB over the line; null: the one colour below
  uint32_t colour = 0;                     // script order
  float alpha = 1;
};

uint32_t Mix(uint32_t a, uint32_t b, float share) {
  uint32_t mixed = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    const float from = static_cast<float>(a >> shift & 0xFF), to = static_cast<float>(b >> shift & 0xFF);
    mixed |= static_cast<uint32_t>(from + (to - from) * share + 0.5f) << shift;
  }
  return mixed;
}

CornerColours GradientOf(const CornerColours& line, float from, float to) {
  return {Mix(line[0], line[1], from), Mix(line[0], line[1], to), Mix(line[3], line[2], to),
          Mix(line[3], line[2], from)};
}

void DrawSpriteGlyph(const CFontFb& font, const Glyph& glyph, const Pen& pen, float x, float y, float from,
                     float to) {
  const CSprite* sprite = Sprite_Find(font.spriteIndex);
  if (!sprite || sprite->FrameCount() == 0) return;
  if (!pen.gradient) {
    Sprite_DrawExt(*sprite, glyph.frame, x, y, pen.xscale, pen.yscale, pen.angle, pen.colour, pen.alpha);
    return;
  }
  const PageEntry* entry = sprite->Frame(glyph.frame);
  if (!entry) return;
  // The whole frame as a part, moved so that the origin lies on the pen.
  const float dx = -static_cast<float>(sprite->originX) * pen.xscale,
              dy = -static_cast<float>(sprite->originY) * pen.yscale;
  const float c = std::cos(ToRadians(pen.angle)), s = std::sin(ToRadians(pen.angle));
  Page_DrawGeneral(*entry, {0, 0, static_cast<float>(sprite->width), static_cast<float>(sprite->height)},
                   {.x = x + c * dx + s * dy,
                    .y = y - s * dx + c * dy,
                    .xscale = pen.xscale,
                    .yscale = pen.yscale,
                    .rotation = pen.angle},
                   GradientOf(*pen.gradient, from, to));
}

void DrawPageGlyph(const CFontFb& font, const Glyph& glyph, const Pen& pen, float x, float y, float from,
                   float to) {
  if (!font.page || glyph.frame <= 0 || glyph.height <= 0) return;
  const PagePart box{static_cast<float>(glyph.x), static_cast<float>(glyph.y),
                     static_cast<float>(glyph.frame), static_cast<float>(glyph.height)};
  const PagePlace place{.x = x, .y = y, .xscale = pen.xscale, .yscale = pen.yscale, .rotation = pen.angle};
  const uint32_t word = ColourWord(pen.colour, pen.alpha);
  Page_DrawGlyph(*font.page, box, font.texelOffset, place,
                 pen.gradient ? GradientOf(*pen.gradient, from, to) : CornerColours{word, word, word, word});
}

// `pen.xscale` and `pen.cosine` already hold the font's own scale.
void DrawLine(const CFontFb& font, std::u16string_view line, Pen pen) {
  const auto width = static_cast<float>(std::max(1, Font_LineWidth(font, line)));
  float done = 0;
  for (const char16_t character : line) {
    const Glyph* glyph = font.FindGlyph(character);
    if (!glyph) continue;
    const float offset = glyph->offset, advance = glyph->advance;
    if (character != kBlank) {
      const float x = pen.x + pen.cosine * offset, y = pen.y - pen.sine * offset;
      const float from = std::clamp(done / width, 0.0f, 1.0f),
                  to = std::clamp((done + advance) / width, 0.0f, 1.0f);
      if (font.spriteIndex >= 0)
        DrawSpriteGlyph(font, *glyph, pen, x, y, from, to);
      else
        DrawPageGlyph(font, *glyph, pen, x, y, from, to);
    }
    pen.x += pen.cosine * advance;
    pen.y -= pen.sine * advance;
    done += advance;
  }
}

Pen PlainPen() {
  return {.x = 0, .y = 0, .colour = static_cast<uint32_t>(draw_get_colour()), .alpha = draw_get_alpha()};
}

Pen ColourPen(const CornerColours& gradient) {
  Pen pen{.x = 0, .y = 0};
  pen.gradient = &gradient;
  return pen;
}

void DrawStraight(const TextBlock& block, float x, float y, Pen pen) {
  const FontState& state = Fonts();
  const auto count = static_cast<int32_t>(block.lines.size());
  const CFontFb& font = block.font;
  pen.xscale = pen.cosine = font.scaleX;
  pen.yscale = font.scaleY;
  const int32_t height = count * block.lineHeight, halfHeight = height / 2;
  if (state.valign == fa_middle) y -= static_cast<float>(halfHeight);
  if (state.valign == fa_bottom) y -= static_cast<float>(height);
  for (const std::u16string& line : block.lines) {
    if (!line.empty()) {
      const int32_t width = Font_LineWidth(font, line), halfWidth = width / 2;
      pen.x = x;
      if (state.halign == fa_center) pen.x -= static_cast<float>(halfWidth);
      if (state.halign == fa_right) pen.x -= static_cast<float>(width);
      pen.y = y;
      DrawLine(font, line, pen);
    }
    y += static_cast<float>(block.lineHeight);
  }
}

void DrawTransformed(const TextBlock& block, float x, float y, float xscale, float yscale, float angle,
                     Pen pen) {
  const FontState& state = Fonts();
  const float radians = ToRadians(angle);
  const bool turned = std::fabs(angle) >= 0.001f;
  const float cosine = turned ? std::cos(radians) : 1, sine = turned ? std::sin(radians) : 0;
  const auto height = static_cast<float>(block.lineHeight);
  const float stepX = sine * yscale * height, stepY = cosine * yscale * height;
  const auto count = static_cast<float>(block.lines.size());
  const float back = state.valign == fa_middle ? count / 2 : state.valign == fa_bottom ? count : 0;
  x -= stepX * back;
  y -= stepY * back;
  pen.xscale = xscale;
  pen.yscale = yscale;
  pen.angle = turned ? angle : 0;
  pen.cosine = cosine * xscale;
  pen.sine = sine * xscale;
  for (const std::u16string& line : block.lines) {
    if (!line.empty()) {
      const auto width = static_cast<float>(Font_LineWidth(block.font, line));
      const float offset = state.halign == fa_center  ? -width * xscale / 2
                           : state.halign == fa_right ? -width * xscale
                                                      : 0;
      pen.x = x + offset * cosine;
      pen.y = y - offset * sine;
      DrawLine(block.font, line, pen);
    }
    x += stepX;
    y += stepY;
  }
}

} // namespace

std::vector<std::u16string> SplitLines(const CFontFb& font, std::string_view text, int32_t width) {
  const std::u16string decoded = WithBreaks(text);
  return width < 0 || width >= kNoWrap ? SplitAtBreaks(decoded) : SplitToWidth(font, decoded, width);
}

int32_t Font_LineWidth(const CFontFb& font, std::u16string_view line) {
  int32_t width = 0;
  for (const char16_t character : line) width += Advance(font, character);
  return width;
}

int32_t string_width_ext(std::string_view text, int32_t separation, int32_t width) {
  const TextBlock block = Layout(text, separation, width);
  int32_t widest = 0;
  for (const std::u16string& line : block.lines) widest = std::max(widest, Font_LineWidth(block.font, line));
  return widest;
}

int32_t string_height_ext(std::string_view text, int32_t separation, int32_t width) {
  const TextBlock block = Layout(text, separation, width);
  const auto count = static_cast<int32_t>(block.lines.size());
  return count == 0 ? 0 : block.font.height + (count - 1) * block.lineHeight;
}

int32_t string_width(std::string_view text) { return string_width_ext(text, -1, -1); }
int32_t string_height(std::string_view text) { return string_height_ext(text, -1, -1); }

void draw_text(float x, float y, const RValue& value) { draw_text_ext(x, y, value, -1, -1); }

void draw_text_ext(float x, float y, const RValue& value, int32_t separation, int32_t width) {
  DrawStraight(Layout(ValueAsText(value), separation, width), x, y, PlainPen());
}

void draw_text_transformed(float x, float y, const RValue& value, float xscale, float yscale, float angle) {
  draw_text_ext_transformed(x, y, value, -1, -1, xscale, yscale, angle);
}

void draw_text_ext_transformed(float x, float y, const RValue& value, int32_t separation, int32_t width,
                               float xscale, float yscale, float angle) {
  DrawTransformed(Layout(ValueAsText(value), separation, width), x, y, xscale, yscale, angle, PlainPen());
}

void draw_text_colour(float x, float y, const RValue& value, int32_t colour1, int32_t colour2,
                      int32_t colour3, int32_t colour4, float alpha) {
  draw_text_ext_colour(x, y, value, -1, -1, colour1, colour2, colour3, colour4, alpha);
}

void draw_text_ext_colour(float x, float y, const RValue& value, int32_t separation, int32_t width,
                          int32_t colour1, int32_t colour2, int32_t colour3, int32_t colour4, float alpha) {
  const CornerColours gradient = CornerWords(colour1, colour2, colour3, colour4, alpha);
  DrawStraight(Layout(ValueAsText(value), separation, width), x, y, ColourPen(gradient));
}

void draw_text_transformed_colour(float x, float y, const RValue& value, float xscale, float yscale,
                                  float angle, int32_t colour1, int32_t colour2, int32_t colour3,
                                  int32_t colour4, float alpha) {
  draw_text_ext_transformed_colour(x, y, value, -1, -1, xscale, yscale, angle, colour1, colour2, colour3,
                                   colour4, alpha);
}

void draw_text_ext_transformed_colour(float x, float y, const RValue& value, int32_t separation,
                                      int32_t width, float xscale, float yscale, float angle, int32_t colour1,
                                      int32_t colour2, int32_t colour3, int32_t colour4, float alpha) {
  const CornerColours gradient = CornerWords(colour1, colour2, colour3, colour4, alpha);
  DrawTransformed(Layout(ValueAsText(value), separation, width), x, y, xscale, yscale, angle,
                  ColourPen(gradient));
}

void Function_AddFont() {
  using Text = void (*)(float, float, const RValue&);
  using TransformedText = void (*)(float, float, const RValue&, float, float, float);
  static constexpr BuiltinRow kBuiltins[] = {
      Builtin<&font_add_sprite_ext>("font_add_sprite_ext"),
      Builtin<&font_add_sprite>("font_add_sprite"),
      Builtin<&font_exists>("font_exists"),
      Builtin<&font_delete>("font_delete"),
      Builtin<&draw_set_font>("draw_set_font"),
      Builtin<&draw_get_font>("draw_get_font"),
      Builtin<&draw_set_halign>("draw_set_halign"),
      Builtin<&draw_set_valign>("draw_set_valign"),
      Builtin<&draw_get_halign>("draw_get_halign"),
      Builtin<&draw_get_valign>("draw_get_valign"),
      Builtin<static_cast<Text>(&draw_text)>("draw_text"),
      Builtin<&draw_text_ext>("draw_text_ext"),
      Builtin<static_cast<TransformedText>(&draw_text_transformed)>("draw_text_transformed"),
      Builtin<&draw_text_ext_transformed>("draw_text_ext_transformed"),
      Builtin<&draw_text_colour>("draw_text_colour"),
      Builtin<&draw_text_colour>("draw_text_color"),
      Builtin<&draw_text_ext_colour>("draw_text_ext_colour"),
      Builtin<&draw_text_ext_colour>("draw_text_ext_color"),
      Builtin<&draw_text_transformed_colour>("draw_text_transformed_colour"),
      Builtin<&draw_text_transformed_colour>("draw_text_transformed_color"),
      Builtin<&draw_text_ext_transformed_colour>("draw_text_ext_transformed_colour"),
      Builtin<&draw_text_ext_transformed_colour>("draw_text_ext_transformed_color"),
      Builtin<&string_width>("string_width"),
      Builtin<&string_height>("string_height"),
      Builtin<&string_width_ext>("string_width_ext"),
      Builtin<&string_height_ext>("string_height_ext"),
  };
  Function_Add(kBuiltins);
}

} // namespace vesk
