#pragma once
// Expressions of expect and until: TERM OP TERM.
#include "Files/Code/Value.h"

#include <string>
#include <vector>

namespace vesk {

// A number, a quoted text, OBJECT.VAR, global.VAR, count(OBJECT) or tiles(DEPTH).
struct Term {
  enum class Kind { kValue, kInstanceVariable, kGlobalVariable, kCount, kTiles } kind = Kind::kValue;
  RValue value;         // kValue
  int32_t object = -1;  // kInstanceVariable, kCount
  std::string variable; // with its index
  double depth = 0;     // kTiles
};

struct Expression {
  Term left, right;
  std::string op;
};

// "" or, in words, what is wrong with the words. `quoted` tells which words stood in quotes.
std::string ParseExpression(const std::vector<std::string>& words, Expression& expression);
// The term's present value; undefined when there is no such instance.
RValue Evaluate(const Term& term);
// Numbers compare within 0.00001, texts byte by byte; an undefined or unset value is equal to nothing.
bool Holds(const Expression& expression);

} // namespace vesk
