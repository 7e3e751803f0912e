// The exported interface's records from and to NumPy's.
#pragma once

#include <korvex.h>
#include <pybind11/numpy.h>

#include <array>
#include <vector>

#include "conversions.hpp"

namespace korvex::python {

using Atoms = py::array_t<ChainAtom, py::array::c_style | py::array::forcecast>;
using Counts = std::array<int, 42>;
using Coefficients = std::vector<int>;  // of a polynomial, lowest power first

inline std::vector<ChainAtom> atoms_in(const Atoms& atoms) {
  if (atoms.ndim() != 1) throw py::value_error("atoms have the shape (n,)");
  return {atoms.data(), atoms.data() + atoms.size()};
}

inline polynomial<int> polynomial_in(const Coefficients& coefficients) {
  return {coefficients.begin(), coefficients.end()};
}

// What stands between a chain and its name: crossings, matrices, polynomials, tallies.
void add_classic_kernels(py::module_& classic);

}  // namespace korvex::python
