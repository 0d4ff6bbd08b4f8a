// A section while it runs: camera, sleep, barrier, heartbeat, blue switch, what is brought over from the last
// section, the scroller, the suspense, the opening and the end.
#include "Files/Sound/Audio_Main.h"
#include "game/Game.h"
#include "game/play/globals.h"
#include "tests/scenarios/Stage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace vesk {
namespace {

using testing::AnyOf;
using testing::Contains;
using testing::Not;

const Rows kLongFloor = {"..S", "", std::string(100, '#')};

Self Manager() { return first(obj_levelmanager); }
Self Hero() { return first(obj_tovin); }

// ---- camera, sleep, barrier ----

TEST(RunningLevel, TheBackgroundReachesTheBottomWithTheView) {
  {
    Stage low(kLongFloor); // the picture is taller than the room
    low.Step(30);
    EXPECT_EQ(low.Global("background_y[0]"), 0);
  }
  Rows tower(60, "");
  tower[57] = "..S";
  tower[59] = std::string(30, '#');
  Stage stage(tower); // 960 pixels of room, 512 of picture
  stage.Settle();
  stage.Step(60);
  EXPECT_EQ(stage.Global("view_yview[0]"), 960 - 216);
  EXPECT_NEAR(stage.Global("background_y[0]"), 960 - 512, 1e-4);
  stage.Set("obj_tovin", "y", 300);
  stage.Set("obj_levelmanager", "y", 316);
  stage.Step();
  const double view = stage.Global("view_yview[0]");
  stage.Step();
  EXPECT_NEAR(stage.Global("background_y[0]"), view * (960 - 512) / (960 - 216), 1e-3);
}

TEST(RunningLevel, OnlyWhatLiesWithin32PixelsOfTheViewIsAwake) {
  Stage stage(kLongFloor);
  stage.Settle();
  const double right = stage.Global("view_xview[0]") + 384;
  std::map<int, int32_t> ids;
  for (const int gap : {0, 31, 32, 33, 300}) {
    const Self saw = make(0, 60, obj_deactivation);
    saw[sprite_index] = spr_square; // its own kinds are of all sizes
    saw[x] = right + gap;
    ids[gap] = saw.number();
  }
  const int32_t block = make(right + 300, 60, obj_solid).number();
  stage.Step(2);
  for (const auto& [gap, id] : ids) EXPECT_EQ(instance_exists(id), gap <= 32) << gap;
  EXPECT_TRUE(instance_exists(block)) << "blocks never sleep";
  stage.Hold("R");
  for (int frame = 0; frame < 400 && !instance_exists(ids[300]); ++frame) stage.Step();
  EXPECT_TRUE(instance_exists(ids[300]));
  EXPECT_NEAR(stage.Global("view_xview[0]"), 300 - 32, 6);
}

TEST(RunningLevel, TheBarrierHoldsTheHeroInTheViewButNotAtFirst) {
  Stage stage(kLongFloor);
  EXPECT_EQ(Manager()[barrier], 1);
  stage.Step(10);
  stage.Settle();
  for (const auto& [at, speed, held, left] :
       {std::tuple(2.0, -2.0, 5.0, 0.0), std::tuple(2.0, 1.0, 5.0, 1.0), std::tuple(4.9, -2.0, 5.0, 0.0)}) {
    Hero()[x] = at;
    Hero()[hspeed] = speed;
    event_perform(Manager(), ev_step, ev_step_end);
    EXPECT_EQ(Hero()[x], held) << at;
    EXPECT_EQ(Hero()[hspeed], left) << at;
  }
  Hero()[x] = 5;
  Hero()[hspeed] = -2;
  event_perform(Manager(), ev_step, ev_step_end);
  EXPECT_EQ(Hero()[hspeed], -2) << "on the edge itself nothing is held";
  Manager()[barrier] = 1;
  Manager()[alarm][6] = 2; // as after a door
  Hero()[x] = 700;
  stage.Step();
  EXPECT_GE(stage.Real("obj_tovin", "x"), 690);
  stage.Step();
  EXPECT_EQ(Manager()[barrier], 0);
}

// ---- heartbeat ----

TEST(RunningLevel, TheHeartBeatsAtEightAndBelow) {
  Stage stage(kLongFloor);
  stage.Settle();
  stage.SetGlobal("health", 9);
  stage.Step();
  EXPECT_EQ(Manager()[heart], 0);
  stage.SetGlobal("health", 8);
  Audio_TakeStarted();
  stage.Step();
  EXPECT_EQ(Manager()[heart], 1);
  EXPECT_THAT(Audio_TakeStarted(), Contains("snd_heartbeat"));
  EXPECT_TRUE(audio_is_playing(snd_heartbeat));
  double most = 0;
  std::vector<int> tops; // frames in which the blood is at its fullest
  for (int frame = 1; frame <= 200; ++frame) {
    stage.Step();
    most = std::max(most, Manager()[beat].Get());
    if (Manager()[beat] == 1 && (tops.empty() || frame - tops.back() > 10)) tops.push_back(frame);
  }
  EXPECT_EQ(most, 1);
  ASSERT_GE(tops.size(), 2u);
  EXPECT_NEAR(tops[1] - tops[0], 80, 8);
  stage.SetGlobal("health", 9);
  stage.Step();
  EXPECT_EQ(Manager()[heart], 0);
  EXPECT_FALSE(audio_is_playing(snd_heartbeat));
  stage.Step(8);
  EXPECT_EQ(Manager()[alarm][2], -1);
}

// ---- blue switch ----

TEST(RunningLevel, TheBlueSwitchTurnsBricksIntoCoinsAndBack) {
  LevelSettings settings;
  settings.objects = {{"4,8", "Brick"},
                      {"5,8", "Coin"},
                      {"6,8", "P-Coin"},
                      {"7,8", "Hidden Spring"},
                      {"8,8", "P-Platform"},
                      {"9,8", "Left Conveyor Belt"},
                      {"11,8", "Right Conveyor Belt"}};
  Stage stage(kLongFloor, settings);
  stage.Settle();
  with(obj_pcoin, [](Self coin) { coin[visible] = 0; });
  make(300, 100, obj_door_hidden)[visible] = 0;
  const int conveyors = instance_number(obj_conveyor_left) + instance_number(obj_conveyor_right);
  ASSERT_EQ(conveyors, 2);
  const auto column = [&](const char* object) { return stage.Real(object, "x") / 16; };
  const auto plain = [](int object) { // without what descends from it
    int count = 0;
    with(object, [&](Self it) { count += it[object_index] == object; });
    return count;
  };
  Audio_TakeStarted();
  event_user(Manager(), 1);
  stage.Step();
  ASSERT_EQ(plain(obj_brick), 1);
  ASSERT_EQ(plain(obj_coin), 1);
  EXPECT_EQ(column("obj_brick"), 5);
  EXPECT_EQ(first(obj_pcoin)[visible], 1);
  EXPECT_EQ(first(obj_door_hidden)[visible], 1);
  EXPECT_EQ(stage.Count("obj_spring_blue"), 1u);
  with(obj_conveyor_left, [](Self it) { EXPECT_EQ(it[image_speed], 0); });
  EXPECT_TRUE(audio_is_playing(snd_switchsong));
  event_user(Manager(), 1); // on already
  stage.Step();
  EXPECT_EQ(stage.Count("obj_spring_blue"), 1u);

  Manager()[alarm][10] = 1;
  stage.Step();
  EXPECT_EQ(Manager()[switchon], 0);
  EXPECT_EQ(column("obj_brick"), 4);
  EXPECT_EQ(first(obj_pcoin)[visible], 0);
  EXPECT_EQ(first(obj_door_hidden)[visible], 0);
  EXPECT_EQ(stage.Count("obj_spring_blue"), 0u);
  EXPECT_EQ(stage.Count("obj_spring_hidden"), 1u);
  with(obj_conveyor_right, [](Self it) { EXPECT_EQ(it[image_speed], 1); });
  EXPECT_FALSE(audio_is_playing(snd_switchsong));
}

// ---- brought over from the last section ----

void EnterAgain(Stage& stage) {
  room_restart();
  stage.Step();
}

TEST(Arrival, TimersGoOnForThirtyStepsAtLeast) {
  for (const double left : {10.0, 200.0}) {
    Stage stage(kLongFloor);
    stage.Settle();
    stage.SetGlobal("pswitch", left);
    stage.SetGlobal("star", left);
    EnterAgain(stage);
    EXPECT_NEAR(Manager()[alarm][10].Get(), std::max(left, 30.0), 1);
    EXPECT_EQ(Manager()[switchon], 1);
    EXPECT_EQ(stage.Count("obj_invincibility"), 1u);
    EXPECT_NEAR(first(obj_invincibility)[alarm][0].Get(), std::max(left, 30.0), 1);
    EXPECT_EQ(stage.Global("pswitch") + stage.Global("star"), 0);
    EXPECT_EQ(Manager()[alarm][0], -1) << "the star has its own song";
  }
}

TEST(Arrival, WhatHeCarriedIsInHisHandsAgain) {
  for (const auto& [object, ammoLeft, inFront] :
       {std::tuple(int{obj_key}, 0, -4), std::tuple(int{obj_pistol}, 7, -6),
        std::tuple(int{obj_pistol}, 0, -6)}) {
    SCOPED_TRACE(std::to_string(object) + " with " + std::to_string(ammoLeft));
    Stage stage(kLongFloor);
    stage.Settle();
    stage.SetGlobal("carrieditem", object);
    stage.SetGlobal("carriedsprite", spr_laser);
    stage.SetGlobal("ammo", ammoLeft);
    EnterAgain(stage);
    const Self item = first(object);
    ASSERT_TRUE(item);
    EXPECT_EQ(item[held], 1);
    EXPECT_EQ(item[depth], inFront);
    EXPECT_EQ(item[sprite_index], spr_laser);
    if (object == obj_pistol) { EXPECT_EQ(item[ammo], ammoLeft) << "an empty gun stays empty"; }
    EXPECT_EQ(Hero()[holding], 2);
    EXPECT_EQ(stage.Global("shallihold"), 0);
    EXPECT_EQ(stage.Global("carrieditem"), noone);
    EXPECT_EQ(stage.Global("carriedsprite"), noone);
  }
}

TEST(Arrival, ADeadHeroBringsNothing) {
  Stage stage(kLongFloor);
  stage.Settle();
  stage.SetGlobal("died", 1);
  stage.SetGlobal("carrieditem", obj_key);
  stage.SetGlobal("pswitch", 100);
  EnterAgain(stage);
  EXPECT_EQ(stage.Count("obj_key"), 0u);
  EXPECT_EQ(Manager()[switchon], 0);
  EXPECT_EQ(stage.Global("died"), 0);
}

TEST(Arrival, TheSameSongGoesOnAndAnotherTakesItsPlace) {
  LevelSettings other;
  other.music = "Cave";
  Stage stage;
  stage.WriteLevel("two", "{\"Main\":" + SectionText(kLongFloor) + ",\"Same\":" + SectionText(kLongFloor) +
                              ",\"Other\":" + SectionText(kLongFloor, other) + "}");
  ASSERT_EQ(stage.Game().Play(stage.LevelFile("two"), "Main"), "");
  stage.Step(30);
  EXPECT_TRUE(audio_is_playing(Sick));
  Audio_TakeStarted();
  stage.SetGlobal("section", std::string("Same"));
  EnterAgain(stage);
  stage.Step(40);
  EXPECT_THAT(Audio_TakeStarted(), Not(Contains("Sick")));
  EXPECT_TRUE(audio_is_playing(Sick));
  stage.SetGlobal("section", std::string("Other"));
  EnterAgain(stage);
  stage.Step(40);
  EXPECT_FALSE(audio_is_playing(Sick));
  EXPECT_TRUE(audio_is_playing(Cave));
}

// ---- the scroller ----

TEST(Autoscroll, LeadsTheViewByItsMarkersAndCrushes) {
  Stage stage(kLongFloor);
  stage.Settle();
  const Self scroll = make(200, 100, obj_autoscroll);
  stage.Step(100);
  EXPECT_EQ(scroll[x], 250);
  EXPECT_NEAR(stage.Global("view_xview[0]"), 250 - 200, 2);
  struct Row {
    int marker;
    double degrees;
    bool unlessFollowing;
  };
  for (const Row& row :
       {Row{obj_left, 180, false}, Row{obj_right, 0, false}, Row{obj_up, 90, true}, Row{obj_down, 270, true},
        Row{obj_clockwise, 45, true}, Row{obj_cclockwise, 135, true}, Row{obj_clockwiseb, 225, true},
        Row{obj_cclockwiseb, 315, true}})
    for (const int follows : {0, 1}) {
      scroll[x] = 250;
      scroll[y] = Hero()[y];
      scroll[direction] = 10;
      scroll[follow_y] = follows;
      const Self marker = make(scroll[x], scroll[y], row.marker);
      stage.Step();
      EXPECT_NEAR(scroll[direction].Get(), row.unlessFollowing && follows ? 10 : row.degrees, 1e-4)
          << row.marker;
      instance_destroy(marker);
    }
  scroll[follow_y] = 0;
  scroll[direction] = 0;
  scroll[y] = 100;
  stage.Step(2);
  // A block at his right side and the view's edge at his left.
  const double edge = stage.Global("view_xview[0]");
  make(edge + 9, 176, obj_solid);
  Hero()[x] = edge + 5;
  Hero()[y] = 160;
  stage.Step(3);
  EXPECT_EQ(stage.Count("obj_deadtovin"), 1u);
  stage.Step();
  EXPECT_EQ(scroll[speed], 0);
}

// ---- suspense ----

TEST(Suspense, IsHeardWhileSomethingToFearIsInView) {
  LevelSettings settings;
  settings.music = "Horror";
  for (const int shown : {1, 2, 3, 8}) { // frames; the first ones fall into the wait at the start
    Stage stage(kLongFloor, settings);
    EXPECT_FALSE(audio_is_playing(snd_horror2));
    stage.Step();
    Audio_TakeStarted();
    const Self ghost = make(200, 100, obj_ghost);
    ghost[sprite_index] = spr_square;
    stage.Step(shown);
    EXPECT_TRUE(audio_is_playing(snd_horror2)) << shown;
    const auto started = Audio_TakeStarted();
    EXPECT_EQ(std::count(started.begin(), started.end(), "snd_horror2"), 1) << shown;
    ghost[x] = 2000;
    stage.Step(2);
    EXPECT_FALSE(audio_is_playing(snd_horror2)) << shown;
  }
}

// ---- opening and end ----

TEST(Opening, ADeathIsFollowedByAPhraseOfChance) {
  Stage stage(kLongFloor);
  stage.Settle();
  stage.SetGlobal("coins", 12);
  stage.SetGlobal("score", 500);
  EXPECT_EQ(make(0, 0, obj_tovinstart)[text].text(), "Level Start!");
  EXPECT_EQ(stage.Global("coins") + stage.Global("score"), 0);
  stage.SetGlobal("died", 1);
  std::map<std::string, int> said;
  for (int seed = 0; seed < 200; ++seed) {
    random_set_seed(seed);
    const Self start = make(0, 0, obj_tovinstart);
    ++said[start[text].text()];
    const auto after = irandom(1000000); // one draw and no more
    random_set_seed(seed);
    choose(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10);
    EXPECT_EQ(irandom(1000000), after);
    EXPECT_EQ(start[mode], 0);
    instance_destroy(start);
  }
  EXPECT_EQ(said.size(), 11u);
  EXPECT_EQ(said.count("Git gud."), 1u);
  stage.SetGlobal("levelmusic", snd_horror);
  EXPECT_EQ(make(0, 0, obj_tovinstart)[mode], 1);
}

TEST(TheEnd, CountsCoinsIntoScore) {
  Stage stage(kLongFloor);
  stage.Settle();
  stage.SetGlobal("coins", 213);
  const Self end = make(0, 0, obj_levelender);
  EXPECT_EQ(Hero()[disablecontrols], 1);
  EXPECT_EQ(Manager()[musicdisabled], 1);
  EXPECT_FALSE(audio_is_playing(Sick));
  EXPECT_EQ(stage.Global("clear"), 1);
  stage.Game().Key(13, true); // no pause any more
  stage.Step(2);
  stage.Game().Key(13, false);
  EXPECT_EQ(stage.Count("obj_pausemenu"), 0u);
  end[alarm][0] = 1;
  const std::pair<int, int> strokes[] = {{113, 10000}, {103, 11000}, {93, 12000}};
  for (const auto& [coins, points] : strokes) {
    stage.Step();
    EXPECT_EQ(stage.Global("coins"), coins);
    EXPECT_EQ(stage.Global("score"), points);
    stage.Step(3);
  }
  stage.SetGlobal("coins", 2);
  stage.Step();
  EXPECT_EQ(stage.Global("score"), 12100);
  stage.Step(4);
  EXPECT_EQ(end[ready], 0);
  Audio_TakeStarted();
  stage.Step(4);
  EXPECT_EQ(end[ready], 1);
  EXPECT_THAT(Audio_TakeStarted(), Contains("snd_powershot"));
  stage.Game().Key('Q', true);
  stage.Step(3);
  EXPECT_EQ(stage.Global("room"), rm_mainmenu);
  EXPECT_EQ(stage.Global("powerup"), 1);
}

} // namespace
} // namespace vesk
