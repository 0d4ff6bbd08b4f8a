#include "Files/Graphics/DrawScreen.h"

#include "Files/Background/Background.h"
#include "Files/Base/Error.h"
#include "Files/Graphics/Batch.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/PageDraw.h"
#include "Files/Graphics/RenderState.h"
#include "Files/Graphics/Surface.h"
#include "Files/Graphics/Texture.h"
#include "Files/Graphics/View.h"
#include "Files/IO/IO.h"
#include "Files/Object/Instance.h"
#include "Files/Room/Room.h"
#include "Files/Run/Run_Events.h"
#include "Files/Sprite/DrawSprite.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace vesk {

namespace {

constexpr float kNoOffset = 2147483648.0f;
constexpr float kCursorDepth = 16000;

ScreenState g_screen;

uint32_t WindowClearColour() { return 0xFF000000 | SwapRedBlue(Graphics().windowColour); }
void ClearTo(uint32_t colour) { Clear(colour, 1, 0, kClearAll); }

bool Drawable(const CInstance& instance) { return instance.Live() && instance.visible; }

// Back to front, what an event adds or changes on the way included. before() runs ahead of the first one.
template <class Before> void WalkDrawEvent(int32_t subtype, Before before) {
  CRoom* room = CurrentRoom();
  if (!room || Objects().eventObjects[ev_draw][subtype].empty()) return;
  for (CInstance *it = room->active.tail, *next; it; it = next) {
    next = it->previous;
    if (!Drawable(*it) || !it->object->HasHandler(ev_draw, subtype)) continue;
    before();
    PerformOwnEvent(it, it, ev_draw, subtype);
  }
}
void WalkDrawEvent(int32_t subtype) {
  WalkDrawEvent(subtype, [] {});
}

// ---- application surface ----

void CreateApplicationSurface() {
  g_screen.appSurface =
      surface_create(std::max(g_screen.appSurfaceWidth, 1), std::max(g_screen.appSurfaceHeight, 1));
  if (g_screen.appSurface < 0) {
    g_screen.appSurface = kNoSurface;
    g_screen.appSurfaceWidth = g_screen.appSurfaceHeight = 1;
  }
  g_screen.appSurfaceCreatedWidth = g_screen.appSurfaceWidth;
  g_screen.appSurfaceCreatedHeight = g_screen.appSurfaceHeight;
}

void KeepApplicationSurface() {
  if (!g_screen.appSurfaceEnabled) {
    g_screen.appSurfaceWidth = Graphics().windowWidth;
    g_screen.appSurfaceHeight = Graphics().windowHeight;
    if (surface_exists(g_screen.appSurface)) Surface_Free(g_screen.appSurface, true);
    g_screen.appSurface = kNoSurface;
    return;
  }
  if (!g_screen.appSurfaceInUse && g_screen.appSurfaceKeptWidth > 0) {
    g_screen.appSurfaceWidth = g_screen.appSurfaceKeptWidth;
    g_screen.appSurfaceHeight = g_screen.appSurfaceKeptHeight;
  }
  if (!surface_exists(g_screen.appSurface) && Graphics().device) CreateApplicationSurface();
  if (g_screen.appSurfaceResizePending) {
    g_screen.appSurfaceResizePending = false;
    Surface_Resize(g_screen.appSurface, g_screen.appSurfaceNewWidth, g_screen.appSurfaceNewHeight);
    g_screen.appSurfaceWidth = g_screen.appSurfaceNewWidth;
    g_screen.appSurfaceHeight = g_screen.appSurfaceNewHeight;
  }
}

struct FloatBox {
  float left, top, width, height;
};

FloatBox WindowBox(float surfaceWidth, float surfaceHeight) {
  const auto width = static_cast<float>(Graphics().windowWidth),
             height = static_cast<float>(Graphics().windowHeight);
  if (!Graphics().settings.keepAspect || !(surfaceWidth > 0) || !(surfaceHeight > 0))
    return {0, 0, width, height};
  const float ratio = surfaceWidth / surfaceHeight;
  const float fitting = width / ratio;
  if (height > fitting) {
    const float high = surfaceHeight / surfaceWidth * width;
    return {0, (height - high) * 0.5f, width, high};
  }
  if (fitting > height) {
    const float wide = height * ratio;
    return {(width - wide) * 0.5f, 0, wide, height};
  }
  return {0, 0, width, height};
}

void DrawToWindow() {
  FlushBatch();
  const SurfaceRecord* surface = Surface_Find(g_screen.appSurface);
  IRenderDevice* device = Graphics().device.get();
  if (!device || !surface || !Texture_Get(surface->texture)) return;
  // Past the cache, so that the surface's alpha has no part in the window and nothing has to be put back by
  // hand.
  device->SetRenderState(kStateCull, 0);
  for (const int32_t state :
       {kStateDepthTest, kStateLighting, kStateFog, kStateBlending, kStateAlphaTest, kStateStencil})
    device->SetRenderState(state, 0);
  const FloatBox box =
      WindowBox(static_cast<float>(g_screen.appSurfaceWidth), static_cast<float>(g_screen.appSurfaceHeight));
  Page_DrawExt(Page_OfTexture(surface->texture, surface->width, surface->height),
               {.x = box.left,
                .y = box.top,
                .xscale = box.width / static_cast<float>(surface->width),
                .yscale = box.height / static_cast<float>(surface->height)});
  FlushBatch();
  RenderStates().ResendAll(*device);
}

// ---- the room ----

void DrawBackgroundSlots(const CRoom& room, bool foreground) {
  for (const BackgroundSlot& slot : room.backgrounds) {
    if (!slot.visible || slot.foreground != foreground) continue;
    const CBackground* background = Background_Find(slot.index);
    if (!background || !background->page) continue;
    Page_DrawTiled(*background->page,
                   {.x = slot.x,
                    .y = slot.y,
                    .xscale = slot.xscale,
                    .yscale = slot.yscale,
                    .colour = slot.blend,
                    .alpha = slot.alpha},
                   slot.htiled, slot.vtiled);
  }
}

void DrawTile(const Tile& tile) {
  const CBackground* background = Background_Find(tile.background);
  if (!background || !background->page) return;
  Page_DrawPart(*background->page,
                {static_cast<float>(tile.left), static_cast<float>(tile.top), static_cast<float>(tile.width),
                 static_cast<float>(tile.height)},
                {.x = tile.x,
                 .y = tile.y,
                 .xscale = tile.xscale,
                 .yscale = tile.yscale,
                 .colour = tile.blend,
                 .alpha = tile.alpha});
}

void DrawInstance(CInstance& instance) {
  if (instance.object->handlesDraw)
    PerformOwnEvent(&instance, &instance, ev_draw, ev_draw_normal);
  else
    DrawInstanceDefault(instance);
}

// The tiles in drawing order. While nothing changes the list, only those in view are looked at. From the
// first change on, which a draw event may make, the walk goes on through all of them from where it would
// stand.
class TileWalk {
public:
  TileWalk(const TileList& tiles, const DrawRect& rect)
      : m_tiles(tiles), m_area{static_cast<float>(rect.left), static_cast<float>(rect.top),
                               static_cast<float>(rect.right), static_cast<float>(rect.bottom)},
        m_changes(tiles.Changes()), m_all(!tiles.Sorted()), m_seen(tiles.FindIn(m_area)) {}

  const Tile* Head() { // null at the end
    if (m_all) {
      while (m_place < m_tiles.size() && !m_tiles[m_place].visible) ++m_place;
      return m_place < m_tiles.size() ? &m_tiles[m_place] : nullptr;
    }
    return m_at < m_seen.size() ? &m_tiles[m_seen[m_at]] : nullptr;
  }
  bool HeadInView() const { return !m_all || Tile_Meets(m_tiles[m_place], m_area); }
  void Pass() {
    if (!m_all) m_place = m_seen[m_at++];
    ++m_place;
    m_held = false;
  }
  // Around the code of an instance's draw event.
  void BeforeEvent(float depth) {
    if (m_all || (m_held && depth == m_heldDepth)) return;
    m_held = true;
    m_heldDepth = depth;
    const auto from = m_tiles.begin() + static_cast<ptrdiff_t>(m_place);
    const auto behind =
        std::partition_point(from, m_tiles.end(), [depth](const Tile& tile) { return tile.depth > depth; });
    m_place = static_cast<size_t>(behind - m_tiles.begin());
    while (m_place < m_tiles.size() && !m_tiles[m_place].visible) ++m_place;
  }
  void AfterEvent() {
    if (m_tiles.Changes() != m_changes) m_all = true;
  }

private:
  const TileList& m_tiles;
  TileArea m_area;
  uint64_t m_changes;
  bool m_all;
  const std::vector<uint32_t>& m_seen;
  size_t m_at = 0;    // in m_seen
  size_t m_place = 0; // in the list: the first tile not passed yet
  bool m_held = false;
  float m_heldDepth = 0; // m_place is up to date for it
};

void PrefetchForDrawing(const CInstance& instance) {
  const auto* bytes = reinterpret_cast<const char*>(&instance);
  for (int line = 0; line < 3; ++line) __builtin_prefetch(bytes + line * 64);
}

// Instances and tiles by descending depth; at equal depth the tile lies on top.
void DrawByDepth(CRoom& room, const DrawRect& rect) {
  TileWalk tiles(room.tiles, rect);
  CInstance* instance = room.active.tail;
  for (;;) {
    while (instance && !Drawable(*instance)) instance = instance->previous;
    const Tile* tile = tiles.Head();
    if (!instance && !tile) return;
    if (instance && (!tile || !(tile->depth > instance->depth))) {
      CInstance* drawn = instance;
      instance = instance->previous;
      if (instance) PrefetchForDrawing(*instance);
      tiles.BeforeEvent(drawn->depth);
      DrawInstance(*drawn);
      tiles.AfterEvent();
    } else {
      if (tiles.HeadInView()) DrawTile(*tile);
      tiles.Pass();
    }
  }
}

DrawRect ScaledPort(const ViewSlot& view, const PortScale& scale) {
  return {static_cast<int32_t>(view.xport * scale.x), static_cast<int32_t>(view.yport * scale.y),
          static_cast<int32_t>(view.wport * scale.x), static_cast<int32_t>(view.hport * scale.y)};
}

void DrawView(const ViewSlot& view, const PortScale& scale) {
  const bool ownSurface = surface_exists(view.surface) && surface_set_target(view.surface);
  if (ownSurface) { // also when it is the target already
    SetViewport(0, 0, surface_get_width(view.surface), surface_get_height(view.surface));
  } else {
    const DrawRect port = ScaledPort(view, scale); // right and bottom hold the size
    SetViewport(port.left, port.top, port.right, port.bottom);
  }
  SetView(view.xview, view.yview, view.wview, view.hview, view.angle);
  DrawRoom(View().viewBounds);
  if (ownSurface) surface_reset_target();
}

void DrawRoomInViews(CRoom& room) {
  g_screen.viewCurrent = 0;
  if (!room.viewsEnabled) {
    FlushBatch();
    SetViewport(0, 0, g_screen.appSurfaceWidth, g_screen.appSurfaceHeight);
    SetView(0, 0, static_cast<float>(room.width), static_cast<float>(room.height), 0);
    DrawRoom(View().viewBounds);
    return;
  }
  if (room.clearDisplay) ClearTo(WindowClearColour());
  const PortScale scale = ViewPortScale(room, g_screen.appSurfaceWidth, g_screen.appSurfaceHeight);
  for (int i = 0; i < kRoomSlots; ++i) {
    g_screen.viewCurrent = i;
    if (room.views[static_cast<size_t>(i)].visible) DrawView(room.views[static_cast<size_t>(i)], scale);
  }
  FlushBatch();
}

// ---- GUI and cursor ----

void DrawGui() {
  g_screen.inGuiPass = true;
  ApplyGuiView();
  WalkDrawEvent(ev_gui_begin);
  WalkDrawEvent(ev_gui);
  WalkDrawEvent(ev_gui_end);
  g_screen.inGuiPass = false;
}

void DrawCursor() {
  if (!Sprite_Find(g_screen.cursorSprite)) return;
  const GraphicsState& g = Graphics();
  Matrix view;
  view.m[12] = -static_cast<float>(g.windowWidth) / 2;
  view.m[13] = -static_cast<float>(g.windowHeight) / 2;
  view.m[14] = kCursorDepth;
  SetViewMatrix(view, {0, 0, g.windowWidth, g.windowHeight});
  SetMatrix(kMatrixProjection,
            OrthographicProjection(static_cast<float>(g.windowWidth), static_cast<float>(-g.windowHeight)));
  const MouseTables& mouse = Input().mice[0];
  Drawing().culling = false;
  draw_sprite_ext(nullptr, g_screen.cursorSprite, static_cast<int32_t>(Rooms().frameCounter),
                  static_cast<float>(mouse.x), static_cast<float>(mouse.y), 1, 1, 0, c_white, 1);
  Drawing().culling = true;
}

} // namespace

ScreenState& Screen() { return g_screen; }

void DrawScreen() {
  CRoom* room = CurrentRoom();
  if (!room) return;
  KeepApplicationSurface();
  g_screen.appSurfaceInUse = g_screen.appSurfaceEnabled;
  Graphics_ViewOfWindow();

  bool clearPending = room->clearViews && g_screen.appSurfaceInUse;
  const auto clearOnce = [&clearPending] {
    if (clearPending) ClearTo(WindowClearColour());
    clearPending = false;
  };
  WalkDrawEvent(ev_draw_pre, clearOnce);

  const bool intoSurface = g_screen.appSurfaceInUse && surface_set_target(g_screen.appSurface);
  UpdateViews();
  room->tiles.SortByDepth();
  DrawRoomInViews(*room);
  if (intoSurface) surface_reset_target();

  Graphics_ViewOfWindow();
  clearOnce();
  WalkDrawEvent(ev_draw_post);
  if (!Surfaces().stack.empty()) {
    ReportError("Unbalanced surface stack. You MUST use surface_reset_target() for each set.");
    return;
  }
  if (g_screen.appSurfaceAutoDraw && g_screen.appSurfaceInUse) DrawToWindow();
  DrawGui();
  DrawCursor();
}

void DrawRoom(const DrawRect& rect) {
  CRoom* room = CurrentRoom();
  if (!room) return;
  View().cullDirty = true;
  if (room->showColour) ClearTo(0xFF000000 | SwapRedBlue(room->colour));
  WalkDrawEvent(ev_draw_begin);
  DrawBackgroundSlots(*room, false);
  DrawByDepth(*room, rect);
  DrawBackgroundSlots(*room, true);
  WalkDrawEvent(ev_draw_end);
}

DrawRect GetDisplayRect() {
  const GraphicsState& g = Graphics();
  if (!g.settings.keepAspect || !g_screen.appSurfaceInUse) return {0, 0, g.windowWidth, g.windowHeight};
  const FloatBox box =
      WindowBox(static_cast<float>(g_screen.appSurfaceWidth), static_cast<float>(g_screen.appSurfaceHeight));
  return {static_cast<int32_t>(box.left), static_cast<int32_t>(box.top),
          static_cast<int32_t>(box.left + box.width), static_cast<int32_t>(box.top + box.height)};
}

GuiExtent GuiSize() {
  if (g_screen.guiWidth >= 0 && g_screen.guiHeight >= 0) return {g_screen.guiWidth, g_screen.guiHeight};
  GuiExtent size{Graphics().windowWidth, Graphics().windowHeight};
  if (const SurfaceRecord* surface = Surface_Find(g_screen.appSurface))
    size = {surface->width, surface->height};
  if (g_screen.guiWidth >= 0) size.width = g_screen.guiWidth;
  if (g_screen.guiHeight >= 0) size.height = g_screen.guiHeight;
  return size;
}

void ApplyGuiView() {
  const GraphicsState& g = Graphics();
  const auto width = static_cast<float>(g.windowWidth), height = static_cast<float>(g.windowHeight);
  SetViewport(0, 0, g.windowWidth, g.windowHeight);
  SetMatrix(kMatrixProjection, OrthographicProjection(width, -height));
  const GuiExtent gui = GuiSize();
  const DrawRect box = GetDisplayRect();
  float scaleX, scaleY, offsetX, offsetY;
  const float wide = static_cast<float>(box.right - box.left),
              high = static_cast<float>(box.bottom - box.top);
  if (g_screen.guiMaximised) {
    scaleX = g_screen.guiScaleX;
    scaleY = g_screen.guiScaleY;
    offsetX = (g_screen.guiOffsetX == kNoOffset ? 0 : g_screen.guiOffsetX) - width / 2;
    offsetY = (g_screen.guiOffsetY == kNoOffset ? 0 : g_screen.guiOffsetY) - height / 2;
  } else {
    scaleX = gui.width > 0 ? wide / static_cast<float>(gui.width) : 1;
    scaleY = gui.height > 0 ? high / static_cast<float>(gui.height) : 1;
    offsetX = -std::floor(wide / 2);
    offsetY = -std::floor(high / 2);
  }
  Matrix view;
  view.m[0] = scaleX;
  view.m[5] = scaleY;
  view.m[12] = offsetX;
  view.m[13] = offsetY;
  view.m[14] = 1;
  const auto back = [](float edge, float offset, float scale) {
    return scale != 0 ? (edge - offset) / scale : 0;
  };
  SetViewMatrix(view, {static_cast<int32_t>(std::floor(back(-width / 2, offsetX, scaleX))),
                       static_cast<int32_t>(std::floor(back(-height / 2, offsetY, scaleY))),
                       static_cast<int32_t>(std::ceil(back(width / 2, offsetX, scaleX))),
                       static_cast<int32_t>(std::ceil(back(height / 2, offsetY, scaleY)))});
}

int32_t application_surface() { return g_screen.appSurface; }

void application_surface_draw_enable(bool on) { g_screen.appSurfaceAutoDraw = on; }

void application_surface_enable(bool on) {
  if (g_screen.appSurfaceEnabled) {
    g_screen.appSurfaceKeptWidth = g_screen.appSurfaceWidth;
    g_screen.appSurfaceKeptHeight = g_screen.appSurfaceHeight;
  }
  g_screen.appSurfaceEnabled = on;
}

} // namespace vesk
