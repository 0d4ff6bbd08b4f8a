#pragma once
// Text built-ins. Text is UTF-8; positions and counts are characters, the first is 1. Nothing here reports an
// error for a position or a length: they clamp.
#include "Files/Code/Self.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace vesk {

std::string string(const RValue& value); // 12 gives "12", 1.5 gives "1.50"
double real(const RValue& value);

int32_t string_length(std::string_view text);
std::string string_char_at(std::string_view text, int32_t index); // "" past the end
std::string string_copy(std::string_view text, int32_t index, int32_t count);
std::string string_delete(std::string_view text, int32_t index, int32_t count);
std::string string_insert(std::string_view part, std::string_view text, int32_t index); // before `index`
int32_t string_pos(std::string_view part, std::string_view text);                       // 0 none
int32_t string_count(std::string_view part, std::string_view text); // overlapping ones count
std::string string_replace(std::string_view text, std::string_view part, std::string_view replacement);
std::string string_replace_all(std::string_view text, std::string_view part, std::string_view replacement);
std::string string_digits(std::string_view text);
std::string string_letters(std::string_view text); // of the Latin alphabet
std::string string_lettersdigits(std::string_view text);
std::string string_lower(std::string_view text);
std::string string_upper(std::string_view text);
std::string string_repeat(std::string_view text, int32_t count);
// Padded on the left to total + decimals characters; a text is returned as it is.
std::string string_format(const RValue& value, int32_t total, int32_t decimals);
std::string string_hash_to_newline(std::string_view text); // "\#" keeps the sign
int32_t string_byte_length(std::string_view text);
int32_t string_byte_at(std::string_view text, int32_t index); // bytes, from 1; 0 past the end
std::string string_set_byte_at(std::string_view text, int32_t index, int32_t byte);
int32_t string_ord_at(std::string_view text, int32_t index); // -1 past the end
int32_t ord(std::string_view text);
std::string chr(int32_t character);

void Function_AddString();

} // namespace vesk
