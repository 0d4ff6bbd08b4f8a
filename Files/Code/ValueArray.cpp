// Reference-counted arrays: rows of values, copied when a value writes that doesn't own them.
#include "Files/Code/ValueArray.h"

#include "Files/Base/Error.h"

#include <bit>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <new>

namespace vesk {

namespace {

struct ArrayState {
  int32_t textPass = 0;
  ArrayReadFailure failure;
};
ArrayState g_arrays;

const RValue g_undefined;

// How many entries a block for `count` has: kept nowhere, but worked out the same way each time.
uint32_t CapacityFor(int32_t count) { return count <= 0 ? 0 : std::bit_ceil(static_cast<uint32_t>(count)); }

// A block with room for `count` entries that starts with the first `used` of `old`; the rest is zero-filled.
template <class T> T* Regrow(T* old, int32_t used, int32_t count) {
  const uint32_t capacity = CapacityFor(count);
  if (capacity == CapacityFor(used)) return old;
  auto* block = static_cast<T*>(std::calloc(capacity, sizeof(T)));
  if (!block) throw std::bad_alloc();
  if (used > 0)
    std::memcpy(static_cast<void*>(block), static_cast<const void*>(old),
                sizeof(T) * static_cast<size_t>(used));
  std::free(old);
  return block;
}

void GrowRow(RefRow& row, int32_t length) {
  const auto address = [](const RValue* value) { return reinterpret_cast<uintptr_t>(value); };
  const uintptr_t before = address(row.items); // a number: the block itself may be gone
  row.items = Regrow(row.items, row.length, length);
  if (address(row.items) != before) {
    // Elements that own an array have moved.
    for (int32_t i = 0; i < row.length; ++i) {
      RValue& item = row.items[i];
      if (item.IsArray() && item.array &&
          address(item.array->owner) == before + static_cast<size_t>(i) * sizeof(RValue))
        item.array->owner = &item;
    }
  }
  row.length = length;
}

void GrowRows(RefArray& array, int32_t count) {
  array.rows = Regrow(array.rows, array.rowCount, count);
  array.rowCount = count;
}

RefArray* MakeArray(RValue* owner) { return new RefArray{1, nullptr, owner, 0, 0}; }

RefArray* Clone(const RefArray& source, RValue* owner) {
  RefArray* copy = MakeArray(owner);
  GrowRows(*copy, source.rowCount);
  for (int32_t row = 0; row < source.rowCount; ++row) {
    const RefRow& from = source.rows[row];
    GrowRow(copy->rows[row], from.length);
    for (int32_t i = 0; i < from.length; ++i) new (&copy->rows[row].items[i]) RValue(from.items[i]);
  }
  return copy;
}

struct Place {
  int32_t row = -1, column = -1;
  explicit operator bool() const { return row >= 0; }
};

// Where in the array's own rows the value stands, if it does.
Place PlaceOf(const RefArray& array, const RValue* value) {
  const std::less<const RValue*> before;
  for (int32_t row = 0; row < array.rowCount; ++row) {
    const RefRow& items = array.rows[row];
    if (items.length > 0 && !before(value, items.items) && before(value, items.items + items.length))
      return {row, static_cast<int32_t>(value - items.items)};
  }
  return {};
}

int32_t RowOf(int64_t index) { return static_cast<int32_t>(index / kRowStride); }
int32_t ColumnOf(int64_t index) { return static_cast<int32_t>(index % kRowStride); }

} // namespace

int32_t& ArrayTextPass() { return g_arrays.textPass; }
ArrayReadFailure& ArrayRead() { return g_arrays.failure; }

void ArrayDelete(RefArray* array) {
  for (int32_t row = 0; row < array->rowCount; ++row) {
    RefRow& items = array->rows[row];
    for (int32_t i = 0; i < items.length; ++i) items.items[i].SetUndefined();
    std::free(items.items);
  }
  std::free(array->rows);
  delete array;
}

RValue* ArrayElementForWrite(RValue& value, int64_t index) {
  if (index < 0) return nullptr;
  if (index > std::numeric_limits<int32_t>::max()) {
    ShowError("array index %lld is too large", static_cast<long long>(index));
    return nullptr;
  }
  if (!value.IsArray() || !value.array) {
    if (value.NeedsRelease()) value.Free();
    value.array = MakeArray(&value);
    value.flags = 0;
    value.kind = kArray;
  } else if (value.array->owner != &value && value.array->refCount != 1) {
    RefArray* shared = value.array;
    value.array = Clone(*shared, &value);
    --shared->refCount;
  }
  RefArray& array = *value.array;
  const int32_t row = RowOf(index), column = ColumnOf(index);
  if (row >= array.rowCount) GrowRows(array, row + 1);
  RefRow& items = array.rows[row];
  if (column >= items.length) GrowRow(items, column + 1);
  return &items.items[column];
}

RValue* ArrayElementForRead(const RValue& value, int64_t index) {
  if (value.IsUnset()) ShowError("ARRAY argument is unset");
  if (!value.IsArray() || !value.array || index < 0) return nullptr;
  const RefArray& array = *value.array;
  if (index / kRowStride >= array.rowCount) return nullptr;
  const RefRow& row = array.rows[RowOf(index)];
  return ColumnOf(index) < row.length ? &row.items[ColumnOf(index)] : nullptr;
}

const RValue& ArrayElementChecked(RValue& value, int64_t index) {
  if (!value.IsArray() || !value.array) {
    ShowError("trying to index variable that is not an array");
    return g_undefined;
  }
  RefArray& array = *value.array;
  if (!array.owner) array.owner = &value;
  const int64_t row = index / kRowStride, column = index % kRowStride;
  if (row < 0 || row >= array.rowCount) {
    ShowError("first index out of bounds request %d maximum size is %d", static_cast<int>(row),
              array.rowCount);
    return g_undefined;
  }
  const RefRow& items = array.rows[row];
  if (column < 0 || column >= items.length) {
    ShowError("second index out of bounds request %d,%d maximum size is %d", static_cast<int>(row),
              static_cast<int>(column), items.length);
    return g_undefined;
  }
  return items.items[column];
}

bool ArrayReadInto(RValue& dest, RValue& source, int64_t index) {
  ArrayReadFailure& failure = ArrayRead();
  failure = {};
  if (!source.IsArray()) {
    if (index != kNoIndex) ShowError("trying to index a variable which is not an array");
    dest = source;
    return index == kNoIndex;
  }
  if (source.array && !source.array->owner) source.array->owner = &source;
  if (index == kNoIndex) {
    dest = source;
    return true;
  }
  if (const RValue* element = ArrayElementForRead(source, index)) {
    dest = *element;
    return true;
  }
  failure.failed = true;
  failure.row = RowOf(index);
  failure.column = ColumnOf(index);
  failure.rowCount = ArrayHeight2d(source);
  failure.rowLength = ArrayLength2d(source, failure.row);
  dest.SetReal(0);
  return false;
}

void ArrayWrite(RValue& value, int64_t index, const RValue& element) {
  if (index == kNoIndex) {
    value = element;
    return;
  }
  if (value.IsArray() && value.array) {
    // Growing moves the elements, of which `element` may be one.
    const Place inside = PlaceOf(*value.array, &element);
    if (RValue* target = ArrayElementForWrite(value, index))
      *target = inside ? value.array->rows[inside.row].items[inside.column] : element;
    return;
  }
  RValue held(element); // may be the very value that becomes an array
  if (RValue* target = ArrayElementForWrite(value, index)) *target = std::move(held);
}

RValue ArrayCreate(int32_t length, const RValue& fill) {
  RValue result;
  result.array = MakeArray(&result);
  result.kind = kArray;
  GrowRows(*result.array, 1);
  GrowRow(result.array->rows[0], length < 0 ? 0 : length);
  for (int32_t i = 0; i < length; ++i) result.array->rows[0].items[i] = fill;
  return result;
}

int32_t ArrayLength1d(const RValue& value) { return ArrayLength2d(value, 0); }

int32_t ArrayHeight2d(const RValue& value) {
  return value.IsArray() && value.array ? value.array->rowCount : 0;
}

int32_t ArrayLength2d(const RValue& value, int32_t row) {
  return row >= 0 && row < ArrayHeight2d(value) ? value.array->rows[row].length : 0;
}

} // namespace vesk
