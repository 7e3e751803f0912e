// korvex._korvex: what the package korvex needs of the engine. Functions take arguments by
// position, as the package gives them, and answer with plain tuples, dictionaries and arrays, of
// which the package makes its own types.
#include <pybind11/pybind11.h>

#include "conversions.hpp"
#include "korvex/error.hpp"

namespace korvex::python {
namespace {

const char* name_of(ErrorCode code) {
  switch (code) {
    case ErrorCode::kInvalidArgument:
      return "InvalidArgument";
    case ErrorCode::kBadInput:
      return "BadInput";
    case ErrorCode::kCannotRead:
      return "CannotRead";
    case ErrorCode::kCancelled:
      return "Cancelled";
  }
  return "Error";
}

// As the package's exception of that kind.
void raise(const Error& error) {
  const py::object type = py::module_::import("korvex._errors").attr(name_of(error.code()));
  PyErr_SetObject(type.ptr(),
                  type(text_of(error.what()), text_of(error.file()), error.line()).ptr());
}

}  // namespace

PYBIND11_MODULE(_korvex, module) {
  module.attr("__version__") = KORVEX_VERSION;
  py::register_exception_translator([](std::exception_ptr thrown) {
    try {
      if (thrown) std::rethrow_exception(thrown);
    } catch (const Error& error) {
      raise(error);
    }
  });
  add_diagrams(module);
  add_names(module);
  add_chains(module);
  add_knots(module);
  add_fingerprints(module);
  add_reports(module);
  add_classic(module);
}

}  // namespace korvex::python
