// The report path, word for word.
#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Code/Code.h"
#include "Files/Room/Room.h"
#include "Files/Run/Timing.h"
#include "Platform/Files.h"
#include "Platform/HandDriven.h"

#include <gtest/gtest.h>

using namespace vesk;

namespace {

const std::string kDashes = std::string(92, '-') + "\n";
const std::string kHashes = std::string(92, '#') + "\n";

class Reports : public testing::Test {
protected:
  Reports() {
    Platform_Set(&hand.Interfaces());
    Error_Reset();
    Error().runningEvent = nullptr;
    Room_Reset();
    auto console = std::make_unique<TErrStreamConsole>();
    log = console.get();
    Consoles().error = std::move(console);
  }
  ~Reports() override {
    Error_Reset();
    Error().runningEvent = nullptr;
    Room_Reset();
    Console_Reset();
    Platform_Set(nullptr);
  }
  CHandDrivenPlatform hand;
  TErrStreamConsole* log = nullptr;
};

bool CoinStep(std::string& event, std::string& object, int& action) {
  event = "Step Event";
  object = "obj_coin";
  action = 1;
  return true;
}

} // namespace

TEST_F(Reports, AnErrorOfAnEventNamesTheWholeCallChain) {
  Error().runningEvent = &CoinStep;
  DebugFrame outer("fbl_Object_obj_coin_Step_0");
  outer.line = 12;
  DebugFrame middle("fbl_Script_scr_move");
  middle.line = -1;
  DebugFrame inner("fbl_Script_scr_near");
  inner.line = 3;
  ShowError("no such %s: %d", "thing", 7);
  const std::string expected = kDashes +
                               "called from - fbl_Script_scr_near (line 3)\n"
                               "called from - fbl_Script_scr_move\n"
                               "called from - fbl_Object_obj_coin_Step_0 (line 12)\n" +
                               kHashes +
                               "FATAL ERROR in\naction number 1\nof Step Event\nfor object obj_coin:\n\n\n"
                               "no such thing: 7"
                               " at fbl_Script_scr_near (line 3) - <unknown source line>\n" +
                               kHashes;
  EXPECT_EQ(Error().last, expected);
  EXPECT_EQ(log->Text(), "ERROR!!! :: " + expected + "\n");
  EXPECT_TRUE(Error().occurred);
  EXPECT_TRUE(Error().inError);
  EXPECT_EQ(Error().fatalCount, 1);
  EXPECT_EQ(Rooms().request, RoomRequestAbortGame);
  Message message;
  ASSERT_TRUE(hand.messages.Next(message));
  EXPECT_EQ(message.kind, MessageKind::Quit);
}

TEST_F(Reports, AnErrorOutsideEventsIsHeadedByItsContext) {
  Error().contextLine = "Loading levels";
  ReportError(std::string_view("a note"), false);
  EXPECT_EQ(Error().last, kDashes + kHashes + "Loading levels\n\n\na note\n" + kHashes);
  EXPECT_EQ(Rooms().request, kNoRoomRequest); // the user chose to ignore it
  EXPECT_FALSE(Error().inError);
  DebugFrame frame("fbl_Script_scr_load");
  frame.line = -1;
  Error().contextLine.clear();
  ReportError(std::string_view("again"), false);
  EXPECT_EQ(Error().last, kDashes + "called from - fbl_Script_scr_load\n" + kHashes +
                              "fbl_Script_scr_load\n\n\nagain\nat fbl_Script_scr_load\n" + kHashes);
}

TEST_F(Reports, ShadersHaveTheirOwnHead) {
  ReportShaderError(ShaderStage::kVertex, "sha_water\nline 3: what?");
  EXPECT_EQ(Error().last,
            kDashes + kHashes +
                "FATAL ERROR in Vertex Shader compilation\n\nShaderName: sha_water\nline 3: what?" + kHashes);
  ReportShaderError(ShaderStage::kFragment, "sha_water");
  EXPECT_NE(Error().last.find("FATAL ERROR in Fragment Shader compilation\n\nShaderName: sha_water"),
            std::string::npos);
}

TEST_F(Reports, TheBoxOffersIgnoreOnlyWhereTheGameCanGoOn) {
  Error().runningEvent = &CoinStep;
  ReportError(std::string_view("tab\there\r\nline"), false);
  ASSERT_EQ(hand.dialogs.shown.size(), 1u);
  EXPECT_EQ(hand.dialogs.shown[0].title, "Code Error");
  EXPECT_TRUE(hand.dialogs.shown[0].allowedIgnore);
  const std::string& text = hand.dialogs.shown[0].text;
  EXPECT_EQ(text.substr(0, 45), std::string(43, '_') + "\r\n");
  EXPECT_NE(text.find("tab       here\r\nline"), std::string::npos);
  for (size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1))
    ASSERT_EQ(text[at - 1], '\r');
  EXPECT_GE(hand.clock.Slept(), 200000); // the window gets time to draw behind the box

  hand.dialogs.errorChoice = ErrorChoice::Abort; // chosen on a harmless one, it ends the game all the same
  ReportError(std::string_view("second"), false);
  EXPECT_EQ(Rooms().request, RoomRequestAbortGame);
  EXPECT_EQ(hand.dialogs.shown.size(), 2u);
  ShowError("third"); // on the way out: logged, without another box
  EXPECT_EQ(hand.dialogs.shown.size(), 2u);
  EXPECT_NE(log->Text().find("third"), std::string::npos);
}

TEST_F(Reports, WithoutBoxesTheGameGoesOnAndTheTraceStays) {
  Error().showBox = false;
  ReportError(std::string_view("quiet"), false);
  EXPECT_TRUE(hand.dialogs.shown.empty());
  EXPECT_TRUE(Error().occurred);
  EXPECT_NE(Error().last.find("quiet"), std::string::npos);
  EXPECT_EQ(Rooms().request, kNoRoomRequest);
  Error().allFatal = true;
  ReportError(std::string_view("now it counts"), false);
  EXPECT_EQ(Rooms().request, RoomRequestAbortGame);
  EXPECT_NE(Error().last.find("FATAL "), std::string::npos);
}

TEST_F(Reports, CapturedErrorsOnlySetTheirFlag) {
  Error().capture = true;
  ShowError("caught");
  EXPECT_TRUE(Error().captured);
  EXPECT_FALSE(Error().occurred);
  EXPECT_TRUE(log->Text().empty());
}

TEST_F(Reports, ALongMessageIsCutToItsBuffer) {
  ShowError("%s", std::string(3000, 'x').c_str());
  EXPECT_NE(Error().last.find(std::string(1023, 'x')), std::string::npos);
  EXPECT_EQ(Error().last.find(std::string(1024, 'x')), std::string::npos);
}

TEST(Consoles, ChannelsPrintWhereTheyAreTold) {
  TErrStreamConsole console;
  console.Output("%s %d", std::string(5000, 'a').c_str(), 7);
  EXPECT_EQ(console.Text(), std::string(5000, 'a') + " 7");
  EXPECT_TRUE(console.IsOpen());
  const std::string file = testing::TempDir() + "/vesk_console.txt";
  File_Remove(file);
  TConsole writing(TConsole::Stream::Nothing, file);
  writing.Output("one\n");
  writing.Output("two\n");
  std::string text;
  ASSERT_TRUE(File_ReadAll(file, text));
  EXPECT_EQ(text, "one\ntwo\n");
  File_Remove(file);
}
