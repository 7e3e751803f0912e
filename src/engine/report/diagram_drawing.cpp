// Drawings of diagrams.
#include <algorithm>
#include <cmath>
#include <ostream>
#include <string>
#include <vector>

#include "engine/report/number_text.hpp"
#include "korvex/drawing.hpp"
#include "korvex/quoting.hpp"
#include "korvex/report.hpp"

namespace korvex {
namespace {

// Pixels.
constexpr double kSide = 400;
constexpr double kCaption = 30;
constexpr double kBorder = 20;

// Places of a drawing on the picture, which it fills.
class Picture {
 public:
  explicit Picture(const DiagramDrawing& drawing) {
    constexpr int kSamples = 16;
    for (const DrawnArc& arc : drawing.arcs)
      for (int k = 0; k < kSamples; ++k) take_in(arc.at(static_cast<double>(k) / kSamples));
    scale_ = (kSide - 2 * kBorder) / std::max(most_.x - least_.x, most_.y - least_.y);
  }

  double scale() const { return scale_; }

  std::string text(const PlanePoint& p) const {
    const double x = kSide / 2 + scale_ * (p.x - (least_.x + most_.x) / 2);
    const double y = kSide / 2 - scale_ * (p.y - (least_.y + most_.y) / 2);
    return fixed_text(x, 2) + ' ' + fixed_text(y, 2);
  }

  // The way along an arc, behind where it begins.
  std::string way(const DrawnArc& arc) const {
    constexpr double kStraight = 1e-5;
    if (std::abs(arc.bulge) < kStraight) return 'L' + text(arc.to);
    const double chord = std::hypot(arc.to.x - arc.from.x, arc.to.y - arc.from.y);
    const double radius = chord * (1 + arc.bulge * arc.bulge) / (4 * std::abs(arc.bulge));
    const std::string size = fixed_text(scale_ * radius, 2);
    return 'A' + size + ' ' + size + (arc.bulge > 0 ? " 0 0 0 " : " 0 0 1 ") + text(arc.to);
  }

 private:
  void take_in(const PlanePoint& p) {
    least_ = {std::min(least_.x, p.x), std::min(least_.y, p.y)};
    most_ = {std::max(most_.x, p.x), std::max(most_.y, p.y)};
  }

  PlanePoint least_{2, 2};
  PlanePoint most_{-2, -2};
  double scale_;
};

// A line that leaves room between strands, also where they lie close.
double line_width(const DiagramDrawing& drawing, double scale) {
  std::vector<double> lengths;
  for (const DrawnArc& arc : drawing.arcs)
    if (arc.passage) lengths.push_back(scale * arc.length());
  if (lengths.empty()) return 6;
  std::sort(lengths.begin(), lengths.end());
  return std::clamp(0.12 * lengths[lengths.size() / 4], 0.8, 6.0);
}

class Curve {
 public:
  Curve(const Diagram& diagram, const DiagramDrawing& drawing)
      : code_(diagram.code()),
        arcs_(drawing.arcs),
        picture_(drawing),
        width_(line_width(drawing, picture_.scale())) {}

  double width() const { return width_; }

  // From gap to gap, beginning behind the first; where there is none all around.
  std::string path() const {
    const auto first =
        static_cast<std::size_t>(std::find_if(arcs_.begin(), arcs_.end(),
                                              [&](const DrawnArc& arc) { return is_under(arc); }) -
                                 arcs_.begin());
    if (first == arcs_.size()) {
      std::string path = 'M' + picture_.text(arcs_.front().from);
      for (const DrawnArc& arc : arcs_) path += picture_.way(arc);
      return path + 'Z';
    }
    std::string path;
    for (std::size_t k = 0; k < arcs_.size(); ++k) {
      const DrawnArc& arc = arcs_[(first + k) % arcs_.size()];
      if (!is_under(arc)) {
        path += picture_.way(arc);
        continue;
      }
      if (k > 0) path += picture_.way(arc.between(0, arc.crossed_at - gap_before(arc)));
      path += begun_behind(arc);
    }
    return path + picture_.way(
                      arcs_[first].between(0, arcs_[first].crossed_at - gap_before(arcs_[first])));
  }

 private:
  bool is_under(const DrawnArc& arc) const { return arc.passage && !code_[*arc.passage].over; }

  // The part of an arc that is left out before the crossing, and behind it.
  double gap_before(const DrawnArc& arc) const { return gap(arc, arc.crossed_at); }
  double gap_behind(const DrawnArc& arc) const { return gap(arc, 1 - arc.crossed_at); }

  double gap(const DrawnArc& arc, double room) const {
    constexpr double kMost = 0.7;
    return std::min(1.9 * width_ / (picture_.scale() * arc.length()), kMost * room);
  }

  std::string begun_behind(const DrawnArc& arc) const {
    const DrawnArc rest = arc.between(arc.crossed_at + gap_behind(arc), 1);
    return 'M' + picture_.text(rest.from) + picture_.way(rest);
  }

  const GaussCode& code_;
  const std::vector<DrawnArc>& arcs_;
  Picture picture_;
  double width_;
};

}  // namespace

void write_drawing(const Diagram& diagram, const DiagramDrawing& drawing, std::string_view caption,
                   std::string_view colour, std::ostream& out) {
  const Curve curve(diagram, drawing);
  const std::string side = fixed_text(kSide, 0);
  const std::string height = fixed_text(kSide + kCaption, 0);
  const std::string title = quoted_for_xml(std::string(caption));
  out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + side + "\" height=\"" + height +
             "\" viewBox=\"0 0 " + side + ' ' + height +
             "\" font-family=\"sans-serif\" font-size=\"16\" role=\"img\">\n<title>" + title +
             "</title>\n<path d=\"" + curve.path() + "\" fill=\"none\" stroke=\"" +
             quoted_for_xml(std::string(colour)) + "\" stroke-width=\"" +
             fixed_text(curve.width(), 2) + "\" stroke-linecap=\"butt\"/>\n<text x=\"" +
             fixed_text(kSide / 2, 0) + "\" y=\"" + fixed_text(kSide + kCaption / 2, 0) +
             "\" text-anchor=\"middle\">" + title + "</text>\n</svg>\n";
}

}  // namespace korvex
