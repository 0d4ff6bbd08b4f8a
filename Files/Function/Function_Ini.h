#pragma once
// The ini_ built-ins: one open file at a time, in the save area or, when that has none, read from the bundle.
#include "Files/Code/Value.h"

#include <string>
#include <string_view>

namespace vesk {

void Function_AddIni();
void Ini_Reset(); // drops the open file without saving

void ini_open(std::string_view fileName); // closes the one that is open, as ini_close does
void ini_open_from_string(const RValue& text);
std::string ini_close(); // saves what was changed; the file's text
std::string ini_read_string(std::string_view section, std::string_view key, const RValue& fallback);
double ini_read_real(std::string_view section, std::string_view key, const RValue& fallback);
void ini_write_string(std::string_view section, std::string_view key, std::string_view value);
void ini_write_real(std::string_view section, std::string_view key, double value);
bool ini_key_exists(std::string_view section, std::string_view key);
bool ini_section_exists(std::string_view section);
void ini_key_delete(std::string_view section, std::string_view key);
void ini_section_delete(std::string_view section);

} // namespace vesk
