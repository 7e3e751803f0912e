#include "support/embedding.hpp"

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace support {
namespace {

using korvex::GaussCode;
using korvex::PdCrossing;
using korvex::Point;

constexpr std::size_t kPointsOfStrand = 3;

struct Flat {
  double x = 0;
  double y = 0;
};

class Drawing {
 public:
  explicit Drawing(const korvex::Diagram& diagram) : pd_(diagram.pd()) {
    find_faces();
    place_outer_face();
    solve();
  }

  // Of the point where a passage goes through its crossing, and of a strand's points in order.
  Flat crossing(std::size_t number) const { return place_[number]; }
  Flat on_strand(std::size_t strand, std::size_t k) const { return place_[point(strand, k)]; }

 private:
  // A leg of a crossing; strands join two of them.
  struct Leg {
    std::size_t crossing = 0;
    std::size_t leg = 0;
  };

  std::size_t strands() const { return 2 * pd_.size(); }
  std::size_t point(std::size_t strand, std::size_t k) const {
    return pd_.size() + strand * kPointsOfStrand + k;
  }
  std::size_t strand_of(const Leg& leg) const {
    return static_cast<std::size_t>(pd_[leg.crossing][leg.leg]) - 1;
  }

  // Labels leave a crossing by the leg that is followed by the larger label: under out, or over
  // out.
  bool leaves(const Leg& leg) const {
    const PdCrossing& labels = pd_[leg.crossing];
    if (leg.leg % 2 == 0) return leg.leg == 2;
    const auto last = static_cast<int>(strands());
    const int other = labels[(leg.leg + 2) % 4];
    return labels[leg.leg] == (other == last ? 1 : other + 1);
  }

  void find_faces() {
    std::vector<std::array<Leg, 2>> ends(strands());  // where each strand leaves and enters
    for (std::size_t c = 0; c < pd_.size(); ++c)
      for (std::size_t k = 0; k < 4; ++k) {
        const Leg leg{c, k};
        ends[strand_of(leg)][leaves(leg) ? 0 : 1] = leg;
      }
    std::vector<std::array<bool, 4>> seen(pd_.size());
    for (std::size_t c = 0; c < pd_.size(); ++c)
      for (std::size_t k = 0; k < 4; ++k) {
        if (seen[c][k]) continue;
        std::vector<std::size_t> face;
        for (Leg leg{c, k}; !seen[leg.crossing][leg.leg];) {
          seen[leg.crossing][leg.leg] = true;
          face.push_back(leg.crossing);
          const std::size_t strand = strand_of(leg);
          const bool along = leaves(leg);
          for (std::size_t m = 0; m < kPointsOfStrand; ++m)
            face.push_back(point(strand, along ? m : kPointsOfStrand - 1 - m));
          const Leg end = ends[strand][along ? 1 : 0];
          leg = {end.crossing, (end.leg + 3) % 4};  // the next clockwise: the face lies to the left
        }
        faces_.push_back(face);
      }
    for (std::size_t f = 1; f < faces_.size(); ++f)
      if (faces_[f].size() > faces_[outer_].size()) outer_ = f;
  }

  void place_outer_face() {
    place_.assign(pd_.size() + strands() * kPointsOfStrand + faces_.size(), {});
    fixed_.assign(place_.size(), false);
    const std::vector<std::size_t>& face = faces_[outer_];
    for (std::size_t k = 0; k < face.size(); ++k) {
      // Clockwise, since the face is on the left of its boundary and outside.
      const double angle =
          -2 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(face.size());
      place_[face[k]] = {std::cos(angle), std::sin(angle)};
      fixed_[face[k]] = true;
    }
  }

  // Every point not on the outer face is the centre of its neighbours.
  void solve() {
    std::vector<std::vector<std::size_t>> neighbours(place_.size());
    const auto join = [&](std::size_t a, std::size_t b) {
      neighbours[a].push_back(b);
      neighbours[b].push_back(a);
    };
    for (std::size_t f = 0; f < faces_.size(); ++f) {
      const std::vector<std::size_t>& face = faces_[f];
      for (std::size_t k = 0; k < face.size(); ++k) {
        neighbours[face[k]].push_back(face[(k + 1) % face.size()]);
        if (f != outer_) join(face[k], place_.size() - faces_.size() + f);
      }
    }
    fixed_[place_.size() - faces_.size() + outer_] = true;
    std::vector<std::size_t> unknown;
    std::vector<std::size_t> row(place_.size());
    for (std::size_t v = 0; v < place_.size(); ++v) {
      if (fixed_[v]) continue;
      row[v] = unknown.size();
      unknown.push_back(v);
    }
    const std::size_t n = unknown.size();
    std::vector<std::vector<double>> system(n, std::vector<double>(n + 2, 0));
    for (std::size_t k = 0; k < n; ++k) {
      for (const std::size_t other : neighbours[unknown[k]]) {
        system[k][k] += 1;
        if (fixed_[other]) {
          system[k][n] += place_[other].x;
          system[k][n + 1] += place_[other].y;
        } else {
          system[k][row[other]] -= 1;
        }
      }
    }
    eliminate(system);
    for (std::size_t k = 0; k < n; ++k) place_[unknown[k]] = {system[k][n], system[k][n + 1]};
  }

  // The matrix is diagonally dominant: no pivot has to be sought.
  static void eliminate(std::vector<std::vector<double>>& system) {
    const std::size_t n = system.size();
    for (std::size_t k = 0; k < n; ++k) {
      const double pivot = system[k][k];
      for (double& entry : system[k]) entry /= pivot;
      for (std::size_t r = 0; r < n; ++r) {
        const double factor = system[r][k];
        if (r == k || factor == 0) continue;
        for (std::size_t c = k; c < system[r].size(); ++c) system[r][c] -= factor * system[k][c];
      }
    }
  }

  std::vector<PdCrossing> pd_;
  std::vector<std::vector<std::size_t>> faces_;  // points, with the face to the left
  std::size_t outer_ = 0;
  std::vector<Flat> place_;
  std::vector<bool> fixed_;
};

}  // namespace

std::vector<Point> embedded(const korvex::Diagram& diagram) {
  const Drawing drawing(diagram);
  const GaussCode& code = diagram.code();
  std::vector<std::size_t> crossing(code.size());
  std::size_t count = 0;
  for (std::size_t k = 0; k < code.size(); ++k)
    if (!code[k].over) crossing[k] = crossing[static_cast<std::size_t>(code[k].mate)] = count++;
  std::vector<Point> points;
  for (std::size_t k = 0; k < code.size(); ++k) {
    // Strand k enters passage k.
    for (std::size_t m = 0; m < kPointsOfStrand; ++m) {
      const Flat flat = drawing.on_strand(k, m);
      points.push_back({flat.x, flat.y, 0});
    }
    const Flat flat = drawing.crossing(crossing[k]);
    points.push_back({flat.x, flat.y, code[k].over ? 1.0 : -1.0});
  }
  return points;
}

}  // namespace support
