#pragma once
// Built-ins of the program as a whole: its command line, its end, its errors, its boxes.
#include <cstdint>
#include <string>
#include <string_view>

namespace vesk {

int32_t parameter_count();                   // words behind the program
std::string parameter_string(int32_t index); // 0 is the program; "" outside
std::string environment_get_variable(std::string_view name);
// Goes on with another game when this one has ended, and with `exitFile` after that one.
void game_change(std::string_view file, std::string_view exitFile);
void show_error(std::string_view text, bool abort); // the error report
void show_message(std::string_view text);           // a box with one button; none when headless
bool show_question(std::string_view text);          // yes or no; no when headless
void show_debug_message(std::string_view text);
bool clipboard_has_text();
std::string clipboard_get_text();
void clipboard_set_text(std::string_view text);

void Function_AddRunner();

} // namespace vesk
