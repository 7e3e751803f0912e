// A host that puts its own ProjectChain in the place of libpreprocess's. libkorvex has to use it.
#include <korvex.h>

#include <cmath>
#include <cstddef>
#include <iostream>
#include <numbers>

namespace {

int calls = 0;
bool flatten = false;

// A trefoil as a torus knot.
std::vector<ChainAtom> trefoil() {
  constexpr int kAtoms = 61;
  std::vector<ChainAtom> chain;
  for (int i = 0; i < kAtoms; ++i) {
    const double t = 2 * std::numbers::pi * (i + 0.3) / kAtoms;
    const double radius = 2 + std::cos(3 * t);
    chain.push_back({radius * std::cos(2 * t), radius * std::sin(2 * t), std::sin(3 * t), i + 1});
  }
  return chain;
}

// Looks along z, turned by a generic angle. When flattening, every chain is seen as a circle.
Edge seen(const ChainAtom& from, const ChainAtom& to, double turn, double next_turn) {
  Edge edge{};
  if (flatten) {
    edge.x1 = std::cos(turn);
    edge.y1 = std::sin(turn);
    edge.x2 = std::cos(next_turn);
    edge.y2 = std::sin(next_turn);
    return edge;
  }
  const double c = std::cos(0.3);
  const double s = std::sin(0.3);
  edge.x1 = c * from.x - s * from.y;
  edge.y1 = s * from.x + c * from.y;
  edge.z1 = from.z;
  edge.x2 = c * to.x - s * to.y;
  edge.y2 = s * to.x + c * to.y;
  edge.z2 = to.z;
  return edge;
}

bool check(bool holds, const char* what) {
  if (!holds) std::cerr << "failed: " << what << "\n";
  return holds;
}

}  // namespace

std::vector<Edge> ProjectChain(const std::vector<ChainAtom>& chain, int, bool) {
  ++calls;
  std::vector<Edge> edges;
  const std::size_t n = chain.size();
  const double step = 2 * std::numbers::pi / static_cast<double>(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double turn = step * static_cast<double>(i);
    edges.push_back(seen(chain[i], chain[(i + 1) % n], turn, turn + step));
  }
  return edges;
}

int main() {
  const std::vector<ChainAtom> chain = trefoil();
  bool good = check(FindTheKnot(chain) == 1, "the host's projection shows a trefoil");
  good &= check(calls == 1, "libkorvex projects through the host's ProjectChain");
  flatten = true;
  good &= check(FindTheKnot(chain) == 0, "the unknot, when the host's projection says so");
  return good ? 0 : 1;
}
