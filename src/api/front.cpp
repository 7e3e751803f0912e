#include <fstream>
#include <ios>
#include <iostream>
#include <locale>
#include <string>
#include <vector>

#include "determination/numbers.hpp"
#include "korvex.h"

namespace {

// Trailing zero coefficients do not survive Boost's constructor.
polynomial<int> trimmed(const std::vector<int>& coefficients) {
  return polynomial<int>(coefficients.begin(), coefficients.end());
}

}  // namespace

int MainFindKnots(char* chainFile, char* outputName, int type, int checkDistances, int closureType,
                  int trials, int netStep, int refineThreshold, unsigned long long polyFlag) {
  return FindKnots(type, chainFile, outputName, checkDistances, netStep, refineThreshold,
                   closureType, trials, polyFlag);
}

int FindKnotFingerprint(const std::vector<ChainAtom>& chain, char* outputPath, int netStep,
                        int refineThreshold, int closureType, int trials, int matrixMode,
                        int polyOption, bool polyFlag, unsigned long long memoryLimit) {
  std::fstream out(std::string(outputPath), std::ios::out);
  out.imbue(std::locale::classic());  // digits are not grouped, whatever the locale of the host
  return FindAllKnots(chain, out, netStep, refineThreshold, closureType, trials, matrixMode,
                      polyOption, polyFlag, memoryLimit);
}

std::string FindKnotFingerprint_string(const std::vector<ChainAtom>& chain, int netStep,
                                       int refineThreshold, int closureType, int trials,
                                       int matrixMode, int polyOption, bool polyFlag,
                                       unsigned long long memoryLimit) {
  return FindAllKnots_string(chain, netStep, refineThreshold, closureType, trials, matrixMode,
                             polyOption, polyFlag, memoryLimit);
}

int FindMajorKnot(const std::vector<ChainAtom>& chain, int* counts, int closureType, int trials) {
  return FindOneKnot(chain, counts, closureType, trials);
}

std::string GiveTheNameOfKnot(int* counts) { return GiveTheNameOfKnot_allProj(counts); }

std::string GiveTheNameOfKnot_Matrix(int* counts) { return GiveTheNameOfKnot_toMatrix(counts); }

int FindTheKnot(std::vector<ChainAtom> chain) {
  return FindTheKnotInParticularDirection(std::move(chain), 0);
}

std::string FindTheKnot_poly_string(std::vector<ChainAtom> chain, int maxCrossings, bool numeric) {
  return FindTheKnotInParticularDirection_poly_string(std::move(chain), maxCrossings, numeric);
}

int FindTheKnot_poly_polynomial(std::vector<ChainAtom> chain, polynomial<int>& poly,
                                double& value) {
  const int result = FindTheKnotInParticularDirection_poly(std::move(chain), poly, value, 0,
                                                           korvex::determination::kMostCrossings);
  if (result == 0) poly = GivePolyByValM3(value);
  return result;
}

int FindTheKnot_poly(std::vector<ChainAtom> chain, std::vector<int>& coefficients, double& value) {
  polynomial<int> poly = trimmed(coefficients);
  const int result = FindTheKnot_poly_polynomial(std::move(chain), poly, value);
  coefficients.insert(coefficients.end(), poly.data().begin(), poly.data().end());
  return result;
}

void PrintsPoly(polynomial<int> poly) { ShowPoly(std::move(poly)); }

int CalculatesPoly(std::vector<int> coefficients, int x) {
  return CalculatePoly(trimmed(coefficients), x);
}

void PrintChain_ToMathematica(const std::vector<ChainAtom>& chain) {
  std::cout << "{";
  for (const ChainAtom& atom : chain)
    std::cout << "{" << atom.x << "," << atom.y << "," << atom.z << "},";
  std::cout << "}\n";
}
