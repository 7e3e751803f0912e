// Diagrams, their invariants and the names of their knots.
#include <pybind11/operators.h>
#include <pybind11/stl.h>

#include <sstream>

#include "arrays.hpp"
#include "conversions.hpp"
#include "korvex/alexander.hpp"
#include "korvex/colourings.hpp"
#include "korvex/drawing.hpp"
#include "korvex/error.hpp"
#include "korvex/homfly.hpp"
#include "korvex/identify.hpp"
#include "korvex/jones.hpp"
#include "korvex/report.hpp"
#include "korvex/signature.hpp"
#include "run.hpp"

namespace korvex::python {
namespace {

Point point_of(const std::array<double, 3>& direction) {
  return {direction[0], direction[1], direction[2]};
}

// What `work` finds for a Run on one thread that can be interrupted.
template <typename Work>
auto on_one_thread(Work&& work) {
  return carried_out(RunArguments{1, 1, py::none()}, std::forward<Work>(work));
}

py::object jones_of(const Diagram& diagram) {
  const auto polynomial = on_one_thread([&](const Run& run) { return jones(diagram, run); });
  if (!polynomial) return py::none();
  py::dict terms;
  for (const JonesTerm& term : *polynomial) terms[py::int_(term.exponent)] = term.coefficient;
  return terms;
}

py::object homfly_of(const Diagram& diagram) {
  const auto polynomial = on_one_thread([&](const Run& run) { return homfly(diagram, run); });
  if (!polynomial) return py::none();
  py::dict terms;
  for (const HomflyTerm& term : *polynomial)
    terms[py::make_tuple(term.a, term.z)] = term.coefficient;
  return terms;
}

// Whole numbers of any size.
py::tuple numbers_of(const AlexanderPolynomial& polynomial) {
  py::tuple numbers(polynomial.coefficients.size());
  for (std::size_t i = 0; i < polynomial.coefficients.size(); ++i)
    numbers[i] = py::int_(py::str(polynomial.coefficients[i]));
  return numbers;
}

const char* name_of(Evidence evidence) {
  switch (evidence) {
    case Evidence::kDiagram:
      return "diagram";
    case Evidence::kAlexander:
      return "alexander";
    case Evidence::kJones:
      return "jones";
    case Evidence::kHomfly:
      return "homfly";
    case Evidence::kSignature:
      return "signature";
    case Evidence::kColourings:
      return "colourings";
  }
  return "";
}

// The attributes of the package's Identity.
py::tuple tuple_of(const KnotIdentity& identity) {
  py::tuple candidates(identity.candidates.size());
  for (std::size_t i = 0; i < identity.candidates.size(); ++i)
    candidates[i] = identity.candidates[i]->name;
  py::tuple summands(identity.summands.size());
  for (std::size_t i = 0; i < identity.summands.size(); ++i)
    summands[i] = tuple_of(identity.summands[i]);
  return py::make_tuple(
      identity.name, candidates, summands, name_of(identity.evidence), identity.proven,
      identity.crossings, identity.alexander_key,
      identity.alexander ? py::object(numbers_of(*identity.alexander)) : py::none());
}

void add_invariants(py::module_& module) {
  module.def("identify", [](const Diagram& diagram, bool hand) {
    return tuple_of(on_one_thread([&](const Run& run) {
      return identify(diagram, hand ? Detail::kHand : Detail::kType, run);
    }));
  });
  module.def("alexander", [](const Diagram& diagram, unsigned threads) {
    return numbers_of(carried_out(RunArguments{threads, 1, py::none()}, [&](const Run& run) {
      return alexander_polynomial(diagram, run);
    }));
  });
  module.def("alexander_key", [](const Diagram& diagram) {
    return on_one_thread([&](const Run& run) { return alexander_key(diagram, run); });
  });
  module.def("jones", &jones_of);
  module.def("homfly", &homfly_of);
  module.def("signature", [](const Diagram& diagram) {
    return on_one_thread([&](const Run& run) { return signature(diagram, run); });
  });
  module.def("parabolic_colourings", [](const Diagram& diagram, int p) {
    return on_one_thread([&](const Run& run) { return parabolic_colourings(diagram, p, run); });
  });
}

constexpr const char* kAboutDiagrams = R"(A diagram of one knot in the plane, as a value.

Parameters
----------
gauss_code : str, optional
    As `gauss_code` gives it; without it, the round circle. The static methods make diagrams of more.

Examples
--------
>>> import korvex
>>> trefoil = korvex.Diagram.of_pd("[[1,5,2,4],[5,3,6,2],[3,1,4,6]]")
>>> trefoil
Diagram(3 crossings, writhe 3)
>>> trefoil.gauss_code
'U1+O2+U3+O1+U2+O3+'
>>> trefoil.mirror().writhe
-3
>>> trefoil.connected_sum(trefoil.mirror()).crossings
6
)";

Diagram of_polygon(const Positions& positions, const std::array<double, 3>& direction) {
  const auto points = points_of(positions);
  return on_one_thread(
      [&](const Run& run) { return Diagram::of_polygon(points, point_of(direction), run); });
}

Diagram of_open_chain(const Positions& positions, const std::array<double, 3>& direction) {
  const auto points = points_of(positions);
  return on_one_thread(
      [&](const Run& run) { return Diagram::of_open_chain(points, point_of(direction), run); });
}

std::string drawn(const Diagram& diagram, const std::string& caption, const std::string& colour) {
  return on_one_thread([&](const Run& run) {
    std::ostringstream out;
    write_drawing(diagram, draw(diagram, run), caption, colour, out);
    return out.str();
  });
}

}  // namespace

void add_diagrams(py::module_& module) {
  py::class_<Diagram>(module, "Diagram", kAboutDiagrams)
      .def(py::init([](const std::string& code) {
             return code.empty() ? Diagram() : Diagram::of_gauss_code(code);
           }),
           py::arg("gauss_code") = "")
      .def_static("of_polygon", &of_polygon, py::arg("positions"), py::arg("direction"),
                  R"(The closed polygon through the positions, (n, 3), seen from far away.

Its last point is joined to its first. Where the view in `direction`, a vector of any length but 0, is
degenerate, it is turned by about 1e-5 rad.)")
      .def_static("of_open_chain", &of_open_chain, py::arg("positions"), py::arg("direction"),
                  R"(The open chain through the positions, (n, 3), closed by rays in `direction`.)")
      .def_static(
          "of_pd", [](const std::string& code) { return Diagram::of_pd(code); }, py::arg("code"),
          "The planar diagram code as text: four labels a crossing, any separators.")
      .def_static(
          "of_pd", [](const std::vector<PdCrossing>& code) { return Diagram::of_pd(code); },
          py::arg("code"),
          "The planar diagram code, (n, 4): counter-clockwise from the incoming under-strand.")
      .def_static(
          "of_gauss_code", [](const std::string& code) { return Diagram::of_gauss_code(code); },
          py::arg("code"), "The diagram of a signed Gauss code, as `gauss_code` gives it.")
      .def_property_readonly("crossings", &Diagram::crossings, "Number of crossings.")
      .def_property_readonly("writhe", &Diagram::writhe, "Positive crossings less negative ones.")
      .def_property_readonly("gauss_code", &Diagram::gauss_code,
                             "Passages along the curve: over or under, crossing, sign.")
      .def_property_readonly("pd", &Diagram::pd, "The planar diagram code: four labels a crossing.")
      .def("mirror", &Diagram::mirror, "Over and under exchanged.")
      .def("reversed", &Diagram::reversed, "The same curve run through backwards.")
      .def("connected_sum", &Diagram::connected_sum, py::arg("other"),
           "This diagram, then the other: the connected sum of the two knots.")
      .def(
          "simplified",
          [](const Diagram& self) {
            return on_one_thread([&](const Run& run) { return self.simplified(run); });
          },
          "A diagram of the same knot with no more crossings, by Reidemeister and pass moves.")
      .def("svg", &drawn, py::arg("caption") = "", py::arg("colour") = "#333333",
           R"(A drawing as the text of an SVG file: a smooth curve with gaps where it passes under.

`colour` is "#rrggbb". ValueError for more than 1,000 crossings, and where some lie so deep inside others
that the drawing could not be read: those are for `simplified()` first.)")
      .def("_repr_svg_",
           [](const Diagram& self) -> py::object {
             try {
               return py::str(drawn(self, "", "#333333"));
             } catch (const Error&) {
               return py::none();
             }
           })
      .def(py::self == py::self)
      .def("__hash__",
           [](const Diagram& self) { return std::hash<std::string>{}(self.gauss_code()); })
      .def("__repr__",
           [](const Diagram& self) {
             return "Diagram(" + std::to_string(self.crossings()) + " crossings, writhe " +
                    std::to_string(self.writhe()) + ")";
           })
      .def("__reduce__", [](const py::object& self) {
        return py::make_tuple(self.attr("__class__"), py::make_tuple(self.attr("gauss_code")));
      });
  add_invariants(module);
}

}  // namespace korvex::python
