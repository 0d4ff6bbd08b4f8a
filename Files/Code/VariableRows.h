#pragma once
// Turns the typed constants of rules into rows of the table by name, so that both go through the same
// functions.
#include "Files/Code/BuiltinVariables.h"

namespace vesk::rows {

template <auto Get> bool GetOfInstance(CInstance* instance, int32_t, RValue& out) {
  if (!instance) return false;
  out.SetReal(Get(*instance));
  return true;
}
template <auto Set> bool SetOfInstance(CInstance* instance, int32_t, const RValue& in) {
  if (!instance) return false;
  Set(*instance, ValueAsReal(in));
  return true;
}
template <auto Get> bool GetIndexed(CInstance* instance, int32_t index, RValue& out) {
  if (!instance) return false;
  out.SetReal(Get(*instance, index));
  return true;
}
template <auto Set> bool SetIndexed(CInstance* instance, int32_t index, const RValue& in) {
  if (!instance) return false;
  Set(*instance, index, ValueAsReal(in));
  return true;
}
template <auto Get> bool GetOfRun(CInstance*, int32_t, RValue& out) {
  out.SetReal(static_cast<double>(Get()));
  return true;
}
template <auto Set> bool SetOfRun(CInstance*, int32_t, const RValue& in) {
  Set(ValueAsReal(in));
  return true;
}
template <auto Get> bool GetOfRunArray(CInstance*, int32_t index, RValue& out) {
  out.SetReal(Get(index));
  return true;
}
template <auto Set> bool SetOfRunArray(CInstance*, int32_t index, const RValue& in) {
  Set(index, ValueAsReal(in));
  return true;
}
template <auto Get> bool GetText(CInstance*, int32_t, RValue& out) {
  out.SetString(Get());
  return true;
}
// Anything but a text counts as the empty one.
template <auto Set> bool SetText(CInstance*, int32_t, const RValue& in) {
  Set(in.Text());
  return true;
}

template <auto Set, template <auto> class Wrap> constexpr VariableSetter SetterOrNone() {
  if constexpr (std::is_null_pointer_v<decltype(Set)>)
    return nullptr;
  else
    return Wrap<Set>::kFunction;
}
template <auto F> struct WrapInstance { static constexpr VariableSetter kFunction = &SetOfInstance<F>; };
template <auto F> struct WrapIndexed { static constexpr VariableSetter kFunction = &SetIndexed<F>; };
template <auto F> struct WrapRun { static constexpr VariableSetter kFunction = &SetOfRun<F>; };
template <auto F> struct WrapRunArray { static constexpr VariableSetter kFunction = &SetOfRunArray<F>; };
template <auto F> struct WrapText { static constexpr VariableSetter kFunction = &SetText<F>; };

template <auto G, auto S> constexpr VariableRow Row(const char* name, BuiltinVariable<G, S>) {
  return {name, &GetOfInstance<G>, SetterOrNone<S, WrapInstance>()};
}
template <auto G, auto S> constexpr VariableRow Row(const char* name, IndexedVariable<G, S>) {
  return {name, &GetIndexed<G>, SetterOrNone<S, WrapIndexed>()};
}
template <auto G, auto S> constexpr VariableRow Row(const char* name, RunVariable<G, S>) {
  return {name, &GetOfRun<G>, SetterOrNone<S, WrapRun>()};
}
template <auto G, auto S> constexpr VariableRow Row(const char* name, RunArray<G, S>) {
  return {name, &GetOfRunArray<G>, SetterOrNone<S, WrapRunArray>()};
}
template <auto G, auto S> constexpr VariableRow Row(const char* name, RunText<G, S>) {
  return {name, &GetText<G>, SetterOrNone<S, WrapText>()};
}

// A number that never changes.
template <int32_t Value> bool GetConstant(CInstance*, int32_t, RValue& out) {
  out.SetReal(Value);
  return true;
}

} // namespace vesk::rows
