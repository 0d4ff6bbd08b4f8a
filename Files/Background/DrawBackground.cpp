#include "Files/Background/DrawBackground.h"

#include "Files/Base/Error.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/PageDraw.h"
#include "Files/Graphics/Registration.h"

namespace vesk {

namespace {

// Null with a report for an index that names none; null in silence for an empty one.
const PageEntry* Find(int32_t background, const CBackground** found = nullptr) {
  const CBackground* it = Background_Find(background);
  if (!it) ReportError("Trying to draw non-existing background.");
  if (found) *found = it;
  return it ? it->page : nullptr;
}

// By registry, with the last argument left out or given.
int32_t CreateFromSurface(int32_t surface, int32_t x, int32_t y, int32_t width, int32_t height,
                          bool removeback, bool smooth, Args rest) {
  return background_create_from_surface(surface, x, y, width, height, removeback, smooth,
                                        rest.empty() || ArgAsBool(rest.data(), 0));
}

} // namespace

void draw_background(int32_t background, float x, float y) {
  if (const PageEntry* entry = Find(background)) Page_Draw(*entry, x, y, 0, 0, draw_get_alpha());
}

void draw_background_ext(int32_t background, float x, float y, float xscale, float yscale, float rotation,
                         int32_t colour, float alpha) {
  if (const PageEntry* entry = Find(background))
    Page_DrawExt(*entry, {.x = x,
                          .y = y,
                          .xscale = xscale,
                          .yscale = yscale,
                          .rotation = rotation,
                          .colour = static_cast<uint32_t>(colour),
                          .alpha = alpha});
}

void draw_background_part(int32_t background, float left, float top, float width, float height, float x,
                          float y) {
  draw_background_part_ext(background, left, top, width, height, x, y, 1, 1, c_white, draw_get_alpha());
}

void draw_background_part_ext(int32_t background, float left, float top, float width, float height, float x,
                              float y, float xscale, float yscale, int32_t colour, float alpha) {
  if (const PageEntry* entry = Find(background))
    Page_DrawPart(*entry, {left, top, width, height},
                  {.x = x,
                   .y = y,
                   .xscale = xscale,
                   .yscale = yscale,
                   .colour = static_cast<uint32_t>(colour),
                   .alpha = alpha});
}

void draw_background_stretched(int32_t background, float x, float y, float width, float height) {
  draw_background_stretched_ext(background, x, y, width, height, c_white, draw_get_alpha());
}

void draw_background_stretched_ext(int32_t background, float x, float y, float width, float height,
                                   int32_t colour, float alpha) {
  const CBackground* it = nullptr;
  const PageEntry* entry = Find(background, &it);
  if (entry)
    Page_DrawStretched(*entry, it->width, it->height,
                       {.x = x, .y = y, .colour = static_cast<uint32_t>(colour), .alpha = alpha}, width,
                       height);
}

void draw_background_tiled(int32_t background, float x, float y) {
  draw_background_tiled_ext(background, x, y, 1, 1, c_white, draw_get_alpha());
}

void draw_background_tiled_ext(int32_t background, float x, float y, float xscale, float yscale,
                               int32_t colour, float alpha) {
  if (const PageEntry* entry = Find(background))
    Page_DrawTiled(*entry,
                   {.x = x,
                    .y = y,
                    .xscale = xscale,
                    .yscale = yscale,
                    .colour = static_cast<uint32_t>(colour),
                    .alpha = alpha},
                   true, true);
}

void draw_background_general(int32_t background, float left, float top, float width, float height, float x,
                             float y, float xscale, float yscale, float rotation, int32_t colour1,
                             int32_t colour2, int32_t colour3, int32_t colour4, float alpha) {
  if (const PageEntry* entry = Find(background))
    Page_DrawGeneral(*entry, {left, top, width, height},
                     {.x = x, .y = y, .xscale = xscale, .yscale = yscale, .rotation = rotation},
                     CornerWords(colour1, colour2, colour3, colour4, alpha));
}

void Function_AddBackground() {
  static constexpr BuiltinRow kBuiltins[] = {
      Builtin<&draw_background>("draw_background"),
      Builtin<&draw_background_ext>("draw_background_ext"),
      Builtin<&draw_background_part>("draw_background_part"),
      Builtin<&draw_background_part_ext>("draw_background_part_ext"),
      Builtin<&draw_background_stretched>("draw_background_stretched"),
      Builtin<&draw_background_stretched_ext>("draw_background_stretched_ext"),
      Builtin<&draw_background_tiled>("draw_background_tiled"),
      Builtin<&draw_background_tiled_ext>("draw_background_tiled_ext"),
      Builtin<&draw_background_general>("draw_background_general"),
      Builtin<&background_add>("background_add"),
      Builtin<&background_exists>("background_exists"),
      Builtin<&background_get_width>("background_get_width"),
      Builtin<&background_get_height>("background_get_height"),
      Builtin<&background_get_name>("background_get_name"),
      Builtin<&background_delete>("background_delete"),
      Builtin<&CreateFromSurface>("background_create_from_surface"),
  };
  Function_Add(kBuiltins);
}

} // namespace vesk
