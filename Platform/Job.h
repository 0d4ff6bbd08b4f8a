#pragma once
// One piece of work on another thread.
#include <functional>
#include <future>

namespace vesk {

class CJob {
public:
  // The work must not touch what the owner touches before Wait has returned.
  explicit CJob(std::function<void()> work);
  ~CJob() { Wait(); }
  CJob(const CJob&) = delete;
  CJob& operator=(const CJob&) = delete;
  void Wait(); // until the work is done; at once the second time

private:
  std::future<void> m_done;
};

} // namespace vesk
