#include "engine/diagram/code_closure.hpp"

#include "engine/diagram/plane_diagram.hpp"

namespace korvex {

GaussCode closed_over(const GaussCode& code) {
  PlaneDiagram diagram;
  diagram.draw(code, Curve::kOpen);
  const auto way = *diagram.way(code.size(), 0, code.size());
  constexpr std::size_t kNotCrossed = static_cast<std::size_t>(-1);
  std::vector<std::size_t> crossed(diagram.strands(), kNotCrossed);
  for (std::size_t step = 0; step < way.size(); ++step)
    crossed[static_cast<std::size_t>(way[step].strand)] = step;

  GaussCode closed;
  closed.reserve(code.size() + 2 * way.size());
  std::vector<std::int32_t> place(code.size());
  std::vector<std::int32_t> met(way.size());
  const auto join = [&](std::int32_t earlier) {
    closed.back().mate = earlier;
    closed[static_cast<std::size_t>(earlier)].mate = static_cast<std::int32_t>(closed.size() - 1);
  };
  for (std::size_t strand = 0; strand < diagram.strands(); ++strand) {
    if (const std::size_t step = crossed[strand]; step != kNotCrossed) {
      met[step] = static_cast<std::int32_t>(closed.size());
      closed.push_back({-1, false, way[step].left_to_right});
    }
    if (strand == code.size()) break;
    place[strand] = static_cast<std::int32_t>(closed.size());
    closed.push_back(code[strand]);
    const auto mate = static_cast<std::size_t>(code[strand].mate);
    if (mate < strand) join(place[mate]);
  }
  for (std::size_t step = 0; step < way.size(); ++step) {
    closed.push_back({-1, true, way[step].left_to_right});
    join(met[step]);
  }
  return closed;
}

}  // namespace korvex
