#include "support/determination_ends.hpp"

#include <iostream>

#include "korvex.h"
#include "support/captured_stream.hpp"

namespace support {

bool determination_ends(const Chain& chain, int closure) {
  const CapturedStream log(std::clog);
  for (int attempt = 0; attempt < 20; ++attempt) {
    Chain work = chain;
    int result = 0;
    if (closure == 1) result = CloseChain_OUT(work, 1.25);
    if (closure == 2) result = CloseChain_2points(work, 1.25);
    if (closure == 3) result = CloseChain_1point(work, 1.25);
    if (closure == 4) CloseChain_1direction(work);
    if (result == -1) continue;
    ChainReduce(work, true);
    return FindTheKnotInParticularDirection(work, 0) != 40;
  }
  return false;
}

}  // namespace support
