#include "support/knots.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace support {
namespace {

void number_atoms(Chain& chain) {
  for (std::size_t k = 0; k < chain.size(); ++k) chain[k].id = static_cast<std::int32_t>(k + 1);
}

void append(Chain& chain, double x, double y, double z) {
  const auto here = [&](const ChainAtom& a) { return a.x == x && a.y == y && a.z == z; };
  if (chain.empty() || !here(chain.back())) chain.push_back({x, y, z, 0});
}

ChainAtom between(const ChainAtom& a, const ChainAtom& b, double share) {
  return {a.x + share * (b.x - a.x), a.y + share * (b.y - a.y), a.z + share * (b.z - a.z), 0};
}

// Opens a ring at the atom farthest along x: the atom gives way to a point on each of its edges,
// nearer to it than any other atom is along x. Runs from the one point to the other.
Chain opened_at_the_right(const Chain& ring) {
  const auto less_far = [](const ChainAtom& a, const ChainAtom& b) { return a.x < b.x; };
  const auto far = std::max_element(ring.begin(), ring.end(), less_far);
  const Chain turned = cycled(ring, static_cast<std::size_t>(far - ring.begin()));
  const auto next = std::max_element(turned.begin() + 1, turned.end(), less_far);
  const auto share_to = [&](const ChainAtom& neighbour) {
    return 0.5 * (turned[0].x - next->x) / (turned[0].x - neighbour.x);
  };
  Chain open{between(turned[0], turned[1], share_to(turned[1]))};
  open.insert(open.end(), turned.begin() + 1, turned.end());
  open.push_back(between(turned[0], turned.back(), share_to(turned.back())));
  return open;
}

struct Entry {
  const char* name;
  int ordinal;
  std::vector<int> coefficients;
  int strands;
  std::vector<int> word;
};

std::vector<Entry> braids() {
  return {
      {"3_1", 1, {1, -1, 1}, 2, {1, 1, 1}},
      {"4_1", 2, {1, -3, 1}, 3, {1, -2, 1, -2}},
      {"5_1", 3, {1, -1, 1, -1, 1}, 2, {1, 1, 1, 1, 1}},
      {"5_2", 4, {2, -3, 2}, 3, {1, 1, 1, 2, -1, 2}},
      {"6_1", 5, {2, -5, 2}, 4, {1, 1, 2, -1, -3, 2, -3}},
      {"6_2", 6, {1, -3, 3, -3, 1}, 3, {1, 1, 1, -2, 1, -2}},
      {"6_3", 7, {1, -3, 5, -3, 1}, 3, {1, 1, -2, 1, -2, -2}},
      {"7_1", 8, {1, -1, 1, -1, 1, -1, 1}, 2, {1, 1, 1, 1, 1, 1, 1}},
      {"7_2", 9, {3, -5, 3}, 4, {1, 1, 1, 2, -1, 2, 3, -2, 3}},
      {"7_3", 10, {2, -3, 3, -3, 2}, 3, {1, 1, 1, 1, 1, 2, -1, 2}},
      {"7_4", 11, {4, -7, 4}, 4, {1, 1, 2, -1, 2, 2, 3, -2, 3}},
      {"7_5", 12, {2, -4, 5, -4, 2}, 3, {1, 1, 1, 1, 2, -1, 2, 2}},
      {"7_6", 13, {1, -5, 7, -5, 1}, 4, {1, 1, -2, 1, 3, -2, 3}},
      {"7_7", 14, {1, -5, 9, -5, 1}, 4, {1, -2, 1, -2, 3, -2, 3}},
      {"8_1", 15, {3, -7, 3}, 5, {1, 1, 2, -1, 2, 3, -2, -4, 3, -4}},
      {"8_2", 16, {1, -3, 3, -3, 3, -3, 1}, 3, {1, 1, 1, 1, 1, -2, 1, -2}},
      {"8_3", 17, {4, -9, 4}, 5, {1, 1, 2, -1, -3, 2, -3, -4, 3, -4}},
      {"8_4", 18, {2, -5, 5, -5, 2}, 4, {1, 1, 1, -2, 1, -2, -3, 2, -3}},
      {"8_5", 19, {1, -3, 4, -5, 4, -3, 1}, 3, {1, 1, 1, -2, 1, 1, 1, -2}},
      {"8_6", 20, {2, -6, 7, -6, 2}, 4, {1, 1, 1, 1, 2, -1, -3, 2, -3}},
      {"8_7", 21, {1, -3, 5, -5, 5, -3, 1}, 3, {1, 1, 1, 1, -2, 1, -2, -2}},
      {"8_8", 22, {2, -6, 9, -6, 2}, 4, {1, 1, 1, 2, -1, -3, 2, -3, -3}},
      {"8_9", 23, {1, -3, 5, -7, 5, -3, 1}, 3, {1, 1, 1, -2, 1, -2, -2, -2}},
      {"8_10", 24, {1, -3, 6, -7, 6, -3, 1}, 3, {1, 1, 1, -2, 1, 1, -2, -2}},
      {"8_11", 25, {2, -7, 9, -7, 2}, 4, {1, 1, 2, -1, 2, 2, -3, 2, -3}},
      {"8_12", 26, {1, -7, 13, -7, 1}, 5, {1, -2, 1, 3, -2, -4, 3, -4}},
      {"8_13", 27, {2, -7, 11, -7, 2}, 4, {1, 1, -2, 1, -2, -2, -3, 2, -3}},
      {"8_14", 28, {2, -8, 11, -8, 2}, 4, {1, 1, 1, 2, -1, 2, -3, 2, -3}},
      {"8_15", 29, {3, -8, 11, -8, 3}, 4, {1, 1, -2, 1, 3, 2, 2, 2, 3}},
      {"8_16", 30, {1, -4, 8, -9, 8, -4, 1}, 3, {1, 1, -2, 1, 1, -2, 1, -2}},
      {"8_17", 31, {1, -4, 8, -11, 8, -4, 1}, 3, {1, 1, -2, 1, -2, 1, -2, -2}},
      {"8_18", 32, {1, -5, 10, -13, 10, -5, 1}, 3, {1, -2, 1, -2, 1, -2, 1, -2}},
      {"8_19", 33, {1, -1, 0, 1, 0, -1, 1}, 3, {1, 1, 1, 2, 1, 1, 1, 2}},
      {"8_20", 34, {1, -2, 3, -2, 1}, 3, {1, 1, 1, -2, -1, -1, -1, -2}},
      {"8_21", 35, {1, -4, 5, -4, 1}, 3, {1, 1, 1, 2, -1, -1, 2, 2}},
      {"9_1", 36, {1, -1, 1, -1, 1, -1, 1, -1, 1}, 2, {1, 1, 1, 1, 1, 1, 1, 1, 1}},
      {"9_42", 39, {1, -2, 1, -2, 1}, 4, {1, 1, 1, -2, -1, -1, 3, -2, 3}},
      {"10_124", 39, {1, -1, 0, 1, -1, 1, 0, -1, 1}, 3, {1, 2, 1, 2, 1, 2, 1, 2, 1, 2}},
  };
}

}  // namespace

Chain braid_closure(int strands, const std::vector<int>& word) {
  const double height = static_cast<double>(word.size());
  Chain ring;
  int place = 1;
  do {
    append(ring, place, 0, 0);
    for (std::size_t level = 0; level < word.size(); ++level) {
      const int left = std::abs(word[level]);
      if (place != left && place != left + 1) continue;
      const bool rightwards = place == left;
      const double y = static_cast<double>(level);
      append(ring, place, y, 0);
      append(ring, left + 0.5, y + 0.5, rightwards == (word[level] > 0) ? 0.5 : -0.5);
      place = rightwards ? left + 1 : left;
      append(ring, place, y + 1, 0);
    }
    const double margin = strands + 1 - place;
    append(ring, place, height + margin, 0);
    append(ring, strands + margin, height + margin, 0);
    append(ring, strands + margin, -margin, 0);
    append(ring, place, -margin, 0);
  } while (place != 1);
  Random random(word.size());
  const auto aside = [&] { return 0.1 * random.uniform() - 0.05; };
  for (ChainAtom& a : ring) a = {a.x + aside(), a.y + aside(), a.z + aside(), 0};
  number_atoms(ring);
  return ring;
}

Chain unknot(int atoms) {
  Chain ring;
  for (int k = 0; k < atoms; ++k) {
    const double t = 2 * std::numbers::pi * k / atoms;
    ring.push_back({3 * std::cos(t), 3 * std::sin(t), std::cos(5 * t), k + 1});
  }
  return ring;
}

Chain trefoil_right() { return braid_closure(2, {1, 1, 1}); }
Chain trefoil_left() { return braid_closure(2, {-1, -1, -1}); }
Chain figure_eight_polygon() { return braid_closure(3, {1, -2, 1, -2}); }
Chain cinquefoil_right() { return braid_closure(2, {1, 1, 1, 1, 1}); }

Chain connected_sum(const Chain& a, const Chain& b) {
  const auto half_turn = [](const ChainAtom& p) { return ChainAtom{-p.x, p.y, -p.z, p.id}; };
  const auto less_far = [](const ChainAtom& p, const ChainAtom& q) { return p.x < q.x; };
  Chain left = opened_at_the_right(rotated(a, 1));
  Chain right = opened_at_the_right(rotated(b, 2));
  std::transform(right.begin(), right.end(), right.begin(), half_turn);
  const double end_of_left = std::max_element(left.begin(), left.end(), less_far)->x;
  const double start_of_right = std::min_element(right.begin(), right.end(), less_far)->x;
  right = shifted(right, end_of_left - start_of_right + 2, 0, 0);
  left.insert(left.end(), right.begin(), right.end());
  number_atoms(left);
  return left;
}

std::vector<KnownKnot> known_knots() {
  std::vector<KnownKnot> knots{{"0_1", 0, {1}, unknot()}};
  for (const Entry& e : braids()) {
    knots.push_back({e.name, e.ordinal, e.coefficients, braid_closure(e.strands, e.word)});
  }
  const Chain right = trefoil_right(), left = trefoil_left(), eight = figure_eight_polygon();
  const Chain three_twist = braid_closure(3, {1, 1, 1, 2, -1, 2});
  knots.push_back({"3_1#3_1 (granny)", 34, {1, -2, 3, -2, 1}, connected_sum(right, right)});
  knots.push_back({"3_1#3_1 (square)", 34, {1, -2, 3, -2, 1}, connected_sum(right, left)});
  knots.push_back({"3_1#4_1", 35, {1, -4, 5, -4, 1}, connected_sum(right, eight)});
  knots.push_back(
      {"3_1#5_1", 37, {1, -2, 3, -3, 3, -2, 1}, connected_sum(left, cinquefoil_right())});
  knots.push_back({"3_1#5_2", 38, {2, -5, 7, -5, 2}, connected_sum(right, three_twist)});
  knots.push_back({"4_1#4_1", 39, {1, -6, 11, -6, 1}, connected_sum(eight, eight)});
  return knots;
}

std::vector<Reshaped> reshaped(const Chain& ring, std::uint64_t seed) {
  Random random(seed);
  const auto start = static_cast<std::size_t>(random.below(static_cast<int>(ring.size())));
  return {{"as made", ring},
          {"turned", rotated(ring, seed)},
          {"turned otherwise", rotated(ring, seed + 1000)},
          {"reversed", reversed(ring)},
          {"begun elsewhere", cycled(ring, start)},
          {"cut in two", subdivided(ring, 2)},
          {"all at once", rotated(cycled(reversed(subdivided(ring, 3)), start), seed + 2000)}};
}

}  // namespace support
