#pragma once
// Reads the fields of records one after the other. The first failure is kept, in words, with the place where
// it happened; every read after it gives zero, so that a record is read to its end and checked once.
#include "Files/Runner/Container.h"

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace vesk {

class RecordReader {
public:
  RecordReader(const ContainerView& container, const Chunk& strings);

  bool Ok() const { return m_error.text.empty(); }
  const LoadError& Error() const { return m_error; }

  // Reads go on at the body of a chunk, and may not leave it.
  void EnterChunk(const Chunk& chunk);
  // Reads go on at a record, which may be anywhere. The kind names it in messages: "record", "instance". An
  // empty part keeps the surrounding record's name in front.
  void EnterRecord(const char* kind, size_t index, uint32_t offset);
  // A part of the record entered last: "ROOM record 1, instance 3".
  void EnterPart(const char* kind, size_t index, uint32_t offset);
  // Back to the record after its parts; only messages look at it.
  void LeavePart();
  void Seek(uint32_t offset) { m_at = offset; }
  uint32_t At() const { return m_at; }

  uint8_t U8();
  uint16_t U16();
  uint32_t U32();
  int32_t I32() { return static_cast<int32_t>(U32()); }
  uint64_t U64();
  float F32(); // finite
  bool Bool() { return U32() != 0; }
  // A text reference. Never null: reference 0 gives an empty text.
  const char* Text();
  void Skip(uint32_t bytes);

  // A count of elements that take so many bytes each and follow at once.
  uint32_t Count(const char* what, uint32_t bytesEach);
  // A pointer list here: count, then references. Each is 0 or lies inside.
  std::vector<uint32_t> List(const char* what);
  // The reference to a pointer list, followed.
  std::vector<uint32_t> ListReference(const char* what);

  // Keeps the first failure: "SPRT record 12 at 0x1234: " and the text.
  void Fail(const std::string& text);
  void Check(bool condition, const char* text) {
    if (!condition) Fail(text);
  }
  // The text is only made when it is needed.
  template <class Words> void Check(bool condition, Words words) {
    if (!condition) Fail(words());
  }
  std::string Place() const; // "SPRT record 12 at 0x1234"

private:
  bool Take(uint32_t bytes);

  const ContainerView& m_container;
  Chunk m_strings;
  LoadError m_error;
  std::string m_chunk, m_record, m_part;
  uint32_t m_recordOffset = 0, m_partOffset = 0;
  uint32_t m_at = 0, m_end = 0;
  std::unordered_set<uint32_t> m_checkedTexts;
  // Lists may share their elements, but no honest container has more of them than bytes.
  uint64_t m_elementsLeft;
};

std::string Hex(uint32_t value); // "0x1f"

} // namespace vesk
