// Numbers of knot types that threads agree on.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "engine/identify/type_numbers.hpp"

namespace korvex {

// As TypeNumbers, for many threads at once: which number a name gets depends on who comes first.
class SharedTypes {
 public:
  std::int32_t of(const std::string& name) {
    const std::lock_guard lock(mutex_);
    return numbers_.of(name);
  }

  // When no thread asks for numbers any more.
  const std::vector<std::string>& names() const { return numbers_.names(); }

 private:
  std::mutex mutex_;
  TypeNumbers numbers_;
};

}  // namespace korvex
