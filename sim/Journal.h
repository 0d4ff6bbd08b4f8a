#pragma once
// A play, frame by frame, as a text file: the checksum of each frame and every field of the world that
// changed. A later run is held against it, and the first field that differs is named.
#include <cstdint>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace vesk {

struct WorldPart;

class JournalWriter {
public:
  std::string Open(const std::string& file); // "" or, in words, why not
  void Frame();                              // notes the world as it is now
  std::string Close();

private:
  struct Part {
    uint64_t digest = 0;
    std::map<std::string, std::string> fields;
    bool seen = false;
  };
  void Note(const WorldPart& part);

  std::string m_name;
  std::ofstream m_file;
  std::map<std::string, Part> m_parts;
};

class JournalReader {
public:
  std::string Open(const std::string& file);
  // Holds the world against the journal's next frame: "" when they are equal, else the first field that
  // differs, with both values.
  std::string Check();
  std::string Close(); // "" or that the play was longer

private:
  struct Part {
    uint64_t digest = 0;
    std::map<std::string, std::string> fields;
  };
  bool ReadFrame(); // false at the end, or when `m_problem` says what is wrong with the file
  std::string Difference(const WorldPart& part) const;

  std::ifstream m_file;
  std::string m_line, m_problem;
  int64_t m_lineNumber = 0, m_frames = 0;
  std::map<std::string, Part> m_parts;
};

} // namespace vesk
