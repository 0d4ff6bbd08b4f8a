#pragma once
// Threads, locks and signals: thin names over the standard library, so that upper floors need none of it.
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

namespace vesk {

using CMutex = std::mutex;
using CLock = std::lock_guard<CMutex>;

// Remembers one Raise until a Wait takes it.
class CSignal {
public:
  void Raise();
  // Waits for a Raise, at most that long; a negative time waits without limit.
  void Wait(int64_t microseconds);

private:
  std::mutex m_mutex;
  std::condition_variable m_condition;
  bool m_raised = false;
};

class CThread {
public:
  ~CThread() { Join(); }
  // False when the system gives no thread; `error` then has the system's error number. `urgent` asks for a
  // higher priority, which the system may refuse without harm.
  bool Start(std::function<void()> body, bool urgent = false, int* error = nullptr);
  void Join(); // waits for the body to end; harmless when nothing runs
  bool Running() const { return m_thread.joinable(); }

private:
  std::thread m_thread;
};

// Makes the calling thread urgent; false when the system refuses.
bool Thread_RaisePriority();

} // namespace vesk
