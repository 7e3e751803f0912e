#include <vector>

#include "determination/direction.hpp"
#include "determination/one_knot.hpp"
#include "korvex.h"

namespace {

struct FastKernels {
  static void reduce(std::vector<ChainAtom>& chain) { ChainReduce(chain, true); }
  static constexpr auto find_ordinal = korvex::determination::find_ordinal;
};

}  // namespace

int FindOneKnot(const std::vector<ChainAtom>& chain, int* counts, int closureType, int trials) {
  return korvex::determination::find_one_knot<FastKernels>(chain, counts, closureType, trials);
}
