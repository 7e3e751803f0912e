// The inner functions of the exported interface. What they would read beyond their arguments is
// refused here.
#include <pybind11/stl.h>

#include <cstdlib>
#include <map>

#include "classic.hpp"

namespace korvex::python {
namespace {

using Doubles = py::array_t<double, py::array::c_style | py::array::forcecast>;
using Floats = py::array_t<float, py::array::c_style | py::array::forcecast>;
using Crossings = py::array_t<Crossing, py::array::c_style | py::array::forcecast>;
using Matrix = std::vector<std::vector<Coefficients>>;

Edge edge_of(const double* row) { return {row[0], row[1], row[2], row[3], row[4], row[5], {}, 0}; }

Edge edge_in(const Doubles& edge) {
  if (edge.ndim() != 1 || edge.size() != 6) throw py::value_error("an edge has six numbers");
  return edge_of(edge.data());
}

std::vector<Edge> edges_in(const Doubles& edges) {
  if (edges.ndim() != 2 || edges.shape(1) != 6)
    throw py::value_error("edges have the shape (n, 6)");
  std::vector<Edge> result;
  for (py::ssize_t i = 0; i < edges.shape(0); ++i) result.push_back(edge_of(edges.data(i)));
  return result;
}

std::vector<fPointR3> points_in(const Floats& points) {
  if (points.ndim() != 2 || points.shape(1) != 3)
    throw py::value_error("points have the shape (n, 3)");
  std::vector<fPointR3> result;
  for (py::ssize_t i = 0; i < points.shape(0); ++i)
    result.push_back({points.at(i, 0), points.at(i, 1), points.at(i, 2)});
  return result;
}

std::vector<Crossing> crossings_in(const Crossings& crossings) {
  if (crossings.ndim() != 1) throw py::value_error("crossings have the shape (n,)");
  const auto count = crossings.size();
  std::vector<Crossing> result{crossings.data(), crossings.data() + count};
  for (const Crossing& crossing : result)
    for (const std::int32_t arc : {crossing.overArc, crossing.underArcIn, crossing.underArcOut})
      if (arc < 0 || arc >= count)
        throw py::value_error("arcs are counted from 0 and there are as many as crossings");
  return result;
}

// With their arcs, where the projection has no problem.
py::tuple all_crossings(const Doubles& edges, bool closed) {
  std::vector<Edge> projected = edges_in(edges);
  std::vector<Crossing> crossings;
  const int result = FindAllCrossings(projected, crossings, closed);
  for (Crossing& crossing : crossings)
    crossing.overArc = crossing.underArcIn = crossing.underArcOut = 0;
  if (result == 0) FillCrossings(projected, crossings);
  return py::make_tuple(
      py::array_t<Crossing>(static_cast<py::ssize_t>(crossings.size()), crossings.data()), result);
}

py::tuple crossing_of(const Doubles& a, const Doubles& b) {
  int status = 0;
  const auto [at_a, at_b] = TwoEdgesCrossed(edge_in(a), edge_in(b), status);
  return py::make_tuple(at_a, at_b, status);
}

Matrix matrix_of(const std::vector<std::vector<polynomial<int>>>& rows) {
  Matrix matrix;
  for (const auto& row : rows) {
    matrix.emplace_back();
    for (const auto& entry : row) matrix.back().push_back(entry.data());
  }
  return matrix;
}

Coefficients determinant_of(const Matrix& matrix) {
  std::vector<std::vector<polynomial<int>>> rows;
  for (const auto& row : matrix) {
    if (row.size() < matrix.size())
      throw py::value_error("a row has at least as many entries as there are rows");
    rows.emplace_back();
    for (const Coefficients& entry : row) rows.back().push_back(polynomial_in(entry));
  }
  return det_poly(rows).data();
}

std::int64_t normalised(double value, int p) {
  if (std::abs(p) < 2) throw py::value_error("p is 2 at least");
  return Normalize_det_double(value, p);
}

py::array_t<float> reduce_points(const Floats& points) {
  std::vector<fPointR3> chain = points_in(points);
  const std::array<py::ssize_t, 2> shape = {ChainReduce(chain), 3};
  py::array_t<float> reduced(shape);
  for (py::ssize_t i = 0; i < shape[0]; ++i) {
    const fPointR3& point = chain.at(static_cast<std::size_t>(i));
    reduced.mutable_at(i, 0) = point.x;
    reduced.mutable_at(i, 1) = point.y;
    reduced.mutable_at(i, 2) = point.z;
  }
  return reduced;
}

int intersection_of(const Floats& triangle, const Floats& segment) {
  std::vector<fPointR3> corners = points_in(triangle);
  std::vector<fPointR3> ends = points_in(segment);
  if (corners.size() != 3 || ends.size() != 2)
    throw py::value_error("a triangle has the shape (3, 3), a segment (2, 3)");
  return intersection(corners.data(), ends.data());
}

void add_crossings(py::module_& module) {
  module.def("TwoEdgesCrossed", &crossing_of, py::arg("A"), py::arg("B"));
  module.def(
      "FirstEdgeOver",
      [](const Doubles& a, const Doubles& b, double s, double u) {
        return FirstEdgeOver(edge_in(a), edge_in(b), s, u);
      },
      py::arg("A"), py::arg("B"), py::arg("s"), py::arg("u"));
  module.def(
      "TypeOfCrossing",
      [](const Doubles& a, const Doubles& b) { return TypeOfCrossing(edge_in(a), edge_in(b)); },
      py::arg("A"), py::arg("B"));
  module.def("FindAllCrossings", &all_crossings, py::arg("edges"), py::arg("chainIsClosed"));
  module.def("intersection", &intersection_of, py::arg("triangle"), py::arg("segment"));
  module.def("ChainReduce", &reduce_points, py::arg("chain"));
  module.def("CompareEq", &CompareEq, py::arg("a"), py::arg("b"), py::arg("eps"));
}

void add_matrices(py::module_& module) {
  module.def(
      "CreateFoxMatrix",
      [](const Crossings& crossings) {
        return matrix_of(CreateFoxMatrix(crossings_in(crossings)));
      },
      py::arg("crossings"));
  module.def(
      "CreateFoxMatrix_double",
      [](const Crossings& crossings, int t) {
        return CreateFoxMatrix_double(crossings_in(crossings), t);
      },
      py::arg("crossings"), py::arg("t"));
  module.def("det_poly", &determinant_of, py::arg("matrix"));
  module.def("Normalize_det_double", &normalised, py::arg("value"), py::arg("p"));
  module.def(
      "NonZeroPoly", [](const Coefficients& poly) { return NonZeroPoly(polynomial_in(poly)); },
      py::arg("poly"));
  module.def(
      "NormalizePoly",
      [](const Coefficients& poly) { return NormalizePoly(polynomial_in(poly)).data(); },
      py::arg("poly"));
  module.def(
      "CalculatePoly",
      [](const Coefficients& poly, int x) { return CalculatePoly(polynomial_in(poly), x); },
      py::arg("poly"), py::arg("x"));
  module.def(
      "EqualPolies",
      [](const Coefficients& a, const Coefficients& b) {
        return EqualPolies(polynomial_in(a), polynomial_in(b));
      },
      py::arg("a"), py::arg("b"));
}

void add_tallies(py::module_& module) {
  module.def("WhichKnotDouble_OrdNr", &WhichKnotDouble_OrdNr, py::arg("value"));
  module.def(
      "GivePolyByValM3", [](double value) { return GivePolyByValM3(value).data(); },
      py::arg("value"));
  module.def(
      "GiveTheNameOfKnot_allProj",
      [](Counts counts) { return GiveTheNameOfKnot_allProj(counts.data()); }, py::arg("counts"));
  module.def(
      "GiveTheNameOfKnot_toMatrix",
      [](Counts counts) { return GiveTheNameOfKnot_toMatrix(counts.data()); }, py::arg("counts"));
  module.def("GiveThePolies_toDict", &GiveThePolies_toDict, py::arg("tally"));
  module.def("GiveTheStrenghtOfKnot_poly", &GiveTheStrenghtOfKnot_poly, py::arg("tally"));
  module.def("removeTrailingZeros", &removeTrailingZeros, py::arg("x"));
}

}  // namespace

void add_classic_kernels(py::module_& classic) {
  PYBIND11_NUMPY_DTYPE(Crossing, overEdge, underEdge, overArc, underArcIn, underArcOut, type);
  classic.attr("Crossing") = py::dtype::of<Crossing>();
  add_crossings(classic);
  add_matrices(classic);
  add_tallies(classic);
}

}  // namespace korvex::python
