#pragma once
// The file system, the environment. Paths are UTF-8; "/" and "\" both separate. Functions that fail return
// false or empty and put the reason in words into `why` when one is given.
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

struct FileInfo {
  std::string name; // without its folder
  bool directory = false;
  bool readOnly = false;
  bool hidden = false; // begins with a point
  int64_t size = 0;    // bytes
};

bool File_Exists(const std::string& path); // a plain file
bool Directory_Exists(const std::string& path);
int64_t File_Size(const std::string& path); // bytes; -1 without the file
bool File_ReadAll(const std::string& path, std::string& bytes, std::string* why = nullptr);
// The file appears whole or not at all: written beside, flushed, renamed. An existing one stays on failure.
bool File_WriteAll(const std::string& path, std::string_view bytes, std::string* why = nullptr);
bool File_Append(const std::string& path, std::string_view bytes, std::string* why = nullptr);
bool File_Remove(const std::string& path, std::string* why = nullptr);
bool File_Rename(const std::string& from, const std::string& to, std::string* why = nullptr);
bool File_Copy(const std::string& from, const std::string& to, std::string* why = nullptr);

bool Directory_Make(const std::string& path,
                    std::string* why = nullptr); // parents too; an existing one is success
bool Directory_Remove(const std::string& path, std::string* why = nullptr); // with all that is in it
// Entries whose names meet the pattern with * and ? (letters compare without case), by name, "." and ".."
// excluded.
std::vector<FileInfo> Directory_Find(const std::string& folder, const std::string& pattern);
bool File_MatchesPattern(std::string_view name, std::string_view pattern);

// Separators become "/" and, where a part does not exist as written, an entry that differs only by case is
// taken.
std::string Path_Native(const std::string& path);
std::string Path_Full(const std::string& path);   // absolute
std::string Path_Folder(const std::string& path); // up to and including the last separator; empty without one
std::string Path_Name(const std::string& path);   // behind the last separator
bool Path_IsAbsolute(const std::string& path);

std::string Directory_Current(); // ends in "/"
bool Directory_SetCurrent(const std::string& path);
std::string Path_Executable();    // the running program's own file
std::string Directory_UserData(); // where programs keep a user's data ($XDG_DATA_HOME); no "/" at the end
std::string Directory_UserConfiguration(); // the same for settings ($XDG_CONFIG_HOME)
std::string Directory_Temporary();         // ends in "/"

bool Environment_Get(const std::string& name, std::string& value); // false when unset
void Environment_Set(const std::string& name, const std::string& value);

// An open file. Closes itself; copies are not possible.
class CFile {
public:
  CFile() = default;
  ~CFile() { Close(); }
  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;
  CFile(CFile&& other) noexcept : m_file(other.m_file) { other.m_file = nullptr; }
  CFile& operator=(CFile&& other) noexcept;

  // Modes as fopen has them: "rb", "wb", "ab", "r+b", "w+b".
  bool Open(const std::string& path, const char* mode, std::string* why = nullptr);
  bool Close(); // false when buffered bytes could not be written
  bool IsOpen() const { return m_file != nullptr; }
  size_t Read(void* bytes, size_t count);        // bytes read; less at the end
  size_t Write(const void* bytes, size_t count); // bytes written; less on failure
  bool Flush();
  bool Sync(); // flushed to the disk itself
  bool Seek(int64_t offset, int origin = SEEK_SET);
  int64_t Tell() const;
  int64_t Size();
  bool AtEnd() const; // no byte is left

private:
  std::FILE* m_file = nullptr;
};

// A file that replaces its old contents only on Commit.
class CReplacementFile {
public:
  ~CReplacementFile() { Discard(); }
  bool Open(const std::string& path, std::string* why = nullptr);
  bool Write(std::string_view bytes);
  bool Commit(std::string* why = nullptr); // written, flushed to disk, renamed over the old one
  void Discard();                          // the old one stays
  bool IsOpen() const { return m_file.IsOpen(); }

private:
  CFile m_file;
  std::string m_path;
  std::string m_beside;
  bool m_failed = false;
};

} // namespace vesk
