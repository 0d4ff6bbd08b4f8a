#pragma once
// Surfaces: textures that can be drawn into. Ids only grow. All are lost at a device reset, so that every use
// asks surface_exists first.
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vesk {

struct SurfaceRecord {
  int32_t id;
  int32_t texture;       // texture id
  int32_t width, height; // pixels, as asked for
};

inline constexpr int kTargetSlots = 4;
inline constexpr int kTargetStackWords = 13; // of one push
inline constexpr int kTargetStackLimit = 497;
inline constexpr int kDeviceTargetLevels = 8;

struct SavedTarget {
  int32_t viewport[4];
  float view[5];
  bool customProjection;
  int32_t targets[kTargetSlots];
};

struct SurfaceState {
  std::unordered_map<int32_t, SurfaceRecord> table;
  int32_t nextId = 0;
  int32_t currentTarget[kTargetSlots] = {-1, -1, -1, -1};
  std::vector<SavedTarget> stack;
  int32_t deviceLevels = 0;
  int32_t deviceTargets[kDeviceTargetLevels][kTargetSlots] = {}; // surface ids per level
};
SurfaceState& Surfaces();
void Surface_Reset();
void Surface_FreeAll();
void Surface_EmptyTargets(); // back to the back buffer; both stacks emptied
const SurfaceRecord* Surface_Find(int32_t id);
bool Surface_Free(int32_t id, bool force);
bool Surface_Resize(int32_t id, int32_t width, int32_t height); // contents lost

// A rectangle of a surface as pixels (red, green, blue, alpha, rows from the top); outside is zero. Empty
// when the surface or the device doesn't exist.
std::vector<uint8_t> ReadSurfaceRect(int32_t id, int32_t x, int32_t y, int32_t width, int32_t height);

int32_t surface_create(int32_t width, int32_t height); // -1 on failure
// The format is the one there is: 32 bits a pixel.
int32_t surface_create_special(int32_t width, int32_t height, int32_t format);
int32_t surface_create_ext(std::string_view name, int32_t width, int32_t height);
bool surface_save(int32_t id, const std::string& file); // as PNG, in the save area; false after a report
bool surface_exists(int32_t id);
void surface_free(int32_t id);
int32_t surface_get_width(int32_t id);
int32_t surface_get_height(int32_t id);
void surface_resize(int32_t id, int32_t width, int32_t height);
bool surface_set_target(int32_t id);
bool surface_reset_target();
bool surface_set_target_ext(int32_t slot, int32_t id);
int32_t surface_getpixel(int32_t id, int32_t x, int32_t y); // script colour; 0 without the surface
void surface_copy(int32_t destination, float x, float y, int32_t source);
void surface_copy_part(int32_t destination, float x, float y, int32_t source, float left, float top,
                       float width, float height);
void draw_surface(int32_t id, float x, float y);
void draw_surface_ext(int32_t id, float x, float y, float xscale, float yscale, float rotation,
                      int32_t colour, float alpha);
void draw_surface_part(int32_t id, float left, float top, float width, float height, float x, float y);
void draw_surface_part_ext(int32_t id, float left, float top, float width, float height, float x, float y,
                           float xscale, float yscale, int32_t colour, float alpha);
void draw_surface_stretched(int32_t id, float x, float y, float width, float height);
void draw_surface_stretched_ext(int32_t id, float x, float y, float width, float height, int32_t colour,
                                float alpha);
void draw_surface_tiled(int32_t id, float x, float y);
void draw_surface_tiled_ext(int32_t id, float x, float y, float xscale, float yscale, int32_t colour,
                            float alpha);
void draw_surface_general(int32_t id, float left, float top, float width, float height, float x, float y,
                          float xscale, float yscale, float rotation, int32_t colour1, int32_t colour2,
                          int32_t colour3, int32_t colour4, float alpha);

} // namespace vesk
