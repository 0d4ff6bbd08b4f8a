#pragma once
// Describes the game from the sources in assets/: tables, pictures, sounds, rooms, paths, shaders.
#include "pack/ContainerWriter.h"
#include "pack/RoomSource.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vesk::pack {

// Names of the assets that have no source of their own yet, in index order, sprites first, then backgrounds,
// sounds.
std::vector<std::string> Placeholders(const std::filesystem::path& assets);

// Everything but scripts and objects, which come from the game's own tables. What has no source becomes a
// placeholder of the right size, box, frame count and mask, or of the right length. `cache` keeps compiled
// pictures and sounds between runs; empty for none. Only `object` and `code` of the names are asked. Throws
// std::runtime_error, in words, with file and line.
Game ReadAssets(const std::filesystem::path& assets, const std::filesystem::path& cache, AssetNames names);

} // namespace vesk::pack
