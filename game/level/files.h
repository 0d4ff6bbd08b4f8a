#pragma once
// The game's whole access to the file system: eight functions of the external file library, wrapped one for
// one. Paths are UTF-8 and relative to the game's directory.
#include <string>

namespace vesk {

// Defines the functions. False when the library can't be had.
bool FS_init();

double FS_file_text_open_write(std::string path); // a file id, -1 when it can't be opened
double FS_file_text_write_string(double file, std::string text);
double FS_file_text_open_read(std::string path);
std::string FS_file_text_read_string(double file); // one line
double FS_file_text_close(double file);
bool FS_file_exists(std::string path);
std::string FS_file_find_first(std::string pattern); // a name, "" when there is none
std::string FS_file_find_next();

} // namespace vesk
