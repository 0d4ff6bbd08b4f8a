// Any text parses; what is written back reads the same once its values are quoted.
#include "Files/Support/Ini.h"

#include <cstdint>
#include <string_view>

using namespace vesk;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  IniFile file = IniFile::FromString(std::string_view(reinterpret_cast<const char*>(data), size));
  const std::string text = file.Serialise();
  IniFile::FromString(text).Serialise();
  file.Write("section", "key", "value");
  if (file.ReadString("section", "key", "") != "value") __builtin_trap();
  file.DeleteSection("section");
  return 0;
}
