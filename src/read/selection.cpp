#include "read/selection.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
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

double distance(const Point& a, const Point& b) {
  return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

// The distance from each point to the next one; of a closed chain the last to the first as well.
std::vector<double> bond_lengths(const Chain& chain) {
  std::vector<double> lengths;
  const std::size_t size = chain.points.size();
  for (std::size_t i = 0; i + 1 < size; ++i) {
    lengths.push_back(distance(chain.points[i], chain.points[i + 1]));
  }
  if (chain.closed && size > 1) {
    lengths.push_back(distance(chain.points.back(), chain.points.front()));
  }
  return lengths;
}

std::string label(const Residue& residue) {
  std::string text = residue.name.empty() ? "" : residue.name + " ";
  text += std::to_string(residue.number);
  if (residue.insertion_code != ' ') text += residue.insertion_code;
  return text;
}

std::string shown(double value) {
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                 std::chars_format::general, 4);
  return {digits.data(), end.ptr};
}

// "gap of 9.53 (median bond 3.802) after HIS 160 of chain A, model 1"
std::string described(const Chain& chain, const Gap& gap, double bond) {
  const std::size_t next = (gap.after + 1) % chain.points.size();
  return "gap of " + shown(gap.length) + " (median bond " + shown(bond) + ") between " +
         label(chain.residues[gap.after]) + " and " + label(chain.residues[next]) +
         (chain.name.empty() ? std::string() : " of chain " + chain.name) + ", model " +
         std::to_string(chain.model);
}

// The points `first` up to but without `last` as an open chain; the labels go along.
Chain piece_of(const Chain& chain, std::size_t first, std::size_t last) {
  const auto from = static_cast<std::ptrdiff_t>(first);
  const auto to = static_cast<std::ptrdiff_t>(last);
  Chain piece;
  piece.points.assign(chain.points.begin() + from, chain.points.begin() + to);
  piece.residues.assign(chain.residues.begin() + from, chain.residues.begin() + to);
  piece.name = chain.name;
  piece.source = chain.source;
  piece.model = chain.model;
  piece.warnings = chain.warnings;
  return piece;
}

// Opens a ring at its last gap: that gap then lies between its ends.
void open_at_last_gap(Chain& chain) {
  const std::size_t first = (chain.gaps.back().after + 1) % chain.points.size();
  const auto middle = static_cast<std::ptrdiff_t>(first);
  std::rotate(chain.points.begin(), chain.points.begin() + middle, chain.points.end());
  std::rotate(chain.residues.begin(), chain.residues.begin() + middle, chain.residues.end());
  chain.gaps.pop_back();
  if (first == 0) return;
  const std::size_t moved = chain.points.size() - first;
  for (Gap& gap : chain.gaps) gap.after += moved;
}

std::vector<Chain> split(Chain&& chain) {
  if (chain.closed) open_at_last_gap(chain);
  std::vector<Chain> pieces;
  std::size_t first = 0;
  for (const Gap& gap : chain.gaps) {
    pieces.push_back(piece_of(chain, first, gap.after + 1));
    first = gap.after + 1;
  }
  pieces.push_back(piece_of(chain, first, chain.points.size()));
  return pieces;
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

void select_residues(Chain& chain, const ResidueRange& range) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < chain.residues.size(); ++i) {
    if (!within(chain.residues[i], range)) continue;
    if (kept != i) {
      chain.points[kept] = chain.points[i];
      chain.residues[kept] = std::move(chain.residues[i]);
    }
    ++kept;
  }
  chain.points.resize(kept);
  chain.residues.resize(kept);
}

void settle_ends(Chain& chain, bool closed) {
  chain.closed = closed;
  const bool repeats = chain.points.size() > 2 && chain.points.front() == chain.points.back();
  if (!repeats) return;
  chain.points.pop_back();
  chain.residues.pop_back();
  chain.closed = true;
}

std::vector<Chain> settle_gaps(Chain&& chain, GapPolicy policy) {
  const std::vector<double> lengths = bond_lengths(chain);
  const double bond = preprocess::median_bond(lengths);
  // Without a usual length nothing is unusual.
  for (std::size_t i = 0; bond > 0 && i < lengths.size(); ++i) {
    if (lengths[i] > preprocess::kGapFactor * bond) chain.gaps.push_back({i, lengths[i]});
  }
  std::vector<Chain> chains;
  if (chain.gaps.empty() || policy == GapPolicy::kBridge) {
    if (!chain.gaps.empty()) {
      const std::size_t more = chain.gaps.size() - 1;
      chain.warnings.push_back(chain.source + ": " + described(chain, chain.gaps.front(), bond) +
                               (more == 0 ? "" : " and " + std::to_string(more) + " more") +
                               ", bridged by straight lines");
    }
    chains.push_back(std::move(chain));
    return chains;
  }
  if (policy == GapPolicy::kReject) {
    throw Error(ErrorCode::kBadInput,
                chain.source + ": " + described(chain, chain.gaps.front(), bond) +
                    "; complete the chain, or let gaps be bridged or split",
                chain.source);
  }
  return split(std::move(chain));
}

}  // namespace korvex::read
