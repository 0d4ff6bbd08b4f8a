#include "Files/Support/Support_Files.h"

#include "Platform/Files.h"

namespace vesk {

namespace {

FileLocations g_locations;

std::string Root(const std::string& location) {
  std::string root = Path_Full(Path_Native(location.empty() ? Directory_Current() : location));
  if (!root.ends_with('/')) root += '/';
  return root;
}

std::string Inside(const std::string& root, const std::string& path) {
  if (path.empty()) return {};
  const std::string native = Path_Native(path);
  const std::string full = Path_Full(Path_IsAbsolute(native) ? native : root + native);
  return full.starts_with(root) && full.size() > root.size() ? Path_Native(full) : std::string();
}

} // namespace

FileLocations& Files_Locations() { return g_locations; }
void Files_ResetLocations() { g_locations = {}; }

std::string Files_BundlePath(const std::string& path) { return Inside(Root(g_locations.bundle), path); }

std::string Files_SavePath(const std::string& path) {
  if (g_locations.saveArea.empty()) return Files_BundlePath(path);
  const std::string root = Root(g_locations.saveArea);
  std::string inside = Inside(root, path);
  if (!inside.empty()) return inside;
  const std::string bundle = Root(g_locations.bundle);
  inside = Inside(bundle, path);
  return inside.empty() ? inside : Inside(root, inside.substr(bundle.size()));
}

std::string Files_FindForReading(const std::string& path) {
  std::string found = Files_SavePath(path);
  if (!found.empty() && File_Exists(found)) return found;
  found = Files_BundlePath(path);
  return !found.empty() && File_Exists(found) ? found : std::string();
}

std::string Files_GamePath(const std::string& path) {
  std::string native = Path_Native(path);
  if (native.empty() || Path_IsAbsolute(native)) return native;
  return Path_Native(Root(g_locations.bundle) + native);
}

} // namespace vesk
