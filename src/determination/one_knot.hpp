// The driver of determinations over kernels that it is given, so that it runs alike over the fast
// ones and over their plain forms.
#pragma once

#include <algorithm>
#include <vector>

#include "determination/numbers.hpp"
#include "korvex.h"
#include "recognition/ordinals.hpp"

namespace korvex::determination {

inline constexpr int kDirectionsTried = 30;

template <class Kernels>
void close_and_reduce(std::vector<ChainAtom>& work, int closure_type) {
  switch (closure_type) {
    case kCloseOut:
      while (CloseChain_OUT(work, kFactor) == -1) {
      }
      break;
    case kCloseTwoPoints:
      while (CloseChain_2points(work, kFactor) == -1) {
      }
      break;
    case kCloseOnePoint:
      while (CloseChain_1point(work, kFactor) == -1) {
      }
      break;
    case kCloseOneDirection:
      CloseChain_1direction(work);
      break;
    default:
      break;
  }
  Kernels::reduce(work);
}

template <class Kernels>
int first_usable_answer(const std::vector<ChainAtom>& chain) {
  int ordinal = recognition::kUnusable;
  for (int d = 0; d < kDirectionsTried && ordinal == recognition::kUnusable; ++d)
    ordinal = Kernels::find_ordinal(chain, d);
  return ordinal;
}

// As FindOneKnot. Kernels are static functions: reduce(chain), as ChainReduce of atoms, and
// find_ordinal, as FindTheKnotInParticularDirection.
template <class Kernels>
int find_one_knot(const std::vector<ChainAtom>& chain, int* counts, int closure_type, int trials) {
  std::fill_n(counts, recognition::kReserved, 0);
  const int determinations = static_cast<unsigned>(closure_type) > kCloseOut ? trials : 1;
  std::vector<ChainAtom> work;
  for (int i = 0; i < determinations; ++i) {
    // A chain that no direction can answer is closed anew, without limit.
    int ordinal = recognition::kUnusable;
    while (ordinal == recognition::kUnusable) {
      work = chain;
      close_and_reduce<Kernels>(work, closure_type);
      ordinal = first_usable_answer<Kernels>(work);
    }
    ++counts[ordinal];
  }
  return 0;
}

}  // namespace korvex::determination
