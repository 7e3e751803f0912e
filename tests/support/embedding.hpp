// Diagrams turned into curves in space.
#pragma once

#include <vector>

#include "korvex/diagram.hpp"
#include "korvex/geometry.hpp"

namespace support {

// A closed polygon of 4 points a strand whose projection along z is the given connected diagram of
// at least 3 crossings, on the sphere: faces keep their order about every crossing, and the longest
// becomes the outer one. The diagram's triangulated faces are drawn by W. T. Tutte's barycentric
// method, Proc. London Math. Soc. 13, 743 (1963); over-passages are lifted to z = 1, under-passages
// lowered to -1.
std::vector<korvex::Point> embedded(const korvex::Diagram& diagram);

}  // namespace support
