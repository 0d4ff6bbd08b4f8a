#include "Files/Support/ValueText.h"

#include "Files/Support/Support_Data_Structures.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

namespace vesk {

namespace {

constexpr int kDeepest = 100;        // arrays in arrays; one that holds itself ends there
constexpr int32_t kMostRows = 32000; // of an array that is read

template <class T> std::string Shortest(T value) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

template <class T> bool Whole(std::string_view text, T& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

std::string Quoted(std::string_view plain) {
  std::string text = "\"";
  for (const char letter : plain) {
    if (letter == '"' || letter == '\\') text += '\\';
    if (letter == '\n')
      text += "\\n";
    else if (letter == '\r')
      text += "\\r";
    else
      text += letter;
  }
  return text + "\"";
}

constexpr struct {
  std::string_view text;
  uint32_t kind;
} kWords[] = {{"undefined", kUndefined}, {"unset", kUnset}, {"null", kNull}};

void Write(std::string& out, const RValue& value, int depth) {
  switch (value.Kind()) {
  case kReal:
    if (value.kind & kMarks) out += value.kind & kMarkMap ? "map:" : "list:";
    out += Shortest(value.real);
    return;
  case kBool: out += "bool:" + Shortest(value.real); return;
  case kInt32: out += "int32:" + std::to_string(value.int32); return;
  case kInt64: out += "int64:" + std::to_string(value.int64); return;
  case kString: out += value.string ? Quoted(value.Text()) : "absent"; return;
  case kArray:
    out += '[';
    for (int32_t row = 0; depth < kDeepest && row < ArrayHeight2d(value); ++row) {
      if (row > 0) out += ';';
      for (int32_t column = 0; column < ArrayLength2d(value, row); ++column) {
        if (column > 0) out += ',';
        Write(out, *ArrayElementForRead(value, int64_t{row} * kRowStride + column), depth + 1);
      }
    }
    out += ']';
    return;
  default: break;
  }
  for (const auto& word : kWords)
    if (word.kind == value.Kind()) {
      out += word.text;
      return;
    }
  out += "undefined";
}

class Reader {
public:
  explicit Reader(std::string_view text) : m_text(text) {}
  bool All(RValue& value) { return Value(value, 0) && m_at == m_text.size(); }

private:
  bool Take(std::string_view word) {
    if (!m_text.substr(m_at).starts_with(word)) return false;
    m_at += word.size();
    return true;
  }
  std::string_view Plain() { // up to what ends an element
    const size_t end = std::min(m_text.find_first_of(",;]", m_at), m_text.size());
    return m_text.substr(std::exchange(m_at, end), end - m_at);
  }
  bool Real(RValue& value, uint32_t kind) {
    double number = 0;
    if (!Whole(Plain(), number)) return false;
    value = RValue(number);
    value.kind = kind;
    return true;
  }
  bool Integer(RValue& value, ValueKind kind) {
    int64_t number = 0;
    if (!Whole(Plain(), number)) return false;
    value.SetNumber(kind, number);
    return true;
  }
  bool Text(RValue& value) {
    std::string plain;
    for (; m_at < m_text.size() && m_text[m_at] != '"'; ++m_at) {
      const bool escaped = m_text[m_at] == '\\';
      if (escaped && ++m_at == m_text.size()) return false;
      const char letter = m_text[m_at];
      plain += escaped && letter == 'n' ? '\n' : escaped && letter == 'r' ? '\r' : letter;
    }
    value = RValue(plain);
    return Take("\"");
  }
  bool Array(RValue& value, int depth) {
    value = ArrayCreate(0, RValue());
    int64_t row = 0, column = 0;
    if (Take("]")) return true;
    for (;;) {
      const bool ends = m_at < m_text.size() && (m_text[m_at] == ';' || m_text[m_at] == ']');
      if (!ends) {
        RValue element;
        if (column >= kRowStride || !Value(element, depth)) return false;
        ArrayWrite(value, row * kRowStride + column, element);
      }
      if (Take(",")) {
        ++column;
      } else if (Take(";")) {
        column = 0;
        if (++row >= kMostRows) return false;
      } else {
        return Take("]");
      }
    }
  }
  bool Value(RValue& value, int depth) {
    value.SetUndefined();
    if (depth > kDeepest) return false;
    if (Take("\"")) return Text(value);
    if (Take("[")) return Array(value, depth + 1);
    if (Take("bool:")) return Real(value, kBool);
    if (Take("map:")) return Real(value, kReal | kMarkMap);
    if (Take("list:")) return Real(value, kReal | kMarkList);
    if (Take("int32:")) return Integer(value, kInt32);
    if (Take("int64:")) return Integer(value, kInt64);
    if (Take("absent")) {
      value.string = nullptr;
      value.kind = kString;
      return true;
    }
    for (const auto& word : kWords)
      if (Take(word.text)) {
        value.kind = word.kind;
        return true;
      }
    return Real(value, kReal);
  }

  std::string_view m_text;
  size_t m_at = 0;
};

} // namespace

std::string ValueText_Write(const RValue& value) {
  std::string text;
  Write(text, value, 0);
  return text;
}

bool ValueText_Read(std::string_view text, RValue& value) {
  if (Reader(text).All(value)) return true;
  value.SetUndefined();
  return false;
}

std::string NumberText_Write(double value) { return Shortest(value); }
std::string NumberText_Write(float value) { return Shortest(value); }
bool NumberText_Read(std::string_view text, double& value) { return Whole(text, value); }
bool NumberText_Read(std::string_view text, float& value) { return Whole(text, value); }

} // namespace vesk
