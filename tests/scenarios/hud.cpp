// What a running level draws over the picture: each bar, sign and text, to the pixel.
#include "game/Game.h"
#include "tests/scenarios/DrawnFrame.h"
#include "tests/scenarios/Stage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>
#include <utility>

namespace vesk {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;

const Rows kLongFloor = {"..S", "", std::string(100, '#')};

DrawnPicture Drawn(const char* name, int32_t frame, const Box& box, uint32_t opacity = 255) {
  return {name, frame, 0, 0, box, opacity << 24 | 0xFFFFFF};
}
const DrawnPicture kOneSlot = Drawn("spr_healthbar", 0, {2, 4, 192, 17});
const DrawnPicture kTwoSlots = Drawn("spr_healthbar", 1, {2, 4, 192, 29});
DrawnPicture HealthBar(double width) { return Drawn("spr_healthbar_red", 0, {6, 7, 6 + width, 14}); }
DrawnPicture AmmoBar(double width) { return Drawn("spr_healthbar_gray", 0, {6, 19, 6 + width, 26}, 178); }
DrawnPicture Blood(uint32_t opacity) { return Drawn("spr_bloodoverlay", 0, {0, 0, 384, 216}, opacity); }
DrawnPicture Meter(int32_t frame) { return Drawn("spr_pmeter", frame, {303, 203, 380, 212}); }

auto From(double left, double top, const char* text) {
  return AllOf(Field(&DrawnLine::text, text), Field(&DrawnLine::left, left), Field(&DrawnLine::top, top));
}
auto To(double right, double top, const char* text) {
  return AllOf(Field(&DrawnLine::text, text), Field(&DrawnLine::right, right), Field(&DrawnLine::top, top));
}

// Of the next frame.
DrawnFrame HudOf(Stage& stage) {
  DrawnFrame frame = LookAtFrame(stage.Game());
  std::erase_if(frame.pictures, [](const DrawnPicture& picture) { return picture.name.empty(); });
  return frame;
}
// In front of the count of the coins, which is the last line.
DrawnPicture CoinSign(const DrawnFrame& hud) {
  const double left = hud.lines.empty() ? 0 : hud.lines.back().left - 14;
  return Drawn("spr_coinhud", 0, {left, 16, left + 12, 25});
}

Self Manager() { return first(obj_levelmanager); }

TEST(Hud, StandsStillWhileTheViewMoves) {
  Stage stage(kLongFloor);
  stage.Settle();
  for (const auto& [at, view] : {std::pair(40, 0), std::pair(900, 700)}) {
    Manager()[barrier] = 1;
    first(obj_tovin)[x] = at;
    stage.Step(2);
    ASSERT_NEAR(stage.Global("view_xview[0]"), view, 16);
    const DrawnFrame hud = HudOf(stage);
    EXPECT_THAT(hud.pictures, ElementsAre(kOneSlot, HealthBar(182), CoinSign(hud), Meter(0)));
    EXPECT_THAT(hud.lines,
                ElementsAre(From(13, 2, "Health: 25/25"), To(380, 4, "00000000"), To(380, 16, "0")));
  }
}

TEST(Hud, AHealthBarIsCutAtAnyFraction) {
  Stage stage(kLongFloor);
  stage.Settle();
  for (const auto& [points, width, text] :
       {std::tuple(18.75, 136.5, "Health: 18.75/25"), std::tuple(12.5, 91.0, "Health: 12.50/25")}) {
    health = points;
    const DrawnFrame hud = HudOf(stage);
    EXPECT_THAT(hud.pictures, ElementsAre(kOneSlot, HealthBar(width), CoinSign(hud), Meter(0)));
    EXPECT_THAT(hud.lines, ElementsAre(From(13, 2, text), To(380, 4, "00000000"), To(380, 16, "0")));
  }
}

TEST(Hud, AnyAmmoOpensTheSecondSlot) {
  Stage stage(kLongFloor);
  stage.Settle();
  Manager()[maxammo] = 28;
  global[ammo] = 7;
  DrawnFrame hud = HudOf(stage);
  EXPECT_THAT(hud.pictures, ElementsAre(kTwoSlots, AmmoBar(45.5), HealthBar(182), CoinSign(hud), Meter(0)));
  EXPECT_THAT(hud.lines, ElementsAre(From(13, 23, "Ammo: 7/28"), From(13, 2, "Health: 25/25"),
                                     To(380, 4, "00000000"), To(380, 16, "0")));
  global[ammo] = -7;
  hud = HudOf(stage);
  EXPECT_THAT(hud.pictures, ElementsAre(kTwoSlots, HealthBar(182), CoinSign(hud), Meter(0)));
  EXPECT_THAT(hud.lines, ElementsAre(From(13, 23, "Ammo: -7/28"), From(13, 2, "Health: 25/25"),
                                     To(380, 4, "00000000"), To(380, 16, "0")));
  global[ammo] = 0;
  hud = HudOf(stage);
  EXPECT_THAT(hud.pictures, ElementsAre(kOneSlot, HealthBar(182), CoinSign(hud), Meter(0)));
  EXPECT_THAT(hud.lines, ElementsAre(From(13, 2, "Health: 25/25"), To(380, 4, "00000000"), To(380, 16, "0")));
}

TEST(Hud, CountsEndAtTheRightAndTheMeterShowsItsFaces) {
  Stage stage(kLongFloor);
  stage.Settle();
  score = 4200;
  global[coins] = 1234;
  const DrawnFrame hud = HudOf(stage);
  EXPECT_THAT(hud.lines,
              ElementsAre(From(13, 2, "Health: 25/25"), To(380, 4, "00004200"), To(380, 16, "1234")));
  EXPECT_THAT(hud.pictures, ElementsAre(kOneSlot, HealthBar(182), CoinSign(hud), Meter(0)));
  score = 123456789;
  EXPECT_THAT(HudOf(stage).lines,
              ElementsAre(From(13, 2, "Health: 25/25"), To(380, 4, "123456789"), To(380, 16, "1234")));
  for (const int face : {6, 7}) {
    Manager()[pmeter] = face;
    Manager()[alarm][7] = -1; // it isn't sampled now
    EXPECT_EQ(HudOf(stage).Find("spr_pmeter"), Meter(face));
  }
}

TEST(Hud, BloodPulsesBehindTheBarsWhileTheHeartBeats) {
  Stage stage(kLongFloor);
  stage.Settle();
  health = 6.25;
  const std::pair<int64_t, uint32_t> pulse[] = {{0, 0}, {19, 127}, {19, 255}}; // frames on, opacity
  for (const auto& [frames, opacity] : pulse) {
    stage.Step(frames);
    const DrawnFrame hud = HudOf(stage);
    EXPECT_THAT(hud.pictures,
                ElementsAre(Blood(opacity), kOneSlot, HealthBar(45.5), CoinSign(hud), Meter(0)));
    EXPECT_THAT(hud.lines,
                ElementsAre(From(13, 2, "Health: 6.25/25"), To(380, 4, "00000000"), To(380, 16, "0")));
  }
  health = 25;
  const DrawnFrame hud = HudOf(stage);
  EXPECT_THAT(hud.pictures, ElementsAre(kOneSlot, HealthBar(182), CoinSign(hud), Meter(0)));
}

} // namespace
} // namespace vesk
