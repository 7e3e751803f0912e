#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "alexander/stored_polynomial.hpp"
#include "korvex.h"

namespace {

constexpr int kDirections = 60;
constexpr int kMostCrossings = 16;  // the polynomial determinant's limit
constexpr int kNumericPoint = 12;   // where the numeric determinant is taken

int ordinal_in_direction(const std::vector<ChainAtom>& chain, int direction) {
  polynomial<int> poly;
  double value = 0;
  return FindTheKnotInParticularDirection_poly(chain, poly, value, direction, kMostCrossings) != 0
             ? WhichKnot_OrdNr(poly)
             : WhichKnotDouble_OrdNr(value);
}

}  // namespace

int FindTheKnotInParticularDirection_poly(std::vector<ChainAtom> chain, polynomial<int>& poly,
                                          double& value, int direction, int maxCrossings) {
  FillKnotsArray();
  std::vector<Edge> edges = ProjectChain(chain, direction, true);
  std::vector<Crossing> crossings;
  if (FindAllCrossings(edges, crossings, true) != 0) return 1;
  FillCrossings(edges, crossings);
  if (static_cast<int>(crossings.size()) <= maxCrossings) {
    const auto matrix = CreateFoxMatrix(crossings);
    poly = matrix.empty() ? korvex::alexander::stored_polynomial({1})
                          : NormalizePoly(det_poly(matrix));
    return 1;
  }
  auto matrix = CreateFoxMatrix_double(crossings, kNumericPoint);
  value = matrix.empty() ? 1.0 : det_double(matrix, kNumericPoint);
  return 0;
}

int FindTheKnotInParticularDirection(std::vector<ChainAtom> chain, int direction) {
  return ordinal_in_direction(chain, direction % kDirections);
}

int FindTheKnotInParticularDirection_True(std::vector<ChainAtom> chain, int direction) {
  return ordinal_in_direction(chain, direction);
}

std::string FindTheKnotInParticularDirection_poly_string(std::vector<ChainAtom> chain,
                                                         int maxCrossings, bool numeric) {
  polynomial<int> poly;
  double value = 0.0;
  FindTheKnotInParticularDirection_poly(chain, poly, value, 0, numeric ? -1 : maxCrossings);
  if (numeric) return removeTrailingZeros(static_cast<float>(value));
  std::ostringstream text;
  const char* separator = "";
  for (const int coefficient : poly.data()) {
    text << separator << coefficient;
    separator = " ";
  }
  return text.str();
}

std::string removeTrailingZeros(float x) {
  std::ostringstream stream;
  stream << std::fixed << std::setprecision(3) << x;
  std::string text = stream.str();
  while (!text.empty() &&
         ((text.find('.') != std::string::npos && text.back() == '0') || text.back() == '.')) {
    text.pop_back();
  }
  return text;
}
