// The bounding boxes of a chain's edges, in a tree over their order along the chain.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "preprocess/vec3.hpp"

namespace preprocess {

// An axis-parallel box in single precision. Its sides come from coordinates by one rounding, which
// keeps order: boxes of sets that meet always overlap.
struct Box {
  std::array<float, 3> low;
  std::array<float, 3> high;
};

inline constexpr Box kEmptyBox{
    {std::numeric_limits<float>::infinity(), std::numeric_limits<float>::infinity(),
     std::numeric_limits<float>::infinity()},
    {-std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
     -std::numeric_limits<float>::infinity()}};

inline Box merged(const Box& a, const Box& b) {
  Box box{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    box.low[axis] = std::min(a.low[axis], b.low[axis]);
    box.high[axis] = std::max(a.high[axis], b.high[axis]);
  }
  return box;
}

// A tree of boxes over the places 0 to n - 1, of which each node has 16 children.
class EdgeBoxes {
 public:
  // Makes the tree anew over the given boxes. O(n).
  void assign(const std::vector<Box>& boxes);

  // Replaces the box at a place; the nodes above it grow where they must. O(log n).
  void replace(std::size_t place, const Box& box);

  // Empties a place. The nodes above it keep their size.
  void erase(std::size_t place);

  // Calls `visit(place)` for the places whose boxes overlap `box`, touching included, until it
  // answers true. Whether it did.
  template <class Visit>
  bool any_overlap(const Box& box, const Visit& visit) const {
    return levels_.empty() ? false : descend(levels_.size() - 1, 0, box, visit);
  }

 private:
  static constexpr std::size_t kFan = 16;

  struct Node {
    std::array<std::array<float, kFan>, 3> low;
    std::array<std::array<float, kFan>, 3> high;
  };

  static void set(Node& node, std::size_t child, const Box& box);
  static Box hull(const Node& node);

  // Which children's boxes overlap `box`, one byte each. Written so that compilers vectorise it.
  static std::array<std::uint8_t, kFan> overlaps(const Node& node, const Box& box) {
    std::array<std::uint8_t, kFan> result;
    for (std::size_t c = 0; c < kFan; ++c) {
      const auto along = [&](std::size_t axis) {
        return int{node.low[axis][c] <= box.high[axis]} & int{node.high[axis][c] >= box.low[axis]};
      };
      result[c] = static_cast<std::uint8_t>(along(0) & along(1) & along(2));
    }
    return result;
  }

  template <class Visit>
  bool descend(std::size_t level, std::size_t index, const Box& box, const Visit& visit) const {
    const auto found = overlaps(levels_[level][index], box);
    for (std::size_t half = 0; half < kFan; half += 8) {
      std::uint64_t bytes = 0;
      std::memcpy(&bytes, found.data() + half, 8);
      for (; bytes != 0; bytes &= bytes - 1) {
        const std::size_t child = index * kFan + half + byte_of_lowest_bit(bytes);
        if (level == 0 ? visit(child) : descend(level - 1, child, box, visit)) return true;
      }
    }
    return false;
  }

  static std::size_t byte_of_lowest_bit(std::uint64_t bytes) {
    const auto place = static_cast<std::size_t>(std::countr_zero(bytes)) / 8;
    return std::endian::native == std::endian::little ? place : 7 - place;
  }

  std::vector<std::vector<Node>> levels_;  // of nodes, the ones over the places first
};

}  // namespace preprocess
