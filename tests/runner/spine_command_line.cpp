#include "Files/Runner/CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace vesk;

TEST(CommandLine, WordsAreSeparatedByBlanksAndQuotesKeepThem) {
  EXPECT_THAT(CommandLine_Words("  -a \"b c\"  d\"e f\"g\t\"\" "),
              testing::ElementsAre("-a", "b c", "de fg", ""));
  EXPECT_TRUE(CommandLine_Words("").empty());
  EXPECT_THAT(CommandLine_Words("\"open end"), testing::ElementsAre("open end"));
  const std::vector<std::string> words = {"-game", "my game.win", "", "x"};
  EXPECT_EQ(CommandLine_Words(CommandLine_Join(words)), words);
}

TEST(CommandLine, EveryOptionHasItsEffect) {
  const struct {
    const char* line;
    bool CommandLine::*flag;
  } flags[] = {
      {"-trace", &CommandLine::trace},
      {"-vmtrace", &CommandLine::extendedTrace},
      {"-ext", &CommandLine::noExternalCalls},
      {"-noerrors", &CommandLine::noErrors},
      {"-oldexec", &CommandLine::noExecution},
      {"-noaudio", &CommandLine::noAudio},
      {"-inawindow", &CommandLine::inAWindow},
      {"-software", &CommandLine::softwareVertices},
      {"-intel", &CommandLine::manualClear},
      {"-networkdebug", &CommandLine::networkLog},
      {"-vanillaGFX", &CommandLine::vanillaGraphics},
      {"-headless", &CommandLine::headless},
      {"-multivb", &CommandLine::multipleVertexBuffers},
      {"-novb", &CommandLine::noVertexBuffers},
      {"-compresstextures", &CommandLine::compressTextures},
      {"-manualvsync", &CommandLine::alternateSync},
      {"-nodirectinput", &CommandLine::noDirectInput},
  };
  for (const auto& row : flags) {
    const CommandLine options = CommandLine_Parse(row.line, "");
    int set = 0;
    for (const auto& other : flags) set += options.*other.flag;
    EXPECT_TRUE(options.*row.flag) << row.line;
    EXPECT_EQ(set, 1) << row.line; // and no other
  }
  const struct {
    const char* option;
    std::string CommandLine::*text;
  } texts[] = {
      {"-game", &CommandLine::game},
      {"-exit", &CommandLine::exitGame},
      {"-dir", &CommandLine::directory},
      {"-record", &CommandLine::record},
      {"-playback", &CommandLine::playback},
      {"-output", &CommandLine::output},
      {"-debugoutput", &CommandLine::debugOutput},
  };
  for (const auto& row : texts) {
    EXPECT_EQ(CommandLine_Parse(std::string(row.option) + " \"a b\" -trace", "").*row.text, "a b");
    EXPECT_TRUE(CommandLine_Parse(std::string(row.option) + " x -trace", "").trace);
    EXPECT_EQ(CommandLine_Parse(row.option, "").*row.text, ""); // nothing left to take
  }
}

TEST(CommandLine, OptionsCompareWithCaseAndUnknownWordsAreSkipped) {
  const CommandLine options = CommandLine_Parse("-Trace -HEADLESS word -vanillagfx -trac -trace", "");
  EXPECT_TRUE(options.trace);
  EXPECT_FALSE(options.headless);
  EXPECT_FALSE(options.vanillaGraphics);
  EXPECT_FALSE(options.extendedTrace);
}

TEST(CommandLine, AGameOnTheLineReplacesTheOneThatWasFound) {
  EXPECT_EQ(CommandLine_Parse("", "data.win").game, "data.win");
  EXPECT_EQ(CommandLine_Parse("-game a -game b", "data.win").game, "b");
  EXPECT_EQ(CommandLine_Parse("-game", "data.win").game, "");
}

TEST(CommandLine, DebugModeNeedsThatNoGameIsKnownYet) {
  EXPECT_TRUE(CommandLine_Parse("-debug", "").debug);
  EXPECT_EQ(CommandLine_Parse("-debug", "").overlay, 2u);
  EXPECT_FALSE(CommandLine_Parse("-debug", "data.win").debug);
  EXPECT_FALSE(CommandLine_Parse("-game x -debug", "").debug);
  EXPECT_TRUE(CommandLine_Parse("-debug -game x", "").debug);
  EXPECT_EQ(CommandLine_Parse("-audiodebug -audiodebug -debug", "").overlay, 18u);
}

TEST(CommandLine, NumbersAreReadAndTheMarginIsNeverNegative) {
  EXPECT_FALSE(CommandLine_Parse("", "").sleepMargin.has_value());
  EXPECT_EQ(CommandLine_Parse("-sleepmargin 7", "").sleepMargin, 7);
  EXPECT_EQ(CommandLine_Parse("-sleepmargin -7", "").sleepMargin, 0);
  EXPECT_EQ(CommandLine_Parse("-sleepmargin many", "").sleepMargin, 0);
  const CommandLine options = CommandLine_Parse("-profiledump out.txt 60 -trace", "");
  EXPECT_EQ(options.profileFile, "out.txt");
  EXPECT_EQ(options.profileFrames, 60);
  EXPECT_TRUE(options.trace);
}

TEST(CommandLine, ALaunchWordKeepsItsRest) {
  EXPECT_EQ(CommandLine_Parse("fbplayer:level/one/", "").launchParameter, "level/one");
  EXPECT_EQ(CommandLine_Parse("fbplayer://level//", "").launchParameter, "level/");
  EXPECT_EQ(CommandLine_Parse("xfbplayer:level", "").launchParameter, "");
}
