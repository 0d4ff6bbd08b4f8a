#include "Files/Function/Function_File.h"

#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Files/Support/FileBridge.h"
#include "Files/Support/Support_Files.h"
#include "Platform/Files.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

namespace vesk {

namespace {

constexpr size_t kTextFiles = 31;

struct TextFile {
  enum class State { Free, Reading, Writing };
  State state = State::Free;
  std::string text; // when reading: the whole file
  size_t position = 0;
  std::unique_ptr<CReplacementFile> replacement; // when writing a new file
  std::unique_ptr<CFile> appended;               // when adding to an old one
};

struct FileState {
  std::array<TextFile, kTextFiles + 1> texts; // by number; 0 is never handed out
  std::vector<std::string> found;
  size_t nextFound = 0;
};
FileState g_files;

bool Refuse(const char* builtin, std::string_view path, const std::string& why) {
  ReportError(std::string(builtin) + ": \"" + std::string(path) + "\" " + why, false);
  return false;
}

// The path in the save area with its folders made; "" after a report.
std::string PathForWriting(const char* builtin, std::string_view path) {
  std::string target = Files_SavePath(std::string(path));
  std::string why;
  if (target.empty())
    Refuse(builtin, path, "lies outside the save area");
  else if (!Directory_Make(Path_Folder(target), &why))
    Refuse(builtin, path, "has no folder to be written in: " + why), target.clear();
  return target;
}

int32_t FreeSlot() {
  for (size_t i = 1; i <= kTextFiles; ++i)
    if (g_files.texts[i].state == TextFile::State::Free) return static_cast<int32_t>(i);
  ReportError("Cannot open another file (maximum exceeded).");
  return -1;
}

int32_t OpenFailed(std::string_view path) {
  ErrorConsole().Output("ERROR!!! :: Failed to open file: %s\n", std::string(path).c_str());
  return -1;
}

TextFile* Slot(int32_t file) {
  return file >= 1 && file <= static_cast<int32_t>(kTextFiles) ? &g_files.texts[static_cast<size_t>(file)]
                                                               : nullptr;
}
TextFile* ForReading(int32_t file) {
  TextFile* slot = Slot(file);
  if (slot && slot->state == TextFile::State::Reading) return slot;
  ReportError("File is not opened for reading.");
  return nullptr;
}
TextFile* ForWriting(int32_t file) {
  TextFile* slot = Slot(file);
  if (slot && slot->state == TextFile::State::Writing) return slot;
  ReportError("File not opened for writing.");
  return nullptr;
}

void Write(int32_t file, std::string_view text) {
  TextFile* slot = ForWriting(file);
  if (!slot) return;
  if (slot->replacement)
    slot->replacement->Write(text); // a failure is kept and shows when the file is closed
  else if (slot->appended->Write(text.data(), text.size()) != text.size())
    ReportError("The file can't be written to its end.");
}

void Close(TextFile& slot) {
  std::string why;
  if (slot.replacement && !slot.replacement->Commit(&why))
    ReportError("The file can't be written, what was there before is unchanged: " + why, false);
  if (slot.appended && !slot.appended->Close()) ReportError("The file can't be written to its end.");
  slot = TextFile();
}

bool AtLineEnd(const TextFile& slot) {
  return slot.position >= slot.text.size() || slot.text[slot.position] == '\r' ||
         slot.text[slot.position] == '\n';
}

} // namespace

void File_Reset() {
  for (TextFile& slot : g_files.texts) Close(slot);
  g_files = FileState();
}

bool file_exists(std::string_view path) {
  const std::string name(path);
  return FileBridge_IsLibrary(name) || !Files_FindForReading(name).empty();
}

bool file_delete(std::string_view path) {
  const std::string target = Files_SavePath(std::string(path));
  if (target.empty() || !File_Exists(target)) return false;
  std::string why;
  return File_Remove(target, &why) || Refuse("file_delete", path, why);
}

bool file_rename(std::string_view from, std::string_view to) {
  const std::string source = Files_SavePath(std::string(from));
  if (source.empty() || !File_Exists(source)) return false;
  const std::string target = PathForWriting("file_rename", to);
  std::string why;
  return !target.empty() && (File_Rename(source, target, &why) || Refuse("file_rename", from, why));
}

bool file_copy(std::string_view from, std::string_view to) {
  const std::string source = Files_FindForReading(std::string(from));
  if (source.empty()) return false;
  const std::string target = PathForWriting("file_copy", to);
  std::string why;
  return !target.empty() && (File_Copy(source, target, &why) || Refuse("file_copy", from, why));
}

bool directory_exists(std::string_view path) {
  const std::string save = Files_SavePath(std::string(path));
  const std::string bundle = Files_BundlePath(std::string(path));
  return (!save.empty() && Directory_Exists(save)) || (!bundle.empty() && Directory_Exists(bundle));
}

bool directory_create(std::string_view path) {
  const std::string target = Files_SavePath(std::string(path));
  std::string why = "lies outside the save area";
  return (!target.empty() && Directory_Make(target, &why)) || Refuse("directory_create", path, why);
}

bool directory_destroy(std::string_view path) {
  const std::string target = Files_SavePath(std::string(path));
  if (target.empty() || !Directory_Exists(target)) return false;
  std::string why;
  return Directory_Remove(target, &why) || Refuse("directory_destroy", path, why);
}

// ---- text files ----

int32_t file_text_open_read(std::string_view path) {
  const int32_t file = FreeSlot();
  if (file < 0) return -1;
  const std::string found = Files_FindForReading(std::string(path));
  TextFile opened;
  if (found.empty() || !File_ReadAll(found, opened.text)) return OpenFailed(path);
  opened.state = TextFile::State::Reading;
  *Slot(file) = std::move(opened);
  return file;
}

int32_t file_text_open_write(std::string_view path) {
  const int32_t file = FreeSlot();
  const std::string target = file < 0 ? std::string() : PathForWriting("file_text_open_write", path);
  if (target.empty()) return -1;
  TextFile opened;
  opened.replacement = std::make_unique<CReplacementFile>();
  if (!opened.replacement->Open(target)) return OpenFailed(path);
  opened.state = TextFile::State::Writing;
  *Slot(file) = std::move(opened);
  return file;
}

int32_t file_text_open_append(std::string_view path) {
  const int32_t file = FreeSlot();
  const std::string target = file < 0 ? std::string() : PathForWriting("file_text_open_append", path);
  if (target.empty()) return -1;
  const std::string bundled = Files_BundlePath(std::string(path));
  if (!File_Exists(target) && !bundled.empty() && File_Exists(bundled) && !File_Copy(bundled, target))
    return OpenFailed(path);
  TextFile opened;
  opened.appended = std::make_unique<CFile>();
  if (!opened.appended->Open(target, "ab")) return OpenFailed(path);
  opened.state = TextFile::State::Writing;
  *Slot(file) = std::move(opened);
  return file;
}

void file_text_close(int32_t file) {
  TextFile* slot = Slot(file);
  if (slot)
    Close(*slot);
  else
    ReportError("Trying to close text file that has not been opened.");
}

std::string file_text_read_string(int32_t file) {
  TextFile* slot = ForReading(file);
  if (!slot) return {};
  const size_t first = slot->position;
  slot->position = std::min(slot->text.find_first_of("\r\n", first), slot->text.size());
  return slot->text.substr(first, slot->position - first);
}

std::string file_text_readln(int32_t file) {
  TextFile* slot = ForReading(file);
  if (!slot) return {};
  const size_t first = slot->position;
  const size_t end = slot->text.find('\n', first);
  slot->position = end == std::string::npos ? slot->text.size() : end + 1;
  return slot->text.substr(first, slot->position - first);
}

double file_text_read_real(int32_t file) {
  TextFile* slot = ForReading(file);
  if (!slot) return 0;
  const char* const start = slot->text.c_str() + slot->position;
  const char* at = start;
  while (std::isspace(static_cast<unsigned char>(*at))) ++at;
  char* end = nullptr;
  const double number = std::strtod(at, &end);
  slot->position += static_cast<size_t>((end == at ? at : end) - start);
  return number;
}

bool file_text_eof(int32_t file) {
  const TextFile* slot = ForReading(file);
  return slot && slot->position >= slot->text.size();
}

bool file_text_eoln(int32_t file) {
  const TextFile* slot = ForReading(file);
  return slot && AtLineEnd(*slot);
}

void file_text_write_string(int32_t file, std::string_view text) { Write(file, text); }
void file_text_write_real(int32_t file, double number) { Write(file, FormatText("%g ", number)); }
void file_text_writeln(int32_t file) { Write(file, "\n"); }

// ---- searching ----

std::string file_find_first(std::string_view mask, int32_t attributes) {
  file_find_close();
  const std::string text(mask);
  for (const std::string& pattern : {Files_BundlePath(text), Files_SavePath(text)}) {
    if (pattern.empty()) continue;
    for (const FileInfo& info : Directory_Find(Path_Folder(pattern), Path_Name(pattern))) {
      if ((info.directory && !(attributes & fa_directory)) || (info.hidden && !(attributes & fa_hidden)))
        continue;
      if (std::find(g_files.found.begin(), g_files.found.end(), info.name) == g_files.found.end())
        g_files.found.push_back(info.name);
    }
  }
  return file_find_next();
}

std::string file_find_next() {
  return g_files.nextFound < g_files.found.size() ? g_files.found[g_files.nextFound++] : std::string();
}

void file_find_close() {
  g_files.found.clear();
  g_files.nextFound = 0;
}

namespace {

// ---- parts of names ----

std::string FilenameName(std::string_view path) { return Path_Name(std::string(path)); }
std::string FilenamePath(std::string_view path) { return Path_Folder(std::string(path)); }
std::string FilenameDir(std::string_view path) {
  const std::string folder = FilenamePath(path);
  return folder.empty() ? folder : folder.substr(0, folder.size() - 1);
}
size_t ExtensionAt(const std::string& path) {
  const size_t point = path.rfind('.');
  return point == std::string::npos || point < Path_Folder(path).size() ? path.size() : point;
}
std::string FilenameExt(std::string_view path) {
  const std::string text(path);
  return text.substr(ExtensionAt(text));
}
std::string FilenameChangeExt(std::string_view path, std::string_view extension) {
  const std::string text(path);
  return text.substr(0, ExtensionAt(text)).append(extension);
}

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&file_exists>("file_exists"),
    Builtin<&file_delete>("file_delete"),
    Builtin<&file_rename>("file_rename"),
    Builtin<&file_copy>("file_copy"),
    Builtin<&directory_exists>("directory_exists"),
    Builtin<&directory_create>("directory_create"),
    Builtin<&directory_destroy>("directory_destroy"),
    Builtin<&file_text_open_read>("file_text_open_read"),
    Builtin<&file_text_open_write>("file_text_open_write"),
    Builtin<&file_text_open_append>("file_text_open_append"),
    Builtin<&file_text_close>("file_text_close"),
    Builtin<&file_text_read_string>("file_text_read_string"),
    Builtin<&file_text_readln>("file_text_readln"),
    Builtin<&file_text_read_real>("file_text_read_real"),
    Builtin<&file_text_eof>("file_text_eof"),
    Builtin<&file_text_eoln>("file_text_eoln"),
    Builtin<&file_text_write_string>("file_text_write_string"),
    Builtin<&file_text_write_real>("file_text_write_real"),
    Builtin<&file_text_writeln>("file_text_writeln"),
    Builtin<&file_find_first>("file_find_first"),
    Builtin<&file_find_next>("file_find_next"),
    Builtin<&file_find_close>("file_find_close"),
    Builtin<&FilenameName>("filename_name"),
    Builtin<&FilenamePath>("filename_path"),
    Builtin<&FilenameDir>("filename_dir"),
    Builtin<&FilenameExt>("filename_ext"),
    Builtin<&FilenameChangeExt>("filename_change_ext"),
};

} // namespace

void Function_AddFile() { Function_Add(kBuiltins); }

} // namespace vesk
