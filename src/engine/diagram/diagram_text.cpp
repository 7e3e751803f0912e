// Diagrams from and to planar diagram codes and text.
#include <charconv>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/diagram/course.hpp"
#include "engine/diagram/place.hpp"
#include "engine/diagram/plane_diagram.hpp"
#include "korvex/diagram.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

[[noreturn]] void refuse(const std::string& what) { throw Error(ErrorCode::kBadInput, what); }

// Where a strand leaves one crossing and enters the next; the label of its strand is its index.
struct PdSlot {
  std::int32_t crossing = -1;
  bool over = false;
};

// The over strand of a planar crossing, labels counter-clockwise from the incoming under-strand,
// runs from the fourth to the second where the crossing is positive.
bool is_positive(const PdCrossing& crossing, int labels) {
  const int right = crossing[1];
  const int left = crossing[3];
  if (labels == 2) return right == crossing[0];
  const int onward = left == labels ? 1 : left + 1;
  return right == onward;
}

void require_planar(const GaussCode& code) {
  if (code.empty()) return;
  PlaneDiagram diagram;
  diagram.draw(code, Curve::kClosed);
  if (diagram.faces() != code.size() / 2 + 2)
    refuse("the code describes a diagram that cannot be drawn in the plane: check its crossings");
}

}  // namespace

Diagram Diagram::of_pd(std::span<const PdCrossing> crossings) {
  const std::size_t labels = 2 * crossings.size();
  std::vector<PdSlot> entered(labels);
  std::vector<bool> positive(crossings.size());
  const auto enter = [&](int label, std::size_t crossing, bool over) {
    if (label < 1 || static_cast<std::size_t>(label) > labels)
      refuse("a planar diagram code of " + std::to_string(crossings.size()) +
             " crossings labels its strands 1 to " + std::to_string(labels) + ", not " +
             std::to_string(label));
    PdSlot& slot = entered[at(label) - 1];
    if (slot.crossing >= 0)
      refuse("strand " + std::to_string(label) +
             " enters two crossings of the planar diagram code");
    slot = {static_cast<std::int32_t>(crossing), over};
  };
  for (std::size_t k = 0; k < crossings.size(); ++k) {
    const PdCrossing& crossing = crossings[k];
    positive[k] = is_positive(crossing, static_cast<int>(labels));
    enter(crossing[0], k, false);
    enter(positive[k] ? crossing[3] : crossing[1], k, true);
    const auto follows = [&](int from, int to) {
      return to == (from == static_cast<int>(labels) ? 1 : from + 1);
    };
    if (!follows(crossing[0], crossing[2]) ||
        !(positive[k] ? follows(crossing[3], crossing[1]) : follows(crossing[1], crossing[3])))
      refuse("crossing " + std::to_string(k + 1) +
             " of the planar diagram code does not lie on one curve labelled in order");
  }
  GaussCode code(labels);
  std::vector<std::int32_t> seen(crossings.size(), -1);
  for (std::size_t k = 0; k < labels; ++k) {
    const std::size_t crossing = at(entered[k].crossing);
    code[k] = {seen[crossing], entered[k].over, positive[crossing]};
    if (seen[crossing] >= 0) code[at(seen[crossing])].mate = static_cast<std::int32_t>(k);
    seen[crossing] = static_cast<std::int32_t>(k);
  }
  require_planar(code);
  return Diagram(std::move(code));
}

Diagram Diagram::of_pd(std::string_view text) {
  std::vector<int> labels;
  for (const char* next = text.data(); next != text.data() + text.size();) {
    int label = 0;
    const auto [end, error] = std::from_chars(next, text.data() + text.size(), label);
    if (error == std::errc::result_out_of_range)
      refuse("a number of the planar diagram code is too large");
    if (error == std::errc()) labels.push_back(label);
    next = error == std::errc() ? end : next + 1;
  }
  if (labels.size() % 4 != 0)
    refuse("a planar diagram code has four numbers a crossing, not " +
           std::to_string(labels.size()) + " in all");
  std::vector<PdCrossing> crossings(labels.size() / 4);
  for (std::size_t k = 0; k < labels.size(); ++k) crossings[k / 4][k % 4] = labels[k];
  return of_pd(crossings);
}

std::vector<PdCrossing> Diagram::pd() const {
  std::vector<PdCrossing> crossings;
  const auto entering = [](std::size_t passage) { return static_cast<int>(passage) + 1; };
  const Course course(code_.size());
  const auto leaving = [&](std::size_t passage) { return entering(course.strand_after(passage)); };
  for (std::size_t k = 0; k < code_.size(); ++k) {
    if (code_[k].over) continue;
    const std::size_t over = at(code_[k].mate);
    const int right = code_[k].positive ? leaving(over) : entering(over);
    const int left = code_[k].positive ? entering(over) : leaving(over);
    crossings.push_back({entering(k), right, leaving(k), left});
  }
  return crossings;
}

std::string Diagram::gauss_code() const {
  std::string text;
  std::vector<std::int32_t> number(code_.size());
  std::int32_t count = 0;
  for (std::size_t k = 0; k < code_.size(); ++k) {
    const std::size_t mate = at(code_[k].mate);
    number[k] = mate < k ? number[mate] : ++count;
    text += code_[k].over ? 'O' : 'U';
    text += std::to_string(number[k]);
    text += code_[k].positive ? '+' : '-';
  }
  return text;
}

Diagram Diagram::of_gauss_code(std::string_view text) {
  GaussCode code;
  std::vector<std::int32_t> seen;
  const char* next = text.data();
  const char* const end = next + text.size();
  while (next != end) {
    const auto passage = static_cast<std::int32_t>(code.size());
    const auto fail = [&](const char* what) {
      refuse("passage " + std::to_string(passage + 1) + " of the Gauss code " + what);
    };
    const char kind = *next++;
    if (kind != 'O' && kind != 'U') fail("begins with neither O nor U");
    std::size_t crossing = 0;
    const auto [after, error] = std::from_chars(next, end, crossing);
    if (error != std::errc() || crossing == 0 || crossing > text.size())
      fail("lacks the number of its crossing, from 1");
    next = after;
    if (next == end || (*next != '+' && *next != '-')) fail("lacks the sign of its crossing");
    const bool positive = *next++ == '+';
    if (seen.size() < crossing) seen.resize(crossing, -1);
    const std::int32_t mate = seen[crossing - 1];
    if (mate >= 0) {
      Passage& earlier = code[at(mate)];
      if (earlier.mate >= 0) fail("is the third through its crossing");
      if (earlier.over == (kind == 'O')) fail("is not on the other side of its crossing");
      if (earlier.positive != positive) fail("gives its crossing another sign");
      earlier.mate = passage;
    }
    seen[crossing - 1] = passage;
    code.push_back({mate, kind == 'O', positive});
  }
  for (const Passage& passage : code)
    if (passage.mate < 0) refuse("a crossing of the Gauss code is passed only once");
  require_planar(code);
  return Diagram(std::move(code));
}

}  // namespace korvex
