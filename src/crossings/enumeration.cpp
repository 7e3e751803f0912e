#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "crossings/edge_pair.hpp"
#include "korvex.h"

namespace {

void record(std::vector<Edge>& edges, std::vector<Crossing>& crossings, int i, int j, double s,
            double u) {
  Edge& first = edges[static_cast<std::size_t>(i)];
  Edge& second = edges[static_cast<std::size_t>(j)];
  const bool first_is_over = korvex::crossings::first_over(first, second, s, u);
  const bool left = first_is_over ? korvex::crossings::turns_left(first, second)
                                  : korvex::crossings::turns_left(second, first);
  crossings.push_back(
      {first_is_over ? i : j, first_is_over ? j : i, 0, 0, 0, static_cast<std::int32_t>(left)});
  const auto index = static_cast<std::int16_t>(crossings.size() - 1);
  first.crossings.push_back({index, s});
  second.crossings.push_back({index, u});
}

// Positions that are not numbers have no order, and std::sort may then run off the list.
void sort_along(std::vector<CrossingShort>& list) {
  const bool ordered = std::none_of(list.begin(), list.end(),
                                    [](CrossingShort c) { return std::isnan(c.position); });
  if (ordered) {
    std::sort(list.begin(), list.end(), WayToSortCrossings);
  } else {
    std::stable_sort(list.begin(), list.end(), WayToSortCrossings);
  }
}

}  // namespace

int FindAllCrossings(std::vector<Edge>& edges, std::vector<Crossing>& crossings,
                     bool chainIsClosed) {
  if (crossings.capacity() < 20) crossings.reserve(20);
  const int n = static_cast<int>(edges.size());
  if (n < 3) return 0;
  for (int i = 0; i + 2 < n; ++i) {
    const int bound = chainIsClosed && i == 0 ? n - 1 : n;
    for (int j = i + 2; j < bound; ++j) {
      int status = 0;
      const auto [s, u] = korvex::crossings::cross_edges(
          edges[static_cast<std::size_t>(i)], edges[static_cast<std::size_t>(j)], status);
      if (status == -1) return 1;
      if (status == 1) record(edges, crossings, i, j, s, u);
    }
  }
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
