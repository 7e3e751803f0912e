#include "fingerprint/driver.hpp"

#include <fstream>

#include "determination/direction.hpp"

namespace {

// The exported functions; the two that are not spare a copy of the chain.
struct FastKernels {
  static constexpr auto PrepareJobsFromNet = ::PrepareJobsFromNet;
  static constexpr auto PrepareJobsAroundNet = ::PrepareJobsAroundNet;
  static constexpr auto PrepareAllInfixesFuleren = ::PrepareAllInfixesFuleren;
  static constexpr auto ChainReduceANY = ::ChainReduceANY;
  static constexpr auto CopyJobToChainAtom = ::CopyJobToChainAtom;
  static constexpr auto find_ordinal = korvex::determination::find_ordinal;
  static constexpr auto invariant_text = korvex::determination::invariant_text;
};

}  // namespace

int FindAllKnots(const std::vector<ChainAtom>& chain, std::fstream& out, int netStep,
                 int refineThreshold, int closureType, int trials, int matrixMode, int polyOption,
                 bool polyFlag, unsigned long long memoryLimit) {
  return korvex::fingerprint_driver::find_all_knots<FastKernels>(
      chain, out,
      {netStep, refineThreshold, closureType, trials, matrixMode, polyOption, polyFlag,
       memoryLimit});
}

std::string FindAllKnots_string(const std::vector<ChainAtom>& chain, int netStep,
                                int refineThreshold, int closureType, int trials, int matrixMode,
                                int polyOption, bool polyFlag, unsigned long long memoryLimit) {
  return korvex::fingerprint_driver::all_knots_text<FastKernels>(
      chain, {netStep, refineThreshold, closureType, trials, matrixMode, polyOption, polyFlag,
              memoryLimit});
}
