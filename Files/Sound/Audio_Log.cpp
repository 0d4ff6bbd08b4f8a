#include "Files/Sound/Audio_Log.h"

#include "Files/Base/Console.h"
#include "Platform/Threads.h"

#include <cstdarg>
#include <string>
#include <utility>

namespace vesk {

namespace {

struct LogState {
  CMutex lock;
  std::string waiting;
};
LogState g_log;

constexpr size_t kMostWaiting = 1 << 20; // bytes; what comes while nobody reads is dropped

} // namespace

void Audio_Log(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const std::string text = FormatTextV(format, arguments);
  va_end(arguments);
  const CLock lock(g_log.lock);
  if (g_log.waiting.size() < kMostWaiting) g_log.waiting += text;
}

void Audio_FlushLog() {
  std::string text;
  {
    const CLock lock(g_log.lock);
    std::swap(text, g_log.waiting);
  }
  if (!text.empty()) DebugConsole().Output("%s", text.c_str());
}

} // namespace vesk
