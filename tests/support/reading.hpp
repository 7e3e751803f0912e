// Reading texts that a test spells out.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "korvex/error.hpp"
#include "korvex/read.hpp"

namespace reading {

// The chains of a text, which is called "text" in messages.
inline std::vector<korvex::Chain> chains(const std::string& text,
                                         const korvex::ReadOptions& options = {}) {
  return korvex::read_chains(korvex::Source::memory(text, "text"), options);
}

// The only chain of a text; an empty one, and a failed test, where there are others.
inline korvex::Chain chain(const std::string& text, const korvex::ReadOptions& options = {}) {
  std::vector<korvex::Chain> all = chains(text, options);
  EXPECT_EQ(all.size(), 1U);
  return all.size() == 1 ? all.front() : korvex::Chain{};
}

inline std::vector<std::int32_t> numbers(const korvex::Chain& chain) {
  std::vector<std::int32_t> found;
  for (const korvex::Residue& residue : chain.residues) found.push_back(residue.number);
  return found;
}

// What is wrong with a text; a failed test where nothing is.
inline std::string complaint(const std::string& text, const korvex::ReadOptions& options = {}) {
  try {
    chains(text, options);
  } catch (const korvex::Error& error) {
    return error.what();
  }
  ADD_FAILURE() << "no complaint about:\n" << text;
  return {};
}

inline bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

}  // namespace reading
