// Many independent pieces of work on all processors, as hosts have them: one chain each.
#pragma once

#include <cstddef>
#include <functional>

#include "korvex/export.hpp"
#include "korvex/run.hpp"

namespace korvex {

// Calls work(index) once for every index below `count`, in rising order but many at once, on
// run.threads threads of which the caller's is one. Tells run.progress after each and asks run.stop
// before each: Error(kCancelled). What the first index throws that throws ends the rest and reaches
// the caller. Any thread.
KORVEX_API void for_each_index(std::size_t count, const std::function<void(std::size_t)>& work,
                               const Run& run = {});

}  // namespace korvex
