#include "Platform/Platform.h"

#include "Platform/HandDriven.h"

#include <thread>

namespace vesk {

namespace {

CHandDrivenPlatform quiet;
Platform current;
bool isSet = false;
const std::thread::id mainThread = std::this_thread::get_id(); // statics are made on it

} // namespace

const Platform& Platform_Get() {
  if (!isSet) Platform_Set(nullptr);
  return current;
}

bool Platform_IsMainThread() { return std::this_thread::get_id() == mainThread; }

void Platform_Set(const Platform* platform) {
  current = platform ? *platform : quiet.Interfaces();
  isSet = true;
}

} // namespace vesk
