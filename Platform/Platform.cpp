#include "Platform/Platform.h"

#include "Platform/HandDriven.h"

namespace vesk {

namespace {

CHandDrivenPlatform quiet;
Platform current;
bool isSet = false;

} // namespace

const Platform& Platform_Get() {
  if (!isSet) Platform_Set(nullptr);
  return current;
}

void Platform_Set(const Platform* platform) {
  current = platform ? *platform : quiet.Interfaces();
  isSet = true;
}

} // namespace vesk
