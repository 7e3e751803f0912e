// What the user is told of the chains of one input, apart from the answers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>

#include "korvex/chain.hpp"
#include "korvex/read.hpp"

namespace korvex::cli {

// One line for each kind of doubt, however many chains and frames have it.
class ReadNotes {
 public:
  // `as_rings`: the user has said that the chains are rings.
  explicit ReadNotes(const ReadOptions& options, bool as_rings = false)
      : policy_(options.gaps), max_gap_(options.max_gap), as_rings_(as_rings) {}

  // Takes note of a chain; the first whose ends lie close together is told of at once.
  void add(const Chain& chain);
  // Tells the rest, when all chains have been seen.
  void tell() const;

 private:
  // Gaps of one kind.
  struct Gaps {
    std::size_t count = 0;
    std::size_t chains = 0;
    double longest = 0;
    std::string where;  // the longest
    void add(double length, const Chain& chain, std::size_t next);
  };

  void tell_gaps() const;

  GapPolicy policy_;
  double max_gap_;
  bool as_rings_;
  std::string source_;
  std::size_t chains_ = 0;
  Gaps bridged_;
  Gaps split_;
  std::size_t mended_bonds_ = 0;
  std::size_t mended_chains_ = 0;
  std::size_t near_ = 0;  // chains whose ends lie close together
  std::int64_t near_model_ = 0;
};

}  // namespace korvex::cli
