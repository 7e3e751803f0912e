// What each knot type weighs among closures: votes as whole numbers, or shares as real ones.
#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "engine/identify/identity_table.hpp"

namespace korvex {

// Whole numbers may be added in any order; real ones give the same sums in the same order only.
template <typename Weight>
class Tally {
 public:
  struct Sum {
    Weight all{};
    Weight proven{};  // of diagrams that can be of no other knot
  };

  void add(const DiagramType& diagram, Weight weight) {
    const Weight proven = diagram.proven ? weight : Weight{};
    add(diagram.name, {weight, proven});
    crossings_[static_cast<std::size_t>(diagram.crossings)] += weight;
  }

  void add(const Tally& other) {
    for (const auto& [type, sum] : other.types_) add(type, sum);
    for (const auto& [crossings, weight] : other.crossings_) crossings_[crossings] += weight;
  }

  Weight total() const { return total_; }

  // By name.
  const std::map<std::string, Sum>& types() const { return types_; }

  // By crossings left in the simplified diagrams.
  const std::map<std::size_t, Weight>& crossings() const { return crossings_; }

  // From the heaviest to the lightest, equal ones by name.
  std::vector<std::pair<std::string, Sum>> ranked() const {
    std::vector<std::pair<std::string, Sum>> ranking(types_.begin(), types_.end());
    std::stable_sort(ranking.begin(), ranking.end(),
                     [](const auto& a, const auto& b) { return a.second.all > b.second.all; });
    return ranking;
  }

 private:
  void add(const std::string& type, const Sum& sum) {
    Sum& own = types_[type];
    own.all += sum.all;
    own.proven += sum.proven;
    total_ += sum.all;
  }

  std::map<std::string, Sum> types_;
  std::map<std::size_t, Weight> crossings_;
  Weight total_{};
};

}  // namespace korvex
