// Curves in space to diagrams and back to codes: one knot however it is looked at, run through,
// simplified or written down.
#include <algorithm>
#include <vector>

#include "korvex/alexander.hpp"
#include "korvex/diagram.hpp"
#include "korvex/ring.hpp"
#include "points.hpp"

namespace {

using fuzz::require;
using korvex::Diagram;
using korvex::Point;
using Points = std::vector<Point>;

void check_codes(const Diagram& diagram) {
  const std::string text = diagram.gauss_code();
  require(Diagram::of_gauss_code(text).gauss_code() == text);
  require(diagram.mirror().mirror() == diagram);
  require(diagram.mirror().writhe() == -diagram.writhe());
  require(diagram.reversed().reversed() == diagram);
  require(diagram.reversed().writhe() == diagram.writhe());
  if (diagram.crossings() == 0) return;
  const auto pd = diagram.pd();
  require(Diagram::of_pd(pd).gauss_code() == text);
}

// The key of the knot, by several ways.
std::uint64_t checked_key(const Diagram& diagram) {
  check_codes(diagram);
  const std::uint64_t key = korvex::alexander_key(diagram);
  const Diagram simple = diagram.simplified();
  require(simple.crossings() <= diagram.crossings());
  check_codes(simple);
  require(simple.simplified().crossings() == simple.crossings());
  require(korvex::alexander_key(simple) == key);
  require(korvex::alexander_key(diagram.reversed()) == key);
  require(korvex::alexander_key(diagram.mirror().simplified()) == key);
  if (simple.crossings() <= 2) require(key == 1);
  return key;
}

void check_ring(const Points& ring, const Point& direction, const Point& other) {
  const std::uint64_t key = checked_key(Diagram::of_polygon(ring, direction));
  if (ring.size() < 3 || !fuzz::is_embedded(ring, true, 1e-5 * fuzz::extent(ring))) return;
  Points changed = ring;
  std::rotate(changed.begin(), changed.begin() + 1, changed.end());
  std::reverse(changed.begin(), changed.end());
  for (Point& p : changed) p = {p.y, p.z, p.x};
  changed.insert(changed.begin() + 1, 0.5 * (changed[0] + changed[1]));
  require(checked_key(Diagram::of_polygon(changed, other)) == key);
  const korvex::RingReport report = korvex::examine_ring(ring);
  require(report.alexander_key == key && report.points_left <= ring.size());
  check_codes(report.simplified);
}

// The two rays of an open chain, drawn as far as it takes.
void check_open(const Points& chain, const Point& direction) {
  const Diagram open = Diagram::of_open_chain(chain, direction);
  const std::uint64_t key = checked_key(open);
  if (chain.size() < 2 || !(norm(direction) > 0.1 && norm(direction) < 1e3)) return;
  const double size = fuzz::extent(chain);
  if (size < 1e-100) return;  // the squares of its distances underflow
  Points closed = chain;
  const Point ray = (3 * size / norm(direction)) * direction;
  closed.push_back(chain.back() + ray);
  closed.push_back(chain.front() + ray);
  if (!fuzz::is_embedded(closed, true, 1e-5 * size)) return;
  require(checked_key(Diagram::of_polygon(closed, {0.3, -0.7, 0.2})) == key);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const unsigned kind = bytes.take<std::uint8_t>();
  const auto number = [&] { return fuzz::engine_coordinate(bytes, kind / 8); };
  const Point direction{number(), number(), number()};
  const Points chain = fuzz::points(bytes, kind, 30);
  const double largest =
      std::max({std::abs(direction.x), std::abs(direction.y), std::abs(direction.z)});
  const bool looks = std::isfinite(direction.x) && std::isfinite(direction.y) &&
                     std::isfinite(direction.z) && largest > 0;
  const bool refused = fuzz::is_refused([&] { check_open(chain, direction); });
  if (!looks || !fuzz::usable(chain)) {
    require(refused);
    require(fuzz::is_refused([&] { Diagram::of_polygon(chain, direction); }));
    return 0;
  }
  const bool tame = !chain.empty() && !fuzz::may_be_refused(chain);
  require(!refused || !tame);
  if (tame) check_ring(chain, direction, {0.37 + kind, -0.21, 0.9});
  return 0;
}
