#include "korvex/colourings.hpp"

#include <cstddef>
#include <string>

#include "engine/diagram/place.hpp"
#include "engine/invariants/arc_colouring.hpp"
#include "engine/invariants/of_codes.hpp"
#include "engine/run/parallel.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

constexpr int kLargestPrime = 31;
constexpr std::int64_t kMostSteps = 10'000'000;

bool is_odd_prime(int p) {
  if (p < 3 || p % 2 == 0) return false;
  for (int d = 3; d * d <= p; d += 2)
    if (p % d == 0) return false;
  return true;
}

// A vector w over the field of p elements stands for the parabolic element v -> v + <v, w> w of
// PSL(2, p), where <v, w> is the determinant; w and -w for the same one. Conjugating an element by
// another is applying the other to its vector.
struct Vector {
  int x;
  int y;
};

Vector applied(const Vector& w, const Vector& v, bool inverse, int p) {
  const int determinant = v.x * w.y - v.y * w.x;
  const int factor = (inverse ? -determinant : determinant) % p;
  return {((v.x + factor * w.x) % p + p) % p, ((v.y + factor * w.y) % p + p) % p};
}

// Parabolic elements by number, and how they act on one another.
class ParabolicElements {
 public:
  explicit ParabolicElements(int p) : p_(p), number_(static_cast<std::size_t>(p * p)) {
    for (int x = 0; x < p; ++x) {
      for (int y = 0; y < p; ++y) {
        if (x > p / 2 || (x == 0 && (y == 0 || y > p / 2))) continue;
        number_of({x, y}) = static_cast<std::uint16_t>(vectors_.size());
        number_of({(p - x) % p, (p - y) % p}) = static_cast<std::uint16_t>(vectors_.size());
        vectors_.push_back({x, y});
      }
    }
    for (const bool inverse : {false, true})
      for (const Vector& v : vectors_)
        for (const Vector& w : vectors_) acted_.push_back(number_of(applied(w, v, inverse, p)));
  }

  std::size_t count() const { return vectors_.size(); }
  const Vector& vector(std::uint16_t number) const { return vectors_[number]; }
  std::uint16_t number(const Vector& v) const { return number_[index(v)]; }

  // `element` conjugated by `by`, or by its inverse.
  std::uint16_t conjugated(std::uint16_t element, std::uint16_t by, bool inverse) const {
    return acted_[((inverse ? count() : 0) + element) * count() + by];
  }

 private:
  std::size_t index(const Vector& v) const {
    return static_cast<std::size_t>(v.x) * static_cast<std::size_t>(p_) +
           static_cast<std::size_t>(v.y);
  }
  std::uint16_t& number_of(const Vector& v) { return number_[index(v)]; }

  int p_;
  std::vector<std::uint16_t> number_;  // of each vector
  std::vector<Vector> vectors_;        // one of each pair w, -w
  std::vector<std::uint16_t> acted_;
};

// Tries every element for every seed, and takes back a seed as soon as an equation fails.
class ColouringSearch {
 public:
  ColouringSearch(const GaussCode& closed, int p, const Run& run)
      : p_(p),
        run_(run),
        elements_(p),
        counts_(static_cast<std::size_t>(p)),
        colours_(closed.size() / 2) {
    colouring_.plan(closed);
    crossings_.resize(colours_.size());
    for (const ColouringStep& step : colouring_.steps())
      if (step.kind != ColouringStep::Kind::kSeed) crossings_[at(step.in)] = &step;
  }

  // Nothing when it takes more steps than are allowed.
  std::optional<std::vector<std::int64_t>> counts() {
    const ColouringStep& first = colouring_.steps().front();
    base_ = at(first.out);
    colours_[base_] = elements_.number({1, 0});
    go_on(1);
    while (!seeds_.empty()) {
      if (steps_left_ < 0) return std::nullopt;
      Seed& seed = seeds_.back();
      if (seed.next_colour == elements_.count()) {
        seeds_.pop_back();
        continue;
      }
      colours_[at(colouring_.steps()[seed.step].out)] =
          static_cast<std::uint16_t>(seed.next_colour++);
      go_on(seed.step + 1);
    }
    if (steps_left_ < 0) return std::nullopt;
    return counts_;
  }

 private:
  // A seed after the first whose colours are being tried.
  struct Seed {
    std::size_t step;
    std::size_t next_colour;
  };

  void spend(std::size_t steps) {
    steps_left_ -= static_cast<std::int64_t>(steps);
    constexpr std::int64_t kBetweenLooks = 1 << 16;
    if (steps_left_ > next_look_) return;
    next_look_ = steps_left_ - kBetweenLooks;
    throw_if_cancelled(run_);
  }

  // Colours on from a step to the next seed, to the end, or to an equation that fails.
  void go_on(std::size_t next) {
    using Kind = ColouringStep::Kind;
    const auto& steps = colouring_.steps();
    for (; next < steps.size() && steps[next].kind != Kind::kSeed; ++next) {
      const ColouringStep& step = steps[next];
      spend(1);
      std::uint16_t& in = colours_[at(step.in)];
      std::uint16_t& out = colours_[at(step.out)];
      const std::uint16_t over = colours_[at(step.over)];
      if (step.kind == Kind::kBackward) {
        in = elements_.conjugated(out, over, step.positive);
        continue;
      }
      const std::uint16_t behind = elements_.conjugated(in, over, !step.positive);
      if (step.kind == Kind::kEquation && behind != out) return;
      out = behind;
    }
    if (next < steps.size()) {
      seeds_.push_back({next, 0});
      return;
    }
    spend(crossings_.size());
    ++counts_[longitude()];
  }

  // The power of the first seed's element that the longitude is: that element, of the vector
  // (1, 0), takes (0, 1) to (-1, 1).
  std::size_t longitude() const {
    Vector image{0, 1};
    int writhe = 0;
    for (std::size_t k = 0; k < crossings_.size(); ++k) {
      const ColouringStep& crossing = *crossings_[(base_ + k) % crossings_.size()];
      image = applied(elements_.vector(colours_[at(crossing.over)]), image, !crossing.positive, p_);
      writhe += crossing.positive ? 1 : -1;
    }
    const int power = (image.y == 1 ? -image.x : image.x) - writhe;
    return static_cast<std::size_t>((power % p_ + p_) % p_);
  }

  int p_;
  const Run& run_;
  ParabolicElements elements_;
  ArcColouring colouring_;
  std::vector<const ColouringStep*> crossings_;  // by the arc that each ends
  std::size_t base_ = 0;                         // arc of the first seed
  std::vector<Seed> seeds_;
  std::int64_t steps_left_ = kMostSteps;
  std::int64_t next_look_ = kMostSteps;  // steps left when to ask whether to stop
  std::vector<std::int64_t> counts_;
  std::vector<std::uint16_t> colours_;  // of the arcs
};

}  // namespace

std::optional<std::vector<std::int64_t>> parabolic_colourings(const GaussCode& closed, int p,
                                                              const Run& run) {
  if (p > kLargestPrime || !is_odd_prime(p))
    throw Error(ErrorCode::kInvalidArgument,
                "parabolic colourings take an odd prime up to 31, not " + std::to_string(p));
  if (closed.empty()) {
    std::vector<std::int64_t> unknot(static_cast<std::size_t>(p), 0);
    unknot[0] = 1;
    return unknot;
  }
  return ColouringSearch(closed, p, run).counts();
}

std::optional<std::vector<std::int64_t>> parabolic_colourings(const Diagram& diagram, int p,
                                                              const Run& run) {
  return parabolic_colourings(diagram.code(), p, run);
}

}  // namespace korvex
