#pragma once
// What was compiled from text sources, kept between runs: a folder with one file a piece, named after the
// piece and after everything that it was made from.
#include <filesystem>
#include <string>

namespace vesk::pack {

// 32 hexadecimal digits; the same for the same text.
std::string HexHash(const std::string& text);

class SourceCache {
public:
  // An empty folder keeps nothing. `extension` with its point.
  SourceCache(std::filesystem::path folder, std::string extension)
      : m_folder(std::move(folder)), m_extension(std::move(extension)) {}
  bool Keeps() const { return !m_folder.empty(); }
  // The bytes kept for that piece made from that source; empty when there are none.
  std::string Read(const std::string& name, const std::string& source) const;
  // In place of what was kept under that name. A failure only costs time at the next run and isn't told; the
  // file appears whole or not at all.
  void Write(const std::string& name, const std::string& source, const std::string& bytes) const;

private:
  std::filesystem::path File(const std::string& name, const std::string& source) const;

  std::filesystem::path m_folder;
  std::string m_extension;
};

} // namespace vesk::pack
