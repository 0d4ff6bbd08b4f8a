// Any text of gamepad mappings parses; what is written back gives the same mapping again.
#include "Files/IO/GamepadMapping.h"

#include <cstdint>
#include <string>
#include <string_view>

using namespace vesk;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  GamepadMappings().clear();
  GamepadMapping_Parse(std::string_view(reinterpret_cast<const char*>(data), size));
  const std::vector<HardwareMapping> parsed = GamepadMappings();
  for (const HardwareMapping& mapping : parsed) {
    const std::string text = GamepadMapping_Text(mapping);
    GamepadMappings().clear();
    GamepadMapping_Parse(text);
    if (!GamepadMappings().empty() && GamepadMapping_Text(GamepadMappings().front()) != text)
      __builtin_trap();
    GamepadMapping_Find(mapping.guid);
  }
  return 0;
}
