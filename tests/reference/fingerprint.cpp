#include <fstream>
#include <string>
#include <vector>

#include "fingerprint/driver.hpp"
#include "reference/reference.hpp"

namespace reference {

namespace {

struct PlainPasses {
  static constexpr auto PrepareJobsFromNet = reference::PrepareJobsFromNet;
  static constexpr auto PrepareJobsAroundNet = reference::PrepareJobsAroundNet;
  static constexpr auto PrepareAllInfixesFuleren = reference::PrepareAllInfixesFuleren;
  static constexpr auto ChainReduceANY = reference::ChainReduceANY;
  static constexpr auto CopyJobToChainAtom = reference::CopyJobToChainAtom;
  static constexpr auto find_ordinal = reference::FindTheKnotInParticularDirection;
  static constexpr auto invariant_text = reference::FindTheKnotInParticularDirection_poly_string;
};

}  // namespace

int FindAllKnots(const std::vector<ChainAtom>& chain, std::fstream& out, int netStep,
                 int refineThreshold, int closureType, int trials, int matrixMode, int polyOption,
                 bool polyFlag, unsigned long long memoryLimit) {
  return korvex::fingerprint_driver::find_all_knots<PlainPasses>(
      chain, out,
      {netStep, refineThreshold, closureType, trials, matrixMode, polyOption, polyFlag,
       memoryLimit});
}

std::string FindAllKnots_string(const std::vector<ChainAtom>& chain, int netStep,
                                int refineThreshold, int closureType, int trials, int matrixMode,
                                int polyOption, bool polyFlag, unsigned long long memoryLimit) {
  return korvex::fingerprint_driver::all_knots_text<PlainPasses>(
      chain, {netStep, refineThreshold, closureType, trials, matrixMode, polyOption, polyFlag,
              memoryLimit});
}

}  // namespace reference
