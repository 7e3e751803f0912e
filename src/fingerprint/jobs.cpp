#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <vector>

#include "determination/numbers.hpp"
#include "korvex.h"
#include "preprocess/directions.hpp"

namespace {

using korvex::determination::kCloseOnePoint;
using korvex::determination::kCloseOut;
using korvex::determination::kCloseTwoPoints;
using korvex::determination::kFactor;
using preprocess::kDirections;

constexpr std::uint64_t kBytesPerPoint = 13;

fPointR3 to_point(const ChainAtom& atom) {
  return {static_cast<float>(atom.x), static_cast<float>(atom.y), static_cast<float>(atom.z)};
}

// Each piece is followed by two further copies of its last point.
void append_piece(std::vector<fPointR3>& pool, const std::vector<ChainAtom>& piece) {
  if (piece.empty()) return;
  const std::size_t start = pool.size();
  pool.resize(start + piece.size() + 2);
  const auto behind = std::transform(piece.begin(), piece.end(),
                                     pool.begin() + static_cast<std::ptrdiff_t>(start), to_point);
  std::fill(behind, pool.end(), to_point(piece.back()));
}

// Hosts count on a seed giving the same run, so that these draws stay although nothing uses them.
void advance_generator() {
  const int a = std::rand() % kDirections;
  int b = std::rand() % kDirections;
  while (b == a) b = std::rand() % kDirections;
}

void close_piece(std::vector<ChainAtom>& piece, int closureType) {
  if (closureType == kCloseOut) CloseChain_OUT(piece, kFactor);
  if (closureType == kCloseTwoPoints) CloseChain_2points(piece, kFactor);
  if (closureType == kCloseOnePoint) CloseChain_1point(piece, kFactor);
}

// What a candidate's copies take besides the points pooled so far, in points.
std::uint64_t estimate(const Job& candidate, int trials) {
  return (static_cast<std::uint64_t>(std::int64_t{candidate.length}) + 100) *
         static_cast<std::uint64_t>(std::int64_t{trials});
}

// Makes room for the points of the candidates from `next` on, as far as the budget goes, and for
// what follows each piece, so that the pool does not grow by copies of itself: closures add up to
// five points, and the last one is pooled three times. Jobs address 2^31 points.
void reserve(std::vector<fPointR3>& pool, std::vector<Job>& jobs,
             const std::vector<Job>& candidates, unsigned next, int trials,
             unsigned long long memory_limit) {
  constexpr std::uint64_t kAdded = 7;
  constexpr std::uint64_t kMostPoints = std::uint64_t{1} << 31;
  const auto copies = static_cast<std::uint64_t>(std::max(trials, 0));
  std::uint64_t points = 0;
  std::uint64_t count = 0;
  for (std::size_t k = next; k < candidates.size() && points < kMostPoints; ++k) {
    if ((estimate(candidates[k], trials) + points) * kBytesPerPoint > memory_limit) break;
    const std::int64_t length = std::int64_t{candidates[k].end} - candidates[k].begin + 1;
    points += copies * (static_cast<std::uint64_t>(std::max<std::int64_t>(length, 0)) + kAdded);
    count += copies;
  }
  pool.reserve(std::min(points, kMostPoints));
  jobs.reserve(count);
}

void report_batch(const std::vector<Job>& jobs, const std::vector<fPointR3>& pool) {
  std::clog << "created " << jobs.size() << " jobs of total size " << pool.size();
}

int batch_is_full(const std::vector<Job>& jobs, const std::vector<fPointR3>& pool,
                  const Job& next) {
  report_batch(jobs, pool);
  std::clog << "The last: " << next.firstId << " " << next.lastId << ". Will continue."
            << std::endl;
  if (!jobs.empty()) return 0;
  std::cerr << "UUUPS. -------There is no memory? We quit here and do not check whole matrix. "
               "SORRY. \n";
  return 1;
}

}  // namespace

int PrepareAllInfixesFuleren(const std::vector<ChainAtom>& chain, std::vector<fPointR3>& pool,
                             std::vector<Job>& jobs, const std::vector<Job>& candidates,
                             unsigned& nextJob, int trials, int closureType,
                             unsigned long long memoryLimit) {
  pool.clear();
  jobs.clear();
  if (nextJob >= candidates.size()) nextJob = 0;
  reserve(pool, jobs, candidates, nextJob, trials, memoryLimit);
  std::vector<ChainAtom> piece;
  for (; nextJob < candidates.size(); ++nextJob) {
    const Job& candidate = candidates[nextJob];
    if ((estimate(candidate, trials) + pool.size()) * kBytesPerPoint > memoryLimit)
      return batch_is_full(jobs, pool, candidate);
    for (int copy = 0; copy < trials; ++copy) {
      advance_generator();
      piece.assign(chain.begin() + (candidate.begin - 1), chain.begin() + candidate.end);
      close_piece(piece, closureType);
      jobs.push_back({static_cast<std::int32_t>(pool.size()),
                      static_cast<std::int32_t>(piece.size()), candidate.firstId, candidate.lastId,
                      candidate.begin, candidate.end});
      append_piece(pool, piece);
    }
  }
  report_batch(jobs, pool);
  std::clog << std::endl;
  return 1;
}

int PrepareAllInfixes(const std::vector<ChainAtom>& chain, std::vector<fPointR3>& pool,
                      std::vector<Job>& jobs, unsigned& len, unsigned& nextStart,
                      unsigned long long memoryLimit) {
  pool.clear();
  jobs.clear();
  if (len < 4 || chain.size() < len) {
    std::cerr << "Problem with 'len' in PrepareAllInfixes(), korvex. Tell it Velna. \n";
    return -1;
  }
  std::vector<ChainAtom> piece;
  for (; chain.size() >= len; ++len) {
    if (chain.size() - len < nextStart) nextStart = 0;
    for (; chain.size() - len >= nextStart; ++nextStart) {
      if ((len + pool.size()) * 26 + 52 > memoryLimit) return 0;
      const auto first = chain.begin() + nextStart;
      piece.assign(first, first + len);
      jobs.push_back({static_cast<std::int32_t>(pool.size()), static_cast<std::int32_t>(len),
                      piece.front().id, piece.back().id, static_cast<std::int32_t>(nextStart + 1),
                      static_cast<std::int32_t>(nextStart + len)});
      append_piece(pool, piece);
    }
  }
  report_batch(jobs, pool);
  std::clog << ". Zaczynamy od id " << nextStart << ", len " << len << std::endl;
  return 1;
}

void CopyJobToChainAtom(const std::vector<fPointR3>& pool, std::vector<ChainAtom>& atoms, Job job) {
  atoms.resize(static_cast<std::size_t>(std::max(job.length, 0)));
  if (atoms.empty()) return;
  std::transform(pool.begin() + job.start,
                 pool.begin() + job.start + static_cast<std::ptrdiff_t>(atoms.size()),
                 atoms.begin(), [](const fPointR3& point) {
                   return ChainAtom{point.x, point.y, point.z, 0};
                 });
}
