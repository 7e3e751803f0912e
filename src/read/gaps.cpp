#include "read/gaps.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include "geometry/bonds.hpp"
#include "korvex/error.hpp"
#include "read/cell.hpp"

namespace korvex::read {
namespace {

// Residue numbers that jump across more than this many median bonds leave residues out.
constexpr double kJumpFactor = 1.2;

double distance(const Point& a, const Point& b) {
  return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

// The distance from each point to the next one; of a closed chain the last to the first as well.
std::vector<double> bond_lengths(const Chain& chain) {
  std::vector<double> lengths;
  const std::size_t size = chain.points.size();
  lengths.reserve(size);
  for (std::size_t i = 0; i + 1 < size; ++i)
    lengths.push_back(distance(chain.points[i], chain.points[i + 1]));
  if (chain.closed && size > 1)
    lengths.push_back(distance(chain.points.back(), chain.points.front()));
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

// "gap of 9.53 (median bond 3.802) between HIS 160 and SER 171 of chain A, model 1"
std::string described(const Chain& chain, const Gap& gap) {
  const std::size_t next = (gap.after + 1) % chain.points.size();
  return "gap of " + shown(gap.length) + " (median bond " + shown(chain.bond) + ") between " +
         label(chain.residues[gap.after]) + " and " + label(chain.residues[next]) +
         (chain.name.empty() ? std::string() : " of chain " + chain.name) + ", model " +
         std::to_string(chain.model);
}

// True where residues of the polymer are missing after point i, as their numbers say.
bool skips_residues(const RawChain& raw, std::size_t i) {
  if (i + 1 >= raw.chain.residues.size()) return false;
  if (!raw.sequence.empty()) {
    const std::optional<std::int32_t>& before = raw.sequence[i];
    const std::optional<std::int32_t>& after = raw.sequence[i + 1];
    return before && after && std::int64_t{*after} > std::int64_t{*before} + 1;
  }
  return !raw.beads && std::int64_t{raw.chain.residues[i + 1].number} >
                           raw.chain.residues[i].number + std::int64_t{1};
}

std::vector<Gap> gaps_of(const RawChain& raw, const std::vector<double>& lengths, double max_gap) {
  std::vector<Gap> gaps;
  const double bond = raw.chain.bond;
  if (!(bond > 0)) return gaps;  // without a usual length nothing is unusual
  const bool varying = raw.beads && bonds_vary(lengths, bond);
  const double longest = (varying ? max_gap : preprocess::kGapFactor) * bond;
  for (std::size_t i = 0; i < lengths.size(); ++i) {
    const bool skips =
        skips_residues(raw, i) && (!raw.sequence.empty() || lengths[i] > kJumpFactor * bond);
    if (skips || lengths[i] > longest) gaps.push_back({i, lengths[i]});
  }
  return gaps;
}

// The points `first` up to but without `last` as an open chain; all that belongs to them goes
// along.
Chain part_of(const RawChain& raw, std::size_t first, std::size_t last) {
  const auto from = static_cast<std::ptrdiff_t>(first);
  const auto to = static_cast<std::ptrdiff_t>(last);
  const Chain& chain = raw.chain;
  Chain part;
  part.points.assign(chain.points.begin() + from, chain.points.begin() + to);
  part.residues.assign(chain.residues.begin() + from, chain.residues.begin() + to);
  if (!chain.plddt.empty()) part.plddt.assign(chain.plddt.begin() + from, chain.plddt.begin() + to);
  part.name = chain.name;
  part.source = chain.source;
  part.model = chain.model;
  part.time = chain.time;
  part.step = chain.step;
  part.bond = chain.bond;
  for (const Gap& gap : chain.gaps)
    if (gap.after >= first && gap.after + 1 < last)
      part.gaps.push_back({gap.after - first, gap.length});
  for (std::size_t i = first + 1; !raw.mended.empty() && i < last; ++i)
    part.mended += raw.mended[i] ? 1U : 0U;
  return part;
}

// Begins a ring behind its last broken bond, so that this one lies between its ends.
void open_at(RawChain& raw, std::vector<Gap>& broken) {
  Chain& chain = raw.chain;
  const std::size_t size = chain.points.size();
  const std::size_t first = (broken.back().after + 1) % size;
  const auto turn = [first](auto& values) {
    if (values.empty()) return;
    std::rotate(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(first), values.end());
  };
  turn(chain.points);
  turn(chain.residues);
  turn(chain.plddt);
  turn(raw.mended);
  for (std::vector<Gap>* gaps : {&chain.gaps, &broken}) {
    for (Gap& gap : *gaps) gap.after = (gap.after + size - first) % size;
    std::sort(gaps->begin(), gaps->end(),
              [](const Gap& a, const Gap& b) { return a.after < b.after; });
  }
}

std::vector<Chain> split(RawChain&& raw, std::vector<Gap> broken) {
  double length = 0;
  if (raw.chain.closed) {
    open_at(raw, broken);
    length = broken.back().length;
    broken.pop_back();
  }
  std::vector<Chain> parts;
  std::size_t first = 0;
  const auto add = [&](std::size_t last) {
    parts.push_back(part_of(raw, first, last));
    parts.back().part = static_cast<int>(parts.size());
    parts.back().split_length = length;
    first = last;
  };
  for (const Gap& gap : broken) {
    add(gap.after + 1);
    length = gap.length;
  }
  add(raw.chain.points.size());
  return parts;
}

// True where no bond can be longer than kGapFactor medians, since none is than so many of the
// shortest: a quick answer for most frames of a trajectory, and false says nothing.
bool are_even(const std::vector<Point>& points) {
  constexpr double kSure = preprocess::kGapFactor * preprocess::kGapFactor * (1 - 1e-9);
  constexpr double kLargest = 1e300;
  constexpr double kSmallest = 1e-290;
  double least = std::numeric_limits<double>::infinity();
  double most = 0;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const Point bond = points[i] - points[i - 1];
    const double square = dot(bond, bond);
    least = std::min(least, square);
    most = std::max(most, square);
  }
  return least > kSmallest && most < kLargest && most <= kSure * least;
}

// Fewer points than a knot needs say nothing by lying close.
void look_at_ends(Chain& chain) {
  constexpr std::size_t kFewest = 6;
  if (chain.closed || chain.points.size() < kFewest) return;
  const double apart = distance(chain.points.front(), chain.points.back());
  if (apart <= preprocess::kGapFactor * chain.bond) chain.ends = ChainEnds::kNear;
}

}  // namespace

bool bonds_vary(const std::vector<double>& lengths, double median) {
  constexpr double kMuch = 1.2;
  if (lengths.empty() || *std::max_element(lengths.begin(), lengths.end()) <= kMuch * median)
    return false;
  std::vector<double> sorted = lengths;
  const auto upper = sorted.begin() + static_cast<std::ptrdiff_t>((sorted.size() - 1) * 3 / 4);
  std::nth_element(sorted.begin(), upper, sorted.end());
  return *upper > kMuch * median;
}

void mend(RawChain& raw) {
  std::vector<Point>& points = raw.chain.points;
  if (raw.cell.edges.empty() || points.size() < 2 || are_even(points)) return;
  const Lattice lattice(raw.cell);
  if (lattice.empty()) return;
  const double bond = preprocess::median_bond(bond_lengths(raw.chain));
  if (!(bond > 0)) return;
  std::vector<bool> may_break(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) may_break[i] = !skips_residues(raw, i);
  raw.mended = mend_bonds(points, lattice, preprocess::kGapFactor * bond, may_break);
}

std::vector<Chain> settle_gaps(RawChain&& raw, const ReadOptions& options) {
  Chain& chain = raw.chain;
  const std::vector<double> lengths = bond_lengths(chain);
  chain.bond = preprocess::median_bond(lengths);
  std::vector<Gap> broken;
  for (const Gap& gap : gaps_of(raw, lengths, options.max_gap)) {
    if (options.gaps == GapPolicy::kReject) {
      throw Error(ErrorCode::kBadInput,
                  chain.source + ": " + described(chain, gap) +
                      "; complete the chain, or let gaps be bridged or split",
                  chain.source);
    }
    const bool bridged =
        options.gaps == GapPolicy::kBridge ||
        (options.gaps == GapPolicy::kAuto && gap.length <= options.max_gap * chain.bond);
    (bridged ? chain.gaps : broken).push_back(gap);
  }
  if (!broken.empty()) return split(std::move(raw), std::move(broken));
  chain.mended = static_cast<std::size_t>(std::count(raw.mended.begin(), raw.mended.end(), true));
  look_at_ends(chain);
  std::vector<Chain> chains;
  chains.push_back(std::move(chain));
  return chains;
}

}  // namespace korvex::read
