// Whole determinations and fingerprints of proteins against the plain pipeline, every step of it.
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "comparison.hpp"
#include "korvex.h"
#include "protein_chain.hpp"
#include "reference/reference.hpp"
#include "support/captured_stream.hpp"

namespace {

struct Problem {
  std::vector<ChainAtom> chain;
  unsigned seed;  // of the draws
  std::string answer;
};

template <class Find>
void vote(Problem& problem, Find find) {
  constexpr int kClosure = 2;
  constexpr int kTrials = 100;
  const support::CapturedStream log(std::clog);
  std::srand(problem.seed);
  int counts[42] = {};
  find(problem.chain, counts, kClosure, kTrials);
  problem.answer = GiveTheNameOfKnot_allProj(counts);
}

template <class Find>
void fingerprint(Problem& problem, Find find) {
  const support::CapturedStream log(std::clog);
  std::srand(problem.seed);
  problem.answer = find(problem.chain, 10, 30, 2, 20, 1, 15, false, 768000000ULL);
}

bool same(const Problem& a, const Problem& b) { return a.answer == b.answer; }

void add(const std::string& name) {
  const auto make = [=](std::uint64_t seed) {
    return Problem{bench::protein_chain(name + ".pdb"), static_cast<unsigned>(seed), ""};
  };
  bench::add_comparison(
      "FindOneKnot/" + name, make, [](Problem& p) { vote(p, FindOneKnot); },
      [](Problem& p) { vote(p, reference::FindOneKnot); }, same);
  bench::add_comparison(
      "FindAllKnots/" + name, make, [](Problem& p) { fingerprint(p, FindAllKnots_string); },
      [](Problem& p) { fingerprint(p, reference::FindAllKnots_string); }, same);
}

const bool kRegistered = [] {
  add("2efv_CA");  // 82 residues
  add("4hhb");     // 141
  add("1ztu");     // 313
  return true;
}();

}  // namespace
