// Names of knots, the catalogue, colours.
#include <pybind11/operators.h>
#include <pybind11/stl.h>

#include "conversions.hpp"
#include "korvex/catalogue.hpp"
#include "korvex/error.hpp"
#include "korvex/identity_cache.hpp"
#include "korvex/knot_name.hpp"
#include "korvex/palette.hpp"
#include "korvex/quoting.hpp"

namespace korvex::python {
namespace {

KnotName name_in(const std::string& text) {
  if (auto name = KnotName::parse(text)) return *std::move(name);
  throw Error(ErrorCode::kInvalidArgument,
              "'" + text + "' is no name of a knot: names are as 3_1, +3_1#-5_2 or 5_1|10_132");
}

int hand_of(const KnotName& name) {
  return name.hand() == Hand::kNone ? 0 : name.hand() == Hand::kRight ? 1 : -1;
}

// The attributes of the package's KnotType.
py::tuple tuple_of(const KnotType& type) {
  py::dict jones;
  for (const JonesTerm& term : type.jones) jones[py::int_(term.exponent)] = term.coefficient;
  py::dict homfly;
  for (const HomflyTerm& term : type.homfly)
    homfly[py::make_tuple(term.a, term.z)] = term.coefficient;
  return py::make_tuple(type.name, type.plain, type.crossings, type.chirality == Chirality::kChiral,
                        type.is_prime(), type.signature, type.determinant,
                        py::tuple(py::cast(type.alexander)), jones, homfly, type.gauss_code);
}

void add_knot_name(py::module_& module) {
  py::class_<KnotName>(module, "KnotName", R"(The name of a knot, as a value.

A connected sum of factors: prime knots of the tables with their hands in front (``+3_1``), choices
between several knots (``5_1|10_132``), and knots that no table names (``?1-5+7-5+1``). Equal knots by
name are equal values; the order is that of the catalogue.

Parameters
----------
text : str, optional
    The name, factors and choices in any order; by default ``0_1``.

Raises
------
InvalidArgument
    If the text is no name.

Examples
--------
>>> import korvex
>>> name = korvex.KnotName("-5_2#+3_1")
>>> name
KnotName('+3_1#-5_2')
>>> name.crossings, name.mirror()
(8, KnotName('-3_1#+5_2'))
>>> [str(factor) for factor in name.factors]
['+3_1', '-5_2']
>>> sorted(map(korvex.KnotName, ["4_1", "+3_1", "0_1"]))
[KnotName('0_1'), KnotName('+3_1'), KnotName('4_1')]
)")
      .def(py::init(&name_in), py::arg("text") = "0_1")
      .def_static(
          "sum", [](const std::vector<KnotName>& names) { return KnotName::sum(names); },
          py::arg("names"), "The connected sum of the names.")
      .def_static(
          "one_of", [](const std::vector<KnotName>& names) { return KnotName::one_of(names); },
          py::arg("names"), "A choice between the names; itself if all are the same.")
      .def_static(
          "unknown",
          [](std::uint64_t key, const std::vector<std::string>& coefficients) {
            return KnotName::unknown(key, coefficients);
          },
          py::arg("alexander_key"), py::arg("coefficients") = std::vector<std::string>(),
          "A knot that no table names, by its Alexander polynomial or the key of it.")
      .def("__str__", &KnotName::text)
      .def("__repr__", [](const KnotName& self) { return "KnotName('" + self.text() + "')"; })
      .def("__hash__", [](const KnotName& self) { return std::hash<KnotName>{}(self); })
      .def(py::self == py::self)
      .def(
          "__lt__", [](const KnotName& a, const KnotName& b) { return a < b; }, py::is_operator())
      .def(
          "__le__", [](const KnotName& a, const KnotName& b) { return a <= b; }, py::is_operator())
      .def(
          "__gt__", [](const KnotName& a, const KnotName& b) { return a > b; }, py::is_operator())
      .def(
          "__ge__", [](const KnotName& a, const KnotName& b) { return a >= b; }, py::is_operator())
      .def("__reduce__",
           [](const py::object& self) {
             return py::make_tuple(self.attr("__class__"), py::make_tuple(py::str(self)));
           })
      .def_property_readonly("is_unknot", &KnotName::is_unknot, "Whether it is ``0_1``.")
      .def_property_readonly("is_prime", &KnotName::is_prime,
                             "Whether it is one factor, and that of a table.")
      .def_property_readonly("is_choice", &KnotName::is_choice,
                             "Whether it is a choice, or a sum with one among its factors.")
      .def_property_readonly("is_known", &KnotName::is_known, "Whether all of it is of tables.")
      .def_property_readonly(
          "factors", [](const KnotName& self) { return py::tuple(py::cast(self.factors())); },
          "The factors, as often as they occur; none of the unknot.")
      .def_property_readonly(
          "choices", [](const KnotName& self) { return py::tuple(py::cast(self.choices())); },
          "The knots of a choice; itself of any other name.")
      .def_property_readonly("crossings", &KnotName::crossings,
                             "The fewest crossings of a diagram, by the tables; None if unknown.")
      .def_property_readonly("hand", &hand_of,
                             "1 for a right-handed prime knot, -1 for a left-handed one, else 0.")
      .def("mirror", &KnotName::mirror, "With every hand changed.")
      .def("plain", &KnotName::plain, "Without hands.")
      .def("covers", &KnotName::covers, py::arg("other"),
           "Whether the other is this name, or becomes it when some factors lose their hands.");
}

void add_cache(py::module_& module) {
  py::class_<IdentityCache, std::unique_ptr<IdentityCache, py::nodelete>>(
      module, "IdentityCache", R"(What the process remembers of diagrams that it has identified.

It changes no answer, only the time that it takes. There is one, `korvex.identity_cache`.

Examples
--------
>>> import korvex
>>> korvex.identity_cache.most_bytes
134217728
>>> korvex.identity_cache.forget()
>>> korvex.identity_cache.diagrams
0
)")
      .def_property("most_bytes", &IdentityCache::most_bytes, &IdentityCache::limit_to,
                    "Bytes that it may take; a lower limit forgets all.")
      .def_property_readonly("bytes", &IdentityCache::bytes, "Bytes that it takes now, estimated.")
      .def_property_readonly("diagrams", &IdentityCache::diagrams, "Diagrams that it holds now.")
      .def("forget", &IdentityCache::forget, "Forget all.")
      .def("__repr__", [](const IdentityCache& self) {
        return "<IdentityCache: " + std::to_string(self.diagrams()) + " diagrams>";
      });
  module.attr("identity_cache") =
      py::cast(IdentityCache::of_process(), py::return_value_policy::reference);
}

}  // namespace

void add_names(py::module_& module) {
  add_knot_name(module);
  add_cache(module);
  module.def("catalogue", [] {
    py::list types;
    for (const KnotType& type : catalogue()) types.append(tuple_of(type));
    return types;
  });
  module.def("knot_types_named", [](const std::string& name) {
    py::list types;
    for (const KnotType* type : knot_types_named(name)) types.append(tuple_of(*type));
    return types;
  });
  module.def("colour_of_type", [](const std::string& type) { return colour_of_type(type); });
  module.def("quoted_for_xml", [](const py::str& text) {
    return text_of(
        quoted_for_xml(text.attr("encode")("utf-8", "surrogateescape").cast<std::string>()));
  });
}

}  // namespace korvex::python
