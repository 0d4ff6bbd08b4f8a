#pragma once
// How rules read and write variables as they are spoken:
//
//     if (self[hspeed] < 3) self[hspeed] += 0.06;      built-in variable: setter and side effects run
//     self[hp] -= self[damage];                        script variable: one slot, numeric fast path inline
//     if (self[x] + 8 >= other[x]) …                   compared as the game compares: within its epsilon
//     self[alarm][1] = 30;  self[gun][0] = spr_pistol; indexed variables
//     global[coins] += 1;  view_xview[0] = 0;  health = 25;
//     with(obj_coin, [&](Self coin) { instance_destroy(coin); });
#include "Files/Code/Code.h"
#include "Files/Code/Value.h"
#include "Files/Object/Instance.h"

#include <cmath>
#include <concepts>
#include <cstdint>
#include <string>
#include <type_traits>

namespace vesk {

// A number as the game has it: arithmetic is plain, comparison tolerates the epsilon.
struct Real {
  double v = 0;
  constexpr Real() = default;
  constexpr Real(double value) : v(value) {}
  operator RValue() const { return RValue(v); }
  template <class T>
  requires std::is_arithmetic_v<T>
  constexpr operator T() const { return static_cast<T>(v); }
};
template <> inline constexpr Real::operator bool() const { return v > 0.5; }

struct Slot {
  int32_t number;
}; // a script variable

// A built-in variable of an instance: its type carries getter and setter.
template <auto Get, auto Set> struct BuiltinVariable {};
// A read-only one has no setter.
inline constexpr std::nullptr_t kReadOnly = nullptr;
// One with an index, such as alarm.
template <auto Get, auto Set> struct IndexedVariable {};

template <class V> struct Ref; // what self[variable] yields

namespace detail {

// Numbers as C++ has them; an unscoped enumeration names numbers.
template <class T>
inline constexpr bool isPlain = std::is_arithmetic_v<T> ||
                                (std::is_enum_v<T> && std::is_convertible_v<T, int>);
template <class T> inline constexpr bool isGameValue = std::is_same_v<T, Real>;
template <class V> inline constexpr bool isGameValue<Ref<V>> = true;
template <> inline constexpr bool isGameValue<RValue> = true;
// Those that may hold something else than a number.
template <class T>
concept ValueHolder = requires(const T& holder) {
  holder.value();
}
|| std::is_same_v<T, RValue>;
template <class A, class B>
concept GameNumbers = (isGameValue<A> || isGameValue<B>)&&(isGameValue<A> || isPlain<A>)&&(isGameValue<B> ||
                                                                                           isPlain<B>);

template <class T> constexpr double Number(const T& value) {
  if constexpr (isPlain<T>)
    return static_cast<double>(value);
  else if constexpr (std::is_same_v<T, Real>)
    return value.v;
  else if constexpr (std::is_same_v<T, RValue>)
    return ValueAsReal(value);
  else
    return value.Get();
}
template <ValueHolder T> const RValue& Held(const T& holder) {
  if constexpr (std::is_same_v<T, RValue>)
    return holder;
  else
    return holder.value();
}
template <class T> RValue Boxed(const T& value) {
  if constexpr (ValueHolder<T>)
    return Held(value);
  else
    return RValue(static_cast<double>(Number(value)));
}
inline int CompareReals(double a, double b) {
  const double difference = a - b;
  return std::abs(difference) <= g_epsilon ? 0 : difference < 0 ? -1 : 1;
}
template <class A, class B> int Compare(const A& a, const B& b) {
  if constexpr (ValueHolder<A>) {
    const RValue& left = Held(a);
    if constexpr (ValueHolder<B>) {
      const RValue& right = Held(b);
      if (left.IsReal() && right.IsReal()) return CompareReals(left.real, right.real);
      return CompareValues(left, right, g_epsilon);
    } else {
      if (left.IsReal()) return CompareReals(left.real, Number(b));
      return CompareValues(left, Boxed(b), g_epsilon);
    }
  } else if constexpr (ValueHolder<B>) {
    const RValue& right = Held(b);
    if (right.IsReal()) return CompareReals(Number(a), right.real);
    return CompareValues(Boxed(a), right, g_epsilon);
  } else {
    return CompareReals(Number(a), Number(b));
  }
}

} // namespace detail

// clang-format off
template <class A, class B> requires detail::GameNumbers<A, B> Real operator+(const A& a, const B& b) { return detail::Number(a) + detail::Number(b); }
template <class A, class B> requires detail::GameNumbers<A, B> Real operator-(const A& a, const B& b) { return detail::Number(a) - detail::Number(b); }
template <class A, class B> requires detail::GameNumbers<A, B> Real operator*(const A& a, const B& b) { return detail::Number(a) * detail::Number(b); }
template <class A, class B> requires detail::GameNumbers<A, B> Real operator/(const A& a, const B& b) { return detail::Number(a) / detail::Number(b); }
template <class A> requires detail::isGameValue<A> Real operator-(const A& a) { return -detail::Number(a); }
template <class A, class B> requires detail::GameNumbers<A, B> bool operator==(const A& a, const B& b) { return detail::Compare(a, b) == 0; }
template <class A, class B> requires detail::GameNumbers<A, B> bool operator!=(const A& a, const B& b) { return detail::Compare(a, b) != 0; }
template <class A, class B> requires detail::GameNumbers<A, B> bool operator<(const A& a, const B& b) { return detail::Compare(a, b) < 0; }
template <class A, class B> requires detail::GameNumbers<A, B> bool operator>(const A& a, const B& b) { return detail::Compare(a, b) > 0; }
template <class A, class B> requires detail::GameNumbers<A, B> bool operator<=(const A& a, const B& b) { return detail::Compare(a, b) <= 0; }
template <class A, class B> requires detail::GameNumbers<A, B> bool operator>=(const A& a, const B& b) { return detail::Compare(a, b) >= 0; }
// clang-format on

// Reading and arithmetic assignment, written once for every kind of variable.
template <class R> struct NumberRef {
  template <class T>
  requires(std::is_arithmetic_v<T> && !std::is_same_v<T, bool>) operator T() const {
    return static_cast<T>(self().Get());
  }
  operator bool() const { return self().Get() > 0.5; }
  operator RValue() const { return detail::Boxed(self()); } // for arguments of any kind
  const R& operator+=(double d) const { return self() = self().Get() + d; }
  const R& operator-=(double d) const { return self() = self().Get() - d; }
  const R& operator*=(double d) const { return self() = self().Get() * d; }
  const R& operator/=(double d) const { return self() = self().Get() / d; }
  template <class T>
  requires detail::isGameValue<T>
  const R& operator+=(const T& d) const { return *this += detail::Number(d); }
  template <class T>
  requires detail::isGameValue<T>
  const R& operator-=(const T& d) const { return *this -= detail::Number(d); }
  template <class T>
  requires detail::isGameValue<T>
  const R& operator*=(const T& d) const { return *this *= detail::Number(d); }
  template <class T>
  requires detail::isGameValue<T>
  const R& operator/=(const T& d) const { return *this /= detail::Number(d); }

private:
  const R& self() const { return static_cast<const R&>(*this); }
};

struct Element {};

// An element of an array variable; written, it makes or grows the array.
template <> struct Ref<Element> : NumberRef<Ref<Element>> {
  RValue& array;
  int64_t index;
  Ref(RValue& value, int64_t at) : array(value), index(at) {}
  Ref(const Ref&) = default;
  const RValue& value() const { return ArrayElementChecked(array, index); } // until the array is written
  bool isString() const { return value().IsString(); }
  int32_t number() const { return ValueAsInt32(value()); }
  double Get() const { return ValueAsReal(value()); }
  std::string text() const { return ValueAsText(value()); }
  template <class T>
  requires(detail::isPlain<T>) const Ref& operator=(T d) const {
    ArrayWrite(array, index, RValue(static_cast<double>(d)));
    return *this;
  }
  const Ref& operator=(Real d) const { return *this = d.v; }
  const Ref& operator=(const RValue& v) const {
    ArrayWrite(array, index, v);
    return *this;
  }
  const Ref& operator=(const Ref& o) const { return *this = o.value(); }
  const Ref& operator=(const char* text) const { return *this = RValue(text); }
  const Ref& operator=(std::string_view text) const { return *this = RValue(text); }
  const Ref& operator=(const std::string& text) const { return *this = RValue(text); }
  template <class V>
  requires(detail::isGameValue<V>) const Ref& operator=(const V& o) const { return *this = detail::Boxed(o); }
};

template <> struct Ref<Slot> : NumberRef<Ref<Slot>> {
  RValue& v;
  explicit Ref(RValue& value) : v(value) {}
  Ref(const Ref&) = default;
  double Get() const { return ValueAsReal(v); }
  const RValue& value() const { return v; }
  std::string text() const { return ValueAsText(v); }
  bool isString() const { return v.IsString(); }
  int32_t number() const { return ValueAsInt32(v); } // as an id or an index
  // The element; row and column for two dimensions.
  Ref<Element> operator[](int64_t column) const { return {v, column}; }
  Ref<Element> at(int64_t row, int64_t column) const { return {v, row * kRowStride + column}; }
  template <class T>
  requires(detail::isPlain<T>) const Ref& operator=(T d) const {
    v.SetReal(static_cast<double>(d));
    return *this;
  }
  const Ref& operator=(Real d) const { return *this = d.v; }
  const Ref& operator=(const char* text) const {
    v.SetString(text);
    return *this;
  }
  const Ref& operator=(std::string_view text) const {
    v.SetString(text);
    return *this;
  }
  const Ref& operator=(const std::string& text) const {
    v.SetString(text);
    return *this;
  }
  const Ref& operator=(const RValue& value) const {
    v = value;
    return *this;
  }
  const Ref& operator=(const Ref& o) const {
    v = o.v;
    return *this;
  }
  template <class V>
  requires(detail::isGameValue<V>) const Ref& operator=(const V& o) const {
    if constexpr (detail::ValueHolder<V>)
      v = detail::Held(o);
    else
      v.SetReal(detail::Number(o));
    return *this;
  }
};

// Texts compare by their bytes; what is no text equals none.
template <detail::ValueHolder A> bool operator==(const A& a, std::string_view b) {
  const RValue& value = detail::Held(a);
  return value.IsString() && value.Text() == b;
}
template <detail::ValueHolder A> bool operator==(const A& a, const char* b) {
  return a == std::string_view(b);
}
template <detail::ValueHolder A> bool operator==(const A& a, const std::string& b) {
  return a == std::string_view(b);
}

template <auto GetIt, auto SetIt>
struct Ref<BuiltinVariable<GetIt, SetIt>> : NumberRef<Ref<BuiltinVariable<GetIt, SetIt>>> {
  CInstance& i;
  explicit Ref(CInstance& instance) : i(instance) {}
  Ref(const Ref&) = default;
  double Get() const { return GetIt(i); }
  template <class T>
  requires(detail::isPlain<T> && !std::is_null_pointer_v<decltype(SetIt)>) const Ref& operator=(T d) const {
    SetIt(i, static_cast<double>(d));
    return *this;
  }
  const Ref& operator=(Real d) const { return *this = d.v; }
  const Ref& operator=(const Ref& o) const { return *this = o.Get(); }
  template <class V>
  requires(detail::isGameValue<V>) const Ref& operator=(const V& o) const {
    return *this = detail::Number(o);
  }
};

template <auto GetIt, auto SetIt> struct IndexedElement : NumberRef<IndexedElement<GetIt, SetIt>> {
  CInstance& i;
  int index;
  IndexedElement(CInstance& instance, int at) : i(instance), index(at) {}
  IndexedElement(const IndexedElement&) = default;
  double Get() const { return GetIt(i, index); }
  template <class T>
  requires(detail::isPlain<T>) const IndexedElement& operator=(T d) const {
    SetIt(i, index, static_cast<double>(d));
    return *this;
  }
  const IndexedElement& operator=(Real d) const { return *this = d.v; }
  const IndexedElement& operator=(const IndexedElement& o) const { return *this = o.Get(); }
  template <class V>
  requires(detail::isGameValue<V>) const IndexedElement& operator=(const V& o) const {
    return *this = detail::Number(o);
  }
};
template <auto GetIt, auto SetIt> struct Ref<IndexedVariable<GetIt, SetIt>> {
  CInstance& i;
  IndexedElement<GetIt, SetIt> operator[](int index) const { return {i, index}; }
};
namespace detail {
template <auto G, auto S> inline constexpr bool isGameValue<IndexedElement<G, S>> = true;
} // namespace detail

// Handle of an instance; null when there is none. A copy names the same instance.
struct Self {
  CInstance* instance = nullptr;

  Self() = default;
  explicit Self(CInstance* it) : instance(it) {}
  explicit operator bool() const { return instance != nullptr; }
  operator CInstance*() const { return instance; } // for the typed built-ins
  bool operator==(const Self& o) const { return instance == o.instance; }
  int32_t number() const { return instance ? instance->id : noone; } // the id

  Ref<Slot> operator[](Slot slot) const { return Ref<Slot>(instance->GetSlot(slot.number)); }
  template <auto G, auto S> Ref<BuiltinVariable<G, S>> operator[](BuiltinVariable<G, S>) const {
    return Ref<BuiltinVariable<G, S>>(*instance);
  }
  template <auto G, auto S> Ref<IndexedVariable<G, S>> operator[](IndexedVariable<G, S>) const {
    return {*instance};
  }
};
using Other = Self;

inline void EventFunction::operator()(CInstance* self, CInstance* other) const {
  if (m_self)
    m_self(Self(self));
  else if (m_pair)
    m_pair(Self(self), Self(other));
}

// The global object: global[coins].
struct Global {
  Ref<Slot> operator[](Slot slot) const { return Ref<Slot>(GlobalObject()->GetSlot(slot.number)); }
};
inline constexpr Global global{};

// A built-in variable of the run or the room: health = 25; room_width.
template <auto GetIt, auto SetIt> struct RunVariable : NumberRef<RunVariable<GetIt, SetIt>> {
  constexpr RunVariable() = default;
  constexpr RunVariable(const RunVariable&) = default;
  double Get() const { return GetIt(); }
  template <class T>
  requires(detail::isPlain<T> && !std::is_null_pointer_v<decltype(SetIt)>) const RunVariable&
  operator=(T d) const {
    SetIt(static_cast<double>(d));
    return *this;
  }
  const RunVariable& operator=(Real d) const { return *this = d.v; }
  const RunVariable& operator=(const RunVariable& o) const { return *this = o.Get(); }
  template <class V>
  requires(detail::isGameValue<V>) const RunVariable& operator=(const V& o) const {
    return *this = detail::Number(o);
  }
};
template <auto GetIt, auto SetIt> struct RunElement : NumberRef<RunElement<GetIt, SetIt>> {
  int index;
  explicit RunElement(int at) : index(at) {}
  RunElement(const RunElement&) = default;
  double Get() const { return GetIt(index); }
  template <class T>
  requires(detail::isPlain<T> && !std::is_null_pointer_v<decltype(SetIt)>) const RunElement&
  operator=(T d) const {
    SetIt(index, static_cast<double>(d));
    return *this;
  }
  const RunElement& operator=(Real d) const { return *this = d.v; }
  const RunElement& operator=(const RunElement& o) const { return *this = o.Get(); }
  template <class V>
  requires(detail::isGameValue<V>) const RunElement& operator=(const V& o) const {
    return *this = detail::Number(o);
  }
};
// One that holds a text: keyboard_string.
template <auto GetIt, auto SetIt> struct RunText {
  std::string text() const { return GetIt(); }
  operator std::string() const { return GetIt(); }
  bool operator==(std::string_view b) const { return GetIt() == b; }
  const RunText& operator=(std::string_view text) const {
    SetIt(text);
    return *this;
  }
};
// One with an index: view_xview[0].
template <auto GetIt, auto SetIt> struct RunArray {
  RunElement<GetIt, SetIt> operator[](int index) const { return RunElement<GetIt, SetIt>(index); }
};
namespace detail {
template <auto G, auto S> inline constexpr bool isGameValue<RunVariable<G, S>> = true;
template <auto G, auto S> inline constexpr bool isGameValue<RunElement<G, S>> = true;
} // namespace detail

// ---- reaching others ----

// The instances of `target` (object, id, all), collected first; body(Self) runs on each, newest first. A body
// that returns bool ends the loop with false. `self` is the surrounding instance, needed only for targets
// self and other.
template <class Body> void with(int32_t target, Body body, Self self = {}, Self other = {}) {
  WithSnapshot targets(self.instance, other.instance, target);
  while (CInstance* it = targets.Next()) {
    if constexpr (std::is_same_v<std::invoke_result_t<Body, Self>, bool>) {
      if (!body(Self(it))) return;
    } else {
      body(Self(it));
    }
  }
}

// The instance that `target.variable` reads from: the first live one of an object or its descendants, or the
// live instance of that id; null when there is none.
Self first(int32_t target);

} // namespace vesk
