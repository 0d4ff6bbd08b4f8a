#include "Files/Function/Function_External.h"

#include "Files/Base/Error.h"
#include "Files/Function/Function.h"

#include <vector>

namespace vesk {

namespace {

constexpr size_t kFixedArguments = 5; // library, function, call type, result type, count

int32_t DefineByCount(std::string_view library, std::string_view function, int32_t callType,
                      int32_t resultType, Args types) {
  std::vector<int32_t> argumentTypes;
  for (size_t i = 0; i < types.size(); ++i)
    argumentTypes.push_back(ArgAsInt32(types.data(), static_cast<int>(i)));
  return external_define(library, function, callType, resultType, argumentTypes);
}

int32_t ExternalDefine(Args args) {
  const int32_t count = args.size() < kFixedArguments ? -1 : ArgAsInt32(args.data(), 4);
  if (count < 0 || args.size() != kFixedArguments + static_cast<size_t>(count)) {
    ShowError("Wrong number of arguments to external_define()");
    return -1;
  }
  return DefineByCount(ArgAsString(args.data(), 0), ArgAsString(args.data(), 1), ArgAsInt32(args.data(), 2),
                       ArgAsInt32(args.data(), 3), args.subspan(kFixedArguments));
}

RValue ExternalCall(int32_t id, Args args) { return external_call(id, args); }

// The forms with a count in their name: a row with the exact number of arguments each.
template <int kCount> BuiltinRow DefineRow(const char* name) {
  return {name, Builtin<&DefineByCount>(name).function, 4 + kCount};
}
template <int kCount> BuiltinRow CallRow(const char* name) {
  return {name, Builtin<&ExternalCall>(name).function, 1 + kCount};
}

} // namespace

void Function_AddExternal() {
  const BuiltinRow rows[] = {
      Builtin<&ExternalDefine>("external_define"),
      Builtin<&ExternalCall>("external_call"),
      Builtin<&external_free>("external_free"),
      DefineRow<0>("external_define0"),
      DefineRow<1>("external_define1"),
      DefineRow<2>("external_define2"),
      DefineRow<3>("external_define3"),
      DefineRow<4>("external_define4"),
      DefineRow<5>("external_define5"),
      DefineRow<6>("external_define6"),
      DefineRow<7>("external_define7"),
      DefineRow<8>("external_define8"),
      CallRow<0>("external_call0"),
      CallRow<1>("external_call1"),
      CallRow<2>("external_call2"),
      CallRow<3>("external_call3"),
      CallRow<4>("external_call4"),
      CallRow<5>("external_call5"),
      CallRow<6>("external_call6"),
      CallRow<7>("external_call7"),
      CallRow<8>("external_call8"),
  };
  Function_Add(rows);
}

} // namespace vesk
