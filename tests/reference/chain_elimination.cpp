#include <algorithm>
#include <numeric>
#include <tuple>

#include "geometry/predicates.hpp"
#include "preprocess/points.hpp"
#include "reference/preprocess.hpp"

namespace reference {
namespace {

using korvex::Bend;
using korvex::Point;
using korvex::Triangle;

std::vector<Point> positions_below_one(const std::vector<ChainAtom>& chain) {
  double largest = 0;
  for (const ChainAtom& a : chain) {
    largest = std::max({largest, std::fabs(a.x), std::fabs(a.y), std::fabs(a.z)});
  }
  const int exponent = largest > 0 ? std::max(std::ilogb(largest) + 1, -1000) : 0;
  std::vector<Point> points;
  for (const ChainAtom& a : chain) {
    points.push_back(
        {std::ldexp(a.x, -exponent), std::ldexp(a.y, -exponent), std::ldexp(a.z, -exponent)});
  }
  return points;
}

// The points that are left, by their first numbers, in chain order.
struct Polygon {
  std::vector<Point> points;
  std::vector<std::size_t> numbers;
  bool closed;

  std::size_t size() const { return points.size(); }
  std::size_t after(std::size_t k) const { return k + 1 < size() ? k + 1 : 0; }
  std::size_t before(std::size_t k) const { return k > 0 ? k - 1 : size() - 1; }
  bool is_end(std::size_t k) const { return !closed && (k == 0 || k + 1 == size()); }
};

bool removable(const Polygon& polygon, std::size_t k) {
  const std::size_t before = polygon.before(k), after = polygon.after(k);
  Triangle t{polygon.points[before], polygon.points[k], polygon.points[after]};
  if (polygon.size() == 1) return false;
  if (t.tip == t.before || t.tip == t.after) return true;
  if (polygon.size() <= (polygon.closed ? 3U : 2U)) return false;
  const Bend bend = bend_at(t);
  if (bend == Bend::kStraight) return true;
  bool reaches_before = true, reaches_after = true;
  Point third_from_before = t.after, third_from_after = t.before;
  if (bend == Bend::kSpike) {
    third_from_before = third_from_after = t.tip;
    if (t.before == t.after) {
    } else if (lies_between(t.tip, t.after, t.before)) {
      reaches_before = false;
      t.before = t.after;
    } else {
      reaches_after = false;
      t.after = t.before;
    }
  }
  const std::size_t edges = polygon.closed ? polygon.size() : polygon.size() - 1;
  for (std::size_t from = 0; from < edges; ++from) {
    const std::size_t to = polygon.after(from);
    const Point start = polygon.points[from], end = polygon.points[to];
    if (from == before || from == k) continue;
    bool clear = false;
    if (from == after && reaches_after) {
      clear = certainly_leaves(t.after, t.tip, third_from_after, end);
    } else if (to == before && reaches_before) {
      clear = certainly_leaves(t.before, t.tip, third_from_before, start);
    } else {
      clear = certainly_apart(t, start, end);
    }
    if (!clear) return false;
  }
  return true;
}

// The points that may go, those first whose removal makes the shortest edge.
std::vector<std::size_t> order_of_removal(const Polygon& polygon) {
  std::vector<std::tuple<double, double, double, double, std::size_t, std::size_t>> keys;
  for (std::size_t k = 0; k < polygon.size(); ++k) {
    if (polygon.is_end(k)) continue;
    const Point base = polygon.points[polygon.after(k)] - polygon.points[polygon.before(k)];
    const Point p = polygon.points[k];
    keys.emplace_back(dot(base, base), p.x, p.y, p.z, polygon.numbers[k], k);
  }
  std::sort(keys.begin(), keys.end());
  std::vector<std::size_t> order;
  for (const auto& key : keys) order.push_back(std::get<5>(key));
  return order;
}

}  // namespace

int ChainReduce(std::vector<ChainAtom>& chain, bool closed) {
  if (!preprocess::all_finite(chain)) return static_cast<int>(chain.size());
  Polygon polygon{positions_below_one(chain), std::vector<std::size_t>(chain.size()), closed};
  std::iota(polygon.numbers.begin(), polygon.numbers.end(), std::size_t{0});
  for (bool moved = true; moved;) {
    moved = false;
    for (const std::size_t k : order_of_removal(polygon)) {
      if (!removable(polygon, k)) continue;
      polygon.points.erase(polygon.points.begin() + static_cast<std::ptrdiff_t>(k));
      polygon.numbers.erase(polygon.numbers.begin() + static_cast<std::ptrdiff_t>(k));
      moved = true;
      break;
    }
  }
  std::vector<ChainAtom> left;
  for (const std::size_t number : polygon.numbers) left.push_back(chain[number]);
  chain = left;
  return static_cast<int>(chain.size());
}

}  // namespace reference
