// Spreading independent pieces of work over threads.
#pragma once

#include <cstddef>
#include <functional>

#include "korvex/run.hpp"

namespace korvex {

// Worker threads that `run` stands for when there are `pieces` pieces of work: at least 1.
unsigned worker_count(const Run& run, std::size_t pieces);

// Throws Error(kCancelled) when the caller of `run` asked to stop.
void throw_if_cancelled(const Run& run);

// A share of the whole progress of `run`: fractions of the part map onto [from, to] of the whole.
Run part_of(const Run& run, double from, double to);

// Calls task(piece, worker) once for every piece in 0..pieces-1; worker is in
// 0..worker_count(run, pieces)-1 and no two pieces run at once under the same worker, so a worker
// may own scratch memory. Pieces are started in order. Reports progress after each piece and asks
// for cancellation before each. The first exception (by piece) ends the rest and is rethrown here.
void for_each_piece(const Run& run, std::size_t pieces,
                    const std::function<void(std::size_t piece, unsigned worker)>& task);

}  // namespace korvex
