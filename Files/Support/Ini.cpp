#include "Files/Support/Ini.h"

#include "Files/Base/Error.h"
#include "Platform/Files.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace vesk {

namespace {

bool IsBlank(char letter) { return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n'; }
bool IsComment(char letter) { return letter == '#' || letter == ';'; }

} // namespace

class IniFile::Parser {
public:
  explicit Parser(std::string_view text) : m_text(text) {
    if (m_text.starts_with("\xEF\xBB\xBF")) m_at = 3;
  }

  bool AtEnd() const { return m_at >= m_text.size(); }
  bool AtSection() const { return !AtEnd() && m_text[m_at] == '['; }
  int32_t Lines() const { return m_lines; }

  bool ReadSection(std::string& name) {
    SkipBlanks();
    while (!AtEnd() && m_text[m_at] != '[') Pass();
    const size_t close = m_text.find(']', std::min(m_at, m_text.size()));
    if (AtEnd() || close == std::string_view::npos) {
      m_at = m_text.size();
      return false;
    }
    const size_t first = m_at + 1;
    name = m_text.substr(first, close - first);
    while (m_at <= close) Pass();
    return true;
  }

  // False when there is none here; the position has moved on unless it stands on "[" or at the end.
  bool ReadEntry(IniEntry& entry) {
    SkipBlanks();
    if (AtEnd() || AtSection()) return false;
    const size_t first = m_at;
    while (!AtEnd() && m_text[m_at] != '=') Pass();
    if (AtEnd()) return false;
    size_t last = m_at;
    while (last > first && (IsBlank(m_text[last - 1]) || IsComment(m_text[last - 1]))) --last;
    entry.key = m_text.substr(first, last - first);
    Pass();
    if (SkipBlanks()) return false; // the value must stand on the key's line
    ReadValue(entry.value);
    return true;
  }

private:
  void Pass() {
    if (m_text[m_at] == '\n') ++m_lines;
    ++m_at;
  }
  bool AtLineEnd() const { return AtEnd() || m_text[m_at] == '\r' || m_text[m_at] == '\n'; }

  // True when a line end was passed.
  bool SkipBlanks() {
    bool passedLine = false;
    while (!AtEnd()) {
      if (IsComment(m_text[m_at])) {
        while (!AtLineEnd()) Pass();
      } else if (IsBlank(m_text[m_at])) {
        passedLine = passedLine || m_text[m_at] == '\r' || m_text[m_at] == '\n';
        Pass();
      } else {
        break;
      }
    }
    return passedLine;
  }

  void ReadValue(std::string& value) {
    const size_t first = m_at;
    const char quote = AtEnd() ? '\0' : m_text[m_at];
    if (quote == '"' || quote == '\'') {
      Pass();
      while (!AtLineEnd() && m_text[m_at] != quote) Pass();
      value = m_text.substr(first + 1, m_at - first - 1);
      while (!AtLineEnd()) Pass();
      return;
    }
    while (!AtLineEnd() && !IsComment(m_text[m_at])) Pass();
    size_t last = m_at;
    while (last > first && (m_text[last - 1] == ' ' || m_text[last - 1] == '\t')) --last;
    value = m_text.substr(first, last - first);
  }

  std::string_view m_text;
  size_t m_at = 0;
  int32_t m_lines = 0;
};

IniFile IniFile::FromString(std::string_view text, std::string fileName) {
  IniFile file;
  file.m_fileName = std::move(fileName);
  Parser parser(text);
  IniSection section;
  bool inSection = parser.ReadSection(section.name);
  if (inSection) file.m_sections.push_front(std::move(section));
  while (inSection && !parser.AtEnd()) {
    IniEntry entry;
    if (parser.ReadEntry(entry)) {
      file.m_sections.front().entries.push_front(std::move(entry));
    } else if (parser.AtSection()) {
      IniSection next;
      inSection = parser.ReadSection(next.name);
      if (inSection) file.m_sections.push_front(std::move(next));
    }
  }
  file.m_lineNumber = parser.Lines();
  return file;
}

bool IniFile::FromFile(const std::string& path, IniFile& result) {
  std::string text;
  const bool exists = File_Exists(path);
  const bool read = !exists || File_ReadAll(path, text);
  result = FromString(text, path);
  return read;
}

IniSection* IniFile::FindSection(std::string_view section) {
  const auto found = std::find_if(m_sections.begin(), m_sections.end(),
                                  [&](const IniSection& each) { return each.name == section; });
  return found == m_sections.end() ? nullptr : &*found;
}

IniEntry* IniFile::FindEntry(std::string_view section, std::string_view key) {
  IniSection* in = FindSection(section);
  if (!in) return nullptr;
  const auto found = std::find_if(in->entries.begin(), in->entries.end(),
                                  [&](const IniEntry& each) { return each.key == key; });
  return found == in->entries.end() ? nullptr : &*found;
}

int32_t IniFile::ReadInt(std::string_view section, std::string_view key, int32_t fallback) {
  const IniEntry* entry = FindEntry(section, key);
  if (!entry) return fallback;
  const long long value = std::strtoll(entry->value.c_str(), nullptr, 10);
  return static_cast<int32_t>(std::clamp<long long>(value, INT32_MIN, INT32_MAX));
}

std::string IniFile::ReadString(std::string_view section, std::string_view key, std::string_view fallback) {
  const IniEntry* entry = FindEntry(section, key);
  return entry ? entry->value : std::string(fallback);
}

void IniFile::Write(std::string_view section, std::string_view key, std::string_view value) {
  m_dirty = true;
  if (section == "SYSTEM_COMMAND") {
    std::string why;
    if (key == "INI_FILE_FLUSH" && value == "NOW" && !Save(&why))
      ReportError("The INI file can't be written: " + why, false);
    return;
  }
  IniSection* in = FindSection(section);
  if (!in) {
    m_sections.push_front({std::string(section), {}});
    in = &m_sections.front();
  }
  if (IniEntry* entry = FindEntry(section, key))
    entry->value = value;
  else
    in->entries.push_front({std::string(key), std::string(value)});
}

bool IniFile::DeleteKey(std::string_view section, std::string_view key) {
  IniSection* in = FindSection(section);
  const IniEntry* entry = FindEntry(section, key);
  if (!in || !entry) return false;
  in->entries.remove_if([&](const IniEntry& each) { return &each == entry; });
  m_dirty = true;
  return true;
}

bool IniFile::DeleteSection(std::string_view section) {
  const IniSection* in = FindSection(section);
  if (!in) return false;
  m_sections.remove_if([&](const IniSection& each) { return &each == in; });
  m_dirty = true;
  return true;
}

std::string IniFile::Serialise() const {
  std::string text;
  for (const IniSection& section : m_sections) {
    text.append("[").append(section.name).append("]\r\n");
    for (const IniEntry& entry : section.entries)
      text.append(entry.key).append("=\"").append(entry.value).append("\"\r\n");
  }
  return text;
}

bool IniFile::Save(std::string* why) {
  if (!m_dirty || m_fileName.empty()) return true;
  const std::string folder = Path_Folder(m_fileName);
  if (!folder.empty() && !Directory_Make(folder, why)) return false;
  if (!File_WriteAll(m_fileName, Serialise(), why)) return false;
  m_dirty = false;
  return true;
}

} // namespace vesk
