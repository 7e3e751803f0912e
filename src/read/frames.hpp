// Frames of trajectories that have positions and no names: what makes chains of them.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "korvex/geometry.hpp"
#include "korvex/read.hpp"
#include "read/cell.hpp"
#include "read/raw_chain.hpp"

namespace korvex::read {

using ChainSink = std::function<void(RawChain&&)>;

// The positions of all atoms, in the order of the file.
struct Frame {
  std::int64_t number = 1;
  std::vector<Point> positions;
  Cell cell;
  std::optional<double> time;
  std::optional<std::int64_t> step;
};

// Nothing for a time that no number tells.
inline std::optional<double> finite_time(double time) {
  return std::isfinite(time) ? std::optional(time) : std::nullopt;
}

// Chains of which each has the same atoms in every frame: those of a topology, or all atoms as one.
class FrameChains {
 public:
  // `file` stands for the trajectory in messages. All must outlive the object.
  FrameChains(const ReadOptions& options, const std::string& file, const ChainSink& sink)
      : options_(options), file_(file), sink_(sink) {}

  // Whether a frame is selected. Only those that are need to be read and taken.
  bool wants(std::int64_t frame);
  // True where neither this frame nor one behind it is selected.
  bool is_past(std::int64_t frame) const { return frame > options_.models.last; }
  // Throws Error where the topology has another number of atoms.
  void take(const Frame& frame);

  // Whether there was any frame.
  bool any() const { return any_; }

 private:
  void prepare(std::size_t atoms);

  const ReadOptions& options_;
  const std::string& file_;
  const ChainSink& sink_;
  std::vector<RawChain> patterns_;  // with the places of their atoms
  std::size_t atoms_ = 0;
  bool prepared_ = false;
  bool any_ = false;
};

}  // namespace korvex::read
