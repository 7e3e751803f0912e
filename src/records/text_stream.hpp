// A text stream that writes numbers alike whatever the locale of the process: hosts of other
// languages set one that groups digits or writes a decimal comma.
#pragma once

#include <locale>
#include <sstream>

namespace korvex::records {

// It throws std::bad_alloc where memory for the text runs out: a text cut short would be taken for
// another one.
inline std::ostringstream text_stream() {
  std::ostringstream stream;
  stream.exceptions(std::ios::badbit);
  stream.imbue(std::locale::classic());
  return stream;
}

}  // namespace korvex::records
