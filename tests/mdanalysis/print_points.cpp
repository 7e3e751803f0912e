// Prints the points of all chains of a trajectory as they are in the file, a line each behind one
// of model, step, time and number of points; -1 for a step or a time that the file has not.
#include <cstdio>

#include "korvex/error.hpp"
#include "korvex/read.hpp"

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  korvex::ReadOptions options;
  options.gaps = korvex::GapPolicy::kBridge;
  options.unwrap = false;
  if (argc > 2) options.topology = argv[2];
  try {
    visit_chains(argv[1], options, [](korvex::Chain&& chain) {
      std::printf("%lld %lld %.9g %zu\n", static_cast<long long>(chain.model),
                  static_cast<long long>(chain.step.value_or(-1)), chain.time.value_or(-1),
                  chain.points.size());
      for (const korvex::Point& point : chain.points) {
        std::printf("%.9g %.9g %.9g\n", point.x, point.y, point.z);
      }
      return true;
    });
  } catch (const korvex::Error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}
