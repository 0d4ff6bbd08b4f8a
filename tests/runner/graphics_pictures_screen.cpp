// What a whole draw pass leaves in the window: turned views, the letter-boxed picture, the GUI over it, the
// cursor over that; and the splash.
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/DrawScreen.h"
#include "Files/Graphics/PngImage.h"
#include "Files/IO/IO.h"
#include "Files/Sprite/DrawSprite.h"
#include "Platform/Files.h"
#include "tests/runner/SmallGame.h"
#include "tests/runner/graphics_Picture.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vesk::test {
namespace {

class ScreenPictures : public PictureTest {
protected:
  ScreenPictures() : PictureTest(96, 80) {}
  SmallGame game;
};
INSTANTIATE_TEST_SUITE_P(Devices, ScreenPictures, testing::Bool(), DeviceName);

// The mouse is the judge: what lies under it in the room is what the picture shows there.
TEST_P(ScreenPictures, TurnedViewsShowWhatTheMousePointsAt) {
  CRoom& room = game.RoomTemplate(0);
  room.showColour = true;
  room.colour = 0x0000FF; // red
  room.viewsEnabled = true;
  ViewSlot& whole = room.views[0]; // gives the ports their scale of 1
  whole.visible = true;
  whole.xview = whole.yview = 1000;
  whole.wport = kWidth, whole.hport = kHeight;
  ViewSlot& view = room.views[1];
  view.visible = true;
  view.xport = 16, view.yport = 8, view.wport = 60, view.hport = 60;
  view.xview = 100, view.yview = 200, view.wview = 30, view.hview = 30;
  const int object = game.Object("picture", {.sprite = stage->Piece(0, 0, 32, 32)});
  game.Place(0, object, 96, 204);
  game.Start();
  for (const float angle : {0.0f, 90.0f, 30.0f, -140.0f}) {
    CurrentRoom()->views[1].angle = angle;
    draw_clear(c_black);
    DrawScreen();
    FlushBatch();
    Canvas canvas = NewCanvas();
    canvas.Fill(0, 0, kWidth, kHeight, [](int, int, Rgba) { return Rgba{255, 0, 0, 255}; });
    canvas.Fill(16, 8, 76, 68, [&](int x, int y, Rgba) {
      // The middle of the pixel, from the formula for the mouse's place.
      const double a = -double(angle) * 3.14159265358979 / 180, du = (x + 0.5) / 2 - 15,
                   dv = (y + 0.5) / 2 - 15;
      const double left = std::cos(a) * du + std::sin(a) * dv + 115 - 96,
                   top = -std::sin(a) * du + std::cos(a) * dv + 215 - 204;
      if (std::fabs(left - std::round(left)) < 0.05 || std::fabs(top - std::round(top)) < 0.05)
        return Rgba{0, 0, 0, 0}; // between two texels
      const bool inside = left > 0 && top > 0 && left < 32 && top < 32;
      return inside ? PagePixel(static_cast<int>(left), static_cast<int>(top)) : Rgba{255, 0, 0, 255};
    });
    SCOPED_TRACE(angle);
    Expect(canvas, 0);
  }
}

// Ports are scaled so that all of them together fill the picture; the mouse has to know.
TEST_P(ScreenPictures, TheMouseFindsWhatAScaledPortShows) {
  CRoom& room = game.RoomTemplate(0);
  room.colour = 0;
  room.viewsEnabled = true;
  room.views[0].visible = true;
  room.views[0].xview = 200, room.views[0].yview = 100, room.views[0].wview = 96, room.views[0].hview = 80;
  room.views[0].wport = 192, room.views[0].hport = 160;
  const int object = game.Object("picture", {.sprite = stage->Piece(0, 0, 16, 16)});
  game.Place(0, object, 240, 130);
  game.Start();
  DrawScreen();
  FlushBatch();
  Canvas canvas = NewCanvas();
  canvas.Fill(40, 30, 56, 46, [](int x, int y, Rgba) { return PagePixel(x, y); });
  Expect(canvas, 0);
  Input().mice[0].x = 45, Input().mice[0].y = 37;
  EXPECT_EQ(IO_MouseInRoom(0).x, 245);
  EXPECT_EQ(IO_MouseInRoom(0).y, 137);
  IO_Reset();
}

TEST_P(ScreenPictures, ThePictureIsLetterBoxedUnderGuiAndCursor) {
  CRoom& room = game.RoomTemplate(0);
  room.width = 48;
  room.height = 24;
  room.colour = 0xFF0000; // blue
  const int sprite = stage->Piece(0, 0, 16, 16), pointer = stage->Piece(10, 20, 6, 6, 1, 1);
  const int object = game.Object("picture", {.sprite = sprite});
  game.On(object, ev_draw, ev_gui, [](Self, Self) {
    draw_set_colour(c_lime);
    draw_rectangle(40, 0, 47, 3, false);
  });
  game.Place(0, object, 8, 4);
  game.Start();
  Screen().appSurfaceWidth = 48, Screen().appSurfaceHeight = 24;
  Screen().cursorSprite = pointer;
  Input().mice[0].x = 90, Input().mice[0].y = 70; // over the lower bar
  DrawScreen();
  FlushBatch();
  Canvas canvas = NewCanvas();
  canvas.Fill(0, 16, 96, 64, [](int, int, Rgba) { return Rgba{0, 0, 255, 255}; });
  canvas.Fill(16, 24, 48, 56, [](int x, int y, Rgba) { return PagePixel(x / 2, y / 2); });
  canvas.Fill(80, 16, 96, 24, [](int, int, Rgba) { return Rgba{0, 255, 0, 255}; });
  canvas.Fill(89, 69, 95, 75, [](int x, int y, Rgba) { return PagePixel(10 + x, 20 + y); });
  Expect(canvas, 0);
  IO_Reset();
}

TEST_P(ScreenPictures, TheSplashIsAsLargeAsTheWindowAllows) {
  PngImage image{24, 10, {}};
  for (int y = 0; y < 10; ++y)
    for (int x = 0; x < 24; ++x)
      for (const uint8_t channel : PagePixel(x, y)) image.pixels.push_back(channel);
  std::string bytes, why;
  ASSERT_TRUE(Png_Encode(image, bytes, why));
  const std::string file = Directory_Temporary() + "vesk_splash.png";
  ASSERT_TRUE(File_WriteAll(file, bytes));
  static int rounds;
  rounds = 0;
  const int64_t before = stage->platform.clock.Microseconds();
  Graphics_Splash(file.c_str(), [] { ++rounds; });
  EXPECT_GT(rounds, 1);
  EXPECT_NEAR(static_cast<double>(stage->platform.clock.Microseconds() - before), 2e6, 5e4);
  Canvas canvas = NewCanvas();
  canvas.Fill(0, 20, 96, 60, [](int x, int y, Rgba) { return PagePixel(x / 4, y / 4); });
  Expect(canvas, 0);
  BeginFrame();
  File_Remove(file);
}

} // namespace
} // namespace vesk::test
