#pragma once
// Loading of a game: the pre-scan of the container before there is a window, and the load of its chunks into
// the runner's tables after it.
#include "Files/Code/Code.h"
#include "Files/Runner/ContainerRecords.h"

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace vesk {

// A family of built-ins as the pre-scan registers and logs it: "Math..".
struct BuiltinGroup {
  const char* name;
  void (*add)();
};

struct LoadState {
  ContainerView container;
  // Of the container above, checked; empty when `error` says what is wrong with it. Its header and options
  // are for the window, the clock and the drawing to apply.
  ContainerRecords records;
  std::string error;          // in words, for the player; empty when all is well
  bool hasHeader = false;     // the pre-scan found a header
  bool scriptObjects = false; // the header asks for garbage-collected objects
  // Texture pages of the page entries as the file has them: the load writes texture ids in their place.
  std::vector<std::pair<uint32_t, uint16_t>> pageNumbers;
};
LoadState& Load();
// Puts the container's bytes back as they were, so that they can be loaded again. To be called while they are
// still in memory.
void Load_Reset();

// Reads the container and takes the header from it; then registers the built-ins. Without a good container
// nothing is registered, the reason stands in Load().error and on the release channel, and the result is
// false. `codeCount` as in Container_ReadRecords. The bytes must stay until Load_Reset.
bool Container_PreScan(const ContainerView& container, int32_t codeCount,
                       std::span<const BuiltinGroup> builtins);

// Fills the tables of assets from the container of the pre-scan and gives the descriptor's tables their ids.
// False when the container is refused or holds an unknown chunk; Load().error says why. Render device and
// audio should be there, but needn't.
bool LoadGameData(const ContainerView& container, GameDescriptor& descriptor);

// The value of a named constant of the options, such as "@@SleepMargin"; null when there is none.
const char* Load_Constant(std::string_view name);

} // namespace vesk
