// The determinant of the equations between the seeds of a colouring, for one value of t or several
// at once.
//
// Every arc known so far is a linear form in the seeds but the first, which is 0. An equation is
// solved for one of its seeds as soon as it is met, so that forms are no longer than the seeds that
// are open at a time: few, since a colouring finishes one part of a diagram before the next.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/diagram/place.hpp"
#include "engine/invariants/arc_colouring.hpp"
#include "engine/run/parallel.hpp"

namespace korvex {

// Value is a number of a field or a tuple of numbers; Field adds, subtracts, multiplies and inverts
// it, and tells which are 0 and which have an inverse.
template <class Value, class Field>
class SeedElimination {
 public:
  enum class Outcome {
    kDone,
    kZero,   // the determinant is 0
    kStuck,  // it is 0 in some components, which have to be told apart
  };

  explicit SeedElimination(const Field& field = {}) : field_(field) {}

  // Takes the determinant for t = `unit`. O(arcs w + seeds w f) for w seeds open at a time and f
  // forms still needed then. Asks before each equation whether to stop.
  Outcome take(const ArcColouring& colouring, const Value& unit, const Value& inverse_unit,
               const Run& run) {
    start(colouring);
    for (const ColouringStep& step : colouring.steps()) {
      using Kind = ColouringStep::Kind;
      const Value& t = step.positive ? unit : inverse_unit;
      const Value& inverse_t = step.positive ? inverse_unit : unit;
      if (step.kind == Kind::kSeed) {
        plant(step.out);
        continue;
      }
      if (step.kind == Kind::kForward) combine(step.out, step.over, step.in, t);
      if (step.kind == Kind::kBackward) combine(step.in, step.over, step.out, inverse_t);
      for (const std::int32_t arc : {step.in, step.out, step.over}) release(arc);
      if (step.kind != Kind::kEquation) continue;
      if (solved_ + 1 == seeds_) break;  // the last equation follows from the others
      throw_if_cancelled(run);
      read_equation(step, t);
      if (const Outcome outcome = solve(); outcome != Outcome::kDone) return outcome;
    }
    if (odd_order()) numerator_ = field_.subtract(Value{}, numerator_);
    return Outcome::kDone;
  }

  // The determinant is their quotient.
  const Value& numerator() const { return numerator_; }
  const Value& denominator() const { return denominator_; }

 private:
  // Below so many entries it costs less to multiply all forms by a pivot than to invert it.
  static constexpr std::size_t kWorthAnInverse = 96;

  Value* form(std::int32_t arc) { return &entries_[form_[at(arc)] * stride_]; }

  void start(const ArcColouring& colouring) {
    constexpr std::size_t kNarrow = 8;
    const auto arcs = at(colouring.arcs());
    seeds_ = at(colouring.seeds());
    planted_ = 0;
    solved_ = 0;
    solved_for_.assign(seeds_, 0);
    stride_ = kNarrow;
    open_ = 0;
    free_slots_.clear();
    seed_.clear();
    planted_at_.clear();
    entries_.clear();
    form_.assign(arcs, 0);
    free_forms_.clear();
    live_.clear();
    place_.clear();
    numerator_ = denominator_ = scale_ = field_.one();
    uses_.assign(arcs, 0);
    for (const ColouringStep& step : colouring.steps()) {
      if (step.kind == ColouringStep::Kind::kSeed) continue;
      for (const std::int32_t arc : {step.in, step.out, step.over}) ++uses_[at(arc)];
    }
  }

  Value* new_form(std::int32_t arc) {
    std::size_t& number = form_[at(arc)];
    if (free_forms_.empty()) {
      number = place_.size();
      place_.push_back(0);
      entries_.resize(entries_.size() + stride_);
    } else {
      number = free_forms_.back();
      free_forms_.pop_back();
    }
    place_[number] = live_.size();
    live_.push_back(number);
    return form(arc);
  }

  void release(std::int32_t arc) {
    if (--uses_[at(arc)] > 0) return;
    const std::size_t number = form_[at(arc)];
    const std::size_t moved = live_.back();
    live_[place_[number]] = moved;
    place_[moved] = place_[number];
    live_.pop_back();
    free_forms_.push_back(number);
  }

  // A slot for one seed more in all forms.
  std::size_t new_slot() {
    if (!free_slots_.empty()) {
      const std::size_t slot = free_slots_.back();
      free_slots_.pop_back();
      return slot;
    }
    if (open_ == stride_) widen();
    for (const std::size_t number : live_) entries_[number * stride_ + open_] = Value{};
    seed_.push_back(0);
    planted_at_.push_back(Value{});
    return open_++;
  }

  void widen() {
    std::vector<Value> wider(2 * entries_.size());
    for (const std::size_t number : live_)
      std::copy_n(&entries_[number * stride_], open_, &wider[2 * number * stride_]);
    entries_ = std::move(wider);
    stride_ *= 2;
  }

  void plant(std::int32_t arc) {
    if (planted_ == 0) {
      std::fill_n(new_form(arc), open_, Value{});
    } else {
      const std::size_t slot = new_slot();
      Value* const entries = new_form(arc);
      std::fill_n(entries, open_, Value{});
      entries[slot] = field_.one();
      seed_[slot] = planted_;
      planted_at_[slot] = scale_;
    }
    ++planted_;
  }

  // new = over + unit (old - over)
  void combine(std::int32_t new_arc, std::int32_t over_arc, std::int32_t old_arc,
               const Value& unit) {
    Value* const result = new_form(new_arc);
    const Value* const over = form(over_arc);
    const Value* const old = form(old_arc);
    for (std::size_t k = 0; k < open_; ++k)
      result[k] = field_.add(over[k], field_.multiply(unit, field_.subtract(old[k], over[k])));
  }

  void read_equation(const ColouringStep& step, const Value& unit) {
    const Value* const in = form(step.in);
    const Value* const out = form(step.out);
    const Value* const over = form(step.over);
    equation_.resize(open_);
    for (std::size_t k = 0; k < open_; ++k)
      equation_[k] = field_.subtract(field_.subtract(out[k], over[k]),
                                     field_.multiply(unit, field_.subtract(in[k], over[k])));
  }

  // Solves the equation for a seed and puts the solution into all forms.
  Outcome solve() {
    std::size_t slot = open_;
    while (slot > 0 && !field_.has_inverse(equation_[slot - 1])) --slot;
    if (slot == 0) {
      const auto is_zero = [&](const Value& value) { return field_.is_zero(value); };
      const bool zero = std::all_of(equation_.begin(), equation_.end(), is_zero);
      return zero ? Outcome::kZero : Outcome::kStuck;
    }
    --slot;
    const Value pivot = equation_[slot];
    numerator_ = field_.multiply(numerator_, field_.multiply(pivot, planted_at_[slot]));
    denominator_ = field_.multiply(denominator_, scale_);
    if (live_.size() * open_ < kWorthAnInverse)
      substitute_scaled(slot, pivot);
    else
      substitute_divided(slot, field_.inverse(pivot));
    solved_for_[solved_++] = seed_[slot];
    free_slots_.push_back(slot);
    return Outcome::kDone;
  }

  // Every form becomes `pivot` times what it stands for; so do seeds planted from here on.
  void substitute_scaled(std::size_t slot, const Value& pivot) {
    for (const std::size_t number : live_) {
      Value* const entries = &entries_[number * stride_];
      const Value share = entries[slot];
      for (std::size_t k = 0; k < open_; ++k)
        entries[k] = field_.subtract(field_.multiply(pivot, entries[k]),
                                     field_.multiply(share, equation_[k]));
    }
    scale_ = field_.multiply(scale_, pivot);
  }

  void substitute_divided(std::size_t slot, const Value& inverse_pivot) {
    for (Value& value : equation_) value = field_.multiply(value, inverse_pivot);
    for (const std::size_t number : live_) {
      Value* const entries = &entries_[number * stride_];
      const Value share = entries[slot];
      if (field_.is_zero(share)) continue;
      for (std::size_t k = 0; k < open_; ++k)
        entries[k] = field_.subtract(entries[k], field_.multiply(share, equation_[k]));
    }
  }

  // Whether the seeds in the order of their equations are an odd permutation.
  bool odd_order() {
    bool odd = false;
    for (std::size_t k = 0; k < solved_; ++k) {
      while (solved_for_[k] != k + 1) {
        std::swap(solved_for_[k], solved_for_[solved_for_[k] - 1]);
        odd = !odd;
      }
    }
    return odd;
  }

  Field field_;
  std::size_t seeds_ = 0;
  std::size_t planted_ = 0;
  std::size_t solved_ = 0;
  std::vector<std::size_t> solved_for_;  // seed of each equation so far

  // Forms hold `scale` times what they stand for, in units of the seeds times the scale that held
  // when they were planted.
  Value scale_{};
  Value numerator_{};
  Value denominator_{};

  std::size_t open_ = 0;                 // slots in use or used before
  std::vector<std::size_t> free_slots_;  // of these, the ones whose seed was solved for
  std::vector<std::size_t> seed_;        // in each slot
  std::vector<Value> planted_at_;        // scale when it was planted

  std::size_t stride_ = 0;
  std::vector<Value> entries_;           // form by form
  std::vector<std::size_t> form_;        // of each arc
  std::vector<std::int32_t> uses_;       // of each arc, still to come
  std::vector<std::size_t> free_forms_;  // no longer needed
  std::vector<std::size_t> live_;        // all others
  std::vector<std::size_t> place_;       // of each form in live_
  std::vector<Value> equation_;
};

}  // namespace korvex
