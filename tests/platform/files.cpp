#include "Platform/Files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

using namespace vesk;
namespace fs = std::filesystem;

namespace {

class Files : public testing::Test {
protected:
  Files() {
    char pattern[] = "/tmp/vesk_files_XXXXXX";
    folder = std::string(mkdtemp(pattern)) + "/";
  }
  ~Files() override { fs::remove_all(folder); }
  std::vector<std::string> Names(const std::string& pattern) {
    std::vector<std::string> names;
    for (const FileInfo& info : Directory_Find(folder, pattern)) names.push_back(info.name);
    return names;
  }
  std::string Contents(const std::string& name) {
    std::string bytes;
    EXPECT_TRUE(File_ReadAll(folder + name, bytes));
    return bytes;
  }
  std::string folder;
};

} // namespace

TEST_F(Files, AWrittenFileAppearsWholeAndTheOldOneSurvivesEveryFailure) {
  ASSERT_TRUE(File_WriteAll(folder + "level.json", "old"));
  chmod((folder + "level.json").c_str(), 0640);

  CReplacementFile file;
  ASSERT_TRUE(file.Open(folder + "level.json"));
  ASSERT_TRUE(file.Write("half of the n"));
  EXPECT_EQ(Contents("level.json"), "old"); // nothing shows before the commit
  file.Discard();
  EXPECT_EQ(Contents("level.json"), "old");
  EXPECT_THAT(Names("*"), testing::ElementsAre("level.json")); // and nothing is left beside it

  ASSERT_TRUE(file.Open(folder + "level.json"));
  ASSERT_TRUE(file.Write("new"));
  ASSERT_TRUE(file.Commit());
  EXPECT_EQ(Contents("level.json"), "new");
  struct stat info {};
  stat((folder + "level.json").c_str(), &info);
  EXPECT_EQ(info.st_mode & 0777, 0640u); // permissions stay
  EXPECT_THAT(Names("*"), testing::ElementsAre("level.json"));

  std::string why;
  EXPECT_FALSE(File_WriteAll(folder + "missing/level.json", "x", &why));
  EXPECT_THAT(why, testing::HasSubstr("missing/level.json: No such file"));
  EXPECT_TRUE(Directory_Make(folder + "sub"));
  EXPECT_FALSE(File_WriteAll(folder + "sub", "x", &why));
  EXPECT_THAT(why, testing::HasSubstr("is a directory"));
}

TEST_F(Files, AFullDiskIsAFailureInWords) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no device that is always full";
  CFile file;
  ASSERT_TRUE(file.Open("/dev/full", "wb"));
  file.Write("text", 4);
  EXPECT_FALSE(file.Close());
  std::string why;
  EXPECT_FALSE(File_Append("/dev/full", "text", &why));
  EXPECT_THAT(why, testing::HasSubstr("/dev/full: "));
}

TEST_F(Files, PatternsFindNamesInOrder) {
  for (const char* name : {"b.json", "A.JSON", "a1.json", "Übung.json", "notes.txt", "json", ".hidden.json"})
    ASSERT_TRUE(File_WriteAll(folder + name, "x"));
  EXPECT_THAT(Names("*.json"),
              testing::ElementsAre(".hidden.json", "A.JSON", "a1.json", "b.json", "Übung.json"));
  EXPECT_THAT(Names("?.json"), testing::ElementsAre("A.JSON", "b.json"));
  EXPECT_EQ(Names("*.*").size(), 7u); // every name, with a point or not
  EXPECT_TRUE(Names("z*").empty());
  EXPECT_TRUE(Directory_Find(folder + "nowhere", "*").empty());
  EXPECT_TRUE(File_MatchesPattern("aXbXc", "a*b*c"));
  EXPECT_FALSE(File_MatchesPattern("aXbX", "a*b*c"));
}

TEST_F(Files, PathsOfTheOtherSystemFindTheirFiles) {
  ASSERT_TRUE(Directory_Make(folder + "Level/Deep"));
  ASSERT_TRUE(File_WriteAll(folder + "Level/Deep/Größe.JSON", "7 bytes"));
  EXPECT_TRUE(File_Exists(folder + "level\\deep\\Größe.json"));
  EXPECT_EQ(File_Size(folder + "LEVEL\\Deep/größe.json"), 7);
  EXPECT_EQ(File_Size(folder + "LEVEL\\Deep/GRÖSSE.json"), -1); // case folds in ASCII only
  EXPECT_EQ(Path_Native(folder + "level\\New.json"),
            folder + "Level/New.json"); // a new name stays as written
  EXPECT_EQ(Path_Folder("C:\\games\\data.win"), "C:\\games\\");
  EXPECT_EQ(Path_Name("a/b\\c.txt"), "c.txt");
  EXPECT_EQ(Path_Folder("name"), "");
}

TEST_F(Files, FilesAreReadToTheirEnd) {
  std::string big(200000, 'x');
  big[70000] = '\0';
  ASSERT_TRUE(File_WriteAll(folder + "big", big));
  EXPECT_EQ(Contents("big"), big);
  std::string bytes, why;
  EXPECT_FALSE(File_ReadAll(folder, bytes, &why));
  EXPECT_THAT(why, testing::HasSubstr("is a directory"));
  EXPECT_FALSE(File_ReadAll(folder + "none", bytes, &why));
  EXPECT_TRUE(bytes.empty());
  CFile file;
  ASSERT_TRUE(file.Open(folder + "big", "rb"));
  EXPECT_EQ(file.Size(), 200000);
  char letter = 0;
  ASSERT_TRUE(file.Seek(-1, SEEK_END));
  EXPECT_FALSE(file.AtEnd());
  EXPECT_EQ(file.Read(&letter, 1), 1u);
  EXPECT_TRUE(file.AtEnd());
}
