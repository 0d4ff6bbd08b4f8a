// The INI reader and writer, and its built-ins.
#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Function/Function_Ini.h"
#include "Files/Support/Ini.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

using namespace vesk;

namespace {

class Ini : public testing::Test {
protected:
  void SetUp() override {
    Error_Reset();
    Error().showBox = false;
    Consoles().error = std::make_unique<DummyConsole>();
    m_folder = Directory_Temporary() + "vesk_ini_test/";
    Directory_Remove(m_folder);
    Directory_Make(m_folder + "bundle");
    Files_Locations() = {m_folder + "bundle/", m_folder + "save/"};
  }
  void TearDown() override {
    Ini_Reset();
    Files_ResetLocations();
    Directory_Remove(m_folder);
    Console_Reset();
  }
  static std::string Value(std::string_view body, const char* key = "a") {
    return IniFile::FromString(std::string("[s]\n").append(body)).ReadString("s", key, "(none)");
  }
  std::string m_folder;
};

} // namespace

TEST_F(Ini, ValuesEndWhereTheirFormSays) {
  EXPECT_EQ(Value("a = 1 ; note"), "1");
  EXPECT_EQ(Value("a = \"1 ; note\" rest"), "1 ; note");
  EXPECT_EQ(Value("a = \"it's\""), "it's");
  EXPECT_EQ(Value("a = 'say \"x\"'"), "say \"x\"");
  EXPECT_EQ(Value("a = one two \t\r\nb=2"), "one two");
  EXPECT_EQ(Value("a ="), "");
  EXPECT_EQ(Value("a =\nb = 2"), "(none)");
  EXPECT_EQ(Value("a =\nb = 2", "b"), "2");
  EXPECT_EQ(Value("a = ; note\nb = 2", "b"), "2");
  EXPECT_EQ(Value("# a = 1\n;a = 2\n\n  a  =  3"), "3");
  EXPECT_EQ(Value("a = \"open"), "open");
}

TEST_F(Ini, TheLastOccurrenceWinsAndCaseCounts) {
  IniFile file = IniFile::FromString("\xEF\xBB\xBFstray = 1\n[One]\nk=1\nk=2\n[Two]\nk=3\n[One]\nother=4\n");
  EXPECT_EQ(file.ReadString("One", "k", "(none)"), "(none)");
  EXPECT_EQ(file.ReadInt("One", "other", 0), 4);
  EXPECT_EQ(file.ReadString("Two", "k", ""), "3");
  EXPECT_EQ(file.FindSection("one"), nullptr);
  EXPECT_EQ(file.ReadInt("Two", "none", -7), -7);
  EXPECT_EQ(file.LineNumber(), 8);
  EXPECT_EQ(file.Serialise(), "[One]\r\nother=\"4\"\r\n[Two]\r\nk=\"3\"\r\n[One]\r\nk=\"2\"\r\nk=\"1\"\r\n");
}

TEST_F(Ini, MalformedTextEndsWithWhatWasRead) {
  EXPECT_EQ(IniFile::FromString("[s").Serialise(), "");
  EXPECT_EQ(IniFile::FromString("[s]\na=1\n[t\nb=2").Serialise(), "[s]\r\na=\"1\"\r\n");
  EXPECT_EQ(IniFile::FromString("[s]\na=1\nno equals sign").Serialise(), "[s]\r\na=\"1\"\r\n");
  EXPECT_EQ(IniFile::FromString("").Serialise(), "");
}

TEST_F(Ini, WritingIsKeptOnCloseOrFlush) {
  ini_open("sub/settings.ini");
  EXPECT_EQ(ini_read_string("s", "k", 5), "5");
  ini_write_real("s", "one", 1);
  ini_write_string("s", "two", "x y");
  ini_write_string("SYSTEM_COMMAND", "INI_FILE_FLUSH", "NOW");
  std::string text;
  ASSERT_TRUE(File_ReadAll(m_folder + "save/sub/settings.ini", text));
  EXPECT_EQ(text, "[s]\r\ntwo=\"x y\"\r\none=\"1.000000\"\r\n");
  ini_key_delete("s", "two");
  EXPECT_EQ(ini_close(), "[s]\r\none=\"1.000000\"\r\n");
  ini_open("sub/settings.ini");
  EXPECT_EQ(ini_read_real("s", "one", 0), 1);
  EXPECT_FALSE(ini_key_exists("s", "two"));
  ini_section_delete("s");
  EXPECT_FALSE(ini_section_exists("s"));
  EXPECT_EQ(ini_close(), "");
  EXPECT_EQ(Error().lastReport, "");
}

TEST_F(Ini, TheBundleIsReadWhenTheSaveAreaHasNone) {
  ASSERT_TRUE(File_WriteAll(m_folder + "bundle/game.ini", "[s]\nk=bundle"));
  ini_open("game.ini");
  EXPECT_EQ(ini_read_string("s", "k", ""), "bundle");
  ini_write_string("s", "k", "save");
  ini_close();
  ini_open("game.ini");
  EXPECT_EQ(ini_read_string("s", "k", ""), "save");
  ini_close();
  std::string text;
  ASSERT_TRUE(File_ReadAll(m_folder + "bundle/game.ini", text));
  EXPECT_EQ(text, "[s]\nk=bundle");
}

TEST_F(Ini, TextsFromStringsWriteNoFileAndNothingOpenIsReported) {
  ini_open_from_string("[a]\nb=c");
  EXPECT_EQ(ini_close(), "[a]\r\nb=\"c\"\r\n");
  EXPECT_FALSE(Directory_Exists(m_folder + "save"));
  EXPECT_EQ(ini_read_string("a", "b", "fallback"), "fallback");
  EXPECT_NE(Error().lastReport.find("Trying to read from undefined INI file"), std::string::npos);
  ini_key_delete("a", "b");
  EXPECT_NE(Error().lastReport.find("Trying to change undefined INI file"), std::string::npos);
}
