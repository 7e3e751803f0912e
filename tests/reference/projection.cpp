#include "preprocess/directions.hpp"
#include "reference/preprocess.hpp"

namespace reference {

std::vector<Edge> ProjectChain(const std::vector<ChainAtom>& chain, int direction, bool closed) {
  const int residue = ((direction % 60) + 60) % 60;
  const preprocess::ViewFrame frame = preprocess::view_frames()[static_cast<std::size_t>(residue)];
  std::vector<Edge> edges;
  if (chain.size() < 2) return edges;
  const std::size_t count = closed ? chain.size() : chain.size() - 1;
  for (std::size_t k = 0; k < count; ++k) {
    const korvex::Point a = preprocess::position(chain[k]);
    const korvex::Point b = preprocess::position(chain[(k + 1) % chain.size()]);
    Edge edge;
    edge.x1 = dot(frame.right, a);
    edge.y1 = dot(frame.up, a);
    edge.z1 = dot(frame.viewer, a);
    edge.x2 = dot(frame.right, b);
    edge.y2 = dot(frame.up, b);
    edge.z2 = dot(frame.viewer, b);
    edge.tag = 0;
    edges.push_back(edge);
  }
  return edges;
}

}  // namespace reference
