#include "Platform/Library.h"

#include <utility>

#include <cerrno>
#include <dlfcn.h>

namespace vesk {

CLibrary& CLibrary::operator=(CLibrary&& other) noexcept {
  std::swap(m_handle, other.m_handle);
  return *this;
}

bool CLibrary::Open(const std::string& path, std::string* why, int* code) {
  Close();
  errno = 0;
  m_handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (m_handle) return true;
  if (code) *code = errno ? errno : ENOEXEC;
  if (why) {
    const char* reason = dlerror();
    *why = reason ? reason : "the library can't be loaded";
  }
  return false;
}

void CLibrary::Close() {
  if (m_handle) dlclose(m_handle);
  m_handle = nullptr;
}

void* CLibrary::Find(const std::string& name) const {
  return m_handle ? dlsym(m_handle, name.c_str()) : nullptr;
}

} // namespace vesk
