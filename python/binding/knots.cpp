// The knot types of whole chains: votes, exact shares, maps of closures.
#include <pybind11/stl.h>

#include <variant>

#include "arrays.hpp"
#include "conversions.hpp"
#include "korvex/closure_map.hpp"
#include "korvex/each.hpp"
#include "korvex/votes.hpp"
#include "run.hpp"

namespace korvex::python {
namespace {

// As `korvex knot` asks: exact shares by rays, unless votes are asked for or there are too many
// regions.
struct Question {
  VoteOptions votes;
  ClosureMapOptions map{.boundaries = false};
  bool exact = true;
};

using Answer = std::variant<Votes, ClosureMap>;

Question question_of(const std::string& closure, std::optional<std::size_t> trials,
                     std::optional<double> tolerance, const std::optional<std::string>& sampling,
                     std::size_t most_trials, std::size_t most_regions) {
  Question question;
  question.votes.closure = closure_named(closure);
  question.exact = question.votes.closure == Closure::kRays && !trials && !sampling;
  if (trials) question.votes.trials = *trials;
  if (tolerance) {
    question.votes.tolerance = *tolerance;
    question.votes.majority_settles = false;
  }
  if (sampling) question.votes.sampling = sampling_named(*sampling);
  question.votes.most_trials = most_trials;
  question.map.most_regions = most_regions;
  return question;
}

Answer answer(const Question& question, std::span<const Point> chain, const Run& run) {
  if (question.exact) {
    if (auto map = closure_map(chain, question.map, run)) return *std::move(map);
  }
  return vote(chain, question.votes, run);
}

// The attributes of the package's Knot behind its chain and closure.
py::tuple attributes_of(const Votes& votes) {
  py::tuple types(votes.types.size());
  for (std::size_t i = 0; i < votes.types.size(); ++i) {
    const TypeVotes& type = votes.types[i];
    types[i] = py::make_tuple(type.type, type.share, type.interval.low, type.interval.high,
                              static_cast<double>(type.proven) / static_cast<double>(votes.trials),
                              type.count, py::none());
  }
  return py::make_tuple(types, false, votes.trials, 0, 0.0, dict_of(votes.crossings),
                        votes.ring ? py::object(tuple_of_ring(*votes.ring)) : py::none());
}

py::tuple types_of(const ClosureMap& map) {
  py::tuple types(map.types.size());
  for (std::size_t i = 0; i < map.types.size(); ++i) {
    const TypeShare& type = map.types[i];
    types[i] = py::make_tuple(type.type, type.share, std::max(type.share - map.doubt, 0.0),
                              std::min(type.share + map.doubt, 1.0), type.proven, py::none(),
                              type.regions);
  }
  return types;
}

py::tuple attributes_of(const ClosureMap& map) {
  return py::make_tuple(types_of(map), true, 0, map.regions.size(), map.doubt,
                        dict_of(map.crossings), py::none());
}

py::tuple attributes_of(const Answer& answer) {
  return std::visit([](const auto& some) { return attributes_of(some); }, answer);
}

py::tuple knot(const Positions& positions, const std::string& closure,
               std::optional<std::size_t> trials, std::optional<double> tolerance,
               const std::optional<std::string>& sampling, std::size_t most_trials,
               std::size_t most_regions, unsigned threads, std::uint64_t seed,
               const py::object& progress) {
  const Question question =
      question_of(closure, trials, tolerance, sampling, most_trials, most_regions);
  const std::span<const Point> points = points_of(positions);
  return attributes_of(carried_out(RunArguments{threads, seed, progress},
                                   [&](const Run& run) { return answer(question, points, run); }));
}

// The chains share the threads; each is answered on one.
py::list knots(const std::vector<Positions>& chains, const std::vector<std::string>& closures,
               std::optional<std::size_t> trials, std::optional<double> tolerance,
               const std::optional<std::string>& sampling, std::size_t most_trials,
               std::size_t most_regions, unsigned threads, std::uint64_t seed,
               const py::object& progress) {
  std::vector<Question> questions;
  std::vector<std::span<const Point>> points;
  for (std::size_t i = 0; i < chains.size(); ++i) {
    points.push_back(points_of(chains[i]));
    questions.push_back(
        question_of(closures.at(i), trials, tolerance, sampling, most_trials, most_regions));
  }
  const auto answers = carried_out(RunArguments{threads, seed, progress}, [&](const Run& run) {
    std::vector<Answer> found(points.size());
    Run of_one = run;
    of_one.threads = 1;
    of_one.progress = {};
    for_each_index(
        points.size(), [&](std::size_t i) { found[i] = answer(questions[i], points[i], of_one); },
        run);
    return found;
  });
  py::list list;
  for (const Answer& some : answers) list.append(attributes_of(some));
  return list;
}

// Polygons as the archives of maps have them: all points in one array, and where each begins.
struct Polygons {
  std::vector<Point> points;
  std::vector<std::int64_t> begins{0};
  std::vector<std::int32_t> regions;
};

Polygons polygons_of(const ClosureMap& map) {
  Polygons polygons;
  for (std::size_t region = 0; region < map.regions.size(); ++region) {
    for (const std::vector<Point>& boundary : map.regions[region].boundaries) {
      polygons.points.insert(polygons.points.end(), boundary.begin(), boundary.end());
      polygons.begins.push_back(static_cast<std::int64_t>(polygons.points.size()));
      polygons.regions.push_back(static_cast<std::int32_t>(region));
    }
  }
  return polygons;
}

// The attribute `member` of all regions.
template <typename Number, typename Member>
py::array_t<Number> column(const ClosureMap& map, Member member) {
  std::vector<Number> values;
  values.reserve(map.regions.size());
  for (const ClosureRegion& region : map.regions)
    values.push_back(static_cast<Number>(region.*member));
  return array_of(std::move(values));
}

py::object map_of(const Positions& positions, std::size_t most_regions, bool boundaries,
                  unsigned threads, const py::object& progress) {
  const std::span<const Point> points = points_of(positions);
  const auto map = carried_out(RunArguments{threads, 1, progress}, [&](const Run& run) {
    return closure_map(points, {.most_regions = most_regions, .boundaries = boundaries}, run);
  });
  if (!map) return py::none();
  py::dict arguments;
  arguments["types"] = types_of(*map);
  arguments["doubt"] = map->doubt;
  arguments["crossings"] = dict_of(map->crossings);
  arguments["region_type"] = column<std::int32_t>(*map, &ClosureRegion::type);
  arguments["region_share"] = column<double>(*map, &ClosureRegion::share);
  arguments["region_direction"] = array_of_points([&] {
    std::vector<Point> directions;
    for (const ClosureRegion& region : map->regions) directions.push_back(region.direction);
    return directions;
  }());
  arguments["region_clearance"] = column<double>(*map, &ClosureRegion::clearance);
  arguments["region_proven"] = column<std::uint8_t>(*map, &ClosureRegion::proven);
  arguments["region_in_doubt"] = column<std::uint8_t>(*map, &ClosureRegion::in_doubt);
  arguments["region_crossings"] = column<std::int64_t>(*map, &ClosureRegion::crossings);
  Polygons polygons = polygons_of(*map);
  arguments["polygon_region"] = array_of(std::move(polygons.regions));
  arguments["polygon_begin"] = array_of(std::move(polygons.begins));
  arguments["polygon_points"] = array_of_points(std::move(polygons.points));
  return arguments;
}

py::tuple ring(const Positions& positions, std::uint64_t seed) {
  const std::span<const Point> points = points_of(positions);
  return tuple_of_ring(carried_out(RunArguments{1, seed, py::none()},
                                   [&](const Run& run) { return examine_ring(points, run); }));
}

}  // namespace

void add_knots(py::module_& module) {
  module.def("knot", &knot);
  module.def("knots", &knots);
  module.def("closure_map", &map_of);
  module.def("examine_ring", &ring);
  module.def("wilson_interval", [](std::size_t hits, std::size_t trials) {
    const Interval interval = wilson_interval(hits, trials);
    return py::make_tuple(interval.low, interval.high);
  });
  module.def("sampled_ends", [](const std::string& closure, const std::string& sampling,
                                std::size_t count, std::uint64_t seed, std::uint64_t block) {
    std::vector<Ends> ends =
        sampled_ends(closure_named(closure), sampling_named(sampling), count, seed, block);
    const auto size = static_cast<py::ssize_t>(ends.size());
    return array_of<double>(std::move(ends), {size, 2, 3});
  });
}

}  // namespace korvex::python
