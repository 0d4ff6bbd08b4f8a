#pragma once
// Arithmetic of the picture sources: numbers, variables, colours (olive.3), parts and grids by name,
// functions.
#include "pack/studio/Palette.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vesk::studio {

class Canvas;

// What an expression may look at while it is worked out.
struct Scope {
  const Palette* palette = nullptr;
  const Canvas* canvas = nullptr;
  double* slots = nullptr;
  double cellId = 0, cellX = 0, cellY = 0, cellDistance = 0; // of the last cells(...)
};

struct Node {
  enum class Kind { Number, Slot, Call, Binary, Negate, Not, Choose } kind = Kind::Number;
  double value = 0;
  int index = 0; // slot, function or operator
  std::vector<Node> children;
};

using Expression = Node;

// Turns a name that is no variable into a number; false if nothing has that name.
using NameLookup = std::function<bool(const std::string&, double&)>;

// Throws std::runtime_error with the trouble in words, without file and line. slotOf gives a variable's slot
// or -1.
Expression ParseExpression(std::string_view text, const std::function<int(const std::string&)>& slotOf,
                           const NameLookup& lookup);

double Evaluate(const Expression& expression, Scope& scope);

// A number in [0,1) from three whole numbers, the same on every machine.
double HashNoise(double x, double y, double seed);

} // namespace vesk::studio
