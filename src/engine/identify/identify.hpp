// The knot types of diagrams that have been simplified already.
#pragma once

#include <functional>

#include "korvex/identify.hpp"
#include "korvex/identity_cache.hpp"
#include "korvex/run.hpp"

namespace korvex {

// How diagrams get their types: by a function, and by what a cache remembers of its answers.
struct Identification {
  // Of a closed code of at least 3 crossings that pass moves leave as it is. Called from many
  // threads at once; the answer must depend on the code alone.
  std::function<KnotIdentity(const GaussCode& closed)> identify;
  IdentityCache& cache;  // holds answers of this function only
  Detail detail = Detail::kHand;

  KnotIdentity operator()(const GaussCode& closed) const;
};

// That of identify(), for closed codes that pass moves leave as they are, with the cache of a run.
Identification usual_identification(const Run& run, Detail detail = Detail::kHand);

}  // namespace korvex
