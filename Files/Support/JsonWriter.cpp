// The writing half: text straight from the structures, byte for byte what json-c's old number format gives.
#include "Files/Base/Error.h"
#include "Files/Support/Json.h"
#include "Files/Support/Support_Data_Structures.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vesk {

namespace {

constexpr double kExactWhole = 9007199254740992.0; // 2^53: below it every whole number prints as an integer
constexpr int kArrayDepth = 64;                    // arrays in arrays; one that holds itself ends there

class Writer {
public:
  std::string text;

  void Map(int32_t id) {
    const CDS_Map* map = Ds().maps.Find(id);
    if (!map || std::find(m_openMaps.begin(), m_openMaps.end(), id) != m_openMaps.end()) {
      text += "null";
      return;
    }
    m_openMaps.push_back(id);
    text += '{';
    if (AllStrings(*map)) {
      const char* separator = " \"";
      for (const CDS_Map::Entry* at = map->First(); at; at = map->Next(at), separator = ", \"") {
        text += separator;
        Member(at->key.Text(), at->value);
      }
    } else {
      MixedKeys(*map);
    }
    text += " }";
    m_openMaps.pop_back();
  }

private:
  static bool AllStrings(const CDS_Map& map) {
    for (const CDS_Map::Entry* at = map.First(); at; at = map.Next(at))
      if (!at->key.IsString()) return false;
    return true;
  }

  // Keys of different kinds may give one text: an object has it once, in its first place, with the last
  // value.
  void MixedKeys(const CDS_Map& map) {
    std::vector<std::pair<std::string, const RValue*>> members;
    std::unordered_map<std::string, size_t> places;
    for (const CDS_Map::Entry* at = map.First(); at; at = map.Next(at)) {
      const std::string key = KeyText(at->key);
      const auto [place, added] = places.emplace(key, members.size());
      if (added)
        members.emplace_back(key, &at->value);
      else
        members[place->second].second = &at->value;
    }
    const char* separator = " \"";
    for (const auto& [key, value] : members) {
      text += separator;
      Member(key, *value);
      separator = ", \"";
    }
  }

  static std::string KeyText(const RValue& key) {
    if (key.IsString()) return std::string(key.Text());
    return key.IsNumber() ? std::to_string(ValueAsInt64(key)) : ValueAsText(key);
  }

  void Member(std::string_view key, const RValue& value) {
    Escaped(key);
    text += "\": ";
    Value(value, 0);
  }

  void List(int32_t id) {
    const CDS_List* list = Ds().lists.Find(id);
    if (!list || std::find(m_openLists.begin(), m_openLists.end(), id) != m_openLists.end()) {
      text += "null";
      return;
    }
    m_openLists.push_back(id);
    text += '[';
    const char* separator = " ";
    for (const RValue& value : list->values) {
      text += separator;
      Value(value, 0);
      separator = ", ";
    }
    text += " ]";
    m_openLists.pop_back();
  }

  void Array(const RefArray* array, int depth) {
    text += '[';
    const char* separator = " ";
    for (int32_t row = 0; array && row < array->rowCount; ++row) {
      for (int32_t column = 0; column < array->rows[row].length; ++column) {
        text += separator;
        Value(array->rows[row].items[column], depth + 1);
        separator = ", ";
      }
    }
    text += " ]";
  }

  void Value(const RValue& value, int depth) {
    switch (value.Kind()) {
    case kReal:
      if (value.kind & kMarkMap)
        Map(static_cast<int32_t>(value.real));
      else if (value.kind & kMarkList)
        List(static_cast<int32_t>(value.real));
      else
        Number(value.real);
      break;
    case kString:
      text += '"';
      Escaped(value.Text());
      text += '"';
      break;
    case kBool: text += value.real > 0.5 ? "true" : "false"; break;
    case kInt32: text += std::to_string(value.int32); break;
    case kInt64: text += std::to_string(value.int64); break;
    case kArray:
      if (depth < kArrayDepth)
        Array(value.array, depth);
      else
        text += "null";
      break;
    case kPtr: Pointer(value.ptr); break;
    case kObject:
      ReportError("json_encode: a script object has no JSON form");
      text += "null";
      break;
    default: text += "null"; break;
    }
  }

  void Number(double number) {
    char digits[352]; // the largest double has 309 digits before the point
    if (std::abs(number) < kExactWhole && number == std::trunc(number) &&
        (number != 0 || !std::signbit(number))) {
      const auto end = std::to_chars(digits, digits + sizeof digits, static_cast<int64_t>(number)).ptr;
      text.append(digits, end);
      text += ".000000";
      return;
    }
    const int length = std::snprintf(digits, sizeof digits, "%lf", number);
    text.append(digits, static_cast<size_t>(length));
  }

  void Pointer(const void* pointer) {
    char digits[32];
    const int length = std::snprintf(digits, sizeof digits, "\"%p\"", pointer);
    text.append(digits, static_cast<size_t>(length));
  }

  void Escaped(std::string_view plain) {
    size_t done = 0;
    for (size_t at = 0; at < plain.size(); ++at) {
      const auto letter = static_cast<unsigned char>(plain[at]);
      if (letter >= 32 && letter != '"' && letter != '\\' && letter != '/') continue;
      text.append(plain, done, at - done);
      done = at + 1;
      Escape(letter);
    }
    text.append(plain, done);
  }

  void Escape(unsigned char letter) {
    switch (letter) {
    case '"': text += "\\\""; return;
    case '\\': text += "\\\\"; return;
    case '/': text += "\\/"; return;
    case '\b': text += "\\b"; return;
    case '\t': text += "\\t"; return;
    case '\n': text += "\\n"; return;
    case '\r': text += "\\r"; return;
    default: break;
    }
    text += "\\u00";
    text += "0123456789abcdef"[letter >> 4];
    text += "0123456789abcdef"[letter & 15];
  }

  std::vector<int32_t> m_openMaps;
  std::vector<int32_t> m_openLists;
};

} // namespace

std::string Json_EncodeMap(int32_t map) {
  if (!Ds().maps.Find(map)) return {};
  Writer writer;
  writer.Map(map);
  return std::move(writer.text);
}

} // namespace vesk
