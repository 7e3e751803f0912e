#include "read/frames.hpp"

#include <limits>
#include <utility>

#include "korvex/error.hpp"
#include "read/atom_site.hpp"
#include "read/selection.hpp"
#include "read/text.hpp"
#include "read/topology.hpp"

namespace korvex::read {
namespace {

// All atoms as one chain.
RawChain pattern_of_all(std::size_t atoms) {
  RawChain pattern;
  for (std::size_t i = 0; i < atoms; ++i) {
    pattern.chain.residues.push_back({static_cast<std::int32_t>(i + 1), ' ', {}});
    pattern.atoms.push_back(i);
  }
  return pattern;
}

}  // namespace

bool FrameChains::wants(std::int64_t frame) {
  any_ = true;
  return selects_model(options_.models, frame);
}

void FrameChains::prepare(std::size_t atoms) {
  prepared_ = true;
  atoms_ = atoms;
  if (options_.topology.empty()) {
    const ChosenAtoms chosen(options_.atoms);
    if (!chosen.empty() && !chosen.all()) {
      throw Error(ErrorCode::kInvalidArgument,
                  file_ + ": has no names of atoms to choose by; give a topology that has them",
                  file_);
    }
    if (atoms > std::numeric_limits<std::int32_t>::max()) fail_at(file_, 0, "has too many atoms");
    if (atoms > 0) patterns_.push_back(pattern_of_all(atoms));
    return;
  }
  TopologyChains topology = chains_in_topology(options_);
  if (topology.atoms != atoms) {
    fail_at(file_, 0,
            "has " + std::to_string(atoms) + " atoms in its frames, but the topology " +
                options_.topology + " has " + std::to_string(topology.atoms) +
                "; give the topology that the trajectory was written with");
  }
  patterns_ = std::move(topology.chains);
}

void FrameChains::take(const Frame& frame) {
  if (!prepared_) prepare(frame.positions.size());
  if (frame.positions.size() != atoms_) {
    fail_at(file_, 0,
            "frame " + std::to_string(frame.number) + " has " +
                std::to_string(frame.positions.size()) + " atoms, but those before it have " +
                std::to_string(atoms_));
  }
  for (const RawChain& pattern : patterns_) {
    RawChain raw;
    raw.chain.name = pattern.chain.name;
    raw.chain.residues = pattern.chain.residues;
    raw.chain.model = frame.number;
    raw.chain.time = frame.time;
    raw.chain.step = frame.step;
    raw.chain.points.reserve(pattern.atoms.size());
    for (const std::size_t atom : pattern.atoms) raw.chain.points.push_back(frame.positions[atom]);
    raw.cell = frame.cell;
    raw.beads = pattern.beads;
    raw.ends_bonded = pattern.ends_bonded;
    raw.sequence = pattern.sequence;
    sink_(std::move(raw));
  }
}

}  // namespace korvex::read
