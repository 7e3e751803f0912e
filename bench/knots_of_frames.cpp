// What knots of many frames cost without Python: for bench/python_bench.py to compare with.
//
// usage: knots_of_frames BEADS THREADS ROUNDS < frames
//
// Reads the positions of rings of so many beads as doubles, and writes the processor time and the
// time by the clock of each round, in seconds.
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "korvex/each.hpp"
#include "korvex/votes.hpp"

namespace {

double processor_time() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

std::vector<korvex::Point> points_of(std::istream& in) {
  std::vector<korvex::Point> points;
  korvex::Point point{};
  while (in.read(reinterpret_cast<char*>(&point), sizeof point)) points.push_back(point);
  return points;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const std::size_t beads = std::stoul(argv[1]);
  const unsigned threads = static_cast<unsigned>(std::stoul(argv[2]));
  const std::vector<korvex::Point> points = points_of(std::cin);
  for (int round = std::atoi(argv[3]); round > 0; --round) {
    const double before = processor_time();
    const auto begin = std::chrono::steady_clock::now();
    std::vector<korvex::Votes> found(points.size() / beads);
    korvex::for_each_index(found.size(),
                           [&](std::size_t i) {
                             const std::span frame(points.data() + i * beads, beads);
                             found[i] = korvex::vote(frame, {.closure = korvex::Closure::kRing},
                                                     {.threads = 1});
                           },
                           {.threads = threads});
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
    std::cout << processor_time() - before << ' ' << passed.count() << std::endl;
  }
}
