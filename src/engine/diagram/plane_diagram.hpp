// The plane diagram that a Gauss code describes, and ways through its faces.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "engine/diagram/course.hpp"
#include "korvex/gauss_code.hpp"

namespace korvex {

// The diagram of a code of n passages, on the sphere. Strand k runs from passage k-1 to passage k:
// of an open chain there are n+1, the first and the last of which hold its ends; of a closed curve
// there are n, the first of which comes from the last passage. A dart is a strand with a sense: 2k
// along the curve, 2k+1 against it. Objects keep their memory from code to code.
class PlaneDiagram {
 public:
  // O(length). The code must outlive the use of this object.
  void draw(const GaussCode& code, Curve curve);

  std::size_t strands() const { return course_.strands(); }
  std::size_t faces() const { return face_count_; }
  // Number, from 0, of the face to the left of a dart.
  std::int32_t face_left_of(std::size_t dart) const { return face_[dart]; }
  // The darts that have a face to their left, in order around it.
  std::span<const std::int32_t> darts_of(std::size_t face) const {
    return std::span(around_).subspan(static_cast<std::size_t>(begin_[face]),
                                      static_cast<std::size_t>(begin_[face + 1] - begin_[face]));
  }

  // A strand that a way crosses.
  struct Step {
    std::int32_t strand;
    bool left_to_right;  // as seen along the curve
  };

  // Strands first..last, or first.. and ..last if last < first, which a way may cross for nothing.
  struct Strands {
    std::size_t first;
    std::size_t last;

    bool contains(std::size_t strand) const {
      return first <= last ? first <= strand && strand <= last : strand >= first || strand <= last;
    }
  };

  // Where a way may go that must not go everywhere.
  struct Bounds {
    Strands among;                   // it crosses these alone
    std::optional<Strands> but_not;  // and none of these

    bool contain(std::size_t strand) const {
      return among.contains(strand) && !(but_not && but_not->contains(strand));
    }
  };

  // Fewest strands to cross from a face beside strand `from` to one beside strand `to`, in order;
  // nothing when it takes more than `most`. Of the strands, the free ones too, it crosses those
  // within the bounds alone. The span is valid until the next call. O(length).
  std::optional<std::span<const Step>> way(std::size_t from, std::size_t to, std::size_t most,
                                           std::optional<Strands> free = {},
                                           const std::optional<Bounds>& bounds = {});

  // Of the last way that was found, led from the left side of `from` to that of `to`: crossings
  // from left to right less those from right to left, the free ones included.
  std::int32_t balance() const { return balance_; }

 private:
  std::size_t following(std::size_t dart) const;
  bool entered(std::int32_t face) const {
    return entered_[static_cast<std::size_t>(face)].search == search_;
  }
  void enter(std::int32_t face, std::int32_t dart, std::vector<std::int32_t>& queue);

  // How a search came into a face.
  struct Entry {
    std::uint32_t search = 0;
    std::int32_t dart = 0;  // that it crossed
  };

  const GaussCode* code_ = nullptr;
  Course course_;
  std::size_t face_count_ = 0;
  std::vector<std::int32_t> face_;    // left of each dart
  std::vector<std::int32_t> around_;  // darts, face by face
  std::vector<std::int32_t> begin_;   // where the darts of each face begin in around_
  std::vector<Entry> entered_;        // by face
  std::uint32_t search_ = 0;
  std::vector<std::int32_t> here_;    // faces at the present distance
  std::vector<std::int32_t> beyond_;  // faces one strand further
  std::vector<Step> steps_;
  std::int32_t balance_ = 0;
};

}  // namespace korvex
