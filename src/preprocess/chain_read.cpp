#include <optional>

#include "preprocess.h"
#include "read/bytes.hpp"
#include "read/read_chains.hpp"

std::vector<ChainAtom> ChainRead(char* path, bool& error) {
  error = true;
  std::vector<ChainAtom> atoms;
  if (path == nullptr) return atoms;
  // Nothing may leave a C-style interface by exception; why a file is refused is told by the
  // engine's reader.
  try {
    const std::string file(path);
    std::optional<korvex::Chain> first;
    korvex::read::each_chain(korvex::read::load_file(file), file, {}, korvex::read::Tracing::kLoose,
                             [&](korvex::read::RawChain&& raw) {
                               if (!first) first = std::move(raw.chain);
                             });
    atoms.reserve(first->points.size());
    for (std::size_t i = 0; i < first->points.size(); ++i) {
      const korvex::Point& point = first->points[i];
      atoms.push_back({point.x, point.y, point.z, first->residues[i].number});
    }
    error = false;
  } catch (...) {
    atoms.clear();
  }
  return atoms;
}
