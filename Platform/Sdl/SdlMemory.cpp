#include "Platform/Memory.h"
#include "Platform/Sdl/Sdl.h"

#include <cstdio>
#include <cstdlib>

namespace vesk {

void Memory_Fail(size_t bytes) {
  char text[80];
  std::snprintf(text, sizeof text, "Out of Memory allocating %zu bytes\n", bytes);
  std::fputs(text, stderr);
  if (SDL_WasInit(SDL_INIT_VIDEO))
    SDL_ShowSimpleMessageBox(SDL_MESSAGEBOX_ERROR, "Fatal Memory Error", text, nullptr);
  std::_Exit(EXIT_FAILURE);
}

} // namespace vesk
