// The three descriptors that a program is given.
#pragma once

namespace korvex::cli {

// Where standard input, output or error is closed, a descriptor is put in its place that can be
// neither read nor written. Else the next file to be opened would be taken for it, and get what was
// meant for people. To be called before anything is opened. False when the system refuses.
bool hold_standard_descriptors() noexcept;

}  // namespace korvex::cli
