// Walking, jumping and the timings of the ground, every frame against the model; the figures beside it are
// sums of the rules' own numbers.
#include "game/Game.h"
#include "tests/scenarios/HeroModel.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vesk {
namespace {

const std::string kFloor(90, '#');
const Rows kField = {"..S", "", kFloor, kFloor};

TEST(HeroOnTheGround, BuildsSpeedToThreeAndRestsByFriction) {
  Duel duel(kField);
  ASSERT_TRUE(duel.Play("R16"));
  EXPECT_NEAR(duel.Hero().hspeed, 16 * 0.06, 1e-5);
  ASSERT_TRUE(duel.Play("R34"));
  EXPECT_NEAR(duel.Hero().hspeed, 3, 1e-5);
  ASSERT_TRUE(duel.Play("R40")); // neither more nor less
  EXPECT_NEAR(duel.Hero().hspeed, 3, 1e-5);
  EXPECT_TRUE(duel.Take().state(1));
  ASSERT_TRUE(duel.Play(".59"));
  EXPECT_GT(duel.Hero().hspeed, 0.01);
  ASSERT_TRUE(duel.Play(".3"));
  EXPECT_EQ(duel.Hero().hspeed, 0);
  EXPECT_EQ(duel.Hero().state, 0);
}

TEST(HeroOnTheGround, TurnsQuickerThanHeStartsAndSkidsMeanwhile) {
  Duel duel(kField);
  ASSERT_TRUE(duel.Play("R30"));
  const double pace = duel.Hero().hspeed;
  ASSERT_TRUE(duel.Play("L5"));
  EXPECT_NEAR(duel.Hero().hspeed, pace - 5 * 0.135, 1e-5);
  EXPECT_EQ(duel.Hero().direct, -1);
  EXPECT_EQ(duel.Hero().skidnow, 1);
  ASSERT_TRUE(duel.Play("L30 R60 RL20 .10 LR5 L9 R3 L40 .70"));
  const auto seen = duel.Take();
  EXPECT_TRUE(seen.pose("skid"));
  EXPECT_GE(seen.heard("snd_skid"), 2);
  EXPECT_EQ(duel.Hero().skidnow, 0);
}

TEST(HeroOnTheGround, BothKeysAreNone) {
  Duel duel(kField);
  ASSERT_TRUE(duel.Play("R40 LR10"));
  EXPECT_NEAR(duel.Hero().hspeed, 2.4 - 10 * 0.05, 1e-5);
  EXPECT_EQ(duel.Hero().direct, 1);
  ASSERT_TRUE(duel.Play("RJ10"));
  const double pace = duel.Hero().hspeed;
  ASSERT_TRUE(duel.Play("LRJ15"));
  EXPECT_EQ(duel.Hero().state, 2);
  EXPECT_EQ(duel.Hero().hspeed, static_cast<float>(pace)); // no friction in the air
}

TEST(HeroOnTheGround, APushBeyondThreeDecaysOnTheGroundOnly) {
  Duel duel(kField);
  duel.Game().Set("obj_tovin", "hspeed", 5);
  duel.Resume();
  ASSERT_TRUE(duel.Play("R10"));
  EXPECT_NEAR(duel.Hero().hspeed, 5 - 10 * 0.025, 1e-4);
  ASSERT_TRUE(duel.Play("RJ20"));
  EXPECT_NEAR(duel.Hero().hspeed, 4.75, 1e-4);
  ASSERT_TRUE(duel.Play("R30 .20 R10 L20 .60"));
}

TEST(HeroOnTheGround, ControlsTakenAwayStopHimOnTheGroundAndInTheAir) {
  for (const std::string approach : {"R40", "R40 RJ10"}) {
    Duel duel(kField);
    ASSERT_TRUE(duel.Play(approach));
    duel.Game().Set("obj_tovin", "disablecontrols", 1);
    duel.Resume();
    const double pace = duel.Hero().hspeed;
    ASSERT_TRUE(duel.Play("RJ5"));
    EXPECT_NEAR(duel.Hero().hspeed, pace - 5 * 0.135, 1e-4) << approach;
    ASSERT_TRUE(duel.Play("D20 RUJ30 L10"));
    EXPECT_EQ(duel.Hero().hspeed, 0);
    EXPECT_EQ(duel.Hero().isduck, 0);
  }
}

TEST(HeroOnTheGround, IsSlowToStartAndToStopOnSlipperyGround) {
  Stage stage(kField);
  stage.Settle();
  const Self ice = make(0, 14 * 16 - 32, obj_slippery); // over the floor's top row
  ice[image_xscale] = 90;
  stage.Step(2);
  EXPECT_EQ(stage.Real("obj_tovin", "isslip"), 1);
  stage.Hold("R");
  stage.Step(20);
  EXPECT_NEAR(stage.Real("obj_tovin", "hspeed"), 20 * 0.04, 1e-5);
  stage.Hold("L"); // no quicker turn either
  stage.Step(5);
  EXPECT_NEAR(stage.Real("obj_tovin", "hspeed"), 15 * 0.04, 1e-5);
  stage.Hold("");
  stage.Step(10);
  EXPECT_NEAR(stage.Real("obj_tovin", "hspeed"), 15 * 0.04 - 10 * 0.025, 1e-5);
  stage.Hold("D"); // ducking friction knows no ice
  stage.Step(4);
  EXPECT_NEAR(stage.Real("obj_tovin", "hspeed"), 15 * 0.04 - 11 * 0.025 - 3 * 0.05, 1e-5);
}

// ---- jumps ----

// Held: gravity 0.1 until the rise has slowed to 1, then 0.3. Released after one frame: 0.3.
double HeightHeld(double impulse) {
  double speed = -impulse, height = 0;
  for (; speed > 0;) {
    speed -= speed >= 1 - 1e-5 ? 0.1 : 0.3;
    if (speed > 0) height += speed;
  }
  return height;
}

TEST(HeroJumps, AsHighAsHisSpeedGives) {
  EXPECT_NEAR(HeightHeld(-3.85), 69.2, 1e-9);
  for (const auto& [push, impulse] :
       {std::pair(0.0, -3.85), std::pair(1.0, -3.85), std::pair(-1.0, -3.85), std::pair(1.01, -4.05),
        std::pair(2.8, -4.05), std::pair(2.81, -4.5), std::pair(-3.0, -4.5)}) {
    Duel duel({"", "", "......................S", "", kFloor, kFloor});
    const double start = duel.Hero().y;
    duel.Game().Set("obj_tovin", "hspeed", push);
    duel.Resume();
    ASSERT_TRUE(duel.PlayFrame("J"));
    EXPECT_NEAR(duel.Hero().vspeed, impulse + 0.1, 1e-5) << push;
    ASSERT_TRUE(duel.Play("J120"));
    EXPECT_NEAR(start - duel.Take().lowestY, HeightHeld(impulse), 0.001) << push;
    EXPECT_EQ(duel.Hero().y, start);
    EXPECT_EQ(duel.Hero().jumpnow,
              0); // spent in the air, free on the ground; the held key jumps no second time
  }
}

TEST(HeroJumps, LetGoTheyAreLow) {
  Duel duel(kField);
  const double start = duel.Hero().y;
  ASSERT_TRUE(duel.Play("J1 .40"));
  EXPECT_NEAR(start - duel.Take().lowestY, 3.75 + 12 * 1.8, 0.001);
  ASSERT_TRUE(duel.Play("J12 .40 J25 .60"));

  // Pressed and let go before one and the same frame.
  Stage& game = duel.Game();
  game.Game().Key('X', true);
  game.Game().Key('X', false);
  double highest = start;
  for (int frame = 0; frame < 60; ++frame) {
    game.Step();
    highest = std::min(highest, game.Real("obj_tovin", "y"));
    if (frame == 0) { EXPECT_NEAR(game.Real("obj_tovin", "vspeed"), -3.55, 1e-5); }
  }
  EXPECT_NEAR(start - highest, 12 * 1.9, 0.001);
}

TEST(HeroJumps, LedgeGraceLastsFiveSteps) {
  const Rows ledge = {"..S", "", "########", "########", "", "", "", "", "", "", "", std::string(60, '#')};
  for (int wait = 0; wait <= 8; ++wait) {
    Duel duel(ledge);
    while (duel.Hero().statedelay == 0) ASSERT_TRUE(duel.PlayFrame("R"));
    ASSERT_EQ(duel.Hero().statedelay, 1); // that was the first step in the air
    duel.Take();
    if (wait > 0) { ASSERT_TRUE(duel.Play("R" + std::to_string(wait))); }
    ASSERT_TRUE(duel.PlayFrame("RJ"));
    EXPECT_EQ(duel.Take().heard("snd_jump"), wait <= 3 ? 1 : 0) << wait + 2 << "th step in the air";
    ASSERT_TRUE(duel.Play("R30"));
  }
}

TEST(HeroJumps, TwiceAreForPistachioAndTangerine) {
  const char* characters[] = {"Durian",    "Blackberry", "Cashew",     "Raspberry",
                              "Pistachio", "Tangerine",  "Gooseberry", "Rhubarb"};
  for (const char* character : characters) {
    LevelSettings settings;
    settings.hero = character;
    Duel duel({"", "", "", "", "", "", "..S", "", kFloor, kFloor}, settings);
    ASSERT_TRUE(duel.Play("J10 .12 J8 .3 J8 .60"));
    const int jumps = std::string(character) == "Pistachio" || std::string(character) == "Tangerine" ? 2 : 1;
    EXPECT_EQ(duel.Take().heard("snd_jump"), jumps) << character;
    ASSERT_TRUE(duel.Play("R60 RJ9 R2 RJ7 LJ9 L30 D20 LD20 .30")); // the poses of each
  }
}

TEST(HeroJumps, BouncesOffWhatHeStomps) {
  for (const std::string keys : {"J", ""})
    for (const bool ceiling : {false, true}) {
      SCOPED_TRACE(keys + (ceiling ? " under a ceiling" : ""));
      Duel duel({ceiling ? "####" : "....", "..S.", "....", kFloor});
      if (ceiling) { // his top row in the ceiling's last
        duel.Game().Set("obj_tovin", "y", 10 * 16 + 10);
        duel.Game().Set("obj_tovin", "state", 2);
      }
      duel.Resume();
      duel.Game().Hold(keys);
      const double before = duel.Hero().y;
      with(obj_tovin, [](Self hero) { event_user(hero, 1); });
      EXPECT_EQ(duel.Game().Real("obj_tovin", "vspeed"), -4);
      EXPECT_EQ(duel.Game().Real("obj_tovin", "state"), 2);
      EXPECT_EQ(duel.Game().Real("obj_tovin", "y"), ceiling ? before : before - 1);
      EXPECT_EQ(duel.Game().Real("obj_tovin", "jumpnow"), 2) << "the key isn't down before the next frame";
      duel.Game().Step();
      with(obj_tovin, [](Self hero) { event_user(hero, 1); });
      EXPECT_EQ(duel.Game().Real("obj_tovin", "jumpnow"), keys.empty() ? 2 : 1);
    }
}

// ---- meter, poses ----

TEST(HeroRuns, TheMeterFillsIn90StepsAndBlinksWhileHeRuns) {
  Duel duel({"..S", "", std::string(400, '#'), std::string(400, '#')});
  ASSERT_TRUE(duel.Play("R46")); // not above 2.8 yet
  EXPECT_EQ(duel.Hero().pmeter, 0);
  ASSERT_TRUE(duel.Play("R106"));
  EXPECT_GE(duel.Hero().pmeter, 6);
  EXPECT_EQ(duel.Take().heard("snd_pmeter"), 1);
  EXPECT_EQ(duel.Hero().pose, "run");
  ASSERT_TRUE(duel.Play("R340 RJ4 R26")); // the first check falls at 300 steps, the next 100 later
  const auto running = duel.Take();
  EXPECT_TRUE(running.pose("runjump"));
  EXPECT_GE(duel.Hero().pmeter, 6);
  ASSERT_TRUE(duel.Play(".30"));
  EXPECT_LT(duel.Hero().pmeter, 6);
  ASSERT_TRUE(duel.Play(".260"));
  EXPECT_EQ(duel.Hero().pmeter, 0);
}

TEST(HeroRuns, TheMeterEmptiesWithoutAHero) {
  Stage stage(kField);
  stage.Settle();
  stage.Set("obj_levelmanager", "pmeter", 4);
  stage.Set("obj_levelmanager", "alarm[7]", 1);
  stage.Set("obj_levelmanager", "slowdown", 2);
  stage.Step();
  EXPECT_EQ(stage.Real("obj_levelmanager", "pmeter"), 3);
  EXPECT_EQ(stage.Real("obj_levelmanager", "slowdown"), 0);
  stage.Step(15 * 3);
  EXPECT_EQ(stage.Real("obj_levelmanager", "pmeter"), 2);
}

TEST(HeroShows, HisHandsAndHisKick) {
  for (const double hands : {2.0, 0.0}) {
    Duel duel(kField);
    duel.Game().Set("obj_tovin", "holding", hands);
    duel.Game().Set("obj_tovin", "iamkicking", hands == 0 ? 1 : 0);
    if (hands == 0) duel.Game().Set("obj_tovin", "alarm[6]", 10);
    duel.Resume();
    ASSERT_TRUE(duel.Play("R5 .20 R30 RJ30 R20 L30 D10 .60"));
    const auto seen = duel.Take();
    EXPECT_EQ(seen.pose("hold"), hands == 2);
    EXPECT_EQ(seen.pose("kick"), hands == 0);
    EXPECT_EQ(seen.pose("duck"), hands == 0); // full hands don't duck
    EXPECT_EQ(seen.pose("skid"), hands == 0);
  }
}

TEST(HeroShows, AnUnknownCharacterAsSpriteZero) {
  Stage stage(kField);
  stage.Settle();
  for (const double unknown : {0.0, 9.0, 100.0}) {
    stage.SetGlobal("powerup", unknown);
    stage.Step();
    EXPECT_EQ(stage.Text("obj_tovin", "sprite_index"), "spr_player_durian_walk") << unknown;
  }
}

} // namespace
} // namespace vesk
