#include "Files/Code/Slots.h"
#include "Files/Code/Value.h"
#include "tests/runner/code_Report.h"

#include <gtest/gtest.h>

#include <limits>

namespace vesk::test {
namespace {

RValue OfKind(uint32_t kind, int64_t payload = 0) {
  RValue value;
  value.int64 = payload;
  value.kind = kind;
  return value;
}
RValue Int32(int32_t number) {
  RValue value;
  value.SetNumber(kInt32, number);
  return value;
}
RValue Int64(int64_t number) {
  RValue value;
  value.SetNumber(kInt64, number);
  return value;
}
RValue Bool(bool on) {
  RValue value(on ? 1.0 : 0.0);
  value.kind = kBool;
  return value;
}
RValue ArrayOf(std::initializer_list<RValue> elements) {
  RValue array;
  int64_t at = 0;
  for (const RValue& element : elements) ArrayWrite(array, at++, element);
  return array;
}

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(ValueConversion, TextReadsAsEachNumberType) {
  const RValue text("3.7");
  EXPECT_EQ(ValueAsReal(text), 3.7);
  EXPECT_EQ(ValueAsInt32(text), 3);
  EXPECT_TRUE(ValueAsBool(text));
  EXPECT_EQ(ValueAsReal(RValue("  12abc")), 12);
  EXPECT_EQ(ValueAsReal(RValue("abc")), 0);
  EXPECT_EQ(ValueAsPtr(RValue("ff")), reinterpret_cast<void*>(0xff));
  const RValue absent(static_cast<const char*>(nullptr));
  EXPECT_EQ(absent.string->length, 0u);
  EXPECT_EQ(absent.string->text, nullptr);
  EXPECT_EQ(absent.Text(), "");
  EXPECT_EQ(ValueAsReal(absent), 0);
  EXPECT_FALSE(ValueAsBool(absent));
}

TEST(ValueConversion, NumbersTruncateTowardZero) {
  EXPECT_EQ(ValueAsInt32(RValue(2.9)), 2);
  EXPECT_EQ(ValueAsInt32(RValue(-2.9)), -2);
  EXPECT_EQ(ValueAsInt32(Int64(0x100000005)), 5);
  EXPECT_EQ(ValueAsInt64(RValue(1e15)), 1000000000000000);
  EXPECT_EQ(ValueAsInt64(Int32(-7)), -7);
  EXPECT_EQ(ValueAsInt64(RValue(1e300)), std::numeric_limits<int64_t>::min());
  EXPECT_EQ(ValueAsInt32(RValue(kNaN)), 0);
  EXPECT_EQ(RoundToInt32(0.5), 0);
  EXPECT_EQ(RoundToInt32(1.5), 2);
  EXPECT_EQ(RoundToInt32(-1.5), -2);
}

TEST(ValueConversion, TruthIsAboveOneHalf) {
  EXPECT_FALSE(ValueAsBool(RValue(0.5)));
  EXPECT_TRUE(ValueAsBool(RValue(0.51)));
  EXPECT_FALSE(ValueAsBool(RValue(-3.0)));
  EXPECT_FALSE(ValueAsBool(RValue("0.5")));
  EXPECT_TRUE(ValueAsBool(Int32(1)));
  EXPECT_FALSE(ValueAsBool(Int32(-1)));
  EXPECT_FALSE(ValueAsBool(RValue()));
}

TEST(ValueConversion, AnArrayStandsForItsFirstElement) {
  EXPECT_EQ(ValueAsReal(ArrayOf({RValue("4.5"), RValue(9.0)})), 4.5);
  const RValue nested = ArrayOf({ArrayOf({RValue(6.0)})});
  EXPECT_EQ(ValueAsInt32(nested), 6);
  RValue empty = ArrayCreate(0, RValue());
  EXPECT_EQ(ValueAsReal(empty), 0);
  EXPECT_EQ(ArrayLength1d(empty), 1) << "the element is made";
}

TEST(ValueConversion, AnArrayThatOnlyHoldsItselfIsAnErrorAndNoEndlessLoop) {
  RValue array;
  ArrayWrite(array, 0, RValue(1.0));
  ArrayWrite(array, 0, array);
  EXPECT_TRUE(ReportOf([&] { ValueAsReal(array); }).Says("REAL argument incorrect type 2"));
  EXPECT_EQ(ValueAsText(array), "{  }");
  ArrayWrite(array, 0, RValue(0.0)); // breaks the cycle
}

TEST(ValueConversion, UnfitKindsAreFatalAndNameTheType) {
  struct Case {
    const char* type;
    void (*convert)(const RValue&);
  };
  const Case cases[] = {{"REAL", [](const RValue& v) { ValueAsReal(v); }},
                        {"I32", [](const RValue& v) { ValueAsInt32(v); }},
                        {"I64", [](const RValue& v) { ValueAsInt64(v); }},
                        {"PTR", [](const RValue& v) { ValueAsPtr(v); }},
                        {"bool", [](const RValue& v) { ValueAsBool(v); }}};
  for (const Case& c : cases) {
    const Report wrong = ReportOf([&] { c.convert(OfKind(kIterator)); });
    EXPECT_TRUE(wrong.Says(std::string(c.type) + " argument incorrect type 14")) << wrong.text;
    EXPECT_TRUE(wrong.fatal);
    EXPECT_TRUE(
        ReportOf([&] { c.convert(OfKind(kUnset)); }).Says(std::string(c.type) + " argument is unset"));
  }
  EXPECT_TRUE(ReportOf([] { ValueAsText(OfKind(kUnset)); }).Says("STRING argument is unset"));
}

TEST(ValueConversion, TextOfNumbersHasTwoDecimalsOrNone) {
  EXPECT_EQ(ValueAsText(RValue(12.0)), "12");
  EXPECT_EQ(ValueAsText(RValue(1.5)), "1.50");
  EXPECT_EQ(ValueAsText(RValue(-0.001)), "-0.00");
  EXPECT_EQ(ValueAsText(RValue(1e15)), "1000000000000000");
  EXPECT_EQ(ValueAsText(RValue(1e20)), "100000000000000000000.00");
  EXPECT_EQ(ValueAsText(RValue(kNaN)), "NaN");
  EXPECT_EQ(ValueAsText(Bool(true)), "1");
  EXPECT_EQ(ValueAsText(Int32(-5)), "-5");
  EXPECT_EQ(ValueAsText(Int64(1LL << 40)), "1099511627776");
  EXPECT_EQ(ValueAsText(RValue()), "undefined");
  EXPECT_EQ(ValueAsText(OfKind(kNull)), "null");
  EXPECT_EQ(ValueAsText(RValue(-1e300)).size(), 1 + 301 + 3u);
}

TEST(ValueConversion, TextOfArrays) {
  RValue array = ArrayOf({RValue(1.0), RValue("b"), RValue(2.5)});
  EXPECT_EQ(ValueAsText(array), "{ 1,b,2.50 }");
  ArrayWrite(array, kRowStride, RValue(7.0));
  EXPECT_EQ(ValueAsText(array), "{ 1,b,2.50 }, 7 }");
  EXPECT_EQ(ValueAsText(array), "{ 1,b,2.50 }, 7 }") << "a second conversion visits it again";
}

TEST(ValueConversion, ArgumentsNameFunctionPlaceAndKind) {
  Code().currentFunction = "draw_thing";
  const RValue args[] = {RValue(2.7), RValue("8"), RValue(), RValue(kInfinity), Int64(-1)};
  EXPECT_EQ(ArgAsReal(args, 1), 8);
  EXPECT_EQ(ArgAsInt32(args, 0), 2);
  EXPECT_EQ(ArgAsReal(args, 3), 0) << "no infinities reach a built-in";
  EXPECT_EQ(ArgAsFloat(args, 3), 0);
  EXPECT_EQ(ArgAsUint32(args, 4), 0xFFFFFFFFu);
  EXPECT_EQ(ArgAsString(args, 0), "2.70");
  EXPECT_TRUE(ArgAsBool(args, 0));
  EXPECT_FALSE(ArgAsBool(args, 4));

  EXPECT_TRUE(ReportOf([&] {
                ArgAsReal(args, 2);
              }).Says("draw_thing argument 3 incorrect type (undefined) expecting a Number (ZqGR)"));
  EXPECT_TRUE(ReportOf([&] {
                ArgAsFloat(args, 1);
              }).Says("draw_thing argument 2 incorrect type (string) expecting a Number (ZqGF)"));
  EXPECT_TRUE(ReportOf([&] { ArgAsBool(args, 1); }).Says("(string) expecting a Number (ZqGB)"));
  EXPECT_TRUE(ReportOf([&] { ArgAsString(args, 2); }).Says("(undefined) expecting a String (ZqGS)"));
  EXPECT_TRUE(ReportOf([&] {
                EXPECT_EQ(ArgAsPtrOrInt(args, 1), -1);
              }).Says("(string) expecting a Number or Pointer"));
  const RValue unset = OfKind(kUnset);
  EXPECT_TRUE(ReportOf([&] { ArgAsInt32(&unset, 0); }).Says("(unknown) expecting a Number (ZqGI32)"));
  Code().currentFunction = "";
}

// ---- comparison ----

int Sign(int order) { return order < 0 ? -1 : order > 0 ? 1 : 0; }
int Compare(const RValue& a, const RValue& b, double epsilon = 1e-10) {
  return Sign(CompareValues(a, b, epsilon));
}

TEST(ValueComparison, NumbersWithinTheEpsilonAreEqual) {
  EXPECT_EQ(Compare(RValue(1.0), RValue(1.000005), 1e-5), 0);
  EXPECT_EQ(Compare(RValue(1.0), RValue(1.00002), 1e-5), -1);
  EXPECT_EQ(Compare(RValue(1.00002), RValue(1.0), 1e-5), 1);
  EXPECT_EQ(Compare(Bool(true), RValue(1.0)), 0);
  EXPECT_EQ(Compare(RValue(3.0), Int32(3)), 0);
  EXPECT_EQ(Compare(Int32(3), RValue(3.5)), -1);
  // 32-bit floats can't tell these apart.
  EXPECT_EQ(Compare(RValue(16777217.0), Int32(16777216)), 0);
  EXPECT_EQ(Compare(RValue(3.9), Int64(3)), 0) << "truncated, then exact";
  EXPECT_EQ(Compare(Int64(4), RValue(3.9)), 1);
  EXPECT_EQ(Compare(Int32(-1), Int64(1LL << 40)), -1);
  EXPECT_EQ(Compare(Int32(1), Bool(true)), 0);
  EXPECT_EQ(Compare(Bool(false), Int64(1)), -1);
}

TEST(ValueComparison, TextsCompareByBytes) {
  EXPECT_EQ(Compare(RValue("a"), RValue("b")), -1);
  EXPECT_EQ(Compare(RValue("b"), RValue("a")), 1);
  EXPECT_EQ(Compare(RValue("ab"), RValue("ab")), 0);
  EXPECT_EQ(Compare(RValue("\xC3\xA4"), RValue("z")), 1);
  const RValue absent(static_cast<const char*>(nullptr));
  EXPECT_EQ(Compare(absent, RValue("")), 0);
  EXPECT_EQ(Compare(absent, absent), 0);
  RValue none;
  none.kind = kString;
  none.string = nullptr;
  EXPECT_EQ(Compare(none, RValue("")), 1);
}

TEST(ValueComparison, OtherPairs) {
  EXPECT_EQ(Compare(RValue(), RValue()), 0);
  EXPECT_EQ(Compare(RValue(), RValue(0.0)), 1) << "undefined is no number";
  EXPECT_EQ(Compare(RValue(0.0), RValue()), -1);
  EXPECT_EQ(Compare(RValue(5.0), RValue("5")), -1);
  EXPECT_EQ(Compare(RValue("5"), RValue(5.0)), 1);
  const RValue array = ArrayOf({RValue(1.0)});
  const RValue same(array);
  EXPECT_EQ(Compare(array, same), 0);
  EXPECT_EQ(Compare(array, ArrayOf({RValue(1.0)})), 1);
  EXPECT_EQ(Compare(OfKind(kPtr, 8), OfKind(kPtr, 16)), 1) << "pointers order the other way round";
  EXPECT_EQ(Compare(OfKind(kPtr, 16), OfKind(kPtr, 8)), -1);
}

// ---- arithmetic ----

TEST(ValueArithmetic, TheLeftKindDecides) {
  RValue value(1.5);
  ValueAdd(value, RValue("2.5"));
  EXPECT_EQ(value.real, 4);
  value = Bool(true);
  ValueSubtract(value, RValue(3.0));
  EXPECT_EQ(value.Kind(), kBool);
  EXPECT_EQ(value.real, -2);
  value = Int32(7);
  ValueAdd(value, RValue(2.9));
  EXPECT_EQ(value.Kind(), kInt32);
  EXPECT_EQ(value.int32, 9);
  value = Int32(7);
  ValueMultiply(value, Int64(1LL << 33));
  EXPECT_EQ(value.Kind(), kInt64);
  EXPECT_EQ(value.int64, 7LL << 33);
  value = Int32(7);
  ValueMultiply(value, RValue(0.5));
  EXPECT_TRUE(value.IsReal());
  EXPECT_EQ(value.real, 3.5);
  value = Int32(-7);
  ValueDivide(value, Int32(2));
  EXPECT_EQ(value.int32, -3);
  value = Int64(9);
  ValueDivide(value, RValue(2.0));
  EXPECT_EQ(value.real, 4.5);
  value = RValue(1.0);
  ValueDivide(value, RValue(0.0));
  EXPECT_EQ(value.real, kInfinity);
  value = Int32(std::numeric_limits<int32_t>::min());
  ValueDivide(value, Int32(-1));
  EXPECT_EQ(value.int32, std::numeric_limits<int32_t>::min()) << "wraps, no trap";
}

TEST(ValueArithmetic, TextJoinsTextOnly) {
  RValue value("ab");
  const RValue before(value);
  ValueAdd(value, RValue("cd"));
  EXPECT_EQ(value.Text(), "abcd");
  EXPECT_EQ(before.Text(), "ab");
  ValueAdd(value, value);
  EXPECT_EQ(value.Text(), "abcdabcd");

  value = RValue("x");
  EXPECT_TRUE(ReportOf([&] {
                ValueAdd(value, RValue(2.0));
              }).Says("invalid type for += lhs=x (type=1), rhs=2 (type=0)"));
  EXPECT_TRUE(ReportOf([&] { ValueAddNumber(value, 2); }).Says("unable to add a number to string"));
  EXPECT_TRUE(ReportOf([&] {
                ValueSubtract(value, RValue("y"));
              }).Says("invalid type for -= lhs=x (type=1), rhs=y (type=1)"));
  EXPECT_EQ(value.Text(), "x");
}

TEST(ValueArithmetic, UnfitKindsAreReportedAndChangeNothing) {
  RValue value;
  EXPECT_TRUE(ReportOf([&] {
                ValueMultiply(value, RValue(2.0));
              }).Says("invalid type for *= lhs=undefined (type=5), rhs=2 (type=0)"));
  EXPECT_TRUE(ReportOf([&] { ValueDivide(value, RValue(2.0)); }).Says("invalid type for /="));
  EXPECT_TRUE(ReportOf([&] { ValueIncrement(value); }).Says("invalid type for ++"));
  EXPECT_TRUE(ReportOf([&] { ValueDecrement(value); }).Says("invalid type for --"));
  EXPECT_TRUE(value.IsUndefined());
  value = Int64(4);
  ValueIncrement(value);
  EXPECT_EQ(value.int64, 5);
  value = RValue(0.5);
  ValueDecrement(value);
  EXPECT_EQ(value.real, -0.5);
  value = Int32(3);
  EXPECT_TRUE(ReportOf([&] { ValueDivide(value, Int32(0)); }).fatal);
}

// ---- lifetime ----

TEST(ValueLifetime, NeedsReleaseIsTrueForKindsOneToFour) {
  for (uint32_t kind = 0; kind < 20; ++kind) {
    RValue value;
    value.kind = kind;
    EXPECT_EQ(value.NeedsRelease(), kind >= 1 && kind <= 4) << kind;
    value.kind = kUndefined;
  }
  RValue value;
  value.kind = kUnset;
  EXPECT_FALSE(value.NeedsRelease());
}

TEST(ValueLifetime, CopiesShareTheStringAndCount) {
  RValue first("text");
  EXPECT_EQ(first.string->refCount, 1);
  {
    const RValue second(first);
    RValue third;
    third = second;
    EXPECT_EQ(third.string, first.string);
    EXPECT_EQ(first.string->refCount, 3);
    const RValue moved(std::move(third));
    EXPECT_TRUE(third.IsUndefined());
    EXPECT_EQ(first.string->refCount, 3);
  }
  EXPECT_EQ(first.string->refCount, 1);
}

TEST(ValueLifetime, AnOwnedPointerIsDeletedOnceThroughItsDestructor) {
  static int deleted; // counts this test's objects only
  deleted = 0;
  struct Counted : ZqObjectBase {
    Counted() : ZqObjectBase(0) {}
    ~Counted() override { ++deleted; }
  };
  {
    RValue owner;
    owner.object = new Counted;
    owner.kind = kPtr;
    owner.flags = kOwnsObject;
    const RValue borrowed(owner);
    EXPECT_EQ(borrowed.ptr, owner.ptr);
  }
  EXPECT_EQ(deleted, 1);
}

} // namespace
} // namespace vesk::test
