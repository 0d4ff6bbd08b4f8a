#include "Files/Code/BuiltinVariables.h"
#include "Files/Code/Code.h"
#include "Files/Code/Events.h"
#include "Files/Function/Function.h"
#include "Files/Script/Script.h"
#include "tests/runner/SmallGame.h"
#include "tests/runner/code_Report.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace vesk::test {
namespace {

constexpr Slot hp{3};

RValue& AddUp(CInstance*, CInstance*, RValue& result, int argc, RValue** args) {
  result.SetReal(0);
  for (int i = 0; i < argc; ++i) ValueAdd(result, *args[i]);
  return result;
}
RValue& Missing(CInstance*, CInstance*, RValue& result, int, RValue** args) {
  result = *args[7]; // more than it got
  return result;
}
RValue& ReadsArguments(CInstance*, CInstance*, RValue& result, int, RValue**) {
  RValue value;
  result.SetString("");
  for (const char* name : {"argument0", "argument1", "argument_count"}) {
    Variable_GetValue(nullptr, BuiltinVariables_Find(name), kNoIndex, value);
    result.SetString(std::string(result.Text()) + ValueAsText(value) + ";");
  }
  Variable_GetValue(nullptr, BuiltinVariables_Find("argument"), 99, value); // as argument[0]
  result.SetString(std::string(result.Text()) + ValueAsText(value));
  return result;
}
RValue& Nested(CInstance* self, CInstance* other, RValue& result, int, RValue** args) {
  RValue inner, argument("inner");
  Script_Perform(2, self, other, 1, inner, &argument);
  result.SetString(ValueAsText(*args[0]) + "|");
  RValue again;
  Variable_GetValue(nullptr, BuiltinVariables_Find("argument0"), kNoIndex, again);
  result.SetString(std::string(result.Text()) + ValueAsText(again));
  return result;
}
RValue& Fails(CInstance*, CInstance*, RValue& result, int, RValue**) {
  ShowError("broken");
  return result;
}

class ScriptCalls : public ::testing::Test {
protected:
  ScriptCalls() {
    Script_Reset();
    Function_Reset();
    BuiltinVariables_Init();
    Code().table = table;
    Script_Add("add_up", 0);
    Script_AddHole();
    Script_Add("reads_arguments", 2);
    Script_Add("missing", 1);
    Script_Add("nested", 3);
    Script_Add("fails", 4);
    std::string error;
    EXPECT_TRUE(Script_Prepare({}, error)) << error;
  }
  ~ScriptCalls() override {
    Script_Reset();
    Function_Reset();
    Code_Reset();
    Error_Reset();
  }
  const std::array<CodeEntry, 5> table{{{"fbl_Script_add_up", {}, AddUp},
                                        {"fbl_Script_missing", {}, Missing},
                                        {"fbl_Script_reads_arguments", {}, ReadsArguments},
                                        {"fbl_Script_nested", {}, Nested},
                                        {"fbl_Script_fails", {}, Fails}}};
};

TEST_F(ScriptCalls, RunByIndexWithTheirArguments) {
  RValue args[] = {RValue(1.0), RValue(2.5)}, result("old");
  EXPECT_TRUE(Script_Perform(0, nullptr, nullptr, 2, result, args));
  EXPECT_EQ(result.real, 3.5);
  for (const int32_t none : {-1, 1, 6, 1000})
    EXPECT_FALSE(Script_Perform(none, nullptr, nullptr, 0, result, args));
  EXPECT_TRUE(Script_Perform(3, nullptr, nullptr, 2, result, args));
  EXPECT_TRUE(result.IsUndefined());
}

TEST_F(ScriptCalls, ArgumentVariablesBelongToTheRunningScript) {
  RValue args[] = {RValue("outer"), RValue(2.0)}, result;
  Script_Perform(2, nullptr, nullptr, 2, result, args);
  EXPECT_EQ(result.Text(), "outer;2;2;outer");
  Script_Perform(4, nullptr, nullptr, 1, result, args);
  EXPECT_EQ(result.Text(), "outer|outer") << "an inner call leaves the outer one its arguments";
  RValue out;
  EXPECT_FALSE(Variable_GetValue(nullptr, BuiltinVariables_Find("argument0"), kNoIndex, out));
}

TEST_F(ScriptCalls, ScriptExecuteIsABuiltinWithItsOwnId) {
  int32_t id = 0;
  EXPECT_TRUE(Function_Find("script_execute", id));
  EXPECT_EQ(id, 499999);
  RValue args[] = {RValue(0), RValue(4.0), RValue(5.0)}, result;
  CallBuiltin(nullptr, nullptr, result, 3, id, args);
  EXPECT_EQ(result.real, 9);
  EXPECT_TRUE(Function_Find("add_up", id));
  EXPECT_EQ(id, 100000);
  CallBuiltin(nullptr, nullptr, result, 2, id, args + 1);
  EXPECT_EQ(result.real, 9);
  args[0] = RValue(77);
  EXPECT_EQ(ReportOf([&] { CallBuiltin(nullptr, nullptr, result, 1, 499999, args); }).text, "");
  EXPECT_TRUE(result.IsUndefined());
}

TEST_F(ScriptCalls, ACapturedErrorIsPrefixedWithTheScript) {
  Error().capture = true;
  Error().captured = false;
  RValue result;
  EXPECT_TRUE(Script_Perform(5, nullptr, nullptr, 0, result, nullptr));
  EXPECT_TRUE(Error().captured);
  const std::string& text = Error().capturedText;
  EXPECT_TRUE(text.starts_with("In script fails:\n") && text.size() > 17) << text;
  const CCode code(4);
  EXPECT_FALSE(Code_Execute(nullptr, nullptr, &code, result));
  EXPECT_FALSE(Code_ExecuteMarking(nullptr, nullptr, &code, result));
  EXPECT_EQ(result.Text(), "ERROR");
  EXPECT_FALSE(Error().occurred);
  Error().showBox = false;
  EXPECT_FALSE(Code_ExecuteReporting(nullptr, nullptr, &code, result));
  EXPECT_NE(Error().lastReport.find(Error().capturedText), std::string::npos);
  EXPECT_EQ(Error().fatalCount, 0);
}

TEST_F(ScriptCalls, AScriptWithoutFunctionStopsTheStart) {
  Script_Add("lost", 40);
  std::string error;
  EXPECT_FALSE(Script_Prepare({}, error));
  EXPECT_EQ(error.rfind("COMPILATION ERROR in Script: lost\n", 0), 0u) << error;
}

TEST_F(ScriptCalls, StartupCodeRunsInOrder) {
  const std::vector<int32_t> startup{4};
  std::string error;
  EXPECT_TRUE(ReportOf([&] { EXPECT_TRUE(Script_Prepare(startup, error)); }).Says("broken"));
  const std::vector<int32_t> bad{99};
  EXPECT_FALSE(Script_Prepare(bad, error));
}

TEST(CodeObjects, CountAndRunWhatTheyName) {
  static const std::array<CodeEntry, 1> table{{{"fbl_only", {}, AddUp}}};
  Code().table = table;
  const int32_t before = Code().codeCount;
  RValue result(5.0);
  {
    const CCode named(0), none(-1), outside(7), constant(RValue("fixed"));
    EXPECT_EQ(Code().codeCount, before + 2);
    EXPECT_EQ(named.Kind(), 1);
    EXPECT_STREQ(named.Name(), "fbl_only");
    EXPECT_EQ(none.Kind(), 0);
    EXPECT_EQ(outside.Kind(), 0);
    EXPECT_TRUE(Code_Execute(nullptr, nullptr, &none, result));
    EXPECT_TRUE(Code_Execute(nullptr, nullptr, nullptr, result));
    EXPECT_EQ(result.real, 5);
    EXPECT_TRUE(Code_Execute(nullptr, nullptr, &constant, result));
    EXPECT_EQ(result.Text(), "fixed");
    Code().execute = false;
    EXPECT_TRUE(Code_Execute(nullptr, nullptr, &named, result));
    EXPECT_EQ(result.Text(), "fixed") << "nothing runs";
    Code().execute = true;
    EXPECT_TRUE(Code_Execute(nullptr, nullptr, &named, result));
    EXPECT_EQ(result.real, 0);
  }
  EXPECT_EQ(Code().codeCount, before);
  Code_Reset();
}

TEST(CodeFrames, TheReportListsThemFromTheInside) {
  const DebugFrame outer("outer_event");
  const Report report = ReportOf([] {
    DebugFrame inner("inner_script");
    inner.line = 12;
    ShowError("stop");
  });
  const size_t first = report.text.find("called from - inner_script (line 12)\n");
  const size_t second = report.text.find("called from - outer_event\n");
  EXPECT_NE(first, std::string::npos);
  EXPECT_NE(second, std::string::npos);
  EXPECT_LT(first, second);
  EXPECT_EQ(FrameHead(), &outer);
}

TEST(CodeEvents, InheritedAndUserEventsRunOnTheSamePair) {
  SmallGame game;
  const int base = game.Object("base");
  const int middle = game.Object("middle", {.parent = base});
  const int child = game.Object("child", {.parent = middle});
  game.On(base, ev_other, ev_user(3), [](Self self, Self other) {
    Log("base" + std::to_string(self == other));
    event_inherited(self); // no parent: nothing
  });
  game.On(child, ev_other, ev_user(3), [](Self self, Self other) {
    Log("child");
    event_inherited(self, other);
  });
  game.On(base, ev_other, ev_user(0), [](Self self, Self) { self[hp] -= 1; });
  game.Start();
  Self self(Instance_Find(instance_create(0, 0, child)));
  Self stranger(Instance_Find(instance_create(0, 0, base)));
  event_user(self, 3);
  EXPECT_EQ(Events(), "child base1");
  event_user(self, 3, stranger);
  EXPECT_EQ(Events(), "child base0");
  event_perform_object(self, base, ev_other, ev_user(3));
  EXPECT_EQ(Events(), "base1");
  event_perform(self, ev_other, ev_user(9));
  EXPECT_EQ(Events(), "");
  self[hp] = 5;
  event_user(self, 0);
  EXPECT_EQ(self[hp], 4);
}

} // namespace
} // namespace vesk::test
