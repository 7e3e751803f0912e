#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <vector>

#include "reference/reference.hpp"

namespace reference {

namespace {

constexpr int kFarPoints = 60;

fPointR3 to_point(const ChainAtom& atom) {
  return {static_cast<float>(atom.x), static_cast<float>(atom.y), static_cast<float>(atom.z)};
}

// Each piece is followed by two further copies of its last point.
void append_piece(std::vector<fPointR3>& pool, const std::vector<ChainAtom>& piece) {
  if (piece.empty()) return;
  for (const ChainAtom& atom : piece) pool.push_back(to_point(atom));
  pool.insert(pool.end(), 2, to_point(piece.back()));
}

// Hosts count on a seed giving the same run, so that these draws stay although nothing uses them.
void advance_generator() {
  const int a = std::rand() % kFarPoints;
  int b = std::rand() % kFarPoints;
  while (b == a) b = std::rand() % kFarPoints;
}

void close_piece(std::vector<ChainAtom>& piece, int closureType) {
  constexpr double kSphere = 1.25;
  if (closureType == 1) CloseChain_OUT(piece, kSphere);
  if (closureType == 2) CloseChain_2points(piece, kSphere);
  if (closureType == 3) CloseChain_1point(piece, kSphere);
}

// What a candidate's copies take besides the points pooled so far, in points.
std::uint64_t estimate(const Job& candidate, int trials) {
  return (static_cast<std::uint64_t>(std::int64_t{candidate.length}) + 100) *
         static_cast<std::uint64_t>(std::int64_t{trials});
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
  constexpr std::uint64_t kBytesPerPoint = 13;
  pool.clear();
  jobs.clear();
  if (nextJob >= candidates.size()) nextJob = 0;
  std::vector<ChainAtom> piece;
  for (; nextJob < candidates.size(); ++nextJob) {
    const Job& candidate = candidates[nextJob];
    if ((estimate(candidate, trials) + pool.size()) * kBytesPerPoint > memoryLimit) {
      return batch_is_full(jobs, pool, candidate);
    }
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

void CopyJobToChainAtom(const std::vector<fPointR3>& pool, std::vector<ChainAtom>& atoms, Job job) {
  atoms.clear();
  for (std::int32_t k = 0; k < job.length; ++k) {
    const fPointR3& point = pool[static_cast<std::size_t>(job.start + k)];
    atoms.push_back({point.x, point.y, point.z, 0});
  }
}

}  // namespace reference
