// The engine's records from and to the package's: tuples and objects with the same attributes.
#pragma once

#include <pybind11/pybind11.h>

#include <map>
#include <string>
#include <string_view>

#include "korvex/chain.hpp"
#include "korvex/directions.hpp"
#include "korvex/interval.hpp"
#include "korvex/locate.hpp"
#include "korvex/ring.hpp"

namespace korvex::python {

namespace py = pybind11;

// The arguments of the package's Chain after its positions, by name.
py::dict arguments_of(Chain&& chain);

// What reports tell of a chain: of the package's Chain or ChainSummary. The points themselves are
// not copied, only counted.
Chain chain_of(const py::object& chain);

py::tuple tuple_of_ring(const RingReport& ring);
RingReport ring_of(const py::handle& ring);

py::str text_of(std::string_view text);

template <typename Value>
py::dict dict_of(const std::map<std::size_t, Value>& values) {
  py::dict dict;
  for (const auto& [key, value] : values) dict[py::int_(key)] = value;
  return dict;
}

Sampling sampling_named(std::string_view name);

// Adds what a file of the binding has to the module.
void add_chains(py::module_& module);
void add_knots(py::module_& module);
void add_fingerprints(py::module_& module);
void add_diagrams(py::module_& module);
void add_names(py::module_& module);
void add_reports(py::module_& module);
void add_classic(py::module_& module);

}  // namespace korvex::python
