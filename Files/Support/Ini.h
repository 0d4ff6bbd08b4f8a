#pragma once
// Text files of sections and keys. Names and values are byte strings and compare with case.
// Malformed text never fails: what was read up to there stands.
#include <cstdint>
#include <list>
#include <string>
#include <string_view>

namespace vesk {

struct IniEntry {
  std::string key;
  std::string value;
};

struct IniSection {
  std::string name;
  std::list<IniEntry> entries; // newest first
};

class IniFile {
public:
  // Parses the text; `fileName` is where Save writes, empty for nowhere.
  static IniFile FromString(std::string_view text, std::string fileName = {});
  // Reads the file at this path as it stands; a missing file gives an empty object. False when it could not
  // be read.
  static bool FromFile(const std::string& path, IniFile& result);

  IniSection* FindSection(std::string_view section);
  IniEntry* FindEntry(std::string_view section, std::string_view key);               // null: not there
  int32_t ReadInt(std::string_view section, std::string_view key, int32_t fallback); // leading digits, else 0
  std::string ReadString(std::string_view section, std::string_view key, std::string_view fallback);
  // Section "SYSTEM_COMMAND" stores nothing; with "INI_FILE_FLUSH" and "NOW" it saves at once.
  void Write(std::string_view section, std::string_view key, std::string_view value);
  bool DeleteKey(std::string_view section, std::string_view key); // false: not there
  bool DeleteSection(std::string_view section);
  // Newest section and key first, every value in double quotes, lines end in CR LF.
  std::string Serialise() const;
  // Writes the file when something changed and there is a file name. False, with the reason, when it can't.
  bool Save(std::string* why = nullptr);

  const std::string& FileName() const { return m_fileName; }
  bool Dirty() const { return m_dirty; }
  int32_t LineNumber() const { return m_lineNumber; } // line ends passed while parsing

private:
  class Parser;

  std::string m_fileName;
  std::list<IniSection> m_sections; // newest first
  int32_t m_lineNumber = 0;
  bool m_dirty = false;
};

} // namespace vesk
