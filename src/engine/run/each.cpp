#include "korvex/each.hpp"

#include "engine/run/parallel.hpp"

namespace korvex {

void for_each_index(std::size_t count, const std::function<void(std::size_t)>& work,
                    const Run& run) {
  for_each_piece(run, count, [&work](std::size_t index, unsigned) { work(index); });
}

}  // namespace korvex
