#include "korvex/jones.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <unordered_map>
#include <utility>

#include "engine/diagram/place.hpp"
#include "engine/invariants/of_codes.hpp"
#include "engine/invariants/sweep.hpp"
#include "engine/run/parallel.hpp"

namespace korvex {
namespace {

constexpr std::size_t kWidest = 24;

// A Laurent polynomial in x = A^2, A the variable of the Kauffman bracket.
struct Bracket {
  std::int32_t lowest = 0;
  std::vector<std::int64_t> coefficients;
};

// How the points of the frontier are joined in the disk, without crossings: bit k is set where the
// strand from point k ends at a later one.
using Matching = std::uint32_t;
using Partners = std::array<std::uint8_t, kWidest + 2>;
using Brackets = std::unordered_map<Matching, Bracket>;

class BracketSum {
 public:
  explicit BracketSum(const Run& run) : run_(run) {}

  // False when a coefficient leaves 64 bits.
  bool take(const SweepPlan& plan) {
    states_ = {{Matching{0}, Bracket{0, {1}}}};
    width_ = 0;
    for (const SweepStep& step : plan.steps) {
      next_.clear();
      for (const auto& [matching, bracket] : states_) take(step, matching, bracket);
      if (overflow_) return false;
      std::swap(states_, next_);
      if (step.kind == SweepStep::Kind::kCup) width_ += 2;
      if (step.kind == SweepStep::Kind::kCap) width_ -= 2;
    }
    return true;
  }

  const Bracket& result() { return states_[0]; }

 private:
  void take(const SweepStep& step, Matching matching, const Bracket& bracket) {
    const std::size_t first = at(step.position);
    const std::size_t second = first + 1 == width_ ? 0 : first + 1;
    switch (step.kind) {
      case SweepStep::Kind::kCup: {
        const Matching below = matching & ((Matching{1} << first) - 1);
        const Matching above = matching >> first << (first + 2);
        add(below | Matching{1} << first | above, bracket, 0, 1);
        break;
      }
      case SweepStep::Kind::kSwap: {
        // With the over-strand turned counter-clockwise the regions joined first are those beside
        // the two points where the first strand passes over, those before and behind otherwise.
        add(matching, bracket, step.first_over ? 0 : 1, 1);
        Partners partners = decode(matching);
        const std::int32_t shift = step.first_over ? 1 : 0;
        if (partners[first] == second) {
          add_loop(matching, bracket, shift);
          break;
        }
        join_partners(partners, first, second);
        partners[first] = static_cast<std::uint8_t>(second);
        partners[second] = static_cast<std::uint8_t>(first);
        add(encode(partners, width_, width_), bracket, shift, 1);
        break;
      }
      case SweepStep::Kind::kCap: {
        Partners partners = decode(matching);
        const bool is_loop = partners[first] == second;
        if (!is_loop) join_partners(partners, first, second);
        const Matching rest = encode(partners, first, second);
        // The last loop to close is the unknot, which counts 1.
        if (is_loop && width_ > 2)
          add_loop(rest, bracket, 0);
        else
          add(rest, bracket, 0, 1);
        break;
      }
    }
  }

  Partners decode(Matching matching) const {
    Partners partners{};
    std::array<std::uint8_t, kWidest + 2> open{};
    std::size_t depth = 0;
    for (std::size_t k = 0; k < width_; ++k) {
      if (matching >> k & 1) {
        open[depth++] = static_cast<std::uint8_t>(k);
      } else {
        partners[k] = open[--depth];
        partners[partners[k]] = static_cast<std::uint8_t>(k);
      }
    }
    return partners;
  }

  // Without the points at two positions, if they are on the list.
  Matching encode(const Partners& partners, std::size_t without, std::size_t and_without) const {
    Matching matching = 0;
    std::size_t place = 0;
    for (std::size_t k = 0; k < width_; ++k) {
      if (k == without || k == and_without) continue;
      if (partners[k] > k) matching |= Matching{1} << place;
      ++place;
    }
    return matching;
  }

  static void join_partners(Partners& partners, std::size_t first, std::size_t second) {
    const std::uint8_t a = partners[first];
    const std::uint8_t b = partners[second];
    partners[a] = b;
    partners[b] = a;
  }

  void add_loop(Matching matching, const Bracket& bracket, std::int32_t shift) {
    add(matching, bracket, shift + 1, -1);
    add(matching, bracket, shift - 1, -1);
  }

  void add(Matching matching, const Bracket& bracket, std::int32_t shift, std::int64_t sign) {
    throw_if_cancelled(run_);
    Bracket& sum = next_[matching];
    const std::int32_t lowest = bracket.lowest + shift;
    if (sum.coefficients.empty()) sum.lowest = lowest;
    if (lowest < sum.lowest) {
      sum.coefficients.insert(sum.coefficients.begin(), at(sum.lowest - lowest), 0);
      sum.lowest = lowest;
    }
    const std::size_t offset = at(lowest - sum.lowest);
    const std::size_t size = offset + bracket.coefficients.size();
    if (sum.coefficients.size() < size) sum.coefficients.resize(size, 0);
    for (std::size_t k = 0; k < bracket.coefficients.size(); ++k) {
      std::int64_t& coefficient = sum.coefficients[offset + k];
      const std::int64_t old = coefficient;
      overflow_ |= sign > 0 ? __builtin_add_overflow(old, bracket.coefficients[k], &coefficient)
                            : __builtin_sub_overflow(old, bracket.coefficients[k], &coefficient);
    }
  }

  const Run& run_;
  std::size_t width_ = 0;
  Brackets states_;
  Brackets next_;
  bool overflow_ = false;
};

}  // namespace

std::optional<JonesPolynomial> jones(const GaussCode& closed, const Run& run) {
  if (closed.size() / 2 > kMostCrossingsToSweep) return std::nullopt;
  const SweepPlan plan = plan_sweep(closed, run);
  if (plan.widest > kWidest) return std::nullopt;
  BracketSum sum(run);
  if (!sum.take(plan)) return std::nullopt;
  std::int32_t writhe = 0;
  for (const Passage& passage : closed)
    if (passage.over) writhe += passage.positive ? 1 : -1;
  const auto crossings = static_cast<std::int32_t>(closed.size() / 2);
  const Bracket& bracket = sum.result();
  JonesPolynomial polynomial;
  for (std::size_t k = bracket.coefficients.size(); k-- > 0;) {
    if (bracket.coefficients[k] == 0) continue;
    // The power of A is that of -A^-3 to the writhe, and t is A^-4.
    const std::int32_t power =
        2 * (bracket.lowest + static_cast<std::int32_t>(k)) - crossings - 3 * writhe;
    const std::int64_t sign = writhe % 2 == 0 ? 1 : -1;
    polynomial.push_back({-power / 4, sign * bracket.coefficients[k]});
  }
  return polynomial;
}

std::optional<JonesPolynomial> jones(const Diagram& diagram, const Run& run) {
  return jones(diagram.code(), run);
}

}  // namespace korvex
