// Walls, ceilings, tops, slopes, ladders and water, every frame against the model.
#include "game/Game.h"
#include "tests/scenarios/HeroModel.h"

#include <gtest/gtest.h>

namespace vesk {
namespace {

const std::string kFloor(60, '#');

// ---- walls and ceilings ----

TEST(HeroMeets, WallsAndHeldKeysAtThem) {
  const Rows room = {"#....................#", "#....................#", "#....................#",
                     "#.........S..........#", "#....................#", "######################"};
  Duel duel(room);
  ASSERT_TRUE(duel.Play("R120"));
  EXPECT_EQ(duel.Hero().hspeed, 0);
  EXPECT_NEAR(duel.Hero().x, 21 * 16 - 5, 0.5); // the box ends at x + 4
  ASSERT_TRUE(duel.Play("L200"));
  EXPECT_NEAR(duel.Hero().x, 16 + 5, 0.5);
  ASSERT_TRUE(duel.Play("RJ40 R60 LJ50 L60 .30"));
}

TEST(HeroMeets, TheCeilingSpendsTheJumpAndPushesHimOut) {
  Duel duel({kFloor, "", "", "", ".S", "", kFloor});
  ASSERT_TRUE(duel.Play("J60"));
  const auto seen = duel.Take();
  EXPECT_EQ(seen.heard("snd_bump"), 1);
  EXPECT_NEAR(seen.lowestY, 8 * 16 - 5 - 1, 0.5); // his top row stays in the ceiling's last
  ASSERT_TRUE(duel.Play(".10 R20 RJ40 R10 LJ2 L20 LJ30 .40"));
}

TEST(HeroMeets, CeilingSlopes) {
  for (const Rows& rows :
       {Rows{"####################", "........M.####N.....", "....................", "....................",
             "....................", "..S.................", "....................", kFloor},
        Rows{"####################", "........O####P......", "....................", "....................",
             "..S.................", "....................", kFloor}}) {
    Duel duel(rows);
    ASSERT_TRUE(duel.Play("R20 RJ50 R10 RJ50 RJ1 R40 RJ50 L20 LJ40 L1 LJ50 L30 LJ60 .60 J40 .30"));
    EXPECT_GE(duel.Take().heard("snd_bump"), 2);
  }
}

TEST(HeroMeets, OneWayTopsFromAbove) {
  Duel duel({"..............", "..............", "..====........", "..............",
             "........======", ".S............", "......==......", kFloor});
  ASSERT_TRUE(duel.Play("R5 RJ60 R20 J60 L20 LJ60 L30 LJ40 R30 J70 L60 RJ60 R90 J60 .60"));
  EXPECT_TRUE(duel.Take().state(2));
}

TEST(HeroMeets, ATopOnlyWithHisFeetLessThanFivePixelsPastIt) {
  for (const std::string top : {"======", "######"})
    for (int past = 0; past <= 8; ++past) {
      Duel duel({"..............", "..............", "..S...........", "..............", top, "", "", "", "",
                 "", kFloor});
      const double stand = duel.Hero().y;
      // Feet that many pixels below the row on which he stands, falling.
      duel.Game().Set("obj_tovin", "y", stand + 1 + past);
      duel.Game().Set("obj_tovin", "vspeed", 0.5);
      duel.Game().Set("obj_tovin", "gravity", 0.3);
      duel.Resume();
      ASSERT_TRUE(duel.Play(".1"));
      EXPECT_EQ(duel.Hero().y == stand, past < 5) << top << past;
      ASSERT_TRUE(duel.Play(".60"));
      EXPECT_EQ(duel.Hero().y == stand, past < 5) << top << past;
    }
}

TEST(HeroMeets, ACeilingWhileItStillCountsAsGround) {
  // Thrown up by something else he keeps his ground state for the steps of grace; the ceiling doesn't push
  // him then.
  for (const char* keys : {"R30", ".1"}) {
    Duel duel({"", kFloor, "", "..S", "", kFloor});
    ASSERT_TRUE(duel.Play(keys));
    duel.Game().Set("obj_tovin", "y", duel.Hero().y - 16);
    duel.Game().Set("obj_tovin", "vspeed", -9); // deep into it
    duel.Resume();
    duel.Take();
    ASSERT_TRUE(duel.Play(".3"));
    const auto seen = duel.Take();
    EXPECT_FALSE(seen.state(2));
    EXPECT_EQ(seen.heard("snd_bump"), 1);
    ASSERT_TRUE(duel.Play(".60"));
  }
}

TEST(HeroMeets, NoTopInsideASolid) {
  // A top that goes on into a wall: beside the wall he lands, inside it he may not.
  Duel duel({"......#.......", "......#.......", "..S...#.......", "......#.......", "==========....", "", "",
             "", kFloor});
  ASSERT_TRUE(duel.Play("R60 RJ50 R40 L30 LJ40 R80 .20"));
}

TEST(HeroDucks, UnderALowCeilingAndStaysThere) {
  Duel duel({"..........", "S.........", "..######..", "..........", "##########"});
  const double floor = duel.Hero().y;
  ASSERT_TRUE(duel.Play("D10"));
  EXPECT_EQ(duel.Hero().isduck, 1);
  ASSERT_TRUE(duel.Play(".20"));
  EXPECT_EQ(duel.Hero().isduck, 0);
  // Run, duck and glide under it, let go, crawl on.
  ASSERT_TRUE(duel.Play("R3 RD2"));
  duel.Game().Set("obj_tovin", "hspeed", 2.5);
  duel.Resume();
  ASSERT_TRUE(duel.Play("RD30 .10"));
  EXPECT_GT(duel.Hero().x, 2 * 16);
  EXPECT_EQ(duel.Hero().isduck, 1) << "a low ceiling keeps him down";
  EXPECT_EQ(duel.Hero().y, floor);
  ASSERT_TRUE(duel.Play("R30 L30 .20 DJ20 J20 LJ30 .30")); // ducking he doesn't walk nor turn
  EXPECT_EQ(duel.Hero().direct, 1);
}

TEST(HeroClings, ToWallsAndJumpsOffThem) {
  const Rows shaft = {"#......#", "#......#", "#......#", "#......#", "#......#", "#......#", "#......#",
                      "#......#", "#......#", "#......#", "#......#", "#..S...#", "#......#", "########"};
  for (const char* hero : {"Durian", "Blackberry", "Cashew", "Pistachio"}) {
    LevelSettings settings;
    settings.hero = hero;
    Duel duel(shaft, settings);
    ASSERT_TRUE(duel.Play("R20 RJ40 R30"));
    const bool clings = std::string(hero) == "Durian" || std::string(hero) == "Blackberry";
    EXPECT_EQ(duel.Take().state(4), clings) << hero;
    // From wall to wall, against the turned face, letting go by the key away and by the wall's end.
    ASSERT_TRUE(duel.Play("R1 RJ12 L14 LJ18 L10 R14 RJ10 R20 .10 L5 .30 R20 RJ30 R15 L4 .60"));
    ASSERT_TRUE(duel.Play("L40 LJ30 L12 LJ8 R30 L30 LJ20 .90"));
    const auto seen = duel.Take();
    EXPECT_EQ(seen.state(4), clings) << hero;
    if (clings) { EXPECT_GE(seen.heard("snd_stomp"), 1); }
  }
}

TEST(HeroClings, SlidingOnePixelAStepAndEndingInTheAirWithoutAJump) {
  Duel duel({"..........", ".........#", ".........#", ".........#", ".........#", "..........", "..........",
             "..........", ".S........", "..........", kFloor, kFloor});
  duel.Game().Set("obj_tovin", "x", 9 * 16 - 5);
  duel.Game().Set("obj_tovin", "y", 60);
  duel.Resume();
  ASSERT_TRUE(duel.Play("R10"));
  ASSERT_EQ(duel.Hero().state, 4);
  const double from = duel.Hero().y;
  ASSERT_TRUE(duel.Play("R20"));
  EXPECT_EQ(duel.Hero().y, from + 20);
  EXPECT_EQ(duel.Hero().direct, -1);
  while (duel.Hero().state == 4) ASSERT_TRUE(duel.PlayFrame("R")); // to the wall's end
  EXPECT_EQ(duel.Hero().jumpnow, 0);
  ASSERT_TRUE(duel.Play("RJ3"));
  EXPECT_EQ(duel.Take().heard("snd_jump"), 0);
  ASSERT_TRUE(duel.Play("R90"));
}

// ---- slopes ----

TEST(HeroOnSlopes, UpAndDownGentleAndSteep) {
  for (const Rows& rows :
       {Rows{"", "........../.####\\.......", "......../.########\\.....", ".S..../.############\\...",
             "..../.################\\.", "############################"},
        Rows{"", "........K##L............", ".......K####L...........", ".S....K######L..........",
             ".....K########L.........", "########################"}}) {
    Duel duel(rows);
    const double floor = duel.Hero().y;
    ASSERT_TRUE(duel.Play("R140"));
    EXPECT_LT(duel.Take().lowestY, floor - 40);
    ASSERT_TRUE(duel.Play("L60 .30 R40 RJ40 R30 L50 LJ20 L40 LJ60 .40 R20 .60 L90 R200 .60"));
  }
}

TEST(HeroOnSlopes, ARisingHeroPassesThroughBeyondASpeed) {
  for (int tenths = 0; tenths <= 12; ++tenths) {
    Duel duel({"", "", ".......", "....K##", "S..K###", "..K####", kFloor});
    const double x = 3.5 * 16, footing = (14 - 3) * 16 + 8; // the middle of a step of the slope
    for (const auto& [name, value] :
         {std::pair("x", x), std::pair("y", footing - 31 - 2.0), std::pair("state", 2.0),
          std::pair("statedelay", 5.0), std::pair("gravity", 0.3), std::pair("jumpnow", 2.0),
          std::pair("vspeed", -0.05 - tenths / 10.0)})
      duel.Game().Set("obj_tovin", name, value);
    duel.Resume();
    const double from = duel.Hero().y;
    ASSERT_TRUE(duel.Play(".1"));
    const double lifted = from - duel.Hero().y + duel.Hero().vspeed;
    EXPECT_EQ(lifted > 0.5, tenths < 8) << tenths; // -0.75 is lifted, -0.85 no more
    ASSERT_TRUE(duel.Play(".60"));
  }
}

TEST(HeroOnSlopes, DownStartsASlideOnlyWhereOneFootIsOnIt) {
  const Rows hill = {"",
                     "........../.####\\.......",
                     "......../.########\\.....",
                     ".S..../.############\\...",
                     "..../.################\\.",
                     "############################"};
  Duel duel(hill);
  ASSERT_TRUE(duel.Play("D10 .5"));
  EXPECT_EQ(duel.Game().Count("obj_slider"), 0u) << "on the flat he ducks";
  ASSERT_TRUE(duel.Play("R75"));
  ASSERT_EQ(duel.Hero().state, 1);
  ASSERT_TRUE(duel.Play("RA4"));
  EXPECT_EQ(duel.Game().Count("obj_slider"), 0u) << "the action key starts no slide";
  for (int frame = 0; frame < 20 && !duel.Hero().slides; ++frame)
    ASSERT_TRUE(duel.PlayFrame(frame % 2 ? "R" : "RD"));
  ASSERT_TRUE(duel.Hero().slides);
  EXPECT_EQ(duel.Game().Count("obj_slider"), 1u);
}

// ---- climbing ----

TEST(HeroClimbs, LaddersAndNets) {
  const Rows climbs = {"..........................", "............%%%%%%........",
                       "............%%%%%%........", "....|.......%%%%%%........",
                       "....|.......%%%%%%........", "....|.......%%%%%%........",
                       "....|.......%%%%%%........", ".S..|.......%%%%%%........",
                       "....|.....................", "##########################"};
  Duel duel(climbs);
  ASSERT_TRUE(duel.Play("R24 .20"));
  duel.Game().Set("obj_tovin", "x", 4 * 16 + 8);
  duel.Resume();
  ASSERT_TRUE(duel.Play("U30"));
  ASSERT_EQ(duel.Hero().state, 3);
  ASSERT_TRUE(duel.Play("UR5 UL5 UD10 D20 .10 U40 J10 .20 U20 UJ2 U30 D120"));
  EXPECT_TRUE(duel.Take().pose("climb"));
  ASSERT_TRUE(duel.Play("U12 A1 .5 J30 U10 L10 .40"));
  EXPECT_EQ(duel.Take().heard("snd_bump"), 0) << "only nets are smacked";

  ASSERT_TRUE(duel.Play("D120 .1"));
  ASSERT_EQ(duel.Hero().state, 0);
  duel.Game().Set("obj_tovin", "x", 14 * 16.0);
  duel.Resume();
  ASSERT_TRUE(duel.Play("J20 JD20"));
  ASSERT_EQ(duel.Hero().state, 3) << "down grabs in the air";
  ASSERT_TRUE(duel.Play("A1"));
  EXPECT_EQ(duel.Hero().netsmack, 1);
  ASSERT_TRUE(duel.Play("A2"));
  EXPECT_EQ(duel.Hero().netsmack, 0);
  EXPECT_EQ(duel.Take().heard("snd_bump"), 1);
  ASSERT_TRUE(duel.Play("L40 R90 U60 .40"));
}

TEST(HeroClimbs, WithFullHandsOrWithoutControlsHeDoesNot) {
  for (const char* variable : {"holding", "disablecontrols"}) {
    Duel duel({"....|.....", "....|.....", "....|.....", "....S.....", "....|.....", "##########"});
    duel.Game().Set("obj_tovin", variable, variable[0] == 'h' ? 2 : 1);
    duel.Resume();
    ASSERT_TRUE(duel.Play("U20 .3 UJ20"));
    EXPECT_FALSE(duel.Take().state(3)) << variable;
  }
  Duel duel(
      {"....|.....", "....|.....", "....|.....", "....|.....", "....S.....", "....|.....", "##########"});
  ASSERT_TRUE(duel.Play("UJ1 UJ20"));
  duel.Game().Set("obj_tovin", "disablecontrols", 1);
  duel.Resume();
  ASSERT_TRUE(duel.Play("U20 J5"));
}

TEST(HeroClimbs, IntoACeilingInSilence) {
  Duel duel(
      {"##########", "....|.....", "....|.....", "....|.....", "....S.....", "....|.....", "##########"});
  ASSERT_TRUE(duel.Play("U90"));
  EXPECT_EQ(duel.Hero().state, 3);
  EXPECT_EQ(duel.Take().heard("snd_bump"), 0);
}

// ---- water ----

TEST(HeroSwims, StrokesLimitsAndTheSurface) {
  LevelSettings settings;
  settings.water = 8;
  Rows pool(14, "");
  pool[3] = "..S";
  pool[5] = "======";
  pool[13] = kFloor;
  Duel duel(pool, settings);
  duel.Take();
  ASSERT_TRUE(duel.Play("R60"));
  auto seen = duel.Take();
  EXPECT_TRUE(seen.pose("swim"));
  ASSERT_TRUE(duel.Play(".200 R40"));
  EXPECT_EQ(duel.Hero().state, 1);
  EXPECT_NEAR(duel.Hero().hspeed, 0.5, 1e-5);
  ASSERT_TRUE(duel.Play("J1"));
  EXPECT_NEAR(duel.Hero().vspeed, -2.5 + 0.125, 1e-5);
  ASSERT_TRUE(duel.Play(".5 UJ1"));
  EXPECT_NEAR(duel.Hero().vspeed, -3.5 + 0.125, 1e-5);
  ASSERT_TRUE(duel.Play(".5 DJ1"));
  EXPECT_NEAR(duel.Hero().vspeed, -1 + 0.125, 1e-5);
  ASSERT_TRUE(duel.Play("R9 RUJ1 R40"));
  EXPECT_NEAR(duel.Hero().hspeed, 1.5, 1e-5);
  ASSERT_TRUE(duel.Play("L60 .10 LR10 .120 D10 DR20 DJ1 .60"));
  // Out through the top and back in, with a jump in the air none.
  ASSERT_TRUE(duel.Play("UJ1 U6 UJ1 U6 UJ1 U6 UJ1 U6 UJ1 U6 UJ1 U6 UJ1 U6 UJ1 U20 J20 .120"));
  seen = duel.Take();
  EXPECT_GE(seen.heard("snd_swim"), 7);
  EXPECT_TRUE(seen.pose("jump")) << "never out of the water";
}

TEST(HeroSwims, NoClingClimbOrSecondJumpThere) {
  LevelSettings settings;
  settings.water = 10;
  for (const char* hero : {"Durian", "Pistachio"}) {
    settings.hero = hero;
    Rows pool(14, "");
    for (size_t row = 0; row < 13; ++row) pool[row] = row < 6 ? "|.......#" : "|.......#";
    pool[3] = "|.....S.#";
    pool[13] = kFloor;
    Duel duel(pool, settings, false);
    ASSERT_TRUE(duel.Play("R90 J1 R30 J1 L60 U60 UJ1 U30 UJ1 U8 UJ1 U8 UJ1 U8 UJ1 U8 UJ1 U80 D120"));
    ASSERT_TRUE(duel.Play("L200 UJ1 U5 UJ1 U5 UJ1 U5 UJ1 U5 UJ1 U5 UJ1 U5 UJ1 U5 UJ1 U40 D60"));
  }
}

TEST(HeroSwims, OnlyTheSurfaceStopsTheFall) {
  struct Row {
    const char* name;
    double left, top; // of water 16 by 16 cells, from the hero's place
    double hspeed, vspeed;
    bool stops;
  };
  for (const Row& row : {Row{"from above", -128, 34, 0, 3, true}, Row{"from the side", 6, -200, 2, 1, false},
                         Row{"from below", -128, -256 + 4, 0, -3, false}}) {
    SCOPED_TRACE(row.name);
    Stage stage(Rows{"", "......S"});
    const double atX = 300, atY = 100;
    for (const auto& [name, value] :
         {std::pair("x", atX), std::pair("y", atY), std::pair("hspeed", row.hspeed),
          std::pair("vspeed", row.vspeed), std::pair("gravity", 0.3), std::pair("state", 2.0),
          std::pair("statedelay", 5.0), std::pair("jumpnow", 2.0)})
      stage.Set("obj_tovin", name, value);
    const Self water = make(atX + row.left, atY + row.top, obj_swim);
    water[image_xscale] = water[image_yscale] = 16;
    double before = 0;
    for (int frame = 0; frame < 8 && stage.Real("obj_tovin", "isswim") == 0; ++frame) {
      before = stage.Real("obj_tovin", "vspeed");
      stage.Step();
    }
    ASSERT_EQ(stage.Real("obj_tovin", "isswim"), 1);
    // The gravity of the air is still on in this step.
    EXPECT_NEAR(stage.Real("obj_tovin", "vspeed"), row.stops ? 0.3 : before + 0.3, 1e-4);
    EXPECT_EQ(stage.Count("obj_smoke"), row.stops ? 1u : 0u);
  }
}

TEST(HeroLands, AndForgetsHisChainOnTopsAndSlopes) {
  for (const std::string ground : {"########", "========", "KKKKKKKK"}) {
    SCOPED_TRACE(ground);
    Duel duel({"", "", "..S.....", "", ground, kFloor}, {}, false);
    duel.Game().Step(90);
    duel.Resume();
    ASSERT_TRUE(duel.Play("J3"));
    for (const char* name : {"hitpoint", "walljump", "doublejump"}) duel.Game().Set("obj_tovin", name, 1);
    duel.Resume();
    int frames = 0;
    for (; frames < 40 && duel.Hero().hitpoint == 1; ++frames) ASSERT_TRUE(duel.PlayFrame(""));
    EXPECT_EQ(duel.Hero().hitpoint, 0);
    EXPECT_EQ(duel.Hero().walljump + duel.Hero().doublejump, 0);
    EXPECT_GT(frames, 3);
  }
}

// ---- bounds ----

TEST(HeroAtTheBounds, SidesTopAndTheFatalFall) {
  Rows cliff(14, "");
  cliff[2] = "S";
  cliff[4] = "####....................";
  Duel duel(cliff);
  ASSERT_TRUE(duel.Play("L60"));
  EXPECT_EQ(duel.Hero().x, 5);
  EXPECT_EQ(duel.Hero().hspeed, 0);

  duel.Game().Set("obj_tovin", "y", -80);
  duel.Game().Set("obj_tovin", "vspeed", -4);
  duel.Game().Set("obj_tovin", "gravity", 0.1);
  duel.Game().Set("obj_tovin", "state", 2);
  duel.Resume();
  ASSERT_TRUE(duel.Play(".40"));
  EXPECT_NEAR(duel.Take().lowestY, -96, 4.1);
  ASSERT_TRUE(duel.Play(".200 R90"));
  while (!duel.Hero().dies) ASSERT_TRUE(duel.PlayFrame("R"));
  Stage& game = duel.Game();
  EXPECT_EQ(game.Global("health"), 0);
  EXPECT_EQ(game.Count("obj_tovin"), 0u);
}

TEST(HeroAtTheBounds, TheRightEdgeHoldsHim) {
  Duel duel({"....................S...", "........................", "########################"});
  ASSERT_TRUE(duel.Play("R90"));
  EXPECT_EQ(duel.Hero().x, 24 * 16 - 5);
  ASSERT_TRUE(duel.Play("RJ40 .60"));
}

} // namespace
} // namespace vesk
