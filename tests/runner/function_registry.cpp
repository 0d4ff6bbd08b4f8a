#include "Files/Function/Function.h"
#include "Files/Function/Function_Array.h"
#include "Files/Function/Function_Math.h"
#include "Files/Function/Function_String.h"
#include "Files/Script/Script.h"
#include "tests/runner/code_Report.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace vesk::test {
namespace {

double First(double a, double) { return a; }
double Second(double, double b) { return b; }
std::string Describe(CInstance* self, std::string_view text, std::optional<int32_t> number, Args rest) {
  return std::string(self ? "self " : "none ") + std::string(text) + " " +
         (number ? std::to_string(*number) : "-") + " " + std::to_string(rest.size());
}
void Nothing() {}

class Registry : public ::testing::Test {
protected:
  Registry() {
    Function_Reset();
    Script_Reset();
  }
  ~Registry() override {
    Function_Reset();
    Script_Reset();
  }
  static RValue Call(const char* name, std::vector<RValue> args) {
    int32_t id = 0;
    EXPECT_TRUE(Function_Find(name, id)) << name;
    RValue result("before");
    CallBuiltin(nullptr, nullptr, result, static_cast<int>(args.size()), id, args.data());
    return result;
  }
};

TEST_F(Registry, TheFirstOfANameWins) {
  const BuiltinRow rows[] = {Builtin<&First>("pick"), Builtin<&Second>("pick"), Builtin<&Nothing>("nothing")};
  Function_Add(rows);
  EXPECT_EQ(Function_Count(), 3);
  EXPECT_EQ(Call("pick", {RValue(1.0), RValue(2.0)}).real, 1);
  EXPECT_TRUE(Call("nothing", {}).IsUndefined());
  int32_t id = 5;
  EXPECT_FALSE(Function_Find("", id));
  EXPECT_EQ(id, -1);
  EXPECT_FALSE(Function_Find("unknown", id));
  EXPECT_EQ(Function_ArgumentCount(0), 2);
  EXPECT_STREQ(Function_Name(2), "nothing");
  EXPECT_STREQ(Function_Name(3), "");
}

TEST_F(Registry, ScriptsHideExtensionsAndExtensionsHideBuiltins) {
  const BuiltinRow row[] = {Builtin<&First>("same")};
  Function_Add(row);
  int32_t id = 0;
  EXPECT_TRUE(Function_Find("same", id));
  EXPECT_EQ(id, 0);
  Function_AddExtension("same",
                        [](RValue& result, CInstance*, CInstance*, int, RValue*) { result.SetReal(77); });
  EXPECT_TRUE(Function_Find("same", id));
  EXPECT_EQ(id, 500000);
  EXPECT_EQ(Call("same", {}).real, 77);
  Script_AddHole();
  Script_Add("same", 0);
  EXPECT_TRUE(Function_Find("same", id));
  EXPECT_EQ(id, 100001);
}

TEST_F(Registry, TheDescriptorsTableIsFilledByName) {
  const BuiltinRow rows[] = {Builtin<&First>("one"), Builtin<&Second>("two")};
  Function_Add(rows);
  FunctionEntry table[] = {{"two"}, {"lost"}, {"one"}};
  std::string missing;
  EXPECT_FALSE(Function_Resolve(table, missing));
  EXPECT_EQ(missing, "lost");
  EXPECT_EQ(table[0].id, 1);
  EXPECT_EQ(table[1].id, -1);
  EXPECT_EQ(table[2].id, 0);
}

TEST_F(Registry, ArgumentsAreUnpackedCheckedAndNeverReleased) {
  const BuiltinRow rows[] = {Builtin<&Describe>("describe"), Builtin<&Second>("second")};
  Function_Add(rows);
  const RValue text("words");
  EXPECT_EQ(Call("describe", {text}).Text(), "none words - 0");
  EXPECT_EQ(Call("describe", {text, RValue("12"), RValue(1.0), RValue(2.0)}).Text(), "none words 12 2");
  EXPECT_EQ(text.string->refCount, 1);
  const Report wrong = ReportOf([] { Call("second", {RValue(1.0), RValue()}); });
  EXPECT_TRUE(wrong.Says("second argument 2 incorrect type (undefined) expecting a Number (ZqGR)"))
      << wrong.text;
  const Report missing = ReportOf([] { Call("second", {RValue(1.0)}); });
  EXPECT_TRUE(missing.Says("second argument 2 incorrect type (undefined)")) << missing.text;
  const Report unknown = ReportOf([] {
    RValue result("before");
    CallBuiltin(nullptr, nullptr, result, 0, 4711, nullptr);
    EXPECT_TRUE(result.IsUndefined());
  });
  EXPECT_TRUE(unknown.Says("Call of a built-in that does not exist (id 4711)")) << unknown.text;
  EXPECT_FALSE(unknown.fatal);
}

TEST_F(Registry, TheCurrentFunctionIsRestoredAfterACall) {
  static std::string seen; // written by the built-in, which has no state of its own
  Function_Add(
      "outer_one",
      [](RValue&, CInstance*, CInstance*, int, RValue*) {
        int32_t id = 0;
        Function_Find("inner_one", id);
        RValue result;
        CallBuiltin(nullptr, nullptr, result, 0, id, nullptr);
        seen += Code().currentFunction;
      },
      0);
  Function_Add(
      "inner_one",
      [](RValue&, CInstance*, CInstance*, int, RValue*) {
        seen += std::string(Code().currentFunction) + " ";
      },
      0);
  seen.clear();
  Call("outer_one", {});
  EXPECT_EQ(seen, "inner_one outer_one");
  EXPECT_STREQ(Code().currentFunction, "");
}

TEST_F(Registry, FamiliesHaveUniqueNamesWithAFunctionEach) {
  Function_AddMath();
  Function_AddString();
  Function_AddArray();
  ASSERT_GT(Function_Count(), 80);
  for (int32_t i = 0; i < Function_Count(); ++i) {
    int32_t id = -1;
    EXPECT_TRUE(Function_Find(Function_Name(i), id));
    EXPECT_EQ(id, i) << Function_Name(i) << " stands twice";
    EXPECT_LT(std::string(Function_Name(i)).size(), 64u);
  }
}

// ---- arrays and kinds through the registry ----

TEST_F(Registry, KindsAndConversions) {
  Function_AddArray();
  Function_AddString();
  EXPECT_EQ(Call("is_undefined", {RValue()}).real, 1);
  EXPECT_EQ(Call("is_real", {RValue("1")}).real, 0);
  EXPECT_EQ(Call("typeof", {RValue("1")}).Text(), "string");
  EXPECT_EQ(Call("typeof", {Call("int64", {RValue("12x")})}).Text(), "int64");
  EXPECT_EQ(Call("typeof", {Call("bool", {RValue(0.7)})}).Text(), "bool");
  EXPECT_EQ(Call("typeof", {Call("ptr", {RValue("1f")})}).Text(), "ptr");
  RValue unset;
  unset.kind = kUnset;
  EXPECT_EQ(Call("typeof", {unset}).Text(), "unknown");
  EXPECT_EQ(Call("real", {RValue("3.5")}).real, 3.5);
  EXPECT_EQ(Call("string", {RValue(3.5)}).Text(), "3.50");
}

TEST_F(Registry, ArraysAreWrittenByReference) {
  Function_AddArray();
  RValue a = Call("array_create", {RValue(3), RValue("x")});
  EXPECT_EQ(Call("array_length_1d", {a}).real, 3);
  const RValue sharer(a);
  Call("array_set", {a, RValue(5), RValue(2.0)});
  EXPECT_EQ(array_length_1d(sharer), 6) << "no clone";
  EXPECT_EQ(Call("array_get", {a, RValue(5)}).real, 2);
  Call("array_set", {a, RValue(1), RValue(0), RValue(4.0)});
  EXPECT_EQ(Call("array_height_2d", {a}).real, 2);
  EXPECT_EQ(Call("array_length_2d", {a, RValue(1)}).real, 1);
  EXPECT_EQ(a.array->owner, &a);
  EXPECT_EQ(a.array->refCount, 2);

  RValue b = Call("array_create", {RValue(2), RValue(7.0)});
  Call("array_copy", {b, RValue(1), b, RValue(0), RValue(99)});
  EXPECT_EQ(array_length_1d(b), 3);
  RValue c = Call("array_create", {RValue(3), RValue(7.0)});
  EXPECT_EQ(Call("array_equals", {b, c}).real, 1);
  Call("array_set", {c, RValue(0), RValue(8.0)});
  EXPECT_EQ(Call("array_equals", {b, c}).real, 0);
  EXPECT_EQ(Call("array_equals", {b, RValue(1.0)}).real, 0);
  EXPECT_FALSE(ReportOf([&] { Call("array_set", {RValue(1.0), RValue(0), RValue(0)}); }).text.empty());
  EXPECT_FALSE(ReportOf([&] { Call("array_create", {RValue(1000000)}); }).text.empty());
}

} // namespace
} // namespace vesk::test
