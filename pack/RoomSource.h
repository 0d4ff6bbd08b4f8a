#pragma once
// Rooms and paths as text. assets/README.md describes the form.
#include "pack/ContainerWriter.h"

#include <filesystem>
#include <functional>
#include <string>

namespace vesk::pack {

// What the names in sources stand for; -1 for an unknown one.
struct AssetNames {
  std::function<int(const std::string&)> object, background, code;
};

// The room or path has the file's name. Throws std::runtime_error, in words, with file and line.
Room ReadRoom(const std::filesystem::path& file, const AssetNames& names);
Path ReadPath(const std::filesystem::path& file);

} // namespace vesk::pack
