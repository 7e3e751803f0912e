#include "classic/classic.hpp"

#include <algorithm>
#include <cstdlib>
#include <random>

#include "command.hpp"

namespace korvex::cli::classic {
namespace {

constexpr int kUnusable = 40;  // ordinal of a projection that gives no answer
constexpr double kFactor = 1.25;
constexpr std::size_t kFewestAtoms = 3;

[[noreturn]] void fail(const std::string& name, const std::string& reason) {
  throw Failure(Exit::kSomeInputsFailed, name + ": " + reason);
}

void require_atoms(const std::string& name, const std::vector<ChainAtom>& chain) {
  if (chain.size() >= kFewestAtoms) return;
  fail(name, "a chain of " + std::to_string(chain.size()) +
                 (chain.size() == 1 ? " atom" : " atoms") +
                 " cannot be closed into a loop; at least 3 are needed");
}

bool close(std::vector<ChainAtom>& chain, ClosureCode closure) {
  switch (closure) {
    case ClosureCode::kOut:
      return CloseChain_OUT(chain, kFactor) != -1;
    case ClosureCode::kTwoPoints:
      return CloseChain_2points(chain, kFactor) != -1;
    case ClosureCode::kOnePoint:
      return CloseChain_1point(chain, kFactor) != -1;
    case ClosureCode::kDirection:
      return CloseChain_1direction(chain) != -1;
    case ClosureCode::kNone:
      break;
  }
  return true;
}

std::vector<ChainAtom> closed(const std::string& name, const std::vector<ChainAtom>& chain,
                              ClosureCode closure) {
  constexpr int kAttempts = 1000;
  for (int attempt = 0; attempt < (is_random(closure) ? kAttempts : 1); ++attempt) {
    std::vector<ChainAtom> work = chain;
    if (close(work, closure)) return work;
  }
  fail(name, "closure '" + name_of(closure, kClosures) +
                 "' cannot close this chain: do its atoms coincide?");
}

bool has_usable_projection(std::vector<ChainAtom> chain) {
  constexpr int kDirections = 30;
  ChainReduce(chain, true);
  for (int direction = 0; direction < kDirections; ++direction)
    if (FindTheKnotInParticularDirection(chain, direction) != kUnusable) return true;
  return false;
}

// FindMajorKnot tries for ever to close and to project, so that one trial of each comes first, with
// an end to it.
void require_answer(const std::string& name, const std::vector<ChainAtom>& chain,
                    ClosureCode closure) {
  constexpr int kClosures = 10;
  require_atoms(name, chain);
  for (int i = 0; i < (is_random(closure) ? kClosures : 1); ++i)
    if (has_usable_projection(closed(name, chain, closure))) return;
  fail(name, "no projection of this chain has a usable determinant: it is too entangled");
}

std::vector<RankedKnot> ranking(const Counts& counts) {
  int total = 0;
  for (const int votes : counts) total += votes;
  std::vector<RankedKnot> result;
  for (int ordinal = 0; ordinal < static_cast<int>(counts.size()); ++ordinal) {
    const auto k = static_cast<std::size_t>(ordinal);
    if (counts[k] < 1) continue;
    result.push_back({ordinal, knotsArray[k].name, counts[k],
                      static_cast<double>(counts[k]) / static_cast<double>(total)});
  }
  std::stable_sort(result.begin(), result.end(),
                   [](const RankedKnot& a, const RankedKnot& b) { return a.votes > b.votes; });
  return result;
}

// The smallest batch that holds every copy of one sub-chain, in bytes: the longest one's points,
// and as many points again as a closure may add.
unsigned long long smallest_batch(const std::vector<ChainAtom>& chain, int trials) {
  constexpr unsigned long long kBytesPerPoint = 13;
  constexpr unsigned long long kPointsOfClosure = 100;
  return (chain.size() + kPointsOfClosure) * static_cast<unsigned long long>(trials) *
         kBytesPerPoint;
}

}  // namespace

unsigned choose_seed(std::optional<unsigned> given) {
  return given ? *given : std::random_device()();
}

int determinations(ClosureCode closure, int trials) { return is_random(closure) ? trials : 1; }

Answer determine(const std::string& name, const std::vector<ChainAtom>& chain, ClosureCode closure,
                 int trials, unsigned seed, const OnTrial& on_trial) {
  FillKnotsArray();
  std::srand(seed);
  require_answer(name, chain, closure);
  std::srand(seed);
  Counts counts = {};
  const int total = determinations(closure, trials);
  for (int done = 0; done < total; ++done) {
    on_trial(done, total);
    Counts one = {};
    FindMajorKnot(chain, one.data(), static_cast<int>(closure), 1);
    std::transform(counts.begin(), counts.end(), one.begin(), counts.begin(), std::plus<>());
  }
  std::string text = GiveTheNameOfKnot(counts.data());
  text.erase(text.find_last_not_of(' ') + 1);
  return {ranking(counts), text};
}

void write_fingerprint(const std::string& name, const std::vector<ChainAtom>& chain,
                       std::fstream& out, const FingerprintSettings& settings, unsigned seed) {
  constexpr int kMostCrossings = 15;  // of a diagram whose polynomial is listed
  constexpr unsigned long long kBatchForProgress = 4 << 20;  // batches decide nothing but the pace
  require_atoms(name, chain);
  const unsigned long long least = smallest_batch(chain, settings.trials);
  if (settings.memory < least) {
    fail(name, "one sub-chain with " + std::to_string(settings.trials) + " trials needs --memory " +
                   std::to_string(least) + " or more");
  }
  FillKnotsArray();
  std::srand(seed);
  FindAllKnots(chain, out, settings.step, settings.threshold, static_cast<int>(settings.closure),
               settings.trials, settings.matrix ? 1 : 0, kMostCrossings, false,
               std::min(settings.memory, std::max(least, kBatchForProgress)));
}

}  // namespace korvex::cli::classic
