#include "Files/Support/FileBridge.h"

#include "Files/Base/Error.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <vector>

namespace vesk {

namespace {

constexpr const char* kLibrary = "nsfs.dll";
constexpr double kLargestNumber = 1e9;

struct OpenFile {
  std::string path;
  std::unique_ptr<CReplacementFile> writer; // null for a file that is read
  std::string text;                         // what is left to read begins at `position`
  size_t position = 0;
};

struct BridgeState {
  std::map<int, OpenFile> files; // by number
  std::string line;              // the result of the last ReadLine
  std::vector<FileInfo> found;
  size_t nextFound = 0;
  std::string name; // the result of the last Find
};
BridgeState g_bridge;

// A full disk or a locked folder is the player's to mend, not a fault of the game: told in a plain box.
void Tell(const std::string& what, const std::string& why) { Error_ShowBox(what + "\n" + why); }

double Enter(OpenFile file) {
  int number = 1;
  while (g_bridge.files.contains(number)) ++number;
  g_bridge.files.emplace(number, std::move(file));
  return number;
}

OpenFile* Find(double file) {
  if (!(file >= 1 && file <= kLargestNumber)) return nullptr;
  const auto found = g_bridge.files.find(static_cast<int>(file));
  return found == g_bridge.files.end() ? nullptr : &found->second;
}

// The forms with the encoding argument that scripts pass; it says nothing, all text is UTF-8.
double OpenWrite(const char* path, double) { return FileBridge_OpenWrite(path); }
double OpenRead(const char* path, double) { return FileBridge_OpenRead(path); }

} // namespace

bool FileBridge_IsLibrary(const std::string& path) {
  std::string name = Path_Name(path);
  std::transform(name.begin(), name.end(), name.begin(), [](char letter) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  });
  if (name != kLibrary) return false;
  const std::string folder = Path_Folder(path);
  return folder.empty() || Files_BundlePath(path) == Files_BundlePath(Path_Name(path));
}

void* FileBridge_Find(const std::string& function) {
  const std::map<std::string, void*> functions = {
      {"file_text_open_write_ns", reinterpret_cast<void*>(&OpenWrite)},
      {"file_text_write_line_ns", reinterpret_cast<void*>(&FileBridge_WriteLine)},
      {"file_text_open_read_ns", reinterpret_cast<void*>(&OpenRead)},
      {"file_text_read_line_ns", reinterpret_cast<void*>(&FileBridge_ReadLine)},
      {"file_text_close_ns", reinterpret_cast<void*>(&FileBridge_Close)},
      {"file_exists_ns", reinterpret_cast<void*>(&FileBridge_Exists)},
      {"file_find_first_ns", reinterpret_cast<void*>(&FileBridge_FindFirst)},
      {"file_find_next_ns", reinterpret_cast<void*>(&FileBridge_FindNext)},
  };
  const auto found = functions.find(function);
  return found == functions.end() ? nullptr : found->second;
}

void FileBridge_Reset() { g_bridge = {}; }

double FileBridge_OpenWrite(const char* path) {
  OpenFile file;
  file.path = Files_GamePath(path);
  file.writer = std::make_unique<CReplacementFile>();
  std::string why;
  const std::string folder = Path_Folder(file.path);
  if ((!folder.empty() && !Directory_Make(folder, &why)) || !file.writer->Open(file.path, &why)) {
    Tell("The file can't be written, what was there before is unchanged:", why);
    return -1;
  }
  return Enter(std::move(file));
}

double FileBridge_WriteLine(double file, const char* text) {
  OpenFile* open = Find(file);
  if (!open || !open->writer) return 0;
  return open->writer->Write(text) && open->writer->Write("\n") ? 1 : 0;
}

double FileBridge_OpenRead(const char* path) {
  OpenFile file;
  file.path = Files_GamePath(path);
  std::string why;
  if (!File_ReadAll(file.path, file.text, &why)) {
    Tell("The file can't be read:", why);
    return -1;
  }
  if (file.text.starts_with("\xEF\xBB\xBF")) file.position = 3;
  return Enter(std::move(file));
}

const char* FileBridge_ReadLine(double file) {
  g_bridge.line.clear();
  OpenFile* open = Find(file);
  if (!open || open->writer || open->position >= open->text.size()) return g_bridge.line.c_str();
  const size_t end = std::min(open->text.find('\n', open->position), open->text.size());
  g_bridge.line = open->text.substr(open->position, end - open->position);
  if (g_bridge.line.ends_with('\r')) g_bridge.line.pop_back();
  open->position = end + 1;
  return g_bridge.line.c_str();
}

double FileBridge_Close(double file) {
  OpenFile* open = Find(file);
  if (!open) return 0;
  std::string why;
  const bool kept = !open->writer || open->writer->Commit(&why);
  if (!kept) Tell("The file can't be written, what was there before is unchanged:", why);
  g_bridge.files.erase(static_cast<int>(file));
  return kept ? 1 : 0;
}

double FileBridge_Exists(const char* path) { return File_Exists(Files_GamePath(path)) ? 1 : 0; }

const char* FileBridge_FindFirst(const char* pattern) {
  const std::string full = Files_GamePath(pattern);
  g_bridge.found = Directory_Find(Path_Folder(full), Path_Name(full));
  std::erase_if(g_bridge.found, [](const FileInfo& info) { return info.directory; });
  g_bridge.nextFound = 0;
  return FileBridge_FindNext();
}

const char* FileBridge_FindNext() {
  const bool more = g_bridge.nextFound < g_bridge.found.size();
  g_bridge.name = more ? g_bridge.found[g_bridge.nextFound++].name : std::string();
  return g_bridge.name.c_str();
}

} // namespace vesk
