#include "Files/Function/Function_String.h"

#include "Files/Function/Function.h"

#include <algorithm>
#include <cstdio>
#include <cwctype>
#include <vector>

namespace vesk {

namespace {

constexpr int32_t kWidthLimit = 1 << 20; // of a padded number
constexpr size_t kRepeatLimit = 1 << 28; // bytes

// Bytes of the character that starts at `at`. Where the text is cut short or isn't UTF-8 the character ends
// early, so that it never swallows the one behind it.
size_t CharBytes(std::string_view text, size_t at) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const size_t wanted = byte(at) < 0x80 ? 1 : byte(at) & 0x20 ? 3 : 2;
  size_t bytes = 1;
  while (bytes < wanted && at + bytes < text.size() && (byte(at + bytes) & 0xC0) == 0x80) ++bytes;
  return bytes;
}

char16_t Decode(std::string_view bytes) {
  const auto byte = [&](size_t i) { return static_cast<uint32_t>(static_cast<unsigned char>(bytes[i])); };
  if (bytes.size() >= 3)
    return static_cast<char16_t>(byte(0) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F));
  if (bytes.size() == 2) return static_cast<char16_t>((byte(0) & 0x1F) << 6 | (byte(1) & 0x3F));
  return static_cast<char16_t>(byte(0));
}

void Encode(std::string& out, uint32_t unit) {
  const auto put = [&out](uint32_t byte) { out += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (unit < 0x80) {
    put(unit);
  } else if (unit < 0x800) {
    put(0xC0 | unit >> 6);
    put(0x80 | (unit & 0x3F));
  } else {
    put(0xE0 | (unit >> 12 & 0xF));
    put(0x80 | (unit >> 6 & 0x3F));
    put(0x80 | (unit & 0x3F));
  }
}

// The byte at which character `index` (from 1) starts; the size of the text when it ends before.
size_t ByteOf(std::string_view text, int32_t index) {
  size_t at = 0;
  for (int32_t i = 1; i < index && at < text.size(); ++i) at += CharBytes(text, at);
  return at;
}

int32_t CountChars(std::string_view text) {
  int32_t count = 0;
  for (size_t at = 0; at < text.size(); at += CharBytes(text, at)) ++count;
  return count;
}

bool IsPlain(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

// A text taken apart into characters and the bytes at which they start.
struct Characters {
  std::u16string units;
  std::vector<size_t> starts; // one more than units: the last is the size
  explicit Characters(std::string_view text) {
    size_t at = 0;
    while (at < text.size()) {
      const size_t bytes = CharBytes(text, at);
      units += Decode(text.substr(at, bytes));
      starts.push_back(at);
      at += bytes;
    }
    starts.push_back(at);
  }
};

// Calls visit(first byte, byte behind, character from 0) for the hits, none overlapping, until it returns
// false.
template <class Visit> void ForEachHit(std::string_view text, std::string_view part, Visit visit) {
  if (text.empty() || part.empty()) return;
  if (IsPlain(text) && IsPlain(part)) {
    for (size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + part.size()))
      if (!visit(at, at + part.size(), at)) return;
    return;
  }
  const Characters haystack(text), needle(part);
  const size_t length = needle.units.size();
  for (size_t at = haystack.units.find(needle.units); at != std::u16string::npos;
       at = haystack.units.find(needle.units, at + length))
    if (!visit(haystack.starts[at], haystack.starts[at + length], at)) return;
}

std::string Replace(std::string_view text, std::string_view part, std::string_view replacement,
                    bool allHits) {
  std::string result;
  size_t kept = 0;
  ForEachHit(text, part, [&](size_t first, size_t behind, size_t) {
    result += text.substr(kept, first - kept);
    result += replacement;
    kept = behind;
    return allHits;
  });
  result += text.substr(kept);
  return result;
}

template <class Keep> std::string Filter(std::string_view text, Keep keep) {
  std::string result;
  std::copy_if(text.begin(), text.end(), std::back_inserter(result), keep);
  return result;
}
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

template <class Convert> std::string ConvertCase(std::string_view text, Convert convert) {
  std::string result;
  result.reserve(text.size());
  for (size_t at = 0; at < text.size();) {
    const std::string_view bytes = text.substr(at, CharBytes(text, at));
    const char16_t unit = Decode(bytes);
    const auto converted = static_cast<uint32_t>(convert(static_cast<std::wint_t>(unit)));
    if (converted == unit)
      result += bytes; // keeps what is no well-formed character
    else
      Encode(result, converted);
    at += bytes.size();
  }
  return result;
}

} // namespace

std::string string(const RValue& value) { return ValueAsText(value); }
double real(const RValue& value) { return ValueAsReal(value); }

int32_t string_length(std::string_view text) { return CountChars(text); }

std::string string_char_at(std::string_view text, int32_t index) { return string_copy(text, index, 1); }

std::string string_copy(std::string_view text, int32_t index, int32_t count) {
  const size_t first = ByteOf(text, index);
  size_t behind = first;
  for (int32_t i = 0; i < count && behind < text.size(); ++i) behind += CharBytes(text, behind);
  return std::string(text.substr(first, behind - first));
}

std::string string_delete(std::string_view text, int32_t index, int32_t count) {
  const size_t first = ByteOf(text, index);
  const size_t removed = string_copy(text, index, count).size();
  std::string result(text);
  result.erase(first, removed);
  return result;
}

std::string string_insert(std::string_view part, std::string_view text, int32_t index) {
  std::string result(text);
  result.insert(ByteOf(text, index), part);
  return result;
}

int32_t string_pos(std::string_view part, std::string_view text) {
  int32_t position = 0;
  ForEachHit(text, part, [&](size_t, size_t, size_t character) {
    position = static_cast<int32_t>(character) + 1;
    return false;
  });
  return position;
}

int32_t string_count(std::string_view part, std::string_view text) {
  if (part.empty()) return 0;
  int32_t count = 0;
  for (size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

std::string string_replace(std::string_view text, std::string_view part, std::string_view replacement) {
  return Replace(text, part, replacement, false);
}
std::string string_replace_all(std::string_view text, std::string_view part, std::string_view replacement) {
  return Replace(text, part, replacement, true);
}

std::string string_digits(std::string_view text) { return Filter(text, IsDigit); }
std::string string_letters(std::string_view text) { return Filter(text, IsLetter); }
std::string string_lettersdigits(std::string_view text) {
  return Filter(text, [](char c) { return IsDigit(c) || IsLetter(c); });
}

std::string string_lower(std::string_view text) {
  return ConvertCase(text, [](std::wint_t c) { return std::towlower(c); });
}
std::string string_upper(std::string_view text) {
  return ConvertCase(text, [](std::wint_t c) { return std::towupper(c); });
}

std::string string_repeat(std::string_view text, int32_t count) {
  std::string result;
  for (int32_t i = 0; i < count && result.size() + text.size() <= kRepeatLimit && !text.empty(); ++i)
    result += text;
  return result;
}

std::string string_format(const RValue& value, int32_t total, int32_t decimals) {
  if (value.IsString()) return std::string(value.Text());
  const int precision = std::clamp(decimals, 0, kWidthLimit);
  const int width = std::clamp(total, 0, kWidthLimit) + precision;
  const double number = ValueAsReal(value);
  const int length = std::snprintf(nullptr, 0, "%*.*f", width, precision, number);
  std::string result(length > 0 ? static_cast<size_t>(length) : 0, ' ');
  std::snprintf(result.data(), result.size() + 1, "%*.*f", width, precision, number);
  return result;
}

std::string string_hash_to_newline(std::string_view text) {
  std::string result;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size() && text[i + 1] == '#')
      result += text[++i];
    else
      result += text[i] == '#' ? '\n' : text[i];
  }
  return result;
}

int32_t string_byte_length(std::string_view text) { return static_cast<int32_t>(text.size()); }

int32_t string_byte_at(std::string_view text, int32_t index) {
  const auto at = static_cast<size_t>(std::max(index, 1) - 1);
  return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

std::string string_set_byte_at(std::string_view text, int32_t index, int32_t byte) {
  std::string result(text);
  const auto at = static_cast<size_t>(std::max(index, 1) - 1);
  if (at < result.size()) result[at] = static_cast<char>(byte);
  return result;
}

int32_t string_ord_at(std::string_view text, int32_t index) {
  const std::string character = string_char_at(text, index);
  return character.empty() ? -1 : Decode(character);
}

int32_t ord(std::string_view text) { return text.empty() ? 0 : string_ord_at(text, 1); }

std::string chr(int32_t character) {
  std::string result;
  if ((character & 0xFFFF) != 0) Encode(result, static_cast<uint32_t>(character) & 0xFFFF);
  return result;
}

namespace {

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&string>("string"),
    Builtin<&real>("real"),
    Builtin<&string_length>("string_length"),
    Builtin<&string_char_at>("string_char_at"),
    Builtin<&string_copy>("string_copy"),
    Builtin<&string_delete>("string_delete"),
    Builtin<&string_insert>("string_insert"),
    Builtin<&string_pos>("string_pos"),
    Builtin<&string_count>("string_count"),
    Builtin<&string_replace>("string_replace"),
    Builtin<&string_replace_all>("string_replace_all"),
    Builtin<&string_digits>("string_digits"),
    Builtin<&string_letters>("string_letters"),
    Builtin<&string_lettersdigits>("string_lettersdigits"),
    Builtin<&string_lower>("string_lower"),
    Builtin<&string_upper>("string_upper"),
    Builtin<&string_repeat>("string_repeat"),
    Builtin<&string_format>("string_format"),
    Builtin<&string_hash_to_newline>("string_hash_to_newline"),
    Builtin<&string_byte_length>("string_byte_length"),
    Builtin<&string_byte_at>("string_byte_at"),
    Builtin<&string_set_byte_at>("string_set_byte_at"),
    Builtin<&string_ord_at>("string_ord_at"),
    Builtin<&ord>("ord"),
    Builtin<&chr>("chr"),
};

} // namespace

void Function_AddString() { Function_Add(kBuiltins); }

} // namespace vesk
