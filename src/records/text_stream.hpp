// A text stream that writes numbers alike whatever the locale of the process: hosts of other
// languages set one that groups digits or writes a decimal comma.
#pragma once

#include <locale>
#include <sstream>

namespace korvex::records {

inline std::ostringstream text_stream() {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  return stream;
}

}  // namespace korvex::records
