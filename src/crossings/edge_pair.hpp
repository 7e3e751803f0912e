// The crossing test of two projected edges, without the copies that the exported form makes.
#pragma once

#include <utility>

#include "korvex.h"

namespace korvex::crossings {

// As TwoEdgesCrossed.
std::pair<double, double> cross_edges(const Edge& a, const Edge& b, int& status);

// As FirstEdgeOver.
bool first_over(const Edge& a, const Edge& b, double s, double u);

// As TypeOfCrossing.
bool turns_left(const Edge& a, const Edge& b);

}  // namespace korvex::crossings
