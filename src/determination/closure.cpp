#include <algorithm>
#include <vector>

#include "determination/direction.hpp"
#include "korvex.h"
#include "recognition/ordinals.hpp"

namespace {

constexpr double kFactor = 1.25;  // radius of the closing sphere over the chain's own
constexpr int kDirectionsTried = 30;

void close_and_reduce(std::vector<ChainAtom>& work, int closureType) {
  switch (closureType) {
    case 1:
      while (CloseChain_OUT(work, kFactor) == -1) {
      }
      break;
    case 2:
      while (CloseChain_2points(work, kFactor) == -1) {
      }
      break;
    case 3:
      while (CloseChain_1point(work, kFactor) == -1) {
      }
      break;
    case 4:
      CloseChain_1direction(work);
      break;
    default:
      break;
  }
  ChainReduce(work, true);
}

int first_usable_answer(const std::vector<ChainAtom>& chain) {
  int ordinal = korvex::recognition::kUnusable;
  for (int d = 0; d < kDirectionsTried && ordinal == korvex::recognition::kUnusable; ++d) {
    ordinal = korvex::determination::find_ordinal(chain, d);
  }
  return ordinal;
}

}  // namespace

int FindOneKnot(const std::vector<ChainAtom>& chain, int* counts, int closureType, int trials) {
  std::fill_n(counts, korvex::recognition::kReserved, 0);
  const int determinations = static_cast<unsigned>(closureType) > 1 ? trials : 1;
  std::vector<ChainAtom> work;
  for (int i = 0; i < determinations; ++i) {
    // A chain that no direction can answer is closed anew, without limit.
    int ordinal = korvex::recognition::kUnusable;
    while (ordinal == korvex::recognition::kUnusable) {
      work = chain;
      close_and_reduce(work, closureType);
      ordinal = first_usable_answer(work);
    }
    ++counts[ordinal];
  }
  return 0;
}
