#include "game/NotBuilt.h"

#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Code/Self.h"
#include "Files/Object/Object.h"
#include "game/EventTable.h"

namespace vesk {

void SayNotBuilt(Self self) {
  const int object = self.instance->objectIndex;
  if (Object_Find(object)->instances.count == 1)
    ReleaseConsole().Output("%s has no rules yet; it stands still\n", Object_Name(object));
}

void SayNotBuilt(const char* script) {
  ReleaseConsole().Output("%s has no rules yet; nothing comes of it\n", script);
}

RValue& ReportNotBuiltScript(CInstance*, CInstance*, RValue& result, int, RValue**) {
  ShowError("the script %s has no body yet", FrameHead() ? FrameHead()->name : "?");
  result.SetReal(0);
  return result;
}

#define NOT_BUILT(symbol) const EventTable symbol##_events = {{ev_create, 0, SayNotBuilt}};
#include "game/NotBuilt.inc"
#undef NOT_BUILT

} // namespace vesk
