#include "Platform/Threads.h"

#include <system_error>
#include <utility>

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace vesk {

void CSignal::Raise() {
  {
    const std::lock_guard lock(m_mutex);
    m_raised = true;
  }
  m_condition.notify_one();
}

void CSignal::Wait(int64_t microseconds) {
  std::unique_lock lock(m_mutex);
  if (microseconds < 0)
    m_condition.wait(lock, [this] { return m_raised; });
  else
    m_condition.wait_for(lock, std::chrono::microseconds(microseconds), [this] { return m_raised; });
  m_raised = false;
}

bool Thread_RaisePriority() {
  const auto self = static_cast<id_t>(syscall(SYS_gettid));
  return setpriority(PRIO_PROCESS, self, -10) == 0;
}

bool CThread::Start(std::function<void()> body, bool urgent, int* error) {
  Join();
  try {
    m_thread = std::thread([run = std::move(body), urgent] {
      if (urgent) Thread_RaisePriority();
      run();
    });
  } catch (const std::system_error& failure) {
    if (error) *error = failure.code().value();
    return false;
  }
  return true;
}

void CThread::Join() {
  if (m_thread.joinable()) m_thread.join();
}

} // namespace vesk
