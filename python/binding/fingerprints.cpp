// Fingerprints and places of knots.
#include <pybind11/stl.h>

#include "arrays.hpp"
#include "conversions.hpp"
#include "korvex/fingerprint.hpp"
#include "korvex/locate.hpp"
#include "run.hpp"

namespace korvex::python {
namespace {

Fingerprint fingerprint_of(const Positions& positions, bool exact, const std::string& closure,
                           const std::string& sampling, std::size_t directions, std::size_t step,
                           std::size_t most_memory, unsigned threads, std::uint64_t seed,
                           const py::object& progress) {
  const FingerprintOptions options{.exact = exact,
                                   .closure = closure_named(closure),
                                   .sampling = sampling_named(sampling),
                                   .directions = directions,
                                   .step = step,
                                   .most_memory = most_memory};
  const std::span<const Point> points = points_of(positions);
  return carried_out(RunArguments{threads, seed, progress},
                     [&](const Run& run) { return fingerprint(points, options, run); });
}

// dominant (n, n) and share (n, n), as the archive of a fingerprint has them.
py::tuple dominant_arrays(const Fingerprint& fingerprint) {
  const std::size_t n = fingerprint.stations().size();
  std::vector<std::int32_t> dominant(n * n, -1);
  std::vector<float> share(n * n, 0);
  {
    const py::gil_scoped_release unlocked;
    for (std::size_t begin = 0; begin < n; ++begin) {
      for (std::size_t end = begin + 1; end < n; ++end) {
        const auto most = fingerprint.dominant(begin, end);
        dominant[begin * n + end] = static_cast<std::int32_t>(most.type);
        share[begin * n + end] = static_cast<float>(most.share);
      }
    }
  }
  const auto side = static_cast<py::ssize_t>(n);
  return py::make_tuple(array_of<std::int32_t>(std::move(dominant), {side, side}),
                        array_of<float>(std::move(share), {side, side}));
}

// Shares of the type (n, n), 0 where begin >= end.
py::array_t<double> shares_of(const Fingerprint& fingerprint, std::size_t type) {
  const std::size_t n = fingerprint.stations().size();
  std::vector<double> shares(n * n, 0);
  for (std::size_t begin = 0; begin < n; ++begin)
    for (std::size_t end = begin + 1; end < n; ++end)
      shares[begin * n + end] = fingerprint.share(type, begin, end);
  const auto side = static_cast<py::ssize_t>(n);
  return array_of<double>(std::move(shares), {side, side});
}

// begin, end, type and share of all knotted (sub-chain, type) pairs, rising.
py::tuple knotted_arrays(const Fingerprint& fingerprint) {
  const std::size_t n = fingerprint.stations().size();
  std::vector<std::int32_t> begins;
  std::vector<std::int32_t> ends;
  std::vector<std::int32_t> types;
  std::vector<double> shares;
  for (std::size_t begin = 0; begin < n; ++begin) {
    for (std::size_t end = begin + 1; end < n; ++end) {
      for (std::size_t type = 1; type < fingerprint.types().size(); ++type) {
        const double share = fingerprint.share(type, begin, end);
        if (!(share > 0)) continue;
        begins.push_back(static_cast<std::int32_t>(begin));
        ends.push_back(static_cast<std::int32_t>(end));
        types.push_back(static_cast<std::int32_t>(type));
        shares.push_back(share);
      }
    }
  }
  return py::make_tuple(array_of(std::move(begins)), array_of(std::move(ends)),
                        array_of(std::move(types)), array_of(std::move(shares)));
}

// A view of the stations, which lives as long as they do.
py::array_t<std::int32_t> stations_of(const py::object& self) {
  const auto& stations = self.cast<const Fingerprint&>().stations();
  py::array_t<std::int32_t> array(static_cast<py::ssize_t>(stations.size()), stations.data(), self);
  py::detail::array_proxy(array.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
  return array;
}

py::object tuple_of(const std::optional<Threading>& threading) {
  if (!threading) return py::none();
  const auto& [residue, loop, tail, becomes] = *threading;
  return py::make_tuple(residue, py::make_tuple(loop.first, loop.last + 1),
                        py::make_tuple(tail.first, tail.last + 1), becomes);
}

py::tuple tuple_of(const std::vector<Dip>& dips) {
  py::tuple tuple(dips.size());
  for (std::size_t i = 0; i < dips.size(); ++i)
    tuple[i] = py::make_tuple(dips[i].residue, dips[i].back, dips[i].share, dips[i].becomes);
  return tuple;
}

// Stretches are half open here, as slices are.
py::tuple tuple_of(const KnotPlace& place) {
  return py::make_tuple(
      place.type, py::make_tuple(place.core.first, place.core.last + 1), place.core_share,
      place.whole_share, py::make_tuple(place.longest.first, place.longest.last + 1),
      place.sub_chains, place.tail_before, place.tail_after, tuple_of(place.undone_before),
      tuple_of(place.undone_after), tuple_of(place.dips_before), tuple_of(place.dips_after));
}

py::tuple location_of(const Fingerprint& fingerprint, double threshold) {
  const Location location = carried_out(RunArguments{1, 1, py::none()}, [&](const Run& run) {
    return locate(fingerprint, {.threshold = threshold}, run);
  });
  py::tuple knots(location.knots.size());
  for (std::size_t i = 0; i < location.knots.size(); ++i) knots[i] = tuple_of(location.knots[i]);
  return py::make_tuple(location.type, location.share, py::tuple(py::cast(location.factors)), knots,
                        location.exact, location.trials);
}

}  // namespace

void add_fingerprints(py::module_& module) {
  py::class_<Fingerprint>(module, "FingerprintData")
      .def_property_readonly("stations", &stations_of)
      .def_property_readonly("exact", &Fingerprint::exact)
      .def_property_readonly("trials", &Fingerprint::trials)
      .def_property_readonly("doubt", &Fingerprint::doubt)
      .def_property_readonly(
          "types", [](const Fingerprint& self) { return py::tuple(py::cast(self.types())); })
      .def("dominant_arrays", &dominant_arrays)
      .def("shares", &shares_of)
      .def("knotted_arrays", &knotted_arrays)
      .def("share", &Fingerprint::share)
      .def("count", &Fingerprint::count);
  module.def("fingerprint", &fingerprint_of);
  module.def("locate", &location_of);
}

}  // namespace korvex::python
