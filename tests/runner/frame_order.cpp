// The order of events within a frame, and who takes part.
#include "Files/Base/Error.h"
#include "Files/Object/Function_Instance.h"
#include "Files/Room/Function_Room.h"
#include "Files/Run/Run_Events.h"
#include "tests/runner/SmallGame.h"

#include <gtest/gtest.h>

namespace vesk::test {
namespace {

SmallGame::Event Says(const std::string& text) {
  return [text](Self, Self) { Log(text); };
}

TEST(FrameOrder, PassesRunInTheirOrder) {
  SmallGame game;
  const int32_t a = game.Object("a", {.sprite = game.Sprite(16, 16)}), b = game.Object("b", {.sprite = 0});
  game.On(a, ev_other, ev_animation_end, Says("animation"));
  game.On(a, ev_step, ev_step_begin, Says("begin"));
  game.On(a, ev_alarm, 3, Says("alarm"));
  game.On(a, ev_keyboard, 65, Says("held"));
  game.On(a, ev_keypress, 65, Says("press"));
  game.On(a, ev_mouse, ev_global_left_button, Says("mouse"));
  game.On(a, ev_step, ev_step_normal, Says("step"));
  game.On(a, ev_other, ev_outside, Says("outside"));
  game.On(a, ev_other, 62, Says("async"));
  game.On(a, ev_collision, b, Says("collision"));
  game.On(a, ev_step, ev_step_end, Says("end"));
  game.OnDraw([] { Log("draw"); });
  game.Start();
  CInstance* it = Instance_Find(instance_create(-100, 0, a));
  instance_create(-100, 8, b);
  it->alarm[3] = 1;
  game.input.keyDown[65] = game.input.keyPressed[65] = true;
  game.input.buttonDown[0] = true;
  Async_Post(62, -1);
  game.Step();
  EXPECT_EQ(Events(), "animation begin alarm held press mouse step outside async collision end draw");
}

TEST(FrameOrder, ObjectsRunInIndexOrderAndInstancesInOrderOfCreation) {
  SmallGame game;
  const int32_t parent = game.Object("parent");
  const int32_t child = game.Object("child", {.parent = parent});
  const int32_t other = game.Object("other", {.depth = -100});
  const auto id = [](Self self, Self) {
    Log(std::string(Object_Name(self.instance->objectIndex)) + std::to_string(self.number() - 100000));
  };
  game.On(parent, ev_step, ev_step_normal, id);
  game.On(other, ev_step, ev_step_normal, id);
  game.Start();
  for (const int32_t object : {other, child, parent, child, parent, other}) instance_create(0, 0, object);
  game.Step();
  EXPECT_EQ(Events(), "parent3 parent5 child2 child4 other1 other6");
}

TEST(FrameOrder, AnInstanceMadeInAStepWaitsForTheNextPass) {
  SmallGame game;
  const int32_t maker = game.Object("maker"), made = game.Object("made");
  game.On(maker, ev_step, ev_step_normal, [=](Self self, Self) {
    Log("make");
    instance_create(0, 0, made);
    Log("made");
    instance_destroy(self);
  });
  game.On(made, ev_pre_create, 0, Says("precreate"));
  game.On(made, ev_create, 0, Says("create"));
  game.On(made, ev_step, ev_step_normal, Says("step"));
  game.On(made, ev_step, ev_step_end, Says("end"));
  game.Start();
  instance_create(0, 0, maker);
  game.Step();
  EXPECT_EQ(Events(), "make precreate create made end");
  game.Step();
  EXPECT_EQ(Events(), "step end");
}

TEST(FrameOrder, ADestroyedInstanceHasNoFurtherEventsAndGoesBeforeTheDraw) {
  SmallGame game;
  const int32_t coin = game.Object("coin");
  game.On(coin, ev_step, ev_step_begin, [](Self self, Self) {
    Log("begin");
    instance_destroy(self);
    instance_destroy(self);
    Log(instance_exists(self.number()) ? "there" : "gone");
  });
  game.On(coin, ev_destroy, 0, Says("destroy"));
  game.On(coin, ev_cleanup, 0, Says("cleanup"));
  game.On(coin, ev_step, ev_step_normal, Says("step"));
  game.Start();
  const int32_t id = instance_create(0, 0, coin);
  static int32_t watched;
  watched = id;
  FrameBody().services.updateParticles = [] { Log(Instance_Find(watched) ? "kept" : "lost"); };
  game.OnDraw([] { Log(Instance_Find(watched) ? "kept" : "lost"); });
  game.Step();
  EXPECT_EQ(Events(), "begin destroy cleanup gone kept lost");
  EXPECT_EQ(CurrentRoom()->active.count, 0);
  EXPECT_EQ(Object_Find(coin)->instances.count, 0);
}

TEST(FrameOrder, DestroyWithoutItsEventOnlyCleansUp) {
  SmallGame game;
  const int32_t coin = game.Object("coin");
  game.On(coin, ev_destroy, 0, Says("destroy"));
  game.On(coin, ev_cleanup, 0, Says("cleanup"));
  game.Start();
  instance_destroy(instance_create(0, 0, coin), false);
  EXPECT_EQ(Events(), "cleanup");
}

TEST(FrameOrder, Alarms) {
  SmallGame game;
  const int32_t a = game.Object("a"), plain = game.Object("plain");
  game.On(a, ev_alarm, 0, [](Self self, Self) { Log("alarm0=" + std::to_string(self.instance->alarm[0])); });
  game.On(a, ev_alarm, 1, [](Self self, Self) {
    Log("alarm1");
    self.instance->alarm[1] = 2;
  });
  game.Start();
  CInstance* it = Instance_Find(instance_create(0, 0, a));
  CInstance* other = Instance_Find(instance_create(0, 0, plain));
  it->alarm[0] = 0; // off without firing
  it->alarm[1] = 1; // in this very step
  it->alarm[2] = 5; // no handler: never counts
  other->alarm[0] = 5;
  game.Step();
  EXPECT_EQ(Events(), "alarm1");
  EXPECT_EQ(it->alarm[0], -1);
  EXPECT_EQ(it->alarm[2], 5);
  EXPECT_EQ(other->alarm[0], 5);
  it->alarm[0] = 2;
  game.Step();
  EXPECT_EQ(Events(), "");
  game.Step();
  EXPECT_EQ(Events(), "alarm0=0 alarm1");
  game.Step();
  EXPECT_EQ(it->alarm[0], -1);
}

TEST(FrameOrder, KeysAscendThenAnyOrNone) {
  SmallGame game;
  const int32_t a = game.Object("a");
  for (const int32_t key : {0, 1, 37, 65}) {
    game.On(a, ev_keyboard, key, Says("k" + std::to_string(key)));
    game.On(a, ev_keypress, key, Says("p" + std::to_string(key)));
    game.On(a, ev_keyrelease, key, Says("r" + std::to_string(key)));
  }
  game.On(a, ev_keypress, 160, Says("beyond the lists"));
  game.Start();
  instance_create(0, 0, a);
  game.Step();
  EXPECT_EQ(Events(), "k0 p0 r0");
  game.input.keyPressed[65] = true; // pressed and let go between two frames counts as held
  game.input.keyDown[37] = true;
  game.input.keyReleased[65] = true;
  game.input.keyPressed[160] = true;
  game.Step();
  EXPECT_EQ(Events(), "k37 k65 p65 r65 k1 p1 r1");
}

TEST(FrameOrder, MouseEvents) {
  SmallGame game;
  const int32_t a = game.Object("a", {.sprite = game.Sprite(10, 10)});
  for (int32_t n = 0; n < 62; ++n)
    if (n < 16 || n >= 50) game.On(a, ev_mouse, n, Says(std::to_string(n)));
  game.Start();
  instance_create(0, 0, a);
  game.input.mouseX = 5;
  game.input.mouseY = 5;
  game.Step(); // the mark says outside at first, so this is an entry
  EXPECT_EQ(Events(), "3 10");
  game.input.buttonDown[1] = game.input.buttonPressed[1] = true;
  game.input.wheelDown = true;
  game.Step();
  EXPECT_EQ(Events(), "1 51 5 12 54 61");
  game.input.mouseX = 10; // just outside
  game.input.buttonDown[1] = false;
  game.input.buttonReleased[1] = true;
  game.input.wheelUp = true;
  game.Step();
  EXPECT_EQ(Events(), "13 57 11 60");
}

// ---- the gate ----

TEST(FrameOrder, ARequestInAnAlarmKeepsBackAllButPersistentParties) {
  SmallGame game;
  game.AddRoom("second");
  const int32_t plain = game.Object("plain"), lasting = game.Object("lasting", {.persistent = true});
  for (const int32_t object : {plain, lasting}) {
    const std::string name = Object_Name(object);
    game.On(object, ev_alarm, 1, Says(name + ":alarm"));
    game.On(object, ev_step, ev_step_normal, Says(name + ":step"));
    game.On(object, ev_create, 0, Says(name + ":create"));
    game.On(object, ev_destroy, 0, Says(name + ":destroy"));
    game.On(object, ev_cleanup, 0, Says(name + ":cleanup"));
  }
  game.On(plain, ev_alarm, 0, [=](Self self, Self) {
    room_goto(1);
    Log("gone");
    instance_create(0, 0, plain); // made, but its create event doesn't run
    instance_create(0, 0, lasting);
    instance_destroy(self); // marked; only the clean-up runs
    Log(std::to_string(instance_number(plain)));
  });
  game.OnDraw([] { Log("draw"); });
  game.Start();
  CInstance* a = Instance_Find(instance_create(0, 0, plain));
  CInstance* b = Instance_Find(instance_create(0, 0, lasting));
  Events();
  a->alarm[0] = a->alarm[1] = b->alarm[1] = 1;
  game.Body();
  EXPECT_EQ(Events(), "gone lasting:create plain:cleanup 1 lasting:alarm");
  EXPECT_EQ(Rooms().request, 1);
  EXPECT_EQ(Rooms().frameCounter, 0);
}

TEST(FrameOrder, ARequestInTheDrawEventTakesEffectAfterTheStage) {
  SmallGame game;
  game.RoomTemplate(0).backgrounds[0].hspeed = 2;
  game.OnDraw([] {
    Log("draw");
    room_restart();
  });
  game.Start();
  game.Body();
  EXPECT_EQ(Events(), "draw");
  EXPECT_EQ(CurrentRoom()->backgrounds[0].x, 0) << "the scroll stage doesn't run";
  EXPECT_EQ(Rooms().request, 0);
}

TEST(FrameOrder, RestartInRoomStartDropsTheRestOfThem) {
  SmallGame game;
  const int32_t a = game.Object("a"), b = game.Object("b", {.depth = 1}),
                lasting = game.Object("lasting", {.depth = 2, .persistent = true});
  static int32_t restarts;
  restarts = 0;
  game.On(a, ev_other, ev_room_start, [](Self, Self) {
    Log("a");
    if (restarts++ == 0) room_restart();
  });
  game.On(b, ev_other, ev_room_start, Says("b"));
  game.On(lasting, ev_other, ev_room_start, Says("lasting"));
  for (const int32_t object : {a, b, lasting}) game.Place(0, object, 0, 0);
  game.Start();
  EXPECT_EQ(Events(), "a lasting a b lasting");
}

// ---- performing ----

TEST(FrameOrder, InheritanceClimbsFromTheOwnerOfTheHandler) {
  SmallGame game;
  const int32_t top = game.Object("top");
  const int32_t middle = game.Object("middle", {.parent = top});
  const int32_t child = game.Object("child", {.parent = middle});
  const int32_t grandchild = game.Object("grandchild", {.parent = child});
  const auto inherits = [](const std::string& name) {
    return [name](Self self, Self) {
      Log(name + "(");
      event_inherited(self);
      Log(")" + std::to_string(vesk::Run().event.object));
    };
  };
  game.On(top, ev_step, ev_step_normal, inherits("top"));
  game.On(middle, ev_step, ev_step_normal, inherits("middle"));
  game.On(child, ev_step, ev_step_normal, inherits("child"));
  game.Start();
  instance_create(0, 0, grandchild);
  game.Step();
  EXPECT_EQ(Events(), "child( middle( top( )0 )1 )2");
  EXPECT_EQ(vesk::Run().event.object, -1);
}

TEST(FrameOrder, AUserEventStartsAtTheInstancesOwnObject) {
  SmallGame game;
  const int32_t parent = game.Object("parent"), child = game.Object("child", {.parent = parent});
  game.On(parent, ev_step, ev_step_normal, [](Self self, Self) { event_user(self, 2); });
  game.On(parent, ev_other, ev_user(2), Says("parent"));
  game.On(child, ev_other, ev_user(2), [](Self self, Self) {
    Log("child");
    event_inherited(self);
  });
  game.Start();
  instance_create(0, 0, child);
  game.Step();
  EXPECT_EQ(Events(), "child parent");
}

TEST(FrameOrder, EndlessPerformingIsReported) {
  SmallGame game;
  const int32_t a = game.Object("a");
  static int depth;
  depth = 0;
  game.On(a, ev_other, ev_user(0), [](Self self, Self) {
    ++depth;
    event_user(self, 0);
  });
  game.Start();
  Self self(Instance_Find(instance_create(0, 0, a)));
  event_user(self, 0);
  EXPECT_EQ(depth, 32);
  EXPECT_GT(Error().fatalCount, 0);
  EXPECT_NE(Error().lastReport.find("PerformEvent recursion depth failure"), std::string::npos);
  EXPECT_EQ(vesk::Run().performDepth, 0);
}

TEST(FrameOrder, WithVisitsASnapshot) {
  SmallGame game;
  const int32_t a = game.Object("a");
  game.Start();
  const int32_t first = instance_create(0, 0, a);
  for (int i = 0; i < 2; ++i) instance_create(0, 0, a);
  with(a, [&](Self it) {
    Log(std::to_string(it.number() - first));
    instance_create(0, 0, a); // not visited
    instance_destroy(first);  // still visited
  });
  EXPECT_EQ(Events(), "2 1 0");
}

// ---- animation and motion ----

TEST(FrameOrder, AnimationEndOfOneFrameFiresEachStep) {
  SmallGame game;
  const int32_t a = game.Object("a", {.sprite = game.Sprite(1, 1)}), bare = game.Object("bare");
  game.On(a, ev_other, ev_animation_end, Says("a"));
  game.On(bare, ev_other, ev_animation_end, Says("bare"));
  game.Start();
  CInstance* it = Instance_Find(instance_create(0, 0, a));
  instance_create(0, 0, bare); // no sprite: no frames, and its index is never below 0
  game.Step(2);
  EXPECT_EQ(Events(), "a bare a bare");
  EXPECT_EQ(it->imageIndex, 0);
  it->imageSpeed = 0;
  game.Step();
  EXPECT_EQ(Events(), "bare");
}

TEST(FrameOrder, PreviousPositionIsThatOfTheFramesStart) {
  SmallGame game;
  const int32_t a = game.Object("a");
  game.On(a, ev_step, ev_step_normal,
          [](Self self, Self) { self.instance->SetHspeed(self.instance->hspeed + 1.5f); });
  game.Start();
  CInstance* it = Instance_Find(instance_create(10, 0, a));
  game.Step(2);
  EXPECT_EQ(it->xPrevious, 11.5f);
  EXPECT_EQ(it->x, 14.5f);
}

// ---- outside ----

TEST(FrameOrder, OutsideFiresOnLeavingOnly) {
  SmallGame game;
  const int32_t a = game.Object("a", {.sprite = game.Sprite(10, 10)}), bare = game.Object("bare");
  for (const int32_t object : {a, bare}) game.On(object, ev_other, ev_outside, Says(Object_Name(object)));
  game.On(a, ev_other, ev_boundary, Says("edge"));
  game.Start();
  CInstance* it = Instance_Find(instance_create(639, 0, a));
  CInstance* point = Instance_Find(instance_create(640, 0, bare));
  game.Step();
  EXPECT_EQ(Events(), "edge");
  it->SetPosition(641, 0);
  point->SetPosition(640.5f, 0);
  game.Step(2);
  EXPECT_EQ(Events(), "a bare edge edge");
  it->SetPosition(0, 0);
  game.Step();
  EXPECT_EQ(Events(), "");
  it->SetPosition(-11, 0);
  game.Step();
  EXPECT_EQ(Events(), "a edge");
}

TEST(FrameOrder, OutsideAViewFiresOnEveryStep) {
  SmallGame game;
  CRoom& room = game.RoomTemplate(0);
  room.viewsEnabled = true;
  room.views[2] = {.visible = true, .xview = 100, .yview = 100, .wview = 100, .hview = 50};
  const int32_t a = game.Object("a", {.sprite = game.Sprite(10, 10)});
  game.On(a, ev_other, ev_outside_view0 + 2, Says("out"));
  game.On(a, ev_other, ev_outside_view0, Says("hidden view"));
  game.On(a, ev_other, ev_boundary_view0 + 2, Says("edge"));
  game.Start();
  CInstance* it = Instance_Find(instance_create(120, 120, a));
  game.Step();
  EXPECT_EQ(Events(), "");
  it->SetPosition(95, 120);
  game.Step();
  EXPECT_EQ(Events(), "edge");
  it->SetPosition(90, 120); // last pixel 99
  game.Step(2);
  EXPECT_EQ(Events(), "out out");
  // Turned upright, the view spans x 125 to 175 and y 75 to 175.
  CurrentRoom()->views[2].angle = 90;
  it->SetPosition(110, 120);
  game.Step();
  EXPECT_EQ(Events(), "out");
  it->SetPosition(140, 80);
  game.Step();
  EXPECT_EQ(Events(), "");
  // At 45 degrees a corner of the upright rectangle around the view is outside the view itself.
  CurrentRoom()->views[2].angle = 45;
  it->SetPosition(98, 73);
  game.Step();
  EXPECT_EQ(Events(), "out");
}

// ---- collisions ----

TEST(FrameOrder, CollisionPairsRunBothWaysOnce) {
  SmallGame game;
  const int32_t sprite = game.Sprite(10, 10);
  const int32_t hero = game.Object("hero", {.sprite = sprite});
  const int32_t coinParent = game.Object("coinparent", {.sprite = sprite});
  const int32_t coin = game.Object("coin", {.sprite = sprite, .parent = coinParent});
  const auto meets = [](Self self, Self other) {
    Log(std::string(Object_Name(self.instance->objectIndex)) + ">" +
        Object_Name(other.instance->objectIndex));
  };
  game.On(coinParent, ev_collision, hero, meets);
  game.On(coin, ev_collision, coinParent, meets); // serves for coins among themselves too
  game.Start();
  ASSERT_EQ(Objects().collisionPairs.size(), 4u);
  instance_create(0, 0, hero);
  instance_create(5, 5, coin);
  game.Step();
  EXPECT_EQ(Events(), "coin>hero");
  instance_create(6, 6, coin);
  game.Step();
  // Two of one kind meet in two rounds, and in each both events run.
  EXPECT_EQ(Events(), "coin>hero coin>hero coin>coin coin>coin coin>coin coin>coin");
}

TEST(FrameOrder, ASolidSendsBothBackAndMovesThemAfterTheEvent) {
  SmallGame game;
  const int32_t sprite = game.Sprite(10, 10);
  const int32_t mover = game.Object("mover", {.sprite = sprite});
  const int32_t wall = game.Object("wall", {.sprite = sprite, .solid = true});
  game.On(mover, ev_collision, wall, [](Self self, Self) {
    Log("at " + std::to_string(static_cast<int>(self.instance->x)));
    self.instance->SetHspeed(-3);
  });
  game.Start();
  CInstance* it = Instance_Find(instance_create(0, 0, mover));
  instance_create(12, 0, wall);
  it->SetHspeed(4);
  game.Step();
  EXPECT_EQ(Events(), "at 0");
  EXPECT_EQ(it->x, -3);
}

TEST(FrameOrder, InstancesMadeInACollisionDoNotMeetInTheSamePair) {
  SmallGame game;
  const int32_t sprite = game.Sprite(10, 10);
  const int32_t a = game.Object("a", {.sprite = sprite}), b = game.Object("b", {.sprite = sprite});
  game.On(a, ev_collision, b, [=](Self, Self other) {
    Log("met");
    instance_create(0, 0, b);
    instance_destroy(other);
  });
  game.Start();
  instance_create(0, 0, a);
  instance_create(0, 0, b);
  game.Step(2);
  EXPECT_EQ(Events(), "met met");
}

TEST(FrameOrder, AsyncResultsPostedInAHandlerWaitAFrame) {
  SmallGame game;
  const int32_t a = game.Object("a");
  game.On(a, ev_other, 63, [](Self, Self) {
    Log("async" + std::to_string(Async_Load()));
    if (Async_Load() == 7) Async_Post(63, 8);
  });
  game.Start();
  instance_create(0, 0, a);
  Async_Post(63, 7);
  game.Step();
  EXPECT_EQ(Events(), "async7");
  game.Step(2);
  EXPECT_EQ(Events(), "async8");
  EXPECT_EQ(Async_Load(), -1);
}

TEST(FrameOrder, ResizeIsBroadcastOnce) {
  SmallGame game;
  const int32_t a = game.Object("a");
  game.On(a, ev_draw, ev_draw_resize, Says("resize"));
  game.Start();
  instance_create(0, 0, a);
  vesk::Run().resizePending = true;
  game.Step(2);
  EXPECT_EQ(Events(), "resize");
}

} // namespace
} // namespace vesk::test
