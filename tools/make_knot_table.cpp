// Writes src/engine/catalogue/knot_table.cpp from data/prime_knots_to_10.tsv.
//
// usage: make_knot_table data/prime_knots_to_10.tsv > src/engine/catalogue/knot_table.cpp
//
// Of the data only names, crossing numbers and planar diagram codes are used; invariants are
// computed anew. Composite knots are formed from the primes, their diagrams put one after another
// and their polynomials computed from these diagrams, not multiplied.
#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "engine/catalogue/hand_rule.hpp"
#include "korvex/alexander.hpp"
#include "korvex/diagram.hpp"
#include "korvex/homfly.hpp"
#include "korvex/jones.hpp"
#include "korvex/knot_name.hpp"
#include "korvex/signature.hpp"

namespace {

using korvex::Diagram;
using korvex::KnotName;

constexpr int kMostCrossings = 10;

// Chiral knots whose HOMFLY-PT polynomial is that of their mirror image (A. Kawauchi, A Survey of
// Knot Theory, 1996, table of knots). The others with such a polynomial are amphichiral.
const std::set<std::string> kChiralThoughSymmetric = {"9_42",  "10_48",  "10_71",
                                                      "10_91", "10_104", "10_125"};

struct Prime {
  std::string name;
  int crossings;
  bool amphichiral;
  Diagram diagram;  // of the hand +
};

Prime prime(const std::string& name, int crossings, Diagram diagram) {
  const auto homfly = *korvex::homfly(diagram);
  const int hand = korvex::hand(diagram);
  const bool symmetric = homfly == korvex::mirror(homfly);
  const bool amphichiral = symmetric && kChiralThoughSymmetric.count(name) == 0;
  if (amphichiral != (hand == 0))
    throw std::runtime_error(name + ": no rule tells its hands apart");
  return {name, crossings, amphichiral, hand < 0 ? diagram.mirror() : std::move(diagram)};
}

std::vector<Prime> read_primes(const char* path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error(std::string("cannot open ") + path);
  std::vector<Prime> primes;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#' || line.starts_with("name\t")) continue;
    std::istringstream fields(line);
    std::string name, crossings, pd;
    std::getline(fields, name, '\t');
    std::getline(fields, crossings, '\t');
    std::getline(fields, pd, '\t');
    primes.push_back(prime(name, std::stoi(crossings), Diagram::of_pd(pd)));
  }
  return primes;
}

// A factor with its hand: true is +.
struct Factor {
  std::size_t prime;
  bool plus;
};

class TableWriter {
 public:
  TableWriter(std::vector<Prime> primes, std::ostream& out)
      : primes_(std::move(primes)), out_(out) {}

  void write() {
    out_ << "// Made by tools/make_knot_table.cpp from data/prime_knots_to_10.tsv.\n"
            "#include \"engine/catalogue/knot_rows.hpp\"\n\n"
            "// clang-format off\n\nnamespace korvex {\nnamespace {\n\n"
            "constexpr KnotTableRow kRows[] = {\n"
            "    {\"0_1\", \"0_1\", 0, 'a', 0, 1, \"1\", \"0:1\", \"(0,0):1\", \"\"},\n";
    for (int crossings = 3; crossings <= kMostCrossings; ++crossings) {
      for (std::size_t k = 0; k < primes_.size(); ++k)
        if (primes_[k].crossings == crossings) write_row({{k, true}});
      std::vector<std::size_t> factors;
      write_composites(crossings, 0, factors);
    }
    out_ << "};\n\n}  // namespace\n\n"
            "std::span<const KnotTableRow> knot_table_rows() { return kRows; }\n\n"
            "}  // namespace korvex\n";
  }

 private:
  // All sums of at least two primes, not before `first`, with so many crossings left.
  void write_composites(int left, std::size_t first, std::vector<std::size_t>& factors) {
    if (left == 0 && factors.size() > 1) write_hands(factors);
    for (std::size_t k = first; k < primes_.size() && primes_[k].crossings <= left; ++k) {
      factors.push_back(k);
      write_composites(left - primes_[k].crossings, k, factors);
      factors.pop_back();
    }
  }

  // All choices of hands, one of each pair of mirror images: that with more + factors, or if there
  // are as many of each, with + first.
  void write_hands(const std::vector<std::size_t>& primes) {
    for (std::uint32_t minus = 0; minus < 1u << primes.size(); ++minus) {
      std::vector<Factor> factors;
      bool usual = true;
      int balance = 0;
      int first = 0;
      for (std::size_t k = 0; k < primes.size(); ++k) {
        const bool plus = (minus >> k & 1) == 0;
        const bool amphichiral = primes_[primes[k]].amphichiral;
        usual = usual && (plus || !amphichiral);
        usual = usual && !(k > 0 && primes[k] == primes[k - 1] && plus && !factors.back().plus);
        if (!amphichiral) balance += plus ? 1 : -1;
        if (!amphichiral && first == 0) first = plus ? 1 : -1;
        factors.push_back({primes[k], plus});
      }
      if (usual && (balance > 0 || (balance == 0 && first >= 0))) write_row(factors);
    }
  }

  void write_row(const std::vector<Factor>& factors) {
    Diagram diagram;
    std::vector<KnotName> names;
    for (const Factor& factor : factors) {
      const Prime& prime = primes_[factor.prime];
      diagram = diagram.connected_sum(factor.plus ? prime.diagram : prime.diagram.mirror());
      const char* hand = prime.amphichiral ? "" : factor.plus ? "+" : "-";
      names.push_back(KnotName::parse(hand + prime.name).value());
    }
    const KnotName name = KnotName::sum(names);
    const bool amphichiral = name.mirror() == name;
    const auto alexander = *korvex::alexander_polynomial(diagram).small_coefficients();
    std::int64_t determinant = 0;
    std::string coefficients;
    for (std::size_t k = 0; k < alexander.size(); ++k) {
      determinant += k % 2 == 0 ? alexander[k] : -alexander[k];
      if (k > 0) coefficients += ' ';
      coefficients += std::to_string(alexander[k]);
    }
    const auto quoted = [](const std::string& text) { return std::quoted(text); };
    out_ << "    {" << quoted(name.text()) << ", " << quoted(name.plain().text()) << ", "
         << *name.crossings() << ", '" << (amphichiral ? 'a' : 'c') << "', "
         << korvex::signature(diagram) << ", " << std::abs(determinant) << ",\n     "
         << quoted(coefficients) << ",\n     " << quoted(text_of(*korvex::jones(diagram)))
         << ",\n     " << quoted(text_of(*korvex::homfly(diagram))) << ",\n     "
         << quoted(diagram.gauss_code()) << "},\n";
  }

  std::vector<Prime> primes_;
  std::ostream& out_;
};

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: make_knot_table data/prime_knots_to_10.tsv\n";
    return 2;
  }
  TableWriter(read_primes(arguments[1]), std::cout).write();
}
