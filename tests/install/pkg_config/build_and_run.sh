#!/bin/sh
# Builds the host $2.cpp beside this script in the directory $1 as pkg-config says, and runs it.
set -eu
host=$1/$2
# shellcheck disable=SC2046,SC2086
"${CXX:-c++}" -std=c++20 ${CXXFLAGS-} $(pkg-config --cflags korvex) \
  "$(dirname "$0")/$2.cpp" -o "$host" -rdynamic $(pkg-config --libs korvex) \
  -Wl,-rpath,"$(pkg-config --variable=libdir korvex)"
"$host"
