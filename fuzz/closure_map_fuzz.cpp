// Maps of closures of small chains: they cover the sphere, are the same on any number of threads,
// and have the type in each region that the chain has when it is closed there.
#include <cmath>
#include <string>
#include <vector>

#include "korvex/closure_map.hpp"
#include "korvex/diagram.hpp"
#include "korvex/identify.hpp"
#include "points.hpp"

namespace {

using fuzz::require;
using korvex::ClosureMap;

void check_sums(const ClosureMap& map) {
  double regions = 0;
  double doubt = 0;
  for (std::size_t k = 0; k < map.regions.size(); ++k) {
    const korvex::ClosureRegion& region = map.regions[k];
    require(region.share >= 0 && region.type < map.types.size());
    require(k == 0 || region.share <= map.regions[k - 1].share);
    require(std::abs(norm(region.direction) - 1) < 1e-12);
    regions += region.share;
    if (region.in_doubt) doubt += region.share;
  }
  require(std::abs(regions - 1) < 1e-9 && std::abs(doubt - map.doubt) < 1e-9);
  double types = 0;
  std::size_t count = 0;
  for (const korvex::TypeShare& type : map.types) {
    require(type.regions > 0 && type.proven <= type.share + 1e-12);
    types += type.share;
    count += type.regions;
  }
  require(std::abs(types - 1) < 1e-9 && count == map.regions.size());
}

bool same(const ClosureMap& a, const ClosureMap& b) {
  return a.doubt == b.doubt && a.crossings == b.crossings && a.regions.size() == b.regions.size() &&
         std::equal(a.types.begin(), a.types.end(), b.types.begin(), b.types.end(),
                    [](const auto& x, const auto& y) {
                      return x.type == y.type && x.share == y.share && x.proven == y.proven;
                    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const unsigned kind = bytes.take<std::uint8_t>();
  const std::vector<korvex::Point> chain = fuzz::points(bytes, kind, 24);
  ClosureMap map;
  const bool refused = fuzz::is_refused([&] { map = korvex::closure_map(chain).value(); });
  require(refused ? chain.empty() || fuzz::may_be_refused(chain) : fuzz::usable(chain));
  if (refused) return 0;
  check_sums(map);
  require(same(korvex::closure_map(chain, {}, {.threads = 2}).value(), map));
  if (!fuzz::is_embedded(chain, false, 1e-3 * fuzz::extent(chain))) return 0;
  for (const korvex::ClosureRegion& region : map.regions) {
    if (region.clearance < 1e-3 || !region.proven) continue;
    const auto diagram = korvex::Diagram::of_open_chain(chain, region.direction);
    require(korvex::identify(diagram).name == map.types[region.type].type);
  }
  return 0;
}
