#include "geometry/box_tree.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "support/simd_targets.hpp"

namespace korvex {
namespace {

// Boxes on a small grid, so that many touch without overlapping; some are empty.
template <std::size_t kDimensions, typename Number>
BoundingBox<kDimensions, Number> random_box(std::mt19937& generator, int reach) {
  auto box = BoundingBox<kDimensions, Number>::empty();
  if (generator() % 16 == 0) return box;
  for (std::size_t d = 0; d < kDimensions; ++d) {
    box.low[d] = static_cast<Number>(static_cast<int>(generator() % 41) - 20);
    box.high[d] = static_cast<Number>(
        box.low[d] + static_cast<Number>(generator() % static_cast<unsigned>(reach)));
  }
  return box;
}

template <std::size_t kDimensions, typename Number>
void expect_same_as_all(const BoxTree<kDimensions, Number>& tree, std::mt19937& generator) {
  const std::size_t size = tree.size();
  for (int trial = 0; trial < 20; ++trial) {
    const auto query = random_box<kDimensions, Number>(generator, trial < 10 ? 4 : 30);
    std::size_t begin = trial % 2 == 0 ? 0 : generator() % (size + 1);
    std::size_t end = trial % 2 == 0 ? size : generator() % (size + 1);
    if (begin > end) std::swap(begin, end);
    std::vector<std::int32_t> expected{-1};
    for (std::size_t k = begin; k < end; ++k)
      if (tree.box(k).meets(query)) expected.push_back(static_cast<std::int32_t>(k));
    std::vector<std::int32_t> found{-1};
    tree.find(query, begin, end, found);
    EXPECT_EQ(found, expected) << size;
  }
}

template <std::size_t kDimensions, typename Number>
void compare(std::size_t size) {
  std::mt19937 generator(static_cast<unsigned>(size));
  BoxTree<kDimensions, Number> tree(size);
  expect_same_as_all(tree, generator);
  for (std::size_t k = 0; k < size; ++k) tree.set(k, random_box<kDimensions, Number>(generator, 5));
  expect_same_as_all(tree, generator);
  for (std::size_t k = 0; k < size; k += 3) tree.clear(k);
  for (std::size_t k = 1; k < size; k += 5)
    tree.set(k, random_box<kDimensions, Number>(generator, 9));
  expect_same_as_all(tree, generator);
  std::vector<BoundingBox<kDimensions, Number>> boxes;
  for (std::size_t k = 0; k < size; ++k)
    boxes.push_back(random_box<kDimensions, Number>(generator, 5));
  tree.assign(size, [&](std::size_t k) { return boxes[k]; });
  expect_same_as_all(tree, generator);
  for (std::size_t k = 1; k < size; k += 5)
    tree.set(k, random_box<kDimensions, Number>(generator, 9));
  expect_same_as_all(tree, generator);
}

TEST(BoxTree, FindsWhatLookingAtAllBoxesFindsOnEveryInstructionSet) {
  for (const std::int64_t target : support::simd_targets()) {
    const support::ForcedTarget forced(target);
    SCOPED_TRACE(support::simd_target_name(target));
    for (const std::size_t size :
         {0U, 1U, 5U, 15U, 16U, 17U, 31U, 32U, 33U, 255U, 256U, 257U, 1025U, 3000U, 5000U}) {
      compare<2, double>(size);
      compare<3, double>(size);
      compare<3, std::int16_t>(size);
    }
  }
}

}  // namespace
}  // namespace korvex
