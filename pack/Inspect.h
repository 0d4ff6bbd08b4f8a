#pragma once
// Looks into a finished container: lists it, takes it apart, checks it.
#include "Files/Runner/ContainerRecords.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vesk::pack {

// A whole file; throws std::runtime_error, in words.
std::vector<uint8_t> ReadContainer(const std::filesystem::path& file);

// All that is wrong: every remark and the first error of the records, or else every texture page that does
// not decode and every sound that is no Ogg Vorbis stream. Empty for a good container. `codeCount` as in
// Container_ReadRecords.
std::vector<std::string> Inspect(const ContainerView& container, int32_t codeCount);

// One line an asset: kind, index, name, size and such.
std::string ListAssets(const ContainerRecords& records, const ContainerView& container);

// Pictures as PNG, sounds as Ogg, shaders, rooms, objects, scripts and paths as text, in folders below.
// Returns the number of files. Throws std::runtime_error.
int Extract(const ContainerRecords& records, const ContainerView& container,
            const std::filesystem::path& folder);

} // namespace vesk::pack
