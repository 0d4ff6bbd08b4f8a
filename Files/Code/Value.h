#pragma once
// The one value type of the script layer: variables, arguments, results, array elements, data-structure
// entries. Game thread only. A value owns one reference to the string or array it points at.
#include <cstdint>
#include <string>
#include <string_view>

namespace vesk {

class ZqObjectBase;
struct RValue;

// Kind numbers; the low 24 bits of RValue::kind.
enum ValueKind : uint32_t {
  kReal = 0,
  kString = 1,
  kArray = 2,
  kPtr = 3,
  kVec3 = 4,
  kUndefined = 5,
  kObject = 6,
  kInt32 = 7,
  kVec4 = 8,
  kVec44 = 9,
  kInt64 = 10,
  kAccessor = 11,
  kNull = 12,
  kBool = 13,
  kIterator = 14,
  kUnset = 0xFFFFFF,
};

inline constexpr uint32_t kKindMask = 0xFFFFFF;
inline constexpr uint32_t kOwnsObject = 8; // flag of a pointer value: releasing it deletes the object
inline constexpr int32_t kNoIndex = -2147483647 - 1; // array index: the variable as a whole
inline constexpr int32_t kRowStride = 32000;         // index = row * 32000 + column

struct RefString {
  char* text; // NUL-terminated UTF-8, owned
  int32_t refCount;
  uint32_t length; // bytes without the NUL
};

struct RefRow {
  int32_t length;
  RValue* items;
};

struct RefArray {
  int32_t refCount;
  RefRow* rows;
  RValue* owner; // the value that may write in place, or null
  int32_t visitMark;
  int32_t rowCount;
};

struct alignas(8) RValue {
  union {
    double real;
    RefString* string;
    RefArray* array;
    void* ptr;
    ZqObjectBase* object;
    int64_t int64;
    int32_t int32;
  };
  uint32_t flags = 0;
  uint32_t kind = kUndefined;

  RValue() : int64(0) {}
  RValue(double value) : real(value), kind(kReal) {}
  RValue(int value) : real(value), kind(kReal) {}
  RValue(bool value) : real(value ? 1.0 : 0.0), kind(kReal) {}
  RValue(const char* text); // null gives the absent string
  RValue(std::string_view text);
  RValue(const std::string& text) : RValue(std::string_view(text)) {}
  RValue(const RValue& other);
  RValue(RValue&& other) noexcept; // the source becomes undefined
  RValue& operator=(const RValue& other);
  RValue& operator=(RValue&& other) noexcept;
  ~RValue() {
    if (NeedsRelease()) Free();
  }

  uint32_t Kind() const { return kind & kKindMask; }
  bool IsReal() const { return Kind() == kReal; }
  bool IsString() const { return Kind() == kString; }
  bool IsArray() const { return Kind() == kArray; }
  bool IsUndefined() const { return Kind() == kUndefined; }
  bool IsUnset() const { return Kind() == kUnset; }
  bool IsNumber() const { return IsReal() || Kind() == kBool || Kind() == kInt32 || Kind() == kInt64; }
  bool NeedsRelease() const { return ((kind - 1) & 0xFFFFFC) == 0; }

  // Drops the reference that the value holds; kind and payload are left for the caller to write.
  void Free();
  void SetReal(double value) {
    if (NeedsRelease()) Free();
    real = value;
    flags = 0;
    kind = kReal;
  }
  void SetBool(bool value) { SetReal(value ? 1.0 : 0.0); }
  void SetUndefined() {
    if (NeedsRelease()) Free();
    int64 = 0;
    flags = 0;
    kind = kUndefined;
  }
  void SetString(std::string_view text);
  void SetNumber(ValueKind numberKind, int64_t value); // kInt32 or kInt64
  // The text of a string value, "" for an absent string or another kind. Valid while the value holds it.
  std::string_view Text() const;
};
static_assert(sizeof(RValue) == 16);

// Reads with conversion. A kind that can't be converted is a fatal error report; the result is then 0.
double ValueAsRealSlow(const RValue& value);
inline double ValueAsReal(const RValue& value) {
  return value.IsReal() ? value.real : ValueAsRealSlow(value);
}
int32_t ValueAsInt32(const RValue& value); // truncates toward zero
int64_t ValueAsInt64(const RValue& value);
void* ValueAsPtr(const RValue& value);
bool ValueAsBool(const RValue& value);        // a number is true above 0.5
std::string ValueAsText(const RValue& value); // the text that string() gives

// Arguments of built-ins; `index` counts from 0. Messages name the built-in that is running.
double ArgAsReal(const RValue* args, int index);
float ArgAsFloat(const RValue* args, int index);
int32_t ArgAsInt32(const RValue* args, int index);
uint32_t ArgAsUint32(const RValue* args, int index);
int64_t ArgAsInt64(const RValue* args, int index);
bool ArgAsBool(const RValue* args, int index);
int64_t ArgAsPtrOrInt(const RValue* args, int index); // -1 on error
std::string ArgAsString(const RValue* args, int index);

const char* KindName(uint32_t kind); // "number", "string", …, "unknown"

// Below 0, 0 or above 0. Numbers within `epsilon` are equal.
int CompareValues(const RValue& a, const RValue& b, double epsilon);
// The comparison tolerance of the game; math_set_epsilon changes it.
extern double g_epsilon;
void Value_Reset(); // the tolerance a game starts with; no failed read

// In-place arithmetic; the result's kind is the left operand's. A bad kind is a fatal error report and
// changes nothing.
void ValueAdd(RValue& left, const RValue& right);
void ValueSubtract(RValue& left, const RValue& right);
void ValueMultiply(RValue& left, const RValue& right);
void ValueDivide(RValue& left, const RValue& right);
void ValueAddNumber(RValue& left, double right); // as ValueAdd, but a string on the left is an error
void ValueIncrement(RValue& value);
void ValueDecrement(RValue& value);

// Arrays. `index` is row * 32000 + column.
// The element's address for writing; makes the array, clones a shared one and grows it. Null for a negative
// index.
RValue* ArrayElementForWrite(RValue& value, int64_t index);
// The element's address, or null when there is none.
RValue* ArrayElementForRead(const RValue& value, int64_t index);
// As an expression reads it: out of range or not an array is a fatal error report, and the result is
// undefined.
const RValue& ArrayElementChecked(RValue& value, int64_t index);
void ArrayWrite(RValue& value, int64_t index, const RValue& element); // kNoIndex writes the value as a whole
// dest = source[index]; kNoIndex takes the source as a whole. Out of range, dest becomes 0, the result is
// false and ArrayRead() tells what was asked for.
bool ArrayReadInto(RValue& dest, RValue& source, int64_t index);
RValue ArrayCreate(int32_t length, const RValue& fill); // one row; a length below 0 counts as 0
int32_t ArrayLength1d(const RValue& value);
int32_t ArrayHeight2d(const RValue& value);
int32_t ArrayLength2d(const RValue& value, int32_t row);

// The last read out of range.
struct ArrayReadFailure {
  bool failed = false;
  int32_t row = 0, column = 0, rowCount = 0, rowLength = 0;
};
ArrayReadFailure& ArrayRead();

// Truncation toward zero; a number outside 64 bits or no number gives the smallest integer.
int64_t TruncateToInt64(double value);
// Truncation to 64 bits, of which the low 32 are kept.
int32_t TruncateToInt32(double value);
// Nearest integer, ties to even, then as above.
int32_t RoundToInt32(double value);

} // namespace vesk
