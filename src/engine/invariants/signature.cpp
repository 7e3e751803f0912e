#include "korvex/signature.hpp"

#include <cstddef>
#include <utility>
#include <vector>

#include "engine/diagram/course.hpp"
#include "engine/diagram/place.hpp"
#include "engine/diagram/plane_diagram.hpp"
#include "engine/invariants/integer.hpp"
#include "engine/invariants/of_codes.hpp"
#include "engine/run/parallel.hpp"

namespace korvex {
namespace {

using Form = std::vector<std::vector<Integer>>;  // rows of a symmetric form

// The Goeritz form of the faces of one colour of a chequerboard, and the correction of its
// signature to that of the knot.
struct Goeritz {
  Form form;
  int correction = 0;
};

class GoeritzBuilder {
 public:
  explicit GoeritzBuilder(const GaussCode& code) : code_(code), course_(code.size()) {
    diagram_.draw(code, Curve::kClosed);
    colour_faces();
  }

  Goeritz build(const Run& run) const {
    Goeritz result;
    std::vector<std::size_t> index(diagram_.faces());
    std::size_t white = 0;
    for (std::size_t face = 0; face < diagram_.faces(); ++face)
      if (white_[face]) index[face] = white++;
    const std::size_t size = white - 1;
    for (std::size_t row = 0; row < size; ++row) {
      throw_if_cancelled(run);
      result.form.emplace_back(size);
    }
    // The last white face is left out: rows of the full form add up to 0.
    const auto add = [&](std::size_t row, std::size_t column, int value) {
      if (row < size && column < size) result.form[row][column] += value;
    };
    for (std::size_t k = 0; k < code_.size(); ++k) {
      if (code_[k].over) continue;
      const std::size_t left = at(face_left_before(k));
      const std::size_t right = at(face_right_before(k));
      const bool white_left = white_[left];
      // Behind the crossing the faces' colours are exchanged, so that the white ones are opposite.
      const std::size_t a = index[white_left ? left : right];
      const std::size_t b = index[at(white_left ? face_right_after(k) : face_left_after(k))];
      const int incidence = white_left ? -1 : 1;
      if (a != b) {
        add(a, a, incidence);
        add(b, b, incidence);
        add(a, b, -incidence);
        add(b, a, -incidence);
      }
      if (code_[k].positive != white_left) result.correction += incidence;
    }
    return result;
  }

 private:
  std::int32_t face_left_before(std::size_t passage) const {
    return diagram_.face_left_of(2 * passage);
  }
  std::int32_t face_right_before(std::size_t passage) const {
    return diagram_.face_left_of(2 * passage + 1);
  }
  std::int32_t face_left_after(std::size_t passage) const {
    return diagram_.face_left_of(2 * course_.strand_after(passage));
  }
  std::int32_t face_right_after(std::size_t passage) const {
    return diagram_.face_left_of(2 * course_.strand_after(passage) + 1);
  }

  // Along the curve the white faces lie now to the left, now to the right.
  void colour_faces() {
    white_.assign(diagram_.faces(), false);
    for (std::size_t strand = 0; strand < code_.size(); ++strand)
      white_[at(diagram_.face_left_of(2 * strand + strand % 2))] = true;
  }

  const GaussCode& code_;
  const Course course_;
  PlaneDiagram diagram_;
  std::vector<bool> white_;
};

// Positive less negative squares of a symmetric form, by elimination without fractions.
class FormSignature {
 public:
  FormSignature(Form form, const Run& run)
      : form_(std::move(form)), size_(form_.size()), run_(run) {}

  int take() {
    int result = 0;
    Integer last = 1;
    for (std::size_t k = 0; k < size_; ++k) {
      if (!bring_pivot_to(k)) break;
      const Integer pivot = entry(k, k);
      result += (pivot > 0) == (last > 0) ? 1 : -1;
      for (std::size_t i = k + 1; i < size_; ++i) {
        throw_if_cancelled(run_);
        for (std::size_t j = k + 1; j <= i; ++j) {
          entry(i, j) = (pivot * entry(i, j) - entry(i, k) * entry(j, k)) / last;
          entry(j, i) = entry(i, j);
        }
      }
      last = pivot;
    }
    return result;
  }

 private:
  Integer& entry(std::size_t row, std::size_t column) { return form_[row][column]; }

  // False when the rest of the form is 0.
  bool bring_pivot_to(std::size_t k) {
    for (std::size_t i = k; i < size_; ++i) {
      if (entry(i, i) == 0) continue;
      exchange(i, k);
      return true;
    }
    for (std::size_t i = k; i < size_; ++i)
      for (std::size_t j = k; j < i; ++j) {
        if (entry(i, j) == 0) continue;
        for (std::size_t column = k; column < size_; ++column) entry(i, column) += entry(j, column);
        for (std::size_t row = k; row < size_; ++row) entry(row, i) += entry(row, j);
        exchange(i, k);
        return true;
      }
    return false;
  }

  void exchange(std::size_t i, std::size_t k) {
    if (i == k) return;
    std::swap(form_[i], form_[k]);
    for (std::size_t row = 0; row < size_; ++row) std::swap(entry(row, i), entry(row, k));
  }

  Form form_;
  std::size_t size_;
  const Run& run_;
};

}  // namespace

int signature(const GaussCode& closed, const Run& run) {
  if (closed.empty()) return 0;
  Goeritz goeritz = GoeritzBuilder(closed).build(run);
  return FormSignature(std::move(goeritz.form), run).take() - goeritz.correction;
}

int signature(const Diagram& diagram, const Run& run) { return signature(diagram.code(), run); }

}  // namespace korvex
