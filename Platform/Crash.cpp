#include "Platform/Crash.h"

#include <csignal>
#include <cstdlib>
#include <initializer_list>

#include <unistd.h>

namespace vesk {

namespace {

void (*installed)(uint32_t, void*) = nullptr;

void OnSignal(int number, siginfo_t* info, void*) {
  std::signal(number, SIG_DFL);
  if (installed) installed(static_cast<uint32_t>(number), info->si_addr);
  _exit(EXIT_FAILURE);
}

} // namespace

void Crash_Install(void (*filter)(uint32_t code, void* address)) {
  installed = filter;
  struct sigaction action {};
  action.sa_sigaction = &OnSignal;
  action.sa_flags = SA_SIGINFO | SA_RESETHAND;
  for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) sigaction(number, &action, nullptr);
}

} // namespace vesk
