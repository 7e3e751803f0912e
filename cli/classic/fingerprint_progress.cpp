#include "classic/fingerprint_progress.hpp"

#include <cstdio>

namespace korvex::cli::classic {

void FingerprintProgress::follow(const std::string& line) {
  long long count = 0;
  const bool net = std::sscanf(line.c_str(), "Choosen %lld", &count) == 1;
  const bool refinement = std::sscanf(line.c_str(), "There is %lld", &count) == 1;
  if (net || refinement) {
    pass_ = net ? "net" : "around knots";
    sub_chains_ = count;
    done_ = 0;
    in_batch_ = 0;
  } else if (std::sscanf(line.c_str(), "created %lld jobs", &count) == 1) {
    done_ += in_batch_;
    in_batch_ = count / trials_;
  }
  progress_.show(pass_, done_, sub_chains_, "sub-chains");
}

}  // namespace korvex::cli::classic
