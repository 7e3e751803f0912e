// The plain forms of libpreprocess's functions that have faster ones: the oracle that the fast
// forms must equal bit for bit. Arguments and results are those of the functions of the same names
// in preprocess.h. The certificates of geometry/predicates.hpp are shared: their own tests hold
// them.
#pragma once

#include <vector>

#include "preprocess.h"

namespace reference {

std::vector<Edge> ProjectChain(const std::vector<ChainAtom>& chain, int direction, bool closed);
int ChainReduce(std::vector<ChainAtom>& chain, bool closed);

}  // namespace reference
