#pragma once
// Structures as one word of hexadecimal digits, for scripts that keep them in files of their own. Ids of
// nested structures are plain numbers in it: what they name is not written.
#include "Files/Code/Value.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace vesk {

class DsTextWriter {
public:
  explicit DsTextWriter(uint32_t kind) { Number(kind); }
  void Number(uint32_t number);
  void Value(const RValue& value) { Value(value, 0); }
  const std::string& Text() const { return m_text; }

private:
  void Bytes(const void* data, size_t size);
  void Value(const RValue& value, int depth);
  std::string m_text;
};

// Every read past the end, or of something else than was written, spoils it for good.
class DsTextReader {
public:
  DsTextReader(std::string_view text, uint32_t kind);
  bool Good() const { return m_good; }
  bool AtEnd() const { return m_good && m_at == m_bytes.size(); }
  uint32_t Number();
  // A count of things that take `least` bytes each: spoiled when there can't be so many.
  uint32_t Count(uint32_t least);
  RValue Value() { return Value(0); }

private:
  bool Bytes(void* data, size_t size);
  RValue Value(int depth);
  std::string m_bytes;
  size_t m_at = 0;
  bool m_good = true;
};

} // namespace vesk
