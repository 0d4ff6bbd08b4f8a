// Rain and thunder, water that rises and falls, short effects.
#include "Files/Function/Function_Audio.h"
#include "Files/Object/Function_Instance.h"
#include "Files/Room/Function_Room.h"
#include "game/AssetNames.h"
#include "game/ObjectNames.h"
#include "sim/Look.h"
#include "tests/scenarios/Stage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace vesk {

namespace {

const Rows kField = {"..S", "", std::string(60, '#')};

LevelSettings Rainy() {
  LevelSettings level;
  level.rain = 1;
  return level;
}

LevelSettings Wet(int cells) {
  LevelSettings level;
  level.water = cells;
  return level;
}

int Brightness(const Pixel& pixel) { return pixel.red + pixel.green + pixel.blue; }

} // namespace

// ---- storm ----

TEST(Weather, TwoDropsAStepFallThroughTheViewFromItsRight) {
  Stage stage(kField, Rainy());
  stage.Set("obj_levelmanager", "barrier", 1);
  stage.Set("obj_tovin", "x", 500);
  stage.Step(200);
  const double left = stage.Global("view_xview[0]"), top = stage.Global("view_yview[0]");
  ASSERT_GT(left, 0);
  std::set<int> known;
  for (CInstance* drop : stage.All("obj_rain")) known.insert(drop->id);
  double leftmost = 1e9, rightmost = -1e9;
  for (int step = 0; step < 150; ++step) {
    stage.Step();
    int fresh = 0;
    for (CInstance* drop : stage.All("obj_rain")) {
      if (!known.insert(drop->id).second) continue;
      ++fresh;
      leftmost = std::min(leftmost, RealOf(drop, "xstart"));
      rightmost = std::max(rightmost, RealOf(drop, "xstart"));
      EXPECT_EQ(RealOf(drop, "ystart"), top - 8);
      const double fallen = RealOf(drop, "y") - RealOf(drop, "ystart");
      EXPECT_NEAR(RealOf(drop, "xstart") - RealOf(drop, "x"), fallen, 0.001); // aslant to the left
      EXPECT_GE(fallen, 3 / std::sqrt(2.0) - 0.001);
      EXPECT_LE(fallen, 4 / std::sqrt(2.0) + 0.001);
    }
    ASSERT_EQ(fresh, 2) << step;
  }
  EXPECT_GE(leftmost, left);
  EXPECT_LT(leftmost, left + 40);
  EXPECT_LT(rightmost, left + 384 + 480);
  EXPECT_GT(rightmost, left + 384 + 440);
  for (CInstance* drop : stage.All("obj_rain")) EXPECT_LE(RealOf(drop, "y"), 14 * 16 + 4);
  EXPECT_LT(stage.Count("obj_rain"), 240u); // those below the room are gone
  EXPECT_GT(stage.Count("obj_rain"), 140u);
}

TEST(Weather, ThunderComesAgainAndAgainAndRainSoundsUntilTheRoomEnds) {
  Stage stage(kField, Rainy());
  stage.Step(2);
  EXPECT_TRUE(audio_is_playing(snd_rain));
  std::vector<int64_t> flashes;
  bool before = false;
  for (int step = 0; step < 1200; ++step) {
    stage.Step();
    const bool now = stage.Count("obj_lightningsheet") > 0;
    if (now && !before) {
      flashes.push_back(stage.Game().Frame());
      EXPECT_TRUE(audio_is_playing(snd_thunder));
    }
    before = now;
  }
  ASSERT_GE(flashes.size(), 5u);
  std::set<int64_t> gaps;
  for (size_t at = 1; at < flashes.size(); ++at) {
    gaps.insert(flashes[at] - flashes[at - 1]);
    EXPECT_GE(flashes[at] - flashes[at - 1], 130);
    EXPECT_LE(flashes[at] - flashes[at - 1], 250);
  }
  EXPECT_GT(gaps.size(), 1u);
  room_goto(rm_mainmenu);
  stage.Step(2);
  EXPECT_FALSE(audio_is_playing(snd_rain));
}

// ---- water ----

TEST(Water, RisesAndFallsOnePixelAStepAndStopsAtItsTarget) {
  Stage stage(kField, Wet(4));
  const double start = stage.Real("obj_watershader", "y");
  EXPECT_EQ(start, 10 * 16 + 1);
  for (const double goal : {start - 37, start + 20, start + 20}) {
    const double from = stage.Real("obj_watershader", "y");
    stage.Set("obj_watershader", "target", goal);
    stage.Set("obj_watershader", "moving", 1);
    stage.Set("obj_watershader", "alarm[0]", 1);
    const int steps = std::max(1, static_cast<int>(std::abs(goal - from)));
    for (int step = 1; step <= steps; ++step) {
      EXPECT_EQ(stage.Real("obj_watershader", "moving"), 1) << step;
      stage.Step();
      const double way = goal == from ? 0 : goal > from ? step : -step;
      EXPECT_EQ(stage.Real("obj_watershader", "y"), from + way) << step;
    }
    EXPECT_EQ(stage.Real("obj_watershader", "moving"), 0);
    stage.Step(5);
    EXPECT_EQ(stage.Real("obj_watershader", "y"), goal);
  }
}

TEST(Water, TheHeroSwimsInWhatHasRisenOverTheHead) {
  Stage stage(kField, Wet(1));
  stage.Settle();
  EXPECT_EQ(stage.Real("obj_tovin", "isswim"), 0);
  stage.Set("obj_watershader", "target", 100);
  stage.Set("obj_watershader", "moving", 1);
  stage.Set("obj_watershader", "alarm[0]", 1);
  stage.Step(120);
  EXPECT_EQ(stage.Real("obj_tovin", "isswim"), 1);
}

TEST(Water, ASectionWithABlockForItHidesItBelowTheRoom) {
  LevelSettings level;
  level.objects = {{"10,8", "Water Level Block"}};
  {
    Stage stage(kField, level);
    EXPECT_EQ(stage.Real("obj_watershader", "y"), 14 * 16 + 48);
    EXPECT_EQ(stage.Real("obj_watershader", "target"), 14 * 16 + 48);
  }
  level.water = 3;
  Stage stage(kField, level);
  EXPECT_EQ(stage.Real("obj_watershader", "y"), 11 * 16 + 1);
}

TEST(Water, ColoursWhatIsBelowItsSurface) {
  LevelSettings level = Wet(5);
  level.waterColor = "Green";
  Stage stage(kField, level, 1, true);
  stage.Settle();
  stage.Step(30);
  stage.Set("obj_lightmanager", "visible", 0);
  stage.Draw();
  const int surface = 9 * 16 - static_cast<int>(stage.Global("view_yview[0]"));
  std::vector<Pixel> wet;
  for (int y = surface - 30; y < surface + 60; ++y) wet.push_back(stage.At(200, y));
  const Pixel bottom = stage.At(300, 210);
  stage.Set("obj_watershader", "visible", 0);
  stage.Draw();
  for (int y = 0; y < 30; ++y)
    EXPECT_EQ(Brightness(wet[y]), Brightness(stage.At(200, surface - 30 + y))) << y;
  int tinted = 0;
  for (int y = 46; y < 90; ++y) {
    const Pixel dry = stage.At(200, surface - 30 + y);
    EXPECT_GE(wet[y].red, dry.red) << y; // nothing gets darker
    EXPECT_GE(wet[y].green, dry.green) << y;
    EXPECT_GE(wet[y].blue, dry.blue) << y;
    tinted += wet[y].green > dry.green;
  }
  EXPECT_GT(tinted, 20);
  EXPECT_GT(Brightness(bottom), Brightness(stage.At(300, 210))); // down to the room's end
}

TEST(Water, FillsASectionUpToTheHighestJump) {
  Stage stage(kField);
  stage.Settle();
  instance_create(70, 90, obj_fillwater);
  stage.Step(2);
  EXPECT_EQ(stage.Real("obj_fillwater", "bbox_left"), 0);
  EXPECT_EQ(stage.Real("obj_fillwater", "bbox_top"), -96);
  EXPECT_EQ(stage.Real("obj_fillwater", "bbox_right"), 60 * 16 - 1);
  EXPECT_EQ(stage.Real("obj_fillwater", "bbox_bottom"), 14 * 16 - 1);
  EXPECT_EQ(stage.Real("obj_tovin", "isswim"), 1);
}

TEST(Water, FallsBrightenAndBloodFallsFromAboveTheView) {
  LevelSettings level;
  level.background = "Blue Cave";
  level.objects = {{"12,6", "Blue Waterfall"}};
  Stage stage(kField, level, 1, true);
  stage.Settle();
  stage.Step(30);
  stage.Set("obj_lightmanager", "visible", 0);
  instance_create(240, 120, obj_bloodfall);
  stage.Draw(2);
  const int top = static_cast<int>(stage.Global("view_yview[0]"));
  const auto column = [&](int x) {
    std::vector<Pixel> seen;
    for (int y = 40; y < 180; ++y) seen.push_back(stage.At(x, y)); // below the bars
    return seen;
  };
  const auto fall = column(12 * 16 + 6), blood = column(246);
  stage.Set("obj_wfall", "visible", 0);
  stage.Set("obj_bloodfall", "visible", 0);
  stage.Draw();
  const auto fallGone = column(12 * 16 + 6), bloodGone = column(246);
  for (int y = 40; y < 180; ++y) {
    const size_t at = static_cast<size_t>(y - 40);
    const bool inFall = y + top >= 96 && y + top < 112, inBlood = y + top < 136;
    if (inFall) {
      EXPECT_GT(Brightness(fall[at]), Brightness(fallGone[at])) << y;
    } else {
      EXPECT_EQ(Brightness(fall[at]), Brightness(fallGone[at])) << y;
    }
    if (inBlood) {
      EXPECT_GE(blood[at].red, bloodGone[at].red) << y;
    } else {
      EXPECT_EQ(Brightness(blood[at]), Brightness(bloodGone[at])) << y;
    }
  }
  int reddened = 0;
  for (size_t at = 0; at < 60; ++at) reddened += blood[at].red > bloodGone[at].red;
  EXPECT_GT(reddened, 30);
}

// ---- short effects ----

TEST(Effects, PlayOnceAndEnd) {
  struct Row {
    int object;
    const char* name;
    double speed; // frames a step
  };
  Stage stage(kField);
  stage.Settle();
  for (const Row& row :
       {Row{obj_smoke, "obj_smoke", 0.3}, Row{obj_statuesmoke, "obj_statuesmoke", 0.2},
        Row{obj_sparkletrail, "obj_sparkletrail", 0.2}, Row{obj_spinthump, "obj_spinthump", 0.3}}) {
    instance_create(100, 100, row.object);
    const double frames = stage.Real(row.name, "image_number");
    const int lasts = static_cast<int>(std::ceil(frames / row.speed - 0.001));
    stage.Step(lasts - 1);
    EXPECT_EQ(stage.Count(row.name), 1u) << row.name;
    stage.Step(2); // a fraction more or less
    EXPECT_EQ(stage.Count(row.name), 0u) << row.name;
  }
}

TEST(Effects, StarsFlyOutForSixteenSteps) {
  LevelSettings level;
  level.background = "Blue Cave";
  Stage stage(kField, level, 1, true);
  stage.Settle();
  stage.Step(30);
  stage.Set("obj_lightmanager", "visible", 0);
  instance_create(200, 80, obj_spinsmoke);
  EXPECT_TRUE(audio_is_playing(snd_spinstomp));
  stage.Draw(10);
  EXPECT_EQ(stage.Real("obj_spinsmoke", "starx"), 20);
  EXPECT_EQ(stage.Real("obj_spinsmoke", "stary"), 10);
  const int top = static_cast<int>(stage.Global("view_yview[0]"));
  const auto stars = [&] {
    std::vector<Pixel> middles;
    for (const int right : {-20, 20})
      for (const int down : {-10, 10}) middles.push_back(stage.At(208 + right, 88 + down - top));
    return middles;
  };
  const auto shining = stars();
  stage.Step(5);
  EXPECT_EQ(stage.Count("obj_spinsmoke"), 1u);
  stage.Draw();
  EXPECT_EQ(stage.Count("obj_spinsmoke"), 0u);
  const auto gone = stars();
  for (size_t at = 0; at < 4; ++at) EXPECT_NE(Brightness(shining[at]), Brightness(gone[at])) << at;
}

TEST(Effects, BubblesEndAtTheSurfaceAndAtWalls) {
  Stage stage(kField, Wet(8));
  stage.Settle();
  const int rising = instance_create(200, 13 * 16 - 20, obj_bubble);
  const int inAir = instance_create(300, 3 * 16, obj_bubble);
  const int inGround = instance_create(400, 13 * 16 + 2, obj_bubble);
  stage.Step(2);
  EXPECT_FALSE(instance_exists(inAir));
  EXPECT_FALSE(instance_exists(inGround));
  double y = 13 * 16;
  for (int step = 0; step < 600 && instance_exists(rising); ++step) {
    for (CInstance* bubble : stage.All("obj_bubble"))
      if (bubble->id == rising) y = RealOf(bubble, "y");
    stage.Step();
  }
  EXPECT_FALSE(instance_exists(rising));
  EXPECT_NEAR(y, 6 * 16, 4);
}

TEST(Effects, BloodFliesAndStains) {
  Stage stage(kField);
  stage.Settle();
  for (int drop = 0; drop < 8; ++drop) instance_create(200, 60, obj_gore);
  stage.Step(5);
  EXPECT_EQ(stage.Count("obj_bloodstain"), 0u);
  stage.Step();
  EXPECT_EQ(stage.Count("obj_bloodstain"), 8u);
  for (CInstance* drop : stage.All("obj_gore")) EXPECT_LT(RealOf(drop, "y"), 66); // thrown upwards
  stage.Step(400);
  EXPECT_EQ(stage.Count("obj_gore"), 0u);
  EXPECT_EQ(stage.Count("obj_bloodstain"), 0u); // one each, and they have run out of the room
}

} // namespace vesk
