#pragma once
// Where the game's files lie: the bundle (the game's directory, read only) and the save area (a directory of
// the user, the only place that the runner's own file built-ins write to). Paths are UTF-8 with "/" or "\".
#include <string>

namespace vesk {

struct FileLocations {
  std::string bundle;   // the game's directory, ends in "/"; also working_directory. Empty: current directory
  std::string saveArea; // ends in "/"; empty: saves go to the bundle
};
FileLocations& Files_Locations();
void Files_ResetLocations();

// Both give an absolute path inside their location, or "" for a path that leads out of it. Nothing is cached.
std::string Files_BundlePath(const std::string& path);
std::string Files_SavePath(const std::string& path); // a path inside the bundle is moved over
// The existing plain file to read: save area first, then bundle; "" when neither has it.
std::string Files_FindForReading(const std::string& path);
// A path as the game's own library takes it: relative to the bundle or absolute, no sandbox.
std::string Files_GamePath(const std::string& path);

} // namespace vesk
