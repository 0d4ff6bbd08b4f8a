#include "Files/Code/SlotMap.h"
#include "Files/Code/Slots.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace vesk::test {
namespace {

TEST(SlotMap, AgreesWithAnOrderedMapForRandomKeys) {
  std::mt19937 random(3);
  for (const uint32_t range : {12u, 283u, 100000u, 0x7FFFFFF0u}) {
    SlotMap map;
    std::map<int32_t, double> expected;
    std::map<int32_t, const RValue*> places;
    for (int i = 0; i < 3000; ++i) {
      const auto key = static_cast<int32_t>(random() % range);
      if (random() % 3 == 0) {
        const RValue* found = map.Find(key);
        ASSERT_EQ(found != nullptr, expected.count(key) > 0) << key;
        if (found) { ASSERT_EQ(found->real, expected[key]); }
        continue;
      }
      RValue& value = map.Get(key, kUnset);
      if (!expected.count(key)) {
        ASSERT_TRUE(value.IsUnset());
        ASSERT_EQ(value.int64, 0);
        places[key] = &value;
      }
      value.SetReal(i);
      expected[key] = i;
    }
    EXPECT_EQ(map.Count(), expected.size());
    for (const auto& [key, place] : places) EXPECT_EQ(map.Find(key), place) << "growth moves no value";
    std::map<int32_t, double> visited;
    map.ForEach([&](int32_t key, const RValue& value) { visited[key] = value.real; });
    EXPECT_EQ(visited, expected);
  }
}

TEST(SlotMap, ValuesComeFromThePoolAndGoBack) {
  const SlotPoolUse before = SlotPool();
  {
    SlotMap map;
    for (int32_t key = 0; key < 70000; ++key) map.Get(key, kUnset);
    EXPECT_EQ(SlotPool().values, before.values + 70000);
    EXPECT_GE(SlotPool().buckets, 2u) << "65,536 values fit a bucket of 1 MB";
  }
  EXPECT_EQ(SlotPool().values, before.values);
  const size_t buckets = SlotPool().buckets;
  SlotMap again;
  for (int32_t key = 0; key < 1000; ++key) again.Get(key, kUnset);
  EXPECT_EQ(SlotPool().buckets, buckets) << "returned blocks are used again";
}

TEST(Slots, AreUnsetOnFirstUseAndReleasedWithTheirObject) {
  RValue text("held");
  {
    ZqObjectBase object(10);
    EXPECT_EQ(object.FindSlot(4), nullptr);
    EXPECT_TRUE(object.GetSlot(4).IsUnset());
    object.GetSlot(4) = text;
    EXPECT_EQ(text.string->refCount, 2);
    ZqObjectBase copy(10);
    copy.CopySlotsFrom(object);
    EXPECT_EQ(copy.GetSlot(4).Text(), "held");
    EXPECT_EQ(text.string->refCount, 3);
    ZqObjectBase defined(10);
    defined.defaultKind = kReal;
    EXPECT_EQ(ValueAsReal(defined.GetSlot(0)), 0);
  }
  EXPECT_EQ(text.string->refCount, 1);
}

TEST(Slots, TheGlobalObjectStartsEmptyEachTime) {
  GlobalObject_Create(5);
  GlobalObject()->GetSlot(1).SetReal(3);
  GlobalObject_Create(5);
  EXPECT_TRUE(GlobalObject()->GetSlot(1).IsUnset());
  GlobalObject_Reset();
  EXPECT_EQ(GlobalObject(), nullptr);
}

} // namespace
} // namespace vesk::test
