#include "Platform/HandDriven.h"
#include "Platform/KeyCodes.h"
#include "Platform/Text.h"

#include <gtest/gtest.h>

using namespace vesk;

namespace {

std::vector<Message> Drain(IMessages& messages) {
  std::vector<Message> all;
  Message message;
  while (messages.Next(message)) all.push_back(message);
  return all;
}

std::u16string Characters(const std::vector<Message>& messages) {
  std::u16string text;
  for (const Message& message : messages)
    if (message.kind == MessageKind::Character) text += message.character;
  return text;
}

} // namespace

TEST(Text, ConvertsBothWaysAndMarksWhatIsMalformed) {
  const std::string text = "aé€\U0001F600z";
  const std::u16string units = Text_ToUtf16(text);
  EXPECT_EQ(units, u"aé€\U0001F600z");
  EXPECT_EQ(units.size(), 6u); // the smiling face takes two
  EXPECT_EQ(Text_ToUtf8(units), text);
  EXPECT_EQ(Text_ToUtf16("a\xFF"), u"a\xFFFD");
  EXPECT_EQ(Text_ToUtf16("\xE2\x82"), u"\xFFFD");       // cut short
  EXPECT_EQ(Text_ToUtf16("\xC0\xAF"), u"\xFFFD");       // longer than needed
  EXPECT_EQ(Text_ToUtf16("\xED\xA0\x80x"), u"\xFFFDx"); // half a pair
  const char16_t lone[] = {0xDC00, u'x', 0xD800};
  EXPECT_EQ(Text_ToUtf8({lone, 3}), "\xEF\xBF\xBDx\xEF\xBF\xBD");
}

TEST(KeyCodes, EveryCharacterOfAKeyLeadsBackToTheKey) {
  for (int key = 1; key < 256; ++key) {
    for (const bool shift : {false, true}) {
      const char16_t character = KeyCode_Character(key, shift, false);
      if (character == 0 || (key >= 96 && key <= 111)) continue; // the keypad repeats what other keys give
      bool needsShift = false;
      EXPECT_EQ(KeyCode_ForCharacter(character, needsShift), key);
      const bool same = character <= 32 || character == 127 || needsShift == shift;
      EXPECT_TRUE(same) << key;
    }
  }
  EXPECT_EQ(KeyCode_Character('C', false, true), u'\x03');
  bool shift = false;
  EXPECT_EQ(KeyCode_ForCharacter(u'é', shift), 0);
}

TEST(HandDrivenMessages, KeysComeBackAsAWindowSendsThem) {
  CQueuedMessages messages;
  messages.Key(161, true); // right shift
  messages.Key('A', true);
  messages.Key('A', true);
  messages.Key('A', false);
  EXPECT_TRUE(messages.KeyHeldNow(161));
  EXPECT_FALSE(messages.KeyHeld(161)); // its message was not taken
  const auto all = Drain(messages);
  ASSERT_EQ(all.size(), 6u);
  EXPECT_EQ(all[0].key, 16);
  EXPECT_TRUE(all[0].extended);
  EXPECT_FALSE(all[1].repeat);
  EXPECT_TRUE(all[3].repeat);
  EXPECT_EQ(Characters(all), u"AA");
  EXPECT_TRUE(messages.KeyHeld(161));
  EXPECT_TRUE(messages.KeyHeld(16));
  EXPECT_FALSE(messages.KeyHeld(160));
  messages.Activate(false); // a key held while the window loses the focus is not held any more
  Drain(messages);
  EXPECT_FALSE(messages.KeyHeld(16));
}

TEST(HandDrivenMessages, AltMakesSystemKeysWithoutText) {
  CQueuedMessages messages;
  messages.Key(164, true);
  messages.Key('R', true);
  const auto all = Drain(messages);
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ(all[0].key, 18);
  EXPECT_TRUE(all[0].system);
  EXPECT_TRUE(all[1].system);
}

TEST(HandDrivenMessages, LockKeysToggleAndTextComesInUnits) {
  CQueuedMessages messages;
  EXPECT_FALSE(messages.KeyToggled(144));
  messages.InjectKey(144, true);
  messages.InjectKey(144, true); // a repeat toggles nothing
  messages.InjectKey(144, false);
  messages.Text("é\U0001F600");
  EXPECT_EQ(Characters(Drain(messages)), u"é\U0001F600");
  EXPECT_TRUE(messages.KeyToggled(144));
}

TEST(SilentAudio, MakesUpTheTimeThatHasPassedInWholeBlocks) {
  CSilentAudio audio;
  AudioFormat format{48000, 480};
  int frames = 0;
  ASSERT_TRUE(audio.Open(
      format, [](void* user, int16_t*, int count) { *static_cast<int*>(user) += count; }, &frames));
  audio.Update(5000000); // where the clock stands at first means nothing
  EXPECT_EQ(frames, 480);
  audio.Update(5000000 + 25000);
  EXPECT_EQ(frames, 1440); // 1,200 are due
  audio.Close();
  audio.Update(9000000);
  EXPECT_EQ(frames, 1440);
}
