// Any text decodes to a map or to nothing, and what was decoded encodes to a text that means the same.
#include "Files/Base/Error.h"
#include "Files/Function/Function_Data_Structures.h"
#include "Files/Support/Support_Data_Structures.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace vesk;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Error().showBox = false;
  const int32_t map = json_decode(RValue(std::string_view(reinterpret_cast<const char*>(data), size)));
  if (map >= 0) {
    const std::string text = json_encode(map);
    ds_map_destroy(map);
    const int32_t again = json_decode(text);
    if (again >= 0) {
      // Numbers lose digits once, on the first writing, and no more.
      if (json_encode(again) != text && text.find("nan") == text.npos && text.find("inf") == text.npos)
        std::abort();
      ds_map_destroy(again);
    }
  }
  if (ds_exists(0, ds_type_map) || ds_exists(0, ds_type_list)) std::abort(); // something was left behind
  return 0;
}
