#include "sim/Expression.h"

#include "Files/Object/Object.h"
#include "sim/Look.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace vesk {

namespace {

constexpr double kTolerance = 0.00001;

bool ParseNumber(std::string_view text, double& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

// The inside of name(…), or an empty view.
std::string_view Inside(std::string_view text, std::string_view name) {
  if (!text.starts_with(name) || !text.ends_with(')') || text.size() <= name.size() + 2) return {};
  return text.substr(name.size() + 1, text.size() - name.size() - 2);
}

std::string ParseTerm(const std::string& text, Term& term) {
  double number = 0;
  if (!text.empty() && text[0] == '"') {
    term.value = RValue(std::string_view(text).substr(1));
    return "";
  }
  if (ParseNumber(text, number)) {
    term.value = RValue(number);
    return "";
  }
  if (const std::string_view object = Inside(text, "count"); !object.empty()) {
    term.kind = Term::Kind::kCount;
    term.object = Object_FindByName(object);
    return term.object >= 0 ? "" : "there is no object \"" + std::string(object) + "\"";
  }
  if (const std::string_view depth = Inside(text, "tiles"); !depth.empty()) {
    term.kind = Term::Kind::kTiles;
    return ParseNumber(depth, term.depth) ? "" : "tiles() takes a depth";
  }
  const size_t dot = text.find('.');
  if (dot == std::string::npos) return "\"" + text + "\" is no number, text, OBJECT.VAR, count() or tiles()";
  const std::string holder = text.substr(0, dot);
  term.variable = text.substr(dot + 1);
  VariablePath path;
  if (!ParseVariable(term.variable, path) || !VariableExists(path.name))
    return "there is no variable \"" + term.variable + "\"";
  if (holder == "global") {
    term.kind = Term::Kind::kGlobalVariable;
    return "";
  }
  term.kind = Term::Kind::kInstanceVariable;
  term.object = Object_FindByName(holder);
  return term.object >= 0 ? "" : "there is no object \"" + holder + "\"";
}

constexpr std::string_view kOperators[] = {"==", "!=", "<", "<=", ">", ">="};

} // namespace

std::string ParseExpression(const std::vector<std::string>& words, Expression& expression) {
  if (words.size() != 3) return "an expression is TERM OP TERM";
  expression.op = words[1];
  if (std::find(std::begin(kOperators), std::end(kOperators), words[1]) == std::end(kOperators))
    return "\"" + words[1] + "\" is none of == != < <= > >=";
  std::string problem = ParseTerm(words[0], expression.left);
  if (problem.empty()) problem = ParseTerm(words[2], expression.right);
  return problem;
}

RValue Evaluate(const Term& term) {
  switch (term.kind) {
  case Term::Kind::kValue: return term.value;
  case Term::Kind::kCount: return RValue(static_cast<double>(InstancesOf(term.object).size()));
  case Term::Kind::kTiles: return RValue(static_cast<double>(CountTiles(term.depth)));
  default: break;
  }
  VariablePath path;
  ParseVariable(term.variable, path);
  if (term.kind == Term::Kind::kGlobalVariable) return ReadVariable(nullptr, path);
  const std::vector<CInstance*> found = InstancesOf(term.object);
  return found.empty() ? RValue() : ReadVariable(found.front(), path);
}

bool Holds(const Expression& expression) {
  const RValue left = Evaluate(expression.left), right = Evaluate(expression.right);
  int order;
  if (left.IsNumber() && right.IsNumber()) {
    order = CompareValues(RValue(ValueAsReal(left)), RValue(ValueAsReal(right)), kTolerance);
  } else if (left.IsString() && right.IsString()) {
    const int bytes = left.Text().compare(right.Text());
    order = bytes < 0 ? -1 : bytes > 0 ? 1 : 0;
  } else {
    return expression.op == "!="; // of different kinds, or absent
  }
  const std::string& op = expression.op;
  if (op == "==") return order == 0;
  if (op == "!=") return order != 0;
  if (op == "<") return order < 0;
  if (op == "<=") return order <= 0;
  if (op == ">") return order > 0;
  return order >= 0;
}

} // namespace vesk
