#include "Files/Function/Function_Array.h"

#include "Files/Base/Error.h"
#include "Files/Function/Function.h"

#include <algorithm>
#include <vector>

namespace vesk {

namespace {

constexpr int32_t kLongestRow = kRowStride - 1;

// 64-bit product, as indices of rows may lie out of range.
int64_t IndexOf(int64_t row, int64_t column) { return row * kRowStride + column; }

// Built-ins get borrowed copies of their arguments; a write through one goes to the array itself, as by
// reference, and never to a clone.
class WriteInPlace {
public:
  explicit WriteInPlace(RValue& argument) : m_array(argument.array), m_owner(argument.array->owner) {
    m_array->owner = &argument;
  }
  ~WriteInPlace() { m_array->owner = m_owner; }
  WriteInPlace(const WriteInPlace&) = delete;
  WriteInPlace& operator=(const WriteInPlace&) = delete;

private:
  RefArray* m_array;
  RValue* m_owner;
};

bool IsArrayArgument(const RValue& value, const char* name) {
  if (value.IsArray() && value.array) return true;
  ReportError("%s : argument is not an array", name);
  return false;
}

// array_get(array, column) or (array, row, column)
RValue ArrayGet(Args arguments) {
  if (arguments.size() < 2) return {};
  RValue* args = arguments.data();
  const bool two = arguments.size() > 2;
  return ArrayElementChecked(args[0], IndexOf(two ? ArgAsInt32(args, 1) : 0, ArgAsInt32(args, two ? 2 : 1)));
}

// array_set(array, column, value) or (array, row, column, value)
void ArraySet(Args arguments) {
  if (arguments.size() < 3 || !IsArrayArgument(arguments[0], "array_set")) return;
  RValue* args = arguments.data();
  const bool two = arguments.size() > 3;
  const int64_t index = IndexOf(two ? ArgAsInt32(args, 1) : 0, ArgAsInt32(args, two ? 2 : 1));
  const WriteInPlace scope(args[0]);
  ArrayWrite(args[0], index, args[two ? 3 : 2]);
}

RValue ArrayCreateOf(Args arguments) {
  if (arguments.empty()) return array_create(0);
  const int32_t length = ArgAsInt32(arguments.data(), 0);
  return arguments.size() > 1 ? array_create(length, arguments[1]) : array_create(length);
}

// array_copy(dest, first place in dest, source, first place in source, length)
void ArrayCopy(Args arguments) {
  RValue* args = arguments.data();
  if (!IsArrayArgument(args[0], "array_copy") || !IsArrayArgument(args[2], "array_copy")) return;
  const int32_t to = ArgAsInt32(args, 1), from = ArgAsInt32(args, 3);
  const int32_t length = std::min(ArgAsInt32(args, 4), ArrayLength1d(args[2]) - from);
  if (to < 0 || from < 0 || length <= 0) return;
  if (static_cast<int64_t>(to) + length > kLongestRow) {
    ReportError("array_copy : %d elements do not fit behind place %d", length, to);
    return;
  }
  std::vector<RValue> copied; // the two may be one array
  for (int32_t i = 0; i < length; ++i) copied.push_back(*ArrayElementForRead(args[2], from + i));
  const WriteInPlace scope(args[0]);
  for (int32_t i = 0; i < length; ++i) ArrayWrite(args[0], to + i, copied[static_cast<size_t>(i)]);
}

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&is_real>("is_real"),
    Builtin<&is_string>("is_string"),
    Builtin<&is_array>("is_array"),
    Builtin<&is_undefined>("is_undefined"),
    Builtin<&is_bool>("is_bool"),
    Builtin<&is_ptr>("is_ptr"),
    Builtin<&is_int32>("is_int32"),
    Builtin<&is_int64>("is_int64"),
    Builtin<&is_vec3>("is_vec3"),
    Builtin<&is_vec4>("is_vec4"),
    Builtin<&is_matrix>("is_matrix"),
    Builtin<&typeof_>("typeof"),
    {"bool",
     [](RValue& result, CInstance*, CInstance*, int, RValue* args) {
       result.SetReal(ValueAsBool(args[0]) ? 1 : 0);
       result.kind = kBool;
     },
     1},
    {"int64",
     [](RValue& result, CInstance*, CInstance*, int, RValue* args) {
       result.SetNumber(kInt64, ValueAsInt64(args[0]));
     },
     1},
    {"ptr",
     [](RValue& result, CInstance*, CInstance*, int, RValue* args) {
       void* const address = ValueAsPtr(args[0]);
       result.SetUndefined();
       result.ptr = address;
       result.kind = kPtr;
     },
     1},
    Builtin<&array_length_1d>("array_length_1d"),
    Builtin<&array_length_2d>("array_length_2d"),
    Builtin<&array_height_2d>("array_height_2d"),
    Builtin<&ArrayGet>("array_get"),
    Builtin<&ArraySet>("array_set"),
    Builtin<&array_equals>("array_equals"),
    Builtin<&ArrayCreateOf>("array_create"),
    {"array_copy", Builtin<&ArrayCopy>("array_copy").function, 5},
};

} // namespace

bool is_real(const RValue& value) { return value.IsReal(); }
bool is_string(const RValue& value) { return value.IsString(); }
bool is_array(const RValue& value) { return value.IsArray(); }
bool is_undefined(const RValue& value) { return value.IsUndefined(); }
bool is_bool(const RValue& value) { return value.Kind() == kBool; }
bool is_ptr(const RValue& value) { return value.Kind() == kPtr; }
bool is_int32(const RValue& value) { return value.Kind() == kInt32; }
bool is_int64(const RValue& value) { return value.Kind() == kInt64; }
bool is_vec3(const RValue& value) { return value.Kind() == kVec3; }
bool is_vec4(const RValue& value) { return value.Kind() == kVec4; }
bool is_matrix(const RValue& value) { return value.Kind() == kVec44; }
std::string typeof_(const RValue& value) { return KindName(value.kind); }

int32_t array_length_1d(const RValue& array) { return ArrayLength1d(array); }
int32_t array_length_2d(const RValue& array, int32_t row) { return ArrayLength2d(array, row); }
int32_t array_height_2d(const RValue& array) { return ArrayHeight2d(array); }

RValue array_create(int32_t length, const RValue& fill) {
  if (length <= kLongestRow) return ArrayCreate(length, fill);
  ReportError("array_create : %d elements are more than an array can have", length);
  return ArrayCreate(kLongestRow, fill);
}

bool array_equals(const RValue& a, const RValue& b) {
  if (!a.IsArray() || !b.IsArray() || ArrayHeight2d(a) != ArrayHeight2d(b)) return false;
  for (int32_t row = 0; row < ArrayHeight2d(a); ++row) {
    const int32_t length = ArrayLength2d(a, row);
    if (length != ArrayLength2d(b, row)) return false;
    for (int32_t i = 0; i < length; ++i)
      if (CompareValues(a.array->rows[row].items[i], b.array->rows[row].items[i], g_epsilon) != 0)
        return false;
  }
  return true;
}

void Function_AddArray() { Function_Add(kBuiltins); }

} // namespace vesk
