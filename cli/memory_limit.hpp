// What the whole of a run may take.
#pragma once

#include <cstddef>

namespace korvex::cli {

// No run is held to less: programs, threads and a small input need as much.
inline constexpr std::size_t kLeastMemory = std::size_t{64} << 20;

// Holds the data of this run to `most` bytes, or kLeastMemory, besides the stacks of so many
// threads (0: one for each processor). An allocation beyond fails, as where the system has no more.
// Does nothing under a sanitizer, which reserves more than there is.
void limit_memory(std::size_t most, unsigned threads);

}  // namespace korvex::cli
