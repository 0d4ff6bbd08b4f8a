#include "Files/Support/DsText.h"

#include <cstring>
#include <utility>

namespace vesk {

namespace {

constexpr int64_t kRowOfArray = 32000;
constexpr int kArrayDepth = 64; // arrays in arrays; one that holds itself ends there

int Digit(char letter) {
  if (letter >= '0' && letter <= '9') return letter - '0';
  if (letter >= 'A' && letter <= 'F') return letter - 'A' + 10;
  if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
  return -1;
}

} // namespace

void DsTextWriter::Bytes(const void* data, size_t size) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  for (size_t i = 0; i < size; ++i) {
    m_text += "0123456789ABCDEF"[bytes[i] >> 4];
    m_text += "0123456789ABCDEF"[bytes[i] & 15];
  }
}

void DsTextWriter::Number(uint32_t number) { Bytes(&number, sizeof number); }

void DsTextWriter::Value(const RValue& value, int depth) {
  const auto kind = static_cast<uint32_t>(value.Kind());
  switch (value.Kind()) {
  case kReal:
  case kBool:
    Number(kind);
    Bytes(&value.real, sizeof value.real);
    return;
  case kInt32:
  case kInt64: {
    Number(kInt64);
    const int64_t whole = ValueAsInt64(value);
    Bytes(&whole, sizeof whole);
    return;
  }
  case kString:
    Number(kind);
    Number(static_cast<uint32_t>(value.Text().size()));
    Bytes(value.Text().data(), value.Text().size());
    return;
  case kArray:
    if (!value.array || depth >= kArrayDepth) break;
    Number(kind);
    Number(static_cast<uint32_t>(value.array->rowCount));
    for (int32_t row = 0; row < value.array->rowCount; ++row) {
      Number(static_cast<uint32_t>(value.array->rows[row].length));
      for (int32_t i = 0; i < value.array->rows[row].length; ++i)
        Value(value.array->rows[row].items[i], depth + 1);
    }
    return;
  default: break;
  }
  Number(kUndefined);
}

DsTextReader::DsTextReader(std::string_view text, uint32_t kind) {
  m_good = text.size() % 2 == 0;
  for (size_t i = 0; m_good && i < text.size(); i += 2) {
    const int high = Digit(text[i]), low = Digit(text[i + 1]);
    m_good = high >= 0 && low >= 0;
    m_bytes += static_cast<char>(high * 16 + low);
  }
  if (Number() != kind) m_good = false;
}

bool DsTextReader::Bytes(void* data, size_t size) {
  m_good = m_good && size <= m_bytes.size() - m_at;
  if (!m_good) return false;
  std::memcpy(data, m_bytes.data() + m_at, size);
  m_at += size;
  return true;
}

uint32_t DsTextReader::Number() {
  uint32_t number = 0;
  Bytes(&number, sizeof number);
  return number;
}

uint32_t DsTextReader::Count(uint32_t least) {
  const uint32_t count = Number();
  if (m_good && count > (m_bytes.size() - m_at) / least) m_good = false;
  return m_good ? count : 0;
}

RValue DsTextReader::Value(int depth) {
  switch (Number()) {
  case kReal: {
    double number = 0;
    Bytes(&number, sizeof number);
    return number;
  }
  case kBool: {
    double number = 0;
    Bytes(&number, sizeof number);
    return number > 0.5;
  }
  case kInt64: {
    int64_t number = 0;
    Bytes(&number, sizeof number);
    RValue value;
    value.SetNumber(kInt64, number);
    return value;
  }
  case kString: {
    std::string text(Count(1), '\0');
    Bytes(text.data(), text.size());
    return RValue(std::string_view(text));
  }
  case kArray: {
    RValue array;
    const uint32_t rows = depth < kArrayDepth ? Count(4) : 0;
    for (uint32_t row = 0; row < rows; ++row) {
      const uint32_t columns = Count(4);
      if (columns > kRowOfArray) m_good = false;
      for (uint32_t column = 0; column < columns && m_good; ++column) {
        RValue element = Value(depth + 1);
        if (RValue* place = ArrayElementForWrite(array, int64_t{row} * kRowOfArray + column))
          *place = std::move(element);
      }
    }
    return array;
  }
  case kUndefined: return {};
  default: m_good = false; return {};
  }
}

} // namespace vesk
