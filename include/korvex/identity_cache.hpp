// What was found out about diagrams, so that none is identified twice.
#pragma once

#include <cstddef>
#include <memory>

#include "korvex/export.hpp"

namespace korvex {

class IdentityTable;

// Knot types by diagram, in a limited number of bytes. Diagrams of one chain's closures and
// sub-chains repeat, and so do those of the chains of a file: votes, fingerprints and
// identifications of many chains are best given one cache. It changes no answer, only the time it
// takes. Not copied. Any thread, and many at once.
class KORVEX_API IdentityCache {
 public:
  static constexpr std::size_t kUsualBytes = std::size_t{128} << 20;

  // Remembers diagrams until they would take more than `most_bytes`, and then forgets some of them.
  // With 0 bytes it remembers none.
  explicit IdentityCache(std::size_t most_bytes = kUsualBytes);
  ~IdentityCache();

  // The one that serves wherever no other is given.
  static IdentityCache& of_process();

  std::size_t most_bytes() const;
  // Another limit from now on. Forgets all when it is lower than the one before.
  void limit_to(std::size_t most_bytes);

  // What it remembers now; the bytes are an estimate of what that takes of the heap.
  std::size_t bytes() const;
  std::size_t diagrams() const;

  void forget();

  // For the engine.
  IdentityTable& table() const { return *table_; }

 private:
  std::unique_ptr<IdentityTable> table_;
};

}  // namespace korvex
