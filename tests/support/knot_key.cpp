#include "support/knot_key.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "support/chains.hpp"

namespace support {
namespace {

constexpr std::uint64_t kPrime = (std::uint64_t{1} << 61) - 1;
constexpr std::uint64_t kPoint = 1234567890123456789U % kPrime;

// Crossings this near to an edge's end, in parts of the edge, may be seen on the wrong edge.
constexpr double kAtEnd = 1e-10;

// Sine of the angle below which edges count as parallel.
constexpr double kParallel = 1e-12;

std::uint64_t times(std::uint64_t a, std::uint64_t b) {
  __extension__ using Wide = unsigned __int128;
  return static_cast<std::uint64_t>(static_cast<Wide>(a) * b % kPrime);
}

std::uint64_t minus(std::uint64_t a, std::uint64_t b) { return a >= b ? a - b : a + kPrime - b; }

std::uint64_t power(std::uint64_t base, std::uint64_t exponent) {
  std::uint64_t result = 1;
  for (; exponent > 0; exponent >>= 1) {
    if ((exponent & 1) != 0) result = times(result, base);
    base = times(base, base);
  }
  return result;
}

std::uint64_t inverse(std::uint64_t a) { return power(a, kPrime - 2); }

struct Meeting {
  std::size_t over;
  std::size_t under;
  double over_at;   // 0 at the edge's beginning, 1 at its end
  double under_at;  // likewise
  bool positive;
};

// Of parallel edges: they appear on one line, and not apart on it.
bool overlap_in_line(const ChainAtom& a, const ChainAtom& b, const ChainAtom& c,
                     const ChainAtom& d) {
  const double ux = b.x - a.x, uy = b.y - a.y, size = std::hypot(ux, uy);
  const double aside = std::fabs((c.x - a.x) * uy - (c.y - a.y) * ux) / size;
  const auto along = [&](const ChainAtom& p) {
    return ((p.x - a.x) * ux + (p.y - a.y) * uy) / size;
  };
  return aside < kParallel * size && std::max(along(c), along(d)) > -kAtEnd &&
         std::min(along(c), along(d)) < size + kAtEnd;
}

// Every pair of edges of the projection, with Cramer's rule.
std::vector<Meeting> meetings_of(const Chain& ring, std::uint64_t view) {
  Random random(view);
  const Turn turn(random);
  Chain seen;
  for (const ChainAtom& atom : ring) seen.push_back(turn(atom));
  const std::size_t n = seen.size();
  std::vector<Meeting> meetings;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i + 1; j < n; ++j) {
      if (j == i + 1 || (i == 0 && j + 1 == n)) continue;
      const ChainAtom &a = seen[i], &b = seen[(i + 1) % n], &c = seen[j], &d = seen[(j + 1) % n];
      const double ux = b.x - a.x, uy = b.y - a.y, vx = d.x - c.x, vy = d.y - c.y;
      const double det = ux * vy - uy * vx;
      if (std::fabs(det) < kParallel * std::hypot(ux, uy) * std::hypot(vx, vy)) {
        if (overlap_in_line(a, b, c, d)) throw std::runtime_error("the projection is not generic");
        continue;
      }
      const double s = ((c.x - a.x) * vy - (c.y - a.y) * vx) / det;
      const double t = ((c.x - a.x) * uy - (c.y - a.y) * ux) / det;
      const double inside = std::min({s, 1 - s, t, 1 - t});
      if (inside < -kAtEnd) continue;
      const double height = a.z + s * (b.z - a.z) - c.z - t * (d.z - c.z);
      if (inside < kAtEnd || height == 0) {
        throw std::runtime_error("the projection is not generic");
      }
      if (height > 0) {
        meetings.push_back({i, j, s, t, det > 0});
      } else {
        meetings.push_back({j, i, t, s, det < 0});
      }
    }
  }
  return meetings;
}

struct Passing {
  std::size_t edge;
  double at;
  std::size_t meeting;
  bool over;
};

using Matrix = std::vector<std::vector<std::uint64_t>>;

// Rows (1 - t) over + t in - out at positive crossings, in and out exchanged at negative ones; the
// last row and column left out.
Matrix alexander_matrix(const std::vector<Meeting>& meetings, std::uint64_t t) {
  std::vector<Passing> walk;
  for (std::size_t m = 0; m < meetings.size(); ++m) {
    walk.push_back({meetings[m].over, meetings[m].over_at, m, true});
    walk.push_back({meetings[m].under, meetings[m].under_at, m, false});
  }
  std::sort(walk.begin(), walk.end(), [](const Passing& a, const Passing& b) {
    return a.edge != b.edge ? a.edge < b.edge : a.at < b.at;
  });
  const std::size_t c = meetings.size();
  Matrix matrix(c, std::vector<std::uint64_t>(c, 0));
  const auto add = [&](std::size_t row, std::size_t arc, std::uint64_t value) {
    matrix[row][arc] = (matrix[row][arc] + value) % kPrime;
  };
  std::size_t arc = 0;
  for (const Passing& passing : walk) {
    const std::size_t row = passing.meeting;
    if (passing.over) {
      add(row, arc, minus(1, t));
      continue;
    }
    const bool positive = meetings[row].positive;
    add(row, arc, positive ? t : minus(0, 1));
    arc = (arc + 1) % c;
    add(row, arc, positive ? minus(0, 1) : t);
  }
  for (auto& row : matrix) row.pop_back();
  if (!matrix.empty()) matrix.pop_back();
  return matrix;
}

std::uint64_t determinant(Matrix m) {
  std::uint64_t result = 1;
  const std::size_t n = m.size();
  for (std::size_t k = 0; k < n; ++k) {
    std::size_t pivot = k;
    while (pivot < n && m[pivot][k] == 0) ++pivot;
    if (pivot == n) return 0;
    if (pivot != k) {
      std::swap(m[pivot], m[k]);
      result = minus(0, result);
    }
    result = times(result, m[k][k]);
    const std::uint64_t scale = inverse(m[k][k]);
    std::vector<std::size_t> filled;
    for (std::size_t j = k + 1; j < n; ++j) {
      if (m[k][j] != 0) filled.push_back(j);
    }
    for (std::size_t i = k + 1; i < n; ++i) {
      if (m[i][k] == 0) continue;
      const std::uint64_t factor = times(m[i][k], scale);
      for (const std::size_t j : filled) m[i][j] = minus(m[i][j], times(factor, m[k][j]));
    }
  }
  return result;
}

std::uint64_t value_at(const std::vector<int>& coefficients, std::uint64_t t) {
  std::uint64_t value = 0;
  for (auto c = coefficients.rbegin(); c != coefficients.rend(); ++c) {
    const auto size = static_cast<std::uint64_t>(std::abs(*c));
    value = times(value, t);
    value = *c >= 0 ? (value + size) % kPrime : minus(value, size);
  }
  return value;
}

}  // namespace

std::uint64_t knot_key(const Chain& ring, std::uint64_t view) {
  const std::vector<Meeting> meetings = meetings_of(ring, view);
  return times(determinant(alexander_matrix(meetings, kPoint)),
               determinant(alexander_matrix(meetings, inverse(kPoint))));
}

std::uint64_t key_of_polynomial(const std::vector<int>& coefficients) {
  return times(value_at(coefficients, kPoint), value_at(coefficients, inverse(kPoint)));
}

}  // namespace support
