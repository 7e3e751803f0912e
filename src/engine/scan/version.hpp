#pragma once

namespace korvex {

// Of this build, such as "0.1.0".
const char* version();

}  // namespace korvex
