// Directions in an order in which those that lie close together follow one another.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "korvex/geometry.hpp"

namespace korvex {

// Reorders `items`, each with the direction direction_of(item), so that the directions of every run
// of `batch` from the first on lie close together: halves them along the axis on which they spread
// most, down to batches. O(n log n).
template <typename Item, typename DirectionOf>
void gather(std::span<Item> items, std::size_t batch, const DirectionOf& direction_of) {
  if (items.size() <= batch) return;
  Point low = direction_of(items[0]);
  Point high = low;
  for (const Item& item : items) {
    const Point p = direction_of(item);
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
  }
  const Point spread = high - low;
  const double most = std::max({spread.x, spread.y, spread.z});
  const auto axis = most == spread.x ? &Point::x : most == spread.y ? &Point::y : &Point::z;
  const std::size_t half = (items.size() / batch + 1) / 2 * batch;
  std::nth_element(
      items.begin(), items.begin() + static_cast<std::ptrdiff_t>(half), items.end(),
      [&](const Item& a, const Item& b) { return direction_of(a).*axis < direction_of(b).*axis; });
  gather(items.first(half), batch, direction_of);
  gather(items.subspan(half), batch, direction_of);
}

}  // namespace korvex
