#include "support/data_file.hpp"

namespace support {

std::string data_file(const std::string& name) { return KORVEX_DATA_DIR "/" + name; }

}  // namespace support
