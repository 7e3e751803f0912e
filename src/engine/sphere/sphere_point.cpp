#include "engine/sphere/sphere_point.hpp"

#include <array>
#include <boost/multiprecision/cpp_int.hpp>
#include <cstdint>

namespace korvex {
namespace {

// Products of six coordinates and sums of them fit with room to spare.
using Whole = boost::multiprecision::int512_t;
using Vector = std::array<Whole, 3>;

Vector vector_of(const SpherePoint& p) {
  const auto whole = [](double value) { return Whole(static_cast<std::int64_t>(value)); };
  return {whole(p.whole.x), whole(p.whole.y), whole(p.whole.z)};
}

Vector product(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Whole scalar_product(const Vector& a, const Vector& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vector normal_of(const SpherePoint& a, const SpherePoint& b) {
  return product(vector_of(a), vector_of(b));
}

}  // namespace

SpherePoint sphere_point(const Point& whole) { return {whole, (1 / norm(whole)) * whole}; }

int exact_orientation(const SpherePoint& a, const SpherePoint& b, const SpherePoint& c) {
  return scalar_product(normal_of(a, b), vector_of(c)).sign();
}

double exact_height(const SpherePoint& a, const SpherePoint& b, const SpherePoint& c) {
  return scalar_product(normal_of(a, b), vector_of(c)).convert_to<double>() / norm(c.whole);
}

Point exact_normal(const SpherePoint& a, const SpherePoint& b) {
  const Vector normal = normal_of(a, b);
  const Point rounded{normal[0].convert_to<double>(), normal[1].convert_to<double>(),
                      normal[2].convert_to<double>()};
  return (1 / norm(rounded)) * rounded;
}

int orientation(const SpherePoint& a, const SpherePoint& b, const SpherePoint& c) {
  return orientation(a, b, c, dot(cross(a.unit, b.unit), c.unit));
}

Alignment alignment(const SpherePoint& a, const SpherePoint& b) {
  const Point across = cross(a.unit, b.unit);
  if (dot(across, across) > kTripleProductError) return Alignment::kNone;
  const Vector normal = normal_of(a, b);
  if (!normal[0].is_zero() || !normal[1].is_zero() || !normal[2].is_zero()) return Alignment::kNone;
  return dot(a.unit, b.unit) > 0 ? Alignment::kSame : Alignment::kOpposite;
}

bool between(const SpherePoint& a, const SpherePoint& b, const SpherePoint& c) {
  const Vector normal = normal_of(a, b);
  const Vector point = vector_of(c);
  return scalar_product(product(normal, vector_of(a)), point) >= 0 &&
         scalar_product(product(vector_of(b), normal), point) >= 0;
}

int alignment_of_normals(const SpherePoint& a, const SpherePoint& b, const SpherePoint& c,
                         const SpherePoint& d) {
  return scalar_product(normal_of(a, b), normal_of(c, d)).sign();
}

int orientation_of_normals(const SpherePoint& a, const SpherePoint& b, const SpherePoint& c,
                           const SpherePoint& d, const SpherePoint& e, const SpherePoint& f) {
  return scalar_product(product(normal_of(a, b), normal_of(c, d)), normal_of(e, f)).sign();
}

}  // namespace korvex
