// The faces into which paths of great-circle arcs cut the sphere.
//
// Only the order of crossings along the paths and the side to which they cross is asked of the
// geometry, and both are exact. The rest is combinatorics, so that the faces always are those of a
// map on the sphere: Euler's formula is checked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/sphere/arc.hpp"
#include "geometry/box_tree.hpp"
#include "korvex/run.hpp"

namespace korvex {

// A path on the sphere through the given directions.
struct SpherePath {
  std::vector<SpherePoint> points;
  std::vector<double> weights;  // one for each arc, given back by Arrangement::weight_of()
};

// The arrangement of two paths, each of them connected. Const objects may be used from many
// threads.
class Arrangement {
 public:
  enum class State {
    kGeneral,     // all the rest can be asked for
    kDegenerate,  // an arc of no or half a turn, an end on an arc, three arcs through one point
    kTooMany,     // more than `most_crossings`
  };

  // Directions that repeat the one before count once. O(n log n + crossings log crossings) for n
  // arcs few of which are near to one. Throws Error(kCancelled) when it is to stop.
  Arrangement(const SpherePath& first, const SpherePath& second, std::size_t most_crossings,
              const Run& run = {});

  State state() const { return state_; }
  std::size_t crossings() const { return crossings_.size(); }
  std::size_t faces() const { return state_ == State::kGeneral ? side_begin_.size() - 1 : 0; }

  // The sides that bound a face: numbers of pieces, doubled, and 1 more for the right side. A piece
  // is what lies of an arc between crossings; one both sides of which lie in the face is there
  // twice. Those of one boundary follow one another along it, with the face to their left.
  std::span<const std::int32_t> sides(std::size_t face) const {
    return std::span(sides_).subspan(side_begin_[face], side_begin_[face + 1] - side_begin_[face]);
  }
  // How the sides of a face fall into closed boundaries: the numbers of sides of each.
  std::vector<std::size_t> boundaries(std::size_t face) const;

  static std::size_t piece_of(std::int32_t side) { return static_cast<std::size_t>(side) / 2; }
  static bool is_left(std::int32_t side) { return side % 2 == 0; }
  static std::int32_t other_side(std::int32_t side) { return side ^ 1; }

  // The ends of a side, with the face to the left on the way.
  const Point& begin_of(std::int32_t side) const {
    return stops_[piece_of(side) + (is_left(side) ? 0 : 1)].at;
  }
  const Point& end_of(std::int32_t side) const { return begin_of(other_side(side)); }
  // The ends of a piece, along its path.
  const Point& begin_of_piece(std::size_t piece) const { return stops_[piece].at; }
  const Point& end_of_piece(std::size_t piece) const { return stops_[piece + 1].at; }
  const Arc& arc_of(std::size_t piece) const { return arcs_[at(stops_[piece].arc)]; }
  // Arcs and pieces of the first path (0) or the second (1) are numbered one after another along
  // it.
  std::size_t first_arc(std::size_t path) const { return paths_[path].begin; }
  std::size_t arcs(std::size_t path) const { return paths_[path].end - paths_[path].begin; }
  std::size_t first_piece(std::size_t path) const { return paths_[path].first_stop; }
  std::size_t end_of_pieces(std::size_t path) const { return paths_[path].last_stop; }
  std::size_t arc_number(std::size_t piece) const { return at(stops_[piece].arc); }
  double weight_of(std::size_t piece) const { return weights_[at(stops_[piece].arc)]; }
  std::size_t face_of(std::int32_t side) const {
    return static_cast<std::size_t>(face_of_side_[at(side)]);
  }

 private:
  struct Crossing : ArcCrossing {
    std::int32_t first;
    std::int32_t second;
  };

  // The passage of a path through a crossing, or one of its points.
  struct Stop {
    Point at;
    std::int32_t arc;            // of the piece that begins here; of the last point, the one before
    std::int32_t crossing = -1;  // none for points of the path
    std::int32_t mate = -1;      // the stop of the other passage through that crossing
    bool other_to_left = false;  // the other passes from right to left here
    bool begins = false;
    bool ends = false;
  };

  struct PathArcs {
    std::size_t begin;
    std::size_t end;
    std::size_t first_stop = 0;
    std::size_t last_stop = 0;
    bool empty() const { return begin == end; }
  };

  static std::size_t at(std::int32_t number) { return static_cast<std::size_t>(number); }

  bool add_path(const SpherePath& path);
  bool neighbours(std::size_t a, std::size_t b) const;
  State find_crossings(std::size_t most_crossings, const Run& run);
  State find_crossings_of(const BoxTree<3>& boxes, PathArcs some, std::size_t most_crossings,
                          std::vector<Crossing>& found) const;
  ArcPassage passage(std::int32_t crossing, std::size_t along) const;
  bool place_stops();
  bool sort_passages(std::size_t arc, std::span<std::int32_t> passages) const;
  std::int32_t next_side(std::int32_t side) const;
  std::size_t trace_boundaries();
  bool crosses_between_paths() const;
  bool make_faces(std::size_t boundaries);
  bool join_paths(std::vector<std::int32_t>& face_of) const;
  bool bridge_side(const Arc& bridge, const PathArcs& path, bool path_at_start,
                   std::int32_t& side) const;
  bool side_at(std::size_t arc, const PathArcs& path, const ArcPassage& place, bool left,
               std::int32_t& side) const;
  void gather_sides(const std::vector<std::int32_t>& face_of);

  State state_ = State::kGeneral;
  std::vector<Arc> arcs_;
  std::vector<double> weights_;
  std::vector<PathArcs> paths_;
  std::vector<Crossing> crossings_;
  std::vector<Stop> stops_;
  std::vector<std::int32_t> boundary_of_side_;
  std::vector<std::int32_t> face_of_side_;
  std::vector<std::int32_t> sides_;
  std::vector<std::size_t> side_begin_{0, 0};
};

}  // namespace korvex
