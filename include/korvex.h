// korvex: which knot does a chain form, and where along it?
//
// The exported interface: free functions over plain records. It decides the knot type of a closed
// chain from the Alexander polynomial of a projection, votes over closures of an open chain, and
// tabulates the knots of all sub-chains (the fingerprint). Knot types are told up to mirror image:
// the Alexander polynomial does not separate the left-handed from the right-handed trefoil.
//
// Conventions
// - Knot ordinal: index 0..41 into `knotsArray`; 0 is the unknot, 1..38 the recognisable knots, 39
//   no match, 40 "Problem with projecting", 41 a further failure class.
// - Knot counters: an `int[42]` of the caller's, indexed by knot ordinal.
// - Polynomials: coefficients lowest power first.
// - Positions in a chain are 1-based where a record calls them `begin` and `end`; indices are
//   0-based everywhere else.
// - Nothing is thrown on purpose; allocation failures propagate. Failures are written to
//   `std::cerr`, progress and projection problems to `std::clog`, answers to `std::cout`.
// - Not thread-safe: every projection rewrites `knotsArray`, and closures draw from `rand()`, which
//   the library never seeds. Call the library from one thread at a time.
//
// Sources: J. W. Alexander, Trans. AMS 30, 275 (1928), for the polynomial; R. H. Crowell and R. H.
// Fox, Introduction to Knot Theory (1963), for the matrix by Fox calculus; K. Koniaris and M.
// Muthukumar, Phys. Rev. Lett. 66, 2211 (1991), for triangle elimination; J. I. Sulkowska, E. J.
// Rawdon, K. C. Millett, J. N. Onuchic and A. Stasiak, PNAS 109, E1715 (2012), for fingerprints.
#pragma once

#include <boost/math/tools/polynomial.hpp>
#include <cstdint>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "korvex/export.hpp"
#include "preprocess.h"

using boost::math::tools::polynomial;

// Records.
// ChainAtom, CrossingShort and Edge come from preprocess.h.

// A point in space, single precision.
struct fPointR3 {
  float x;  // coordinate, unit of the input
  float y;  // coordinate, unit of the input
  float z;  // coordinate, unit of the input
};

// One crossing of a projection. An arc is the stretch of the chain between two consecutive
// under-passings; arc 0 begins at the first endpoint of edge 0.
struct Crossing {
  std::int32_t overEdge;     // edge that passes over, 0-based
  std::int32_t underEdge;    // edge that passes under, 0-based
  std::int32_t overArc;      // arc that passes over, 0-based
  std::int32_t underArcIn;   // arc that comes in under it
  std::int32_t underArcOut;  // arc that goes out under it
  std::int32_t type;  // handedness: 1 when the lower edge turns counter-clockwise from the upper
};

// One entry of the knot table.
struct KnotRecord {
  std::vector<int> poly;       // Alexander polynomial, normalised: no zero constant term, positive
  std::int32_t valueAtMinus2;  // value at t = -2 of some entries; nothing reads it
  std::int32_t valueAtMinus3;  // |value at t = -3| with every factor 3 divided out
  std::string name;            // name as reported to callers
};

// One candidate of the vote.
struct Knocik {
  std::int32_t ordinal;  // knot ordinal
  std::int32_t votes;    // votes, or a percentage in the matrix-mode text
};

// One sub-chain to examine.
struct Job {
  std::int32_t start;    // index in the point pool of the piece's first point
  std::int32_t length;   // points of the piece in the pool, its two trailing copies excluded
  std::int32_t firstId;  // id of the sub-chain's first atom
  std::int32_t lastId;   // id of its last atom
  std::int32_t begin;    // 1-based position of its first atom
  std::int32_t end;      // 1-based position of its last atom, included
};

// One fingerprint row.
struct RowFile {
  std::int32_t begin;     // 1-based position of the sub-chain's first atom
  std::int32_t end;       // 1-based position of its last atom
  std::int32_t strength;  // strength of the knot, percent
  std::string text;       // the row's text, without line end or separator
};

// The knot table, empty until the first FillKnotsArray.
KORVEX_API extern KnotRecord knotsArray[42];

// The front: what host programs call first.

// Determines the knot of the chain in the file `chainFile`, or its fingerprint, as FindKnots does
// (which takes the last four integers in another order). The result is that of FindKnots.
KORVEX_API int MainFindKnots(char* chainFile, char* outputName, int type, int checkDistances,
                             int closureType, int trials, int netStep, int refineThreshold,
                             unsigned long long polyFlag);

// Writes the fingerprint of `chain` to the file `outputPath`, created or truncated. The eight
// trailing arguments and the result are those of FindAllKnots.
KORVEX_API int FindKnotFingerprint(const std::vector<ChainAtom>& chain, char* outputPath,
                                   int netStep, int refineThreshold, int closureType, int trials,
                                   int matrixMode, int polyOption, bool polyFlag,
                                   unsigned long long memoryLimit);

// The fingerprint of `chain` as text: FindAllKnots_string.
KORVEX_API std::string FindKnotFingerprint_string(const std::vector<ChainAtom>& chain, int netStep,
                                                  int refineThreshold, int closureType, int trials,
                                                  int matrixMode, int polyOption, bool polyFlag,
                                                  unsigned long long memoryLimit);

// Votes over closures of `chain`: FindOneKnot. `counts` holds 42 counters, of which 0..40 are
// zeroed and 41 is never written: set it to 0. Result: always 0.
KORVEX_API int FindMajorKnot(const std::vector<ChainAtom>& chain, int* counts, int closureType,
                             int trials);

// The ranked list of names for 42 knot counters: GiveTheNameOfKnot_allProj.
KORVEX_API std::string GiveTheNameOfKnot(int* counts);

// The fingerprint's knot text for 42 knot counters: GiveTheNameOfKnot_toMatrix.
KORVEX_API std::string GiveTheNameOfKnot_Matrix(int* counts);

// The knot ordinal of the closed `chain`, seen in direction 0.
KORVEX_API int FindTheKnot(std::vector<ChainAtom> chain);

// The polynomial or numeric text of the closed `chain` in direction 0:
// FindTheKnotInParticularDirection_poly_string.
KORVEX_API std::string FindTheKnot_poly_string(std::vector<ChainAtom> chain, int maxCrossings,
                                               bool numeric);

// The Alexander polynomial of the closed `chain` in direction 0. Result 1: `poly` holds it (or is
// untouched after a projection problem) and `value` is untouched. Result 0 (above 16 crossings):
// `value` holds the numeric determinant and `poly` the table's polynomial with that value at -3,
// the unknot's when there is none.
KORVEX_API int FindTheKnot_poly_polynomial(std::vector<ChainAtom> chain, polynomial<int>& poly,
                                           double& value);

// The same with coefficients, lowest power first. They are appended: on return the vector holds
// what the caller passed, followed by the result. Result as above.
KORVEX_API int FindTheKnot_poly(std::vector<ChainAtom> chain, std::vector<int>& coefficients,
                                double& value);

// Prints a polynomial on standard output: ShowPoly.
KORVEX_API void PrintsPoly(polynomial<int> poly);

// The value at `x` of the polynomial with these coefficients: CalculatePoly.
KORVEX_API int CalculatesPoly(std::vector<int> coefficients, int x);

// Prints `chain` on standard output as a nested list "{{x,y,z},...,}" and a newline; the comma
// after the last atom stays.
KORVEX_API void PrintChain_ToMathematica(const std::vector<ChainAtom>& chain);

// Chain-file driver.

// Reads the chain in `chainFile` and answers by `type`: 0 prints the ranked list of its knots on
// standard output; 2 writes its fingerprint to the file `outputName`; any other is rejected on
// standard error. The output file is created or truncated whatever the type.
// `checkDistances` non-zero: the verdict of CheckDistancesBetweenAtoms, unless "OK", goes to the
// output file and the log stream. `netStep`, `refineThreshold`: as in FindAllKnots, type 2 only.
// `closureType`, `trials`: as in FindOneKnot (type 0) or FindAllKnots (type 2). `polyFlag`: a truth
// value, without effect in the matrix mode that type 2 selects.
// Result: -1 for a chain that could not be read, otherwise 0.
KORVEX_API int FindKnots(int type, char* chainFile, char* outputName, int checkDistances,
                         int netStep, int refineThreshold, int closureType, int trials,
                         unsigned long long polyFlag);

// Chain simplification.

// a[0]*b[0] + a[1]*b[1] + a[2]*b[2], summed left to right.
KORVEX_API float ScalarProduct(float* a, float* b);

// Determinant of the 3 x 3 matrix with rows a, b, c.
KORVEX_API float Determinant(float* a, float* b, float* c);

// How the segment `segment[0..1]` meets the triangle `triangle[0..2]`: 0 misses it; 1 pierces its
// interior, or is parallel to its plane at any distance; 2 touches its border, or has an end on it,
// within 1e-5 in the triangle's own coordinates.
KORVEX_API int intersection(fPointR3* triangle, fPointR3* segment);

// Reduces a closed chain in place by triangle elimination, always removing the earliest removable
// point; the closing segment is an obstacle, and in practice the first and the last point stay.
// Result: the number of points left.
// Cost: O(n) segment tests a triangle, O(n^2) a removal at worst.
KORVEX_API int ChainReduce(std::vector<fPointR3>& chain);

// Reduces the piece of every job in the point pool `chain`, in place, and shortens the job's
// `length`; `start` and the size of the pool stay. The last argument is not read.
KORVEX_API void ChainReduceANY(std::vector<fPointR3>& chain, std::vector<Job>& jobs, bool unused);

// Crossings of one projection.
// All comparisons are exact: nothing here has a tolerance.

// Whether two projected edges cross. `status` 1: they cross at one point strictly inside both, and
// the result is (position on A, position on B); 0: they do not; -1: the configuration cannot be
// resolved, and a message was written to the log stream. The result is (0, 0) unless status is 1.
// Properties:
// 1. Exchanging A and B exchanges the positions, but for rounding; only A is tested for being a
//    single point, so that a single-point B mostly just does not cross.
// 2. A crossing at an endpoint of either edge is a problem, never a crossing.
// 3. Collinear edges not separated in y are a problem, horizontal ones always.
// 4. Heights play no part.
KORVEX_API std::pair<double, double> TwoEdgesCrossed(Edge A, Edge B, int& status);

// True when A at position s lies strictly higher than B at position u.
KORVEX_API bool FirstEdgeOver(Edge A, Edge B, double s, double u);

// True when B's direction is turned counter-clockwise from A's by an angle in (0, pi], opposite
// directions included where the cross product is +0. With the upper edge first: a positive
// (right-handed) crossing.
KORVEX_API bool TypeOfCrossing(Edge A, Edge B);

// Finds the crossings of all pairs of non-adjacent edges. Appends them to `crossings` (arcs unset)
// and to the edges' own lists, which are then sorted along the edge. `chainIsClosed`: the first and
// the last edge are adjacent. A projection holds at most 32,768 crossings.
// Result: 0; 1 when a pair met a problem, the lists then being unsorted and incomplete.
// Cost: O(n^2) pairs.
KORVEX_API int FindAllCrossings(std::vector<Edge>& edges, std::vector<Crossing>& crossings,
                                bool chainIsClosed);

// Numbers the arcs along a closed chain and writes them into every crossing. Result: always 0.
KORVEX_API int FillCrossings(std::vector<Edge>& edges, std::vector<Crossing>& crossings);

// Order along an edge: a.position > b.position.
KORVEX_API bool WayToSortCrossings(CrossingShort a, CrossingShort b);

// Alexander matrix and determinants.

// The Alexander matrix by Fox calculus: a row a crossing, a column an arc, entries 1 - t, t and -1,
// the last row removed. The determinants read the leading square block, so that the last arc's
// column never enters.
KORVEX_API std::vector<std::vector<polynomial<int>>> CreateFoxMatrix(
    const std::vector<Crossing>& crossings);

// The same matrix at the integer point `t`.
KORVEX_API std::vector<std::vector<double>> CreateFoxMatrix_double(
    const std::vector<Crossing>& crossings, int t);

// True when some coefficient is not zero.
KORVEX_API bool NonZeroPoly(polynomial<int> poly);

// Determinant of the leading square block of a matrix with as many rows, in 32-bit arithmetic that
// wraps around. Of no rows: the one coefficient 0. Of one row: its first entry as stored. Otherwise
// trimmed, the zero polynomial being empty.
KORVEX_API polynomial<int> det_poly(const std::vector<std::vector<polynomial<int>>>& matrix);

// The polynomial with its power of t divided out and a positive constant term. All coefficients
// zero: the polynomial 1. Empty: empty.
KORVEX_API polynomial<int> NormalizePoly(const polynomial<int>& poly);

// Prints a polynomial on standard output in rising powers of t, "1 - t + t^2"; no line end.
KORVEX_API void ShowPoly(polynomial<int> poly);

// The value at `x`, in 32-bit arithmetic that wraps around.
KORVEX_API int CalculatePoly(polynomial<int> poly, int x);

// Prints a matrix on standard output, a heading and a line a row.
KORVEX_API void ShowMatrix(const std::vector<std::vector<polynomial<int>>>& matrix);

// |det| of `matrix` with every factor `p` divided out, by elimination in place: the matrix is left
// destroyed. 0 for a singular matrix, 1 for an empty one. A determinant of magnitude below 0.005
// never ends. Cost: O(n^3).
KORVEX_API double det_double(std::vector<std::vector<double>>& matrix, int p);

// Prints a matrix on standard output, a heading and a line a row.
KORVEX_API void ShowMatrix_double(const std::vector<std::vector<double>>& matrix);

// |value rounded to the nearest integer, halves away from zero| with every factor `p` divided out;
// 0 for a value that rounds to 0. For p >= 2; with p = 1 or -1 it never ends.
KORVEX_API std::int64_t Normalize_det_double(double value, int p);

// Builds a 3 x 3 matrix, discards it and answers 0.
KORVEX_API int main2();

// Recognition.

// Writes all 42 records of `knotsArray`; the value at -2 only of the records 0..14 and 37, the
// others keep theirs. May be called any number of times.
KORVEX_API void FillKnotsArray();

// True when two polynomials are equal but for trailing zero coefficients.
KORVEX_API bool EqualPolies(polynomial<int> a, polynomial<int> b);

// The name of the first table entry with this polynomial, up to a unit +-t^k, or "NO".
KORVEX_API std::string WhichKnot(polynomial<int> poly);

// The ordinal of the first table entry with this polynomial, up to a unit +-t^k, or 39.
KORVEX_API int WhichKnot_OrdNr(polynomial<int> poly);

// The ordinal of the entry whose `valueAtMinus3` is |value| with every factor 3 divided out; 39
// when there is none, 40 when `value` is no integer within 1e-5. The numeric determinant is taken
// at 12 and compared with values at -3 as they stand: in effect only the unknot is recognised so.
KORVEX_API int WhichKnotDouble_OrdNr(double value);

// The polynomial of the entry whose `valueAtMinus3` equals `value` exactly, else the unknot's.
KORVEX_API polynomial<int> GivePolyByValM3(double value);

// Most votes first: a.votes > b.votes.
KORVEX_API bool WayToSortKnociki(Knocik a, Knocik b);

// The ranked list "3_1(70%) 4_1(30%) " of 42 counters, percentages truncated, and "IN(n) " for the
// failure classes 40 and 41.
KORVEX_API std::string GiveTheNameOfKnot_allProj(int* counts);

// The name of the knot with at least 51 % of the votes of 42 counters; "-1" when there is none,
// "-2" when there are votes for the failure classes only, or no votes.
KORVEX_API std::string GiveTheNameOfKnotOne(int* counts);

// The share in percent, truncated, of the leading ordinal other than the unknot, of 42 counters.
KORVEX_API int GiveTheStrenghtOfKnot(int* counts);

// The fingerprint's text for 42 counters: the unknot's name, or 31 bands of names falling from >90
// % to >0 % and the percentage of the failure classes.
KORVEX_API std::string GiveTheNameOfKnot_toMatrix(int* counts);

// Most counted first: a.second > b.second.
KORVEX_API bool WayToSortPolies(std::pair<std::string, float> a, std::pair<std::string, float> b);

// A tally of polynomial texts as a dictionary "{'1 -1 1': 0.7, '1': 0.3}"; of one single count: the
// text in single quotes.
KORVEX_API std::string GiveThePolies_toDict(std::map<std::string, float> tally);

// The share in percent, truncated, of the leading text other than "1".
KORVEX_API int GiveTheStrenghtOfKnot_poly(std::map<std::string, float> tally);

// Determination of one chain.

// The invariant of the closed `chain` in a projection direction (see ProjectChain). Up to
// `maxCrossings` crossings: result 1 and `poly` the normalised Alexander polynomial; above: result
// 0 and `value` the numeric determinant at 12. A projection problem: result 1, nothing written.
KORVEX_API int FindTheKnotInParticularDirection_poly(std::vector<ChainAtom> chain,
                                                     polynomial<int>& poly, double& value,
                                                     int direction, int maxCrossings);

// The knot ordinal of the closed `chain` in direction `direction % 60`.
KORVEX_API int FindTheKnotInParticularDirection(std::vector<ChainAtom> chain, int direction);

// The same with the direction passed on unreduced.
KORVEX_API int FindTheKnotInParticularDirection_True(std::vector<ChainAtom> chain, int direction);

// The invariant of the closed `chain` in direction 0 as text: coefficients separated by blanks,
// lowest power first; empty above `maxCrossings` crossings or after a projection problem.
// `numeric`: the numeric determinant at 12 instead, with up to 3 decimals; "0" after a projection
// problem.
KORVEX_API std::string FindTheKnotInParticularDirection_poly_string(std::vector<ChainAtom> chain,
                                                                    int maxCrossings, bool numeric);

// `x` with up to 3 decimals, without trailing zeros.
KORVEX_API std::string removeTrailingZeros(float x);

// Closes, reduces and projects `chain` again and again and counts the knot ordinals: `counts` holds
// 42 counters, of which 0..40 are zeroed first and 41 is left alone.
// `closureType`: 1 CloseChain_OUT, 2 CloseChain_2points, 3 CloseChain_1point, each with 1.25 and
// repeated until it succeeds, 4 CloseChain_1direction, any other none. `trials`: determinations for
// closures above 1 (and below 0); closures 0 and 1 make exactly one.
// Result: always 0. A chain for which all of the directions 0..29 answer 40 is closed again without
// limit.
KORVEX_API int FindOneKnot(const std::vector<ChainAtom>& chain, int* counts, int closureType,
                           int trials);

// Fingerprint.

// Fills `pool` and `jobs` with every sub-chain of `len` atoms and more, unclosed, as far as the
// byte budget goes; `len` and `nextStart` (0-based) are the cursor to resume from. Result: 1 done,
// 0 budget reached, -1 bad `len` (below 4 or beyond the chain).
KORVEX_API int PrepareAllInfixes(const std::vector<ChainAtom>& chain, std::vector<fPointR3>& pool,
                                 std::vector<Job>& jobs, unsigned& len, unsigned& nextStart,
                                 unsigned long long memoryLimit);

// Fills `pool` and `jobs` with `trials` closed copies of each candidate from `nextJob` on, as far
// as the byte budget goes. Each piece in the pool is followed by two further copies of its last
// point. Result: 0 when candidates remain, 1 when the list is finished or nothing fitted.
KORVEX_API int PrepareAllInfixesFuleren(const std::vector<ChainAtom>& chain,
                                        std::vector<fPointR3>& pool, std::vector<Job>& jobs,
                                        const std::vector<Job>& candidates, unsigned& nextJob,
                                        int trials, int closureType,
                                        unsigned long long memoryLimit);

// Copies the points of a job out of the pool, with `id` 0.
KORVEX_API void CopyJobToChainAtom(const std::vector<fPointR3>& pool, std::vector<ChainAtom>& atoms,
                                   Job job);

// Appends the net of sub-chains: starts counted by `step` from the first atom, ends from the last,
// longest first. `step` must be at least 1. Result: always 1.
KORVEX_API int PrepareJobsFromNet(const std::vector<ChainAtom>& chain, std::vector<Job>& candidates,
                                  int step);

// Appends every sub-chain within `step` - 1 atoms of both ends of a row whose strength is above
// `threshold`, the rows' own excepted. Result: always 0.
KORVEX_API int PrepareJobsAroundNet(const std::vector<ChainAtom>& chain,
                                    std::vector<Job>& candidates, const std::vector<RowFile>& rows,
                                    int step, int threshold);

// One row of the output; `mode` non-zero: matrix mode, zero: dictionary mode.
KORVEX_API RowFile MakeRowFromJob(std::string knotText, Job job, int strength, int mode);

// Order of the output: begin rising, then end falling.
KORVEX_API bool WayToSortRowsToFile(RowFile a, RowFile b);

// Writes the fingerprint of an open chain of at least one atom to `out`.
// `netStep`: spacing of the net in atoms, at least 1. `refineThreshold`: strength in percent above
// which a net point's neighbourhood is examined too. `closureType`: 1 CloseChain_OUT, 2
// CloseChain_2points, 3 CloseChain_1point, any other none. `trials`: closed copies of each
// sub-chain. `matrixMode` non-zero: a header line, then a line a knotted sub-chain, or "UNKNOT";
// zero: one dictionary of polynomial texts, whose tally runs on through the whole call.
// `polyOption`, `polyFlag`: `maxCrossings` and `numeric` of
// FindTheKnotInParticularDirection_poly_string, dictionary mode only. `memoryLimit`: byte budget of
// one batch of pieces. Result: always 1.
KORVEX_API int FindAllKnots(const std::vector<ChainAtom>& chain, std::fstream& out, int netStep,
                            int refineThreshold, int closureType, int trials, int matrixMode,
                            int polyOption, bool polyFlag, unsigned long long memoryLimit);

// The same as a string. Its text is layered: the header stands twice, and a fingerprint without
// rows repeats what came before it once more.
KORVEX_API std::string FindAllKnots_string(const std::vector<ChainAtom>& chain, int netStep,
                                           int refineThreshold, int closureType, int trials,
                                           int matrixMode, int polyOption, bool polyFlag,
                                           unsigned long long memoryLimit);
