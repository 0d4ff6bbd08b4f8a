#include "Files/IO/IO_Record.h"

#include "Files/Base/Console.h"
#include "Files/IO/IO.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <type_traits>

namespace vesk {

namespace {

static_assert(std::endian::native == std::endian::little);

// One walk over the fields serves both directions.
class RecordWriter {
public:
  template <class T> void Field(const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    std::memcpy(bytes.data() + at, &value, sizeof value);
    at += sizeof value;
  }
  std::array<uint8_t, kRecordSize> bytes{};
  size_t at = 0;
};

class RecordReader {
public:
  template <class T> void Field(T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    std::memcpy(&value, bytes.data() + at, sizeof value);
    at += sizeof value;
  }
  std::array<uint8_t, kRecordSize> bytes{};
  size_t at = 0;
};

template <class Record, class State> void Walk(Record& record, State& input) {
  auto& keys = input.keys;
  const auto eachMouse = [&](auto member) {
    for (auto& mouse : input.mice) record.Field(mouse.*member);
  };
  record.Field(keys.lastChar);
  record.Field(keys.text);
  record.Field(keys.lastKey);
  record.Field(keys.key);
  record.Field(keys.down);
  record.Field(keys.released);
  record.Field(keys.pressed);
  eachMouse(&MouseTables::lastButton);
  eachMouse(&MouseTables::button);
  eachMouse(&MouseTables::down);
  eachMouse(&MouseTables::released);
  eachMouse(&MouseTables::pressed);
  eachMouse(&MouseTables::wheelUp);
  eachMouse(&MouseTables::wheelDown);
  record.Field(input.cursorX);
  record.Field(input.cursorY);
  record.Field(input.mice[0].x);
  record.Field(input.mice[0].y);
}

} // namespace

void IO_ReadRecord() {
  InputState& input = Input();
  RecordReader record;
  if (input.playback.Read(record.bytes.data(), record.bytes.size()) != record.bytes.size()) return;
  Walk(record, input);
  input.keys.text.back() = 0; // a file need not end its text
  const auto end = std::find(input.keys.text.begin(), input.keys.text.end(), char16_t{0});
  input.textLength = static_cast<int32_t>(end - input.keys.text.begin());
}

void IO_WriteRecord() {
  InputState& input = Input();
  RecordWriter record;
  Walk(record, static_cast<const InputState&>(input));
  const bool written = input.record.Write(record.bytes.data(), record.bytes.size()) == record.bytes.size();
  if (input.record.Flush() && written) return;
  ErrorConsole().Output("Input record: a frame could not be written, recording ends\n");
  input.record.Close();
}

} // namespace vesk
