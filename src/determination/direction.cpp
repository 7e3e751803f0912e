#include "determination/direction.hpp"

#include <iomanip>
#include <string>
#include <utility>
#include <vector>

#include "alexander/alexander_polynomial.hpp"
#include "alexander/numeric_determinant.hpp"
#include "determination/numbers.hpp"
#include "korvex.h"
#include "preprocess/directions.hpp"
#include "records/text_stream.hpp"

namespace korvex::determination {

namespace {

constexpr int kNumericPoint = 12;  // where the numeric determinant is taken

// As FindTheKnotInParticularDirection_poly.
int find_invariant(const std::vector<ChainAtom>& chain, polynomial<int>& poly, double& value,
                   int direction, int max_crossings) {
  FillKnotsArray();
  std::vector<Edge> edges = ProjectChain(chain, direction, true);
  std::vector<Crossing> crossings;
  if (FindAllCrossings(edges, crossings, true) != 0) return 1;
  FillCrossings(edges, crossings);
  if (static_cast<int>(crossings.size()) <= max_crossings) {
    poly = alexander::alexander_polynomial(crossings);
    return 1;
  }
  value = alexander::alexander_value(crossings, kNumericPoint);
  return 0;
}

int find_ordinal_unreduced(const std::vector<ChainAtom>& chain, int direction) {
  polynomial<int> poly;
  double value = 0;
  return find_invariant(chain, poly, value, direction, kMostCrossings) != 0
             ? WhichKnot_OrdNr(std::move(poly))
             : WhichKnotDouble_OrdNr(value);
}

}  // namespace

int find_ordinal(const std::vector<ChainAtom>& chain, int direction) {
  return find_ordinal_unreduced(chain, direction % preprocess::kDirections);
}

std::string invariant_text(const std::vector<ChainAtom>& chain, int max_crossings, bool numeric) {
  polynomial<int> poly;
  double value = 0.0;
  find_invariant(chain, poly, value, 0, numeric ? -1 : max_crossings);
  if (numeric) return removeTrailingZeros(static_cast<float>(value));
  std::ostringstream text = records::text_stream();
  const char* separator = "";
  for (const int coefficient : poly.data()) {
    text << separator << coefficient;
    separator = " ";
  }
  return text.str();
}

}  // namespace korvex::determination

int FindTheKnotInParticularDirection_poly(std::vector<ChainAtom> chain, polynomial<int>& poly,
                                          double& value, int direction, int maxCrossings) {
  return korvex::determination::find_invariant(chain, poly, value, direction, maxCrossings);
}

int FindTheKnotInParticularDirection(std::vector<ChainAtom> chain, int direction) {
  return korvex::determination::find_ordinal(chain, direction);
}

int FindTheKnotInParticularDirection_True(std::vector<ChainAtom> chain, int direction) {
  return korvex::determination::find_ordinal_unreduced(chain, direction);
}

std::string FindTheKnotInParticularDirection_poly_string(std::vector<ChainAtom> chain,
                                                         int maxCrossings, bool numeric) {
  return korvex::determination::invariant_text(chain, maxCrossings, numeric);
}

std::string removeTrailingZeros(float x) {
  std::ostringstream stream = korvex::records::text_stream();
  stream << std::fixed << std::setprecision(3) << x;
  std::string text = stream.str();
  while (!text.empty() &&
         ((text.find('.') != std::string::npos && text.back() == '0') || text.back() == '.'))
    text.pop_back();
  return text;
}
