// The closures and the projection: every input ends, keeps the chain's own atoms and adds finite
// ones; the projection equals the plain form.
#include <cmath>
#include <cstdlib>

#include "bytes.hpp"
#include "reference/preprocess.hpp"
#include "support/bits.hpp"

namespace {

bool same_atom(const ChainAtom& a, const ChainAtom& b) { return support::same_bits(a, b); }

bool same_edge(const Edge& a, const Edge& b) { return support::same_bits(a, b); }

int close(std::vector<ChainAtom>& chain, int way, double factor) {
  switch (way) {
    case 0:
      return CloseChain_OUT(chain, factor);
    case 1:
      return CloseChain_2points(chain, factor);
    case 2:
      return CloseChain_1point(chain, factor);
    default:
      return CloseChain_1direction(chain);
  }
}

// As callers do: an attempt that failed is tried again, and one of a hundred succeeds.
void check_closure(const std::vector<ChainAtom>& chain, int way, double factor) {
  std::vector<ChainAtom> closed = chain;
  int answer = -1;
  for (int attempt = 0; attempt < 100 && answer == -1; ++attempt) {
    answer = close(closed, way, factor);
    if (answer != 0 && closed.size() != chain.size()) std::abort();
  }
  if (answer != 0 && answer != -2) std::abort();
  if (closed.size() > chain.size() + 200) std::abort();
  if (!std::equal(chain.begin(), chain.end(), closed.begin(), same_atom)) std::abort();
  for (std::size_t k = chain.size(); k < closed.size(); ++k) {
    const ChainAtom& a = closed[k];
    if (!std::isfinite(a.x) || !std::isfinite(a.y) || !std::isfinite(a.z) || a.id != 0)
      std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const int way = bytes.take<std::uint8_t>() % 4;
  const bool raw = bytes.take<std::uint8_t>() % 2 == 0;
  const double factor = raw ? bytes.take<double>() : 1.25;
  const int direction = bytes.take<std::int32_t>();
  std::srand(bytes.take<std::uint8_t>());
  std::vector<ChainAtom> chain;
  while (bytes.left() > 0 && chain.size() < 60) {
    double c[3];
    for (double& v : c) v = raw ? bytes.take<double>() : bytes.take<std::int8_t>();
    chain.push_back({c[0], c[1], c[2], static_cast<std::int32_t>(chain.size())});
  }
  check_closure(chain, way, factor);
  const bool closed = way % 2 == 0;
  const auto fast = ProjectChain(chain, direction, closed);
  const auto plain = reference::ProjectChain(chain, direction, closed);
  if (!std::equal(fast.begin(), fast.end(), plain.begin(), plain.end(), same_edge)) std::abort();
  return 0;
}
