#include "engine/scan/version.hpp"

namespace korvex {

const char* version() { return KORVEX_VERSION; }

}  // namespace korvex
