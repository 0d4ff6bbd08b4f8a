#pragma once
// Number built-ins. Angles are degrees, counter-clockwise on screen, unless a name says otherwise.
#include "Files/Code/Self.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

namespace vesk {

double abs(double x);
double sign(double x);  // -1, 0 or 1
double round(double x); // ties to even
double floor(double x);
double ceil(double x);
double frac(double x); // with the sign of x
double sqr(double x);
double sqrt(double x); // of a negative number: an error report and 0
double power(double x, double exponent);
double exp(double x);
double ln(double x);
double log2(double x);
double log10(double x);
double logn(double base, double x);
double sin(double x); // radians; near 0 becomes 0, as in cos
double cos(double x);
double tan(double x);
double arcsin(double x); // radians
double arccos(double x);
double arctan(double x);
double arctan2(double y, double x);
double dsin(double x); // degrees
double dcos(double x);
double dtan(double x);
double degtorad(double degrees);
double radtodeg(double radians);
double clamp(double x, double low, double high);
double lerp(double a, double b, double amount);
float point_distance(float x1, float y1, float x2, float y2);
float point_direction(float x1, float y1, float x2, float y2); // 0 for the same point
float lengthdir_x(float length, float direction);
float lengthdir_y(float length, float direction); // y grows downward
double angle_difference(double a, double b);      // -180 to 180
double dot_product(double x1, double y1, double x2, double y2);

void math_set_epsilon(double epsilon); // 0 to below 1; 0 becomes 1e-11, other values are ignored
double math_get_epsilon();

namespace detail {

template <class T>
concept GameNumber = std::is_arithmetic_v<T> || isGameValue<T>;
// What is worked out from a variable compares as the variable does.
template <class... T> using Result = std::conditional_t<(isGameValue<T> || ...), Real, double>;

} // namespace detail

template <detail::GameNumber First, detail::GameNumber... Rest>
auto min(const First& first, const Rest&... rest) {
  return detail::Result<First, Rest...>(
      std::min({static_cast<double>(detail::Number(first)), static_cast<double>(detail::Number(rest))...}));
}
template <detail::GameNumber First, detail::GameNumber... Rest>
auto max(const First& first, const Rest&... rest) {
  return detail::Result<First, Rest...>(
      std::max({static_cast<double>(detail::Number(first)), static_cast<double>(detail::Number(rest))...}));
}
template <detail::GameNumber... Values> double mean(const Values&... values) {
  if constexpr (sizeof...(Values) == 0)
    return 0;
  else
    return (static_cast<double>(detail::Number(values)) + ...) / static_cast<double>(sizeof...(Values));
}

// ---- chance: all draw from the game's one generator ----

double random(double n);                      // 0 to below n
double random_range(double low, double high); // low to below high
int64_t irandom(int32_t n);                   // 0 to n, with the sign of n
int64_t irandom_range(int32_t low, int32_t high);
void random_set_seed(int32_t seed);
int32_t random_get_seed();
int32_t randomize(); // seeds from the clock; the seed

// One of the arguments: numbers, or texts.
template <class First, class... Rest> auto choose(First first, Rest... rest) {
  const uint32_t pick = Random_Next() % (1 + static_cast<uint32_t>(sizeof...(Rest)));
  if constexpr ((std::is_integral_v<First> && ... && std::is_integral_v<Rest>)) {
    const int64_t options[] = {static_cast<int64_t>(first), static_cast<int64_t>(rest)...};
    return static_cast<int32_t>(options[pick]);
  } else if constexpr ((detail::GameNumber<First> && ... && detail::GameNumber<Rest>)) {
    const double options[] = {static_cast<double>(detail::Number(first)),
                              static_cast<double>(detail::Number(rest))...};
    return Real(options[pick]);
  } else {
    const First options[] = {first, static_cast<First>(rest)...};
    return options[pick];
  }
}

void Function_AddMath();

} // namespace vesk
