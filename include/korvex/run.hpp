// korvex::Run: how a computation is carried out, apart from what it computes.
//
// Nothing in here changes an answer: results depend on the seed and never on the number of threads.
#pragma once

#include <cstdint>
#include <functional>
#include <stop_token>

namespace korvex {

class IdentityCache;

struct Run {
  unsigned threads = 1;    // worker threads; 0 takes as many as the machine runs at once
  std::uint64_t seed = 1;  // every random number derives from it and the index of its trial

  // Told the fraction done, from 0 to 1, never falling; called by one thread at a time, not always
  // the same. An exception it throws ends the computation and reaches the caller.
  std::function<void(double)> progress = {};

  // Asked between small pieces of work; a computation that is stopped throws Error with
  // ErrorCode::kCancelled.
  std::stop_token stop = {};

  // Where the types of diagrams are remembered; none is IdentityCache::of_process(). It must live
  // as long as the computation.
  IdentityCache* identities = nullptr;
};

}  // namespace korvex
