#include <cstddef>

#include "preprocess/directions.hpp"

namespace preprocess {
namespace {

Point normalised(Point a) { return (1.0 / std::sqrt(dot(a, a))) * a; }

// A rotation by the unit quaternion w + xi + yj + zk.
class Rotation {
 public:
  Rotation(double w, double x, double y, double z) {
    const double scale = 2 / (w * w + x * x + y * y + z * z);
    rows_[0] = {1 - scale * (y * y + z * z), scale * (x * y - w * z), scale * (x * z + w * y)};
    rows_[1] = {scale * (x * y + w * z), 1 - scale * (x * x + z * z), scale * (y * z - w * x)};
    rows_[2] = {scale * (x * z - w * y), scale * (y * z + w * x), 1 - scale * (x * x + y * y)};
  }

  Point operator()(Point a) const { return {dot(rows_[0], a), dot(rows_[1], a), dot(rows_[2], a)}; }

 private:
  std::array<Point, 3> rows_;
};

// Seen along d, two steps a and b of a lattice fall on one line when (a x b) . d = 0, and a x b is
// again a lattice vector, of integers up to a common factor. The rotation must therefore leave no
// direction at a right angle to an integer vector. A rational rotation would: the icosahedron's
// coordinates are p + q phi with integers p and q, and an integer vector at a right angle to both
// parts always exists. The square roots of four primes are independent over those numbers. These
// four, of all sets of four primes below 40, keep the smallest |n . d| over the integer vectors n
// with components to 8 and the 60 directions largest: 8.5e-4.
Rotation generic_rotation() {
  return {std::sqrt(7.0), std::sqrt(37.0), std::sqrt(11.0), std::sqrt(3.0)};
}

// One of each antipodal pair of vertices of the truncated icosahedron, the one whose first
// coordinate that is not 0 is positive: the cyclic permutations of (0, 1, 3 phi),
// (1, 2 + phi, 2 phi) and (phi, 2, 2 phi + 1) with the signs that this leaves.
std::array<Point, kDirections / 2> half_of_truncated_icosahedron() {
  const double phi = (1 + std::sqrt(5.0)) / 2;
  std::array<Point, kDirections / 2> half{};
  std::size_t count = 0;
  const auto add = [&](Point v) {
    const double first = v.x != 0 ? v.x : v.y;
    if (first > 0) half[count++] = v;
  };
  const std::array<Point, 3> corners{
      {{0, 1, 3 * phi}, {1, 2 + phi, 2 * phi}, {phi, 2, 2 * phi + 1}}};
  for (const Point& corner : corners) {
    for (int signs = 0; signs < 8; ++signs) {
      if (corner.x == 0 && (signs & 1) != 0) continue;
      const Point v{(signs & 1) != 0 ? -corner.x : corner.x,
                    (signs & 2) != 0 ? -corner.y : corner.y,
                    (signs & 4) != 0 ? -corner.z : corner.z};
      add(v);
      add({v.y, v.z, v.x});
      add({v.z, v.x, v.y});
    }
  }
  return half;
}

// Any right-handed frame would do; this one is made from the coordinate axis that lies furthest
// from the viewer's direction.
ViewFrame frame_towards(Point viewer) {
  const Point size{std::fabs(viewer.x), std::fabs(viewer.y), std::fabs(viewer.z)};
  Point axis{0, 0, 1};
  if (size.x <= size.y && size.x <= size.z)
    axis = {1, 0, 0};
  else if (size.y <= size.z)
    axis = {0, 1, 0};
  const Point right = normalised(cross(axis, viewer));
  return {right, cross(viewer, right), viewer};
}

std::array<ViewFrame, kDirections> make_view_frames() {
  const Rotation rotation = generic_rotation();
  const auto half = half_of_truncated_icosahedron();
  std::array<ViewFrame, kDirections> frames{};
  for (std::size_t k = 0; k < half.size(); ++k) {
    const Point viewer = normalised(rotation(half[k]));
    frames[k] = frame_towards(viewer);
    frames[half.size() + k] = frame_towards(-1.0 * viewer);
  }
  return frames;
}

Point seen_in(const ViewFrame& frame, const ChainAtom& atom) {
  const Point p = position(atom);
  return {dot(frame.right, p), dot(frame.up, p), dot(frame.viewer, p)};
}

}  // namespace

const std::array<ViewFrame, kDirections>& view_frames() {
  static const std::array<ViewFrame, kDirections> frames = make_view_frames();
  return frames;
}

}  // namespace preprocess

void FillFulerenData() { preprocess::view_frames(); }

std::vector<Edge> ProjectChain(const std::vector<ChainAtom>& chain, int direction, bool closed) {
  std::vector<Edge> edges;
  const std::size_t atoms = chain.size();
  if (atoms < 2) return edges;
  const auto place = static_cast<std::size_t>(preprocess::wrap_direction(direction));
  const preprocess::ViewFrame& frame = preprocess::view_frames()[place];
  const std::size_t count = closed ? atoms : atoms - 1;
  edges.resize(count);
  korvex::Point from = preprocess::seen_in(frame, chain[0]);
  for (std::size_t k = 0; k < count; ++k) {
    const korvex::Point to = preprocess::seen_in(frame, chain[k + 1 < atoms ? k + 1 : 0]);
    Edge& edge = edges[k];
    edge.x1 = from.x;
    edge.y1 = from.y;
    edge.z1 = from.z;
    edge.x2 = to.x;
    edge.y2 = to.y;
    edge.z2 = to.z;
    from = to;
  }
  return edges;
}
