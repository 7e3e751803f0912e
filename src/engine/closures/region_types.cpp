#include "engine/closures/region_types.hpp"

#include <algorithm>
#include <atomic>
#include <deque>
#include <memory>

#include "engine/closures/gathering.hpp"
#include "engine/closures/reduced_chain.hpp"
#include "engine/closures/votes.hpp"
#include "engine/diagram/code_reduction.hpp"
#include "engine/identify/diagram_types.hpp"
#include "engine/projection/projection.hpp"
#include "engine/run/parallel.hpp"

namespace korvex {
namespace {

// Rounding moves what is projected by about 1e-15 of the extent: an end that passes a bond at
// less than this is not known to pass on the right side.
constexpr double kThin = 1e-14;

// Degenerate views are rare and confined to lines: a face wider than this has others, unless the
// chain touches itself.
constexpr double kWide = 1e-9;

// So many directions share a reduction of the chain, and so many of these, which lie closest, a
// further one. Regions are small where the chain is dense: directions in them lie close together,
// and what the chain loses for so few of them costs less than looking at it longer.
constexpr std::size_t kBatch = 30;
constexpr std::size_t kClosest = 6;

class RegionTyping {
 public:
  RegionTyping(std::span<const Point> chain, const Arrangement& arrangement,
               std::span<const std::optional<InnerPoint>> inner, const Identification& identify,
               const Run& run)
      : chain_(chain), arrangement_(arrangement), inner_(inner), identify_(identify), run_(run) {}

  std::optional<std::vector<RegionType>> decide() {
    regions_.resize(inner_.size());
    known_.assign(inner_.size(), false);
    decide_wide(wide_faces());
    if (touches_itself_) return std::nullopt;
    if (!take_over_thin()) return std::nullopt;
    return std::move(regions_);
  }

 private:
  struct Worker {
    explicit Worker(const Identification& identify) : types(identify) {}

    DiagramTypes types;
    CodeReduction reduction;
  };

  // The faces that are not thin, so that directions that are reduced for together lie close.
  std::vector<std::size_t> wide_faces() const {
    std::vector<std::size_t> faces;
    for (std::size_t face = 0; face < inner_.size(); ++face)
      if (inner_[face] && inner_[face]->weighted >= kThin) faces.push_back(face);
    gather_faces(faces, kBatch);
    return faces;
  }

  void gather_faces(std::span<std::size_t> faces, std::size_t batch) const {
    gather(faces, batch, [this](std::size_t face) { return inner_[face]->at; });
  }

  void decide_wide(std::vector<std::size_t> faces) {
    const Sharing sharing;
    std::vector<Point> shared(chain_.begin(), chain_.end());
    if (faces.size() <= sharing.most_directions && chain_.size() >= sharing.fewest_points)
      shared = reduced_for(rays_of(faces), chain_, run_);
    const std::size_t pieces = (faces.size() + kBatch - 1) / kBatch;
    std::vector<std::unique_ptr<Worker>> workers;
    for (unsigned k = 0; k < worker_count(run_, pieces); ++k)
      workers.push_back(std::make_unique<Worker>(identify_));
    std::vector<char> known(inner_.size(), 0);  // bytes, which threads may write side by side
    for_each_piece(run_, pieces, [&](std::size_t piece, unsigned worker) {
      const std::size_t from = piece * kBatch;
      const auto own = std::span(faces).subspan(from, std::min(kBatch, faces.size() - from));
      const std::vector<Point> reduced = reduced_for(rays_of(own), shared, run_);
      gather_faces(own, kClosest);
      for (std::size_t begin = 0; begin < own.size(); begin += kClosest) {
        const auto closest = own.subspan(begin, std::min(kClosest, own.size() - begin));
        const std::vector<Point> further = reduced_for(rays_of(closest), reduced, run_);
        for (const std::size_t face : closest) {
          throw_if_cancelled(run_);
          known[face] = decide_face(face, further, *workers[worker]) ? 1 : 0;
        }
      }
    });
    std::transform(known.begin(), known.end(), known_.begin(), [](char k) { return k != 0; });
  }

  std::vector<Ends> rays_of(std::span<const std::size_t> faces) const {
    std::vector<Ends> ends;
    for (const std::size_t face : faces) ends.push_back({inner_[face]->at, inner_[face]->at});
    return ends;
  }

  bool decide_face(std::size_t face, std::span<const Point> reduced, Worker& worker) {
    if (decide_seen(face, inner_[face]->at, reduced, worker)) return true;
    for (const InnerPoint& other : inner_points(arrangement_, face))
      if (other.weighted >= kThin && decide_seen(face, other.at, chain_, worker)) return true;
    if (decide_turned(face, worker)) return true;
    if (inner_[face]->clearance > kWide) touches_itself_ = true;
    return false;
  }

  // The best points of a face with few sides may all lie on the circles of its arcs, opposite to
  // them: there an end is seen on a bond, however the chain lies.
  bool decide_turned(std::size_t face, Worker& worker) {
    constexpr double kRoomToTurn = 1e-4;
    constexpr unsigned kTurns = 4;
    if (inner_[face]->clearance < kRoomToTurn) return false;
    for (unsigned attempt = 0; attempt < kTurns; ++attempt)
      if (decide_seen(face, nudged(inner_[face]->at, attempt), chain_, worker)) return true;
    return false;
  }

  bool decide_seen(std::size_t face, const Point& direction, std::span<const Point> chain,
                   Worker& worker) {
    const Projection view(chain, direction, Curve::kOpen, run_);
    if (view.degenerate()) return false;
    GaussCode code = view.code();
    worker.reduction.reduce(code);
    regions_[face] = {worker.types.of_open(code, run_), direction, false};
    return true;
  }

  // Gives thin faces the type of a neighbour, from the outside in; false where no face has one.
  bool take_over_thin() {
    std::deque<std::size_t> waiting;
    for (std::size_t face = 0; face < known_.size(); ++face)
      if (known_[face]) waiting.push_back(face);
    if (waiting.empty()) return false;
    for (; !waiting.empty(); waiting.pop_front()) {
      const std::size_t face = waiting.front();
      for (const std::int32_t side : arrangement_.sides(face)) {
        const std::size_t next = arrangement_.face_of(Arrangement::other_side(side));
        if (known_[next]) continue;
        known_[next] = true;
        regions_[next] = regions_[face];
        regions_[next].in_doubt = true;
        waiting.push_back(next);
      }
    }
    return true;
  }

  const std::span<const Point> chain_;
  const Arrangement& arrangement_;
  const std::span<const std::optional<InnerPoint>> inner_;
  const Identification& identify_;
  const Run& run_;
  std::vector<RegionType> regions_;
  std::vector<bool> known_;
  std::atomic<bool> touches_itself_ = false;
};

}  // namespace

std::optional<std::vector<RegionType>> region_types(
    std::span<const Point> chain, const Arrangement& arrangement,
    std::span<const std::optional<InnerPoint>> inner, const Identification& identify,
    const Run& run) {
  return RegionTyping(chain, arrangement, inner, identify, run).decide();
}

}  // namespace korvex
