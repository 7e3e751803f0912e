// Diagrams of codes that the engine has made itself.
#pragma once

#include <utility>

#include "korvex/diagram.hpp"

namespace korvex {

// Makes diagrams without looking whether their codes can be drawn. What comes from outside goes
// through Diagram::of_gauss_code() or of_pd().
class TrustedDiagram {
 public:
  // `closed` is the code of a closed curve in the plane.
  static Diagram of(GaussCode closed) { return Diagram(std::move(closed)); }
};

}  // namespace korvex
