#pragma once
// Small string scripts that counters, keys and message boxes share.
#include <string>

namespace vesk {

// The number, padded on the left with zeros to `width`.
std::string string_add_zeros(double value, int width);
// Characters `first` to `last`, both counted from 1 and included.
std::string string_copy_improved(std::string text, int first, int last);
// The text with # as line breaks, so that no line is wider than `width` pixels in the current font.
std::string string_make_width(std::string text, double width);
// The name of a file as the current font can show it, at most `width` pixels wide: a # breaks no line, a
// character beyond ASCII shows as ?, and what is too long ends in dots.
std::string drawable_name(const std::string& name, double width);

// "12,7": the two whole numbers of a cell key or a tile value. Text that is no number reads as 0.
struct Cell {
  int x = 0, y = 0;
};
Cell parse_cell(const std::string& key);
std::string cell_key(int x, int y);

} // namespace vesk
