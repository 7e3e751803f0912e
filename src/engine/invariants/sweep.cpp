#include "engine/invariants/sweep.hpp"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "engine/diagram/course.hpp"
#include "engine/diagram/place.hpp"
#include "engine/run/parallel.hpp"

namespace korvex {
namespace {

// Legs of a crossing, counter-clockwise from the incoming under-strand: under in, right, under out,
// left. The over-strand comes in by the left where the crossing is positive.
struct Leg {
  std::int32_t strand;  // strand k runs from passage k-1 to passage k
  bool leaves;          // the curve leaves the crossing by it
};

class Planner {
 public:
  Planner(const GaussCode& code, const Run& run)
      : course_(code.size()), run_(run), number_(code.size()) {
    for (std::size_t k = 0; k < code.size(); ++k) {
      if (code[k].over) continue;
      const auto crossing = static_cast<std::int32_t>(legs_.size());
      const std::size_t over = at(code[k].mate);
      const Leg over_in{static_cast<std::int32_t>(over), false};
      const Leg over_out{after(over), true};
      const bool positive = code[k].positive;
      legs_.push_back({Leg{static_cast<std::int32_t>(k), false}, positive ? over_out : over_in,
                       Leg{after(k), true}, positive ? over_in : over_out});
      positive_.push_back(positive);
      number_[k] = number_[over] = crossing;
    }
  }

  std::size_t crossings() const { return legs_.size(); }
  double cost() const { return cost_; }
  SweepPlan take_plan() { return std::move(plan_); }

  // Stops early once the plan costs more than `most`.
  void plan_from(std::int32_t first, double most) {
    plan_ = {};
    cost_ = 0;
    frontier_.clear();
    taken_.assign(legs_.size(), false);
    const Leg& under_in = legs_[at(first)][0];
    push({SweepStep::Kind::kCup, 0, false, false, false});
    frontier_ = {{under_in.strand, false}, {under_in.strand, true}};
    take_in(first, {1, 1, 0});
    for (std::size_t taken = 1; taken < legs_.size() && cost_ < most; ++taken) {
      throw_if_cancelled(run_);
      const Touch touch = best_touch();
      take_in(crossing_beyond(frontier_[at(touch.position)]), touch);
    }
  }

 private:
  struct FrontierPoint {
    std::int32_t strand;
    bool leaves;  // the curve leaves the disk here
  };

  // Points position, position+1, ... are legs leg, leg-1, ... of one crossing.
  struct Touch {
    std::int32_t position;
    std::int32_t run;
    std::int32_t leg;
  };

  std::int32_t after(std::size_t passage) const {
    return static_cast<std::int32_t>(course_.strand_after(passage));
  }

  std::int32_t cyclic(std::int32_t position) const {
    const auto size = static_cast<std::int32_t>(frontier_.size());
    return position >= size ? position - size : position;
  }

  // The crossing at the far end of a frontier point's strand.
  std::int32_t crossing_beyond(const FrontierPoint& point) const {
    const std::size_t strand = at(point.strand);
    return number_[point.leaves ? strand : course_.passage_before(strand)];
  }

  std::int32_t leg_beyond(const FrontierPoint& point) const {
    const auto& legs = legs_[at(crossing_beyond(point))];
    std::int32_t leg = 0;
    while (legs[at(leg)].strand != point.strand || legs[at(leg)].leaves == point.leaves) ++leg;
    return leg;
  }

  Touch best_touch() const {
    Touch best{-1, 0, 0};
    const auto size = static_cast<std::int32_t>(frontier_.size());
    for (std::int32_t position = 0; position < size; ++position) {
      const FrontierPoint& point = frontier_[at(position)];
      const std::int32_t crossing = crossing_beyond(point);
      if (taken_[at(crossing)]) continue;
      const std::int32_t leg = leg_beyond(point);
      std::int32_t run = 1;
      for (; run < std::min(size, 4); ++run) {
        const FrontierPoint& next = frontier_[at(cyclic(position + run))];
        if (crossing_beyond(next) != crossing || leg_beyond(next) != ((leg - run) & 3)) break;
      }
      if (run > best.run) best = {position, run, leg};
    }
    return best;
  }

  void push(const SweepStep& step) { plan_.steps.push_back(step); }

  void take_in(std::int32_t crossing, const Touch& touch) {
    taken_[at(crossing)] = true;
    const auto& legs = legs_[at(crossing)];
    const auto leg = [&](std::int32_t number) { return legs[at(number & 3)]; };
    const auto point_at = [&](std::int32_t number) {
      return FrontierPoint{leg(number).strand, leg(number).leaves};
    };
    const std::int32_t first = touch.position;
    if (touch.run == 1) {
      push({SweepStep::Kind::kCup, first + 1, leg(touch.leg + 1).leaves, false, false});
      frontier_.insert(frontier_.begin() + first + 1, {point_at(touch.leg + 1), {}});
      frontier_[at(first + 2)] = point_at(touch.leg + 3);
    }
    plan_.widest = std::max(plan_.widest, frontier_.size());
    cost_ += static_cast<double>(std::size_t{1} << std::min<std::size_t>(frontier_.size(), 62));
    push({SweepStep::Kind::kSwap, first, false, (touch.leg & 1) != 0, positive_[at(crossing)]});
    frontier_[at(first)] = point_at(touch.leg + 1);
    frontier_[at(cyclic(first + 1))] = point_at(touch.leg + 2);
    while (join_some_neighbours()) {
    }
  }

  bool join_some_neighbours() {
    const auto size = static_cast<std::int32_t>(frontier_.size());
    for (std::int32_t position = 0; position < size; ++position) {
      const std::int32_t next = cyclic(position + 1);
      if (frontier_[at(position)].strand != frontier_[at(next)].strand) continue;
      push({SweepStep::Kind::kCap, position, false, false, false});
      frontier_.erase(frontier_.begin() + std::max(position, next));
      frontier_.erase(frontier_.begin() + std::min(position, next));
      return true;
    }
    return false;
  }

  const Course course_;
  const Run& run_;
  std::vector<std::int32_t> number_;  // crossing of each passage
  std::vector<std::array<Leg, 4>> legs_;
  std::vector<bool> positive_;
  std::vector<bool> taken_;
  std::vector<FrontierPoint> frontier_;
  SweepPlan plan_;
  double cost_ = 0;
};

}  // namespace

SweepPlan plan_sweep(const GaussCode& closed, const Run& run) {
  if (closed.empty()) return {};
  constexpr std::size_t kMostBeginnings = 24;
  Planner planner(closed, run);
  const std::size_t beginnings = std::min(planner.crossings(), kMostBeginnings);
  SweepPlan best;
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t k = 0; k < beginnings; ++k) {
    planner.plan_from(static_cast<std::int32_t>(k * planner.crossings() / beginnings), least);
    if (planner.cost() >= least) continue;
    least = planner.cost();
    best = planner.take_plan();
  }
  return best;
}

}  // namespace korvex
