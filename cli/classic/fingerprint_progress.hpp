// How far a fingerprint is, told from what the library reports.
#pragma once

#include <string>

#include "progress.hpp"

namespace korvex::cli::classic {

class FingerprintProgress {
 public:
  // `trials`: closed copies of each sub-chain.
  explicit FingerprintProgress(int trials) : trials_(trials) {}

  // Takes one line of the library's log: the size of a pass, or the size of the batch that begins.
  void follow(const std::string& line);

 private:
  int trials_;
  const char* pass_ = "";
  long long sub_chains_ = 0;  // in this pass
  long long done_ = 0;        // of them
  long long in_batch_ = 0;    // being examined
  Progress progress_;
};

}  // namespace korvex::cli::classic
