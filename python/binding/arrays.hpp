// NumPy arrays as the engine's spans, and the engine's vectors as arrays, without copies.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstddef>
#include <memory>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

#include "korvex/geometry.hpp"

namespace korvex::python {

namespace py = pybind11;

// Points of a chain, (n, 3); the package has brought them into this form.
using Positions = py::array_t<double, py::array::c_style>;

static_assert(sizeof(Point) == 3 * sizeof(double));

// The rows of the array, which must outlive them, as points.
inline std::span<const Point> points_of(const Positions& positions) {
  if (positions.ndim() != 2 || positions.shape(1) != 3)
    throw std::invalid_argument("positions have the shape (n, 3)");
  return {reinterpret_cast<const Point*>(positions.data()),
          static_cast<std::size_t>(positions.shape(0))};
}

// An array that owns the values and may not be written to; `inner` are the numbers of a value.
template <typename Number, typename Value>
py::array_t<Number> array_of(std::vector<Value>&& values, std::vector<py::ssize_t> shape) {
  auto kept = std::make_unique<std::vector<Value>>(std::move(values));
  auto* data = reinterpret_cast<Number*>(kept->data());
  const py::capsule owner(kept.get(),
                          [](void* held) { delete static_cast<std::vector<Value>*>(held); });
  kept.release();
  py::array_t<Number> array(std::move(shape), data, owner);
  py::detail::array_proxy(array.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
  return array;
}

template <typename Number>
py::array_t<Number> array_of(std::vector<Number>&& values) {
  const auto size = static_cast<py::ssize_t>(values.size());
  return array_of<Number>(std::move(values), {size});
}

inline py::array_t<double> array_of_points(std::vector<Point>&& points) {
  const auto size = static_cast<py::ssize_t>(points.size());
  return array_of<double>(std::move(points), {size, 3});
}

}  // namespace korvex::python
