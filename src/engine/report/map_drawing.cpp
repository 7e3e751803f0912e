// Maps of closures as drawings.
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "engine/report/map_report.hpp"
#include "engine/report/number_text.hpp"
#include "korvex/palette.hpp"
#include "korvex/quoting.hpp"
#include "korvex/report.hpp"

namespace korvex {
namespace {

// Pixels: the radius of a hemisphere, and where the two centres and the legend stand.
constexpr double kRadius = 200;
constexpr double kMargin = 20;
constexpr double kTop = 50;
constexpr double kLegendLine = 20;
constexpr std::size_t kNamed = 16;  // types in the legend
constexpr std::size_t kMarked = 5;  // regions whose direction is marked

struct Flat {
  double x;
  double y;
};

double distance(const Flat& a, const Flat& b) { return std::hypot(a.x - b.x, a.y - b.y); }

// Lambert's azimuthal equal-area projection about `centre`, +z or -z, seen from outside: the
// hemisphere fills the disc of radius 1, the other one the ring about it, out to sqrt(2).
class Hemisphere {
 public:
  explicit Hemisphere(double centre) : centre_(centre) {}

  Flat operator()(const Point& p) const {
    const double behind = std::hypot(p.x, p.y);
    const double half = std::sqrt(std::max(1 - centre_ * p.z, 0.0));  // sqrt(2) sin(angle / 2)
    if (behind > 0) return {centre_ * p.x / behind * half, p.y / behind * half};
    return {half, 0};
  }

  // The way of the shorter arc from a to b, without its beginning.
  void add_arc(const Point& a, const Point& b, std::vector<Flat>& way, int depth = 0) const {
    constexpr double kStep = 0.03;
    constexpr int kDeepest = 14;
    const Flat from = (*this)(a);
    const Flat to = (*this)(b);
    const Point sum = a + b;
    if (distance(from, to) < kStep || !(norm(sum) > 0)) return way.push_back(to);
    if (depth == kDeepest) return add_rim(from, to, way);
    const Point middle = (1 / norm(sum)) * sum;
    add_arc(a, middle, way, depth + 1);
    add_arc(middle, b, way, depth + 1);
  }

  Point centre() const { return {0, 0, centre_}; }

 private:
  // An arc through the far pole, which the rim stands for, leaves at one place and comes back at
  // another: round the outside, where nothing is seen.
  static void add_rim(const Flat& from, const Flat& to, std::vector<Flat>& way) {
    constexpr int kSteps = 16;
    const double begin = std::atan2(from.y, from.x);
    const double turn = std::remainder(std::atan2(to.y, to.x) - begin, 2 * std::numbers::pi);
    for (int k = 1; k < kSteps; ++k) {
      const double angle = begin + turn * k / kSteps;
      way.push_back({std::numbers::sqrt2 * std::cos(angle), std::numbers::sqrt2 * std::sin(angle)});
    }
    way.push_back(to);
  }

  double centre_;
};

std::string pixels(double value) { return fixed_text(value, 2); }

std::string pixels(const Flat& p) { return pixels(kRadius * p.x) + ' ' + pixels(-kRadius * p.y); }

// Whether a region holds a point: the triangles about it sum up to its area, or, where it holds the
// opposite point, to that less the sphere.
bool holds(const ClosureRegion& region, const Point& point) {
  if (region.boundaries.empty()) return true;
  const Point apex = -point;
  double around = 0;
  for (const std::vector<Point>& polygon : region.boundaries) {
    for (std::size_t k = 0; k < polygon.size(); ++k) {
      const Point& a = polygon[k];
      const Point& b = polygon[(k + 1) % polygon.size()];
      around += 2 * std::atan2(dot(apex, cross(a - apex, b - apex)),
                               1 + dot(apex, a) + dot(a, b) + dot(b, apex));
    }
  }
  return around < 4 * std::numbers::pi * region.share - 2 * std::numbers::pi;
}

// The region's boundaries; where it holds the far pole they are holes in all of the plane.
std::string path_of(const ClosureRegion& region, const Hemisphere& hemisphere) {
  std::string path;
  if (holds(region, -hemisphere.centre())) path = "M-400-400H400V400H-400Z";
  for (const std::vector<Point>& polygon : region.boundaries) {
    std::vector<Flat> way;
    for (std::size_t k = 0; k < polygon.size(); ++k)
      hemisphere.add_arc(polygon[k], polygon[(k + 1) % polygon.size()], way);
    for (std::size_t k = 0; k < way.size(); ++k) path += (k == 0 ? 'M' : 'L') + pixels(way[k]);
    path += 'Z';
  }
  return path;
}

bool is_seen(const std::string& path) { return !path.empty(); }

std::string disc(const ClosureMap& map, double centre, double x) {
  const Hemisphere hemisphere(centre);
  std::string text = "<g transform=\"translate(" + pixels(x) + ' ' + pixels(kTop + kRadius) +
                     ")\">\n<g clip-path=\"url(#disc)\" fill-rule=\"evenodd\">\n";
  for (const ClosureRegion& region : map.regions) {
    const std::string path = path_of(region, hemisphere);
    if (!is_seen(path)) continue;
    const std::string colour = colour_of_type(map.types[region.type].type);
    text += "<path d=\"" + path + "\" fill=\"" + colour + "\" stroke=\"" + colour +
            "\" stroke-width=\"0.7\"/>\n";
  }
  text += "</g>\n<circle r=\"" + pixels(kRadius) + "\" fill=\"none\" stroke=\"#333333\"/>\n";
  for (std::size_t k = 0; k < std::min(kMarked, map.regions.size()); ++k) {
    const Point& direction = map.regions[k].direction;
    if (centre * direction.z < 0) continue;
    const Flat at = hemisphere(direction);
    const std::string x_text = pixels(kRadius * at.x);
    const std::string y_text = pixels(-kRadius * at.y);
    text += "<circle cx=\"" + x_text + "\" cy=\"" + y_text +
            "\" r=\"3\" fill=\"#ffffff\" stroke=\"#000000\"/>\n<text x=\"" +
            pixels(kRadius * at.x + 5) + "\" y=\"" + pixels(4 - kRadius * at.y) +
            "\" stroke=\"#ffffff\" stroke-width=\"2.5\" paint-order=\"stroke\">" +
            std::to_string(k + 1) + "</text>\n";
  }
  return text + "<text y=\"" + pixels(kRadius + 18) + "\" text-anchor=\"middle\">seen from " +
         (centre > 0 ? "+z" : "-z") + "</text>\n</g>\n";
}

std::string percent_text(double share) {
  return share < 0.5e-4 ? "below 0.01 %" : fixed_text(100 * share, 2) + " %";
}

std::string legend(const ClosureMap& map, double x) {
  std::string text;
  double y = kTop + kLegendLine;
  const std::size_t named = std::min(kNamed, map.types.size());
  for (std::size_t k = 0; k < named; ++k, y += kLegendLine) {
    const TypeShare& type = map.types[k];
    text += "<rect x=\"" + pixels(x) + "\" y=\"" + pixels(y - 11) +
            "\" width=\"14\" height=\"14\" fill=\"" + colour_of_type(type.type) +
            "\"/>\n<text x=\"" + pixels(x + 20) + "\" y=\"" + pixels(y) + "\">" +
            quoted_for_xml(type.type) + "  " + percent_text(type.share) + "</text>\n";
  }
  double rest = 0;
  for (std::size_t k = named; k < map.types.size(); ++k) rest += map.types[k].share;
  if (named < map.types.size())
    text += "<text x=\"" + pixels(x + 20) + "\" y=\"" + pixels(y) + "\">" +
            std::to_string(map.types.size() - named) + " more  " + percent_text(rest) + "</text>\n";
  return text;
}

}  // namespace

std::string drawing_of(const Chain& chain, const ClosureMap& map) {
  const double second = 3 * kRadius + 2 * kMargin;
  const double legend_at = 4 * kRadius + 3 * kMargin;
  const double width = legend_at + 200;
  const double height = kTop + 2 * kRadius + 40;
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + pixels(width) + "\" height=\"" +
         pixels(height) + "\" viewBox=\"0 0 " + pixels(width) + ' ' + pixels(height) +
         "\" font-family=\"sans-serif\" font-size=\"12\">\n<defs><clipPath id=\"disc\"><circle "
         "r=\"" +
         pixels(kRadius) + "\"/></clipPath></defs>\n<text x=\"" + pixels(kMargin) +
         "\" y=\"24\" font-size=\"14\">" + quoted_for_xml(title_of(chain)) + ", " +
         std::to_string(map.regions.size()) + " regions</text>\n" +
         disc(map, 1, kMargin + kRadius) + disc(map, -1, second) + legend(map, legend_at) +
         "</svg>\n";
}

}  // namespace korvex
