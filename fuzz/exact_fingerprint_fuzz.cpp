// Exact fingerprints of small chains: every cell is the closure map of its sub-chain, on any number
// of threads.
#include <cmath>
#include <span>
#include <string>
#include <vector>

#include "korvex/closure_map.hpp"
#include "korvex/fingerprint.hpp"
#include "points.hpp"

namespace {

using fuzz::require;
using korvex::Fingerprint;
using korvex::Point;

double share_in(const korvex::ClosureMap& map, const std::string& type) {
  for (const korvex::TypeShare& some : map.types)
    if (some.type == type) return some.share;
  return 0;
}

void check_cell(const Fingerprint& fingerprint, std::span<const Point> chain, std::size_t begin,
                std::size_t end) {
  const auto from = static_cast<std::size_t>(fingerprint.stations()[begin]);
  const auto to = static_cast<std::size_t>(fingerprint.stations()[end]);
  const auto map =
      korvex::closure_map(chain.subspan(from, to - from + 1), {.boundaries = false}).value();
  double sum = 0;
  for (std::size_t type = 0; type < fingerprint.types().size(); ++type) {
    const double share = fingerprint.share(type, begin, end);
    const double tolerance = 1e-9 + map.doubt + fingerprint.doubt();
    require(std::abs(share - share_in(map, fingerprint.types()[type])) <= tolerance);
    sum += share;
  }
  require(std::abs(sum - 1) <= 1e-9);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const unsigned kind = bytes.take<std::uint8_t>();
  const std::size_t step = 1 + bytes.take<std::uint8_t>() % 3;
  const std::vector<Point> chain = fuzz::points(bytes, kind, 12);
  std::vector<Fingerprint> found;
  for (const unsigned threads : {1u, 2u}) {
    const auto compute = [&] {
      found.push_back(
          korvex::fingerprint(chain, {.exact = true, .step = step}, {.threads = threads}));
    };
    const bool refused = fuzz::is_refused(compute);
    require(refused ? fuzz::may_be_refused(chain) : fuzz::usable(chain));
    if (refused) return 0;
  }
  require(found[0].types() == found[1].types());
  // A sub-chain of a chain that touches itself may come apart another way than the whole.
  if (!fuzz::is_embedded(chain, false, 1e-3 * fuzz::extent(chain))) return 0;
  const std::size_t stations = found[0].stations().size();
  for (std::size_t begin = 0; begin < stations; ++begin) {
    for (std::size_t end = begin + 1; end < stations; ++end) {
      check_cell(found[0], chain, begin, end);
      for (std::size_t type = 0; type < found[0].types().size(); ++type)
        require(found[0].share(type, begin, end) == found[1].share(type, begin, end));
    }
  }
  return 0;
}
