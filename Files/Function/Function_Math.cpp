#include "Files/Function/Function_Math.h"

#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Platform/Platform.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <numbers>
#include <vector>

namespace vesk {

namespace {

constexpr float kPi = 3.1415927410125732f;
constexpr double kSnap = 1e-5; // results nearer to a whole number's start count as that number
constexpr double kUnit = 2.3283064365386963e-10; // 2 to the power of -32
constexpr double kSmallestEpsilon = 1e-11;

double SnapToZero(double value) { return std::abs(value) < kSnap ? 0 : value; }

float SnapFraction(float value) {
  const float whole = std::trunc(value);
  return std::abs(value - whole) < static_cast<float>(kSnap) ? whole : value;
}

// 0 to |n|, with the sign of n.
int64_t Whole(int64_t n) {
  const uint64_t first = Random_Next();
  const uint64_t second = Random_Next();
  const uint64_t word = (second << 32 | first) & 0x7FFFFFFFFFFFFFFFu;
  const uint64_t span = static_cast<uint64_t>(n < 0 ? -n : n) + 1;
  const auto drawn = static_cast<int64_t>(word % span);
  return n < 0 ? -drawn : drawn;
}

} // namespace

double abs(double x) { return std::fabs(x); }
double sign(double x) { return x > 0 ? 1 : x < 0 ? -1 : 0; }
double round(double x) { return std::nearbyint(x); }
double floor(double x) { return std::floor(x); }
double ceil(double x) { return std::ceil(x); }
double frac(double x) { return x - std::trunc(x); }
double sqr(double x) { return x * x; }
double sqrt(double x) {
  if (x < 0) {
    ReportError("Cannot apply sqrt to negative number.");
    return 0;
  }
  return std::sqrt(x);
}
double power(double x, double exponent) { return std::pow(x, exponent); }
double exp(double x) { return std::exp(x); }
double ln(double x) { return std::log(x); }
double log2(double x) { return std::log2(x); }
double log10(double x) { return std::log10(x); }
double logn(double base, double x) { return std::log(x) / std::log(base); }
double sin(double x) { return SnapToZero(std::sin(static_cast<double>(static_cast<float>(x)))); }
double cos(double x) { return SnapToZero(std::cos(x)); }
double tan(double x) { return std::tan(x); }
double arcsin(double x) { return std::asin(x); }
double arccos(double x) { return std::acos(x); }
double arctan(double x) { return std::atan(x); }
double arctan2(double y, double x) { return std::atan2(y, x); }
double dsin(double x) { return SnapToZero(std::sin(degtorad(x))); }
double dcos(double x) { return SnapToZero(std::cos(degtorad(x))); }
double dtan(double x) { return std::tan(degtorad(x)); }
double degtorad(double degrees) { return degrees * std::numbers::pi / 180; }
double radtodeg(double radians) { return radians * 180 / std::numbers::pi; }
double clamp(double x, double low, double high) { return x < low ? low : x > high ? high : x; }
double lerp(double a, double b, double amount) { return a + (b - a) * amount; }

float point_distance(float x1, float y1, float x2, float y2) {
  const float dx = x2 - x1, dy = y2 - y1;
  return std::sqrt(dx * dx + dy * dy);
}

float point_direction(float x1, float y1, float x2, float y2) {
  const float dx = x2 - x1, dy = y2 - y1;
  if (dx == 0) return dy > 0 ? 270.0f : dy < 0 ? 90.0f : 0.0f;
  const float degrees = std::atan2(dy, dx) * 180.0f / kPi;
  return degrees <= 0 ? 0.0f - degrees : 360.0f - degrees;
}

float lengthdir_x(float length, float degrees) {
  return SnapFraction(length * std::cos(degrees * kPi / 180.0f));
}
float lengthdir_y(float length, float degrees) {
  return 0.0f - SnapFraction(length * std::sin(degrees * kPi / 180.0f));
}

double angle_difference(double a, double b) {
  const double turned = std::fmod(a - b, 360);
  return turned > 180 ? turned - 360 : turned < -180 ? turned + 360 : turned;
}

double dot_product(double x1, double y1, double x2, double y2) { return x1 * x2 + y1 * y2; }

void math_set_epsilon(double epsilon) {
  if (epsilon >= 0 && epsilon < 1) g_epsilon = epsilon == 0 ? kSmallestEpsilon : epsilon;
}
double math_get_epsilon() { return g_epsilon; }

// ---- chance ----

double random(double n) { return Random_Next() * kUnit * n; }
double random_range(double low, double high) { return low + random(high - low); }
int64_t irandom(int32_t n) { return Whole(n); }
int64_t irandom_range(int32_t low, int32_t high) { return low + Whole(static_cast<int64_t>(high) - low); }
void random_set_seed(int32_t seed) { Random_Seed(seed); }
int32_t random_get_seed() { return Random().seed; }

int32_t randomize() {
  if (const auto fixed = Random_ClockSeed()) {
    Random_Seed(*fixed);
    return *fixed;
  }
  constexpr int64_t kMicroseconds = 1000000;
  const IClock& clock = *Platform_Get().clock;
  const auto now = static_cast<uint64_t>(clock.Microseconds() + clock.CalendarSeconds() * kMicroseconds);
  const auto seed =
      static_cast<int32_t>(static_cast<uint32_t>(((now >> 32) + now) ^ (now >> 16 & 0xFFFF) ^ now << 16));
  Random_Seed(seed);
  return seed;
}

// ---- registry ----

namespace {

double Smallest(Args values) {
  double result = values.empty() ? 0 : ArgAsReal(values.data(), 0);
  for (size_t i = 1; i < values.size(); ++i)
    result = std::min(result, ArgAsReal(values.data(), static_cast<int>(i)));
  return result;
}
double Largest(Args values) {
  double result = values.empty() ? 0 : ArgAsReal(values.data(), 0);
  for (size_t i = 1; i < values.size(); ++i)
    result = std::max(result, ArgAsReal(values.data(), static_cast<int>(i)));
  return result;
}
double Mean(Args values) {
  double sum = 0;
  for (size_t i = 0; i < values.size(); ++i) sum += ArgAsReal(values.data(), static_cast<int>(i));
  return values.empty() ? 0 : sum / static_cast<double>(values.size());
}
double Median(Args values) {
  if (values.empty()) return 0;
  std::vector<double> sorted;
  for (size_t i = 0; i < values.size(); ++i) sorted.push_back(ArgAsReal(values.data(), static_cast<int>(i)));
  std::sort(sorted.begin(), sorted.end());
  return sorted[sorted.size() / 2];
}
RValue Choose(Args values) { return values.empty() ? RValue() : values[Random_Next() % values.size()]; }

constexpr BuiltinRow kBuiltins[] = {
    Builtin<&abs>("abs"),
    Builtin<&sign>("sign"),
    Builtin<&round>("round"),
    Builtin<&floor>("floor"),
    Builtin<&ceil>("ceil"),
    Builtin<&frac>("frac"),
    Builtin<&sqr>("sqr"),
    Builtin<&sqrt>("sqrt"),
    Builtin<&power>("power"),
    Builtin<&exp>("exp"),
    Builtin<&ln>("ln"),
    Builtin<&log2>("log2"),
    Builtin<&log10>("log10"),
    Builtin<&logn>("logn"),
    Builtin<&sin>("sin"),
    Builtin<&cos>("cos"),
    Builtin<&tan>("tan"),
    Builtin<&arcsin>("arcsin"),
    Builtin<&arccos>("arccos"),
    Builtin<&arctan>("arctan"),
    Builtin<&arctan2>("arctan2"),
    Builtin<&dsin>("dsin"),
    Builtin<&dcos>("dcos"),
    Builtin<&dtan>("dtan"),
    Builtin<&degtorad>("degtorad"),
    Builtin<&radtodeg>("radtodeg"),
    Builtin<&Smallest>("min"),
    Builtin<&Largest>("max"),
    Builtin<&Mean>("mean"),
    Builtin<&Median>("median"),
    Builtin<&Choose>("choose"),
    Builtin<&clamp>("clamp"),
    Builtin<&lerp>("lerp"),
    Builtin<&random>("random"),
    Builtin<&random_range>("random_range"),
    Builtin<&irandom>("irandom"),
    Builtin<&irandom_range>("irandom_range"),
    Builtin<&random_set_seed>("random_set_seed"),
    Builtin<&random_get_seed>("random_get_seed"),
    Builtin<&randomize>("randomize"),
    Builtin<&point_distance>("point_distance"),
    Builtin<&point_direction>("point_direction"),
    Builtin<&lengthdir_x>("lengthdir_x"),
    Builtin<&lengthdir_y>("lengthdir_y"),
    Builtin<&angle_difference>("angle_difference"),
    Builtin<&dot_product>("dot_product"),
    Builtin<&math_set_epsilon>("math_set_epsilon"),
    Builtin<&math_get_epsilon>("math_get_epsilon"),
};

} // namespace

void Function_AddMath() { Function_Add(kBuiltins); }

} // namespace vesk
