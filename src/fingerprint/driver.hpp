// The driver of fingerprints over kernels that it is given, so that it runs alike over the fast
// ones and over their plain forms.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "korvex.h"
#include "recognition/ordinals.hpp"
#include "records/text_stream.hpp"

namespace korvex::fingerprint_driver {

// Kernels are static functions: PrepareJobsFromNet, PrepareJobsAroundNet, PrepareAllInfixesFuleren,
// ChainReduceANY and CopyJobToChainAtom, as korvex.h has them; find_ordinal, as
// FindTheKnotInParticularDirection; and invariant_text, as
// FindTheKnotInParticularDirection_poly_string.

struct Settings {
  int net_step;
  int refine_threshold;
  int closure_type;
  int trials;
  int matrix_mode;
  int poly_option;
  bool poly_flag;
  unsigned long long memory_limit;
};

struct Verdict {
  std::string text;
  int strength;
};

inline bool is_unknot(const std::string& text) {
  return text == recognition::kUnknotName || text == "{'1': 1.0}" || text == "{'1': 1}";
}

// The passes over one chain and the rows that they find.
template <class Kernels>
class Fingerprint {
 public:
  Fingerprint(const std::vector<ChainAtom>& chain, const Settings& settings)
      : chain_(chain), settings_(settings), atoms_(chain) {}

  // The net, then once the neighbourhood of its strong rows. Rows come out sorted.
  const std::vector<RowFile>& find_rows() {
    Kernels::PrepareJobsFromNet(chain_, candidates_, settings_.net_step);
    examine_candidates();
    candidates_.clear();
    Kernels::PrepareJobsAroundNet(chain_, candidates_, rows_, settings_.net_step,
                                  settings_.refine_threshold);
    examine_candidates();
    std::sort(rows_.begin(), rows_.end(), WayToSortRowsToFile);
    return rows_;
  }

 private:
  void examine_candidates() {
    unsigned next_job = 0;
    bool done = false;
    while (!done) {
      done = Kernels::PrepareAllInfixesFuleren(chain_, pool_, batch_, candidates_, next_job,
                                               settings_.trials, settings_.closure_type,
                                               settings_.memory_limit) != 0;
      Kernels::ChainReduceANY(pool_, batch_, true);
      examine_batch();
    }
  }

  // The copies of one candidate are consecutive jobs, exactly `trials` in number.
  void examine_batch() {
    if (settings_.trials < 1) return;
    const auto copies = static_cast<std::size_t>(settings_.trials);
    for (std::size_t group = 0; group < batch_.size(); group += copies) {
      const Verdict verdict =
          settings_.matrix_mode != 0 ? vote_by_name(group) : vote_by_polynomial(group);
      if (is_unknot(verdict.text)) continue;
      rows_.push_back(
          MakeRowFromJob(verdict.text, batch_[group], verdict.strength, settings_.matrix_mode));
    }
  }

  Verdict vote_by_name(std::size_t group) {
    int counts[recognition::kOrdinals] = {};
    for (std::size_t k = group; k < group + static_cast<std::size_t>(settings_.trials); ++k) {
      Kernels::CopyJobToChainAtom(pool_, atoms_, batch_[k]);
      ++counts[Kernels::find_ordinal(atoms_, 1)];
    }
    return {GiveTheNameOfKnot_toMatrix(counts), GiveTheStrenghtOfKnot(counts)};
  }

  Verdict vote_by_polynomial(std::size_t group) {
    for (std::size_t k = group; k < group + static_cast<std::size_t>(settings_.trials); ++k) {
      Kernels::CopyJobToChainAtom(pool_, atoms_, batch_[k]);
      const std::string poly =
          Kernels::invariant_text(atoms_, settings_.poly_option, settings_.poly_flag);
      tally_[poly.empty() ? "0" : poly] += 1.0F;
    }
    return {GiveThePolies_toDict(tally_), GiveTheStrenghtOfKnot_poly(tally_)};
  }

  const std::vector<ChainAtom>& chain_;
  const Settings& settings_;
  std::vector<ChainAtom> atoms_;
  std::vector<Job> candidates_;
  std::vector<fPointR3> pool_;
  std::vector<Job> batch_;
  std::map<std::string, float> tally_;  // runs on through the whole call, never cleared
  std::vector<RowFile> rows_;
};

inline void write_header(std::ostream& out, const std::vector<ChainAtom>& chain) {
  const std::int32_t first = chain.empty() ? 0 : chain.front().id;
  const std::int32_t last = chain.empty() ? 0 : chain.back().id;
  out << "# " << first << " " << last
      << " >90 >87 >84 >81 >78 >75 >72 >69 >66 >63 >60 >57 >54 >51 >48 >45 >42 >39 >36 >33 >30 "
         ">27 >24 >21 >18 >15 >12 >9 >6 >3 >0 IN "
      << 1 << " " << chain.size() << std::endl;
}

inline void write_rows(std::ostream& out, const std::vector<RowFile>& rows, int matrix_mode) {
  if (matrix_mode != 0) {
    for (const RowFile& row : rows) out << row.text << std::endl;
    return;
  }
  out << "{";
  for (std::size_t k = 0; k < rows.size(); ++k) {
    if (k > 0) out << ", ";
    out << rows[k].text;
  }
  out << "}";
}

// As FindAllKnots.
template <class Kernels>
int find_all_knots(const std::vector<ChainAtom>& chain, std::ostream& out,
                   const Settings& settings) {
  Fingerprint<Kernels> fingerprint(chain, settings);
  if (settings.matrix_mode != 0) write_header(out, chain);
  const std::vector<RowFile>& rows = fingerprint.find_rows();
  write_rows(out, rows, settings.matrix_mode);
  if (rows.empty() && settings.matrix_mode != 0) out << "UNKNOT\n";
  return 1;
}

// As FindAllKnots_string. The stream is never emptied, so that each layer of the result repeats
// what came before it.
template <class Kernels>
std::string all_knots_text(const std::vector<ChainAtom>& chain, const Settings& settings) {
  Fingerprint<Kernels> fingerprint(chain, settings);
  std::ostringstream stream = records::text_stream();
  std::string result;
  if (settings.matrix_mode != 0) {
    write_header(stream, chain);
    result += stream.str();
  }
  const std::vector<RowFile>& rows = fingerprint.find_rows();
  write_rows(stream, rows, settings.matrix_mode);
  result += stream.str();
  if (rows.empty()) {
    stream << (settings.matrix_mode != 0 ? "UNKNOT\n" : "{}");
    result += stream.str();
  }
  return result;
}

}  // namespace korvex::fingerprint_driver
