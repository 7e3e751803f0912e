#include "read/selection.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include "geometry/bonds.hpp"
#include "korvex/error.hpp"

namespace korvex::read {
namespace {

// Labels are ordered by number, then by insertion code; the blank comes before all letters.
bool within(const Residue& residue, const ResidueRange& range) {
  const std::pair label(residue.number, residue.insertion_code);
  const bool unbounded =
      range.last == std::numeric_limits<std::int32_t>::max() && range.last_code == ' ';
  return label >= std::pair(range.first, range.first_code) &&
         (unbounded || label <= std::pair(range.last, range.last_code));
}

// Keeps the first points.
void resize(RawChain& raw, std::size_t size) {
  raw.chain.points.resize(size);
  raw.chain.residues.resize(size);
  if (!raw.chain.plddt.empty()) raw.chain.plddt.resize(size);
  if (!raw.sequence.empty()) raw.sequence.resize(size);
  if (!raw.mended.empty()) raw.mended.resize(size);
}

}  // namespace

bool selects_model(const ModelRange& models, std::int64_t number) {
  if (number < models.first || number > models.last) return false;
  if (models.step == 1) return true;
  const bool unbounded = models.first == std::numeric_limits<std::int64_t>::min();
  if (unbounded) return (number - 1) % models.step == 0;
  // The distance of two numbers may exceed the signed range.
  const std::uint64_t passed =
      static_cast<std::uint64_t>(number) - static_cast<std::uint64_t>(models.first);
  return passed % static_cast<std::uint64_t>(models.step) == 0;
}

bool selects_chain(const ReadOptions& options, const Chain& chain) {
  return options.chains.empty() || std::find(options.chains.begin(), options.chains.end(),
                                             chain.name) != options.chains.end();
}

void check(const ReadOptions& options) {
  if (options.models.step < 1) {
    throw Error(ErrorCode::kInvalidArgument, "the step from model to model is " +
                                                 std::to_string(options.models.step) +
                                                 "; it must be at least 1");
  }
  if (!(options.min_plddt >= 0 && options.min_plddt <= 100)) {
    throw Error(ErrorCode::kInvalidArgument, "the least confidence is " +
                                                 std::to_string(options.min_plddt) +
                                                 "; it must be from 0 to 100");
  }
  if (!(options.max_gap >= preprocess::kGapFactor)) {
    throw Error(ErrorCode::kInvalidArgument, "the longest gap to bridge is " +
                                                 std::to_string(options.max_gap) +
                                                 " median bonds; it must be at least 1.5");
  }
}

std::vector<RawChain> cut(RawChain&& raw, std::size_t length) {
  const std::size_t size = raw.chain.points.size();
  if (size % length != 0) {
    throw Error(ErrorCode::kBadInput,
                raw.chain.source + ": " + std::to_string(size) + " points" +
                    (raw.chain.name.empty() ? std::string() : " of chain " + raw.chain.name) +
                    " in model " + std::to_string(raw.chain.model) +
                    " are no whole number of chains of " + std::to_string(length) +
                    "; give the right length",
                raw.chain.source);
  }
  std::vector<RawChain> pieces;
  for (std::size_t first = 0; first < size; first += length) {
    const auto copy = [&](const auto& from, auto& to) {
      if (from.empty()) return;
      const auto begin = from.begin() + static_cast<std::ptrdiff_t>(first);
      to.assign(begin, begin + static_cast<std::ptrdiff_t>(length));
    };
    RawChain piece;
    copy(raw.chain.points, piece.chain.points);
    copy(raw.chain.residues, piece.chain.residues);
    copy(raw.chain.plddt, piece.chain.plddt);
    copy(raw.sequence, piece.sequence);
    copy(raw.mended, piece.mended);
    piece.chain.name =
        raw.chain.name + (raw.chain.name.empty() ? "" : ".") + std::to_string(pieces.size() + 1);
    piece.chain.source = raw.chain.source;
    piece.chain.model = raw.chain.model;
    piece.chain.time = raw.chain.time;
    piece.chain.step = raw.chain.step;
    piece.cell = raw.cell;
    piece.beads = raw.beads;
    pieces.push_back(std::move(piece));
  }
  return pieces;
}

namespace {

// Keeps the points for which `keeps(i)` holds.
template <typename Keeps>
void keep_points(RawChain& raw, const Keeps& keeps) {
  Chain& chain = raw.chain;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < chain.residues.size(); ++i) {
    if (!keeps(i)) continue;
    if (kept != i) {
      chain.points[kept] = chain.points[i];
      chain.residues[kept] = std::move(chain.residues[i]);
      if (!chain.plddt.empty()) chain.plddt[kept] = chain.plddt[i];
      if (!raw.sequence.empty()) raw.sequence[kept] = raw.sequence[i];
      if (!raw.mended.empty()) raw.mended[kept] = raw.mended[i];
    }
    ++kept;
  }
  if (kept == chain.points.size()) return;
  raw.ends_bonded = false;
  resize(raw, kept);
}

}  // namespace

void select_residues(RawChain& raw, const ResidueRange& range) {
  keep_points(raw, [&](std::size_t i) { return within(raw.chain.residues[i], range); });
}

void trim_tails(RawChain& raw, double min_plddt) {
  const std::vector<float>& plddt = raw.chain.plddt;
  if (!(min_plddt > 0) || raw.chain.points.empty()) return;
  if (plddt.empty()) {
    throw Error(
        ErrorCode::kInvalidArgument,
        raw.chain.source +
            ": tells of no confidence (pLDDT) to trim its tails by; read it without a least one",
        raw.chain.source);
  }
  const auto enough = [min_plddt](float value) { return value >= min_plddt; };
  const auto first = std::find_if(plddt.begin(), plddt.end(), enough) - plddt.begin();
  const auto last = plddt.rend() - std::find_if(plddt.rbegin(), plddt.rend(), enough);
  keep_points(raw, [&](std::size_t i) {
    const auto place = static_cast<std::ptrdiff_t>(i);
    return first <= place && place < last;
  });
}

void settle_ends(RawChain& raw, bool closed) {
  Chain& chain = raw.chain;
  const bool enough = chain.points.size() > 2;
  if (enough && chain.points.front() == chain.points.back()) {
    resize(raw, chain.points.size() - 1);
    chain.ends = ChainEnds::kRepeated;
  } else if (enough && raw.ends_bonded) {
    chain.ends = ChainEnds::kBonded;
  } else if (closed) {
    chain.ends = ChainEnds::kAsked;
  }
  chain.closed = chain.ends != ChainEnds::kApart;
}

}  // namespace korvex::read
