// Any text parses. Reading and writing it turns its order round, so twice over a written text comes back the
// same; the first writing may still lose what no quoted value can hold.
#include "Files/Support/Ini.h"

#include <cstdint>
#include <string>
#include <string_view>

using namespace vesk;

namespace {

std::string Rewritten(std::string_view text) { return IniFile::FromString(text).Serialise(); }

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string written = Rewritten(Rewritten(text));
  if (Rewritten(Rewritten(written)) != written) __builtin_trap();
  IniFile file = IniFile::FromString(text);
  file.Write("section", "key", "value");
  if (file.ReadString("section", "key", "") != "value") __builtin_trap();
  file.DeleteSection("section");
  return 0;
}
