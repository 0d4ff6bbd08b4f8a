#pragma once
// Objects and scripts that have their record but no rules yet. What is not built says so when it is reached.
#include "Files/Code/Code.h"

namespace vesk {

class CInstance;

// The Create of an object without rules: says so once an object on the release channel.
void SayNotBuilt(Self self);
// In place of a call of a script without a body whose effect can be missed.
void SayNotBuilt(const char* script);
// A script without a body: a fatal error report that names it.
RValue& ReportNotBuiltScript(CInstance* self, CInstance* other, RValue& result, int argc, RValue** args);

} // namespace vesk
