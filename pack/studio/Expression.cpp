#include "pack/studio/Expression.h"

#include "pack/studio/Canvas.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <stdexcept>

namespace vesk::studio {

namespace {

double Modulo(double a, double b) { return b == 0 ? 0 : a - b * std::floor(a / b); }

// Smooth noise in [0,1) that repeats after px by py lattice steps.
double ValueNoise(double x, double y, double px, double py, double seed) {
  const double x0 = std::floor(x), y0 = std::floor(y), fx = x - x0, fy = y - y0;
  const auto at = [&](double i, double j) { return HashNoise(Modulo(x0 + i, px), Modulo(y0 + j, py), seed); };
  const double u = fx * fx * (3 - 2 * fx), v = fy * fy * (3 - 2 * fy);
  return (at(0, 0) * (1 - u) + at(1, 0) * u) * (1 - v) + (at(0, 1) * (1 - u) + at(1, 1) * u) * v;
}

// Nearest of nx by ny jittered points spread over a period of px by py: gives the distance to the border of
// the cell and leaves its number, the way from its middle and the distance to the middle in the scope.
double Cells(Scope& scope, const double* a) {
  const double x = a[0], y = a[1], nx = a[2], ny = a[3], px = a[4], py = a[5], seed = a[6], jitter = a[7];
  const double cw = px / nx, ch = py / ny;
  double near = 1e9, next = 1e9;
  const double gx = std::floor(x / cw), gy = std::floor(y / ch);
  for (int j = -2; j <= 2; ++j)
    for (int i = -2; i <= 2; ++i) {
      const double cx = gx + i, cy = gy + j, ix = Modulo(cx, nx), iy = Modulo(cy, ny);
      const double mx =
          (cx + .5 + (HashNoise(ix, iy, seed) - .5) * jitter + (Modulo(iy, 2) != 0 ? .5 : 0)) * cw;
      const double my = (cy + .5 + (HashNoise(ix, iy, seed + 77) - .5) * jitter) * ch;
      const double dx = x - mx, dy = y - my, d = std::sqrt(dx * dx + dy * dy);
      if (d < near) {
        next = near, near = d;
        scope.cellId = HashNoise(ix, iy, seed + 151), scope.cellX = dx, scope.cellY = dy,
        scope.cellDistance = d;
      } else {
        next = std::min(next, d);
      }
    }
  return next - near;
}

// The row where a sloped ground cell begins (1 to 6: gentle up low and high, gentle down high and low, steep
// up and down) or ends (7 to 12: ceilings, gentle thick to the right, gentle thick to the left, steep right
// and left).
double Surface(int shape, double column) {
  const double half = std::floor(column / 2);
  switch (shape) {
  case 1: return 15 - half;
  case 2: return 7 - half;
  case 3: return half;
  case 4: return 8 + half;
  case 5: return 15 - column;
  case 6: return column;
  case 7: return half;
  case 8: return 8 + half;
  case 9: return 15 - half;
  case 10: return 7 - half;
  case 11: return column;
  case 12: return 15 - column;
  default: return 0;
  }
}

constexpr double kBayer[16] = {0, 8, 2, 10, 12, 4, 14, 6, 3, 11, 1, 9, 15, 7, 13, 5};

struct Function {
  const char* name;
  int arguments; // -1: two or more
  double (*run)(Scope&, const double*, size_t);
};

const Function kFunctions[] = {
    {"sin", 1, [](Scope&, const double* a, size_t) { return std::sin(a[0]); }},
    {"cos", 1, [](Scope&, const double* a, size_t) { return std::cos(a[0]); }},
    {"wave", 1, [](Scope&, const double* a, size_t) { return std::sin(a[0] * 6.28318530717958648); }},
    {"sqrt", 1, [](Scope&, const double* a, size_t) { return std::sqrt(std::max(0.0, a[0])); }},
    {"pow", 2, [](Scope&, const double* a, size_t) { return std::pow(a[0], a[1]); }},
    {"abs", 1, [](Scope&, const double* a, size_t) { return std::abs(a[0]); }},
    {"floor", 1, [](Scope&, const double* a, size_t) { return std::floor(a[0]); }},
    {"ceil", 1, [](Scope&, const double* a, size_t) { return std::ceil(a[0]); }},
    {"round", 1, [](Scope&, const double* a, size_t) { return std::floor(a[0] + .5); }},
    {"min", -1, [](Scope&, const double* a, size_t n) { return *std::min_element(a, a + n); }},
    {"max", -1, [](Scope&, const double* a, size_t n) { return *std::max_element(a, a + n); }},
    {"mod", 2, [](Scope&, const double* a, size_t) { return Modulo(a[0], a[1]); }},
    {"clamp", 3, [](Scope&, const double* a, size_t) { return std::min(std::max(a[0], a[1]), a[2]); }},
    {"lerp", 3, [](Scope&, const double* a, size_t) { return a[0] + (a[1] - a[0]) * a[2]; }},
    {"hypot", 2, [](Scope&, const double* a, size_t) { return std::sqrt(a[0] * a[0] + a[1] * a[1]); }},
    {"atan2", 2, [](Scope&, const double* a, size_t) { return std::atan2(a[0], a[1]); }},
    {"pick", -1,
     [](Scope&, const double* a, size_t n) {
       return a[1 + static_cast<size_t>(std::clamp(a[0], 0.0, static_cast<double>(n - 2)))];
     }},
    {"rnd", 3, [](Scope&, const double* a, size_t) { return HashNoise(a[0], a[1], a[2]); }},
    {"noise", 5, [](Scope&, const double* a, size_t) { return ValueNoise(a[0], a[1], a[2], a[3], a[4]); }},
    {"dither", 2,
     [](Scope&, const double* a, size_t) {
       return (kBayer[static_cast<int>(Modulo(a[1], 4)) * 4 + static_cast<int>(Modulo(a[0], 4))] + .5) / 16;
     }},
    {"cells", 8, [](Scope& s, const double* a, size_t) { return Cells(s, a); }},
    {"cell_id", 0, [](Scope& s, const double*, size_t) { return s.cellId; }},
    {"cell_x", 0, [](Scope& s, const double*, size_t) { return s.cellX; }},
    {"cell_y", 0, [](Scope& s, const double*, size_t) { return s.cellY; }},
    {"cell_d", 0, [](Scope& s, const double*, size_t) { return s.cellDistance; }},
    {"grey", 1,
     [](Scope&, const double* a, size_t) { return kGrey + std::floor(std::clamp(a[0], 0.0, 255.0)); }},
    {"at", 2,
     [](Scope& s, const double* a, size_t) {
       return double(s.canvas->At(static_cast<int>(a[0]), static_cast<int>(a[1])).colour);
     }},
    {"lighter", 2,
     [](Scope& s, const double* a, size_t) {
       return double(s.palette->Step(static_cast<Colour>(a[0]), static_cast<int>(a[1])));
     }},
    {"surface", 2,
     [](Scope&, const double* a, size_t) { return Surface(static_cast<int>(a[0]), std::floor(a[1])); }},
    {"shade_of", 1, [](Scope&, const double* a, size_t) { return Modulo(a[0], kStepsPerRamp); }},
};

const char* const kOperators[] = {"||", "&&", "==", "!=", "<=", ">=", "<", ">", "+", "-", "*", "/", "%"};
constexpr int kPriority[] = {1, 2, 3, 3, 4, 4, 4, 4, 5, 5, 6, 6, 6};

class Parser {
public:
  Parser(std::string_view text, const std::function<int(const std::string&)>& slotOf,
         const NameLookup& lookup)
      : text_(text), slotOf_(slotOf), lookup_(lookup) {}

  Node All() {
    Node node = Choice();
    if (at_ != text_.size()) Fail();
    return node;
  }

private:
  std::string_view text_;
  size_t at_ = 0;
  const std::function<int(const std::string&)>& slotOf_;
  const NameLookup& lookup_;

  [[noreturn]] void Fail() const { throw std::runtime_error("can't read \"" + std::string(text_) + "\""); }

  bool Take(std::string_view token) {
    if (text_.substr(at_, token.size()) != token) return false;
    at_ += token.size();
    return true;
  }

  Node Choice() {
    Node node = Binary(1);
    if (!Take("?")) return node;
    Node choose{Node::Kind::Choose, 0, 0, {std::move(node)}};
    choose.children.push_back(Choice());
    if (!Take(":")) Fail();
    choose.children.push_back(Choice());
    return choose;
  }

  Node Binary(int priority) {
    Node left = Unary();
    for (;;) {
      int found = -1;
      for (int i = 0; i < static_cast<int>(std::size(kOperators)); ++i)
        if (text_.substr(at_, std::string_view(kOperators[i]).size()) == kOperators[i]) {
          found = i;
          break;
        }
      if (found < 0 || kPriority[found] < priority) return left;
      at_ += std::string_view(kOperators[found]).size();
      Node right = Binary(kPriority[found] + 1);
      Node node{Node::Kind::Binary, 0, found, {}};
      node.children.push_back(std::move(left));
      node.children.push_back(std::move(right));
      left = std::move(node);
    }
  }

  Node Unary() {
    if (Take("-")) return {Node::Kind::Negate, 0, 0, {Unary()}};
    if (at_ + 1 < text_.size() && text_[at_] == '!' && text_[at_ + 1] != '=') {
      ++at_;
      return {Node::Kind::Not, 0, 0, {Unary()}};
    }
    return Primary();
  }

  Node Primary() {
    if (Take("(")) {
      Node node = Choice();
      if (!Take(")")) Fail();
      return node;
    }
    if (at_ < text_.size() && (std::isdigit(static_cast<unsigned char>(text_[at_])) || text_[at_] == '.')) {
      size_t end = at_;
      while (end < text_.size() &&
             (std::isdigit(static_cast<unsigned char>(text_[end])) || text_[end] == '.'))
        ++end;
      const double value = std::stod(std::string(text_.substr(at_, end - at_)));
      at_ = end;
      return {Node::Kind::Number, value, 0, {}};
    }
    size_t end = at_;
    while (end < text_.size() && (std::isalnum(static_cast<unsigned char>(text_[end])) || text_[end] == '_'))
      ++end;
    if (end == at_) Fail();
    const std::string name(text_.substr(at_, end - at_));
    at_ = end;
    if (Take("(")) return Call(name);
    Node node{Node::Kind::Slot, 0, slotOf_(name), {}};
    if (node.index < 0) {
      node.kind = Node::Kind::Number;
      if (!lookup_(name, node.value)) throw std::runtime_error("nothing is named " + name);
    }
    if (Take(".")) { // a step of a ramp
      Node step = Primary(), sum{Node::Kind::Binary, 0, 8, {}};
      sum.children.push_back(std::move(node));
      sum.children.push_back(std::move(step));
      return sum;
    }
    return node;
  }

  Node Call(const std::string& name) {
    Node node{Node::Kind::Call, 0, -1, {}};
    for (int i = 0; i < static_cast<int>(std::size(kFunctions)); ++i)
      if (name == kFunctions[i].name) node.index = i;
    if (node.index < 0) throw std::runtime_error("no function is named " + name);
    if (!Take(")")) {
      do node.children.push_back(Choice());
      while (Take(","));
      if (!Take(")")) Fail();
    }
    const int wanted = kFunctions[node.index].arguments, given = static_cast<int>(node.children.size());
    if (given > 12 || (wanted < 0 ? given < 2 : given != wanted))
      throw std::runtime_error(name + " can't be called with " + std::to_string(given) + " arguments");
    return node;
  }
};

double Apply(int op, double a, double b) {
  switch (op) {
  case 2: return a == b;
  case 3: return a != b;
  case 4: return a <= b;
  case 5: return a >= b;
  case 6: return a < b;
  case 7: return a > b;
  case 8: return a + b;
  case 9: return a - b;
  case 10: return a * b;
  case 11: return b == 0 ? 0 : a / b;
  default: return Modulo(a, b);
  }
}

} // namespace

double HashNoise(double x, double y, double seed) {
  uint64_t h = static_cast<uint64_t>(static_cast<int64_t>(std::floor(x))) * 0x9e3779b97f4a7c15ull ^
               static_cast<uint64_t>(static_cast<int64_t>(std::floor(y))) * 0xc2b2ae3d27d4eb4full ^
               static_cast<uint64_t>(static_cast<int64_t>(std::floor(seed))) * 0x165667b19e3779f9ull;
  h = (h ^ h >> 31) * 0xbf58476d1ce4e5b9ull;
  h = (h ^ h >> 29) * 0x94d049bb133111ebull;
  return static_cast<double>((h ^ h >> 32) >> 11) * 0x1p-53;
}

Expression ParseExpression(std::string_view text, const std::function<int(const std::string&)>& slotOf,
                           const NameLookup& lookup) {
  return Parser(text, slotOf, lookup).All();
}

double Evaluate(const Node& node, Scope& scope) {
  const auto child = [&](size_t i) { return Evaluate(node.children[i], scope); };
  switch (node.kind) {
  case Node::Kind::Number: return node.value;
  case Node::Kind::Slot: return scope.slots[node.index];
  case Node::Kind::Negate: return -child(0);
  case Node::Kind::Not: return child(0) == 0;
  case Node::Kind::Choose: return child(0) != 0 ? child(1) : child(2);
  case Node::Kind::Binary:
    if (node.index == 0) return child(0) != 0 || child(1) != 0;
    if (node.index == 1) return child(0) != 0 && child(1) != 0;
    return Apply(node.index, child(0), child(1));
  case Node::Kind::Call: {
    double arguments[12];
    for (size_t i = 0; i < node.children.size(); ++i) arguments[i] = child(i);
    return kFunctions[node.index].run(scope, arguments, node.children.size());
  }
  }
  return 0;
}

} // namespace vesk::studio
