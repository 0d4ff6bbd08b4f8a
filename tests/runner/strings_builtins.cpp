#include "Files/Function/Function_String.h"

#include <gtest/gtest.h>

#include <string>

namespace vesk::test {
namespace {

// a, an umlaut of two bytes, the euro sign of three bytes, z
constexpr const char* kMixed = "a\xC3\xA4\xE2\x82\xACz";

TEST(StringBuiltins, PositionsCountCharactersFromOne) {
  EXPECT_EQ(string_length(kMixed), 4);
  EXPECT_EQ(string_length(""), 0);
  EXPECT_EQ(string_char_at(kMixed, 2), "\xC3\xA4");
  EXPECT_EQ(string_char_at(kMixed, 3), "\xE2\x82\xAC");
  EXPECT_EQ(string_char_at(kMixed, 4), "z");
  EXPECT_EQ(string_char_at(kMixed, 5), "");
  EXPECT_EQ(string_char_at("abc", 0), "a");
  EXPECT_EQ(string_char_at("abc", -7), "a");
  EXPECT_EQ(string_char_at("abc", 4), "");
  EXPECT_EQ(string_pos("z", kMixed), 4);
  EXPECT_EQ(string_pos("\xE2\x82\xAC", kMixed), 3);
}

TEST(StringBuiltins, CopyClamps) {
  EXPECT_EQ(string_copy("abc", 0, 2), "ab");
  EXPECT_EQ(string_copy("abc", 2, 99), "bc");
  EXPECT_EQ(string_copy("abc", 2, -1), "");
  EXPECT_EQ(string_copy("abc", 9, 2), "");
  EXPECT_EQ(string_copy(kMixed, 2, 2), "\xC3\xA4\xE2\x82\xAC");
  EXPECT_EQ(string_delete(kMixed, 2, 2), "az");
  EXPECT_EQ(string_insert("-", kMixed, 3), "a\xC3\xA4-\xE2\x82\xACz");
}

TEST(StringBuiltins, SearchAndCount) {
  EXPECT_EQ(string_pos("", "abc"), 0);
  EXPECT_EQ(string_pos("b", ""), 0);
  EXPECT_EQ(string_pos("c", "abc"), 3);
  EXPECT_EQ(string_pos("x", "abc"), 0);
  EXPECT_EQ(string_count("aa", "aaa"), 2);
  EXPECT_EQ(string_count("", "aaa"), 0);
  EXPECT_EQ(string_count("b", "aaa"), 0);
}

TEST(StringBuiltins, Replace) {
  EXPECT_EQ(string_replace_all("a b", " ", "0"), "a0b");
  EXPECT_EQ(string_replace_all("abc", "", "x"), "abc");
  EXPECT_EQ(string_replace_all("", "a", "x"), "");
  EXPECT_EQ(string_replace_all("aaa", "a", "aa"), "aaaaaa") << "what was put in is not searched";
  EXPECT_EQ(string_replace_all("aaa", "aa", "b"), "ba");
  EXPECT_EQ(string_replace("a-b-c", "-", "+"), "a+b-c");
  EXPECT_EQ(string_replace_all("\xC3\xA4x\xC3\xA4", "\xC3\xA4", "ae"), "aexae");
  EXPECT_EQ(string_replace_all("\xF0\x9F\x98\x80 b", " ", "_"), "\xF0\x9F\x98\x80_b") << "bytes are kept";
}

TEST(StringBuiltins, DigitsAndCase) {
  EXPECT_EQ(string_digits("a1b2"), "12");
  EXPECT_EQ(string_letters("a1b2"), "ab");
  EXPECT_EQ(string_lettersdigits("a-1.b"), "a1b");
  EXPECT_EQ(string_lower("AbC-\xE2\x82\xAC"), "abc-\xE2\x82\xAC");
  EXPECT_EQ(string_upper("abc"), "ABC");
}

TEST(StringBuiltins, FormatPadsToTotalAndDecimals) {
  EXPECT_EQ(string_format(RValue(12.0), 8, 0), "      12");
  EXPECT_EQ(string_replace_all(string_format(RValue(12.0), 8, 0), " ", "0"), "00000012");
  EXPECT_EQ(string_format(RValue(3.14159), 3, 2), " 3.14");
  EXPECT_EQ(string_format(RValue(123456.0), 2, 1), "123456.0");
  EXPECT_EQ(string_format(RValue(2.5), -3, -1), "2");
  EXPECT_EQ(string_format(RValue("as it is"), 3, 1), "as it is");
}

TEST(StringBuiltins, BrokenTextIsCutNotOverrun) {
  const std::string cut = "ab\xE2\x82";
  EXPECT_EQ(string_length(cut), 3);
  EXPECT_EQ(string_char_at(cut, 3), "\xE2\x82");
  EXPECT_EQ(string_copy(cut, 1, 9), cut);
  EXPECT_EQ(string_lower(cut), cut);
  EXPECT_EQ(string_pos("b", cut), 2);
}

TEST(StringBuiltins, BytesAndCodes) {
  EXPECT_EQ(string_byte_length(kMixed), 7);
  EXPECT_EQ(string_byte_at(kMixed, 2), 0xC3);
  EXPECT_EQ(string_byte_at(kMixed, 99), 0);
  EXPECT_EQ(string_set_byte_at("abc", 2, 'x'), "axc");
  EXPECT_EQ(string_ord_at(kMixed, 3), 0x20AC);
  EXPECT_EQ(string_ord_at(kMixed, 9), -1);
  for (const int code : {1, 0x7F, 0x80, 0x7FF, 0x800, 0xFFFF}) EXPECT_EQ(ord(chr(code)), code);
  EXPECT_EQ(string_repeat("ab", 3), "ababab");
  EXPECT_EQ(string_repeat("ab", -1), "");
  EXPECT_EQ(string_hash_to_newline("a#b\\#c"), "a\nb#c");
}

} // namespace
} // namespace vesk::test
