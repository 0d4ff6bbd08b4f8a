#include "Files/Function/Function_Game.h"

#include "Files/Base/Error.h"
#include "Files/Code/BuiltinVariables.h"
#include "Files/Function/Function.h"
#include "Files/Script/Script.h"
#include "Platform/Platform.h"

namespace vesk {

namespace {

// The id of a variable of that name, built-in ones first; -1 for none.
int32_t VariableId(std::string_view name) {
  if (const int32_t builtin = BuiltinVariables_Find(name); builtin >= 0) return builtin;
  const int32_t slot = Variable_SlotOf(name);
  return slot < 0 ? -1 : slot + kVariableIdBase;
}

const RValue* WrittenSlot(const ZqObjectBase* holder, std::string_view name) {
  const int32_t slot = Variable_SlotOf(name);
  const RValue* value = holder && slot >= 0 ? holder->FindSlot(slot) : nullptr;
  return value && !value->IsUnset() ? value : nullptr;
}

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&script_exists>("script_exists"),
    Builtin<&script_get_name>("script_get_name"),
    Builtin<&variable_global_exists>("variable_global_exists"),
    Builtin<&variable_global_get>("variable_global_get"),
    Builtin<&variable_global_set>("variable_global_set"),
    Builtin<&variable_instance_exists>("variable_instance_exists"),
    Builtin<&variable_instance_get>("variable_instance_get"),
    Builtin<&variable_instance_set>("variable_instance_set"),
    Builtin<&get_timer>("get_timer"),
};

} // namespace

bool script_exists(int32_t script) { return Script_Find(script) != nullptr; }

std::string script_get_name(int32_t script) {
  const CScript* found = Script_Find(script);
  return found ? found->name : "<undefined>";
}

bool variable_global_exists(std::string_view name) { return WrittenSlot(GlobalObject(), name) != nullptr; }

RValue variable_global_get(std::string_view name) {
  const RValue* value = WrittenSlot(GlobalObject(), name);
  return value ? *value : RValue();
}

void variable_global_set(std::string_view name, const RValue& value) {
  const int32_t slot = Variable_SlotOf(name);
  if (slot < 0 || !GlobalObject())
    ReportError("The game has no variable \"%s\"", std::string(name).c_str());
  else
    GlobalObject()->GetSlot(slot) = value;
}

bool variable_instance_exists(int32_t target, std::string_view name) {
  const CInstance* found = FirstTarget(target);
  return found && (BuiltinVariables_Find(name) >= 0 || WrittenSlot(found, name));
}

RValue variable_instance_get(int32_t target, std::string_view name) {
  RValue result;
  if (variable_instance_exists(target, name)) GetVarOf(target, VariableId(name), kNoIndex, result);
  return result;
}

void variable_instance_set(int32_t target, std::string_view name, const RValue& value) {
  const int32_t variable = VariableId(name);
  if (variable < 0)
    ReportError("The game has no variable \"%s\"", std::string(name).c_str());
  else
    SetVarOf(target, variable, kNoIndex, value);
}

double get_timer() { return static_cast<double>(Platform_Get().clock->Microseconds()); }

void Function_AddGame() { Function_Add(kBuiltins); }

} // namespace vesk
