#include <fstream>
#include <ios>
#include <iostream>
#include <locale>
#include <string>
#include <vector>

#include "korvex.h"
#include "recognition/ordinals.hpp"

namespace {

enum Type { kWholeChain = 0, kFingerprint = 2 };

void report_distances(const std::vector<ChainAtom>& chain, std::fstream& out) {
  const std::string verdict = CheckDistancesBetweenAtoms(chain);
  if (verdict == "OK") return;
  out << verdict << std::endl;
  std::clog << verdict << std::endl << std::endl;
}

void write_fingerprint(const std::vector<ChainAtom>& chain, std::fstream& out,
                       const char* outputName, int netStep, int refineThreshold, int closureType,
                       int trials, bool polyFlag) {
  constexpr int kMatrixMode = 1;
  constexpr int kPolyOption = 15;
  constexpr unsigned long long kMemoryLimit = 768000000;
  FindAllKnots(chain, out, netStep, refineThreshold, closureType, trials, kMatrixMode, kPolyOption,
               polyFlag, kMemoryLimit);
  std::clog << "The full matrix is written to the file " << outputName << ".\n";
}

void print_knot(const std::vector<ChainAtom>& chain, int closureType, int trials) {
  int counts[korvex::recognition::kOrdinals] = {};
  FindOneKnot(chain, counts, closureType, trials);
  std::cout << GiveTheNameOfKnot_allProj(counts) << std::endl;
}

}  // namespace

int FindKnots(int type, char* chainFile, char* outputName, int checkDistances, int netStep,
              int refineThreshold, int closureType, int trials, unsigned long long polyFlag) {
  FillKnotsArray();
  FillFulerenData();
  std::fstream out(outputName, std::ios::out);
  out.imbue(std::locale::classic());  // digits are not grouped, whatever the locale of the host
  bool error = false;
  const std::vector<ChainAtom> chain = ChainRead(chainFile, error);
  if (chain.empty() || error) {
    std::cerr << "Unable to open file or empty file (or wrong data)!\n";
    return -1;
  }
  if (checkDistances != 0) report_distances(chain, out);
  if (type == kFingerprint) {
    write_fingerprint(chain, out, outputName, netStep, refineThreshold, closureType, trials,
                      polyFlag != 0);
  } else if (type == kWholeChain) {
    print_knot(chain, closureType, trials);
  } else {
    std::cerr << "\nUnpossible error with type (korvex.FindKnots()).\n";
  }
  out.flush();
  out.close();
  return 0;
}
