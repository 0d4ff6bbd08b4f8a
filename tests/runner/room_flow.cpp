// How rooms begin and end, what is carried over, requests, views that follow.
#include "Files/Base/Error.h"
#include "Files/Object/Function_Instance.h"
#include "Files/Room/Function_Room.h"
#include "Files/Room/Function_Tile.h"
#include "Files/Run/Run_Events.h"
#include "tests/runner/SmallGame.h"

#include <gtest/gtest.h>

namespace vesk::test {
namespace {

SmallGame::Event Says(const std::string& text) {
  return [text](Self, Self) { Log(text); };
}

// Logs the events that rooms bring about, as name:event.
void Chatter(SmallGame& game, int32_t object) {
  const std::string name = Object_Name(object);
  game.On(object, ev_pre_create, 0, Says(name + ":pre"));
  game.On(object, ev_create, 0, Says(name + ":create"));
  game.On(object, ev_destroy, 0, Says(name + ":destroy"));
  game.On(object, ev_cleanup, 0, Says(name + ":cleanup"));
  game.On(object, ev_other, ev_game_start, Says(name + ":game"));
  game.On(object, ev_other, ev_game_end, Says(name + ":over"));
  game.On(object, ev_other, ev_room_start, Says(name + ":start"));
  game.On(object, ev_other, ev_room_end, Says(name + ":end"));
}

TEST(RoomFlow, StartRunsEverythingInOrder) {
  SmallGame game;
  const int32_t a = game.Object("a"), b = game.Object("b", {.depth = -5});
  Chatter(game, a);
  Chatter(game, b);
  game.Place(0, a, 7, 8);
  game.Place(0, b, 0, 0);
  InstanceTemplate& first = game.RoomTemplate(0).instanceTemplates[0];
  first.preCreateCode = game.Code([=](Self self, Self) {
    Log("precode" + std::to_string(instance_number(b)) + (self.instance->created ? "!" : ""));
  });
  first.creationCode =
      game.Code([](Self self, Self) { Log("code" + std::to_string(static_cast<int>(self.instance->x))); });
  game.RoomTemplate(0).creationCode = game.Code([](Self self, Self other) {
    Log("room" + std::to_string(self.number()) + (self == other && !Instance_Find(0) ? "" : "?"));
  });
  FrameBody().services.roomReady = [](bool isFirst) { Log(isFirst ? "ready first" : "ready"); };
  game.Start();
  EXPECT_EQ(Events(),
            "a:pre precode1 a:create code7 b:pre b:create b:game a:game room0 ready first b:start a:start");
  game.Step();
  room_restart();
  game.Step();
  EXPECT_EQ(Events(), "b:end a:end a:pre precode1 a:create code7 b:pre b:create room0 ready b:start a:start")
      << "no destroy events, and no second game start";
  EXPECT_EQ(instance_number(all), 2);
  EXPECT_TRUE(instance_exists(100001)) << "room instances keep their ids";
}

TEST(RoomFlow, InstanceRecordsGiveScaleColourAndAngle) {
  SmallGame game;
  const int32_t a = game.Object("a", {.sprite = game.Sprite(4, 4)});
  const int32_t id = game.Place(0, a, 1, 2);
  InstanceTemplate& t = game.RoomTemplate(0).instanceTemplates[0];
  t.xscale = 2;
  t.rotation = 90;
  t.colour = 0x80112233;
  game.Start();
  const CInstance& it = *Instance_Find(id);
  EXPECT_EQ(it.imageXScale, 2);
  EXPECT_EQ(it.imageAngle, 90);
  EXPECT_EQ(it.imageBlend, 0x332211u) << "red and blue are swapped against the script's value";
  EXPECT_EQ(it.imageAlpha, 128.0f / 255);
}

TEST(RoomFlow, APersistentInstanceIsCarriedWithAllItHas) {
  SmallGame game;
  game.AddRoom("second");
  const int32_t lasting = game.Object("lasting", {.persistent = true}), plain = game.Object("plain");
  Chatter(game, lasting);
  Chatter(game, plain);
  const int32_t id = game.Place(0, lasting, 5, 5), lost = game.Place(0, plain, 0, 0);
  game.Place(1, plain, 0, 0);
  game.Start();
  CInstance* it = Instance_Find(id);
  it->GetSlot(1).SetReal(42);
  it->SetPosition(50, 60);
  it->alarm[4] = 3;
  const int32_t asleep = instance_create(0, 0, lasting), destroyed = instance_create(0, 0, lasting);
  instance_deactivate_object(asleep);
  instance_destroy(destroyed);
  Events();
  room_goto(1);
  room_goto_previous(); // refused: that is before the first room
  EXPECT_EQ(Rooms().request, RoomRequestAbortGame);
  room_goto(1);
  game.Step();
  EXPECT_EQ(Events(), "lasting:end plain:end plain:pre plain:create plain:start lasting:start");
  it = Instance_Find(id);
  ASSERT_NE(it, nullptr);
  EXPECT_EQ(it->x, 50);
  EXPECT_EQ(it->alarm[4], 3);
  EXPECT_EQ(it->GetSlot(1).real, 42);
  EXPECT_EQ(Instance_Find(lost), nullptr);
  EXPECT_EQ(Instance_Find(asleep), nullptr);
  EXPECT_EQ(instance_number(lasting), 1);
  // Back: the room's own record of it is taken over, and its create event doesn't run.
  room_goto(0);
  game.Step();
  EXPECT_EQ(Events(), "plain:end lasting:end plain:pre plain:create lasting:start plain:start");
  EXPECT_EQ(instance_number(lasting), 1);
  EXPECT_EQ(Instance_Find(id)->y, 60);
  EXPECT_FALSE(Instance_Find(id)->carriedOver);
}

TEST(RoomFlow, ACarriedInstanceThatChangedTakesItsListsAndDepthAlong) {
  SmallGame game;
  const int32_t a = game.Object("a", {.persistent = true}),
                b = game.Object("b", {.depth = 9, .persistent = true}), c = game.Object("c", {.depth = 4});
  const int32_t id = game.Place(0, a, 0, 0);
  game.Place(0, c, 0, 0);
  game.Start();
  instance_change(Instance_Find(id), b, false);
  room_restart();
  game.Step();
  EXPECT_EQ(Object_Find(a)->instances.count, 0);
  EXPECT_EQ(Object_Find(b)->instances.count, 1);
  game.Step();
  EXPECT_EQ(CurrentRoom()->active.tail->id, id);
}

TEST(RoomFlow, GameEndRunsItsEventsAndRestartBeginsAgain) {
  SmallGame game;
  const int32_t a = game.Object("a", {.persistent = true}), b = game.Object("b", {.depth = 1});
  Chatter(game, a);
  Chatter(game, b);
  game.Place(0, a, 0, 0);
  game.Place(0, b, 0, 0);
  game.Start();
  Events();
  Rooms().frameCounter = 9;
  game_restart();
  game.Step();
  EXPECT_EQ(
      Events(),
      "a:end b:end a:cleanup a:over b:over a:pre a:create b:pre b:create a:game b:game a:start b:start");
  EXPECT_EQ(Rooms().frameCounter, 0);
  EXPECT_EQ(instance_number(a), 1) << "nothing is carried into a new game";
  game_end();
  game.Step();
  EXPECT_EQ(Events(), "a:end b:end a:cleanup a:over b:over");
  EXPECT_EQ(CurrentRoom(), nullptr);
  game.Step(); // nothing left to run
  EXPECT_EQ(instance_create(0, 0, a), -1);
}

TEST(RoomFlow, APersistentRoomKeepsItsInstances) {
  SmallGame game;
  game.AddRoom("second");
  game.RoomTemplate(0).persistent = true;
  const int32_t a = game.Object("a"), b = game.Object("b");
  Chatter(game, a);
  const int32_t id = game.Place(0, a, 0, 0);
  game.RoomTemplate(0).creationCode = game.Code(Says("code"));
  game.Start();
  const int32_t asleep = instance_create(0, 0, b);
  Instance_Find(id)->SetPosition(33, 0);
  instance_deactivate_object(asleep);
  Events();
  room_goto(1);
  game.Step();
  EXPECT_EQ(Events(), "a:end");
  EXPECT_EQ(Instance_Find(id), nullptr);
  EXPECT_EQ(instance_number(a), 0);
  room_goto(0);
  game.Step();
  EXPECT_EQ(Events(), "a:start");
  EXPECT_EQ(Instance_Find(id)->x, 33);
  EXPECT_EQ(instance_number(a), 1);
  instance_activate_all();
  game.Step();
  EXPECT_TRUE(instance_exists(asleep));
}

TEST(RoomFlow, AnInstanceDestroyedBeforeItsCreateRunsNothing) {
  SmallGame game;
  const int32_t killer = game.Object("killer"), victim = game.Object("victim");
  game.On(killer, ev_create, 0, [=](Self, Self) { instance_destroy(victim); });
  Chatter(game, victim);
  game.Place(0, killer, 0, 0);
  game.Place(0, victim, 0, 0);
  game.Start();
  EXPECT_EQ(Events(), "victim:destroy victim:cleanup");
  EXPECT_EQ(CurrentRoom()->active.count, 1);
}

TEST(RoomFlow, RoomsMadeAtRunTimeAreEnteredLikeOthers) {
  SmallGame game;
  const int32_t a = game.Object("a");
  Chatter(game, a);
  game.Start();
  const int32_t made = room_add();
  EXPECT_EQ(room_get_name(made), "__newroom1");
  room_set_width(made, 321);
  const int32_t id = room_instance_add(made, 7, 8, a), tile = room_tile_add(made, 0, 0, 0, 16, 16, 32, 48, 5);
  const int32_t twin = room_duplicate(made);
  EXPECT_TRUE(room_assign(0, made));
  EXPECT_EQ(room_get_name(0), "room");
  EXPECT_EQ(room_duplicate(99), -1);
  EXPECT_FALSE(room_assign(99, 0));
  EXPECT_EQ(room_instance_add(99, 0, 0, a), noone);
  Events();
  for (const int32_t room : {made, twin, 0}) {
    room_goto(room);
    game.Step();
    EXPECT_EQ(CurrentRoom()->width, 321);
    EXPECT_EQ(CurrentRoom()->index, room);
    ASSERT_NE(Instance_Find(id), nullptr);
    EXPECT_EQ(Instance_Find(id)->y, 8);
    EXPECT_EQ(tile_get_x(tile), 32);
  }
  EXPECT_EQ(Events(), "a:pre a:create a:start a:end a:pre a:create a:start a:end a:pre a:create a:start");
  EXPECT_NE(instance_create(0, 0, a), id);
}

TEST(RoomFlow, ARoomThatIsReplacedWhileItStartsStillRunsItsCode) {
  SmallGame game;
  const int32_t a = game.Object("a");
  const int32_t first = game.Place(0, a, 0, 0), second = game.Place(0, a, 0, 0);
  InstanceTemplate* places = game.RoomTemplate(0).instanceTemplates.data();
  places[0].creationCode = game.Code([](Self, Self) { EXPECT_TRUE(room_assign(0, room_add())); });
  places[1].creationCode = game.Code([](Self, Self) { Log("second"); });
  game.Start();
  EXPECT_EQ(Events(), "second");
  EXPECT_TRUE(Instance_Find(first) && Instance_Find(second));
}

TEST(RoomFlow, AnInstanceTakesNoSpriteThatDoesNotExist) {
  SmallGame game;
  const int32_t sprite = game.Sprite(8, 8, 4), a = game.Object("a");
  game.Start();
  CInstance* it = Instance_Find(instance_create(0, 0, a));
  instance_sprite(it, sprite, 2, 0.5f);
  EXPECT_EQ(it->spriteIndex, sprite);
  EXPECT_EQ(it->imageIndex, 2);
  Error().occurred = false;
  instance_sprite(it, 77, 0, 1);
  EXPECT_NE(Error().last.find("Setting instance to non-existing sprite: 77"), std::string::npos);
  EXPECT_EQ(it->spriteIndex, sprite);
  EXPECT_EQ(it->imageIndex, 2);
}

TEST(RoomFlow, RequestsInTheFirstRoomsStartAreFollowedAtOnce) {
  SmallGame game;
  game.AddRoom("second");
  const int32_t a = game.Object("a");
  game.On(a, ev_create, 0, [](Self, Self) { room_goto_next(); });
  game.Place(0, a, 0, 0);
  game.Start();
  EXPECT_EQ(Rooms().currentIndex, 1);
  EXPECT_EQ(Rooms().request, kNoRoomRequest);
}

TEST(RoomFlow, RequestsThatCannotBe) {
  SmallGame game;
  game.AddRoom("second");
  game.Start();
  room_goto(7);
  EXPECT_EQ(Rooms().request, RoomRequestAbortGame);
  EXPECT_NE(Error().lastReport.find("Unexisting room number: 7"), std::string::npos);
  room_goto_previous();
  EXPECT_NE(Error().lastReport.find("Moving to previous room before the first room."), std::string::npos);
  Rooms().currentIndex = 1;
  room_goto_next();
  EXPECT_NE(Error().lastReport.find("Moving to next room after the last room."), std::string::npos);
  EXPECT_EQ(Error().fatalCount, 3);
  EXPECT_EQ(room_next(0), 1);
  EXPECT_EQ(room_next(1), -1);
  EXPECT_EQ(room_previous(0), -1);
  EXPECT_EQ(room_previous(5), -1);
  EXPECT_EQ(room_get_name(1), "second");
  EXPECT_EQ(room_get_name(5), "<undefined>");
}

TEST(RoomFlow, TemplateSizesShowAtTheNextEntry) {
  SmallGame game;
  game.Start();
  room_set_width(0, 1024);
  room_set_height(0, 99);
  room_set_width(5, 1);
  EXPECT_EQ(CurrentRoom()->width, 640);
  room_restart();
  game.Step();
  EXPECT_EQ(CurrentRoom()->width, 1024);
  EXPECT_EQ(CurrentRoom()->height, 99);
}

TEST(RoomFlow, BackgroundsScrollWhetherVisibleOrNot) {
  SmallGame game;
  game.RoomTemplate(0).backgrounds[7].hspeed = 1.5f;
  game.RoomTemplate(0).backgrounds[0] = {.visible = true, .vspeed = -2};
  game.Start();
  game.Step(3);
  EXPECT_EQ(CurrentRoom()->backgrounds[7].x, 4.5f);
  EXPECT_EQ(CurrentRoom()->backgrounds[0].y, -6);
  EXPECT_EQ(Rooms().frameCounter, 3);
}

class ViewFollow : public testing::Test {
protected:
  ViewFollow() {
    object = game.Object("hero");
    CRoom& room = game.RoomTemplate(0);
    room.viewsEnabled = true;
    room.views[1] = {
        .visible = true, .wview = 200, .hview = 100, .hborder = 50, .vborder = 20, .object = object};
    game.Start();
    hero = Instance_Find(instance_create(0, 0, object));
  }
  ViewSlot& View() { return CurrentRoom()->views[1]; }
  void Look(float x, float y) {
    hero->SetPosition(x, y);
    UpdateViews();
  }

  SmallGame game;
  int32_t object;
  CInstance* hero;
};

TEST_F(ViewFollow, KeepsTheBorderAndStaysInTheRoom) {
  Look(120.9f, 50);
  EXPECT_EQ(View().xview, 0);
  Look(180, 95);
  EXPECT_EQ(View().xview, 30);
  EXPECT_EQ(View().yview, 15);
  Look(100, 30);
  EXPECT_EQ(View().xview, 30);
  EXPECT_EQ(View().yview, 10);
  Look(630, 470);
  EXPECT_EQ(View().xview, 440);
  EXPECT_EQ(View().yview, 380);
  View().hborder = 150; // wider than half the view: centred
  Look(300, 470);
  EXPECT_EQ(View().xview, 200);
  View().wview = 700; // wider than the room: the second limit has the last word
  Look(300, 470);
  EXPECT_EQ(View().xview, -60);
}

TEST_F(ViewFollow, SpeedLimitsAndTargets) {
  View().hspeed = 4;
  View().vspeed = 0;
  Look(500, 470);
  EXPECT_EQ(View().xview, 4);
  EXPECT_EQ(View().yview, 0);
  View().hspeed = -1;
  instance_deactivate_object(object);
  UpdateViews();
  EXPECT_EQ(View().xview, 4) << "no target, no move";
  instance_activate_all();
  View().object = hero->id;
  UpdateViews();
  EXPECT_EQ(View().xview, 350);
  View().object = 55;
  Look(0, 0);
  EXPECT_EQ(View().xview, 350);
}

TEST_F(ViewFollow, PortsSpanTheSurface) {
  View().xport = 100;
  View().wport = 300;
  View().hport = 50;
  const PortScale scale = ViewPortScale(*CurrentRoom(), 600, 100);
  EXPECT_EQ(scale.x, 2);
  EXPECT_EQ(scale.y, 2);
}

} // namespace
} // namespace vesk::test
