#pragma once
// The built-ins of numbers for what rules write: worked out from a variable, the result compares as the
// variable does, within the game's epsilon.
#include "Files/Function/Function_Math.h"

namespace vesk {

// clang-format off
template <class T> requires detail::isGameValue<T> Real abs(const T& x) { return abs(static_cast<double>(detail::Number(x))); }
template <class T> requires detail::isGameValue<T> Real sign(const T& x) { return sign(static_cast<double>(detail::Number(x))); }
template <class T> requires detail::isGameValue<T> Real round(const T& x) { return round(static_cast<double>(detail::Number(x))); }
template <class T> requires detail::isGameValue<T> Real floor(const T& x) { return floor(static_cast<double>(detail::Number(x))); }
template <class T> requires detail::isGameValue<T> Real ceil(const T& x) { return ceil(static_cast<double>(detail::Number(x))); }
template <class T> requires detail::isGameValue<T> Real frac(const T& x) { return frac(static_cast<double>(detail::Number(x))); }
template <class T> requires detail::isGameValue<T> Real sqr(const T& x) { return sqr(static_cast<double>(detail::Number(x))); }
template <class T> requires detail::isGameValue<T> Real sqrt(const T& x) { return sqrt(static_cast<double>(detail::Number(x))); }
template <detail::GameNumber... T> requires (sizeof...(T) == 4 && (detail::isGameValue<T> || ...)) Real point_distance(const T&... at) { return point_distance(static_cast<float>(detail::Number(at))...); }
template <detail::GameNumber... T> requires (sizeof...(T) == 4 && (detail::isGameValue<T> || ...)) Real point_direction(const T&... at) { return point_direction(static_cast<float>(detail::Number(at))...); }
template <detail::GameNumber... T> requires (sizeof...(T) == 2 && (detail::isGameValue<T> || ...)) Real lengthdir_x(const T&... polar) { return lengthdir_x(static_cast<float>(detail::Number(polar))...); }
template <detail::GameNumber... T> requires (sizeof...(T) == 2 && (detail::isGameValue<T> || ...)) Real lengthdir_y(const T&... polar) { return lengthdir_y(static_cast<float>(detail::Number(polar))...); }
// clang-format on

} // namespace vesk
