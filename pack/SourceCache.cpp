#include "pack/SourceCache.h"

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace vesk::pack {

namespace fs = std::filesystem;

std::string HexHash(const std::string& text) {
  uint64_t a = 0xcbf29ce484222325ull, b = 0x9e3779b97f4a7c15ull;
  for (const char c : text) {
    a = (a ^ static_cast<uint8_t>(c)) * 0x100000001b3ull;
    b = (b ^ static_cast<uint8_t>(c)) * 0xff51afd7ed558ccdull, b ^= b >> 29;
  }
  char out[33];
  std::snprintf(out, sizeof out, "%016llx%016llx", static_cast<unsigned long long>(a),
                static_cast<unsigned long long>(b));
  return out;
}

fs::path SourceCache::File(const std::string& name, const std::string& source) const {
  return m_folder / (name + "-" + HexHash(source).substr(0, 24) + m_extension);
}

std::string SourceCache::Read(const std::string& name, const std::string& source) const {
  if (!Keeps()) return {};
  std::ifstream in(File(name, source), std::ios::binary);
  return std::string{std::istreambuf_iterator<char>(in), {}};
}

void SourceCache::Write(const std::string& name, const std::string& source, const std::string& bytes) const {
  if (!Keeps()) return;
  std::error_code ignored;
  fs::create_directories(m_folder, ignored);
  for (const auto& old : fs::directory_iterator(m_folder, ignored))
    if (old.path().filename().string().starts_with(name + "-")) fs::remove(old.path(), ignored);
  const fs::path file = File(name, source), part = file.string() + ".part";
  std::ofstream out(part, std::ios::binary);
  out << bytes;
  out.close();
  if (out) fs::rename(part, file, ignored);
}

} // namespace vesk::pack
