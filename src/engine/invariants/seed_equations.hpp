// The equations between the seeds of a colouring, for one value of t or several at once.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/invariants/colouring.hpp"

namespace korvex {

// Value is a number or a tuple of numbers of a field; Field adds, subtracts and multiplies it.
template <class Value, class Field>
class SeedEquations {
 public:
  explicit SeedEquations(const Field& field = {}) : field_(field) {}

  // Finds the equations for t = `unit`. O(arcs seeds), less where forms are short lived.
  void find(const Colouring& colouring, const Value& unit, const Value& inverse_unit) {
    arcs_ = static_cast<std::size_t>(colouring.arcs());
    width_ = static_cast<std::size_t>(std::max(colouring.seeds() - 1, 0));
    equations_.clear();
    if (width_ == 0) return;
    count_uses(colouring.steps());
    form_.assign(arcs_, 0);
    free_.clear();
    forms_.clear();
    std::size_t seeds = 0;
    for (const ColouringStep& step : colouring.steps()) {
      using Kind = ColouringStep::Kind;
      const Value& t = step.positive ? unit : inverse_unit;
      const Value& inverse_t = step.positive ? inverse_unit : unit;
      if (step.kind == Kind::kSeed) {
        Value* const form = new_form(step.out);
        if (seeds > 0) form[seeds - 1] = field_.one();
        ++seeds;
        continue;
      }
      if (step.kind == Kind::kForward) combine(step.out, step.over, step.in, t, seeds - 1);
      if (step.kind == Kind::kBackward) combine(step.in, step.over, step.out, inverse_t, seeds - 1);
      if (step.kind == Kind::kEquation) add_equation(step, t);
      for (const std::int32_t arc : {step.in, step.out, step.over}) release(arc);
    }
  }

  // Unknowns: the seeds but the first.
  std::size_t width() const { return width_; }
  // As many equations as unknowns, row by row.
  const std::vector<Value>& equations() const { return equations_; }

 private:
  // Each arc known so far is a linear form in the seeds but the first, which is set to 0.
  Value* form(std::int32_t arc) {
    return forms_.data() + form_[static_cast<std::size_t>(arc)] * width_;
  }

  void count_uses(const std::vector<ColouringStep>& steps) {
    uses_.assign(arcs_, 0);
    for (const ColouringStep& step : steps) {
      if (step.kind == ColouringStep::Kind::kSeed) continue;
      for (const std::int32_t arc : {step.in, step.out, step.over})
        ++uses_[static_cast<std::size_t>(arc)];
    }
  }

  Value* new_form(std::int32_t arc) {
    std::size_t& place = form_[static_cast<std::size_t>(arc)];
    if (free_.empty()) {
      place = forms_.size() / width_;
      forms_.resize(forms_.size() + width_, Value{});
    } else {
      place = free_.back();
      free_.pop_back();
      std::fill_n(form(arc), width_, Value{});
    }
    return form(arc);
  }

  void release(std::int32_t arc) {
    if (--uses_[static_cast<std::size_t>(arc)] == 0)
      free_.push_back(form_[static_cast<std::size_t>(arc)]);
  }

  // new = over + unit (old - over), in the seeds known so far
  void combine(std::int32_t new_arc, std::int32_t over_arc, std::int32_t old_arc, const Value& unit,
               std::size_t known) {
    Value* const result = new_form(new_arc);
    const Value* const over = form(over_arc);
    const Value* const old = form(old_arc);
    for (std::size_t k = 0; k < known; ++k)
      result[k] = field_.add(over[k], field_.multiply(unit, field_.subtract(old[k], over[k])));
  }

  void add_equation(const ColouringStep& step, const Value& unit) {
    if (equations_.size() == width_ * width_) return;
    const Value* const in = form(step.in);
    const Value* const out = form(step.out);
    const Value* const over = form(step.over);
    for (std::size_t k = 0; k < width_; ++k)
      equations_.push_back(field_.subtract(field_.subtract(out[k], over[k]),
                                           field_.multiply(unit, field_.subtract(in[k], over[k]))));
  }

  Field field_;
  std::size_t arcs_ = 0;
  std::size_t width_ = 0;
  std::vector<std::size_t> form_;   // of each arc, an index into forms_ in widths
  std::vector<std::int32_t> uses_;  // of each arc, still to come
  std::vector<std::size_t> free_;   // forms no longer needed
  std::vector<Value> forms_;
  std::vector<Value> equations_;
};

}  // namespace korvex
