// Everything that a call can be told by: its result, its messages, its draws from rand().
#pragma once

#include <cstdlib>
#include <string>
#include <utility>

#include "support/captured_stream.hpp"

namespace support {

struct Trace {
  std::string result;
  std::string out;
  std::string log;
  std::string errors;
  int flushes;  // of the log stream
  int next_draw;
  bool operator==(const Trace&) const = default;
};

// Calls `run`, which gives its result as text, with the generator seeded.
template <class Run>
Trace trace(int seed, Run run) {
  std::srand(static_cast<unsigned>(seed));
  const CapturedStreams streams;
  std::string result = run();
  return {std::move(result),  streams.out.text(),    streams.log.text(),
          streams.err.text(), streams.log.flushes(), std::rand()};
}

}  // namespace support
