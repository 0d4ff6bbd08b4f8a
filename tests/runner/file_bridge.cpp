// File built-ins, external functions and the file library behind them.
#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Code/Code.h"
#include "Files/Function/Function.h"
#include "Files/Function/Function_Data_Structures.h"
#include "Files/Function/Function_External.h"
#include "Files/Function/Function_File.h"
#include "Files/Support/FileBridge.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using namespace vesk;

namespace {

class FileSystem : public testing::Test {
protected:
  void SetUp() override {
    Error_Reset();
    Error().showBox = false;
    Consoles().error = std::make_unique<DummyConsole>();
    m_folder = Directory_Temporary() + "vesk_file_test/";
    Directory_Remove(m_folder);
    Directory_Make(m_folder + "bundle/Level");
    Files_Locations() = {m_folder + "bundle/", m_folder + "save/"};
  }
  void TearDown() override {
    External_Reset();
    FileBridge_Reset();
    File_Reset();
    Files_ResetLocations();
    Directory_Remove(m_folder);
    Console_Reset();
    Error_Reset();
  }

  std::string Contents(const std::string& path) {
    std::string text;
    return File_ReadAll(m_folder + path, text) ? text : "(none)";
  }
  void Put(const std::string& path, const std::string& text) {
    ASSERT_TRUE(File_WriteAll(m_folder + path, text));
  }
  bool Reported(const char* text) {
    const bool found = Error().lastReport.find(text) != std::string::npos;
    Error().lastReport.clear();
    return found;
  }
  static RValue Call(const char* name, std::vector<RValue> args) {
    static const bool added = (Function_AddFile(), Function_AddExternal(), true);
    EXPECT_TRUE(added);
    int32_t id = -1;
    EXPECT_TRUE(Function_Find(name, id)) << name;
    RValue result;
    CallBuiltin(nullptr, nullptr, result, static_cast<int>(args.size()), id, args.data());
    return result;
  }
  std::string m_folder;
};

// As the game's scripts define and call the library.
struct Bridge {
  int32_t openWrite =
      external_define("nsfs.dll", "file_text_open_write_ns", dll_cdecl, ty_real, {ty_string, ty_real});
  int32_t write =
      external_define("nsfs.dll", "file_text_write_line_ns", dll_cdecl, ty_real, {ty_real, ty_string});
  int32_t openRead =
      external_define("nsfs.dll", "file_text_open_read_ns", dll_cdecl, ty_real, {ty_string, ty_real});
  int32_t read = external_define("nsfs.dll", "file_text_read_line_ns", dll_cdecl, ty_string, {ty_real});
  int32_t close = external_define("nsfs.dll", "file_text_close_ns", dll_cdecl, ty_real, {ty_real});
  int32_t exists = external_define("NSFS.DLL", "file_exists_ns", dll_cdecl, ty_real, {ty_string});
  int32_t findFirst = external_define("nsfs.dll", "file_find_first_ns", dll_cdecl, ty_string, {ty_string});
  int32_t findNext = external_define("nsfs.dll", "file_find_next_ns", dll_cdecl, ty_string, {});

  bool Write(const char* path, const std::string& text) const {
    const RValue file = external_call(openWrite, {path, -1});
    external_call(write, {file, text});
    return external_call(close, {file}).real == 1;
  }
  std::string ReadLine(const RValue& file) const { return std::string(external_call(read, {file}).Text()); }
};

} // namespace

TEST_F(FileSystem, TheLibraryCountsAsPresentAndIsLoadedOnce) {
  EXPECT_TRUE(file_exists(Files_Locations().bundle + "\\nsfs.dll"));
  EXPECT_FALSE(file_exists("Level\\nsfs.dll"));
  const Bridge bridge;
  EXPECT_EQ(External_FunctionCount(), 8);
  EXPECT_EQ(External_LibraryCount(), 1);
  EXPECT_EQ(bridge.findNext, 7);
  EXPECT_EQ(Error().fatalCount, 0);
}

TEST_F(FileSystem, LinesOfAnyLengthComeBackOneByOne) {
  const Bridge bridge;
  std::string level(5 << 20, 'x');
  level.replace(100, 6, "é\\\"/");
  EXPECT_TRUE(bridge.Write("Level/big.json", level));
  const RValue file = external_call(bridge.openRead, {"Level/big.json", -1});
  EXPECT_EQ(bridge.ReadLine(file), level);
  EXPECT_EQ(bridge.ReadLine(file), "");
  EXPECT_EQ(external_call(bridge.close, {file}).real, 1);

  Put("bundle/Settings.dat", "1\r\n0\r\n\r\n4");
  const RValue settings = external_call(bridge.openRead, {"Settings.dat", -1});
  for (const char* line : {"1", "0", "", "4", "", ""}) EXPECT_EQ(bridge.ReadLine(settings), line);
  EXPECT_EQ(external_call(bridge.exists, {"Settings.dat"}).real, 1);
  EXPECT_EQ(external_call(bridge.exists, {"Level"}).real, 0);
}

TEST_F(FileSystem, AFileIsReplacedOnCloseAndNotBefore) {
  const Bridge bridge;
  Put("bundle/Level/a.json", "old");
  const RValue file = external_call(bridge.openWrite, {"Level/a.json", -1});
  external_call(bridge.write, {file, "new"});
  EXPECT_EQ(Contents("bundle/Level/a.json"), "old");
  EXPECT_EQ(external_call(bridge.close, {file}).real, 1);
  EXPECT_EQ(Contents("bundle/Level/a.json"), "new\n");

  external_call(bridge.write, {external_call(bridge.openWrite, {"Level/a.json", -1}), "half"});
  FileBridge_Reset(); // the program ends before the file was closed
  EXPECT_EQ(Contents("bundle/Level/a.json"), "new\n");
  EXPECT_EQ(external_call(bridge.findFirst, {"Level/*"}).Text(), "a.json") << "nothing is left beside it";
  EXPECT_EQ(external_call(bridge.findNext, {}).Text(), "");
}

TEST_F(FileSystem, WhatCantBeWrittenOrReadIsSaidInWords) {
  const Bridge bridge;
  Directory_Make(m_folder + "bundle/Level/folder.json");
  EXPECT_EQ(external_call(bridge.openWrite, {"Level/folder.json", -1}).real, -1);
  EXPECT_TRUE(Reported("folder.json"));
  EXPECT_EQ(external_call(bridge.openRead, {"Level/none.json", -1}).real, -1);
  EXPECT_TRUE(Reported("none.json"));
  EXPECT_EQ(external_call(bridge.write, {-1, "x"}).real, 0);
  EXPECT_EQ(external_call(bridge.close, {99}).real, 0);
  EXPECT_EQ(bridge.ReadLine(99), "");
  EXPECT_EQ(Error().fatalCount, 0);
  EXPECT_EQ(external_call(bridge.openWrite, {"/dev/null", -1}).real, -1) << "a device must not become a file";
  EXPECT_TRUE(Reported("/dev/null"));
}

TEST_F(FileSystem, TheSearchGivesBareNamesOfFilesAlone) {
  const Bridge bridge;
  for (const char* name : {"b.json", "a.JSON", "ünï.json", "c.txt"})
    Put(std::string("bundle/Level/") + name, "{}");
  Directory_Make(m_folder + "bundle/Level/d.json");
  std::vector<std::string> names;
  for (RValue name = external_call(bridge.findFirst, {"Level/*.json"}); !name.Text().empty();
       name = external_call(bridge.findNext, {}))
    names.emplace_back(name.Text());
  EXPECT_EQ(names, (std::vector<std::string>{"a.JSON", "b.json", "ünï.json"}));
  EXPECT_EQ(external_call(bridge.findNext, {}).Text(), "");
  EXPECT_EQ(external_call(bridge.findFirst, {"Nowhere/*"}).Text(), "");
}

TEST_F(FileSystem, ExternalFunctionsOfTheSystemAreCalled) {
  const RValue power = Call("external_define", {"libm.so.6", "pow", dll_cdecl, ty_real, 2, ty_real, ty_real});
  EXPECT_EQ(Call("external_call", {power, 2, 10}).real, 1024);
  const RValue number = Call("external_define1", {"libc.so.6", "atof", dll_cdecl, ty_real, ty_string});
  EXPECT_EQ(Call("external_call1", {number, "2.5"}).real, 2.5);
  const RValue variable = Call("external_define1", {"libc.so.6", "getenv", dll_cdecl, ty_string, ty_string});
  Environment_Set("VESK_TEST", "value");
  EXPECT_EQ(Call("external_call1", {variable, "VESK_TEST"}).Text(), "value");
  EXPECT_EQ(Call("external_call1", {variable, "VESK_TEST_UNSET"}).Text(), "");
  EXPECT_EQ(External_LibraryCount(), 2);

  EXPECT_EQ(Call("external_call", {power, 2}).real, 0) << "another count than defined";
  EXPECT_EQ(Call("external_call", {-1}).real, -1);
  EXPECT_EQ(Call("external_call", {77}).real, 0);
  external_free("LIBM.so.6");
  EXPECT_EQ(Call("external_call", {power, 2, 10}).real, 0);
  EXPECT_EQ(Error().lastReport, "");
}

TEST_F(FileSystem, ALibraryBesideTheGameIsCalledWithEveryShape) {
  Put("bundle/shapes.c", R"(
    #include <stdio.h>
    static int (*create)(void);
    static int (*add)(int, const char*, double);
    void RegisterCallbacks(void (*post)(int, int), int (*make)(void), int (*real)(int, const char*, double),
                           int (*text)(int, const char*, const char*)) { create = make; add = real; }
    double six(double a, double b, double c, double d, double e, double f) { return a + 10*b + 100*c + 1e3*d + 1e4*e + 1e5*f; }
    const char* mixed(const char* a, double b, const char* c, double d) {
      static char out[64]; snprintf(out, sizeof out, "%s %g %s %g", a, b, c, d); return out; }
    double map_of(double value) { int map = create(); add(map, "value", value); return map; }
  )");
  const std::string library = m_folder + "bundle/shapes.so";
  if (std::system(("cc -shared -fPIC -o " + library + " " + m_folder + "bundle/shapes.c").c_str()) != 0)
    GTEST_SKIP() << "no C compiler";
  const std::string before = Directory_Current();
  Directory_SetCurrent(Directory_Temporary());
  const RValue six = Call("external_define", {"shapes.so", "six", 0, 0, 6, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(Call("external_call", {six, 1, 2, 3, 4, 5, 6}).real, 654321);
  const RValue mixed = Call("external_define4", {"shapes.so", "mixed", 0, 1, 1, 0, 1, 0});
  EXPECT_EQ(Call("external_call4", {mixed, "a", 1.5, "", 2}).Text(), "a 1.5  2");
  const int32_t mapOf = external_define("shapes.so", "map_of", dll_cdecl, ty_real, {ty_real});
  const auto map = static_cast<int32_t>(external_call(mapOf, {12}).real);
  EXPECT_EQ(ds_map_find_value(map, "value").real, 12);
  ds_map_destroy(map);
  EXPECT_EQ(External_LibraryCount(), 1);
  EXPECT_EQ(Error().fatalCount, 0);
  Directory_SetCurrent(before);
}

TEST_F(FileSystem, BadDefinitionsAreReported) {
  const std::pair<std::vector<RValue>, const char*> bad[] = {
      {{"nsfs.dll", "file_exists_ns", 0, 0, 2, 1}, "Wrong number of arguments to external_define()"},
      {{"nsfs.dll", "file_exists_ns", 0, 0}, "Wrong number of arguments to external_define()"},
      {{"libm.so.6", "pow", 0, 0, 5, 1, 0, 0, 0, 0},
       "DLL functions with more than 4 arguments cannot have string arguments"},
      {{"libm.so.6", "no such function", 0, 0, 0}, "Error defining an external function."},
      {{"no such library.so", "pow", 0, 0, 0}, "Error defining an external function."},
      {{"nsfs.dll", "file_delete_ns", 0, 0, 0}, "Error defining an external function."},
  };
  for (const auto& [args, text] : bad) {
    EXPECT_EQ(Call("external_define", args).real, -1);
    EXPECT_TRUE(Reported(text)) << text;
  }
  std::vector<RValue> many(22, RValue(0));
  many[0] = "libm.so.6";
  many[1] = "pow";
  many[4] = 17;
  EXPECT_EQ(Call("external_define", many).real, -1);
  EXPECT_TRUE(Reported("DLL functions can have at most 16 arguments"));

  const Bridge bridge;
  External_DisableCalls();
  EXPECT_EQ(external_call(bridge.exists, {"Level"}).real, 0);
  EXPECT_EQ(external_call(bridge.findFirst, {"*"}).Kind(), kReal) << "no call runs, so no string comes back";
}

TEST_F(FileSystem, BothPlacesAreReadAndOnlyTheSaveAreaIsWritten) {
  Put("bundle/hello.txt", "bundle");
  EXPECT_TRUE(file_exists("hello.txt"));
  EXPECT_TRUE(file_exists(m_folder + "bundle/hello.txt"));
  EXPECT_FALSE(file_exists("Level")) << "a directory is no file";
  EXPECT_FALSE(file_exists("../outside.txt"));
  EXPECT_FALSE(file_exists("/etc/passwd"));
  EXPECT_FALSE(file_exists(""));
  EXPECT_FALSE(file_delete("hello.txt"));

  const int32_t added = file_text_open_append("hello.txt");
  file_text_write_string(added, " and more");
  file_text_close(added);
  EXPECT_EQ(Contents("bundle/hello.txt"), "bundle");
  EXPECT_EQ(Contents("save/hello.txt"), "bundle and more");
  EXPECT_TRUE(file_delete("hello.txt"));
  EXPECT_TRUE(file_exists("hello.txt"));

  EXPECT_EQ(file_text_open_write("../outside.txt"), -1);
  EXPECT_TRUE(Reported("lies outside the save area"));
  EXPECT_EQ(file_find_first("*", fa_directory), "hello.txt");
  EXPECT_EQ(file_find_next(), "Level");
  EXPECT_EQ(file_find_next(), "");
}

TEST_F(FileSystem, TextFilesReadWhatWasWritten) {
  const int32_t out = file_text_open_write("t.txt");
  EXPECT_EQ(out, 1);
  file_text_write_string(out, "first");
  file_text_writeln(out);
  file_text_write_real(out, 2.5);
  file_text_write_real(out, 1e10);
  file_text_close(out);
  EXPECT_EQ(Contents("save/t.txt"), "first\n2.5 1e+10 ");

  const int32_t in = file_text_open_read("t.txt");
  EXPECT_EQ(file_text_read_string(in), "first");
  EXPECT_TRUE(file_text_eoln(in));
  EXPECT_EQ(file_text_read_string(in), "") << "the line end is still unread";
  EXPECT_EQ(file_text_readln(in), "\n");
  EXPECT_EQ(file_text_read_real(in), 2.5);
  EXPECT_EQ(file_text_read_real(in), 1e10);
  EXPECT_FALSE(file_text_eof(in));
  EXPECT_EQ(file_text_readln(in), " ");
  EXPECT_TRUE(file_text_eof(in));
  file_text_write_string(in, "x");
  EXPECT_TRUE(Reported("File not opened for writing."));
  file_text_close(in);
  EXPECT_EQ(file_text_read_string(in), "");
  EXPECT_TRUE(Reported("File is not opened for reading."));
  file_text_close(32);
  EXPECT_TRUE(Reported("Trying to close text file that has not been opened."));
  EXPECT_EQ(file_text_open_read("none.txt"), -1);

  for (int i = 1; i <= 31; ++i) EXPECT_EQ(file_text_open_read("t.txt"), i);
  EXPECT_EQ(file_text_open_read("t.txt"), -1);
  EXPECT_TRUE(Reported("Cannot open another file (maximum exceeded)."));
}
