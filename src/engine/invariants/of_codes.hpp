// The invariants of closed codes, for those parts of the engine that have no diagram but its code.
// The public headers say what they are.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "korvex/alexander.hpp"
#include "korvex/gauss_code.hpp"
#include "korvex/homfly.hpp"
#include "korvex/jones.hpp"
#include "korvex/run.hpp"

namespace korvex {

std::uint64_t alexander_key(const GaussCode& closed, const Run& run = {});
AlexanderPolynomial alexander_polynomial(const GaussCode& closed, const Run& run = {});
std::optional<HomflyPolynomial> homfly(const GaussCode& closed, const Run& run = {});
std::optional<JonesPolynomial> jones(const GaussCode& closed, const Run& run = {});
int signature(const GaussCode& closed, const Run& run = {});
std::optional<std::vector<std::int64_t>> parabolic_colourings(const GaussCode& closed, int p,
                                                              const Run& run = {});

}  // namespace korvex
