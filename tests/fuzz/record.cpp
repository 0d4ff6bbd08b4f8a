// Any file plays as an input record: what it makes visible is read like any input. A frame is long, so the
// input is laid down again and again until it fills some frames and a broken one.
#include "Files/IO/IO.h"
#include "Files/IO/IO_Functions.h"
#include "Files/IO/IO_Record.h"
#include "Platform/Files.h"

#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

using namespace vesk;

namespace {

std::string Repeated(std::string_view given) {
  if (given.empty()) return "";
  const size_t frames = static_cast<unsigned char>(given.front()) % 4;
  std::string bytes;
  while (bytes.size() < frames * kRecordSize) bytes += given;
  return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string file = Directory_Temporary() + "vesk-fuzz-record-" + std::to_string(getpid());
  const std::string bytes = Repeated(std::string_view(reinterpret_cast<const char*>(data), size));
  std::ofstream(file, std::ios::binary) << bytes;
  std::string why;
  InputState& input = Input();
  if (!input.playback.Open(file, "rb", &why)) __builtin_trap();
  int64_t down = 0;
  for (size_t frame = 0; frame <= bytes.size() / kRecordSize; ++frame) {
    IO_ReadRecord();
    for (int key = 0; key < 256; ++key)
      down += keyboard_check(key) + keyboard_check_pressed(key) + keyboard_check_released(key);
    for (int button = 0; button < 4; ++button) down += mouse_check_button(button);
    down += IO_GetKeyboardLastKey();
    down += static_cast<int64_t>(IO_GetKeyboardLastChar().size());
  }
  input.playback.Close();
  IO_Reset();
  return down == INT64_MIN ? -1 : 0;
}
