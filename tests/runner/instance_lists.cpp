// Lists of the room and of objects between passes: depth order, change, sleep and waking, removal.
#include "Files/Object/Function_Instance.h"
#include "Files/Run/Run_Events.h"
#include "tests/runner/SmallGame.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

namespace vesk::test {
namespace {

std::string IdsOf(const RoomList& list) {
  std::string text;
  int32_t count = 0;
  const CInstance* last = nullptr;
  for (const CInstance* it = list.head; it; it = it->next) {
    EXPECT_EQ(it->previous, last);
    text += (text.empty() ? "" : " ") + std::to_string(it->id - kFirstInstanceId);
    last = it;
    ++count;
  }
  EXPECT_EQ(list.tail, last);
  EXPECT_EQ(list.count, count);
  return text;
}
std::string Active() { return IdsOf(CurrentRoom()->active); }
std::string Inactive() { return IdsOf(CurrentRoom()->inactive); }
CInstance& Make(int32_t object, float x = 0, float y = 0) {
  return *Instance_Find(instance_create(x, y, object));
}

class InstanceLists : public testing::Test {
protected:
  InstanceLists() {
    sprite = game.Sprite(10, 10);
    parent = game.Object("parent", {.sprite = sprite});
    child = game.Object("child", {.sprite = sprite, .parent = parent});
    other = game.Object("other", {.sprite = sprite});
  }
  void Start() { game.Start(); }

  SmallGame game;
  int32_t sprite, parent, child, other;
};

TEST_F(InstanceLists, DepthTakesEffectAtTheCleanUpAndTheNewestIsNearestTheTail) {
  Start();
  CInstance& a = Make(parent);
  CInstance& b = Make(parent);
  CInstance& c = Make(parent);
  Make(parent).SetDepth(-1);
  EXPECT_EQ(Active(), "1 2 3 4");
  CleanUpInstances();
  EXPECT_EQ(Active(), "4 1 2 3");
  c.SetDepth(5);
  a.SetDepth(5);
  c.SetDepth(5.5f);
  c.SetDepth(5);
  CleanUpInstances();
  EXPECT_EQ(Active(), "4 2 3 1") << "in the order in which they asked first";
  b.SetDepth(5);
  b.SetDepth(0); // back before the clean-up: still taken out and put in again
  CleanUpInstances();
  EXPECT_EQ(Active(), "4 2 3 1");
  b.SetDepth(std::numeric_limits<float>::quiet_NaN());
  CleanUpInstances();
  EXPECT_EQ(Active(), "2 4 3 1");
  b.SetDepth(0);
  instance_destroy(&a);
  CleanUpInstances();
  RemoveMarked();
  EXPECT_EQ(Active(), "4 2 3");
}

TEST_F(InstanceLists, ChangeLeavesTheOldListsAtTheCleanUp) {
  for (const int32_t object : {parent, other}) {
    const std::string name = Object_Name(object);
    for (const int32_t type : {ev_destroy, ev_cleanup, ev_pre_create, ev_create})
      game.On(object, type, 0, [=](Self, Self) { Log(name + std::to_string(type)); });
  }
  game.On(other, ev_step, ev_step_normal, [](Self, Self) { Log("step"); });
  Start();
  CInstance& it = Make(parent);
  Events();
  instance_change(&it, other, true);
  EXPECT_EQ(Events(), "parent1 parent12 other14 other0");
  EXPECT_FALSE(it.destroyEventDone);
  EXPECT_EQ(Object_Find(parent)->instances.count, 1);
  EXPECT_EQ(instance_number(other), 1);
  EXPECT_TRUE(instance_exists(other));
  game.Step();
  EXPECT_EQ(Events(), "step") << "the clean-up of an earlier pass moved it";
  EXPECT_EQ(Object_Find(parent)->instances.count, 0);
  EXPECT_EQ(Object_Find(other)->instances.count, 1);
  EXPECT_EQ(it.previousObject, nullptr);

  instance_change(&it, parent, false);
  instance_change(&it, child, false);
  EXPECT_EQ(instance_number(parent), 1);
  instance_change(&it, other, false); // back where it came from
  CleanUpInstances();
  EXPECT_EQ(Object_Find(other)->instances.count, 1);
  EXPECT_EQ(Object_Find(parent)->instancesRecursive.count, 0);
  instance_change(&it, 77, true);
  EXPECT_EQ(it.objectIndex, other);

  instance_change(&it, child, false); // in two pending lists, and gone before they are applied
  it.SetDepth(4);
  instance_destroy(&it);
  RemoveMarked();
  CleanUpInstances();
  EXPECT_EQ(Active(), "");
}

TEST_F(InstanceLists, CountsAndFindsAlongTheFamily) {
  Start();
  CInstance& a = Make(child);
  CInstance& b = Make(parent);
  Make(child);
  EXPECT_EQ(instance_number(parent), 3);
  EXPECT_EQ(instance_number(child), 2);
  EXPECT_EQ(instance_number(all), 3);
  EXPECT_EQ(instance_find(parent, 1), b.id);
  EXPECT_EQ(instance_find(parent, 3), noone);
  EXPECT_EQ(instance_find(parent, -1), noone);
  EXPECT_EQ(instance_number(nullptr, &a, other_), 1);
  instance_destroy(child);
  EXPECT_EQ(instance_find(parent, 0), b.id);
  EXPECT_FALSE(instance_exists(a.id));
  EXPECT_FALSE(instance_exists(&a, &a, self_));
  for (const int32_t nothing : {noone, -5, 123456, 99}) {
    EXPECT_FALSE(instance_exists(nothing));
    instance_destroy(nothing);
  }
  EXPECT_TRUE(instance_exists(parent));
}

TEST_F(InstanceLists, DestroyingAnObjectSparesWhatTheDestroyEventsMake) {
  game.On(parent, ev_destroy, 0, [this](Self, Self) { instance_create(0, 0, parent); });
  Start();
  Make(parent);
  Make(parent);
  instance_destroy(parent);
  EXPECT_EQ(instance_number(parent), 2);
}

TEST_F(InstanceLists, SleepActsAtOnceAndMovesAtTheCleanUp) {
  game.On(parent, ev_step, ev_step_normal,
          [](Self self, Self) { Log(std::to_string(self.number() - kFirstInstanceId)); });
  Start();
  CInstance& a = Make(parent);
  CInstance& b = Make(child);
  Make(parent);
  instance_deactivate_object(child);
  EXPECT_FALSE(instance_exists(b.id));
  EXPECT_EQ(Active(), "1 2 3");
  CleanUpInstances();
  EXPECT_EQ(Active(), "1 3");
  EXPECT_EQ(Inactive(), "2");
  EXPECT_EQ(Object_Find(parent)->instancesRecursive.count, 2);
  EXPECT_EQ(Instance_Find(b.id), &b);
  game.Step();
  EXPECT_EQ(Events(), "1 3");
  instance_activate_object(b.id);
  EXPECT_TRUE(instance_exists(b.id));
  game.Step(); // the first clean-up takes it back, behind the others
  EXPECT_EQ(Events(), "1 3 2");
  EXPECT_EQ(Active(), "1 3 2");
  // To and fro between two clean-ups: nothing moves.
  instance_deactivate_all(&a, true);
  EXPECT_EQ(instance_number(all), 1);
  instance_activate_object(parent);
  CleanUpInstances();
  EXPECT_EQ(Active(), "1 3 2");
  instance_deactivate_object(&b, &a, other_);
  EXPECT_TRUE(a.deactivated);
  instance_activate_all();
}

TEST_F(InstanceLists, RegionsSelectByOverlap) {
  Start();
  Make(parent, 0, 0); // box 0 to 9
  Make(parent, 50, 0);
  CInstance& point = *Instance_Find(instance_create(100, 0, game.Object("bare")));
  instance_deactivate_region(nullptr, 9, 0, 41, 5, true, false); // touches both edges
  CleanUpInstances();
  EXPECT_EQ(Active(), "3");
  instance_activate_region(9.5f, 0, 10, 5, true);
  CleanUpInstances();
  EXPECT_EQ(Active(), "3");
  instance_activate_region(0, 0, 9, 5, true);
  instance_deactivate_region(&point, 0, 0, 10, 10, false, true);
  CleanUpInstances();
  EXPECT_EQ(Active(), "3 1") << "the caller is awake again";
  EXPECT_EQ(Inactive(), "2");
  instance_deactivate_all(nullptr, false);
  CleanUpInstances();
  EXPECT_EQ(Inactive(), "2 3 1") << "in list order of the active ones";
  point.SetMaskIndex(-1);
  instance_activate_region(100, 0, 0, 0, true);
  instance_activate_region(0, 0, 30, 30, false); // all but the first
  CleanUpInstances();
  EXPECT_EQ(Active(), "2 3") << "in order of the inactive list";
}

TEST_F(InstanceLists, ASleepingInstanceThatChangesWakesInItsNewObject) {
  Start();
  CInstance& a = Make(parent);
  instance_deactivate_object(a.id);
  instance_change(&a, other, false);
  CleanUpInstances();
  EXPECT_EQ(Object_Find(parent)->instances.count + Object_Find(other)->instances.count, 0);
  instance_activate_all();
  CleanUpInstances();
  EXPECT_EQ(Object_Find(other)->instances.count, 1);
  EXPECT_EQ(Active(), "1");
}

TEST_F(InstanceLists, ByPosition) {
  game.On(other, ev_create, 0, [](Self, Self) { Log("create"); });
  Start();
  Make(parent, 0, 0);
  CInstance& b = Make(parent, 5, 0);
  position_change(12, 5, other, true);
  EXPECT_EQ(Events(), "create");
  EXPECT_EQ(b.objectIndex, other);
  position_destroy(5, 5);
  RemoveMarked();
  EXPECT_EQ(Active(), "");
}

// The clean-up as its rule states it, on plain vectors, against thousands of random steps.
TEST_F(InstanceLists, CleanUpKeepsTheOrderOfWholeWalks) {
  Start();
  struct Model {
    int32_t id;
    float depth, sortDepth;
    bool asleep;
  };
  std::vector<Model> awake, sleeping;
  std::vector<int32_t> resort;
  std::mt19937 random(11);
  const auto pick = [&](size_t n) { return random() % n; };
  const auto insert = [&](Model m) {
    m.sortDepth = m.depth;
    auto at = awake.end();
    while (at != awake.begin() && std::prev(at)->sortDepth > m.depth) --at;
    awake.insert(at, m);
  };
  const auto find = [&](int32_t id) -> Model* {
    for (auto* list : {&awake, &sleeping})
      for (Model& m : *list)
        if (m.id == id) return &m;
    return nullptr;
  };
  std::vector<int32_t> ids;
  for (int round = 0; round < 400; ++round) {
    for (int i = 0; i < 6; ++i) {
      if (ids.size() < 40 && pick(3) == 0) {
        const int32_t id = instance_create(0, 0, parent);
        ids.push_back(id);
        insert({id, 0, 0, false});
      } else if (!ids.empty()) {
        const size_t at = pick(ids.size());
        const int32_t id = ids[at];
        CInstance& it = *Instance_Find(id);
        Model& m = *find(id);
        switch (pick(5)) {
        case 0:
        case 1: {
          const auto depth = static_cast<float>(pick(4));
          it.SetDepth(depth);
          if (m.depth != depth && std::find(resort.begin(), resort.end(), id) == resort.end())
            resort.push_back(id);
          m.depth = depth;
          break;
        }
        case 2:
          instance_deactivate_object(id);
          m.asleep = true;
          break;
        case 3:
          instance_activate_object(id);
          m.asleep = false;
          break;
        default: break;
        }
      }
    }
    CleanUpInstances();
    // Whole walks, in the rule's order.
    std::vector<Model> kept;
    for (const Model& m : std::vector<Model>(sleeping)) {
      if (m.asleep)
        kept.push_back(m);
      else
        insert(m);
    }
    sleeping = kept;
    kept.clear();
    for (const Model& m : awake) (m.asleep ? sleeping : kept).push_back(m);
    awake = kept;
    std::vector<Model> out;
    for (const int32_t id : resort) {
      const auto m = std::find_if(awake.begin(), awake.end(), [id](const Model& it) { return it.id == id; });
      if (m == awake.end()) continue;
      out.push_back(*m);
      awake.erase(m);
    }
    for (const Model& m : out) insert(m);
    resort.clear();

    const auto text = [](const std::vector<Model>& list) {
      std::string ids_;
      for (const Model& m : list) ids_ += (ids_.empty() ? "" : " ") + std::to_string(m.id - kFirstInstanceId);
      return ids_;
    };
    ASSERT_EQ(Active(), text(awake)) << "round " << round;
    ASSERT_EQ(Inactive(), text(sleeping)) << "round " << round;
    ASSERT_EQ(Object_Find(parent)->instances.count, static_cast<int32_t>(awake.size()));
  }
  EXPECT_EQ(ids.size(), 40u);
}

} // namespace
} // namespace vesk::test
