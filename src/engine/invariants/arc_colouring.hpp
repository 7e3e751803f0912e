// An order in which the arcs of a diagram generate one another.
//
// Every crossing relates three arcs, x_out = s x_in + (1-s) x_over with a unit s. Once the over arc
// and one of the others are known the third follows without a division. A few arcs, the seeds, give
// all others; the crossings not used in this, as many as seeds, are equations between the seeds,
// and one of them follows from the rest. Setting the first seed to 0 and dropping one equation, the
// determinant of the others is the Alexander polynomial up to a unit.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "engine/diagram/course.hpp"
#include "engine/diagram/place.hpp"
#include "korvex/gauss_code.hpp"

namespace korvex {

struct ColouringStep {
  enum class Kind : std::uint8_t {
    kSeed,      // `out` is the next seed
    kForward,   // out = over + s (in - over)
    kBackward,  // in = over + (out - over) / s
    kEquation,  // out - over - s (in - over) = 0
  };
  Kind kind;
  bool positive;  // of the crossing: s is t, or 1/t where it is negative
  std::int32_t in;
  std::int32_t out;
  std::int32_t over;
};

// Scratch memory: one object a thread.
class ArcColouring {
 public:
  // Plans the colouring of a closed code. Arcs are numbered along the curve from 0, one for each
  // under-passage that ends it. O(n).
  void plan(const GaussCode& closed);

  const std::vector<ColouringStep>& steps() const { return steps_; }
  std::int32_t arcs() const { return arcs_; }
  std::int32_t seeds() const { return seeds_; }

 private:
  struct Crossing {
    std::int32_t over;
    bool positive;
    bool used;
  };

  void read(const GaussCode& closed);
  void plant(std::int32_t seed);
  void colour(std::int32_t arc);
  void raise(std::int32_t arc);
  void look_at(std::int32_t number);
  std::int32_t arc_over_most() const;
  std::optional<std::int32_t> best_seed();
  // Under-passage k ends arc k.
  std::int32_t next(std::int32_t arc) const {
    return static_cast<std::int32_t>(course_.strand_after(at(arc)));
  }
  std::int32_t before(std::int32_t arc) const {
    return static_cast<std::int32_t>(course_.passage_before(at(arc)));
  }

  Course course_;  // of the under-passages alone
  std::int32_t arcs_ = 0;
  std::int32_t seeds_ = 0;
  std::vector<Crossing> crossings_;  // crossing k ends arc k and begins the next
  std::vector<std::int32_t> under_;  // for each passage the under-passages before it
  std::vector<std::int32_t> first_over_;
  std::vector<std::int32_t> over_;  // crossings that each arc passes over, arc by arc
  std::vector<std::uint8_t> coloured_;
  std::vector<std::int32_t> waiting_;
  std::vector<std::int32_t> gain_;  // crossings that each arc would make give another
  std::array<std::vector<std::int32_t>, 4> worth_;  // arcs of gain 1, 2, 3, more; and former ones
  std::vector<ColouringStep> steps_;
};

}  // namespace korvex
