// The engine's reader: any bytes give chains of finite points and sound labels, or korvex::Error.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "korvex/error.hpp"
#include "korvex/read.hpp"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

void check(const korvex::Chain& chain, const korvex::ReadOptions& options) {
  require(!chain.points.empty() && chain.points.size() == chain.residues.size());
  require(chain.source == "input");
  for (const korvex::Point& point : chain.points)
    require(std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z));
  for (const korvex::Gap& gap : chain.gaps)
    require(gap.after + (chain.closed ? 0 : 1) < chain.points.size() && gap.length > 0);
  require(chain.gaps.empty() || options.gaps == korvex::GapPolicy::kBridge ||
          options.gaps == korvex::GapPolicy::kAuto);
  require(chain.closed ==
          (chain.ends != korvex::ChainEnds::kApart && chain.ends != korvex::ChainEnds::kNear));
  require(chain.mended == 0 || options.unwrap);
}

}  // namespace

// The first byte chooses the options.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const unsigned choice = data[0];
  korvex::ReadOptions options;
  options.closed = (choice & 1U) != 0;
  options.gaps = static_cast<korvex::GapPolicy>((choice >> 1U) % 4U);
  if ((choice & 8U) != 0) options.numbering = korvex::Numbering::kLabel;
  if ((choice & 16U) != 0) options.atoms = {"C", "CA"};
  options.unwrap = (choice & 32U) == 0;
  const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  std::vector<korvex::Chain> chains;
  try {
    chains = read_chains(korvex::Source::memory(bytes, "input"), options);
  } catch (const korvex::Error& error) {
    require(std::string(error.what()).starts_with("input"));
    return 0;
  }
  require(!chains.empty());
  for (const korvex::Chain& chain : chains) check(chain, options);
  return 0;
}
