#pragma once
// Shared libraries of the system.
#include <string>

namespace vesk {

class CLibrary {
public:
  CLibrary() = default;
  ~CLibrary() { Close(); }
  CLibrary(const CLibrary&) = delete;
  CLibrary& operator=(const CLibrary&) = delete;
  CLibrary(CLibrary&& other) noexcept : m_handle(other.m_handle) { other.m_handle = nullptr; }
  CLibrary& operator=(CLibrary&& other) noexcept;

  bool Open(const std::string& path, std::string* why = nullptr, int* code = nullptr);
  void Close();
  bool IsOpen() const { return m_handle != nullptr; }
  // Address of an exported function; null when it has none of that name. Valid while the library is open.
  void* Find(const std::string& name) const;

private:
  void* m_handle = nullptr;
};

} // namespace vesk
