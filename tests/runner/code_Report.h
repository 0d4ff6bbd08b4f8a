#pragma once
// What an action reports, for tests of error texts.
#include "Files/Base/Error.h"
#include "Files/Room/Room.h"

#include <string>

namespace vesk::test {

struct Report {
  std::string text; // empty: nothing was reported
  bool fatal = false;
  bool Says(const std::string& part) const { return text.find(part) != std::string::npos; }
};

template <class Action> Report ReportOf(Action action) {
  Error_Reset();
  Error().showBox = false;
  action();
  Report report{Error().lastReport, Error().fatalCount > 0};
  Error_Reset();
  Error().showBox = false;
  Rooms().request = kNoRoomRequest;
  return report;
}

} // namespace vesk::test
