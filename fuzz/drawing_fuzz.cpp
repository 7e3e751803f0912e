// Diagrams to drawings and, by the curve that is drawn, back.
#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "korvex/diagram.hpp"
#include "korvex/drawing.hpp"
#include "korvex/report.hpp"
#include "points.hpp"
#include "support/drawn_curve.hpp"

namespace {

using fuzz::require;
using korvex::Diagram;
using korvex::Point;

void check(const Diagram& diagram) {
  const korvex::DiagramDrawing drawing = draw(diagram);
  for (const korvex::DrawnArc& arc : drawing.arcs) {
    const korvex::PlanePoint middle = arc.at(0.5);
    require(std::hypot(middle.x, middle.y) < 1 + 1e-9);
  }
  std::ostringstream svg;
  write_drawing(diagram, drawing, "", "#333333", svg);
  require(svg.str().find("nan") == std::string::npos);
  if (diagram.crossings() == 0) return;
  require(Diagram::of_polygon(support::curve_of(diagram, drawing), {0, 0, 1}) == diagram);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMost = 40;
  fuzz::Bytes bytes(data, size);
  const unsigned kind = bytes.take<std::uint8_t>();
  const std::vector<Point> chain = fuzz::points(bytes, kind, 30);
  if (!fuzz::usable(chain)) return 0;
  fuzz::is_refused([&] {
    const Diagram diagram = Diagram::of_polygon(chain, {0.3, 0.4, 0.9});
    if (diagram.crossings() <= kMost) check(diagram);
  });
  return 0;
}
