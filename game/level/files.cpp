#include "game/level/files.h"

#include "Files/Function/Function_External.h"
#include "game/Game.h"

#include <initializer_list>

namespace vesk {

namespace {

constexpr const char* kLibrary = "nsfs.dll";
constexpr double kAnyEncoding = -1;

struct Definition {
  Slot handle;
  const char* function;
  int result;
  std::initializer_list<int> arguments;
};

RValue Call(Slot handle, std::initializer_list<RValue> arguments) {
  return external_call(global[handle], arguments);
}

// With external calls switched off every result is the number 0, which is no name and no line.
std::string CallForText(Slot handle, std::initializer_list<RValue> arguments) {
  const RValue result = Call(handle, arguments);
  return result.IsString() ? std::string(result.Text()) : "";
}

} // namespace

bool FS_init() {
  const Definition definitions[] = {
      {dll_file_text_open_write, "file_text_open_write_ns", ty_real, {ty_string, ty_real}},
      {dll_file_text_write_string, "file_text_write_line_ns", ty_real, {ty_real, ty_string}},
      {dll_file_text_open_read, "file_text_open_read_ns", ty_real, {ty_string, ty_real}},
      {dll_file_text_read_string, "file_text_read_line_ns", ty_string, {ty_real}},
      {dll_file_text_close, "file_text_close_ns", ty_real, {ty_real}},
      {dll_file_exists, "file_exists_ns", ty_real, {ty_string}},
      {dll_file_find_first, "file_find_first_ns", ty_string, {ty_string}},
      {dll_file_find_next, "file_find_next_ns", ty_string, {}},
  };
  bool all_found = true;
  for (const Definition& d : definitions) {
    global[d.handle] = external_define(kLibrary, d.function, dll_cdecl, d.result, d.arguments);
    all_found = all_found && global[d.handle] >= 0;
  }
  return all_found;
}

double FS_file_text_open_write(std::string path) {
  return ValueAsReal(Call(dll_file_text_open_write, {path, kAnyEncoding}));
}
double FS_file_text_write_string(double file, std::string text) {
  return ValueAsReal(Call(dll_file_text_write_string, {file, text}));
}
double FS_file_text_open_read(std::string path) {
  return ValueAsReal(Call(dll_file_text_open_read, {path, kAnyEncoding}));
}
std::string FS_file_text_read_string(double file) { return CallForText(dll_file_text_read_string, {file}); }
double FS_file_text_close(double file) { return ValueAsReal(Call(dll_file_text_close, {file})); }
bool FS_file_exists(std::string path) { return ValueAsBool(Call(dll_file_exists, {path})); }
std::string FS_file_find_first(std::string pattern) { return CallForText(dll_file_find_first, {pattern}); }
std::string FS_file_find_next() { return CallForText(dll_file_find_next, {}); }

} // namespace vesk
