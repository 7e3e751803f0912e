#include "engine/closures/reduced_chain.hpp"

#include <cstdint>

#include "engine/run/parallel.hpp"
#include "geometry/triangle_elimination.hpp"
#include "geometry/unit_scale.hpp"

namespace korvex {

std::vector<Point> reduced_for(std::span<const Ends> ends, std::span<const Point> chain,
                               const Run& run) {
  if (chain.empty()) return {};
  const double away = 4 * reach_of(chain);
  std::vector<Line> rays;
  rays.reserve(2 * ends.size());
  // Those of one end together, since a search for what is near takes them in blocks.
  for (const Ends& directions : ends)
    rays.push_back({chain.front(), chain.front() + away * directions.first});
  for (const Ends& directions : ends)
    rays.push_back({chain.back(), chain.back() + away * directions.last});
  std::vector<Point> chosen;
  for (const std::int32_t index : eliminate_open(chain, rays, [&run] { throw_if_cancelled(run); }))
    chosen.push_back(chain[static_cast<std::size_t>(index)]);
  return chosen;
}

}  // namespace korvex
