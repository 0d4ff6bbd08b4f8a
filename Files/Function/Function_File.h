#pragma once
// The runner's own file built-ins. Reading looks in the save area, then in the bundle; writing goes to the
// save area alone. Paths that lead out of both are refused.
#include <cstdint>
#include <string>
#include <string_view>

namespace vesk {

void Function_AddFile();
void File_Reset(); // closes text files (what was written is kept) and ends the search

inline constexpr int32_t fa_readonly = 1;
inline constexpr int32_t fa_hidden = 2;
inline constexpr int32_t fa_sysfile = 4;
inline constexpr int32_t fa_volumeid = 8;
inline constexpr int32_t fa_directory = 16;
inline constexpr int32_t fa_archive = 32;

bool file_exists(std::string_view path); // a plain file in either place; never an error
bool file_delete(std::string_view path);
bool file_rename(std::string_view from, std::string_view to);
bool file_copy(std::string_view from, std::string_view to);
bool directory_exists(std::string_view path);
bool directory_create(std::string_view path);
bool directory_destroy(std::string_view path);

// Text files: numbers 1 to 31, -1 when opening failed.
int32_t file_text_open_read(std::string_view path);
int32_t file_text_open_write(std::string_view path); // the old file stays until this one is closed
int32_t file_text_open_append(std::string_view path);
void file_text_close(int32_t file);
std::string file_text_read_string(int32_t file); // to the end of the line, which is left unread
std::string file_text_readln(int32_t file);      // through the line end
double file_text_read_real(int32_t file);
bool file_text_eof(int32_t file);
bool file_text_eoln(int32_t file);
void file_text_write_string(int32_t file, std::string_view text); // no line end
void file_text_write_real(int32_t file, double number);
void file_text_writeln(int32_t file);

// Names from both places; plain files, and what `attributes` (fa_) adds. "" when there is no more.
std::string file_find_first(std::string_view mask, int32_t attributes);
std::string file_find_next();
void file_find_close();

} // namespace vesk
