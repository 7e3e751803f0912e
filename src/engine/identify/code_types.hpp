// The knot types of reduced diagrams, each decided once.
//
// Diagrams of one chain's sub-chains and closures repeat: a reduced code is looked up first among
// those of this worker, then, once pass moves have brought it to its fewest crossings, among those
// of all workers. What is left is handed to the identification. Either memory is emptied when it
// is full, so that long chains, whose diagrams hardly repeat, do not fill the machine's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "engine/diagram/code_reduction.hpp"
#include "engine/diagram/gauss_code.hpp"
#include "engine/diagram/pass_moves.hpp"
#include "engine/identify/identification.hpp"
#include "korvex/run.hpp"

namespace korvex {

// The number of the unknot among the types of a CodeTypes.
inline constexpr std::int32_t kUnknotNumber = 0;

// Name of the knot type of the closed curve with the given code, of at least 3 crossings, which
// pass moves leave as it is. A pure function, called from many threads at once.
using Identification = std::function<IdentifiedName(const GaussCode& closed)>;

// A type's number, whether the diagram proves it, and the diagram's crossings after all moves.
struct CodeType {
  std::int32_t number = kUnknotNumber;
  std::int32_t crossings = 0;
  bool proven = true;
};

// What the workers share: numbers for types, in order of their being found.
class CodeTypes {
 public:
  explicit CodeTypes(Identification identify) : identify_(std::move(identify)), names_{"0_1"} {}

  // Of a closed code that pass moves leave as it is. Any thread.
  CodeType type_of(const GaussCode& closed);

  // Names by number. Not while other threads ask for numbers.
  const std::vector<std::string>& names() const { return names_; }

 private:
  std::int32_t number_named(const std::string& name);

  const Identification identify_;
  std::mutex mutex_;
  std::unordered_map<std::string, CodeType> types_;                                // by code
  std::size_t bytes_ = 0;                                                          // of those codes
  std::unordered_map<std::string, std::int32_t> numbers_{{"0_1", kUnknotNumber}};  // by name
  std::vector<std::string> names_;
};

// One worker's view of them.
class WorkerCodeTypes {
 public:
  explicit WorkerCodeTypes(CodeTypes& shared) : shared_(shared) {}

  // The type that a reduced open code has when both ends are led to the viewer. Asks before each
  // pass move whether to stop.
  CodeType of_open(const GaussCode& reduced, const Run& run);
  // The type of a closed code.
  CodeType of_closed(GaussCode code, const Run& run);

 private:
  CodeTypes& shared_;
  CodeReduction reduction_;
  PassMoves pass_moves_;
  std::string key_;
  std::unordered_map<std::string, CodeType> types_;  // by open code
  std::size_t bytes_ = 0;                            // of those codes
};

}  // namespace korvex
