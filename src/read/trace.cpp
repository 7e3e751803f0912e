#include "read/trace.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include "geometry/bonds.hpp"
#include "read/gaps.hpp"

namespace korvex::read {
namespace {

// The atoms of a residue that matter, one location of each.
enum Slot : std::size_t { kCa, kP, kN, kC, kO3, kChosen, kSlots };

using Label = std::pair<std::int32_t, char>;

struct Record {
  std::array<const AtomSite*, kSlots> atoms{};
  std::vector<const AtomSite*> chosen;  // by name, in the order of the file
  Label label;
  std::size_t run = 0;
  bool het = true;  // none of its atoms is in an ATOM record
};

struct Strand {
  std::string name;
  std::vector<Record> records;
  std::map<Label, std::size_t> latest;  // the last record of each label
  std::optional<std::size_t> run;       // of its ATOM records
};

bool is_calcium(const AtomSite& site) {
  if (site.residue_name == "CA") return true;
  if (monomer_of(site.residue_name) == Monomer::kAminoAcid) return false;
  return site.element.empty() ? !site.padded_name : site.element != "C";
}

// The slots that an atom fills: at most one by its own name, and the chosen one.
std::array<bool, kSlots> slots_of(const AtomSite& site, const ChosenAtoms& chosen) {
  std::array<bool, kSlots> fills{};
  const std::string_view name = site.name;
  if (name.size() == 1) {
    fills[kP] = name[0] == 'P';
    fills[kN] = name[0] == 'N';
    fills[kC] = name[0] == 'C';
  } else if (name.size() == 2) {
    fills[kCa] = name == "CA" && !is_calcium(site);
  } else {
    fills[kO3] = name == "O3'" || name == "O3*";
  }
  fills[kChosen] =
      !chosen.empty() && chosen.has(site.name) && (chosen.all() || site.name != "CA" || fills[kCa]);
  return fills;
}

// Sorts the atoms of a model into strands and residues.
class Sorter {
 public:
  Sorter(const ChosenAtoms& chosen, Tracing tracing) : chosen_(chosen), tracing_(tracing) {}

  void add(const AtomSite& site) {
    const std::array<bool, kSlots> fills = slots_of(site, chosen_);
    Record* record = record_for(site, fills);
    if (record == nullptr) return;
    record->het = record->het && site.het;
    for (std::size_t slot = 0; slot < kSlots; ++slot) {
      if (!fills[slot]) continue;
      const AtomSite*& held = slot == kChosen ? place_of(*record, site) : record->atoms[slot];
      if (held == nullptr || site.occupancy > held->occupancy) held = &site;
    }
    if (!record->chosen.empty()) record->atoms[kChosen] = record->chosen.front();
  }

  const std::vector<Strand>& strands() const { return strands_; }

 private:
  Record* record_for(const AtomSite& site, const std::array<bool, kSlots>& fills) {
    if (std::none_of(fills.begin(), fills.end(), [](bool f) { return f; })) return nullptr;
    // Nearly all atoms are of the chain, and most of the residue, of the one before.
    if (last_ == current_.end() || last_->first != site.chain) {
      bool is_new = false;
      std::tie(last_, is_new) = current_.try_emplace(site.chain, strands_.size());
      if (is_new) strands_.push_back({site.chain_name, {}, {}, {}});
    }
    const auto place = last_;
    if (!site.het && tracing_ == Tracing::kStrict) begin_run(place->second, site.run);
    const Label label{site.number, site.insertion_code};
    Strand* strand = &strands_[place->second];
    if (const std::optional<std::size_t> latest = latest_of(*strand, label)) {
      Record& record = strand->records[*latest];
      if (record.run == site.run && !repeats(record, site, fills)) return &record;
      if (record.run != site.run && !site.het) {
        place->second = strands_.size();
        strand = &strands_.emplace_back(Strand{site.chain_name, {}, {}, {}});
      }
    }
    strand->latest.insert_or_assign(strand->latest.end(), label, strand->records.size());
    strand->records.push_back({{}, {}, label, site.run, true});
    return &strand->records.back();
  }

  static std::optional<std::size_t> latest_of(const Strand& strand, const Label& label) {
    if (strand.records.empty()) return {};
    if (strand.records.back().label == label) return strand.records.size() - 1;
    const auto found = strand.latest.find(label);
    if (found == strand.latest.end()) return {};
    return found->second;
  }

  // A TER record ends a chain: what has followed it in HETATM records, such as a modified first
  // residue, goes along into the strand of the ATOM records of its run.
  void begin_run(std::size_t& place, std::size_t run) {
    Strand& old = strands_[place];
    if (!old.run || *old.run == run) {
      old.run = run;
      return;
    }
    Strand begun{old.name, {}, {}, run};
    while (!old.records.empty() && old.records.back().run == run) {
      begun.records.insert(begun.records.begin(), std::move(old.records.back()));
      old.records.pop_back();
    }
    for (auto& [label, record] : old.latest)
      if (record >= old.records.size()) begun.latest[label] = record - old.records.size();
    place = strands_.size();
    strands_.push_back(std::move(begun));
  }

  // Where the record holds the chosen atom of this name.
  static const AtomSite*& place_of(Record& record, const AtomSite& site) {
    for (const AtomSite*& held : record.chosen)
      if (held->name == site.name) return held;
    return record.chosen.emplace_back(nullptr);
  }

  static bool repeats(const Record& record, const AtomSite& site,
                      const std::array<bool, kSlots>& fills) {
    for (std::size_t slot = 0; slot < kSlots; ++slot) {
      const AtomSite* held = record.atoms[slot];
      if (slot == kChosen) {
        const auto same = [&site](const AtomSite* atom) { return atom->name == site.name; };
        const auto found = std::find_if(record.chosen.begin(), record.chosen.end(), same);
        held = found == record.chosen.end() ? nullptr : *found;
      }
      if (fills[slot] && held != nullptr && held->altloc == ' ' && site.altloc == ' ') return true;
    }
    return false;
  }

  const ChosenAtoms& chosen_;
  Tracing tracing_;
  std::vector<Strand> strands_;
  std::map<std::string, std::size_t> current_;  // of each chain key, its strand
  std::map<std::string, std::size_t>::iterator last_ = current_.end();
};

bool closer(const AtomSite* a, const AtomSite* b, double limit) {
  const Point apart = a->position - b->position;
  return dot(apart, apart) < limit * limit;
}

bool bonded(const Record& a, const Record& b, Slot trace) {
  constexpr double kPeptide = 2.0;
  constexpr double kPhosphodiester = 2.5;
  constexpr double kAlphaCarbons = 5.0;
  constexpr double kPhosphates = 8.0;
  if (a.atoms[kC] != nullptr && b.atoms[kN] != nullptr)
    return closer(a.atoms[kC], b.atoms[kN], kPeptide);
  if (a.atoms[kO3] != nullptr && b.atoms[kP] != nullptr)
    return closer(a.atoms[kO3], b.atoms[kP], kPhosphodiester);
  return closer(a.atoms[trace], b.atoms[trace], trace == kCa ? kAlphaCarbons : kPhosphates);
}

// True for an amino acid or a nucleotide, as the trace wants it, in ATOM records.
bool is_monomer(const Record& record, Slot trace) {
  if (record.het) return false;
  const Monomer monomer = monomer_of(record.atoms[trace]->residue_name);
  return (monomer == Monomer::kAminoAcid && trace != kP) ||
         (monomer == Monomer::kNucleotide && trace != kCa);
}

// The residues of a strand that have the trace atom and belong to its polymer.
struct Polymer {
  std::vector<const Record*> records;
  bool has_monomers = false;
  bool told = false;       // the file says that some of them belong to a polymer
  std::size_t bonded = 0;  // neighbours with a bond between them
};

Polymer polymer_of(const Strand& strand, Slot trace, Tracing tracing) {
  std::vector<const Record*> all;
  for (const Record& record : strand.records)
    if (record.atoms[trace] != nullptr) all.push_back(&record);
  std::size_t first_monomer = all.size();
  std::size_t last_monomer = 0;
  std::vector<bool> kept(all.size());
  for (std::size_t i = 0; i < all.size(); ++i) {
    const AtomSite& site = *all[i]->atoms[trace];
    kept[i] = is_monomer(*all[i], trace);
    if (kept[i]) {
      first_monomer = std::min(first_monomer, i);
      last_monomer = i;
    }
    kept[i] = kept[i] || site.in_polymer ||
              (tracing == Tracing::kLoose ? site.before_first_end : site.before_end);
  }
  const bool no_monomer = first_monomer == all.size();
  for (std::size_t i = 0; i < all.size(); ++i) {
    const bool within = first_monomer < i && i < last_monomer;
    const bool follows =
        i > 0 && (kept[i - 1] || no_monomer) && bonded(*all[i - 1], *all[i], trace);
    kept[i] = kept[i] || within || follows || (no_monomer && !all[i]->het);
  }
  for (std::size_t i = all.size(); i-- > 1;) {
    const bool leads = (kept[i] || no_monomer) && bonded(*all[i - 1], *all[i], trace);
    kept[i - 1] = kept[i - 1] || leads;
  }
  Polymer polymer{{}, !no_monomer};
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (!kept[i]) continue;
    polymer.told = polymer.told || all[i]->atoms[trace]->in_polymer;
    if (!polymer.records.empty() && bonded(*polymer.records.back(), *all[i], trace))
      ++polymer.bonded;
    polymer.records.push_back(all[i]);
  }
  return polymer;
}

// True where a trace through their CA or P stands for the residues: unknown ones with CA may be
// beads, which follow one another at one distance; molecules that lie about do not.
bool is_of_its_kind(const Polymer& polymer, Slot trace) {
  if (polymer.has_monomers || polymer.told) return true;
  if (trace != kCa) return false;
  std::vector<double> lengths;
  for (std::size_t i = 1; i < polymer.records.size(); ++i) {
    const AtomSite& before = *polymer.records[i - 1]->atoms[trace];
    lengths.push_back(norm(polymer.records[i]->atoms[trace]->position - before.position));
  }
  return 2 * polymer.bonded + 1 >= polymer.records.size() ||
         !bonds_vary(lengths, preprocess::median_bond(lengths));
}

// Whether the file has a bond between the atoms, by their numbers or by their names.
bool has_bond(const Model& model, const AtomSite& a, const AtomSite& b) {
  const bool numbered = model.bonds != nullptr && a.serial != 0 && b.serial != 0;
  if (numbered && model.bonds->contains(std::minmax(a.serial, b.serial))) return true;
  const auto joins = [&a, &b](const auto& link) {
    return (link.first.is_of(a) && link.second.is_of(b)) ||
           (link.first.is_of(b) && link.second.is_of(a));
  };
  return model.links != nullptr && std::any_of(model.links->begin(), model.links->end(), joins);
}

// True where the file has a bond between the first and the last residue.
bool are_ends_bonded(const Polymer& polymer, const Model& model) {
  if (polymer.records.size() < 3) return false;
  const Record& first = *polymer.records.front();
  const Record& last = *polymer.records.back();
  for (const AtomSite* a : first.atoms)
    for (const AtomSite* b : last.atoms)
      if (a != nullptr && b != nullptr && has_bond(model, *a, *b)) return true;
  return false;
}

// Lipids have P atoms as well, so known monomers count for more than numbers.
bool is_rather(const Polymer& a, const Polymer& b) {
  if (a.has_monomers != b.has_monomers) return a.has_monomers;
  return a.records.size() > b.records.size();
}

RawChain chain_of(const Strand& strand, const Model& model, const ChosenAtoms& chosen,
                  Tracing tracing) {
  const std::string_view name = chosen.only();
  Slot trace = name == "P" ? kP : chosen.empty() || name == "CA" ? kCa : kChosen;
  Polymer polymer = polymer_of(strand, trace, tracing);
  if (chosen.empty()) {
    Polymer nucleic = polymer_of(strand, kP, tracing);
    if (is_rather(nucleic, polymer)) {
      polymer = std::move(nucleic);
      trace = kP;
    }
    if (tracing == Tracing::kStrict && !is_of_its_kind(polymer, trace)) return {};
  }
  RawChain raw;
  raw.beads = !polymer.has_monomers || chosen.all();
  raw.ends_bonded = are_ends_bonded(polymer, model);
  Chain& chain = raw.chain;
  chain.name = strand.name;
  const auto add = [&](const AtomSite& site) {
    chain.points.push_back(site.position);
    chain.residues.push_back({site.number, site.insertion_code, site.residue_name});
    raw.sequence.push_back(site.sequence);
    raw.atoms.push_back(site.place);
    if (site.plddt) chain.plddt.push_back(*site.plddt);
    raw.beads = raw.beads && !site.in_polymer;
  };
  for (const Record* record : polymer.records) {
    if (trace != kChosen) {
      add(*record->atoms[trace]);
      continue;
    }
    for (const AtomSite* site : record->chosen) add(*site);
  }
  if (chain.plddt.size() != chain.points.size()) chain.plddt.clear();
  const auto known = [](const auto& place) { return place.has_value(); };
  if (std::none_of(raw.sequence.begin(), raw.sequence.end(), known)) raw.sequence.clear();
  return raw;
}

}  // namespace

std::vector<RawChain> traces_of(const Model& model, const ChosenAtoms& chosen, Tracing tracing) {
  Sorter sorter(chosen, tracing);
  for (const AtomSite& site : model.atoms) sorter.add(site);
  std::vector<RawChain> chains;
  for (const Strand& strand : sorter.strands()) {
    RawChain raw = chain_of(strand, model, chosen, tracing);
    if (raw.chain.points.empty()) continue;
    raw.chain.model = model.number;
    raw.chain.time = model.time;
    raw.chain.step = model.step;
    raw.cell = model.cell;
    chains.push_back(std::move(raw));
  }
  return chains;
}

}  // namespace korvex::read
