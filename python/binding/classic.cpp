// The exported interface under its own names. Its functions draw from rand() and share tables, and
// so hold the interpreter's lock: that keeps them to one thread at a time.
#include "classic.hpp"

#include <pybind11/stl.h>

#include <cstdlib>

namespace korvex::python {
namespace {

py::array_t<ChainAtom> atoms_array(const std::vector<ChainAtom>& atoms) {
  return py::array_t<ChainAtom>(static_cast<py::ssize_t>(atoms.size()), atoms.data());
}

// For the functions that take text to write into, as C has it.
std::vector<char> buffer_of(const std::string& text) {
  std::vector<char> buffer(text.begin(), text.end());
  buffer.push_back('\0');
  return buffer;
}

py::tuple read_chain(const std::string& path) {
  bool error = false;
  const std::vector<ChainAtom> chain = ChainRead(buffer_of(path).data(), error);
  return py::make_tuple(atoms_array(chain), error);
}

// A closure as a function of the chain that gives the closed chain and the result.
py::object closure(int (*close)(std::vector<ChainAtom>&, double)) {
  return py::cpp_function(
      [close](const Atoms& chain, double factor) {
        std::vector<ChainAtom> atoms = atoms_in(chain);
        const int result = close(atoms, factor);
        return py::make_tuple(atoms_array(atoms), result);
      },
      py::arg("chain"), py::arg("factor") = 1.25);
}

py::tuple close_in_one_direction(const Atoms& chain) {
  std::vector<ChainAtom> atoms = atoms_in(chain);
  const int result = CloseChain_1direction(atoms);
  return py::make_tuple(atoms_array(atoms), result);
}

py::array_t<ChainAtom> reduce(const Atoms& chain, bool closed) {
  std::vector<ChainAtom> atoms = atoms_in(chain);
  ChainReduce(atoms, closed);
  return atoms_array(atoms);
}

// (n, 6): the ends of each edge and their heights.
py::array_t<double> project(const Atoms& chain, int direction, bool closed) {
  const std::vector<Edge> edges = ProjectChain(atoms_in(chain), direction, closed);
  py::array_t<double> ends({static_cast<py::ssize_t>(edges.size()), py::ssize_t{6}});
  auto rows = ends.mutable_unchecked<2>();
  for (py::ssize_t i = 0; i < rows.shape(0); ++i) {
    const Edge& edge = edges[static_cast<std::size_t>(i)];
    const std::array values = {edge.x1, edge.y1, edge.z1, edge.x2, edge.y2, edge.z2};
    for (py::ssize_t j = 0; j < 6; ++j) rows(i, j) = values[static_cast<std::size_t>(j)];
  }
  return ends;
}

Counts count_knots(const Atoms& chain, int closure_type, int trials) {
  Counts counts{};
  FindMajorKnot(atoms_in(chain), counts.data(), closure_type, trials);
  return counts;
}

py::tuple polynomial_of(const Atoms& chain) {
  std::vector<int> coefficients;
  double value = 0;
  const int result = FindTheKnot_poly(atoms_in(chain), coefficients, value);
  return py::make_tuple(result, coefficients, value);
}

// Result, coefficients and numeric determinant; what the function leaves alone is empty and 0.
py::tuple polynomial_in_direction(const Atoms& chain, int direction, int most_crossings) {
  polynomial<int> poly;
  double value = 0;
  const int result = FindTheKnotInParticularDirection_poly(atoms_in(chain), poly, value, direction,
                                                           most_crossings);
  return py::make_tuple(result, poly.data(), value);
}

py::list knot_table() {
  FillKnotsArray();
  py::list table;
  for (const KnotRecord& record : knotsArray)
    table.append(py::make_tuple(record.name, record.poly, record.valueAtMinus3));
  return table;
}

void add_chain_functions(py::module_& module) {
  module.def("ChainRead", &read_chain, py::arg("path"));
  module.def(
      "CheckDistancesBetweenAtoms",
      [](const Atoms& chain) { return CheckDistancesBetweenAtoms(atoms_in(chain)); },
      py::arg("chain"));
  module.attr("CloseChain_OUT") = closure(&CloseChain_OUT);
  module.attr("CloseChain_2points") = closure(&CloseChain_2points);
  module.attr("CloseChain_1point") = closure(&CloseChain_1point);
  module.def("CloseChain_1direction", &close_in_one_direction, py::arg("chain"));
  module.def("ChainReduce", &reduce, py::arg("chain"), py::arg("closed"));
  module.def("ProjectChain", &project, py::arg("chain"), py::arg("direction"), py::arg("closed"));
}

void add_determination(py::module_& module) {
  module.def(
      "FindOneKnot",
      [](const Atoms& chain, int closure_type, int trials) {
        Counts counts{};
        FindOneKnot(atoms_in(chain), counts.data(), closure_type, trials);
        return counts;
      },
      py::arg("chain"), py::arg("closureType"), py::arg("trials"));
  module.def("FindMajorKnot", &count_knots, py::arg("chain"), py::arg("closureType"),
             py::arg("trials"));
  module.def("GiveTheNameOfKnot", [](Counts counts) { return GiveTheNameOfKnot(counts.data()); });
  module.def("GiveTheNameOfKnotOne",
             [](Counts counts) { return GiveTheNameOfKnotOne(counts.data()); });
  module.def("GiveTheNameOfKnot_Matrix",
             [](Counts counts) { return GiveTheNameOfKnot_Matrix(counts.data()); });
  module.def("GiveTheStrenghtOfKnot",
             [](Counts counts) { return GiveTheStrenghtOfKnot(counts.data()); });
  module.def("FindTheKnot", [](const Atoms& chain) { return FindTheKnot(atoms_in(chain)); });
  module.def("FindTheKnotInParticularDirection", [](const Atoms& chain, int direction) {
    return FindTheKnotInParticularDirection(atoms_in(chain), direction);
  });
  module.def("FindTheKnotInParticularDirection_True", [](const Atoms& chain, int direction) {
    return FindTheKnotInParticularDirection_True(atoms_in(chain), direction);
  });
  module.def("FindTheKnotInParticularDirection_poly", &polynomial_in_direction, py::arg("chain"),
             py::arg("direction"), py::arg("maxCrossings"));
  module.def(
      "FindTheKnotInParticularDirection_poly_string",
      [](const Atoms& chain, int most_crossings, bool numeric) {
        return FindTheKnotInParticularDirection_poly_string(atoms_in(chain), most_crossings,
                                                            numeric);
      },
      py::arg("chain"), py::arg("maxCrossings"), py::arg("numeric"));
  module.def("FindTheKnot_poly", &polynomial_of, py::arg("chain"));
  module.def(
      "FindTheKnot_poly_string",
      [](const Atoms& chain, int most_crossings, bool numeric) {
        return FindTheKnot_poly_string(atoms_in(chain), most_crossings, numeric);
      },
      py::arg("chain"), py::arg("maxCrossings"), py::arg("numeric"));
  module.def(
      "CalculatesPoly",
      [](const std::vector<int>& coefficients, int x) { return CalculatesPoly(coefficients, x); },
      py::arg("coefficients"), py::arg("x"));
  module.def("WhichKnot", [](const std::vector<int>& coefficients) {
    return WhichKnot(polynomial_in(coefficients));
  });
  module.def("WhichKnot_OrdNr", [](const std::vector<int>& coefficients) {
    return WhichKnot_OrdNr(polynomial_in(coefficients));
  });
  module.def("knotsArray", &knot_table);
}

void add_fingerprint(py::module_& module) {
  module.def(
      "FindKnotFingerprint_string",
      [](const Atoms& chain, int step, int threshold, int closure_type, int trials, int matrix_mode,
         int poly_option, bool poly_flag, unsigned long long memory) {
        return FindKnotFingerprint_string(atoms_in(chain), step, threshold, closure_type, trials,
                                          matrix_mode, poly_option, poly_flag, memory);
      },
      py::arg("chain"), py::arg("netStep"), py::arg("refineThreshold"), py::arg("closureType"),
      py::arg("trials"), py::arg("matrixMode"), py::arg("polyOption"), py::arg("polyFlag"),
      py::arg("memoryLimit"));
  module.def(
      "FindAllKnots_string",
      [](const Atoms& chain, int step, int threshold, int closure_type, int trials, int matrix_mode,
         int poly_option, bool poly_flag, unsigned long long memory) {
        return FindAllKnots_string(atoms_in(chain), step, threshold, closure_type, trials,
                                   matrix_mode, poly_option, poly_flag, memory);
      },
      py::arg("chain"), py::arg("netStep"), py::arg("refineThreshold"), py::arg("closureType"),
      py::arg("trials"), py::arg("matrixMode"), py::arg("polyOption"), py::arg("polyFlag"),
      py::arg("memoryLimit"));
  module.def(
      "FindKnotFingerprint",
      [](const Atoms& chain, const std::string& path, int step, int threshold, int closure_type,
         int trials, int matrix_mode, int poly_option, bool poly_flag, unsigned long long memory) {
        return FindKnotFingerprint(atoms_in(chain), buffer_of(path).data(), step, threshold,
                                   closure_type, trials, matrix_mode, poly_option, poly_flag,
                                   memory);
      },
      py::arg("chain"), py::arg("outputPath"), py::arg("netStep"), py::arg("refineThreshold"),
      py::arg("closureType"), py::arg("trials"), py::arg("matrixMode"), py::arg("polyOption"),
      py::arg("polyFlag"), py::arg("memoryLimit"));
  module.def(
      "FindKnots",
      [](int type, const std::string& file, const std::string& output, int check, int step,
         int threshold, int closure_type, int trials, unsigned long long poly_flag) {
        return FindKnots(type, buffer_of(file).data(), buffer_of(output).data(), check, step,
                         threshold, closure_type, trials, poly_flag);
      },
      py::arg("type"), py::arg("chainFile"), py::arg("outputName"), py::arg("checkDistances"),
      py::arg("netStep"), py::arg("refineThreshold"), py::arg("closureType"), py::arg("trials"),
      py::arg("polyFlag"));
  module.def(
      "MainFindKnots",
      [](const std::string& file, const std::string& output, int type, int check, int closure_type,
         int trials, int step, int threshold, unsigned long long poly_flag) {
        return MainFindKnots(buffer_of(file).data(), buffer_of(output).data(), type, check,
                             closure_type, trials, step, threshold, poly_flag);
      },
      py::arg("chainFile"), py::arg("outputName"), py::arg("type"), py::arg("checkDistances"),
      py::arg("closureType"), py::arg("trials"), py::arg("netStep"), py::arg("refineThreshold"),
      py::arg("polyFlag"));
}

}  // namespace

void add_classic(py::module_& module) {
  PYBIND11_NUMPY_DTYPE(ChainAtom, x, y, z, id);
  py::module_ classic = module.def_submodule("classic");
  classic.attr("ChainAtom") = py::dtype::of<ChainAtom>();
  classic.def(
      "srand", [](unsigned seed) { std::srand(seed); }, py::arg("seed"));
  add_chain_functions(classic);
  add_determination(classic);
  add_fingerprint(classic);
  add_classic_kernels(classic);
}

}  // namespace korvex::python
