#include "engine/report/map_report.hpp"

#include <array>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <ostream>
#include <vector>

#include "engine/report/doubts.hpp"
#include "engine/report/frame.hpp"
#include "engine/report/npz_arrays.hpp"
#include "engine/report/zip_archive.hpp"

namespace korvex {
namespace {

Json json_of(const Point& p) { return Json::array({p.x, p.y, p.z}); }

Json json_of(const ClosureRegion& region, const ClosureMap& map) {
  Json json{{"type", map.types[region.type].type},
            {"share", region.share},
            {"proven", region.proven},
            {"in_doubt", region.in_doubt},
            {"crossings", region.crossings},
            {"direction", json_of(region.direction)},
            {"clearance", region.clearance}};
  Json& boundaries = json["boundaries"] = Json::array();
  for (const auto& polygon : region.boundaries) {
    Json points = Json::array();
    for (const Point& p : polygon) points.push_back(json_of(p));
    boundaries.push_back(std::move(points));
  }
  return json;
}

std::string json_text(const Chain& chain, const ClosureMap& map) {
  Json json{{"source", chain.source},
            {"model", chain.model},
            {"chain", chain.name},
            {"residues", chain.points.size()},
            {"doubt", map.doubt}};
  add_frame(json, chain);
  json["types"] = Json::array();
  for (const TypeShare& type : map.types)
    json["types"].push_back({{"type", type.type},
                             {"regions", type.regions},
                             {"proven", type.proven},
                             {"share", type.share}});
  json["regions"] = Json::array();
  for (const ClosureRegion& region : map.regions) json["regions"].push_back(json_of(region, map));
  return json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

void append(std::vector<double>& numbers, const Point& p) {
  numbers.insert(numbers.end(), {p.x, p.y, p.z});
}

}  // namespace

void write_map_npz(const ClosureMap& map, std::ostream& out) {
  std::vector<std::string> types;
  std::vector<double> type_shares;
  for (const TypeShare& type : map.types) {
    types.push_back(type.type);
    type_shares.push_back(type.share);
  }
  std::vector<std::int32_t> region_types;
  std::vector<double> shares;
  std::vector<double> directions;
  std::vector<std::uint8_t> proven;
  std::vector<std::uint8_t> in_doubt;
  std::vector<std::int32_t> polygon_regions;
  std::vector<std::int64_t> polygon_begins{0};
  std::vector<double> points;
  for (const ClosureRegion& region : map.regions) {
    for (const auto& polygon : region.boundaries) {
      polygon_regions.push_back(static_cast<std::int32_t>(region_types.size()));
      for (const Point& p : polygon) append(points, p);
      polygon_begins.push_back(static_cast<std::int64_t>(points.size() / 3));
    }
    region_types.push_back(static_cast<std::int32_t>(region.type));
    shares.push_back(region.share);
    append(directions, region.direction);
    proven.push_back(region.proven ? 1 : 0);
    in_doubt.push_back(region.in_doubt ? 1 : 0);
  }
  const auto rows_of_3 = [](const std::vector<double>& numbers) {
    return std::to_string(numbers.size() / 3) + ", 3";
  };
  ZipArchive archive(out);
  archive.add("types.npy", npz::texts(types));
  archive.add("type_share.npy", npz::numbers(type_shares));
  archive.add("region_type.npy", npz::numbers(region_types));
  archive.add("region_share.npy", npz::numbers(shares));
  archive.add("region_direction.npy", npz::numbers(directions, rows_of_3(directions)));
  archive.add("region_proven.npy", npz::numbers(proven));
  archive.add("region_in_doubt.npy", npz::numbers(in_doubt));
  archive.add("polygon_region.npy", npz::numbers(polygon_regions));
  archive.add("polygon_begin.npy", npz::numbers(polygon_begins));
  archive.add("polygon_points.npy", npz::numbers(points, rows_of_3(points)));
  archive.finish();
}

void write_closure_map(const Chain& chain, const ClosureMap& map, ReportFormat format,
                       std::ostream& out) {
  switch (format) {
    case ReportFormat::kSvg:
      out << drawing_of(chain, map);
      return;
    case ReportFormat::kJson:
      out << json_text(chain, map);
      return;
    case ReportFormat::kNpz:
      return write_map_npz(map, out);
    default:
      refuse_format(format, "a map of closures", map_formats());
  }
}

}  // namespace korvex
