#include "pack/TextSource.h"

#include <charconv>
#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace vesk::pack {
namespace {

std::vector<std::string> Split(const std::string& line) {
  std::vector<std::string> words;
  std::istringstream in(line);
  for (std::string word; in >> word && word[0] != '#';) words.push_back(word);
  return words;
}

bool ParseInteger(std::string_view text, int& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

bool ParseReal(std::string_view text, double& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
}

} // namespace

std::string ReadTextFile(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream text;
  if (!in || !(text << in.rdbuf())) throw std::runtime_error(file.string() + ": can't be read");
  return text.str();
}

void SourceLine::Fail(const std::string& text) const {
  throw std::runtime_error(m_file + ":" + std::to_string(m_line) + ": " + text);
}

std::string SourceLine::Word(const char* what) {
  if (AtEnd()) Fail(std::string(what) + " is missing");
  return m_words[m_next++];
}

int SourceLine::Integer(const char* what) {
  const std::string word = Word(what);
  int value = 0;
  if (!ParseInteger(word, value)) Fail(std::string(what) + " \"" + word + "\" is no whole number");
  return value;
}

float SourceLine::Real(const char* what) {
  const std::string word = Word(what);
  double value = 0;
  if (!ParseReal(word, value)) Fail(std::string(what) + " \"" + word + "\" is no number");
  return static_cast<float>(value);
}

bool SourceLine::Accept(std::string_view word) {
  if (AtEnd() || m_words[m_next] != word) return false;
  ++m_next;
  return true;
}

void SourceLine::Expect(std::string_view word) {
  if (!Accept(word))
    Fail("\"" + std::string(word) + "\" is expected" +
         (AtEnd() ? "" : " instead of \"" + m_words[m_next] + "\""));
}

void SourceLine::End() {
  if (!AtEnd()) Fail("\"" + m_words[m_next] + "\" is not expected here");
}

std::vector<SourceLine> ReadSource(const std::filesystem::path& file) {
  std::istringstream in(ReadTextFile(file));
  std::vector<SourceLine> lines;
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (std::vector<std::string> words = Split(line); !words.empty())
      lines.emplace_back(file.string(), number, std::move(words));
  }
  return lines;
}

Table::Table(const std::filesystem::path& file) : m_file(file.string()) {
  std::istringstream in(ReadTextFile(file));
  bool heading = true;
  for (std::string line; std::getline(in, line);) {
    std::vector<std::string> cells;
    std::istringstream row(line);
    for (std::string cell; std::getline(row, cell, '\t');) cells.push_back(cell);
    if (!heading) {
      m_rows.push_back(std::move(cells));
      continue;
    }
    for (size_t i = 0; i < cells.size(); ++i) m_columns[cells[i]] = i;
    heading = false;
  }
}

void Table::Fail(size_t row, const std::string& text) const {
  throw std::runtime_error(m_file + ":" + std::to_string(row + 2) + ": " + text);
}

const std::string& Table::Text(size_t row, const std::string& column) const {
  const auto found = m_columns.find(column);
  if (found == m_columns.end()) throw std::runtime_error(m_file + ": there is no column \"" + column + "\"");
  if (found->second >= m_rows[row].size()) Fail(row, "column \"" + column + "\" is missing");
  return m_rows[row][found->second];
}

int Table::Integer(size_t row, const std::string& column) const {
  int value = 0;
  if (!ParseInteger(Text(row, column), value))
    Fail(row, "column \"" + column + "\" holds \"" + Text(row, column) + "\", not a whole number");
  return value;
}

double Table::Real(size_t row, const std::string& column) const {
  double value = 0;
  if (!ParseReal(Text(row, column), value))
    Fail(row, "column \"" + column + "\" holds \"" + Text(row, column) + "\", not a number");
  return value;
}

} // namespace vesk::pack
