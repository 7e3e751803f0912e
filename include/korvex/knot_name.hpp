// Names of knots as values: read, written, compared, mirrored and asked for crossings in one place.
//
// A name is a connected sum of factors. A factor is a prime knot of the tables, with its hand in
// front or without one; a choice between several knots; or a knot that no table names. As text:
//
//   0_1                       the unknot, the sum of no factors
//   +3_1, 4_1, 12n_888        prime knots: a table by crossing number, or the alternating (a) or
//                             non-alternating (n) ones with so many crossings
//   +3_1#+3_1#-5_2            a sum
//   5_1|10_132, 3_1#3_1|8_20  one of several knots
//   +3_1#(+8_16|+10_156)      the same as a factor of a sum
//   ?1-5+7-5+1                unknown but for its Alexander polynomial, the lowest power first
//   ?key:1f00ba5              unknown but for its Alexander key, in hexadecimal
//
// Values are kept in one form, so that equal knots by name are equal values: factors and choices in
// order, each choice once. The order is that of the catalogue: by crossing number, primes before
// sums, then by the factors' places in their tables, each knot before its mirror image; unknown
// ones last. Names know no invariants: that 4_1 has no hands, or that a number exceeds its table,
// is the catalogue's to tell.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/export.hpp"

namespace korvex {

enum class Hand : std::int8_t {
  kNone,   // its own mirror image, or not told
  kRight,  // +
  kLeft,   // -
};

// Values: any thread. Where no cost is given it is linear in the length of the text.
class KORVEX_API KnotName {
 public:
  KnotName() = default;  // 0_1

  // What the text says, factors and choices in any order; nullopt for a text that is no name.
  // O(n log n).
  static std::optional<KnotName> parse(std::string_view text);

  // The sum of all. O(n log n).
  static KnotName sum(std::span<const KnotName> names);

  // One of the names: that itself if all are the same. Throws Error(kInvalidArgument) for no names
  // and for a sum with a choice among its factors. O(n log n).
  static KnotName one_of(std::span<const KnotName> names);

  // A knot that no table names: by the coefficients of its Alexander polynomial, decimal and lowest
  // power first; by its Alexander key where there are none, or where they take more than 40
  // characters.
  static KnotName unknown(std::uint64_t alexander_key,
                          std::span<const std::string> coefficients = {});

  std::string text() const;

  bool is_unknot() const { return factors_.empty(); }
  bool is_prime() const;   // one factor, and that of a table
  bool is_choice() const;  // a choice, or a sum with one among its factors
  bool is_known() const;   // all of it is of tables

  // As names: as often as they occur, in order; none of the unknot, itself of a choice.
  std::vector<KnotName> factors() const;
  // The knots of a choice, in order; itself of any other name, a sum with choices included.
  std::vector<KnotName> choices() const;

  // As many as a diagram needs, by the tables: those of the factors together, of a choice the
  // fewest. Nothing where a factor or a choice is unknown.
  std::optional<std::int64_t> crossings() const;

  // The hand of a prime knot; kNone of any other.
  Hand hand() const;
  // Every hand changed. O(n log n).
  KnotName mirror() const;
  // Without hands: +3_1|-3_1 becomes 3_1. O(n log n).
  KnotName plain() const;

  // Whether `other` is this name, or becomes it when some of its factors lose their hands: 3_1#3_1
  // and 3_1#-3_1 cover +3_1#-3_1. Choices are compared as they stand.
  bool covers(const KnotName& other) const;

  friend bool operator==(const KnotName&, const KnotName&) = default;
  std::strong_ordering operator<=>(const KnotName& other) const;

  // What the order and the text are made of; for the members alone.
  struct Prime {
    std::int32_t crossings = 0;  // 0 for an unknown knot
    char table = '_';            // or `a`, `n`
    std::int32_t number = 0;     // 1-based
    Hand hand = Hand::kNone;
    std::string unknown;  // what stands behind `?`
    friend bool operator==(const Prime&, const Prime&) = default;
  };
  using Sum = std::vector<Prime>;   // in order; the unknot's is empty
  using Choice = std::vector<Sum>;  // at least one, in order, no two alike

 private:
  explicit KnotName(std::vector<Choice> factors);

  // In order. A factor without a choice holds one prime.
  std::vector<Choice> factors_;
};

inline std::string text_of(const KnotName& name) { return name.text(); }

}  // namespace korvex

template <>
struct std::hash<korvex::KnotName> {
  std::size_t operator()(const korvex::KnotName& name) const {
    return std::hash<std::string>{}(name.text());
  }
};
