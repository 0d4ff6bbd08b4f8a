#pragma once
// The registry of built-in functions by name, and the adapter that enters a typed function in it.
//
// A built-in is one plain typed function, e.g. `int instance_create(CInstance* self, float x, float y, int
// object)`. Game code calls it directly; scripts by name reach it through Builtin<&instance_create>, which
// unpacks and checks the arguments. Parameter types: double float int32_t uint32_t int64_t bool
// std::string_view std::string const RValue&, or std::optional of one of the by-value types for arguments
// that may be left out; a first parameter CInstance* gets `self`, a second one `other`; a last parameter
// `Args` takes all remaining arguments. Result types: void (undefined), numbers, bool, text, RValue.
#include "Files/Code/Code.h"
#include "Files/Code/Value.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace vesk {

using Args = std::span<RValue>;

inline constexpr int kAnyCount = -1;
inline constexpr int32_t kScriptIdBase = 100000;
inline constexpr int32_t kExtensionIdBase = 500000;
inline constexpr int32_t kScriptExecuteId = 499999;

struct BuiltinRow {
  const char* name; // below 64 bytes
  BuiltinFunction function;
  int argc; // exact, or kAnyCount
};

// Appends to the registry. A name given twice: the first one wins.
void Function_Add(std::string_view name, BuiltinFunction function, int argumentCount, bool flag = false);
void Function_Add(std::span<const BuiltinRow> rows);
// True and the id of a script, extension function or built-in of that name; false and -1 otherwise.
bool Function_Find(std::string_view name, int32_t& id);
int32_t Function_Count();
const char* Function_Name(int32_t index);
int32_t Function_ArgumentCount(int32_t index);
void Function_Reset();

// Functions of extension packages.
void Function_AddExtension(std::string_view name, BuiltinFunction function);
// Fills the ids of the descriptor's table. False, with the first unknown name, when one is not found; the
// others are filled all the same.
bool Function_Resolve(std::span<FunctionEntry> table, std::string& missing);

// Calls by id from Function_Find. `result` is released first; it is undefined when the built-in writes none.
// Arguments that a built-in of fixed count lacks read as undefined; an unknown id is an error report.
void CallBuiltin(CInstance* self, CInstance* other, RValue& result, int argc, int32_t id, RValue* args);

// ---- adapter ----

namespace detail {

template <class T> struct Argument; // one specialization a parameter type

template <> struct Argument<double> {
  static double Get(RValue* args, int i) { return ArgAsReal(args, i); }
};
template <> struct Argument<float> {
  static float Get(RValue* args, int i) { return ArgAsFloat(args, i); }
};
template <> struct Argument<int32_t> {
  static int32_t Get(RValue* args, int i) { return ArgAsInt32(args, i); }
};
template <> struct Argument<uint32_t> {
  static uint32_t Get(RValue* args, int i) { return ArgAsUint32(args, i); }
};
template <> struct Argument<int64_t> {
  static int64_t Get(RValue* args, int i) { return ArgAsInt64(args, i); }
};
template <> struct Argument<bool> {
  static bool Get(RValue* args, int i) { return ArgAsBool(args, i); }
};
template <> struct Argument<std::string> {
  static std::string Get(RValue* args, int i) { return ArgAsString(args, i); }
};
template <> struct Argument<std::string_view> {
  static std::string Get(RValue* args, int i) { return ArgAsString(args, i); }
};
template <> struct Argument<RValue> {
  static std::reference_wrapper<const RValue> Get(RValue* args, int i) { return args[i]; }
};

template <class T> struct Argument<std::optional<T>> {
  static std::optional<T> Get(RValue* args, int i) { return Argument<T>::Get(args, i); }
};
template <class T> inline constexpr bool isOptional = false;
template <class T> inline constexpr bool isOptional<std::optional<T>> = true;

template <class T> void StoreResult(RValue& result, T&& value) {
  using Plain = std::remove_cvref_t<T>;
  if constexpr (std::is_same_v<Plain, bool>)
    result.SetReal(value ? 1.0 : 0.0);
  else if constexpr (std::is_arithmetic_v<Plain>)
    result.SetReal(static_cast<double>(value));
  else {
    static_assert(!std::is_pointer_v<Plain> || std::is_same_v<Plain, const char*>, "no result of this type");
    result = RValue(std::forward<T>(value));
  }
}

template <class... P> inline constexpr int kInjected = 0;
template <class A, class... P>
inline constexpr int kInjected<A, P...> = std::is_same_v<A, CInstance*> ? 1 + kInjected<P...> : 0;

template <class Result, class... P> struct Adapter {
  using Function = Result (*)(P...);
  static constexpr int kSelves = kInjected<P...>;
  using Parameters = std::tuple<std::remove_cvref_t<P>...>;

  template <size_t I> static auto Value(CInstance* self, CInstance* other, int argc, RValue* args) {
    using T = std::tuple_element_t<I, Parameters>;
    constexpr int at = static_cast<int>(I) - kSelves;
    if constexpr (std::is_same_v<T, CInstance*>)
      return I == 0 ? self : other;
    else if constexpr (std::is_same_v<T, Args>)
      return Args(args + at, static_cast<size_t>(argc > at ? argc - at : 0));
    else if constexpr (isOptional<T>)
      return argc > at ? Argument<T>::Get(args, at) : T();
    else
      return Argument<T>::Get(args, at);
  }
  template <Function F, size_t... I>
  static void Call(RValue& result, CInstance* self, CInstance* other, int argc, RValue* args,
                   std::index_sequence<I...>) {
    if constexpr (std::is_void_v<Result>)
      F(Value<I>(self, other, argc, args)...);
    else
      StoreResult(result, F(Value<I>(self, other, argc, args)...));
  }
};

template <class Result, class... P> constexpr int CountOf(Result (*)(P...)) {
  if constexpr (((std::is_same_v<std::remove_cvref_t<P>, Args> || isOptional<std::remove_cvref_t<P>>) || ...))
    return kAnyCount;
  else
    return static_cast<int>(sizeof...(P)) - kInjected<P...>;
}

template <auto F> struct Unpack;
template <class Result, class... P, Result (*F)(P...)> struct Unpack<F> {
  static void Run(RValue& result, CInstance* self, CInstance* other, int argc, RValue* args) {
    Adapter<Result, P...>::template Call<F>(result, self, other, argc, args, std::index_sequence_for<P...>{});
  }
};

} // namespace detail

// The registry row of a typed built-in: kBuiltins[] = { Builtin<&abs>("abs"), … }.
template <auto F> constexpr BuiltinRow Builtin(const char* name) {
  return {name, &detail::Unpack<F>::Run, detail::CountOf(F)};
}

} // namespace vesk
