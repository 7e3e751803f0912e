// Whole fingerprints of small chains against the plain driver: text, messages and draws.
#include <cstdlib>
#include <vector>

#include "bytes.hpp"
#include "korvex.h"
#include "reference/reference.hpp"
#include "small_chain.hpp"
#include "support/trace.hpp"

// The first byte chooses the kind of the coordinates, the next ones the settings.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const int kind = bytes.take<std::uint8_t>();
  const int choice = bytes.take<std::uint8_t>();
  const int threshold = bytes.take<std::uint8_t>() % 64;
  const unsigned long long limit = 64ULL * bytes.take<std::uint16_t>();
  std::vector<ChainAtom> chain = fuzz::small_chain(bytes, kind, 13);
  if (chain.empty()) return 0;
  const int step = static_cast<int>(chain.size()) / 4 + 1 + choice % 2 * 3;
  const int closure = choice / 2 % 5;
  const int trials = choice / 10 % 3;
  const int mode = choice / 30 % 2;
  const bool numeric = choice / 60 % 3 == 0;
  const auto run = [&](auto find) {
    return support::trace(choice, [&] {
      return find(chain, step, threshold, closure, trials, mode, 9, numeric, limit);
    });
  };
  if (run(FindAllKnots_string) != run(reference::FindAllKnots_string)) std::abort();
  return 0;
}
