// The determination of one chain: one direction's answer and text, and votes over closures, against
// the plain pipeline: results, messages and draws.
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "bytes.hpp"
#include "korvex.h"
#include "reference/reference.hpp"
#include "small_chain.hpp"
#include "support/determination_ends.hpp"
#include "support/trace.hpp"

namespace {

template <class Fast, class Plain>
void require_same(Fast fast, Plain plain) {
  if (support::trace(5, fast) != support::trace(5, plain)) std::abort();
}

template <class Find>
std::string invariant(Find find, const std::vector<ChainAtom>& chain, int direction, int limit) {
  polynomial<int> poly{{7, -7}};
  double value = -5;
  std::ostringstream text;
  text << find(chain, poly, value, direction, limit) << std::hexfloat << " " << value;
  for (const int c : poly.data()) text << " " << c;
  return text.str();
}

template <class Find>
std::string votes(Find find, const std::vector<ChainAtom>& chain, int closure, int trials) {
  int counts[42] = {};
  std::ostringstream text;
  text << find(chain, counts, closure, trials);
  for (const int count : counts) text << " " << count;
  return text.str();
}

}  // namespace

// The first byte chooses the kind of the coordinates, the second the closure and the trials.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr int kLimit = 9;  // the expansion takes a time that grows exponentially with it
  fuzz::Bytes bytes(data, size);
  const int kind = bytes.take<std::uint8_t>();
  const int choice = bytes.take<std::uint8_t>();
  const int direction = bytes.take<std::int8_t>();
  const std::vector<ChainAtom> chain = fuzz::small_chain(bytes, kind, 24);
  const int limit = choice % 3 == 0 ? -1 : kLimit;
  require_same(
      [&] { return invariant(FindTheKnotInParticularDirection_poly, chain, direction, limit); },
      [&] {
        return invariant(reference::FindTheKnotInParticularDirection_poly, chain, direction, limit);
      });
  const bool numeric = choice % 2 == 0;
  require_same([&] { return FindTheKnotInParticularDirection_poly_string(chain, kLimit, numeric); },
               [&] {
                 return reference::FindTheKnotInParticularDirection_poly_string(chain, kLimit,
                                                                                numeric);
               });
  const int closure = choice / 2 % 6;
  const int trials = choice / 12 % 4;
  if (chain.size() > 12 || !support::determination_ends(chain, closure)) return 0;
  require_same([&] { return votes(FindOneKnot, chain, closure, trials); },
               [&] { return votes(reference::FindOneKnot, chain, closure, trials); });
  return 0;
}
