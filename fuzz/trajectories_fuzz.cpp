// The readers of trajectories in binary: any bytes behind a right beginning give chains of finite
// points, the same from memory as piece by piece, or korvex::Error.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "korvex/error.hpp"
#include "korvex/read.hpp"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

std::optional<std::vector<korvex::Chain>> read(const korvex::Source& source) {
  try {
    return read_chains(source, {.gaps = korvex::GapPolicy::kBridge});
  } catch (const korvex::Error& error) {
    require(std::string(error.what()).starts_with("input"));
    return {};
  }
}

}  // namespace

// The first byte chooses the format.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  static const std::string beginnings[] = {{"\0\0\x07\xcb", 4},
                                           {"\0\0\x07\xe7", 4},
                                           {"\0\0\x07\xc9\0\0\0\x0d\0\0\0\x0cGMX_trn_file", 24},
                                           {"\x54\0\0\0CORD", 8},
                                           {"\0\0\0\x54"
                                            "CORD",
                                            8},
                                           {"\x54\0\0\0\0\0\0\0CORD", 12}};
  const std::string bytes =
      beginnings[data[0] % 6] + std::string(reinterpret_cast<const char*>(data) + 1, size - 1);
  const auto whole = read(korvex::Source::memory(bytes, "input"));
  std::istringstream stream(bytes);
  const auto streamed = read(korvex::Source::stream(stream, "input"));
  require(whole == streamed);
  for (const korvex::Chain& chain : whole.value_or(std::vector<korvex::Chain>())) {
    require(!chain.points.empty() && chain.points.size() == chain.residues.size());
    for (const korvex::Point& point : chain.points)
      require(std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z));
  }
  return 0;
}
