#!/bin/sh
# Builds own_projection.cpp in the directory $1 as pkg-config says, and runs it.
set -eu
host=$1/own_projection
# shellcheck disable=SC2046,SC2086
"${CXX:-c++}" -std=c++20 ${CXXFLAGS-} $(pkg-config --cflags korvex) \
  "$(dirname "$0")/own_projection.cpp" -o "$host" -rdynamic $(pkg-config --libs korvex) \
  -Wl,-rpath,"$(pkg-config --variable=libdir korvex)"
"$host"
