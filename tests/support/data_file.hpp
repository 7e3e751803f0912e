// The files that come with the project.
#pragma once

#include <string>

namespace support {

// The path of `name`, which is relative to data/.
std::string data_file(const std::string& name);

}  // namespace support
