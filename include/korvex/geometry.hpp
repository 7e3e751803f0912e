// Points in space and the few operations on them that the engine needs.
#pragma once

#include <cmath>

namespace korvex {

// A point or a vector, in the unit of the input (ångström for proteins).
struct Point {
  double x = 0;
  double y = 0;
  double z = 0;

  friend bool operator==(const Point&, const Point&) = default;
};

constexpr Point operator+(const Point& a, const Point& b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
constexpr Point operator-(const Point& a, const Point& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
constexpr Point operator-(const Point& a) { return {-a.x, -a.y, -a.z}; }
constexpr Point operator*(double factor, const Point& a) {
  return {factor * a.x, factor * a.y, factor * a.z};
}
constexpr double dot(const Point& a, const Point& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
constexpr Point cross(const Point& a, const Point& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double norm(const Point& a) { return std::sqrt(dot(a, a)); }

}  // namespace korvex
