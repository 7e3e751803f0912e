#include "recognition/ordinals.hpp"

namespace korvex::recognition {

const std::string kUnknotName = "01";
const std::string kNoMajorityName = "-1";
const std::string kFailuresName = "-2";

}  // namespace korvex::recognition
