#include <algorithm>
#include <cstddef>
#include <vector>

#include "reference/reference.hpp"

namespace reference {

namespace {

constexpr float kTolerance = 1e-5F;
constexpr float kBelowOne = 0.99999F;
constexpr float kAboveOne = 1.00001F;

struct Vector {
  float x;
  float y;
  float z;
};

Vector difference(const fPointR3& a, const fPointR3& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}

Vector cross(const Vector& a, const Vector& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

float dot(const Vector& a, const Vector& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

Vector quotient(const Vector& a, float divisor) {
  return {a.x / divisor, a.y / divisor, a.z / divisor};
}

// (u, v) place the meeting point in the triangle, along its two sides from A; w along the segment.
int place(float u, float v, float w) {
  const float s = u + v;
  const auto inside = [](float c) { return kTolerance <= c && c <= kBelowOne; };
  const auto at_zero = [](float c) { return -kTolerance < c && c < kTolerance; };
  const auto at_one = [](float c) { return kBelowOne < c && c < kAboveOne; };
  const auto within = [](float c) { return -kTolerance < c && c < kAboveOne; };
  if (inside(w) && inside(u) && inside(v) && s <= kBelowOne) return 1;
  if (at_zero(u) && within(v) && within(w)) return 2;
  if (at_zero(v) && within(u) && within(w)) return 2;
  if (at_one(s) && within(u) && within(v) && within(w)) return 2;
  const bool in_triangle = u > -kTolerance && v > -kTolerance && s < kAboveOne;
  if (at_zero(w) && in_triangle) return 2;
  if (at_one(w) && in_triangle) return 2;
  return 0;
}

int intersect(const fPointR3& a, const fPointR3& b, const fPointR3& c, const fPointR3& p,
              const fPointR3& q) {
  const Vector e1 = difference(b, a);
  const Vector e2 = difference(c, a);
  const Vector d = difference(p, q);
  const Vector r = difference(p, a);
  const Vector e2_d = cross(e2, d);
  const float determinant = dot(e1, e2_d);
  if (determinant == 0) return 1;
  const float u = dot(r, quotient(e2_d, determinant));
  const float v = dot(r, quotient(cross(d, e1), determinant));
  const float w = dot(r, quotient(cross(e1, e2), determinant));
  return place(u, v, w);
}

// Whether a segment of the closed chain, other than the four that touch the triangle's two sides,
// meets the triangle of the points i, i + 1 and i + 2.
bool is_blocked(const std::vector<fPointR3>& chain, std::size_t i) {
  const std::size_t n = chain.size();
  if (i + 1 == n) return true;  // there is no point behind the last one to remove
  const fPointR3& a = chain[i];
  const fPointR3& b = chain[(i + 1) % n];
  const fPointR3& c = chain[(i + 2) % n];
  for (std::size_t k = 0; k + 2 <= i; ++k) {
    if (intersect(a, b, c, chain[k], chain[k + 1]) > 0) return true;
  }
  for (std::size_t m = i + 3; m + 2 <= n; ++m) {
    if (intersect(a, b, c, chain[m], chain[m + 1]) > 0) return true;
  }
  return i > 0 && i + 3 < n && intersect(a, b, c, chain[n - 1], chain[0]) > 0;
}

}  // namespace

int intersection(fPointR3* triangle, fPointR3* segment) {
  return intersect(triangle[0], triangle[1], triangle[2], segment[0], segment[1]);
}

int ChainReduce(std::vector<fPointR3>& chain) {
  if (chain.size() < 4) return static_cast<int>(chain.size());
  for (std::size_t i = 0; i < chain.size();) {
    if (is_blocked(chain, i)) {
      ++i;
      continue;
    }
    chain.erase(chain.begin() + static_cast<std::ptrdiff_t>(i) + 1);
    if (chain.size() <= 3) break;
    i = 0;
  }
  return static_cast<int>(chain.size());
}

void ChainReduceANY(std::vector<fPointR3>& chain, std::vector<Job>& jobs, bool /*unused*/) {
  std::vector<fPointR3> piece;
  for (Job& job : jobs) {
    const auto first = chain.begin() + job.start;
    piece.assign(first, first + std::max(job.length, 0));
    job.length = reference::ChainReduce(piece);
    std::copy(piece.begin(), piece.end(), first);
  }
}

}  // namespace reference
