// Chains of real proteins.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "preprocess.h"
#include "support/data_file.hpp"

namespace bench {

// The first chain of a file of data/proteins.
inline std::vector<ChainAtom> protein_chain(const std::string& name) {
  std::string path = support::data_file("proteins/") + name;
  bool error = false;
  std::vector<ChainAtom> chain = ChainRead(path.data(), error);
  if (error) std::abort();
  return chain;
}

}  // namespace bench
