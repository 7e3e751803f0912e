// The plain, literal forms of the exported functions that have faster ones: the oracle that the
// fast forms must equal bit for bit, and the pipeline that benchmarks measure ratios against.
// Arguments and results are those of the functions of the same names in korvex.h. Whatever is
// called from here and not declared here (tables, names, rows, libpreprocess) is the library's own.
#pragma once

#include "korvex.h"

namespace reference {

std::pair<double, double> TwoEdgesCrossed(Edge A, Edge B, int& status);
bool FirstEdgeOver(Edge A, Edge B, double s, double u);
bool TypeOfCrossing(Edge A, Edge B);
int FindAllCrossings(std::vector<Edge>& edges, std::vector<Crossing>& crossings,
                     bool chainIsClosed);
int FillCrossings(std::vector<Edge>& edges, std::vector<Crossing>& crossings);

std::vector<std::vector<polynomial<int>>> CreateFoxMatrix(const std::vector<Crossing>& crossings);
std::vector<std::vector<double>> CreateFoxMatrix_double(const std::vector<Crossing>& crossings,
                                                        int t);
polynomial<int> det_poly(const std::vector<std::vector<polynomial<int>>>& matrix);
double det_double(std::vector<std::vector<double>>& matrix, int p);

int intersection(fPointR3* triangle, fPointR3* segment);
int ChainReduce(std::vector<fPointR3>& chain);
void ChainReduceANY(std::vector<fPointR3>& chain, std::vector<Job>& jobs, bool unused);

int FindTheKnotInParticularDirection_poly(std::vector<ChainAtom> chain, polynomial<int>& poly,
                                          double& value, int direction, int maxCrossings);
int FindTheKnotInParticularDirection(std::vector<ChainAtom> chain, int direction);
std::string FindTheKnotInParticularDirection_poly_string(std::vector<ChainAtom> chain,
                                                         int maxCrossings, bool numeric);
int FindOneKnot(const std::vector<ChainAtom>& chain, int* counts, int closureType, int trials);

int PrepareAllInfixesFuleren(const std::vector<ChainAtom>& chain, std::vector<fPointR3>& pool,
                             std::vector<Job>& jobs, const std::vector<Job>& candidates,
                             unsigned& nextJob, int trials, int closureType,
                             unsigned long long memoryLimit);
void CopyJobToChainAtom(const std::vector<fPointR3>& pool, std::vector<ChainAtom>& atoms, Job job);
int PrepareJobsFromNet(const std::vector<ChainAtom>& chain, std::vector<Job>& candidates, int step);
int PrepareJobsAroundNet(const std::vector<ChainAtom>& chain, std::vector<Job>& candidates,
                         const std::vector<RowFile>& rows, int step, int threshold);
int FindAllKnots(const std::vector<ChainAtom>& chain, std::fstream& out, int netStep,
                 int refineThreshold, int closureType, int trials, int matrixMode, int polyOption,
                 bool polyFlag, unsigned long long memoryLimit);
std::string FindAllKnots_string(const std::vector<ChainAtom>& chain, int netStep,
                                int refineThreshold, int closureType, int trials, int matrixMode,
                                int polyOption, bool polyFlag, unsigned long long memoryLimit);

}  // namespace reference
