// The draw pass: its order, views and ports, what lies over what, the GUI, the window, and how it ends early.
#include "Files/Background/Background.h"
#include "Files/Background/DrawBackground.h"
#include "Files/Base/Error.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/DrawScreen.h"
#include "Files/Graphics/Surface.h"
#include "Files/Graphics/Texture.h"
#include "Files/Graphics/View.h"
#include "Files/IO/IO.h"
#include "Files/Room/Function_Tile.h"
#include "Files/Sprite/DrawSprite.h"
#include "tests/runner/SmallGame.h"
#include "tests/runner/graphics_Stage.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace vesk::test {
namespace {

using Kind = CRecordingDevice::Kind;

struct ScreenStage {
  SmallGame game;
  RecordingStage stage;
  CRoom& room() { return *CurrentRoom(); }
  ScreenStage(int width = 384, int height = 216) : stage(width, height) {
    CRoom& first = game.RoomTemplate(0);
    first.width = 384;
    first.height = 216;
    first.showColour = false;
  }
  void Draw() {
    stage.device.Forget();
    Events();
    DrawScreen();
    FlushBatch();
  }
  std::vector<Box> Viewports() const {
    std::vector<Box> boxes;
    for (const auto& call : stage.device.calls)
      if (call.kind == Kind::Viewport)
        boxes.push_back({static_cast<float>(call.box[0]), static_cast<float>(call.box[1]),
                         static_cast<float>(call.box[2]), static_cast<float>(call.box[3])});
    return boxes;
  }
};

TEST(DrawScreen, EventsInTheirOrderAndBackToFront) {
  ScreenStage s;
  const int near = s.game.Object("near", {.depth = 0}), far = s.game.Object("far", {.depth = 5});
  const struct {
    int subtype;
    const char* name;
  } events[] = {{ev_draw_pre, "pre"}, {ev_draw_begin, "begin"}, {ev_draw_normal, "draw"},
                {ev_draw_end, "end"}, {ev_draw_post, "post"},   {ev_gui_begin, "guibegin"},
                {ev_gui, "gui"},      {ev_gui_end, "guiend"}};
  for (const auto& it : events)
    for (const int object : {near, far})
      s.game.On(object, ev_draw, it.subtype, [name = it.name, object, near](Self, Self) {
        Log(std::string(name) + (object == near ? ":n" : ":f"));
      });
  s.game.Start();
  instance_create(0, 0, near);
  instance_create(0, 0, far);
  const int hidden = instance_create(0, 0, far);
  Instance_Find(hidden)->visible = false;
  s.Draw();
  EXPECT_EQ(Events(),
            "pre:f pre:n begin:f begin:n draw:f draw:n end:f end:n post:f post:n guibegin:f guibegin:n "
            "gui:f gui:n guiend:f guiend:n");
}

TEST(DrawScreen, DepthsInterleaveAndTilesLieOnInstancesOfTheirDepth) {
  ScreenStage s;
  const int background = s.stage.Background(s.stage.Entry(32, 32, 16, 16));
  const int sprite = s.stage.Piece(0, 0, 8, 8);
  const int a = s.game.Object("a", {.sprite = sprite, .depth = 10}),
            b = s.game.Object("b", {.sprite = sprite, .depth = 0});
  s.game.Start();
  instance_create(1, 100, b);
  instance_create(2, 100, a);
  instance_create(3, 100, a); // newer: lies under the older of its depth
  const auto tile = [&](float x, float depth) {
    Tile it;
    it.x = x;
    it.y = 100;
    it.background = background;
    it.width = it.height = 16;
    it.depth = depth;
    it.id = ++Rooms().nextTileId;
    s.room().tiles.Add(it);
    return it.id;
  };
  tile(20, 10);
  tile(21, 12);
  tile(22, 10);
  tile(384 + 20, 10); // out of view
  const int hidden = tile(23, 10);
  s.room().tiles.Edit(hidden)->visible = false;
  tile(24, 5);
  s.Draw();
  std::string order;
  for (const auto& draw : s.stage.device.Draws())
    if (draw.texture == s.stage.device.Draws()[0].texture)
      for (size_t i = 0; i < static_cast<size_t>(draw.count) / 6; ++i)
        order += std::to_string(static_cast<int>(QuadBox(draw, i).left)) + " ";
  EXPECT_EQ(order, "21 3 2 20 22 24 1 ");
  EXPECT_EQ(Batch().frame.batches, 2u); // the page, and the surface into the window
}

// What a draw event of the random rooms below does, and what a walk without any index finds.
struct RandomRoom {
  std::mt19937 random;
  std::vector<float>* plain = nullptr; // set: events note themselves here
  int background = -1;
  int Pick(int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }
  int32_t AddTile() {
    return tile_add(background, 0, 0, Pick(30) == 0 ? 64 : 16, 16,
                    static_cast<float>(Pick(1400) - 500) + 0.25f, static_cast<float>(Pick(900) - 300),
                    static_cast<float>(Pick(6)));
  }
  int32_t SomeTile() {
    const TileList& tiles = CurrentRoom()->tiles;
    return tiles.empty() ? -1 : tiles[static_cast<size_t>(Pick(static_cast<int>(tiles.size())))].id;
  }
  void Change() {
    const int32_t tile = SomeTile();
    const int what = Pick(24);
    if (what == 0) AddTile();
    if (what == 7) tile_layer_shift(static_cast<float>(Pick(6)), 8, -8);
    if (!tile_exists(tile)) return;
    if (what == 1) tile_delete(tile);
    if (what == 2) tile_set_position(tile, static_cast<float>(Pick(400)), static_cast<float>(Pick(216)));
    if (what == 3) tile_set_visible(tile, Pick(2) == 0);
    if (what == 4) tile_set_depth(tile, static_cast<float>(Pick(6)));
    if (what == 5) tile_set_scale(tile, static_cast<float>(Pick(4)) / 2, 1);
  }
  void Event(Self self) {
    const float mark = 10000 + static_cast<float>(self.instance->id % 1000);
    if (plain)
      plain->push_back(mark);
    else
      draw_background(background, mark, 0);
    if (Pick(4) == 0) Change();
  }
  std::vector<float> WalkPlainly() {
    std::vector<float> drawn;
    plain = &drawn;
    CRoom& room = *CurrentRoom();
    const TileArea area{0, 0, 384, 216};
    CInstance* instance = room.active.tail;
    size_t at = 0;
    for (;;) {
      while (at < room.tiles.size() && !room.tiles[at].visible) ++at;
      const bool tileLeft = at < room.tiles.size();
      if (!instance && !tileLeft) break;
      if (instance && (!tileLeft || !(room.tiles[at].depth > instance->depth))) {
        CInstance* drawnNow = instance;
        instance = instance->previous;
        Event(Self(drawnNow));
      } else {
        const Tile& tile = room.tiles[at++];
        if (Tile_Meets(tile, area)) drawn.push_back(tile.x);
      }
    }
    plain = nullptr;
    return drawn;
  }
};
RandomRoom g_randomRoom;

TEST(DrawScreen, TilesInViewAreThoseOfAPlainScanWhateverDrawEventsDo) {
  size_t drawn = 0;
  for (unsigned seed = 0; seed < 60; ++seed) {
    std::vector<float> orders[2];
    for (const bool plainly : {false, true}) {
      ScreenStage s;
      RandomRoom& random = g_randomRoom;
      random = RandomRoom();
      random.random.seed(seed);
      random.background = s.stage.Background(s.stage.Entry(0, 0, 64, 16));
      for (int depth = 0; depth < 6; ++depth) {
        const int object = s.game.Object("changer" + std::to_string(depth), {.depth = depth});
        s.game.On(object, ev_draw, ev_draw_normal, [](Self self, Self) { g_randomRoom.Event(self); });
      }
      s.game.Start();
      for (int i = 0; i < 12; ++i) instance_create(0, 0, i % 6);
      for (int i = 0; i < 400; ++i) random.AddTile();
      for (int frame = 0; frame < 6; ++frame) {
        if (plainly) {
          CurrentRoom()->tiles.SortByDepth();
          const std::vector<float> order = random.WalkPlainly();
          orders[1].insert(orders[1].end(), order.begin(), order.end());
        } else {
          s.Draw();
          for (const auto& draw : s.stage.device.Draws()) {
            if (draw.texture != Texture_Get(s.stage.page)) continue;
            for (size_t i = 0; i < static_cast<size_t>(draw.count) / 6; ++i)
              orders[0].push_back(QuadBox(draw, i).left);
          }
        }
        for (int i = 0; i < 8; ++i) random.Change();
      }
    }
    ASSERT_EQ(orders[0], orders[1]) << "seed " << seed;
    drawn += orders[0].size();
  }
  EXPECT_GT(drawn, 10000u);
}

TEST(DrawScreen, ViewsGoToTheirPortsScaledToTheSurface) {
  ScreenStage s(800, 600);
  Graphics().settings.keepAspect = true;
  const int object = s.game.Object("looker");
  s.game.On(object, ev_draw, ev_draw_normal, [](Self, Self) {
    Log(std::to_string(Screen().viewCurrent) + ":" + std::to_string(View().viewBounds.left));
  });
  s.game.Start();
  instance_create(0, 0, object);
  CRoom& room = s.room();
  room.viewsEnabled = true;
  room.views[1] = {.visible = true,
                   .xview = 50,
                   .yview = 0,
                   .wview = 100,
                   .hview = 80,
                   .xport = 0,
                   .yport = 0,
                   .wport = 200,
                   .hport = 150};
  room.views[3] = {.visible = true,
                   .xview = 10,
                   .yview = 0,
                   .wview = 100,
                   .hview = 80,
                   .xport = 200,
                   .yport = 0,
                   .wport = 200,
                   .hport = 150};
  Screen().appSurfaceWidth = 200;
  Screen().appSurfaceHeight = 75;
  s.Draw();
  EXPECT_EQ(Events(), "1:49 3:9");
  const auto ports = s.Viewports();
  EXPECT_NE(std::find(ports.begin(), ports.end(), (Box{0, 0, 100, 75})), ports.end());
  EXPECT_NE(std::find(ports.begin(), ports.end(), (Box{100, 0, 100, 75})), ports.end());

  room.viewsEnabled = false; // the whole room, however large, into the surface
  room.width = 5000;
  s.Draw();
  EXPECT_EQ(Events(), "0:0");
  const auto whole = s.Viewports();
  EXPECT_NE(std::find(whole.begin(), whole.end(), (Box{0, 0, 200, 75})), whole.end());
}

TEST(DrawScreen, ApplicationSurfaceInTheWindowKeepsItsShape) {
  const struct {
    int width, height;
    Box box;
  } cases[] = {{768, 432, {0, 0, 768, 432}}, {384, 316, {0, 50, 384, 266}}, {484, 216, {50, 0, 434, 216}}};
  for (const auto& it : cases) {
    ScreenStage s(it.width, it.height);
    Screen().appSurfaceWidth = 384;
    Screen().appSurfaceHeight = 216;
    s.game.Start();
    s.Draw();
    const auto draws = s.stage.device.Draws();
    ASSERT_EQ(draws.size(), 1u);
    EXPECT_EQ(QuadBox(draws[0]), it.box);
    EXPECT_EQ(GetDisplayRect().left, static_cast<int>(it.box.left));
    EXPECT_EQ(GetDisplayRect().bottom, static_cast<int>(it.box.bottom));
    EXPECT_EQ(GuiSize().width, 384); // automatic: pixels of the surface
    Graphics().settings.keepAspect = false;
    s.Draw();
    EXPECT_EQ(QuadBox(s.stage.device.Draws()[0]),
              (Box{0, 0, static_cast<float>(it.width), static_cast<float>(it.height)}));
    application_surface_draw_enable(false);
    s.Draw();
    EXPECT_TRUE(s.stage.device.Draws().empty());
  }
}

TEST(DrawScreen, SwitchedOffResizedAndRemade) {
  ScreenStage s;
  s.game.Start();
  s.Draw();
  const int first = application_surface();
  EXPECT_EQ(surface_get_width(first), 384);
  surface_resize(first, 192, 108);
  EXPECT_EQ(surface_get_width(first), 384); // not before the next pass
  s.Draw();
  EXPECT_EQ(application_surface(), first);
  EXPECT_EQ(surface_get_width(first), 192);
  application_surface_enable(false);
  s.Draw();
  EXPECT_EQ(application_surface(), kNoSurface);
  EXPECT_FALSE(surface_exists(first));
  EXPECT_EQ(Screen().appSurfaceWidth, 384); // the window's
  application_surface_enable(true);
  s.Draw();
  EXPECT_EQ(surface_get_width(application_surface()), 192); // the size it had
}

TEST(DrawScreen, AViewIntoASurfaceTakesTheWholeOfIt) {
  ScreenStage s;
  const int object = s.game.Object("looker");
  s.game.On(object, ev_draw, ev_draw_normal, [](Self, Self) {
    Log(std::to_string(View().viewportX) + "," + std::to_string(View().viewportW));
  });
  s.game.Start();
  instance_create(0, 0, object);
  s.Draw();
  Events();
  CRoom& room = s.room();
  room.viewsEnabled = true;
  for (const size_t view : {0, 1})
    room.views[view] = {.visible = true, .wview = 384, .hview = 216, .wport = 384, .hport = 216};
  room.views[1].xport = 384;
  const int own = surface_create(100, 50);
  room.views[0].surface = own;
  s.Draw();
  EXPECT_EQ(Events(), "0,100 192,192");
  EXPECT_EQ(Screen().viewCurrent, 7) << "as the loop over the views leaves it";
  room.views[0].surface = -1;
  room.views[1].surface = application_surface(); // the target already
  s.Draw();
  EXPECT_EQ(Events(), "0,192 0,384");
}

TEST(DrawScreen, TheCursorSpriteFollowsTheMouseInTheWindow) {
  ScreenStage s(385, 217); // odd: the picture still meets the pixels
  s.game.Start();
  Screen().cursorSprite = s.stage.Piece(0, 0, 8, 8, 2, 3);
  Input().mice[0].x = 50;
  Input().mice[0].y = 60;
  s.Draw();
  const auto draws = s.stage.device.Draws();
  ASSERT_FALSE(draws.empty());
  EXPECT_EQ(QuadBox(draws.back()), (Box{48, 57, 56, 65}));
  EXPECT_EQ(View().matrices[kMatrixView].m[12], -192.5f);
  EXPECT_EQ(View().matrices[kMatrixView].m[13], -108.5f);
  EXPECT_EQ(View().matrices[kMatrixProjection].m[0], 2.0f / 385);
  Input().mice[0] = {};
}

TEST(DrawScreen, CursorConstantsChooseTheShapeOfThePointer) {
  ScreenStage s;
  const auto& window = s.stage.platform.window;
  const struct {
    int32_t constant;
    CursorShape shape;
  } cases[] = {{cr_none, CursorShape::None},
               {cr_default, CursorShape::Default},
               {cr_handpoint, CursorShape::HandPoint},
               {cr_size_all, CursorShape::SizeAll},
               {77, CursorShape::SizeAll},
               {-99, CursorShape::SizeAll}};
  for (const auto& it : cases) {
    window_set_cursor(it.constant);
    EXPECT_EQ(window.cursor, it.shape) << it.constant;
  }
}

// With the alternate method a frame's end waits; over time the frames keep their period.
TEST(DrawScreen, AlternateSyncPacesFramesAtTheirEnd) {
  ScreenStage s;
  s.game.Start();
  GraphicsState& g = Graphics();
  g.alternateSync = true;
  EXPECT_FALSE(Graphics_PacesFrames()); // presentation is not synchronised
  g.settings.synchronised = true;
  ASSERT_TRUE(Graphics_PacesFrames());
  int64_t first = 0, last = 0;
  for (int frame = 0; frame < 60; ++frame) {
    BeginFrame();
    s.stage.platform.clock.Advance(frame % 3 == 0 ? 12000 : 2000); // work
    EndFrame(true);
    last = s.stage.platform.clock.Microseconds();
    if (frame == 9) first = last;
  }
  EXPECT_NEAR(static_cast<double>(last - first), 50 * 1e6 / 60, 17000);
}

TEST(DrawScreen, AnUnbalancedStackEndsThePassBeforeTheGui) {
  ScreenStage s;
  const int object = s.game.Object("careless");
  static bool careless = true;
  careless = true;
  s.game.On(object, ev_draw, ev_draw_normal, [](Self, Self) {
    if (careless) surface_set_target(surface_create(8, 8));
  });
  s.game.On(object, ev_draw, ev_draw_post, [](Self, Self) { Log("post"); });
  s.game.On(object, ev_draw, ev_gui, [](Self, Self) { Log("gui"); });
  s.game.Start();
  instance_create(0, 0, object);
  s.Draw();
  EXPECT_EQ(Events(), "post");
  EXPECT_NE(Error().lastReport.find("Unbalanced surface stack."), std::string::npos);
  EndFrame(true);
  careless = false;
  BeginFrame();
  s.Draw();
  EXPECT_EQ(Events(), "post gui"); // the next frame is whole again
}

TEST(DrawScreen, GuiCoordinatesAreThoseOfTheGuiSize) {
  ScreenStage s(768, 432);
  Screen().appSurfaceWidth = 384;
  Screen().appSurfaceHeight = 216;
  const int object = s.game.Object("hud");
  s.game.On(object, ev_draw, ev_gui, [](Self, Self) {
    const Matrix& view = View().matrices[kMatrixView];
    Log(std::to_string(view.m[0]) + "," + std::to_string(view.m[12]) + "," +
        std::to_string(View().viewBounds.right));
  });
  s.game.Start();
  instance_create(0, 0, object);
  s.Draw();
  EXPECT_EQ(Events(), "2.000000,-384.000000,384");
  display_set_gui_size(768, 432);
  s.Draw();
  EXPECT_EQ(Events(), "1.000000,-384.000000,768");
}

TEST(DrawScreen, ClearsTheWindowOnceAndTheRoomByItsFlag) {
  ScreenStage s;
  const int object = s.game.Object("early");
  s.game.On(object, ev_draw, ev_draw_pre, [](Self, Self) {});
  s.game.Start();
  Graphics().windowColour = 0x0000FF; // red
  s.room().colour = 0xFF0000;         // blue
  const auto clears = [&] {
    s.Draw();
    std::string all;
    for (const auto& call : s.stage.device.calls)
      if (call.kind == Kind::Clear)
        all += call.value == 0xFFFF0000 ? "window " : call.value == 0xFF0000FF ? "room " : "?";
    return all;
  };
  EXPECT_EQ(clears(), "window ");
  s.room().showColour = true;
  EXPECT_EQ(clears(), "room window "); // nobody draws before: it waits for the window's turn
  instance_create(0, 0, object);
  EXPECT_EQ(clears(), "window room ");
  s.room().clearViews = false;
  EXPECT_EQ(clears(), "room ");
}

TEST(DrawScreen, ALevelOfTilesIsFewDrawCalls) {
  ScreenStage s;
  const int atlas = s.stage.Background(s.stage.Entry(0, 0, 64, 64));
  const int sprite = s.stage.Piece(0, 0, 16, 16);
  const int block = s.game.Object("block", {.sprite = sprite, .depth = 3});
  s.game.Start();
  s.room().width = 16 * 400;
  s.room().viewsEnabled = true;
  s.room().views[0] = {
      .visible = true, .xview = 1600, .yview = 0, .wview = 384, .hview = 216, .wport = 384, .hport = 216};
  for (int i = 0; i < 10000; ++i) {
    Tile tile;
    tile.x = static_cast<float>(i % 400 * 16);
    tile.y = static_cast<float>(i / 400 % 14 * 16);
    tile.background = atlas;
    tile.width = tile.height = 16;
    tile.depth = i % 2 ? 9.0f : 12.0f;
    tile.id = ++Rooms().nextTileId;
    s.room().tiles.Add(tile);
  }
  for (int i = 0; i < 200; ++i) instance_create(static_cast<float>(i * 32), 50, block);
  s.Draw();
  EXPECT_LE(Batch().frame.batches, 6u);
  EXPECT_GT(Batch().frame.quads, 300u);
  EXPECT_LT(Batch().frame.quads, 800u);
}

TEST(Window, SettlesBeforeTheDeviceFollows) {
  ScreenStage s;
  CUnseenWindow& window = s.stage.platform.window;
  s.game.Start();
  s.Draw();
  EndFrame(true);
  const int surface = application_surface();
  window_set_size(384, 216); // as it is
  EXPECT_EQ(Graphics().settleCounter, 0);
  window_set_size(768, 432);
  EXPECT_EQ(Graphics().settleCounter, 10);
  for (int i = 0; i < 8; ++i) Graphics_Settle();
  EXPECT_EQ(window.Size().width, 384);
  EXPECT_TRUE(surface_exists(surface));
  Graphics_Settle();
  EXPECT_EQ(window.Size().width, 768);
  EXPECT_FALSE(surface_exists(surface));
  EXPECT_EQ(Graphics().settleCounter, 0);

  window_set_fullscreen(true);
  EXPECT_EQ(Graphics().settleCounter, 1);
  Graphics_Settle();
  EXPECT_TRUE(window.Fullscreen());
  window.SetSize({1920, 1080});
  window_set_fullscreen(false);
  Graphics_Settle();
  EXPECT_FALSE(window.Fullscreen());
  EXPECT_EQ(window.Size().width, 768); // the size before
  window_center();
  int32_t x = 0, y = 0;
  window.Position(x, y);
  EXPECT_EQ(x, (1920 - 768 - window.FrameSize().width) / 2);
  window_set_size(-4, 100); // ignored
  EXPECT_EQ(Graphics().settleCounter, 0);
}

} // namespace
} // namespace vesk::test
