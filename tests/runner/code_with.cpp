#include "Files/Code/BuiltinVariables.h"
#include "Files/Code/Events.h"
#include "Files/Run/Run_Events.h"
#include "tests/runner/SmallGame.h"
#include "tests/runner/code_Report.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace vesk::test {
namespace {

constexpr Slot hp{3}, label{4}, gun{5};

// base <- coin <- gold; stone stands alone.
class With : public ::testing::Test {
protected:
  With() {
    base = game.Object("base");
    coin = game.Object("coin", {.parent = base});
    gold = game.Object("gold", {.parent = coin});
    stone = game.Object("stone", {.depth = -5});
    game.Start();
  }
  CInstance* Make(int object) { return Instance_Find(instance_create(0, 0, object)); }
  // Ids in the order in which the body sees them.
  static std::vector<int32_t> Visited(int32_t target, CInstance* self = nullptr, CInstance* other = nullptr) {
    std::vector<int32_t> ids;
    with(
        target, [&](Self it) { ids.push_back(it.number()); }, Self(self), Self(other));
    return ids;
  }

  SmallGame game;
  int base = 0, coin = 0, gold = 0, stone = 0;
};

TEST_F(With, VisitsTheObjectAndItsDescendantsNewestFirst) {
  const int a = Make(coin)->id, b = Make(gold)->id, c = Make(coin)->id;
  Make(stone);
  EXPECT_EQ(Visited(coin), (std::vector<int32_t>{c, b, a}));
  EXPECT_EQ(Visited(base), (std::vector<int32_t>{c, b, a}));
  EXPECT_EQ(Visited(gold), (std::vector<int32_t>{b}));
  EXPECT_TRUE(Visited(999).empty());
}

TEST_F(With, AllGoesFromTheEndOfTheRoomToItsHead) {
  const int a = Make(coin)->id, deep = Make(stone)->id, b = Make(coin)->id;
  EXPECT_EQ(Visited(all), (std::vector<int32_t>{b, a, deep})) << "the lowest depth is the head";
}

TEST_F(With, IdsAndSpecialTargets) {
  CInstance* self = Make(coin);
  CInstance* other = Make(stone);
  EXPECT_EQ(Visited(self->id), (std::vector<int32_t>{self->id}));
  EXPECT_EQ(Visited(self_, self, other), (std::vector<int32_t>{self->id}));
  EXPECT_EQ(Visited(-6, self, other), (std::vector<int32_t>{self->id}));
  EXPECT_EQ(Visited(other_, self, other), (std::vector<int32_t>{other->id}));
  for (const int nothing : {-4, -5, -7, -8, -100, 100000 + 5000})
    EXPECT_TRUE(Visited(nothing, self, other).empty());
}

TEST_F(With, SkipsDestroyedAndDeactivatedButNotWhatTheBodyDestroys) {
  CInstance* a = Make(coin);
  CInstance* b = Make(coin);
  CInstance* c = Make(coin);
  DestroyInstance(b);
  EXPECT_EQ(Visited(coin), (std::vector<int32_t>{c->id, a->id}));
  std::vector<int32_t> seen;
  with(coin, [&](Self it) {
    seen.push_back(it.number());
    for (CInstance* each : {a, c}) DestroyInstance(each);
    Make(coin); // not part of the list
  });
  EXPECT_EQ(seen, (std::vector<int32_t>{c->id, a->id}));
}

TEST_F(With, ABodyMayLeaveTheLoop) {
  Make(coin);
  const int newest = Make(coin)->id;
  std::vector<int32_t> seen;
  with(coin, [&](Self it) {
    seen.push_back(it.number());
    return false;
  });
  EXPECT_EQ(seen, (std::vector<int32_t>{newest}));
}

TEST_F(With, FindsOnceWhatWaitsToComeBackIntoTheObjectLists) {
  CInstance* a = Make(coin);
  CInstance* b = Make(gold);
  a->deactivated = true;
  NoteDeactivation(a);
  EXPECT_EQ(Visited(coin), (std::vector<int32_t>{b->id}));
  CleanUpInstances(); // a leaves the object lists
  a->deactivated = false;
  NoteDeactivation(a);
  b->deactivated = true; // off and on again: still on its list, and noted
  NoteDeactivation(b);
  b->deactivated = false;
  NoteDeactivation(b);
  EXPECT_EQ(Visited(base), (std::vector<int32_t>{a->id, b->id})) << "collected last, visited first";
  EXPECT_EQ(first(coin).number(), b->id);
  DestroyInstance(b);
  EXPECT_EQ(first(coin).number(), a->id);
}

TEST_F(With, FirstReadsTheOldestLiveInstance) {
  EXPECT_FALSE(first(coin));
  CInstance* a = Make(gold);
  CInstance* b = Make(coin);
  EXPECT_EQ(first(coin).instance, a);
  DestroyInstance(a);
  EXPECT_EQ(first(coin).instance, b);
  EXPECT_EQ(first(b->id).instance, b);
  EXPECT_FALSE(first(a->id));
  EXPECT_FALSE(first(noone));
  EXPECT_EQ(first(all).instance, b);
}

// ---- target.variable ----

TEST_F(With, ATargetReadsFromOneAndWritesToAll) {
  CInstance* a = Make(coin);
  CInstance* b = Make(gold);
  EXPECT_TRUE(SetSlotOf(coin, hp.number, kNoIndex, RValue(7.0)));
  EXPECT_EQ(Self(a)[hp], 7);
  EXPECT_EQ(Self(b)[hp], 7);
  EXPECT_TRUE(SetSlotOf(b->id, hp.number, kNoIndex, RValue(1.0)));
  EXPECT_TRUE(SetSlotOf(all, gun.number, 2, RValue("third")));
  EXPECT_EQ(Self(a)[gun][2], "third");
  RValue out;
  EXPECT_TRUE(GetSlotOf(coin, hp.number, kNoIndex, out));
  EXPECT_EQ(out.real, 7);
  EXPECT_TRUE(GetSlotOf(b->id, hp.number, kNoIndex, out));
  EXPECT_EQ(out.real, 1);

  BuiltinVariables_Init();
  EXPECT_TRUE(SetVarOf(coin, BuiltinVariables_Find("x"), kNoIndex, RValue(12.5)));
  EXPECT_EQ(b->x, 12.5f);
  EXPECT_TRUE(GetVarOf(coin, BuiltinVariables_Find("id"), kNoIndex, out));
  EXPECT_EQ(out.real, a->id);
  EXPECT_FALSE(SetVarOf(coin, BuiltinVariables_Find("id"), kNoIndex, RValue(1.0))) << "read only";
}

// Nested loops share one stack of targets; leaving an inner one early must not disturb the outer one.
TEST_F(With, NestedLoopsKeepTheirTargets) {
  std::vector<int32_t> ids;
  for (int i = 0; i < 3; ++i) ids.push_back(Make(coin)->id);
  std::string order;
  with(coin, [&](Self outer) {
    order += std::to_string(outer.number() - ids[0]);
    with(coin, [&](Self inner) {
      if (inner == outer) return true;
      order += static_cast<char>('a' + inner.number() - ids[0]);
      for (int i = 0; i < 40; ++i) Make(stone);
      with(all, [](Self) { return false; });
      return inner.number() != ids[0]; // ends the inner loop
    });
  });
  EXPECT_EQ(order, "2ba1ca0cb");
}

TEST_F(With, ByItsIdASleepingInstanceIsReadAndWritten) {
  CInstance* it = Make(coin);
  Self self(it);
  self[hp] = 4;
  it->deactivated = true;
  NoteDeactivation(it);
  CleanUpInstances();
  RValue out;
  EXPECT_TRUE(GetSlotOf(it->id, hp.number, kNoIndex, out));
  EXPECT_EQ(out.real, 4);
  EXPECT_TRUE(SetSlotOf(it->id, hp.number, kNoIndex, RValue(5.0)));
  EXPECT_EQ(self[hp], 5);
  EXPECT_EQ(first(it->id).instance, it);
  EXPECT_TRUE(Visited(it->id).empty()) << "with passes it over";
  EXPECT_FALSE(first(coin));
}

TEST_F(With, AMissingTargetLeavesTheDestination) {
  RValue out("before");
  VariableAccess().readFailed = false;
  EXPECT_FALSE(GetSlotOf(coin, hp.number, kNoIndex, out));
  EXPECT_TRUE(VariableAccess().readFailed);
  EXPECT_FALSE(GetSlotOf(noone, hp.number, kNoIndex, out));
  EXPECT_EQ(out.Text(), "before");
  const Report absent = ReportOf([] { SetSlotOf(100777, hp.number, kNoIndex, RValue(1.0)); });
  EXPECT_TRUE(absent.Says("Unable to find any instance for object index '100777'")) << absent.text;
  EXPECT_FALSE(absent.fatal);
  EXPECT_EQ(ReportOf([&] { SetSlotOf(coin, hp.number, kNoIndex, RValue(1.0)); }).text, "");
}

// ---- variables as rules write them ----

TEST_F(With, NumbersCompareWithinTheEpsilonOfTheGame) {
  const double before = g_epsilon;
  g_epsilon = 1e-5;
  Self self(Make(coin));
  self[hp] = 3.000004;
  self[x] = 3;
  EXPECT_TRUE(self[hp] == 3);
  EXPECT_FALSE(self[hp] > 3);
  EXPECT_TRUE(self[hp] >= self[x]);
  EXPECT_TRUE(self[hp] + 1 == 4);
  self[hp] = 3.1;
  EXPECT_TRUE(self[hp] > self[x]);
  self[hp] = undefined;
  EXPECT_FALSE(self[hp] == 0) << "undefined is no number";
  EXPECT_TRUE(self[hp] != 0);
  self[hp] = "3";
  EXPECT_FALSE(self[hp] == 3) << "nor is a text";
  EXPECT_TRUE(self[hp] == "3");
  g_epsilon = before;
}

TEST_F(With, TextsMoveBetweenVariablesAndElements) {
  Self self(Make(coin));
  self[gun][0] = "pistol";
  self[label] = self[gun][0];
  self[gun][1] = self[label];
  EXPECT_TRUE(self[label] == "pistol");
  EXPECT_TRUE(self[gun][1] == self[label]);
  self[gun][1] = self[x];
  EXPECT_EQ(self[gun][1], 0);
  self[gun][1] += 2;
  EXPECT_EQ(self[gun][1], 2);
  self[hp] = self[gun]; // the whole array
  self[hp][0] = 1;
  EXPECT_TRUE(self[gun][0] == "pistol") << "a copy is written apart";
  global[hp] = self[label];
  EXPECT_EQ(global[hp].text(), "pistol");
}

TEST_F(With, AnUnsetVariableIsAFatalErrorAsANumberOnly) {
  Self self(Make(coin));
  EXPECT_EQ(ReportOf([&] { self[label] = self[hp]; }).text, "");
  const Report report = ReportOf([&] { self[label] = self[hp] + 1; });
  EXPECT_TRUE(report.Says("REAL argument is unset"));
  EXPECT_TRUE(report.fatal);
}

} // namespace
} // namespace vesk::test
