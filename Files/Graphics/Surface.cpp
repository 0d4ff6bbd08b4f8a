#include "Files/Graphics/Surface.h"

#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Files/Graphics/Batch.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/DrawScreen.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/PageDraw.h"
#include "Files/Graphics/PngImage.h"
#include "Files/Graphics/Registration.h"
#include "Files/Graphics/Texture.h"
#include "Files/Graphics/View.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"

#include <algorithm>
#include <cstring>

namespace vesk {

namespace {

constexpr int32_t kLargestSide = 8192;

SurfaceState g_surfaces;

SurfaceRecord* Find(int32_t id) {
  const auto found = g_surfaces.table.find(id);
  return found == g_surfaces.table.end() ? nullptr : &found->second;
}

TextureHandle HandleOf(int32_t id) {
  const SurfaceRecord* surface = Find(id);
  return surface ? Texture_Get(surface->texture) : 0;
}

// Null with a report for a surface that doesn't exist.
const SurfaceRecord* FindToDraw(int32_t id) {
  const SurfaceRecord* surface = Find(id);
  if (!surface) ReportError("Trying to use non-existing surface.");
  return surface;
}

PageEntry EntryOf(const SurfaceRecord& surface) {
  return Page_OfTexture(surface.texture, surface.width, surface.height);
}

void PushDeviceTargets() {
  std::copy(std::begin(g_surfaces.currentTarget), std::end(g_surfaces.currentTarget),
            g_surfaces.deviceTargets[g_surfaces.deviceLevels]);
  ++g_surfaces.deviceLevels;
}

bool PopDeviceTargets() {
  if (g_surfaces.deviceLevels == 0) return false;
  const int32_t* saved = g_surfaces.deviceTargets[--g_surfaces.deviceLevels];
  IRenderDevice& device = *Graphics().device;
  device.SetTarget(0, HandleOf(saved[0]));
  for (int32_t slot = 1; slot < kTargetSlots; ++slot)
    if (saved[slot] != g_surfaces.currentTarget[slot]) device.SetTarget(slot, HandleOf(saved[slot]));
  return true;
}

SavedTarget CurrentTargets() {
  const ViewState& view = View();
  SavedTarget saved{{view.viewportX, view.viewportY, view.viewportW, view.viewportH},
                    {view.viewX, view.viewY, view.viewW, view.viewH, view.viewAngle},
                    view.customProjection,
                    {}};
  std::copy(std::begin(g_surfaces.currentTarget), std::end(g_surfaces.currentTarget), saved.targets);
  return saved;
}

bool IsTarget(int32_t id) {
  return std::find(std::begin(g_surfaces.currentTarget), std::end(g_surfaces.currentTarget), id) !=
         std::end(g_surfaces.currentTarget);
}

bool SurfaceSizeIsValid(int32_t width, int32_t height) {
  return width >= 1 && height >= 1 && width <= kLargestSide && height <= kLargestSide;
}

// What the surface draws go through; the built-ins differ in what they leave at its start value.
void DrawPart(int32_t id, const PagePart& part, const PagePlace& place) {
  if (const SurfaceRecord* surface = FindToDraw(id)) Page_DrawPart(EntryOf(*surface), part, place);
}

} // namespace

SurfaceState& Surfaces() { return g_surfaces; }

void Surface_Reset() {
  Surface_FreeAll();
  g_surfaces = {};
}

const SurfaceRecord* Surface_Find(int32_t id) { return Find(id); }

void Surface_EmptyTargets() {
  g_surfaces.deviceLevels = 0;
  g_surfaces.stack.clear();
  if (Graphics().device) {
    Graphics().device->SetTarget(0, 0);
    for (int32_t slot = 1; slot < kTargetSlots; ++slot)
      if (g_surfaces.currentTarget[slot] != -1) Graphics().device->SetTarget(slot, 0);
  }
  std::fill(std::begin(g_surfaces.currentTarget), std::end(g_surfaces.currentTarget), -1);
}

void Surface_FreeAll() {
  FlushBatch();
  Surface_EmptyTargets();
  for (const auto& [id, surface] : g_surfaces.table) Texture_Free(surface.texture);
  g_surfaces.table.clear();
  Screen().appSurface = kNoSurface;
}

bool Surface_Free(int32_t id, bool force) {
  SurfaceRecord* surface = Find(id);
  if (!surface || (id == Screen().appSurface && !force)) return false;
  FlushBatch();
  if (IsTarget(id)) surface_reset_target();
  Texture_Free(surface->texture);
  g_surfaces.table.erase(id);
  return true;
}

bool Surface_Resize(int32_t id, int32_t width, int32_t height) {
  SurfaceRecord* surface = Find(id);
  if (!surface) return false;
  FlushBatch();
  const int32_t texture = Texture_CreateRenderTarget(width, height);
  if (texture < 0) return false;
  Texture_Free(surface->texture);
  *surface = {id, texture, width, height};
  if (g_surfaces.currentTarget[0] == id && Graphics().device)
    Graphics().device->SetTarget(0, Texture_Get(texture));
  return true;
}

std::vector<uint8_t> ReadSurfaceRect(int32_t id, int32_t x, int32_t y, int32_t width, int32_t height) {
  const SurfaceRecord* surface = Find(id);
  const TextureSlot* texture = surface ? Texture_Find(surface->texture) : nullptr;
  if (!Graphics().device || !texture || !texture->handle || width <= 0 || height <= 0 ||
      width > 2 * kLargestSide || height > 2 * kLargestSide)
    return {};
  FlushBatch();
  IRenderDevice& device = *Graphics().device;
  std::vector<uint8_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
  if (x >= 0 && y >= 0 && x <= texture->realWidth - width && y <= texture->realHeight - height)
    return device.ReadPixels(texture->handle, x, y, width, height, pixels.data()) ? pixels
                                                                                  : std::vector<uint8_t>{};
  DebugConsole().Output("Trying to grab data from outside surface bounds: x = %d, y = %d, w = %d, h = %d\n",
                        x, y, width, height);
  const int32_t left = std::max(x, 0), top = std::max(y, 0);
  const auto right = static_cast<int32_t>(std::min<int64_t>(int64_t{x} + width, texture->realWidth));
  const auto bottom = static_cast<int32_t>(std::min<int64_t>(int64_t{y} + height, texture->realHeight));
  if (right <= left || bottom <= top) return pixels;
  const auto rowBytes = static_cast<size_t>(right - left) * 4;
  std::vector<uint8_t> inside(rowBytes * static_cast<size_t>(bottom - top));
  if (!device.ReadPixels(texture->handle, left, top, right - left, bottom - top, inside.data())) return {};
  for (int32_t row = top; row < bottom; ++row)
    std::memcpy(
        &pixels[(static_cast<size_t>(row - y) * static_cast<size_t>(width) + static_cast<size_t>(left - x)) *
                4],
        &inside[static_cast<size_t>(row - top) * rowBytes], rowBytes);
  return pixels;
}

int32_t surface_create(int32_t width, int32_t height) {
  if (width == 0 || height == 0) {
    ShowError("Can't create a surface with either a width or height of 0");
    return -1;
  }
  while (Find(g_surfaces.nextId)) ++g_surfaces.nextId;
  const int32_t id = g_surfaces.nextId++;
  const int32_t texture = Texture_CreateRenderTarget(width, height);
  if (texture < 0) return -1;
  g_surfaces.table[id] = {id, texture, width, height};
  return id;
}

int32_t surface_create_special(int32_t width, int32_t height, int32_t) {
  return surface_create(width, height);
}
int32_t surface_create_ext(std::string_view, int32_t width, int32_t height) {
  return surface_create(width, height);
}

bool surface_save(int32_t id, const std::string& file) {
  const SurfaceRecord* surface = FindToDraw(id);
  if (!surface) return false;
  PngImage image{surface->width, surface->height, ReadSurfaceRect(id, 0, 0, surface->width, surface->height)};
  const std::string path = Files_SavePath(file);
  std::string bytes, why = path.empty() ? "it lies outside the save area" : "";
  if (!path.empty() && !image.pixels.empty() && Png_Encode(image, bytes, why) &&
      Directory_Make(Path_Folder(path), &why) && File_WriteAll(path, bytes, &why))
    return true;
  ReportError("Surface could not be saved to %s: %s", file.c_str(), why.c_str());
  return false;
}

bool surface_exists(int32_t id) { return Find(id) != nullptr; }

void surface_free(int32_t id) { Surface_Free(id, false); }

int32_t surface_get_width(int32_t id) {
  const SurfaceRecord* surface = Find(id);
  return surface ? surface->width : -1;
}

int32_t surface_get_height(int32_t id) {
  const SurfaceRecord* surface = Find(id);
  return surface ? surface->height : -1;
}

void surface_resize(int32_t id, int32_t width, int32_t height) {
  if (!SurfaceSizeIsValid(width, height)) {
    ReportError("Invalid surface dimensions");
    return;
  }
  if (id == Screen().appSurface) {
    Screen().appSurfaceResizePending = true;
    Screen().appSurfaceNewWidth = width;
    Screen().appSurfaceNewHeight = height;
  } else if (!Find(id)) {
    ReportError("Surface does not exist");
  } else {
    Surface_Resize(id, width, height);
  }
}

bool surface_set_target(int32_t id) {
  const bool changes = id != g_surfaces.currentTarget[0];
  if (changes) {
    if (!Graphics().device) return false;
    FlushBatch();
  }
  const SurfaceRecord* surface = Find(id);
  const TextureHandle handle = HandleOf(id);
  if (!surface || !handle || g_surfaces.stack.size() * kTargetStackWords >= kTargetStackLimit) return false;
  g_surfaces.stack.push_back(CurrentTargets());
  if (!changes) return true;
  if (g_surfaces.deviceLevels >= kDeviceTargetLevels) {
    ReportError(
        "surface stack is full - ensure surface_reset_target() is called for each surface_set_target().");
    return false;
  }
  PushDeviceTargets();
  Graphics().device->SetTarget(0, handle);
  SetViewport(0, 0, surface->width, surface->height);
  SetView(0, 0, static_cast<float>(surface->width), static_cast<float>(surface->height), 0);
  g_surfaces.currentTarget[0] = id;
  View().cullDirty = true;
  return true;
}

bool surface_reset_target() {
  if (g_surfaces.stack.empty()) {
    g_surfaces.currentTarget[0] = -1;
    return false;
  }
  const bool changes = !std::equal(std::begin(g_surfaces.currentTarget), std::end(g_surfaces.currentTarget),
                                   std::begin(g_surfaces.stack.back().targets));
  if (changes) {
    FlushBatch();
    if (!PopDeviceTargets()) return false;
  }
  const SavedTarget saved = g_surfaces.stack.back();
  g_surfaces.stack.pop_back();
  std::copy(std::begin(saved.targets), std::end(saved.targets), g_surfaces.currentTarget);
  View().customProjection = saved.customProjection;
  if (Screen().inGuiPass && g_surfaces.stack.empty()) {
    ApplyGuiView();
    if (changes) View().cullDirty = true;
    return true;
  }
  if (!changes) return true;
  SetViewport(saved.viewport[0], saved.viewport[1], saved.viewport[2], saved.viewport[3]);
  SetView(saved.view[0], saved.view[1], saved.view[2], saved.view[3], saved.view[4]);
  View().cullDirty = true;
  return true;
}

bool surface_set_target_ext(int32_t slot, int32_t id) {
  if (slot == 0) return surface_set_target(id);
  const TextureHandle handle = id == -1 ? 0 : HandleOf(id); // -1 takes the slot out again
  if (slot < 0 || slot >= kTargetSlots || !Graphics().device || (id != -1 && !handle)) return false;
  FlushBatch();
  if (!Graphics().device->SetTarget(slot, handle)) {
    ReleaseConsole().Output(
        "surface_set_target_ext: this device has one colour target, slot %d stays empty\n", slot);
    return false;
  }
  g_surfaces.currentTarget[slot] = id;
  return true;
}

int32_t surface_getpixel(int32_t id, int32_t x, int32_t y) {
  const std::vector<uint8_t> pixel = ReadSurfaceRect(id, x, y, 1, 1);
  return pixel.empty() ? 0 : make_colour_rgb(pixel[0], pixel[1], pixel[2]);
}

void surface_copy(int32_t destination, float x, float y, int32_t source) {
  const SurfaceRecord* from = FindToDraw(source);
  if (from)
    surface_copy_part(destination, x, y, source, 0, 0, static_cast<float>(from->width),
                      static_cast<float>(from->height));
}

void surface_copy_part(int32_t destination, float x, float y, int32_t source, float left, float top,
                       float width, float height) {
  if (!FindToDraw(destination) || !FindToDraw(source) || !surface_set_target(destination)) return;
  const uint32_t blending = RenderStates().RenderState(kStateBlending);
  RenderStates().SetRenderState(kStateBlending, 0);
  DrawPart(source, {left, top, width, height}, {.x = x, .y = y});
  FlushBatch();
  RenderStates().SetRenderState(kStateBlending, blending);
  surface_reset_target();
}

void draw_surface(int32_t id, float x, float y) {
  if (const SurfaceRecord* surface = FindToDraw(id))
    Page_Draw(EntryOf(*surface), x, y, 0, 0, draw_get_alpha());
}

void draw_surface_ext(int32_t id, float x, float y, float xscale, float yscale, float rotation,
                      int32_t colour, float alpha) {
  if (const SurfaceRecord* surface = FindToDraw(id))
    Page_DrawExt(EntryOf(*surface), {.x = x,
                                     .y = y,
                                     .xscale = xscale,
                                     .yscale = yscale,
                                     .rotation = rotation,
                                     .colour = static_cast<uint32_t>(colour),
                                     .alpha = alpha});
}

void draw_surface_part(int32_t id, float left, float top, float width, float height, float x, float y) {
  DrawPart(id, {left, top, width, height}, {.x = x, .y = y, .alpha = draw_get_alpha()});
}

void draw_surface_part_ext(int32_t id, float left, float top, float width, float height, float x, float y,
                           float xscale, float yscale, int32_t colour, float alpha) {
  DrawPart(id, {left, top, width, height},
           {.x = x,
            .y = y,
            .xscale = xscale,
            .yscale = yscale,
            .colour = static_cast<uint32_t>(colour),
            .alpha = alpha});
}

void draw_surface_stretched(int32_t id, float x, float y, float width, float height) {
  draw_surface_stretched_ext(id, x, y, width, height, c_white, draw_get_alpha());
}

void draw_surface_stretched_ext(int32_t id, float x, float y, float width, float height, int32_t colour,
                                float alpha) {
  if (const SurfaceRecord* surface = FindToDraw(id))
    Page_DrawStretched(EntryOf(*surface), surface->width, surface->height,
                       {.x = x, .y = y, .colour = static_cast<uint32_t>(colour), .alpha = alpha}, width,
                       height);
}

void draw_surface_tiled(int32_t id, float x, float y) {
  draw_surface_tiled_ext(id, x, y, 1, 1, c_white, draw_get_alpha());
}

void draw_surface_tiled_ext(int32_t id, float x, float y, float xscale, float yscale, int32_t colour,
                            float alpha) {
  if (const SurfaceRecord* surface = FindToDraw(id))
    Page_DrawTiled(EntryOf(*surface),
                   {.x = x,
                    .y = y,
                    .xscale = xscale,
                    .yscale = yscale,
                    .colour = static_cast<uint32_t>(colour),
                    .alpha = alpha},
                   true, true);
}

void draw_surface_general(int32_t id, float left, float top, float width, float height, float x, float y,
                          float xscale, float yscale, float rotation, int32_t colour1, int32_t colour2,
                          int32_t colour3, int32_t colour4, float alpha) {
  if (const SurfaceRecord* surface = FindToDraw(id))
    Page_DrawGeneral(EntryOf(*surface), {left, top, width, height},
                     {.x = x, .y = y, .xscale = xscale, .yscale = yscale, .rotation = rotation},
                     CornerWords(colour1, colour2, colour3, colour4, alpha));
}

void Function_AddSurface() {
  static constexpr BuiltinRow kBuiltins[] = {
      Builtin<&surface_create>("surface_create"),
      Builtin<&surface_create_ext>("surface_create_ext"),
      Builtin<&surface_create_special>("surface_create_special"),
      Builtin<&surface_exists>("surface_exists"),
      Builtin<&surface_free>("surface_free"),
      Builtin<&surface_get_width>("surface_get_width"),
      Builtin<&surface_get_height>("surface_get_height"),
      Builtin<&surface_resize>("surface_resize"),
      Builtin<&surface_set_target>("surface_set_target"),
      Builtin<&surface_set_target_ext>("surface_set_target_ext"),
      Builtin<&surface_reset_target>("surface_reset_target"),
      Builtin<&surface_getpixel>("surface_getpixel"),
      Builtin<&surface_copy>("surface_copy"),
      Builtin<&surface_copy_part>("surface_copy_part"),
      Builtin<&surface_save>("surface_save"),
      Builtin<&draw_surface>("draw_surface"),
      Builtin<&draw_surface_ext>("draw_surface_ext"),
      Builtin<&draw_surface_part>("draw_surface_part"),
      Builtin<&draw_surface_part_ext>("draw_surface_part_ext"),
      Builtin<&draw_surface_stretched>("draw_surface_stretched"),
      Builtin<&draw_surface_stretched_ext>("draw_surface_stretched_ext"),
      Builtin<&draw_surface_tiled>("draw_surface_tiled"),
      Builtin<&draw_surface_tiled_ext>("draw_surface_tiled_ext"),
      Builtin<&draw_surface_general>("draw_surface_general"),
  };
  Function_Add(kBuiltins);
}

} // namespace vesk
