#include <locale>
#include <sstream>
#include <string>
#include <vector>

#include "alexander/stored_polynomial.hpp"
#include "determination/one_knot.hpp"
#include "reference/preprocess.hpp"
#include "reference/reference.hpp"

namespace reference {

namespace {

constexpr int kDirections = 60;
constexpr int kMostCrossings = 16;  // the polynomial determinant's limit
constexpr int kNumericPoint = 12;   // where the numeric determinant is taken

int ordinal_in_direction(const std::vector<ChainAtom>& chain, int direction) {
  polynomial<int> poly;
  double value = 0;
  return reference::FindTheKnotInParticularDirection_poly(chain, poly, value, direction,
                                                          kMostCrossings) != 0
             ? WhichKnot_OrdNr(poly)
             : WhichKnotDouble_OrdNr(value);
}

}  // namespace

int FindTheKnotInParticularDirection_poly(std::vector<ChainAtom> chain, polynomial<int>& poly,
                                          double& value, int direction, int maxCrossings) {
  FillKnotsArray();
  std::vector<Edge> edges = reference::ProjectChain(chain, direction, true);
  std::vector<Crossing> crossings;
  if (reference::FindAllCrossings(edges, crossings, true) != 0) return 1;
  reference::FillCrossings(edges, crossings);
  if (static_cast<int>(crossings.size()) <= maxCrossings) {
    const auto matrix = reference::CreateFoxMatrix(crossings);
    poly = matrix.empty() ? korvex::alexander::stored_polynomial({1})
                          : NormalizePoly(reference::det_poly(matrix));
    return 1;
  }
  auto matrix = reference::CreateFoxMatrix_double(crossings, kNumericPoint);
  value = matrix.empty() ? 1.0 : reference::det_double(matrix, kNumericPoint);
  return 0;
}

int FindTheKnotInParticularDirection(std::vector<ChainAtom> chain, int direction) {
  return ordinal_in_direction(chain, direction % kDirections);
}

std::string FindTheKnotInParticularDirection_poly_string(std::vector<ChainAtom> chain,
                                                         int maxCrossings, bool numeric) {
  polynomial<int> poly;
  double value = 0.0;
  reference::FindTheKnotInParticularDirection_poly(chain, poly, value, 0,
                                                   numeric ? -1 : maxCrossings);
  if (numeric) return removeTrailingZeros(static_cast<float>(value));
  std::ostringstream text;
  text.imbue(std::locale::classic());
  const char* separator = "";
  for (const int coefficient : poly.data()) {
    text << separator << coefficient;
    separator = " ";
  }
  return text.str();
}

namespace {

struct PlainKernels {
  static void reduce(std::vector<ChainAtom>& chain) { reference::ChainReduce(chain, true); }
  static constexpr auto find_ordinal = reference::FindTheKnotInParticularDirection;
};

}  // namespace

int FindOneKnot(const std::vector<ChainAtom>& chain, int* counts, int closureType, int trials) {
  return korvex::determination::find_one_knot<PlainKernels>(chain, counts, closureType, trials);
}

}  // namespace reference
