#include "conversions.hpp"

#include <pybind11/stl.h>

#include <algorithm>
#include <array>
#include <utility>

#include "arrays.hpp"
#include "korvex/error.hpp"

namespace korvex::python {
namespace {

constexpr std::array<std::pair<const char*, ChainEnds>, 5> kEnds = {
    {{"apart", ChainEnds::kApart},
     {"near", ChainEnds::kNear},
     {"asked", ChainEnds::kAsked},
     {"repeated", ChainEnds::kRepeated},
     {"bonded", ChainEnds::kBonded}}};

const char* name_of(ChainEnds ends) {
  return std::ranges::find(kEnds, ends, &decltype(kEnds)::value_type::second)->first;
}

ChainEnds ends_named(const std::string& name) {
  for (const auto& [text, ends] : kEnds)
    if (name == text) return ends;
  throw Error(ErrorCode::kInvalidArgument,
              "'" + name + "': ends are apart, near, asked, repeated or bonded");
}

py::tuple tuple_of(const std::vector<Gap>& gaps) {
  py::tuple tuple(gaps.size());
  for (std::size_t i = 0; i < gaps.size(); ++i)
    tuple[i] = py::make_tuple(gaps[i].after, gaps[i].length);
  return tuple;
}

// Numbers, insertion codes as one string, and names, which are left out where there are none.
void add_residues(py::dict& arguments, const std::vector<Residue>& residues) {
  std::vector<std::int32_t> numbers;
  std::string codes;
  bool named = false;
  for (const Residue& residue : residues) {
    numbers.push_back(residue.number);
    codes += residue.insertion_code;
    named = named || !residue.name.empty();
  }
  arguments["numbers"] = array_of(std::move(numbers));
  arguments["codes"] = py::reinterpret_steal<py::str>(
      PyUnicode_DecodeLatin1(codes.data(), static_cast<py::ssize_t>(codes.size()), nullptr));
  if (!named) return;
  py::tuple names(residues.size());
  for (std::size_t i = 0; i < residues.size(); ++i) names[i] = text_of(residues[i].name);
  arguments["residue_names"] = names;
}

std::vector<Residue> residues_of(const py::object& chain) {
  std::vector<Residue> residues;
  const py::object numbers = py::getattr(chain, "numbers", py::none());
  if (numbers.is_none()) return residues;
  const auto values = numbers.cast<py::array_t<std::int32_t, py::array::forcecast>>();
  const auto codes = chain.attr("codes").attr("encode")("latin-1").cast<std::string>();
  const auto names = chain.attr("residue_names").cast<py::tuple>();
  for (py::ssize_t i = 0; i < values.size(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    residues.push_back({values.at(i), at < codes.size() ? codes[at] : ' ',
                        at < names.size() ? names[at].cast<std::string>() : std::string()});
  }
  return residues;
}

// Of a summary, which has the mean alone, every residue has that.
std::vector<float> confidences_of(const py::object& plddt, std::size_t points) {
  if (plddt.is_none()) return {};
  if (py::isinstance<py::float_>(plddt)) return std::vector<float>(points, plddt.cast<float>());
  const auto values = plddt.cast<py::array_t<float, py::array::c_style | py::array::forcecast>>();
  return {values.data(), values.data() + values.size()};
}

}  // namespace

// Names of files and chains may be in any encoding.
py::str text_of(std::string_view text) {
  return py::reinterpret_steal<py::str>(
      PyUnicode_DecodeUTF8(text.data(), static_cast<py::ssize_t>(text.size()), "surrogateescape"));
}

py::dict arguments_of(Chain&& chain) {
  py::dict arguments;
  arguments["name"] = text_of(chain.name);
  arguments["source"] = text_of(chain.source);
  arguments["model"] = chain.model;
  arguments["closed"] = chain.closed;
  arguments["ends"] = name_of(chain.ends);
  arguments["gaps"] = tuple_of(chain.gaps);
  arguments["bond"] = chain.bond;
  arguments["mended"] = chain.mended;
  arguments["part"] = chain.part;
  arguments["split_length"] = chain.split_length;
  arguments["time"] = chain.time;
  arguments["step"] = chain.step;
  if (!chain.plddt.empty()) arguments["plddt"] = array_of(std::move(chain.plddt));
  add_residues(arguments, chain.residues);
  arguments["positions"] = array_of_points(std::move(chain.points));
  return arguments;
}

Chain chain_of(const py::object& object) {
  const auto bytes = [&](const char* name) {
    return object.attr(name).attr("encode")("utf-8", "surrogateescape").cast<std::string>();
  };
  Chain chain;
  chain.points.resize(py::hasattr(object, "points") ? object.attr("points").cast<std::size_t>()
                                                    : py::len(object));
  chain.residues = residues_of(object);
  chain.name = bytes("name");
  chain.source = bytes("source");
  chain.model = object.attr("model").cast<std::int64_t>();
  chain.closed = object.attr("closed").cast<bool>();
  chain.ends = ends_named(object.attr("ends").cast<std::string>());
  for (const py::handle& gap : object.attr("gaps").cast<py::tuple>()) {
    const auto pair = gap.cast<py::tuple>();
    chain.gaps.push_back({pair[0].cast<std::size_t>(), pair[1].cast<double>()});
  }
  chain.mended = object.attr("mended").cast<std::size_t>();
  chain.part = object.attr("part").cast<int>();
  chain.split_length = object.attr("split_length").cast<double>();
  chain.time = object.attr("time").cast<std::optional<double>>();
  chain.step = object.attr("step").cast<std::optional<std::int64_t>>();
  chain.plddt = confidences_of(object.attr("plddt"), chain.points.size());
  return chain;
}

py::tuple tuple_of_ring(const RingReport& ring) {
  return py::make_tuple(py::make_tuple(ring.projected.crossings, ring.projected.writhe),
                        ring.points_left, ring.simplified, ring.alexander_key);
}

RingReport ring_of(const py::handle& ring) {
  const auto fields = ring.cast<py::tuple>();
  const auto projected = fields[0].cast<py::tuple>();
  return {.projected = {projected[0].cast<std::size_t>(), projected[1].cast<std::int64_t>()},
          .points_left = fields[1].cast<std::size_t>(),
          .simplified = fields[2].cast<Diagram>(),
          .alexander_key = fields[3].cast<std::uint64_t>()};
}

Sampling sampling_named(std::string_view name) {
  if (name == "lattice") return Sampling::kLattice;
  if (name == "independent") return Sampling::kIndependent;
  throw Error(ErrorCode::kInvalidArgument,
              "sampling '" + std::string(name) + "': lattice or independent");
}

}  // namespace korvex::python
