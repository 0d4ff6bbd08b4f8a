#include "game/text.h"

#include "Files/Font/Font.h"
#include "Files/Function/Function_String.h"

namespace vesk {

std::string string_add_zeros(double value, int width) {
  return string_replace_all(string_format(value, width, 0), " ", "0");
}

std::string string_copy_improved(std::string text, int first, int last) {
  std::string result;
  for (int at = first; at <= last; ++at) result += string_char_at(text, at);
  return result;
}

std::string string_make_width(std::string text, double width) {
  std::string rest = text + " ";
  std::string result;
  for (int words = string_count(" ", rest); words > 0; --words) {
    const int blank = string_pos(" ", rest);
    const std::string word = string_copy(rest, 1, blank);
    rest = string_copy(rest, blank + 1, string_length(rest));
    if (string_width(result + word) > width) result += "#";
    result += word;
  }
  return result;
}

std::string drawable_name(const std::string& name, double width) {
  const auto shown = [](const std::string& part) { return string_replace_all(part, "#", "\\#"); };
  std::string whole;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80 && byte < 0xC0) continue; // the rest of a character that has its sign
    whole += c >= ' ' && c <= '~' ? c : '?';
  }
  if (string_width(shown(whole)) <= width) return shown(whole);
  while (!whole.empty() && string_width(shown(whole) + "...") > width) whole.pop_back();
  return shown(whole) + "...";
}

Cell parse_cell(const std::string& key) {
  std::string parts[2];
  int part = 0;
  for (const char c : key) {
    if (c == ',')
      part = 1;
    else
      parts[part] += c;
  }
  return {static_cast<int>(real(RValue(parts[0]))), static_cast<int>(real(RValue(parts[1])))};
}

std::string cell_key(int x, int y) { return std::to_string(x) + "," + std::to_string(y); }

} // namespace vesk
