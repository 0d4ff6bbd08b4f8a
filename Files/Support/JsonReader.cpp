// The reading half. Plain JSON is read straight into the structures; whatever is unusual (other quotes,
// comments, surrogates, repeated keys, broken text) goes to json-c, whose word is final.
#include "Files/Support/Json.h"
#include "Files/Support/Support_Data_Structures.h"

#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string_view>

#include <json-c/json.h>

namespace vesk {

namespace {

constexpr std::array<double, 23> kPowersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                 1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr ptrdiff_t kExactDigits = 15; // a whole number of so many digits is exact in a double
constexpr ptrdiff_t kInt64Digits = 18;

int32_t NewMap() { return Ds().maps.Create(std::make_unique<CDS_Map>()); }
int32_t NewList() { return Ds().lists.Create(std::make_unique<CDS_List>()); }

// ---- plain JSON ----

class PlainReader {
public:
  explicit PlainReader(const char* text) : m_at(text) {} // NUL-terminated

  // The id of a map, or -1 when the text isn't plain; nothing is left behind then.
  int32_t Read() {
    SkipBlanks();
    if (*m_at != '{') return -1;
    const int32_t map = Object(1);
    SkipBlanks();
    if (map >= 0 && *m_at == '\0') return map;
    if (map >= 0) Ds_DestroyMap(map);
    return -1;
  }

private:
  void SkipBlanks() {
    while (*m_at == ' ' || *m_at == '\t' || *m_at == '\n' || *m_at == '\r') ++m_at;
  }
  bool Take(char wanted) {
    SkipBlanks();
    if (*m_at != wanted) return false;
    ++m_at;
    return true;
  }
  bool TakeWord(std::string_view word) {
    for (size_t i = 0; i < word.size(); ++i)
      if (m_at[i] != word[i]) return false;
    m_at += word.size();
    return true;
  }

  int32_t Object(int depth) {
    const int32_t id = NewMap();
    CDS_Map* map = Ds().maps.Find(id);
    if (depth < kJsonDepth - 1 && Members(*map, depth)) return id;
    Ds_DestroyMap(id);
    return -1;
  }
  bool Members(CDS_Map& map, int depth) {
    ++m_at;
    if (Take('}')) return true;
    do {
      SkipBlanks();
      std::string_view key;
      if (*m_at != '"' || !String(key, m_key) || !Take(':')) return false;
      SkipBlanks();
      if (TakeWord("null")) continue; // members without a value are left out
      CDS_Map::Entry* entry = map.AppendNew(key);
      if (!entry || !Value(entry->value, depth)) return false;
    } while (Take(','));
    return Take('}');
  }

  int32_t Array(int depth) {
    const int32_t id = NewList();
    CDS_List* list = Ds().lists.Find(id);
    if (depth < kJsonDepth - 1 && Elements(*list, depth)) return id;
    Ds_DestroyList(id);
    return -1;
  }
  bool Elements(CDS_List& list, int depth) {
    ++m_at;
    if (Take(']')) return true;
    do {
      SkipBlanks();
      RValue& value = list.values.emplace_back();
      if (!TakeWord("null") && !Value(value, depth)) return false;
    } while (Take(','));
    return Take(']');
  }

  bool Value(RValue& value, int depth) {
    switch (*m_at) {
    case '"': {
      std::string_view text;
      if (!String(text, m_value)) return false;
      value = RValue(text);
      return true;
    }
    case '{': return Nested(value, Object(depth + 1), kMarkMap);
    case '[': return Nested(value, Array(depth + 1), kMarkList);
    case 't': value.SetReal(1); return TakeWord("true");
    case 'f': value.SetReal(0); return TakeWord("false");
    default: return Number(value);
    }
  }
  static bool Nested(RValue& value, int32_t id, uint32_t mark) {
    if (id < 0) return false;
    value.SetReal(id);
    value.kind |= mark;
    return true;
  }

  bool Number(RValue& value) {
    const char* const first = m_at;
    const bool negative = *m_at == '-';
    if (negative) ++m_at;
    const char* const digits = m_at;
    uint64_t whole = 0;
    for (; *m_at >= '0' && *m_at <= '9'; ++m_at) whole = whole * 10 + static_cast<uint64_t>(*m_at - '0');
    const ptrdiff_t before = m_at - digits;
    if (before == 0 || before > kInt64Digits || (before > 1 && *digits == '0')) return false;
    if (*m_at != '.' && *m_at != 'e' && *m_at != 'E') {
      const auto integer = static_cast<int64_t>(whole);
      value.SetReal(static_cast<double>(negative ? -integer : integer));
      return NumberEnds();
    }
    ptrdiff_t behind = 0;
    if (*m_at == '.') {
      const char* const fraction = ++m_at;
      for (; *m_at >= '0' && *m_at <= '9'; ++m_at)
        if (before + (m_at - fraction) < kExactDigits)
          whole = whole * 10 + static_cast<uint64_t>(*m_at - '0');
      behind = m_at - fraction;
      if (behind == 0) return false;
    }
    if (before + behind <= kExactDigits && *m_at != 'e' && *m_at != 'E') {
      const double exact = static_cast<double>(whole) / kPowersOfTen[static_cast<size_t>(behind)];
      value.SetReal(negative ? -exact : exact);
      return NumberEnds();
    }
    if (*m_at == 'e' || *m_at == 'E') {
      ++m_at;
      if (*m_at == '+' || *m_at == '-') ++m_at;
      if (*m_at < '0' || *m_at > '9') return false;
      while (*m_at >= '0' && *m_at <= '9') ++m_at;
    }
    double number = 0;
    const auto result = std::from_chars(first, m_at, number);
    value.SetReal(number);
    return result.ec == std::errc() && result.ptr == m_at && NumberEnds();
  }
  bool NumberEnds() const {
    return *m_at == ',' || *m_at == '}' || *m_at == ']' || *m_at == ' ' || *m_at == '\n' || *m_at == '\r' ||
           *m_at == '\t';
  }

  // `scratch` holds the text when it has escapes; otherwise the view points into the source.
  bool String(std::string_view& text, std::string& scratch) {
    const char* start = ++m_at;
    while (*m_at != '"' && *m_at != '\\' && *m_at != '\0') ++m_at;
    if (*m_at == '"') {
      text = std::string_view(start, static_cast<size_t>(m_at++ - start));
      return true;
    }
    scratch.assign(start, m_at);
    while (*m_at != '"') {
      if (*m_at == '\0' || (*m_at == '\\' && !Escape(scratch))) return false;
      start = m_at;
      while (*m_at != '"' && *m_at != '\\' && *m_at != '\0') ++m_at;
      scratch.append(start, m_at);
    }
    ++m_at;
    text = scratch;
    return true;
  }

  bool Escape(std::string& scratch) {
    ++m_at;
    switch (*m_at++) {
    case '"': scratch += '"'; return true;
    case '\\': scratch += '\\'; return true;
    case '/': scratch += '/'; return true;
    case 'b': scratch += '\b'; return true;
    case 'f': scratch += '\f'; return true;
    case 'n': scratch += '\n'; return true;
    case 'r': scratch += '\r'; return true;
    case 't': scratch += '\t'; return true;
    case 'u': return Unicode(scratch);
    default: return false;
    }
  }
  bool Unicode(std::string& scratch) {
    uint32_t code = 0;
    for (int i = 0; i < 4; ++i, ++m_at) {
      if (!std::isxdigit(static_cast<unsigned char>(*m_at))) return false;
      const char digit = static_cast<char>(std::tolower(static_cast<unsigned char>(*m_at)));
      code = code * 16 + static_cast<uint32_t>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
    }
    if (code == 0 || (code >= 0xD800 && code < 0xE000)) return false;
    if (code < 0x80) {
      scratch += static_cast<char>(code);
    } else if (code < 0x800) {
      scratch += static_cast<char>(0xC0 | code >> 6);
      scratch += static_cast<char>(0x80 | (code & 0x3F));
    } else {
      scratch += static_cast<char>(0xE0 | code >> 12);
      scratch += static_cast<char>(0x80 | (code >> 6 & 0x3F));
      scratch += static_cast<char>(0x80 | (code & 0x3F));
    }
    return true;
  }

  const char* m_at;
  std::string m_key;
  std::string m_value;
};

// ---- json-c ----

int32_t FromObject(json_object* object);
int32_t FromArray(json_object* array);

RValue FromJson(json_object* json) {
  switch (json_object_get_type(json)) {
  case json_type_object: return WithMark(RValue(FromObject(json)), kMarkMap);
  case json_type_array: return WithMark(RValue(FromArray(json)), kMarkList);
  case json_type_string: return RValue(json_object_get_string(json));
  case json_type_boolean: return RValue(json_object_get_boolean(json) != 0);
  case json_type_int:
  case json_type_double: return RValue(json_object_get_double(json));
  case json_type_null: break;
  }
  return {};
}

int32_t FromObject(json_object* object) {
  const int32_t id = NewMap();
  json_object_object_foreach(object, key, member) {
    if (member) Ds().maps.Find(id)->Add(RValue(key), FromJson(member));
  }
  return id;
}

int32_t FromArray(json_object* array) {
  const int32_t id = NewList();
  const size_t length = json_object_array_length(array);
  for (size_t i = 0; i < length; ++i) {
    RValue value = FromJson(json_object_array_get_idx(array, i));
    Ds().lists.Find(id)->values.push_back(std::move(value));
  }
  return id;
}

int32_t ReadUnusual(const std::string& text) {
  json_tokener* tokener = json_tokener_new_ex(kJsonDepth);
  json_object* object = json_tokener_parse_ex(tokener, text.c_str(), -1);
  const bool parsed = json_tokener_get_error(tokener) == json_tokener_success;
  const int32_t map = parsed && json_object_is_type(object, json_type_object) ? FromObject(object) : -1;
  json_object_put(object);
  json_tokener_free(tokener);
  return map;
}

int32_t ReadObject(const std::string& text) {
  const int32_t map = PlainReader(text.c_str()).Read();
  return map >= 0 ? map : ReadUnusual(text);
}

std::string AsDefaultText(std::string_view text) {
  return std::string("{ \"default\" : \"").append(text).append("\" }");
}

} // namespace

int32_t Json_DecodeMap(const RValue& argument) {
  if (!argument.IsString()) {
    char digits[352];
    std::snprintf(digits, sizeof digits, "%.2f", ValueAsReal(argument));
    return ReadObject(AsDefaultText(digits));
  }
  const std::string text(argument.Text().substr(0, argument.Text().find('\0')));
  size_t first = 0;
  size_t last = text.size();
  while (first < last && std::isspace(static_cast<unsigned char>(text[first]))) ++first;
  while (last > first && std::isspace(static_cast<unsigned char>(text[last - 1]))) --last;
  const char opening = first < last ? text[first] : '\0';
  const char closing = first < last ? text[last - 1] : '\0';

  int32_t map = -1;
  if (opening == '{' && closing == '}')
    map = ReadObject(text);
  else if (opening == '[' && closing == ']')
    map = ReadObject("{ \"default\" : " + text + " }");
  return map >= 0 ? map : ReadObject(AsDefaultText(text));
}

} // namespace vesk
