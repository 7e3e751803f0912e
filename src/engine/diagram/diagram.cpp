#include "korvex/diagram.hpp"

#include "engine/diagram/code_reduction.hpp"
#include "engine/diagram/pass_moves.hpp"
#include "korvex/error.hpp"

namespace korvex {

int Diagram::writhe() const {
  int twice = 0;
  for (const Passage& passage : code_) twice += passage.positive ? 1 : -1;
  return twice / 2;
}

Diagram Diagram::mirror() const {
  GaussCode code = code_;
  for (Passage& passage : code) {
    passage.over = !passage.over;
    passage.positive = !passage.positive;
  }
  return Diagram(std::move(code));
}

Diagram Diagram::reversed() const {
  GaussCode code(code_.rbegin(), code_.rend());
  const auto last = static_cast<std::int32_t>(code.size()) - 1;
  for (Passage& passage : code) passage.mate = last - passage.mate;
  return Diagram(std::move(code));
}

Diagram Diagram::connected_sum(const Diagram& other) const {
  GaussCode code = code_;
  const auto shift = static_cast<std::int32_t>(code.size());
  for (Passage passage : other.code_) {
    passage.mate += shift;
    code.push_back(passage);
  }
  return Diagram(std::move(code));
}

Diagram Diagram::simplified(const Run& run) const {
  GaussCode code = code_;
  CodeReduction reduction;
  PassMoves().simplify(code, reduction, run);
  return Diagram(std::move(code));
}

}  // namespace korvex
