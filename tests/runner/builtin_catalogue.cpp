// The registry keeps what the catalogue promises.
#include "Files/Function/Function.h"
#include "Files/Runner/BuiltinCatalogue.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vesk::test {
namespace {

class BuiltinCatalogue : public ::testing::Test {
protected:
  BuiltinCatalogue() { Function_Reset(); }
  ~BuiltinCatalogue() override { Function_Reset(); }
};

TEST_F(BuiltinCatalogue, EverythingPromisedIsInTheRegistryWithItsArguments) {
  Builtin_RegisterAll();
  for (const std::string& finding : Builtin_Check()) ADD_FAILURE() << finding;
  EXPECT_GT(Builtin_Catalogue().size(), 500u);
}

TEST_F(BuiltinCatalogue, TheCheckNamesWhatIsMissingDiffersOrShouldNotBeThere) {
  const BuiltinFunction nothing = [](RValue&, CInstance*, CInstance*, int, RValue*) {};
  Function_Add("abs", nothing, 2);
  Function_Add("font_add", nothing, 4);
  const std::vector<std::string> findings = Builtin_Check();
  const auto says = [&](const std::string& text) {
    return std::find(findings.begin(), findings.end(), text) != findings.end();
  };
  EXPECT_TRUE(says("abs takes 2 arguments, promised are 1"));
  EXPECT_TRUE(says("font_add is said to be left out, but it is there"));
  EXPECT_TRUE(says("sign is missing"));
  EXPECT_NE(Builtin_List().find("not implemented"), std::string::npos);
}

} // namespace
} // namespace vesk::test
