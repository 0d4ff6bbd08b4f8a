#pragma once
// The scripts in code-table order, and the adapter that makes a typed function callable as a script.
#include "Files/Code/Self.h"

#include <span>
#include <string>
#include <type_traits>
#include <utility>

namespace vesk {

struct ScriptEntry {
  const char* name;
  ScriptFunction function;
};
std::span<const ScriptEntry> ScriptTable();

namespace detail {

template <class T> T ScriptArgument(const RValue& value) {
  if constexpr (std::is_same_v<T, std::string>)
    return ValueAsText(value);
  else if constexpr (std::is_same_v<T, bool>)
    return ValueAsBool(value);
  else
    return static_cast<T>(ValueAsReal(value));
}

template <auto F> struct ScriptUnpack;

// A typed script takes its arguments, after a first Self for the caller where it needs one.
template <class... P> inline constexpr bool takesSelf = false;
template <class First, class... P> inline constexpr bool takesSelf<First, P...> = std::is_same_v<First, Self>;

template <class Result, class... P, Result (*F)(P...)>
requires(!takesSelf<P...>) struct ScriptUnpack<F> {
  template <size_t... I> static Result Call(RValue** args, std::index_sequence<I...>) {
    return F(ScriptArgument<std::remove_cvref_t<P>>(*args[I])...);
  }
  static RValue& Run(CInstance*, CInstance*, RValue& result, int, RValue** args) {
    if constexpr (std::is_void_v<Result>) {
      Call(args, std::index_sequence_for<P...>{});
      result.SetReal(0);
    } else {
      result = RValue(Call(args, std::index_sequence_for<P...>{}));
    }
    return result;
  }
};
template <class Result, class... P, Result (*F)(Self, P...)> struct ScriptUnpack<F> {
  template <size_t... I> static Result Call(CInstance* self, RValue** args, std::index_sequence<I...>) {
    return F(Self(self), ScriptArgument<std::remove_cvref_t<P>>(*args[I])...);
  }
  static RValue& Run(CInstance* self, CInstance*, RValue& result, int, RValue** args) {
    if constexpr (std::is_void_v<Result>) {
      Call(self, args, std::index_sequence_for<P...>{});
      result.SetReal(0);
    } else {
      result = RValue(Call(self, args, std::index_sequence_for<P...>{}));
    }
    return result;
  }
};

} // namespace detail

template <auto F> constexpr ScriptEntry Script(const char* name) {
  return {name, &detail::ScriptUnpack<F>::Run};
}

} // namespace vesk
