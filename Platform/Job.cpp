#include "Platform/Job.h"

#include <system_error>

namespace vesk {

CJob::CJob(std::function<void()> work) {
  try {
    m_done = std::async(std::launch::async, work);
  } catch (const std::system_error&) {
    work(); // no thread to be had
  }
}

void CJob::Wait() {
  if (m_done.valid()) m_done.get();
}

} // namespace vesk
