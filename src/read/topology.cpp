// LAMMPS data files: a title, a header of counts and bounds, then sections under their names. Read
// are `Atoms`, for the molecules, and `Bonds`.
#include "read/topology.hpp"

#include <algorithm>
#include <set>
#include <utility>

#include "read/bytes.hpp"
#include "read/parsers.hpp"
#include "read/text.hpp"
#include "read/text_feed.hpp"
#include "read/trace.hpp"

namespace korvex::read {
namespace {

// A section's name stands in a line of its own, begins with a letter, and may have a comment.
bool is_section(std::string_view line) { return !line.empty() && line[0] >= 'A' && line[0] <= 'Z'; }

class DataFile {
 public:
  DataFile(std::string_view text, const std::string& file) : lines_(text, file) {}

  Topology read() {
    lines_.next();  // the title
    while (lines_.next_filled()) {
      const std::string_view line = trimmed(lines_.line());
      if (is_section(line)) {
        begin_section(line);
      } else if (section_.empty()) {
        read_count(line);
      } else if (section_ == "Atoms") {
        const std::int32_t id = number(line, 0);
        topology_.kinds[id] = word(line, has_molecules_ ? 2 : 1);
        if (has_molecules_) topology_.molecules[id] = std::to_string(number(line, 1));
      } else if (section_ == "Bonds") {
        topology_.bonds.emplace_back(number(line, 2), number(line, 3));
      }
    }
    if (!has_atoms_)
      lines_.fail("has no section `Atoms`; give a LAMMPS data file, as write_data writes it");
    if (topology_.bonds.size() != wanted_bonds_) {
      lines_.fail("holds " + std::to_string(topology_.bonds.size()) + " of the " +
                  std::to_string(wanted_bonds_) + " bonds that it announces; it may be cut short");
    }
    return std::move(topology_);
  }

 private:
  // Styles tell their columns: those of molecules have them second.
  void begin_section(std::string_view line) {
    const std::size_t comment = line.find('#');
    section_ = trimmed(line.substr(0, comment));
    if (section_ != "Atoms") return;
    has_atoms_ = true;
    const std::string_view style =
        comment == std::string_view::npos ? std::string_view{} : trimmed(line.substr(comment + 1));
    has_molecules_ = style.empty() ? wanted_bonds_ != 0
                                   : style == "full" || style == "molecular" || style == "bond" ||
                                         style == "angle" || style == "template";
  }

  void read_count(std::string_view line) {
    const std::string_view count = take_word(line);
    if (trimmed(line.substr(0, line.find('#'))) != "bonds") return;
    const std::optional<std::int32_t> bonds = to_int32(count);
    if (!bonds || *bonds < 0) lines_.fail(in_quotes(count) + " stands where a count belongs");
    wanted_bonds_ = static_cast<std::size_t>(*bonds);
  }

  static std::string_view word(std::string_view line, std::size_t column) {
    std::string_view found = take_word(line);
    for (std::size_t i = 0; i < column; ++i) found = take_word(line);
    return found;
  }

  std::int32_t number(std::string_view line, std::size_t column) const {
    const std::string_view found = word(line, column);
    const std::optional<std::int32_t> value = to_int32(found);
    if (!value) lines_.fail(in_quotes(found) + " stands where a number of an atom belongs");
    return *value;
  }

  Lines lines_;
  Topology topology_;
  std::string section_;
  bool has_atoms_ = false;
  bool has_molecules_ = false;
  std::size_t wanted_bonds_ = 0;
};

using Neighbours = std::map<std::int32_t, std::vector<std::int32_t>>;

// Follows the bonds from `start` through atoms not yet `seen`.
Backbone walk(std::int32_t start, const Neighbours& neighbours, std::set<std::int32_t>& seen) {
  Backbone strand;
  for (std::optional<std::int32_t> at = start; at;) {
    strand.atoms.push_back(*at);
    seen.insert(*at);
    const std::vector<std::int32_t>& next = neighbours.at(*at);
    at.reset();
    for (const std::int32_t atom : next)
      if (!at && !seen.contains(atom)) at = atom;
  }
  const std::vector<std::int32_t>& ends = neighbours.at(strand.atoms.back());
  strand.ring = strand.atoms.size() > 2 && std::find(ends.begin(), ends.end(), start) != ends.end();
  return strand;
}

std::vector<Backbone> by_molecule(const Topology& topology,
                                  const std::vector<std::int32_t>& atoms) {
  std::vector<Backbone> strands;
  std::map<std::string, std::size_t> place;
  for (const std::int32_t atom : atoms) {
    const auto molecule = topology.molecules.find(atom);
    const std::string name = molecule == topology.molecules.end() ? "" : molecule->second;
    const auto [found, is_new] = place.try_emplace(name, strands.size());
    if (is_new) strands.push_back({name, {}, false});
    strands[found->second].atoms.push_back(atom);
  }
  return strands;
}

}  // namespace

namespace {

std::string load_topology(const std::string& path) {
  std::string text = load_file(path);
  return is_gzip(text) ? gunzip(text, path) : text;
}

// The sections of other files have other names.
bool is_data_file(const std::string& text, const std::string& path) {
  Lines lines(text, path);
  while (lines.next())
    if (trimmed(lines.line().substr(0, lines.line().find('#'))) == "Atoms") return true;
  return false;
}

// Atoms stand in trajectories in the order of their ids.
TopologyChains chains_in_data_file(const Topology& topology, const ReadOptions& options) {
  const ChosenAtoms chosen(options.atoms);
  std::vector<std::int32_t> ids;
  std::map<std::int32_t, std::size_t> places;
  for (const auto& [id, kind] : topology.kinds) {
    places.emplace(id, places.size());
    if (chosen.empty() || chosen.has(kind)) ids.push_back(id);
  }
  TopologyChains found;
  found.atoms = places.size();
  for (const Backbone& strand : backbones_of(topology, ids, options.topology)) {
    RawChain& raw = found.chains.emplace_back();
    raw.chain.name = strand.name;
    raw.ends_bonded = strand.ring;
    for (const std::int32_t id : strand.atoms) {
      raw.chain.residues.push_back({id, ' ', topology.kinds.at(id)});
      raw.atoms.push_back(places.at(id));
    }
  }
  return found;
}

TopologyChains chains_in_models(const std::string& text, const ReadOptions& options) {
  const std::string& path = options.topology;
  TopologyChains found;
  bool is_first = true;
  const ModelSink sink = [&](Model&& model) {
    if (!std::exchange(is_first, false)) return;
    found = {traces_of(model, ChosenAtoms(options.atoms), Tracing::kStrict), model.size};
  };
  Lines lines(text, path);
  Lines first_pass(text, path);
  switch (detect_format(text, path)) {
    case Format::kPdb: {
      const Bonds bonds = read_bonds(first_pass);
      parse_pdb(lines, options, &bonds, sink);
      break;
    }
    case Format::kGro:
      parse_gro(lines, options, sink);
      break;
    case Format::kMmcif:
      parse_mmcif(text, path, options, sink);
      break;
    default:
      fail_at(path, 0, "is no topology; give a PDB, GRO, mmCIF or LAMMPS data file");
  }
  return found;
}

}  // namespace

Topology read_topology(const std::string& path) {
  const std::string text = load_topology(path);
  return DataFile(text, path).read();
}

TopologyChains chains_in_topology(const ReadOptions& options) {
  const std::string& path = options.topology;
  std::string text = load_topology(path);
  settle_line_ends(text);
  TopologyChains found = is_data_file(text, path)
                             ? chains_in_data_file(DataFile(text, path).read(), options)
                             : chains_in_models(text, options);
  if (!found.chains.empty()) return found;
  fail_at(path, 0, "holds no chain of the atoms to trace; name the atoms, or all of them");
}

std::vector<Backbone> backbones_of(const Topology& topology, const std::vector<std::int32_t>& atoms,
                                   const std::string& file) {
  std::vector<std::int32_t> sorted = atoms;
  std::sort(sorted.begin(), sorted.end());
  if (topology.bonds.empty()) return by_molecule(topology, sorted);
  Neighbours neighbours;
  for (const std::int32_t atom : sorted) neighbours[atom];
  for (const auto& [a, b] : topology.bonds) {
    const auto one = neighbours.find(a);
    const auto other = neighbours.find(b);
    if (one == neighbours.end() || other == neighbours.end()) continue;
    one->second.push_back(b);
    other->second.push_back(a);
  }
  for (auto& [atom, next] : neighbours) {
    std::sort(next.begin(), next.end());
    next.erase(std::unique(next.begin(), next.end()), next.end());
    if (next.size() <= 2) continue;
    fail_at(
        file, 0,
        "atom " + std::to_string(atom) + " has bonds to " + std::to_string(next.size()) +
            " of the chosen atoms, so that its chain branches; choose the atoms of the backbone");
  }
  std::vector<Backbone> strands;
  std::set<std::int32_t> seen;
  for (const bool rings : {false, true}) {
    for (const auto& [atom, next] : neighbours) {
      if (seen.contains(atom) || (!rings && next.size() == 2)) continue;
      strands.push_back(walk(atom, neighbours, seen));
      const auto molecule = topology.molecules.find(atom);
      if (molecule != topology.molecules.end()) strands.back().name = molecule->second;
    }
  }
  const auto lowest = [](const Backbone& strand) {
    return *std::min_element(strand.atoms.begin(), strand.atoms.end());
  };
  std::sort(strands.begin(), strands.end(),
            [&](const Backbone& a, const Backbone& b) { return lowest(a) < lowest(b); });
  return strands;
}

}  // namespace korvex::read
