// Lifetime of values, the strings behind them, conversions, comparison and arithmetic.
#include "Files/Code/Value.h"

#include "Files/Base/Error.h"
#include "Files/Code/Code.h"
#include "Files/Code/Slots.h"
#include "Files/Code/ValueArray.h"

#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

namespace vesk {

namespace {

constexpr double kStartEpsilon = 1e-10;

constexpr int kNestingLimit = 1000; // of first elements; deeper only when an array holds itself

constexpr const char* kKindNames[] = {"number",    "string",   "array", "ptr",  "vec3",
                                      "undefined", "object",   "int32", "vec4", "vec44",
                                      "int64",     "accessor", "null",  "bool", "iterator"};

// The record and its text in one block.
RefString* MakeString(const char* text, size_t length) {
  void* block = ::operator new(sizeof(RefString) + length + 1);
  auto* string = new (block) RefString{nullptr, 1, static_cast<uint32_t>(length)};
  if (text) {
    string->text = reinterpret_cast<char*>(string + 1);
    if (length > 0) std::memcpy(string->text, text, length);
    string->text[length] = 0;
  }
  return string;
}

void FreeString(RefString* string) { ::operator delete(string); }

const char* TextOrNull(const RValue& value) { return value.string ? value.string->text : nullptr; }

// What a conversion to `type` does with a kind that it has no rule for.
void ReportConversion(const char* type, const RValue& value) {
  if (value.IsUnset())
    ShowError("%s argument is unset", type);
  else
    ShowError("%s argument incorrect type %d", type, static_cast<int>(value.Kind()));
}

// The value that stands for an array in a conversion: its element (0,0), made when there is none. Null for an
// array that only holds itself.
const RValue* FirstElement(const RValue& value) {
  const RValue* at = &value;
  for (int depth = 0; at && at->IsArray(); ++depth) {
    if (depth == kNestingLimit) return nullptr;
    const RValue* element = ArrayElementForRead(*at, 0);
    at = element ? element : ArrayElementForWrite(const_cast<RValue&>(*at), 0);
  }
  return at;
}

void AppendNumber(std::string& out, double number) {
  char text[400]; // the widest double has 309 digits before the point
  if (std::isnan(number)) {
    out += "NaN";
    return;
  }
  const int64_t whole = TruncateToInt64(number);
  if (static_cast<double>(whole) == number)
    std::snprintf(text, sizeof text, "%" PRId64, whole);
  else
    std::snprintf(text, sizeof text, "%.2f", number);
  out += text;
}

enum class UnsetText { kError, kName };

void AppendText(std::string& out, const RValue& value, int32_t pass, UnsetText unset) {
  char text[32];
  switch (value.Kind()) {
  case kReal: AppendNumber(out, value.real); break;
  case kBool: out += value.real == 0.0 ? "0" : "1"; break;
  case kInt32: out += std::to_string(value.int32); break;
  case kInt64: out += std::to_string(value.int64); break;
  case kPtr:
    std::snprintf(text, sizeof text, "%p", value.ptr);
    out += text;
    break;
  case kUndefined: out += "undefined"; break;
  case kNull: out += "null"; break;
  case kString: out += value.Text(); break;
  case kArray: {
    RefArray* array = value.array;
    if (!array) {
      out += "{  }";
      break;
    }
    if (array->visitMark == pass) break;
    array->visitMark = pass;
    out += "{ ";
    for (int32_t row = 0; row < array->rowCount; ++row) {
      if (row > 0) out += " }, ";
      for (int32_t column = 0; column < array->rows[row].length; ++column) {
        if (column > 0) out += ",";
        AppendText(out, array->rows[row].items[column], pass, unset);
      }
    }
    out += " }";
    break;
  }
  case kUnset:
    if (unset == UnsetText::kError)
      ShowError("STRING argument is unset");
    else
      out += "unset";
    break;
  default: break; // reserved kinds have no text
  }
}

int32_t NextTextPass() {
  static_assert(sizeof(RefArray::visitMark) == 4);
  return ++ArrayTextPass();
}

// A value for an error text: never itself an error.
std::string Describe(const RValue& value) {
  std::string text;
  AppendText(text, value, NextTextPass(), UnsetText::kName);
  return text;
}

void ReportArithmetic(const char* operation, const RValue& left, const RValue& right) {
  ShowError("invalid type for %s lhs=%s (type=%d), rhs=%s (type=%d)", operation, Describe(left).c_str(),
            static_cast<int>(left.Kind()), Describe(right).c_str(), static_cast<int>(right.Kind()));
}

bool HoldsDouble(const RValue& value) { return value.IsReal() || value.Kind() == kBool; }

int Order(int64_t a, int64_t b) { return a < b ? -1 : a > b ? 1 : 0; }

template <class T> int OrderWithin(T a, T b, double epsilon) {
  const T difference = a - b;
  if (static_cast<double>(std::abs(difference)) <= epsilon) return 0;
  return difference < 0 ? -1 : 1;
}

int CompareStrings(const RValue& a, const RValue& b) {
  if (!a.string || !b.string) return 1;
  const char* left = a.string->text ? a.string->text : "";
  const char* right = b.string->text ? b.string->text : "";
  const int order = std::strcmp(left, right);
  return order < 0 ? -1 : order > 0 ? 1 : 0;
}

constexpr uint32_t Pair(uint32_t a, uint32_t b) { return a << 8 | b; }

// Two's complement arithmetic without overflow traps.
int64_t Wrapped(char operation, int64_t a, int64_t b) {
  const uint64_t left = static_cast<uint64_t>(a), right = static_cast<uint64_t>(b);
  switch (operation) {
  case '+': return static_cast<int64_t>(left + right);
  case '-': return static_cast<int64_t>(left - right);
  default: return static_cast<int64_t>(left * right);
  }
}

// The common part of += and -= for numbers; false for another kind.
bool AddOrSubtract(char operation, RValue& left, const RValue& right) {
  switch (left.Kind()) {
  case kReal:
  case kBool: {
    const double amount = ValueAsReal(right);
    left.real = operation == '+' ? left.real + amount : left.real - amount;
    return true;
  }
  case kInt32:
    left.int32 = static_cast<int32_t>(Wrapped(operation, left.int32, ValueAsInt32(right)));
    return true;
  case kInt64: left.int64 = Wrapped(operation, left.int64, ValueAsInt64(right)); return true;
  default: return false;
  }
}

int64_t Divide(int64_t a, int64_t b) {
  if (b == 0) {
    ShowError("Divide by zero");
    return 0;
  }
  return b == -1 ? Wrapped('-', 0, a) : a / b;
}

int64_t IntegerOf(const RValue& value) { return value.Kind() == kInt32 ? value.int32 : value.int64; }

// Raises the count of what the value points at, so that it outlives the release of its holder.
void Hold(const RValue& value) {
  if (value.IsString() && value.string)
    ++value.string->refCount;
  else if (value.IsArray() && value.array)
    ++value.array->refCount;
}

} // namespace

double g_epsilon = kStartEpsilon;

void Value_Reset() {
  g_epsilon = kStartEpsilon;
  ArrayRead() = {};
}

// ---- lifetime ----

RValue::RValue(const char* text) : string(MakeString(text, text ? std::strlen(text) : 0)), kind(kString) {}

RValue::RValue(std::string_view text) : kind(kString) {
  const char* source = text.data() ? text.data() : "";
  const void* end = text.empty() ? nullptr : std::memchr(source, 0, text.size());
  string =
      MakeString(source, end ? static_cast<size_t>(static_cast<const char*>(end) - source) : text.size());
}

RValue::RValue(const RValue& other) : int64(other.int64), flags(other.flags), kind(other.kind) {
  Hold(other);
  if (IsArray() && array && !array->owner) array->owner = this;
  if (Kind() == kPtr) flags &= ~kOwnsObject; // one deleter only: a copy borrows
}

RValue::RValue(RValue&& other) noexcept : int64(other.int64), flags(other.flags), kind(other.kind) {
  if (IsArray() && array && (!array->owner || array->owner == &other)) array->owner = this;
  other.int64 = 0;
  other.flags = 0;
  other.kind = kUndefined;
}

RValue& RValue::operator=(const RValue& other) {
  if (this == &other) return *this;
  // The source may be part of what this value holds, so nothing of it is read after the release.
  const int64_t payload = other.int64;
  const uint32_t newKind = other.kind;
  const uint32_t newFlags = other.Kind() == kPtr ? other.flags & ~kOwnsObject : other.flags;
  Hold(other);
  if (NeedsRelease()) Free();
  int64 = payload;
  flags = newFlags;
  kind = newKind;
  if (IsArray() && array && !array->owner) array->owner = this;
  return *this;
}

RValue& RValue::operator=(RValue&& other) noexcept {
  if (this == &other) return *this;
  const int64_t payload = other.int64;
  const uint32_t newKind = other.kind, newFlags = other.flags;
  const RValue* source = &other;
  other.int64 = 0;
  other.flags = 0;
  other.kind = kUndefined;
  if (NeedsRelease()) Free();
  int64 = payload;
  flags = newFlags;
  kind = newKind;
  if (IsArray() && array && (!array->owner || array->owner == source)) array->owner = this;
  return *this;
}

void RValue::Free() {
  switch (Kind()) {
  case kString:
    if (string && --string->refCount == 0) FreeString(string);
    break;
  case kArray:
    if (array) {
      if (array->owner == this) array->owner = nullptr;
      if (--array->refCount == 0) ArrayDelete(array);
    }
    break;
  case kPtr:
    if (flags & kOwnsObject) delete object;
    break;
  default: break;
  }
}

void RValue::SetString(std::string_view text) { *this = RValue(text); }

void RValue::SetNumber(ValueKind numberKind, int64_t value) {
  if (NeedsRelease()) Free();
  int64 = 0;
  if (numberKind == kInt32)
    int32 = static_cast<int32_t>(value);
  else
    int64 = value;
  flags = 0;
  kind = numberKind;
}

std::string_view RValue::Text() const {
  if (!IsString() || !string || !string->text) return {"", 0};
  return {string->text, string->length};
}

// ---- conversions ----

int64_t TruncateToInt64(double value) {
  // The bounds are exact doubles; the comparison also sorts out what is no number.
  if (value >= -9223372036854775808.0 && value < 9223372036854775808.0) return static_cast<int64_t>(value);
  return std::numeric_limits<int64_t>::min();
}

int32_t TruncateToInt32(double value) { return static_cast<int32_t>(TruncateToInt64(value)); }

int32_t RoundToInt32(double value) { return TruncateToInt32(std::rint(value)); }

double ValueAsRealSlow(const RValue& value) {
  switch (value.Kind()) {
  case kReal:
  case kBool: return value.real;
  case kString: {
    const char* text = TextOrNull(value);
    return text ? std::strtod(text, nullptr) : 0;
  }
  case kUndefined: return 0;
  case kInt32: return value.int32;
  case kInt64: return static_cast<double>(value.int64);
  case kArray: {
    const RValue* element = FirstElement(value);
    if (element) return ValueAsReal(*element);
    break;
  }
  default: break;
  }
  ReportConversion("REAL", value);
  return 0;
}

namespace {

int64_t ValueAsInteger(const RValue& value, const char* type) {
  switch (value.Kind()) {
  case kReal:
  case kBool: return TruncateToInt64(value.real);
  case kString: {
    const char* text = TextOrNull(value);
    return text ? std::strtoll(text, nullptr, 10) : 0;
  }
  case kUndefined: return 0;
  case kInt32: return value.int32;
  case kPtr:
  case kInt64: return value.int64;
  case kArray: {
    const RValue* element = FirstElement(value);
    if (element) return ValueAsInteger(*element, type);
    break;
  }
  default: break;
  }
  ReportConversion(type, value);
  return 0;
}

} // namespace

int32_t ValueAsInt32(const RValue& value) { return static_cast<int32_t>(ValueAsInteger(value, "I32")); }

int64_t ValueAsInt64(const RValue& value) { return ValueAsInteger(value, "I64"); }

void* ValueAsPtr(const RValue& value) {
  const auto address = [](int64_t number) { return reinterpret_cast<void*>(static_cast<intptr_t>(number)); };
  switch (value.Kind()) {
  case kReal:
  case kBool: return address(TruncateToInt64(value.real));
  case kString: {
    const char* text = TextOrNull(value);
    return address(text ? static_cast<int64_t>(std::strtoull(text, nullptr, 16)) : 0);
  }
  case kUndefined: return nullptr;
  case kInt32: return address(value.int32);
  case kPtr:
  case kObject:
  case kInt64: return address(value.int64);
  default: ReportConversion("PTR", value); return nullptr;
  }
}

bool ValueAsBool(const RValue& value) {
  switch (value.Kind()) {
  case kReal:
  case kBool: return value.real > 0.5;
  case kString: return TextOrNull(value) && ValueAsRealSlow(value) > 0.5;
  case kInt32: return value.int32 > 0;
  case kPtr:
  case kInt64: return value.int64 > 0;
  case kUndefined: return false;
  case kArray: {
    const RValue* element = FirstElement(value);
    if (element) return ValueAsBool(*element);
    break;
  }
  default: break;
  }
  ReportConversion("bool", value);
  return false;
}

std::string ValueAsText(const RValue& value) {
  std::string text;
  AppendText(text, value, NextTextPass(), UnsetText::kError);
  return text;
}

const char* KindName(uint32_t kind) {
  kind &= kKindMask;
  return kind < std::size(kKindNames) ? kKindNames[kind] : "unknown";
}

// ---- arguments ----

namespace {

void ReportArgument(const RValue* args, int index, const char* expected) {
  ShowError("%s argument %d incorrect type (%s) expecting a %s", Code().currentFunction, index + 1,
            KindName(args[index].kind), expected);
}

double FiniteOrZero(double value) { return std::isfinite(value) ? value : 0; }

int64_t IntegerArgument(const RValue* args, int index, const char* expected) {
  const RValue& value = args[index];
  switch (value.Kind()) {
  case kReal:
  case kBool: return TruncateToInt64(FiniteOrZero(value.real));
  case kInt32: return value.int32;
  case kInt64: return value.int64;
  case kString:
  case kObject: return TruncateToInt64(FiniteOrZero(ValueAsReal(value)));
  default: ReportArgument(args, index, expected); return 0;
  }
}

} // namespace

double ArgAsReal(const RValue* args, int index) {
  const RValue& value = args[index];
  switch (value.Kind()) {
  case kReal:
  case kBool:
  case kInt32:
  case kInt64:
  case kString:
  case kObject: return FiniteOrZero(ValueAsReal(value));
  default: ReportArgument(args, index, "Number (ZqGR)"); return 0;
  }
}

float ArgAsFloat(const RValue* args, int index) {
  const RValue& value = args[index];
  if (value.IsNumber()) {
    const float number = static_cast<float>(ValueAsReal(value));
    return std::isfinite(number) ? number : 0;
  }
  ReportArgument(args, index, "Number (ZqGF)");
  return 0;
}

int32_t ArgAsInt32(const RValue* args, int index) {
  return static_cast<int32_t>(IntegerArgument(args, index, "Number (ZqGI32)"));
}

uint32_t ArgAsUint32(const RValue* args, int index) {
  return static_cast<uint32_t>(IntegerArgument(args, index, "Number (ZqGU32)"));
}

int64_t ArgAsInt64(const RValue* args, int index) { return IntegerArgument(args, index, "Number"); }

bool ArgAsBool(const RValue* args, int index) {
  const RValue& value = args[index];
  switch (value.Kind()) {
  case kReal:
  case kBool: return value.real > 0.5;
  case kInt32: return value.int32 >= 1;
  case kInt64: return value.int64 >= 1;
  default: ReportArgument(args, index, "Number (ZqGB)"); return false;
  }
}

int64_t ArgAsPtrOrInt(const RValue* args, int index) {
  const RValue& value = args[index];
  switch (value.Kind()) {
  case kReal: return TruncateToInt64(value.real);
  case kInt32: return value.int32;
  case kPtr:
  case kInt64: return value.int64;
  default: ReportArgument(args, index, "Number or Pointer"); return -1;
  }
}

std::string ArgAsString(const RValue* args, int index) {
  const RValue& value = args[index];
  if (value.IsString()) return std::string(value.Text());
  if (value.IsNumber() || value.Kind() == kObject) return ValueAsText(value);
  ReportArgument(args, index, "String (ZqGS)");
  return {};
}

// ---- comparison ----

int CompareValues(const RValue& a, const RValue& b, double epsilon) {
  switch (Pair(a.Kind() & 0xFF, b.Kind() & 0xFF)) {
  case Pair(kReal, kReal):
  case Pair(kReal, kBool):
  case Pair(kBool, kReal):
  case Pair(kBool, kBool): return OrderWithin(a.real, b.real, epsilon);
  case Pair(kReal, kInt32):
    return OrderWithin(static_cast<float>(a.real), static_cast<float>(b.int32), epsilon);
  case Pair(kInt32, kReal):
    return OrderWithin(static_cast<float>(a.int32), static_cast<float>(b.real), epsilon);
  case Pair(kReal, kInt64):
  case Pair(kBool, kInt64): return Order(TruncateToInt64(a.real), b.int64);
  case Pair(kInt64, kReal):
  case Pair(kInt64, kBool): return Order(a.int64, TruncateToInt64(b.real));
  case Pair(kString, kString): return CompareStrings(a, b);
  case Pair(kArray, kArray): return a.array == b.array ? 0 : 1;
  case Pair(kPtr, kPtr):
    return a.ptr == b.ptr ? 0 : static_cast<uint64_t>(a.int64) < static_cast<uint64_t>(b.int64) ? 1 : -1;
  case Pair(kUndefined, kUndefined): return 0;
  case Pair(kInt32, kInt32): return Order(a.int32, b.int32);
  case Pair(kInt32, kInt64):
  case Pair(kInt64, kInt32):
  case Pair(kInt64, kInt64): return Order(IntegerOf(a), IntegerOf(b));
  case Pair(kInt32, kBool): return Order(a.int32, TruncateToInt32(b.real));
  case Pair(kBool, kInt32): return Order(TruncateToInt32(a.real), b.int32);
  default: return a.IsReal() ? -1 : 1;
  }
}

// ---- arithmetic ----

void ValueAdd(RValue& left, const RValue& right) {
  if (left.IsString() && right.IsString()) {
    std::string text(left.Text());
    text += right.Text();
    left.SetString(text);
    return;
  }
  if (!AddOrSubtract('+', left, right)) ReportArithmetic("+=", left, right);
}

void ValueSubtract(RValue& left, const RValue& right) {
  if (!AddOrSubtract('-', left, right)) ReportArithmetic("-=", left, right);
}

void ValueMultiply(RValue& left, const RValue& right) {
  const uint32_t other = right.Kind();
  switch (left.Kind()) {
  case kReal:
  case kBool: left.real *= ValueAsReal(right); return;
  case kInt32:
    if (other == kInt32)
      left.int32 = static_cast<int32_t>(Wrapped('*', left.int32, right.int32));
    else if (other == kInt64)
      left.SetNumber(kInt64, Wrapped('*', left.int32, right.int64));
    else
      left.SetReal(left.int32 * ValueAsReal(right));
    return;
  case kInt64:
    if (other == kInt32 || other == kInt64)
      left.int64 = Wrapped('*', left.int64, IntegerOf(right));
    else
      left.SetReal(static_cast<double>(left.int64) * ValueAsReal(right));
    return;
  default: ReportArithmetic("*=", left, right);
  }
}

void ValueDivide(RValue& left, const RValue& right) {
  const uint32_t other = right.Kind();
  switch (left.Kind()) {
  case kReal:
  case kBool: left.real /= ValueAsReal(right); return;
  case kInt32:
    if (other == kInt32)
      left.int32 = static_cast<int32_t>(Divide(left.int32, right.int32));
    else if (other == kInt64)
      left.SetNumber(kInt64, Divide(left.int32, right.int64));
    else
      left.SetReal(left.int32 / ValueAsReal(right));
    return;
  case kInt64:
    if (other == kInt32 || other == kInt64)
      left.int64 = Divide(left.int64, IntegerOf(right));
    else
      left.SetReal(static_cast<double>(left.int64) / ValueAsReal(right));
    return;
  default: ReportArithmetic("/=", left, right);
  }
}

void ValueAddNumber(RValue& left, double right) {
  if (left.IsString())
    ShowError("unable to add a number to string");
  else
    ValueAdd(left, RValue(right));
}

namespace {

void Step(RValue& value, int by, const char* operation) {
  if (HoldsDouble(value))
    value.real += by;
  else if (!AddOrSubtract('+', value, RValue(by)))
    ReportArithmetic(operation, value, RValue(by));
}

} // namespace

void ValueIncrement(RValue& value) { Step(value, 1, "++"); }
void ValueDecrement(RValue& value) { Step(value, -1, "--"); }

} // namespace vesk
