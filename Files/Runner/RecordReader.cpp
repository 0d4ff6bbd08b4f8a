#include "Files/Runner/RecordReader.h"

#include <cmath>
#include <cstdio>

namespace vesk {

std::string Hex(uint32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%x", value);
  return text;
}

RecordReader::RecordReader(const ContainerView& container, const Chunk& strings)
    : m_container(container), m_strings(strings), m_end(container.Size()), m_elementsLeft(container.Size()) {}

void RecordReader::EnterChunk(const Chunk& chunk) {
  m_chunk = ChunkName(chunk.tag);
  m_record.clear();
  m_part.clear();
  m_at = chunk.offset;
  m_end = chunk.offset + chunk.size;
}

void RecordReader::EnterRecord(const char* kind, size_t index, uint32_t offset) {
  m_record = std::string(kind) + " " + std::to_string(index);
  m_part.clear();
  m_recordOffset = m_at = offset;
  m_end = m_container.Size();
}

void RecordReader::EnterPart(const char* kind, size_t index, uint32_t offset) {
  m_part = std::string(kind) + " " + std::to_string(index);
  m_partOffset = m_at = offset;
}

void RecordReader::LeavePart() { m_part.clear(); }

std::string RecordReader::Place() const {
  std::string place = m_chunk;
  if (!m_record.empty()) place += " " + m_record;
  if (!m_part.empty()) place += ", " + m_part;
  if (!m_record.empty()) place += " at " + Hex(m_part.empty() ? m_recordOffset : m_partOffset);
  return place;
}

void RecordReader::Fail(const std::string& text) {
  if (Ok()) m_error.text = Place() + ": " + text;
}

bool RecordReader::Take(uint32_t bytes) {
  if (Ok() && (m_at > m_end || bytes > m_end - m_at))
    Fail(m_record.empty() ? "the chunk is too short" : "the record ends outside the container");
  return Ok();
}

uint8_t RecordReader::U8() {
  if (!Take(1)) return 0;
  return m_container.U8(m_at++);
}

uint16_t RecordReader::U16() {
  if (!Take(2)) return 0;
  m_at += 2;
  return m_container.U16(m_at - 2);
}

uint32_t RecordReader::U32() {
  if (!Take(4)) return 0;
  m_at += 4;
  return m_container.U32(m_at - 4);
}

uint64_t RecordReader::U64() {
  if (!Take(8)) return 0;
  m_at += 8;
  return m_container.U64(m_at - 8);
}

float RecordReader::F32() {
  if (!Take(4)) return 0;
  m_at += 4;
  const float value = m_container.F32(m_at - 4);
  if (!std::isfinite(value)) {
    Fail("the number at " + Hex(m_at - 4) + " is not finite");
    return 0;
  }
  return value;
}

const char* RecordReader::Text() {
  const uint32_t reference = U32();
  if (!Ok() || reference == 0) return "";
  const char* text = reinterpret_cast<const char*>(m_container.Bytes() + reference);
  if (m_checkedTexts.count(reference)) return text;
  // Only where texts stand: other bytes may be rewritten by the load.
  if (reference < m_strings.offset || reference >= m_strings.offset + m_strings.size) {
    Fail("the text reference " + Hex(reference) + " lies outside STRG");
    return "";
  }
  if (!m_container.Text(reference)) {
    Fail("at " + Hex(reference) + " stands no text");
    return "";
  }
  m_checkedTexts.insert(reference);
  return text;
}

void RecordReader::Skip(uint32_t bytes) {
  if (Take(bytes)) m_at += bytes;
}

uint32_t RecordReader::Count(const char* what, uint32_t bytesEach) {
  const uint32_t count = U32();
  if (!Ok()) return 0;
  if (count > (m_end - m_at) / bytesEach) {
    Fail(std::string("the number of ") + what + ", " + std::to_string(count) +
         ", is more than there is room for");
    return 0;
  }
  if (count > m_elementsLeft) {
    Fail(std::string("the ") + what + " stand in several lists at once, more than the container has bytes");
    return 0;
  }
  m_elementsLeft -= count;
  return count;
}

std::vector<uint32_t> RecordReader::List(const char* what) {
  std::vector<uint32_t> references(Count(what, 4));
  for (size_t i = 0; i < references.size(); ++i) {
    references[i] = U32();
    if (references[i] != 0 && !m_container.Has(references[i], 4)) {
      Fail("reference " + std::to_string(i) + " of the " + what + ", " + Hex(references[i]) +
           ", lies outside the container");
      return {};
    }
  }
  return references;
}

std::vector<uint32_t> RecordReader::ListReference(const char* what) {
  const uint32_t reference = U32();
  if (!Ok() || reference == 0) return {};
  if (!m_container.Has(reference, 4)) {
    Fail(std::string("the reference to the ") + what + ", " + Hex(reference) +
         ", lies outside the container");
    return {};
  }
  const uint32_t back = m_at;
  m_at = reference;
  std::vector<uint32_t> list = List(what);
  m_at = back;
  return list;
}

} // namespace vesk
