#pragma once
// Line-based text sources: words, "#" comments, errors with file and line.
#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vesk::pack {

// The whole file. Throws std::runtime_error when it can't be read.
std::string ReadTextFile(const std::filesystem::path& file);

// One line's words, taken one after the other. Everything throws std::runtime_error, "FILE:LINE: what is
// wrong".
class SourceLine {
public:
  SourceLine(std::string file, int line, std::vector<std::string> words)
      : m_file(std::move(file)), m_line(line), m_words(std::move(words)) {}
  bool AtEnd() const { return m_next == m_words.size(); }
  std::string Word(const char* what);
  int Integer(const char* what);
  float Real(const char* what);
  bool Accept(std::string_view word); // takes the word when it is the next one
  void Expect(std::string_view word);
  void End(); // nothing may follow
  [[noreturn]] void Fail(const std::string& text) const;

private:
  std::string m_file;
  int m_line;
  std::vector<std::string> m_words;
  size_t m_next = 0;
};

// The lines that hold words; a word that begins with "#" begins a comment.
std::vector<SourceLine> ReadSource(const std::filesystem::path& file);

// A table of tab-separated columns under a heading.
class Table {
public:
  explicit Table(const std::filesystem::path& file);
  size_t Rows() const { return m_rows.size(); }
  const std::string& Text(size_t row, const std::string& column) const;
  int Integer(size_t row, const std::string& column) const;
  double Real(size_t row, const std::string& column) const;
  [[noreturn]] void Fail(size_t row, const std::string& text) const;

private:
  std::string m_file;
  std::map<std::string, size_t> m_columns;
  std::vector<std::vector<std::string>> m_rows;
};

} // namespace vesk::pack
