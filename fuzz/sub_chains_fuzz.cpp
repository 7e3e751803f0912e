// Fingerprints of small chains: every cell as if it were alone, the same on two threads; what is
// located holds in the fingerprint; and all formats can be written.
#include <algorithm>
#include <sstream>
#include <vector>

#include "engine/fingerprint/fingerprint_data.hpp"
#include "korvex/fingerprint.hpp"
#include "korvex/locate.hpp"
#include "korvex/report.hpp"
#include "points.hpp"

namespace {

using fuzz::require;
using korvex::Fingerprint;

void require_same(const Fingerprint& a, const Fingerprint& b) {
  require(a.types() == b.types() && a.stations() == b.stations() && a.trials() == b.trials());
  for (std::size_t begin = 0; begin < a.stations().size(); ++begin)
    for (std::size_t end = begin + 1; end < a.stations().size(); ++end)
      for (std::size_t type = 0; type < a.types().size(); ++type)
        require(a.share(type, begin, end) == b.share(type, begin, end));
}

void check_places(const Fingerprint& fingerprint, const korvex::Chain& chain, double threshold) {
  const korvex::Location location = korvex::locate(fingerprint, {.threshold = threshold});
  const auto& stations = fingerprint.stations();
  const auto& types = fingerprint.types();
  const auto station = [&](std::int32_t residue) {
    const auto found = std::lower_bound(stations.begin(), stations.end(), residue);
    require(found != stations.end() && *found == residue);
    return static_cast<std::size_t>(found - stations.begin());
  };
  for (const korvex::KnotPlace& knot : location.knots) {
    for (const korvex::KnotPlace& other : location.knots)
      require(&other == &knot || other.type != knot.type || other.core.first > knot.core.last ||
              knot.core.first > other.core.last);
    const auto type =
        static_cast<std::size_t>(std::find(types.begin(), types.end(), knot.type) - types.begin());
    require(type > 0 && type < types.size());
    const std::size_t begin = station(knot.core.first);
    const std::size_t end = station(knot.core.last);
    require(fingerprint.share(type, begin, end) == knot.core_share);
    require(knot.core_share >= threshold && knot.sub_chains > 0);
    require(knot.longest.length() >= knot.core.length());
    for (std::size_t from = begin; from < end; ++from)
      for (std::size_t to = from + 1; to <= end; ++to)
        if (stations[to] - stations[from] < knot.core.last - knot.core.first)
          require(fingerprint.share(type, from, to) < threshold);
  }
  for (const auto format : korvex::location_formats()) {
    std::ostringstream out;
    korvex::LocationReport report(format, out);
    report.add(chain, location);
    report.finish();
    require(out.good());
  }
}

void check_formats(const Fingerprint& fingerprint, const korvex::Chain& chain) {
  for (const auto format : korvex::fingerprint_formats()) {
    std::ostringstream out;
    write_fingerprint(fingerprint, chain.residues, format, out);
    require(out.good() && !out.str().empty());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const unsigned kind = bytes.take<std::uint8_t>();
  const unsigned choice = bytes.take<std::uint8_t>();
  korvex::FingerprintOptions options;
  if (choice % 2 == 1) options.closure = korvex::Closure::kTwoPoints;
  options.directions = 1 + choice / 2 % 2;
  options.step = 1 + choice / 6 % 3;
  korvex::Run run;
  run.seed = bytes.take<std::uint8_t>();
  korvex::Chain chain;
  chain.source = "points.xyz";
  chain.points = fuzz::points(bytes, kind, 12);
  for (std::size_t k = 0; k < chain.points.size(); ++k)
    chain.residues.push_back({static_cast<std::int32_t>(k) - 2, k % 5 == 3 ? 'B' : ' ', "GLY"});
  std::vector<Fingerprint> found;
  auto sub_chains = korvex::SubChains::kInClasses;
  const auto compute = [&] {
    found.push_back(korvex::fingerprint_with(korvex::usual_identification(run), chain.points,
                                             options, run, sub_chains));
  };
  const bool refused = fuzz::is_refused(compute);
  require(refused ? fuzz::may_be_refused(chain.points) : fuzz::usable(chain.points));
  if (refused) return 0;
  const bool threads = run.seed % 8 == 0;
  if (threads) run.threads = 2;
  if (!threads) sub_chains = korvex::SubChains::kOneByOne;
  compute();
  // A sub-chain of a chain that touches itself may come apart another way than the whole.
  if (threads || fuzz::is_embedded(chain.points, false, 1e-9 * fuzz::extent(chain.points)))
    require_same(found[0], found[1]);
  check_places(found[0], chain, (1 + choice % 4) / 4.0);
  if (run.seed % 8 == 1 && !chain.points.empty()) check_formats(found[0], chain);
  return 0;
}
