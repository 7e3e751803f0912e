#include "preprocess/edge_boxes.hpp"

#include <algorithm>

namespace preprocess {

void EdgeBoxes::set(Node& node, std::size_t child, const Box& box) {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    node.low[axis][child] = box.low[axis];
    node.high[axis][child] = box.high[axis];
  }
}

Box EdgeBoxes::hull(const Node& node) {
  Box box = kEmptyBox;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    for (std::size_t c = 0; c < kFan; ++c) {
      box.low[axis] = std::min(box.low[axis], node.low[axis][c]);
      box.high[axis] = std::max(box.high[axis], node.high[axis][c]);
    }
  }
  return box;
}

void EdgeBoxes::assign(const std::vector<Box>& boxes) {
  Node empty{};
  for (std::size_t c = 0; c < kFan; ++c) set(empty, c, kEmptyBox);
  levels_.clear();
  std::vector<Box> below = boxes;
  do {
    std::vector<Node> nodes((below.size() + kFan - 1) / kFan, empty);
    for (std::size_t k = 0; k < below.size(); ++k) set(nodes[k / kFan], k % kFan, below[k]);
    below.clear();
    for (const Node& node : nodes) below.push_back(hull(node));
    levels_.push_back(std::move(nodes));
  } while (below.size() > 1);
}

void EdgeBoxes::replace(std::size_t place, const Box& box) {
  set(levels_[0][place / kFan], place % kFan, box);
  for (std::size_t level = 1; level < levels_.size(); ++level) {
    place /= kFan;
    Node& node = levels_[level][place / kFan];
    const std::size_t child = place % kFan;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      node.low[axis][child] = std::min(node.low[axis][child], box.low[axis]);
      node.high[axis][child] = std::max(node.high[axis][child], box.high[axis]);
    }
  }
}

void EdgeBoxes::erase(std::size_t place) { set(levels_[0][place / kFan], place % kFan, kEmptyBox); }

}  // namespace preprocess
