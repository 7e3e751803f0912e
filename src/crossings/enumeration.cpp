#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "crossings/edge_pair.hpp"
#include "crossings/pair_filter.hpp"
#include "korvex.h"

namespace {

constexpr std::size_t kFewEdges = 13;  // fewer are sooner tested than filtered

// An edge with one crossing mostly has more.
void append(std::vector<CrossingShort>& list, CrossingShort crossing) {
  if (list.capacity() == 0) list.reserve(4);
  list.push_back(crossing);
}

void record(std::vector<Edge>& edges, std::vector<Crossing>& crossings, std::size_t i,
            std::size_t j, double s, double u) {
  Edge& first = edges[i];
  Edge& second = edges[j];
  const bool first_is_over = korvex::crossings::first_over(first, second, s, u);
  const bool left = first_is_over ? korvex::crossings::turns_left(first, second)
                                  : korvex::crossings::turns_left(second, first);
  crossings.push_back({static_cast<std::int32_t>(first_is_over ? i : j),
                       static_cast<std::int32_t>(first_is_over ? j : i), 0, 0, 0,
                       static_cast<std::int32_t>(left)});
  const auto index = static_cast<std::int16_t>(crossings.size() - 1);
  append(first.crossings, {index, s});
  append(second.crossings, {index, u});
}

// Tests edge i against edge j. False for a problem.
bool test(std::vector<Edge>& edges, std::vector<Crossing>& crossings, std::size_t i,
          std::size_t j) {
  int status = 0;
  const auto [s, u] = korvex::crossings::cross_edges(edges[i], edges[j], status);
  if (status == 1) record(edges, crossings, i, j, s, u);
  return status != -1;
}

// One past the last edge that edge i is tested against.
std::size_t bound(std::size_t i, std::size_t edges, bool closed) {
  return closed && i == 0 ? edges - 1 : edges;
}

bool test_all(std::vector<Edge>& edges, std::vector<Crossing>& crossings, bool closed) {
  for (std::size_t i = 0; i + 2 < edges.size(); ++i) {
    for (std::size_t j = i + 2; j < bound(i, edges.size(), closed); ++j)
      if (!test(edges, crossings, i, j)) return false;
  }
  return true;
}

bool test_near(std::vector<Edge>& edges, std::vector<Crossing>& crossings, bool closed) {
  korvex::crossings::PairFilter filter(edges);
  for (std::size_t i = 0; i + 2 < edges.size(); ++i) {
    for (const std::size_t j : filter.candidates(i, i + 2, bound(i, edges.size(), closed)))
      if (!test(edges, crossings, i, j)) return false;
  }
  return true;
}

// Positions that are not numbers have no order, and std::sort may then run off a list of more than
// 16, but never past such a position. One before and one behind the list keep it in; where it stays
// in by itself they change nothing.
void sort_along(std::vector<CrossingShort>& list) {
  if (list.size() < 2) return;
  constexpr std::size_t kInserted = 16;
  const bool safe = list.size() <= kInserted ||
                    std::none_of(list.begin(), list.end(),
                                 [](CrossingShort c) { return std::isnan(c.position); });
  if (safe) {
    std::sort(list.begin(), list.end(), WayToSortCrossings);
    return;
  }
  const CrossingShort guard{0, std::numeric_limits<double>::quiet_NaN()};
  std::vector<CrossingShort> framed(list.size() + 2, guard);
  std::copy(list.begin(), list.end(), framed.begin() + 1);
  std::sort(framed.begin() + 1, framed.end() - 1, WayToSortCrossings);
  std::copy(framed.begin() + 1, framed.end() - 1, list.begin());
}

}  // namespace

int FindAllCrossings(std::vector<Edge>& edges, std::vector<Crossing>& crossings,
                     bool chainIsClosed) {
  if (crossings.capacity() < 20) crossings.reserve(20);
  const bool resolved = edges.size() < kFewEdges ? test_all(edges, crossings, chainIsClosed)
                                                 : test_near(edges, crossings, chainIsClosed);
  if (!resolved) return 1;
  if (edges.size() < 3) return 0;
  for (Edge& edge : edges) sort_along(edge.crossings);
  return 0;
}

int FillCrossings(std::vector<Edge>& edges, std::vector<Crossing>& crossings) {
  const std::uint32_t count = static_cast<std::uint32_t>(crossings.size());
  std::uint32_t arc = 0;
  for (std::size_t k = 0; k < edges.size(); ++k) {
    for (const CrossingShort& on_edge : edges[k].crossings) {
      // An index that 16 bits could not hold names no crossing.
      const auto index = static_cast<std::size_t>(on_edge.crossingIndex);
      if (index >= crossings.size()) continue;
      Crossing& crossing = crossings[index];
      if (crossing.overEdge == static_cast<std::int32_t>(k)) {
        crossing.overArc = static_cast<std::int32_t>(arc);
      } else {
        crossing.underArcIn = static_cast<std::int32_t>(arc);
        arc = arc < count - 1 ? arc + 1 : 0;
        crossing.underArcOut = static_cast<std::int32_t>(arc);
      }
    }
  }
  return 0;
}

bool WayToSortCrossings(CrossingShort a, CrossingShort b) { return a.position > b.position; }
