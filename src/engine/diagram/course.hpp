// How the curve of a code runs from passage to passage.
//
// Whatever asks what follows a passage, or where a curve ends, asks here: no one else knows that a
// code has one curve, which begins with the code's first passage.
#pragma once

#include <cstddef>

namespace korvex {

enum class Curve { kOpen, kClosed };

// Strand k leads to passage k. Of a closed curve there are as many strands as passages. An open one
// has a strand more: its first comes from the beginning and its last, behind all passages, leads to
// the end.
class Course {
 public:
  Course() = default;
  explicit Course(std::size_t passages, Curve curve = Curve::kClosed)
      : passages_(passages), strands_(passages + (curve == Curve::kOpen ? 1 : 0)) {}

  std::size_t strands() const { return strands_; }

  // The strand with which the curve begins. Codes of several components would have one for each.
  std::size_t start() const { return 0; }

  // The strand by which the curve leaves a passage; of a closed curve also the next passage.
  std::size_t strand_after(std::size_t passage) const {
    return passage + 1 < strands_ ? passage + 1 : start();
  }

  // The passage that a strand comes from, unless that is the beginning of an open curve.
  std::size_t passage_before(std::size_t strand) const {
    return (strand != start() ? strand : passages_) - 1;
  }

  // Whether a strand comes from the beginning of an open curve, or leads to its end.
  bool begins_with(std::size_t strand) const { return is_open() && strand == start(); }
  bool ends_with(std::size_t strand) const { return is_open() && strand == passages_; }

 private:
  bool is_open() const { return strands_ > passages_; }

  std::size_t passages_ = 0;
  std::size_t strands_ = 0;
};

}  // namespace korvex
