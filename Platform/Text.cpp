#include "Platform/Text.h"

#include <cstdint>

namespace vesk {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Takes one code point from the front; at least one byte is taken.
char32_t TakeCodePoint(std::string_view& utf8) {
  const auto byte = [&](size_t at) { return static_cast<uint8_t>(utf8[at]); };
  const uint8_t lead = byte(0);
  size_t length = 1;
  char32_t value = lead;
  char32_t least = 0;
  if (lead >= 0xF0 && lead < 0xF8) {
    length = 4, value = lead & 0x07u, least = 0x10000;
  } else if (lead >= 0xE0 && lead < 0xF0) {
    length = 3, value = lead & 0x0Fu, least = 0x800;
  } else if (lead >= 0xC0 && lead < 0xE0) {
    length = 2, value = lead & 0x1Fu, least = 0x80;
  } else if (lead >= 0x80) {
    utf8.remove_prefix(1);
    return kReplacement;
  }
  for (size_t at = 1; at < length; ++at) {
    if (at >= utf8.size() || (byte(at) & 0xC0) != 0x80) {
      utf8.remove_prefix(at);
      return kReplacement;
    }
    value = value << 6 | (byte(at) & 0x3Fu);
  }
  utf8.remove_prefix(length);
  const bool surrogate = value >= 0xD800 && value < 0xE000;
  return value < least || value > 0x10FFFF || surrogate ? kReplacement : value;
}

void AppendUtf8(std::string& text, char32_t value) {
  const auto tail = [&](int shift) { text += static_cast<char>(0x80 | (value >> shift & 0x3F)); };
  if (value < 0x80) {
    text += static_cast<char>(value);
  } else if (value < 0x800) {
    text += static_cast<char>(0xC0 | value >> 6);
    tail(0);
  } else if (value < 0x10000) {
    text += static_cast<char>(0xE0 | value >> 12);
    tail(6), tail(0);
  } else {
    text += static_cast<char>(0xF0 | value >> 18);
    tail(12), tail(6), tail(0);
  }
}

} // namespace

std::u16string Text_ToUtf16(std::string_view utf8) {
  std::u16string units;
  while (!utf8.empty()) {
    const char32_t value = TakeCodePoint(utf8);
    if (value < 0x10000) {
      units += static_cast<char16_t>(value);
    } else {
      units += static_cast<char16_t>(0xD800 + ((value - 0x10000) >> 10));
      units += static_cast<char16_t>(0xDC00 + ((value - 0x10000) & 0x3FF));
    }
  }
  return units;
}

std::string Text_ToUtf8(std::u16string_view utf16) {
  std::string text;
  for (size_t at = 0; at < utf16.size(); ++at) {
    const char32_t unit = utf16[at];
    if (unit < 0xD800 || unit >= 0xE000) {
      AppendUtf8(text, unit);
    } else if (unit < 0xDC00 && at + 1 < utf16.size() && utf16[at + 1] >= 0xDC00 && utf16[at + 1] < 0xE000) {
      AppendUtf8(text, 0x10000 + ((unit - 0xD800) << 10) + (utf16[at + 1] - 0xDC00u));
      ++at;
    } else {
      AppendUtf8(text, kReplacement);
    }
  }
  return text;
}

} // namespace vesk
