// Any file plays as an input record: what it makes visible is read like any input.
#include "Files/IO/IO.h"
#include "Files/IO/IO_Functions.h"
#include "Files/IO/IO_Record.h"
#include "Platform/Files.h"

#include <unistd.h>

#include <cstdint>
#include <string>
#include <string_view>

using namespace vesk;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string file = Directory_Temporary() + "vesk-fuzz-record-" + std::to_string(getpid());
  std::string why;
  if (!File_WriteAll(file, std::string_view(reinterpret_cast<const char*>(data), size), &why))
    __builtin_trap();
  InputState& input = Input();
  if (!input.playback.Open(file, "rb", &why)) __builtin_trap();
  int down = 0;
  for (size_t frame = 0; frame <= size / kRecordSize; ++frame) {
    IO_ReadRecord();
    for (int key = 0; key < 256; ++key)
      down += keyboard_check(key) + keyboard_check_pressed(key) + keyboard_check_released(key);
    for (int button = 0; button < 4; ++button) down += mouse_check_button(button);
    down += IO_GetKeyboardLastKey() + static_cast<int>(IO_GetKeyboardLastChar().size());
  }
  input.playback.Close();
  IO_Reset();
  return down < 0 ? -1 : 0;
}
