#include "Platform/Files.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace vesk {

namespace fs = std::filesystem;

namespace {

void Explain(std::string* why, const std::string& path, const std::string& reason) {
  if (why) *why = path + ": " + reason;
}
void ExplainErrno(std::string* why, const std::string& path) { Explain(why, path, std::strerror(errno)); }

char Lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool EqualWithoutCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return Lower(a) == Lower(b); });
}

// A rename is only durable when the folder that holds it is.
void SyncFolder(const std::string& path) {
  std::string folder = Path_Folder(path);
  if (folder.empty()) folder = ".";
  const int handle = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0) return;
  fsync(handle);
  close(handle);
}

} // namespace

bool File_Exists(const std::string& path) {
  std::error_code error;
  return fs::is_regular_file(Path_Native(path), error);
}

bool Directory_Exists(const std::string& path) {
  std::error_code error;
  return fs::is_directory(Path_Native(path), error);
}

int64_t File_Size(const std::string& path) {
  std::error_code error;
  const auto size = fs::file_size(Path_Native(path), error);
  return error ? -1 : static_cast<int64_t>(size);
}

bool File_ReadAll(const std::string& path, std::string& bytes, std::string* why) {
  bytes.clear();
  if (Directory_Exists(path)) {
    Explain(why, path, "is a directory");
    return false;
  }
  CFile file;
  if (!file.Open(path, "rb", why)) return false;
  const int64_t size = file.Size();
  if (size > 0) bytes.reserve(static_cast<size_t>(size));
  char block[65536];
  size_t got = 0;
  while ((got = file.Read(block, sizeof block)) > 0) bytes.append(block, got);
  if (file.AtEnd()) return true;
  bytes.clear();
  Explain(why, path, "can't be read to its end");
  return false;
}

bool File_WriteAll(const std::string& path, std::string_view bytes, std::string* why) {
  CReplacementFile file;
  if (!file.Open(path, why)) return false;
  file.Write(bytes);
  return file.Commit(why);
}

bool File_Append(const std::string& path, std::string_view bytes, std::string* why) {
  CFile file;
  if (!file.Open(path, "ab", why)) return false;
  const bool written = file.Write(bytes.data(), bytes.size()) == bytes.size();
  if (file.Close() && written) return true;
  ExplainErrno(why, path);
  return false;
}

bool File_Remove(const std::string& path, std::string* why) {
  if (unlink(Path_Native(path).c_str()) == 0) return true;
  ExplainErrno(why, path);
  return false;
}

bool File_Rename(const std::string& from, const std::string& to, std::string* why) {
  if (std::rename(Path_Native(from).c_str(), Path_Native(to).c_str()) == 0) return true;
  ExplainErrno(why, from);
  return false;
}

bool File_Copy(const std::string& from, const std::string& to, std::string* why) {
  std::string bytes;
  return File_ReadAll(from, bytes, why) && File_WriteAll(to, bytes, why);
}

bool Directory_Make(const std::string& path, std::string* why) {
  const std::string native = Path_Native(path);
  std::error_code error;
  fs::create_directories(native, error);
  if (fs::is_directory(native)) return true;
  Explain(why, path, error ? error.message() : "a file of that name is in the way");
  return false;
}

bool Directory_Remove(const std::string& path, std::string* why) {
  std::error_code error;
  const auto removed = fs::remove_all(Path_Native(path), error);
  if (!error && removed > 0) return true;
  Explain(why, path, error ? error.message() : "does not exist");
  return false;
}

bool File_MatchesPattern(std::string_view name, std::string_view pattern) {
  size_t at = 0, wanted = 0, star = std::string_view::npos, retry = 0;
  while (at < name.size()) {
    if (wanted < pattern.size() && pattern[wanted] == '*') {
      star = wanted++;
      retry = at;
    } else if (wanted < pattern.size() &&
               (pattern[wanted] == '?' || Lower(pattern[wanted]) == Lower(name[at]))) {
      ++at, ++wanted;
    } else if (star != std::string_view::npos) {
      wanted = star + 1;
      at = ++retry;
    } else {
      return false;
    }
  }
  while (wanted < pattern.size() && pattern[wanted] == '*') ++wanted;
  return wanted == pattern.size();
}

std::vector<FileInfo> Directory_Find(const std::string& folder, const std::string& pattern) {
  // "*.*" has always meant every file, with a point in its name or not.
  const std::string_view wanted = pattern == "*.*" ? std::string_view("*") : std::string_view(pattern);
  std::vector<FileInfo> found;
  std::error_code error;
  const std::string native = Path_Native(folder.empty() ? "." : folder);
  for (fs::directory_iterator at(native, error), end; !error && at != end; at.increment(error)) {
    FileInfo info;
    info.name = at->path().filename().string();
    if (!File_MatchesPattern(info.name, wanted)) continue;
    std::error_code failed;
    info.directory = at->is_directory(failed);
    info.hidden = info.name.starts_with('.');
    info.readOnly = access(at->path().c_str(), W_OK) != 0;
    const auto size = info.directory ? 0 : at->file_size(failed);
    info.size = failed ? 0 : static_cast<int64_t>(size);
    found.push_back(std::move(info));
  }
  std::sort(found.begin(), found.end(), [](const FileInfo& left, const FileInfo& right) {
    const auto less = [](char a, char b) {
      return static_cast<unsigned char>(Lower(a)) < static_cast<unsigned char>(Lower(b));
    };
    const auto precedes = [&](const std::string& a, const std::string& b) {
      return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), less);
    };
    if (precedes(left.name, right.name)) return true;
    if (precedes(right.name, left.name)) return false;
    return left.name < right.name;
  });
  return found;
}

std::string Path_Native(const std::string& path) {
  std::string native = path;
  std::replace(native.begin(), native.end(), '\\', '/');
  std::error_code error;
  if (native.empty() || fs::exists(native, error)) return native;

  fs::path known;
  bool exact = false; // a part that does not exist at all: what follows stays as written
  for (const fs::path& part : fs::path(native)) {
    fs::path next = known / part;
    if (!exact && !part.empty() && !fs::exists(next, error)) {
      exact = true;
      const fs::path folder = known.empty() ? fs::path(".") : known;
      for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        if (!EqualWithoutCase(at->path().filename().string(), part.string())) continue;
        next = known / at->path().filename();
        exact = false;
        break;
      }
    }
    known = next;
  }
  return known.string();
}

std::string Path_Full(const std::string& path) {
  std::error_code error;
  const fs::path full = fs::absolute(Path_Native(path), error);
  return error ? Path_Native(path) : full.lexically_normal().string();
}

std::string Path_Folder(const std::string& path) {
  const size_t last = path.find_last_of("/\\");
  return last == std::string::npos ? std::string() : path.substr(0, last + 1);
}

std::string Path_Name(const std::string& path) { return path.substr(Path_Folder(path).size()); }

bool Path_IsAbsolute(const std::string& path) {
  if (path.empty()) return false;
  if (path[0] == '/' || path[0] == '\\') return true;
  return path.size() > 1 && path[1] == ':';
}

std::string Directory_Current() {
  std::error_code error;
  std::string folder = fs::current_path(error).string();
  if (folder.empty() || folder.back() != '/') folder += '/';
  return folder;
}

bool Directory_SetCurrent(const std::string& path) {
  std::error_code error;
  fs::current_path(Path_Native(path), error);
  return !error;
}

std::string Path_Executable() {
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error).string();
}

std::string Directory_UserData() {
  std::string folder;
  if (Environment_Get("XDG_DATA_HOME", folder) && Path_IsAbsolute(folder)) return folder;
  return Environment_Get("HOME", folder) && !folder.empty() ? folder + "/.local/share" : std::string();
}

std::string Directory_UserConfiguration() {
  std::string folder;
  if (Environment_Get("XDG_CONFIG_HOME", folder) && Path_IsAbsolute(folder)) return folder;
  return Environment_Get("HOME", folder) && !folder.empty() ? folder + "/.config" : std::string();
}

std::string Directory_Temporary() {
  std::error_code error;
  std::string folder = fs::temp_directory_path(error).string();
  if (folder.empty()) folder = "/tmp";
  if (folder.back() != '/') folder += '/';
  return folder;
}

bool Environment_Get(const std::string& name, std::string& value) {
  const char* found = std::getenv(name.c_str());
  if (found) value = found;
  return found != nullptr;
}

void Environment_Set(const std::string& name, const std::string& value) {
  setenv(name.c_str(), value.c_str(), 1);
}

// An open file

CFile& CFile::operator=(CFile&& other) noexcept {
  std::swap(m_file, other.m_file);
  return *this;
}

bool CFile::Open(const std::string& path, const char* mode, std::string* why) {
  Close();
  m_file = std::fopen(Path_Native(path).c_str(), mode);
  if (m_file) return true;
  ExplainErrno(why, path);
  return false;
}

bool CFile::Close() {
  if (!m_file) return true;
  const bool whole = std::ferror(m_file) == 0;
  const bool closed = std::fclose(m_file) == 0;
  m_file = nullptr;
  return whole && closed;
}

size_t CFile::Read(void* bytes, size_t count) { return m_file ? std::fread(bytes, 1, count, m_file) : 0; }
size_t CFile::Write(const void* bytes, size_t count) {
  return m_file && count > 0 ? std::fwrite(bytes, 1, count, m_file) : 0;
}
bool CFile::Flush() { return m_file && std::fflush(m_file) == 0; }
bool CFile::Seek(int64_t offset, int origin) { return m_file && fseeko(m_file, offset, origin) == 0; }
int64_t CFile::Tell() const { return m_file ? ftello(m_file) : -1; }

int64_t CFile::Size() {
  if (!m_file) return -1;
  const int64_t here = Tell();
  if (!Seek(0, SEEK_END)) return -1;
  const int64_t size = Tell();
  Seek(here);
  return size;
}

bool CFile::Sync() { return Flush() && fsync(fileno(m_file)) == 0; }

bool CFile::AtEnd() const {
  if (!m_file) return true;
  const int next = std::fgetc(m_file);
  if (next == EOF) return std::ferror(m_file) == 0;
  std::ungetc(next, m_file);
  return false;
}

// A file that replaces another

bool CReplacementFile::Open(const std::string& path, std::string* why) {
  Discard();
  m_path = Path_Native(path);
  if (Directory_Exists(m_path)) {
    Explain(why, path, "is a directory");
    return false;
  }
  std::error_code error;
  if (fs::exists(m_path, error) && !File_Exists(m_path)) {
    Explain(why, path, "is no plain file"); // a device must not give way to one
    return false;
  }
  if (fs::is_symlink(m_path, error)) m_path = fs::weakly_canonical(m_path, error).string();
  if (File_Exists(m_path) && access(m_path.c_str(), W_OK) != 0) {
    ExplainErrno(why, path);
    return false;
  }
  m_beside = m_path + ".part" + std::to_string(getpid());
  m_failed = false;
  if (m_file.Open(m_beside, "wb")) return true;
  ExplainErrno(why, path);
  return false;
}

bool CReplacementFile::Write(std::string_view bytes) {
  if (m_file.Write(bytes.data(), bytes.size()) != bytes.size()) m_failed = true;
  return !m_failed;
}

bool CReplacementFile::Commit(std::string* why) {
  if (!m_file.IsOpen()) {
    Explain(why, m_path, "is not open");
    return false;
  }
  errno = 0;
  const bool flushed = m_file.Sync();
  bool good = m_file.Close() && flushed && !m_failed;
  std::error_code error;
  if (good && File_Exists(m_path)) fs::permissions(m_beside, fs::status(m_path, error).permissions(), error);
  good = good && std::rename(m_beside.c_str(), m_path.c_str()) == 0;
  if (good) {
    SyncFolder(m_path);
    return true;
  }
  Explain(why, m_path, errno != 0 ? std::strerror(errno) : "could not be written whole");
  unlink(m_beside.c_str());
  return false;
}

void CReplacementFile::Discard() {
  if (!m_file.IsOpen()) return;
  m_file.Close();
  unlink(m_beside.c_str());
}

} // namespace vesk
