// The graphics driver's libraries stay loaded to the end of a test program, or what they keep for the process
// counts as lost.
#include <dlfcn.h>

#include <string>

namespace {

const bool kept = [] {
  void* first = nullptr;
  for (const char* name : {"libEGL.so.1", "libEGL_mesa.so.0", "libGLX_mesa.so.0"})
    if (void* library = dlopen(name, RTLD_NOW | RTLD_NODELETE); library && !first) first = library;
  Dl_info info{};
  void* symbol = first ? dlsym(first, "eglGetDisplay") : nullptr;
  if (!symbol || !dladdr(symbol, &info)) return false;
  const std::string file = info.dli_fname;
  const std::string driver = file.substr(0, file.rfind('/') + 1) + "dri/swrast_dri.so";
  return dlopen(driver.c_str(), RTLD_NOW | RTLD_NODELETE) != nullptr;
}();

} // namespace
