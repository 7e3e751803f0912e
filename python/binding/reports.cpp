// Answers of the package as the engine writes them.
#include <pybind11/stl.h>

#include <sstream>

#include "arrays.hpp"
#include "conversions.hpp"
#include "korvex/error.hpp"
#include "korvex/report.hpp"

namespace korvex::python {
namespace {

ReportFormat format_named(const std::string& name, std::span<const ReportFormat> formats) {
  std::string names;
  for (const ReportFormat format : formats) {
    if (korvex::name_of(format) == name) return format;
    names += (names.empty() ? "" : ", ") + std::string(korvex::name_of(format));
  }
  throw Error(ErrorCode::kInvalidArgument, "format '" + name + "': one of " + names);
}

template <typename Value>
std::map<std::size_t, Value> map_of(const py::object& values) {
  return values.cast<std::map<std::size_t, Value>>();
}

Votes votes_of(const py::handle& knot) {
  Votes votes;
  votes.trials = knot.attr("trials").cast<std::size_t>();
  for (const py::handle& item : knot.attr("types")) {
    const double proven = item.attr("proven").cast<double>() * static_cast<double>(votes.trials);
    votes.types.push_back(
        {.type = item.attr("type").cast<std::string>(),
         .count = item.attr("votes").cast<std::size_t>(),
         .share = item.attr("share").cast<double>(),
         .interval = {item.attr("low").cast<double>(), item.attr("high").cast<double>()},
         .proven = static_cast<std::size_t>(std::llround(proven))});
  }
  votes.crossings = map_of<std::size_t>(knot.attr("crossings"));
  if (!knot.attr("ring").is_none()) votes.ring = ring_of(knot.attr("ring"));
  return votes;
}

// The shares alone; its regions are counted, not told.
ClosureMap shares_of(const py::handle& answer) {
  ClosureMap map;
  for (const py::handle& item : answer.attr("types"))
    map.types.push_back({.type = item.attr("type").cast<std::string>(),
                         .share = item.attr("share").cast<double>(),
                         .proven = item.attr("proven").cast<double>(),
                         .regions = item.attr("regions").cast<std::size_t>()});
  map.doubt = answer.attr("doubt").cast<double>();
  map.crossings = map_of<double>(answer.attr("crossings"));
  return map;
}

py::str knots_report(const std::vector<py::object>& knots, const std::string& format) {
  std::ostringstream out;
  VotesReport report(format_named(format, vote_formats()), out);
  for (const py::object& knot : knots) {
    const Chain chain = chain_of(knot.attr("chain"));
    if (knot.attr("exact").cast<bool>()) {
      ClosureMap map = shares_of(knot);
      map.regions.resize(knot.attr("regions").cast<std::size_t>());
      report.add(chain, map);
    } else {
      report.add(chain, closure_named(knot.attr("closure").cast<std::string>()), votes_of(knot));
    }
  }
  report.finish();
  return text_of(out.str());
}

template <typename Number>
std::vector<Number> vector_of(const py::handle& array) {
  const auto values = array.cast<py::array_t<Number, py::array::c_style | py::array::forcecast>>();
  return std::vector<Number>(values.data(), values.data() + values.size());
}

std::vector<Point> points_in(const py::handle& array) {
  const auto points = points_of(array.cast<Positions>());
  return {points.begin(), points.end()};
}

ClosureMap map_of_arrays(const py::object& answer) {
  ClosureMap map = shares_of(answer);
  const auto type = vector_of<std::int32_t>(answer.attr("region_type"));
  const auto share = vector_of<double>(answer.attr("region_share"));
  const auto direction = points_in(answer.attr("region_direction"));
  const auto clearance = vector_of<double>(answer.attr("region_clearance"));
  const auto proven = vector_of<std::uint8_t>(answer.attr("region_proven"));
  const auto in_doubt = vector_of<std::uint8_t>(answer.attr("region_in_doubt"));
  const auto crossings = vector_of<std::int64_t>(answer.attr("region_crossings"));
  for (std::size_t i = 0; i < type.size(); ++i)
    map.regions.push_back({.type = static_cast<std::size_t>(type.at(i)),
                           .share = share.at(i),
                           .direction = direction.at(i),
                           .clearance = clearance.at(i),
                           .proven = proven.at(i) != 0,
                           .in_doubt = in_doubt.at(i) != 0,
                           .crossings = static_cast<std::size_t>(crossings.at(i)),
                           .boundaries = {}});
  const auto region = vector_of<std::int32_t>(answer.attr("polygon_region"));
  const auto begin = vector_of<std::int64_t>(answer.attr("polygon_begin"));
  const auto points = points_in(answer.attr("polygon_points"));
  for (std::size_t i = 0; i < region.size(); ++i)
    map.regions.at(static_cast<std::size_t>(region[i]))
        .boundaries.emplace_back(points.begin() + begin.at(i), points.begin() + begin.at(i + 1));
  return map;
}

py::bytes map_report(const py::object& answer, const std::string& format) {
  std::ostringstream out;
  write_closure_map(chain_of(answer.attr("chain")), map_of_arrays(answer),
                    format_named(format, map_formats()), out);
  return out.str();
}

py::bytes fingerprint_report(const Fingerprint& fingerprint, const py::object& chain,
                             const std::string& format) {
  const Chain told = chain_of(chain);
  std::ostringstream out;
  write_fingerprint(fingerprint, told.residues, format_named(format, fingerprint_formats()), out,
                    told.gaps);
  return out.str();
}

Stretch stretch_of(const py::handle& object) {
  const auto ends = object.cast<std::pair<std::int32_t, std::int32_t>>();
  return {ends.first, ends.second - 1};
}

std::optional<Threading> threading_of(const py::handle& object) {
  if (object.is_none()) return std::nullopt;
  const auto fields = object.cast<py::tuple>();
  return Threading{fields[0].cast<std::int32_t>(), stretch_of(fields[1]), stretch_of(fields[2]),
                   fields[3].cast<std::string>()};
}

std::vector<Dip> dips_of(const py::handle& object) {
  std::vector<Dip> dips;
  for (const py::handle& item : object) {
    const auto fields = item.cast<py::tuple>();
    dips.push_back({fields[0].cast<std::int32_t>(), fields[1].cast<std::int32_t>(),
                    fields[2].cast<double>(), fields[3].cast<std::string>()});
  }
  return dips;
}

Location location_of(const py::handle& object) {
  Location location{.type = object.attr("type").cast<std::string>(),
                    .share = object.attr("share").cast<double>(),
                    .factors = object.attr("factors").cast<std::vector<std::string>>(),
                    .knots = {},
                    .exact = object.attr("exact").cast<bool>(),
                    .trials = object.attr("trials").cast<std::size_t>()};
  for (const py::handle& item : object.attr("knots")) {
    const auto place = item.cast<py::tuple>();
    location.knots.push_back({.type = place[0].cast<std::string>(),
                              .core = stretch_of(place[1]),
                              .core_share = place[2].cast<double>(),
                              .whole_share = place[3].cast<double>(),
                              .longest = stretch_of(place[4]),
                              .sub_chains = place[5].cast<std::size_t>(),
                              .tail_before = place[6].cast<std::int32_t>(),
                              .tail_after = place[7].cast<std::int32_t>(),
                              .undone_before = threading_of(place[8]),
                              .undone_after = threading_of(place[9]),
                              .dips_before = dips_of(place[10]),
                              .dips_after = dips_of(place[11])});
  }
  return location;
}

py::str locations_report(const std::vector<py::object>& locations, const std::string& format) {
  std::ostringstream out;
  LocationReport report(format_named(format, location_formats()), out);
  for (const py::object& location : locations)
    report.add(chain_of(location.attr("chain")), location_of(location));
  report.finish();
  return text_of(out.str());
}

py::str types_report(const std::vector<std::string>& names, const std::string& format) {
  std::ostringstream out;
  CatalogueReport report(format_named(format, catalogue_formats()), out);
  for (const std::string& name : names) {
    const KnotType* type = find_knot_type(name);
    if (type == nullptr)
      throw Error(ErrorCode::kInvalidArgument, "'" + name + "' is no type of the catalogue");
    report.add(*type);
  }
  report.finish();
  return text_of(out.str());
}

}  // namespace

void add_reports(py::module_& module) {
  module.def("knots_report", &knots_report);
  module.def("map_report", &map_report);
  module.def("fingerprint_report", &fingerprint_report);
  module.def("locations_report", &locations_report);
  module.def("types_report", &types_report);
}

}  // namespace korvex::python
