#include "Files/Code/Value.h"
#include "tests/runner/code_Report.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

namespace vesk::test {
namespace {

double At(const RValue& array, int64_t index) {
  const RValue* element = ArrayElementForRead(array, index);
  return element ? ValueAsReal(*element) : -999;
}

TEST(ValueArray, GrowsAndFillsWithZero) {
  RValue array("was a text");
  ArrayWrite(array, 3, RValue(7.0));
  EXPECT_EQ(ArrayLength1d(array), 4);
  EXPECT_EQ(At(array, 0), 0);
  EXPECT_EQ(At(array, 3), 7);
  EXPECT_EQ(At(array, 4), -999);
  EXPECT_EQ(array.array->owner, &array);
}

TEST(ValueArray, RowsGrowApart) {
  RValue array;
  ArrayWrite(array, 2, RValue(1.0));
  ArrayWrite(array, 1 * kRowStride + 0, RValue(5.0));
  EXPECT_EQ(ArrayHeight2d(array), 2);
  EXPECT_EQ(ArrayLength2d(array, 0), 3);
  EXPECT_EQ(ArrayLength2d(array, 1), 1);
  EXPECT_EQ(ArrayLength2d(array, 2), 0);
  EXPECT_EQ(At(array, 32000), 5) << "column 32,000 is the next row";
}

TEST(ValueArray, NegativeAndHugePlacesAreRefused) {
  RValue text("kept");
  EXPECT_EQ(ArrayElementForWrite(text, -1), nullptr);
  EXPECT_EQ(text.Text(), "kept");
  EXPECT_TRUE(ReportOf([&] { ArrayWrite(text, 1LL << 40, RValue(1.0)); }).fatal);
  EXPECT_EQ(text.Text(), "kept");
}

TEST(ValueArray, WithoutAnIndexTheVariableIsWrittenAsAWhole) {
  RValue array;
  ArrayWrite(array, 0, RValue(1.0));
  ArrayWrite(array, kNoIndex, RValue("whole"));
  EXPECT_EQ(array.Text(), "whole");
}

TEST(ValueArray, ACopyIsClonedWhenItIsWritten) {
  RValue a;
  ArrayWrite(a, 0, RValue("shared text"));
  ArrayWrite(a, 1, RValue(2.0));
  RValue b(a);
  EXPECT_EQ(b.array, a.array);
  ArrayWrite(b, 1, RValue(9.0));
  EXPECT_NE(b.array, a.array);
  EXPECT_EQ(At(a, 1), 2);
  EXPECT_EQ(At(b, 1), 9);
  EXPECT_EQ(b.array->owner, &b);
  EXPECT_EQ(a.array->refCount, 1);
  EXPECT_EQ(a.array->rows[0].items[0].string, b.array->rows[0].items[0].string) << "texts stay shared";
}

TEST(ValueArray, TheOwnerWritesInPlaceAndItsSharersSeeIt) {
  RValue a;
  ArrayWrite(a, 0, RValue(1.0));
  const RValue b(a);
  ArrayWrite(a, 0, RValue(8.0));
  EXPECT_EQ(At(b, 0), 8);
}

TEST(ValueArray, WhenTheOwnerLetsGoTheNextWriterClones) {
  RValue b, c;
  {
    RValue a;
    ArrayWrite(a, 0, RValue(1.0));
    b = a;
    c = a;
  }
  EXPECT_EQ(b.array->owner, nullptr);
  EXPECT_EQ(b.array->refCount, 2);
  ArrayWrite(b, 0, RValue(2.0));
  EXPECT_EQ(At(c, 0), 1);
  ArrayWrite(c, 0, RValue(3.0)); // alone again: in place
  EXPECT_EQ(At(b, 0), 2);
  EXPECT_EQ(At(c, 0), 3);
}

TEST(ValueArray, AnOwnerlessArrayGetsTheNextHolderAsOwner) {
  RValue b;
  {
    RValue a;
    ArrayWrite(a, 0, RValue(1.0));
    b = a;
  }
  const RValue copy(b);
  EXPECT_EQ(b.array->owner, &copy);
}

TEST(ValueArray, AssigningAnElementOfAnArrayToItsHolder) {
  RValue inner;
  ArrayWrite(inner, 0, RValue("deep"));
  RValue a;
  ArrayWrite(a, 0, inner);
  ArrayWrite(a, 1, RValue("beside"));
  inner.SetUndefined();
  a = a.array->rows[0].items[0]; // the old array dies with this
  ASSERT_TRUE(a.IsArray());
  EXPECT_EQ(ArrayElementForRead(a, 0)->Text(), "deep");
  EXPECT_EQ(a.array->owner, &a);
  a = ArrayElementChecked(a, 0);
  EXPECT_EQ(a.Text(), "deep");
}

TEST(ValueArray, AnElementCopiedWithinItsGrowingArray) {
  RValue a;
  ArrayWrite(a, 0, RValue("source"));
  for (int64_t i = 1; i < 200; ++i) ArrayWrite(a, i, ArrayElementChecked(a, i - 1));
  EXPECT_EQ(ArrayElementForRead(a, 199)->Text(), "source");
  EXPECT_EQ(a.array->rows[0].items[0].string->refCount, 200);
  ArrayWrite(a, 5 * kRowStride, ArrayElementChecked(a, 3));
  EXPECT_EQ(ArrayElementForRead(a, 5 * kRowStride)->Text(), "source");
}

TEST(ValueArray, ElementsThatOwnArraysKeepThemWhenTheRowMoves) {
  RValue a;
  {
    RValue inner;
    ArrayWrite(inner, 0, RValue(1.0));
    ArrayWrite(a, 0, inner);
  }                                                        // the element now is the only holder
  ArrayWrite(*ArrayElementForWrite(a, 0), 0, RValue(2.0)); // becomes its own: count 1
  const RValue shared = *ArrayElementForRead(a, 0);
  for (int64_t i = 1; i < 40; ++i) ArrayWrite(a, i, RValue(0.0));
  const RValue* element = ArrayElementForRead(a, 0);
  EXPECT_TRUE(element->array->owner == element || element->array->owner == &shared);
  EXPECT_EQ(element->array->refCount, 2);
}

TEST(ValueArray, AnArrayMayHoldItself) {
  RValue a;
  ArrayWrite(a, 0, RValue(1.0));
  ArrayWrite(a, 1, RValue(2.0));
  ArrayWrite(a, 0, a);
  EXPECT_EQ(a.array, a.array->rows[0].items[0].array);
  EXPECT_EQ(a.array->refCount, 2);
  EXPECT_EQ(ValueAsText(a), "{ ,2 }");
  ArrayWrite(a, 0, RValue(0.0));
  EXPECT_EQ(a.array->refCount, 1);
}

TEST(ValueArray, ReadsOutOfRangeSayWhatWasAsked) {
  RValue number(4.0);
  EXPECT_TRUE(ReportOf([&] {
                ArrayElementChecked(number, 0);
              }).Says("trying to index variable that is not an array"));
  RValue empty;
  ArrayWrite(empty, 0, RValue(0.0));
  --empty.array->rowCount; // as an array without rows
  EXPECT_EQ(ArrayLength1d(empty), 0);
  EXPECT_TRUE(ReportOf([&] {
                ArrayElementChecked(empty, 0);
              }).Says("first index out of bounds request 0 maximum size is 0"));
  ++empty.array->rowCount;
  RValue a;
  ArrayWrite(a, 2, RValue(1.0));
  const Report column = ReportOf([&] { EXPECT_TRUE(ArrayElementChecked(a, 3).IsUndefined()); });
  EXPECT_TRUE(column.Says("second index out of bounds request 0,3 maximum size is 3")) << column.text;
  EXPECT_TRUE(column.fatal);
  EXPECT_TRUE(ReportOf([&] {
                ArrayElementChecked(a, 4 * kRowStride + 1);
              }).Says("first index out of bounds request 4 maximum size is 1"));
  EXPECT_TRUE(ReportOf([&] {
                ArrayElementChecked(a, -2);
              }).Says("second index out of bounds request 0,-2 maximum size is 3"));
  RValue unset;
  unset.kind = kUnset;
  EXPECT_TRUE(ReportOf([&] { ArrayElementForRead(unset, 0); }).Says("ARRAY argument is unset"));
}

TEST(ValueArray, ReadIntoADestination) {
  RValue a, dest("old");
  ArrayWrite(a, 1, RValue("one"));
  EXPECT_TRUE(ArrayReadInto(dest, a, 1));
  EXPECT_EQ(dest.Text(), "one");
  EXPECT_FALSE(ArrayReadInto(dest, a, kRowStride + 2));
  EXPECT_EQ(dest.real, 0);
  EXPECT_TRUE(ArrayRead().failed);
  EXPECT_EQ(ArrayRead().row, 1);
  EXPECT_EQ(ArrayRead().column, 2);
  EXPECT_EQ(ArrayRead().rowCount, 1);
  EXPECT_TRUE(ArrayReadInto(dest, a, kNoIndex));
  EXPECT_EQ(dest.array, a.array);
  EXPECT_EQ(a.array->owner, &a);
  RValue number(3.0);
  EXPECT_TRUE(ArrayReadInto(dest, number, kNoIndex));
  EXPECT_EQ(dest.real, 3);
  EXPECT_TRUE(ReportOf([&] {
                ArrayReadInto(dest, number, 0);
              }).Says("trying to index a variable which is not an array"));
}

// Variables that copy, write and drop arrays at random must act as values do: compared with plain vectors,
// where only the owner's in-place writes are shared.
TEST(ValueArray, RandomSharingNeverLosesOrLeaksAReference) {
  std::mt19937 random(7);
  std::vector<RValue> variables(6);
  for (int step = 0; step < 4000; ++step) {
    RValue& a = variables[random() % variables.size()];
    RValue& b = variables[random() % variables.size()];
    switch (random() % 5) {
    case 0: a = b; break;
    case 1: ArrayWrite(a, static_cast<int64_t>(random() % 9), RValue("text")); break;
    case 2: ArrayWrite(a, static_cast<int64_t>(random() % 3) * kRowStride, RValue(1.0)); break;
    case 3: a = RValue(static_cast<double>(random() % 100)); break;
    default:
      if (a.IsArray() && ArrayLength1d(a) > 0) b = ArrayElementChecked(a, 0);
      break;
    }
    std::map<const RefArray*, int> holders;
    for (const RValue& v : variables)
      if (v.IsArray()) ++holders[v.array];
    for (const auto& [array, count] : holders) {
      ASSERT_EQ(array->refCount, count) << "step " << step;
      bool ownerHolds = array->owner == nullptr;
      for (const RValue& v : variables) ownerHolds = ownerHolds || (array->owner == &v && v.array == array);
      ASSERT_TRUE(ownerHolds) << "an owner that no longer holds it, step " << step;
    }
  }
}

} // namespace
} // namespace vesk::test
