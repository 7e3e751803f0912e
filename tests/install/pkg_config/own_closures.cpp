// A host that puts its own reading, closing, reducing, projecting and comparing in the place of
// libpreprocess's. libkorvex has to call them, in this order and with these arguments.
#include <korvex.h>

#include <cmath>
#include <iostream>
#include <numbers>
#include <sstream>
#include <string>

namespace {

std::ostringstream calls;
int failures_left = 0;     // closures that fail before one succeeds
int unusable_left = 0;     // projections without an answer before one with an answer
bool is_unusable = false;  // what the last projection was

std::string take_calls() {
  std::string text = calls.str();
  calls.str("");
  return text;
}

bool check(const std::string& what, const std::string& is, const std::string& wanted) {
  if (is == wanted) return true;
  std::cerr << "failed: " << what << "\n is      " << is << "\n wanted  " << wanted << "\n";
  return false;
}

std::vector<ChainAtom> line() { return {{0, 0, 0, 1}, {1, 0, 0, 2}, {2, 0, 0, 3}, {3, 0, 0, 4}}; }

// Every attempt, failed or not, leaves its mark on the chain.
int close(const char* name, std::vector<ChainAtom>& chain, double factor) {
  calls << name << chain.size() << "*" << factor << " ";
  chain.push_back({9, 9, 9, 0});
  return failures_left-- > 0 ? -1 : 0;
}

// A star of 11 points; every edge crosses eight others.
std::vector<Edge> star() {
  std::vector<Edge> edges;
  const auto turn = [](int k) { return 2 * std::numbers::pi * 5 * k / 11; };
  for (int k = 0; k < 11; ++k) {
    const double from = turn(k);
    const double to = turn(k + 1);
    edges.push_back({std::cos(from), std::sin(from), 0, std::cos(to), std::sin(to), 0, {}, 0});
  }
  return edges;
}

}  // namespace

std::vector<ChainAtom> ChainRead(char* path, bool& error) {
  calls << "read " << path << " ";
  error = false;
  return line();
}

void FillFulerenData() { calls << "fill "; }

std::string CheckDistancesBetweenAtoms(std::vector<ChainAtom> chain) {
  calls << "check" << chain.size() << " ";
  return "too far apart";
}

int CloseChain_OUT(std::vector<ChainAtom>& chain, double factor) {
  return close("out", chain, factor);
}
int CloseChain_2points(std::vector<ChainAtom>& chain, double factor) {
  return close("two", chain, factor);
}
int CloseChain_1point(std::vector<ChainAtom>& chain, double factor) {
  return close("one", chain, factor);
}
int CloseChain_1direction(std::vector<ChainAtom>& chain) { return close("ray", chain, 0); }

int ChainReduce(std::vector<ChainAtom>& chain, bool closed) {
  calls << "reduce" << chain.size() << (closed ? "c " : "o ");
  return static_cast<int>(chain.size());
}

std::vector<Edge> ProjectChain(const std::vector<ChainAtom>& chain, int direction, bool closed) {
  calls << direction << (closed ? "" : "o") << (chain.size() > 9 ? "!" : "") << " ";
  is_unusable = unusable_left-- > 0;
  return is_unusable ? star() : std::vector<Edge>();
}

// Of an unusable projection no value is an integer.
bool CompareEq(double a, double b, double eps) { return !is_unusable && std::fabs(a - b) < eps; }

namespace {

bool retries_failed_closures_on_the_same_chain() {
  failures_left = 2;
  int counts[42] = {};
  FindOneKnot(line(), counts, 2, 2);
  return check("closures", take_calls(),
               "two4*1.25 two5*1.25 two6*1.25 reduce7c 0 two4*1.25 reduce5c 0 ") &&
         check("votes", std::to_string(counts[0]), "2");
}

// Directions 0..29 in turn, then a chain closed anew.
bool tries_thirty_directions() {
  unusable_left = 33;
  int counts[42] = {};
  FindOneKnot(line(), counts, 3, 1);
  std::string directions;
  for (int d = 0; d < 30; ++d) directions += std::to_string(d) + " ";
  return check("directions", take_calls(),
               "one4*1.25 reduce5c " + directions + "one4*1.25 reduce5c 0 1 2 3 ") &&
         check("votes", std::to_string(counts[0]) + std::to_string(counts[40]), "10");
}

bool looks_at_no_result_of_one_direction() {
  failures_left = 1;
  int counts[42] = {};
  FindOneKnot(line(), counts, 4, 2);
  return check("rays", take_calls(), "ray4*0 reduce5c 0 ray4*0 reduce5c 0 ");
}

bool closes_outwards_once() {
  failures_left = 1;
  int counts[42] = {};
  FindOneKnot(line(), counts, 1, 7);
  return check("outwards", take_calls(), "out4*1.25 out5*1.25 reduce6c 0 ");
}

// A batch closes each copy once, failed or not, and takes what comes back.
bool closes_the_copies_of_a_batch_once() {
  failures_left = 3;
  std::vector<fPointR3> pool;
  std::vector<Job> jobs;
  unsigned next = 0;
  PrepareAllInfixesFuleren(line(), pool, jobs, {{0, 0, 2, 4, 2, 4}}, next, 3, 2, 1000000);
  return check("copies", take_calls(), "two3*1.25 two3*1.25 two3*1.25 ") &&
         check("points", std::to_string(pool.size()) + " " + std::to_string(jobs[2].start),
               "18 12");
}

bool fills_reads_and_checks_in_order() {
  failures_left = 0;
  std::string chain = "some chain";
  std::string output = "/dev/null";
  FindKnots(0, chain.data(), output.data(), 1, 1, 1, 0, 1, 0);
  bool good = check("driver", take_calls(), "fill read some chain check4 reduce4c 0 ");
  FindKnots(1, chain.data(), output.data(), 0, 1, 1, 0, 1, 0);
  return good && check("rejected type", take_calls(), "fill read some chain ");
}

}  // namespace

int main() {
  bool good = retries_failed_closures_on_the_same_chain();
  good &= tries_thirty_directions();
  good &= looks_at_no_result_of_one_direction();
  good &= closes_outwards_once();
  good &= closes_the_copies_of_a_batch_once();
  good &= fills_reads_and_checks_in_order();
  return good ? 0 : 1;
}
