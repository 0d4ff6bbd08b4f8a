// Objects: the search for handlers, the prebuilt lists, instance lists.
#include "Files/Base/Error.h"
#include "Files/Object/Function_Instance.h"
#include "Files/Run/Run_Events.h"
#include "tests/runner/SmallGame.h"
#include "tests/runner/code_Report.h"

#include <gtest/gtest.h>

#include <random>

namespace vesk::test {
namespace {

const SmallGame::Event kNothing = [](Self, Self) {};

using Ids = std::vector<int32_t>;

std::vector<int32_t> ListOf(const InstanceList& list) {
  std::vector<int32_t> ids;
  for (const auto* node = list.head; node; node = node->next) ids.push_back(node->instance->id);
  EXPECT_EQ(static_cast<int32_t>(ids.size()), list.count);
  EXPECT_EQ(list.tail ? list.tail->instance->id : -1, ids.empty() ? -1 : ids.back());
  return ids;
}

TEST(ObjectLists, TheNearestHandlerOfTheActingChainWins) {
  SmallGame game;
  const int32_t top = game.Object("top"), child = game.Object("child", {.parent = top});
  const int32_t metTop = game.Object("mettop"), metMiddle = game.Object("metmiddle", {.parent = metTop}),
                met = game.Object("met", {.parent = metMiddle}), stranger = game.Object("stranger");
  game.On(top, ev_step, 0, kNothing);
  game.On(top, ev_collision, metMiddle, kNothing);
  game.On(child, ev_collision, metTop, kNothing);
  game.On(child, ev_collision, 77, kNothing); // no such object
  game.Start();
  EXPECT_EQ(FindHandler(child, ev_step, 0).owner, top);
  EXPECT_EQ(FindHandler(child, ev_step, 1).event, nullptr);
  // The parent's handler against the nearer ancestor of the other comes before the own one against the
  // farther.
  EXPECT_EQ(FindHandler(child, ev_collision, met).owner, top);
  EXPECT_EQ(FindHandler(child, ev_collision, metTop).owner, child);
  EXPECT_EQ(FindHandler(child, ev_collision, stranger).event, nullptr);
  EXPECT_EQ(FindHandler(child, ev_collision, 77).owner, child);
  EXPECT_EQ(FindHandler(99, ev_step, 0).event, nullptr);
  EXPECT_FALSE(Object_Find(child)->HasHandler(ev_collision, met));
  EXPECT_TRUE(Object_Find(child)->IsDescendantOf(top));
  EXPECT_FALSE(Object_Find(child)->IsDescendantOf(child));
  EXPECT_STREQ(Object_Name(99), "<undefined>");
}

TEST(ObjectLists, ABadEventIsReportedAndFindsNothing) {
  SmallGame game;
  const int32_t a = game.Object("a");
  game.Start();
  EXPECT_EQ(Object_Find(a)->FindEvent(ev_step, -1), nullptr);
  EXPECT_EQ(Object_Find(a)->FindEvent(15, 0), nullptr);
  EXPECT_NE(Error().lastReport.find("Invalid event argument"), std::string::npos);
  EXPECT_EQ(Error().fatalCount, 0);
}

TEST(ObjectLists, AParentChainThatBitesItsTailEnds) {
  SmallGame game;
  const int32_t a = game.Object("a", {.parent = 1}), b = game.Object("b", {.parent = 0});
  const int32_t c = game.Object("c", {.parent = 0});
  game.Start();
  for (const int32_t object : {a, b, c}) {
    int steps = 0;
    for (const CObjectFb* at = Object_Find(object); at && steps < 10; at = at->parent) ++steps;
    EXPECT_LT(steps, 10);
  }
}

// The lists as their rule states them, from the search for handlers alone.
TEST(ObjectLists, AreWhatTheSearchForHandlersGives) {
  SmallGame game;
  std::mt19937 random(7);
  const auto pick = [&](int n) { return static_cast<int32_t>(random() % static_cast<unsigned>(n)); };
  constexpr int32_t kCount = 60;
  for (int32_t i = 0; i < kCount; ++i)
    game.Object("o" + std::to_string(i), {.parent = pick(3) > 0 ? pick(kCount) : -100});
  const int32_t code[] = {-1};
  for (int i = 0; i < 160; ++i) {
    const int32_t type = pick(kEventTypeCount);
    const int32_t subtype = type == ev_collision ? pick(kCount) : type <= ev_destroy ? 0 : pick(140);
    Object_Find(pick(kCount))->SetEvent(type, subtype, code[0]);
  }
  BuildEventLists();
  const std::pair<int, int> ends[] = {{0, 0},   {1, 0},  {2, 12},  {3, 16},   {5, 128},  {6, 128},
                                      {7, 128}, {8, 77}, {9, 128}, {10, 128}, {13, 128}, {14, 0}};
  size_t listed = 0, expected = 0;
  for (const auto& [type, last] : ends) {
    for (int subtype = 0; subtype <= last; ++subtype) {
      std::vector<int32_t> rule;
      for (int32_t i = 0; i < kCount; ++i)
        if (FindHandler(i, type, subtype).event) rule.push_back(i);
      EXPECT_EQ(Objects().eventObjects[type][subtype], rule) << type << ' ' << subtype;
      expected += rule.size();
    }
  }
  for (const auto& lists : Objects().eventObjects)
    for (const auto& list : lists) listed += list.size();
  EXPECT_EQ(listed, expected) << "nothing stands in a list beyond the ranges";
  EXPECT_GT(listed, 100u);

  std::vector<std::pair<int32_t, int32_t>> pairs, rule;
  for (const CollisionPair& pair : Objects().collisionPairs) pairs.emplace_back(pair.a, pair.b);
  for (int32_t i = 0; i < kCount; ++i) {
    for (int32_t j = 0; j < kCount; ++j) {
      if (!FindHandler(i, ev_collision, j).event) continue;
      EXPECT_TRUE(Object_Find(j)->flags & CObjectFb::kHasCollisions);
      if (std::find(rule.begin(), rule.end(), std::pair(j, i)) == rule.end()) rule.emplace_back(i, j);
    }
  }
  EXPECT_EQ(pairs, rule);
  EXPECT_GT(rule.size(), 20u);
}

TEST(ObjectLists, AnInstanceStandsUnderItsObjectAndAllAncestors) {
  SmallGame game;
  const int32_t top = game.Object("top"), middle = game.Object("middle", {.parent = top}),
                child = game.Object("child", {.parent = middle});
  game.Start();
  const int32_t a = instance_create(0, 0, child), b = instance_create(0, 0, top),
                c = instance_create(0, 0, middle), d = instance_create(0, 0, child);
  EXPECT_EQ(ListOf(Object_Find(child)->instances), (Ids{a, d}));
  EXPECT_EQ(ListOf(Object_Find(middle)->instances), (Ids{c}));
  EXPECT_EQ(ListOf(Object_Find(middle)->instancesRecursive), (Ids{a, c, d}));
  EXPECT_EQ(ListOf(Object_Find(top)->instancesRecursive), (Ids{a, b, c, d}));
  instance_destroy(c);
  instance_destroy(a);
  RemoveMarked();
  EXPECT_EQ(ListOf(Object_Find(middle)->instancesRecursive), (Ids{d}));
  EXPECT_EQ(ListOf(Object_Find(top)->instancesRecursive), (Ids{b, d}));
  EXPECT_EQ(Instance_Find(a), nullptr);
  EXPECT_EQ(ListOf(Object_Find(child)->instances), (Ids{d}));
}

// Set from inside a step: the pass goes on over the old lists, the next one sees the new ancestry.
TEST(ObjectLists, AParentSetAtRunTimeGivesItsEventsAndTakesTheInstances) {
  SmallGame game;
  const int32_t walker = game.Object("walker"), flyer = game.Object("flyer");
  const int32_t child = game.Object("child", {.parent = walker}),
                grandchild = game.Object("g", {.parent = child});
  game.On(walker, ev_step, ev_step_normal, [](Self, Self) { Log("walk"); });
  game.On(flyer, ev_step, ev_step_end, [](Self, Self) { Log("fly"); });
  game.On(child, ev_step, ev_step_begin, [=](Self, Self) {
    if (object_get_parent(child) == walker) object_set_parent(child, flyer);
  });
  game.Start();
  const int32_t a = instance_create(0, 0, grandchild), b = instance_create(0, 0, child);
  EXPECT_EQ(instance_number(walker), 2);
  game.Step();
  EXPECT_EQ(Events(), "fly fly");
  EXPECT_EQ(instance_number(walker), 0);
  EXPECT_EQ(ListOf(Object_Find(flyer)->instancesRecursive), (Ids{b, a}));
  EXPECT_TRUE(object_is_ancestor(grandchild, flyer));

  const Report circle = ReportOf([&] { object_set_parent(flyer, grandchild); });
  EXPECT_TRUE(circle.Says("g can't be the parent of flyer, which it descends from")) << circle.text;
  EXPECT_FALSE(ReportOf([&] { object_set_parent(flyer, 99); }).text.empty());
  object_set_parent(child, -100);
  CleanUpInstances();
  EXPECT_EQ(instance_number(flyer), 0);
  EXPECT_EQ(instance_number(child), 2);
  game.Step();
  EXPECT_EQ(Events(), "");
  instance_destroy(a);
  RemoveMarked();
  EXPECT_EQ(ListOf(Object_Find(child)->instancesRecursive), (Ids{b}));
}

TEST(ObjectLists, ObjectBuiltins) {
  SmallGame game;
  const int32_t top = game.Object("top", {.sprite = 4, .mask = 5, .depth = -3, .solid = true});
  const int32_t child = game.Object("child", {.parent = top, .visible = false});
  game.Start();
  EXPECT_EQ(object_get_sprite(top), 4);
  EXPECT_EQ(object_get_mask(top), 5);
  EXPECT_EQ(object_get_depth(top), -3);
  EXPECT_TRUE(object_get_solid(top));
  EXPECT_FALSE(object_get_visible(child));
  EXPECT_EQ(object_get_parent(child), top);
  EXPECT_TRUE(object_is_ancestor(child, top));
  object_set_persistent(child, true);
  EXPECT_TRUE(Instance_Find(instance_create(0, 0, child))->persistent);
  EXPECT_FALSE(object_exists(2));
  EXPECT_EQ(object_get_name(2), "<undefined>");
}

} // namespace
} // namespace vesk::test
