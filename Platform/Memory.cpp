#include "Platform/Memory.h"

#include <cstdio>

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

namespace vesk {

int64_t Memory_ResidentBytes() {
  std::FILE* file = std::fopen("/proc/self/statm", "r");
  if (!file) return 0;
  long long total = 0, resident = 0;
  const bool read = std::fscanf(file, "%lld %lld", &total, &resident) == 2;
  std::fclose(file);
  return read ? resident * sysconf(_SC_PAGESIZE) : 0;
}

int64_t Memory_PeakBytes() {
  rusage usage{};
  return getrusage(RUSAGE_SELF, &usage) == 0 ? static_cast<int64_t>(usage.ru_maxrss) * 1024 : 0;
}

void Memory_GiveBack() { malloc_trim(0); }

} // namespace vesk
