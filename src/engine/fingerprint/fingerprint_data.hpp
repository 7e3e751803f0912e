// What a Fingerprint holds, and its computation with any identification.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "engine/fingerprint/type_counts.hpp"
#include "engine/fingerprint/type_shares.hpp"
#include "engine/identify/identify.hpp"
#include "korvex/fingerprint.hpp"

namespace korvex {

struct FingerprintData {
  FingerprintOptions options;
  std::vector<std::int32_t> stations;
  std::vector<std::string> types;
  TypeCounts counts;  // by type; summed up, so that those of all knots stand in the unknot's place
  TypeShares shares{};  // in place of counts where they are exact
  double doubt = 0;

  static Fingerprint shared(FingerprintData data) {
    return Fingerprint(std::make_shared<const FingerprintData>(std::move(data)));
  }
};

enum class SubChains {
  kInClasses,  // decided together where their type must be the same
  // Each decided for itself in every direction: the same answer in hundreds of times the time, to
  // check the fast way.
  kOneByOne,
};

// As the public function, with another identification of diagrams.
Fingerprint fingerprint_with(const Identification& identify, std::span<const Point> chain,
                             const FingerprintOptions& options, const Run& run,
                             SubChains sub_chains = SubChains::kInClasses);

}  // namespace korvex
