#include "korvex/homfly.hpp"

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

constexpr std::size_t kMostStrands = 8;

// A term's exponents in one number, ordered as pairs (a, z).
using Exponents = std::int64_t;

constexpr Exponents kOneOfA = Exponents{1} << 32;

constexpr Exponents exponents(std::int32_t a, std::int32_t z) { return a * kOneOfA + z; }
constexpr std::int32_t exponent_of_z(Exponents e) { return static_cast<std::int32_t>(e); }
constexpr std::int32_t exponent_of_a(Exponents e) {
  return static_cast<std::int32_t>((e - exponent_of_z(e)) / kOneOfA);
}

struct Term {
  Exponents exponents;
  std::int64_t coefficient;
};
using Terms = std::vector<Term>;  // by rising exponents

struct Monomial {
  Exponents exponents = 0;
  bool negative = false;
};

constexpr Monomial operator*(const Monomial& p, const Monomial& q) {
  return {p.exponents + q.exponents, p.negative != q.negative};
}

// What the disk holds: which end each strand that comes in goes out by. Ends have slots; the slot
// of the way out is a hexadecimal digit at the place of the slot of the way in. A state stands for
// the layered tangle: each strand an unknotted arc in a layer of its own, in the order that the
// sweep keeps for all states.
using Tangle = std::uint32_t;
using States = std::unordered_map<Tangle, Terms>;

constexpr Tangle out_of(Tangle tangle, std::uint8_t in) { return tangle >> (4 * in) & 0xf; }
constexpr Tangle with_out(Tangle tangle, std::uint8_t in, Tangle out) {
  return (tangle & ~(Tangle{0xf} << (4 * in))) | out << (4 * in);
}

// Where a strand meets the boundary of the disk.
struct StrandEnd {
  std::uint8_t slot;
  bool leaves;  // the curve leaves the disk here
};

// Strands by their slots of coming in, from the top layer down.
struct Layers {
  std::array<std::uint8_t, kMostStrands> strand{};
  std::size_t count = 0;

  std::size_t find(std::uint8_t slot) const {
    return static_cast<std::size_t>(std::find(strand.begin(), strand.begin() + count, slot) -
                                    strand.begin());
  }
  void append(std::uint8_t slot) { strand[count++] = slot; }
  void remove(std::uint8_t slot) {
    std::copy(strand.begin() + find(slot) + 1, strand.begin() + count, strand.begin() + find(slot));
    --count;
  }
  // Moves a strand to another layer; those between move by one.
  void move(std::size_t from, std::size_t to) {
    const auto begin = strand.begin();
    if (from < to) std::rotate(begin + from, begin + from + 1, begin + to + 1);
    if (to < from) std::rotate(begin + to, begin + from, begin + from + 1);
  }
};

class SkeinSum {
 public:
  explicit SkeinSum(const Run& run) : run_(run) {}

  // False when a coefficient leaves 64 bits.
  bool take(const SweepPlan& plan) {
    states_ = {{Tangle{0}, Terms{{0, 1}}}};
    for (const SweepStep& step : plan.steps) {
      take(step);
      if (overflow_) return false;
    }
    return true;
  }

  const Terms& result() { return states_[0]; }

 private:
  void take(const SweepStep& step) {
    next_.clear();
    const std::size_t first = at(step.position);
    const std::size_t second = first + 1 >= frontier_.size() ? 0 : first + 1;
    switch (step.kind) {
      case SweepStep::Kind::kCup:
        add_strand(first, step.first_leaves);
        return;
      case SweepStep::Kind::kSwap:
        find_places();
        for (const auto& [tangle, terms] : states_) cross(step, first, second, tangle, terms);
        std::swap(frontier_[first], frontier_[second]);
        break;
      case SweepStep::Kind::kCap:
        find_places();
        for (const auto& [tangle, terms] : states_) close(first, second, tangle, terms);
        remove_points(first, second);
        break;
    }
    std::swap(states_, next_);
  }

  static std::uint8_t free_slot(std::uint32_t& used) {
    std::uint8_t slot = 0;
    while (used >> slot & 1) ++slot;
    used |= 1u << slot;
    return slot;
  }

  // The new strand crosses nothing and so may have any layer.
  void add_strand(std::size_t first, bool first_leaves) {
    const std::uint8_t in = free_slot(used_in_);
    const std::uint8_t out = free_slot(used_out_);
    layers_.append(in);
    const StrandEnd entry{in, false};
    const StrandEnd exit{out, true};
    const auto place = frontier_.begin() + static_cast<std::ptrdiff_t>(first);
    frontier_.insert(place, {first_leaves ? exit : entry, first_leaves ? entry : exit});
    for (auto& [tangle, terms] : states_) next_[with_out(tangle, in, out)] = std::move(terms);
    std::swap(states_, next_);
  }

  void remove_points(std::size_t first, std::size_t second) {
    for (const StrandEnd& point : {frontier_[first], frontier_[second]}) {
      (point.leaves ? used_out_ : used_in_) &= ~(1u << point.slot);
      if (!point.leaves) layers_.remove(point.slot);
    }
    frontier_.erase(frontier_.begin() + static_cast<std::ptrdiff_t>(std::max(first, second)));
    frontier_.erase(frontier_.begin() + static_cast<std::ptrdiff_t>(std::min(first, second)));
  }

  void find_places() {
    for (std::size_t k = 0; k < frontier_.size(); ++k)
      (frontier_[k].leaves ? place_out_ : place_in_)[frontier_[k].slot] = k;
  }

  std::uint8_t strand_at(const StrandEnd& point, Tangle tangle) const {
    if (!point.leaves) return point.slot;
    for (std::size_t k = 0; k < layers_.count; ++k)
      if (out_of(tangle, layers_.strand[k]) == point.slot) return layers_.strand[k];
    return 0;
  }

  // A crossing of the strands at two neighbouring points. Where the upper layer passes over, the
  // tangle stays layered. Elsewhere the crossing is changed and smoothed.
  void cross(const SweepStep& step, std::size_t first, std::size_t second, Tangle tangle,
             const Terms& terms) {
    const StrandEnd& p = frontier_[first];
    const StrandEnd& q = frontier_[second];
    const std::uint8_t strand_p = strand_at(p, tangle);
    const std::uint8_t strand_q = strand_at(q, tangle);
    const bool p_above = layers_.find(strand_p) < layers_.find(strand_q);
    if (strand_p == strand_q || p_above == step.first_over) {
      add(tangle, {}, terms);
      return;
    }
    add(tangle, changed(step.positive), terms);
    const Monomial smooth = smoothed(step.positive);
    if (p.leaves && q.leaves) {
      add(with_out(with_out(tangle, strand_p, q.slot), strand_q, p.slot), smooth, terms);
    } else if (!p.leaves && !q.leaves) {
      // The strands keep their layers and exchange their slots; the layers have to be set right.
      // The points have changed places already when that is done.
      Layers layers = layers_;
      std::swap(layers.strand[layers_.find(strand_p)], layers.strand[layers_.find(strand_q)]);
      const Tangle crossed = with_out(with_out(tangle, p.slot, out_of(tangle, q.slot)), q.slot,
                                      out_of(tangle, p.slot));
      std::swap(place_in_[p.slot], place_in_[q.slot]);
      relayer(crossed, layers, layers_, smooth,
              [&](Tangle t, const Monomial& m) { add(t, m, terms); });
      std::swap(place_in_[p.slot], place_in_[q.slot]);
    } else {
      const StrandEnd& entry = p.leaves ? q : p;
      const StrandEnd& exit = p.leaves ? p : q;
      join(tangle, entry, exit, smooth,
           [&](Tangle t, const Monomial& m) { add(with_out(t, entry.slot, exit.slot), m, terms); });
    }
  }

  // The strand that leaves at one point goes on as the one that enters at its neighbour.
  void close(std::size_t first, std::size_t second, Tangle tangle, const Terms& terms) {
    const bool first_leaves = frontier_[first].leaves;
    const StrandEnd& entry = frontier_[first_leaves ? second : first];
    const StrandEnd& exit = frontier_[first_leaves ? first : second];
    const auto without = [&](Tangle t) { return with_out(t, entry.slot, 0); };
    if (out_of(tangle, entry.slot) != exit.slot) {
      join(tangle, entry, exit, {},
           [&](Tangle t, const Monomial& m) { add(without(t), m, terms); });
    } else if (frontier_.size() == 2) {
      add(without(tangle), {}, terms);
    } else {
      // A circle beside something is worth (a - 1/a) / z.
      add(without(tangle), {exponents(1, -1), false}, terms);
      add(without(tangle), {exponents(-1, -1), true}, terms);
    }
  }

  // Factors of the tangles that a crossing of the given sign is equal to: the changed one and the
  // smoothed one.
  static constexpr Monomial changed(bool positive) {
    return {exponents(positive ? -2 : 2, 0), false};
  }
  static constexpr Monomial smoothed(bool positive) {
    return {exponents(positive ? -1 : 1, 1), !positive};
  }

  // Leads the strand that leaves at `exit` on into the one that enters at `entry`, another. An arc
  // made of two in neighbouring layers is unknotted, so the second is brought next to the first.
  template <class Use>
  void join(Tangle tangle, const StrandEnd& entry, const StrandEnd& exit, const Monomial& factor,
            const Use& use) {
    const std::uint8_t before = strand_at(exit, tangle);
    const std::size_t from = layers_.find(entry.slot);
    const std::size_t to = layers_.find(before);
    Layers layers = layers_;
    layers.move(from, from < to ? to - 1 : to + 1);
    relayer(tangle, layers_, layers, factor, [&](Tangle t, const Monomial& m) {
      use(with_out(t, before, out_of(t, entry.slot)), m);
    });
  }

  // Writes the tangle with the given layers as a sum of tangles with others, exchanging neighbours.
  template <class Use>
  void relayer(Tangle tangle, Layers layers, const Layers& wanted, const Monomial& factor,
               const Use& use) {
    for (std::size_t k = 0; k + 1 < layers.count;) {
      const std::uint8_t upper = layers.strand[k];
      const std::uint8_t lower = layers.strand[k + 1];
      if (wanted.find(upper) < wanted.find(lower)) {
        ++k;
        continue;
      }
      std::swap(layers.strand[k], layers.strand[k + 1]);
      if (const Meeting meeting = meeting_of(tangle, upper, lower); meeting != Meeting::kNone) {
        const bool positive = meeting == Meeting::kPositive;
        const Tangle smooth =
            with_out(with_out(tangle, upper, out_of(tangle, lower)), lower, out_of(tangle, upper));
        relayer(smooth, layers, wanted, factor * smoothed(positive), use);
        relayer(tangle, layers, wanted, factor * changed(positive), use);
        return;
      }
      k = k > 0 ? k - 1 : 0;
    }
    use(tangle, factor);
  }

  enum class Meeting { kNone, kPositive, kNegative };

  // Chords of the disk cross when their ends interleave. What comes in on the right of the upper
  // strand crosses it to the left, which is a positive crossing.
  Meeting meeting_of(Tangle tangle, std::uint8_t upper, std::uint8_t lower) const {
    const std::size_t from = place_in_[upper];
    const std::size_t to = place_out_[out_of(tangle, upper)];
    const auto on_the_right = [&](std::size_t place) {
      return from < to ? from < place && place < to : place > from || place < to;
    };
    const bool in = on_the_right(place_in_[lower]);
    const bool out = on_the_right(place_out_[out_of(tangle, lower)]);
    if (in == out) return Meeting::kNone;
    return in ? Meeting::kPositive : Meeting::kNegative;
  }

  void add(Tangle tangle, const Monomial& factor, const Terms& terms) {
    throw_if_cancelled(run_);
    Terms& sum = next_[tangle];
    merged_.clear();
    merged_.reserve(sum.size() + terms.size());
    auto old = sum.begin();
    for (const Term& term : terms) {
      const Exponents place = term.exponents + factor.exponents;
      while (old != sum.end() && old->exponents < place) merged_.push_back(*old++);
      std::int64_t coefficient = 0;
      if (old != sum.end() && old->exponents == place) coefficient = old++->coefficient;
      overflow_ |= factor.negative
                       ? __builtin_sub_overflow(coefficient, term.coefficient, &coefficient)
                       : __builtin_add_overflow(coefficient, term.coefficient, &coefficient);
      if (coefficient != 0) merged_.push_back({place, coefficient});
    }
    merged_.insert(merged_.end(), old, sum.end());
    std::swap(sum, merged_);
  }

  const Run& run_;
  std::vector<StrandEnd> frontier_;
  std::uint32_t used_in_ = 0;  // slots
  std::uint32_t used_out_ = 0;
  Layers layers_;
  std::array<std::size_t, kMostStrands> place_in_{};  // on the frontier, of each slot
  std::array<std::size_t, kMostStrands> place_out_{};
  States states_;
  States next_;
  Terms merged_;
  bool overflow_ = false;
};

}  // namespace

std::optional<HomflyPolynomial> homfly(const GaussCode& closed, const Run& run) {
  if (closed.size() / 2 > kMostCrossingsToSweep) return std::nullopt;
  const SweepPlan plan = plan_sweep(closed, run);
  if (plan.widest > 2 * kMostStrands) return std::nullopt;
  SkeinSum sum(run);
  if (!sum.take(plan)) return std::nullopt;
  HomflyPolynomial polynomial;
  for (const Term& term : sum.result())
    polynomial.push_back(
        {exponent_of_a(term.exponents), exponent_of_z(term.exponents), term.coefficient});
  return polynomial;
}

std::optional<HomflyPolynomial> homfly(const Diagram& diagram, const Run& run) {
  return homfly(diagram.code(), run);
}

}  // namespace korvex
