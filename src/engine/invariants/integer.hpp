// Integers of any size. Costly to compile: include it in source files alone.
#pragma once

#pragma GCC diagnostic push
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <boost/multiprecision/cpp_int.hpp>

namespace korvex {

using Integer = boost::multiprecision::number<boost::multiprecision::cpp_int_backend<>,
                                              boost::multiprecision::et_off>;

}  // namespace korvex
#pragma GCC diagnostic pop
