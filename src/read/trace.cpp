#include "read/trace.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

namespace korvex::read {
namespace {

// The atoms of a residue that matter, one location of each.
enum Slot : std::size_t { kCa, kP, kN, kC, kO3, kChosen, kSlots };

struct Record {
  std::array<const AtomSite*, kSlots> atoms{};
  std::size_t run = 0;
  bool het = true;  // none of its atoms is in an ATOM record
};

using Label = std::pair<std::int32_t, char>;

struct Strand {
  std::string name;
  std::vector<Record> records;
  std::map<Label, std::size_t> latest;  // the last record of each label
};

bool is_calcium(const AtomSite& site) {
  if (site.residue_name == "CA") return true;
  if (monomer_of(site.residue_name) == Monomer::kAminoAcid) return false;
  return site.element.empty() ? !site.padded_name : site.element != "C";
}

// The slots that an atom fills: at most one by its own name, and the chosen one.
std::array<bool, kSlots> slots_of(const AtomSite& site, const std::string& chosen) {
  std::array<bool, kSlots> fills{};
  fills[kCa] = site.name == "CA" && !is_calcium(site);
  fills[kP] = site.name == "P";
  fills[kN] = site.name == "N";
  fills[kC] = site.name == "C";
  fills[kO3] = site.name == "O3'" || site.name == "O3*";
  fills[kChosen] = !chosen.empty() && site.name == chosen && (chosen != "CA" || fills[kCa]);
  return fills;
}

// Sorts the atoms of a model into strands and residues.
class Sorter {
 public:
  explicit Sorter(const std::string& chosen) : chosen_(chosen) {}

  void add(const AtomSite& site) {
    const std::array<bool, kSlots> fills = slots_of(site, chosen_);
    Record* record = record_for(site, fills);
    if (record == nullptr) return;
    record->het = record->het && site.het;
    for (std::size_t slot = 0; slot < kSlots; ++slot) {
      if (!fills[slot]) continue;
      const AtomSite*& held = record->atoms[slot];
      if (held == nullptr || site.occupancy > held->occupancy) held = &site;
    }
  }

  const std::vector<Strand>& strands() const { return strands_; }

 private:
  Record* record_for(const AtomSite& site, const std::array<bool, kSlots>& fills) {
    if (fills == std::array<bool, kSlots>{}) return nullptr;
    const auto [place, is_new] = current_.try_emplace(site.chain, strands_.size());
    if (is_new) strands_.push_back({site.chain_name, {}, {}});
    const Label label{site.number, site.insertion_code};
    Strand* strand = &strands_[place->second];
    const auto found = strand->latest.find(label);
    if (found != strand->latest.end()) {
      Record& record = strand->records[found->second];
      if (record.run == site.run && !repeats(record, site, fills)) return &record;
      if (record.run != site.run && !site.het) {
        place->second = strands_.size();
        strand = &strands_.emplace_back(Strand{site.chain_name, {}, {}});
      }
    }
    strand->latest[label] = strand->records.size();
    strand->records.push_back({{}, site.run, true});
    return &strand->records.back();
  }

  static bool repeats(const Record& record, const AtomSite& site,
                      const std::array<bool, kSlots>& fills) {
    for (std::size_t slot = 0; slot < kSlots; ++slot) {
      const AtomSite* held = record.atoms[slot];
      if (fills[slot] && held != nullptr && held->altloc == ' ' && site.altloc == ' ') return true;
    }
    return false;
  }

  const std::string& chosen_;
  std::vector<Strand> strands_;
  std::map<std::string, std::size_t> current_;  // of each chain key, its strand
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
  if (a.atoms[kC] != nullptr && b.atoms[kN] != nullptr) {
    return closer(a.atoms[kC], b.atoms[kN], kPeptide);
  }
  if (a.atoms[kO3] != nullptr && b.atoms[kP] != nullptr) {
    return closer(a.atoms[kO3], b.atoms[kP], kPhosphodiester);
  }
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
};

Polymer polymer_of(const Strand& strand, Slot trace) {
  std::vector<const Record*> all;
  for (const Record& record : strand.records) {
    if (record.atoms[trace] != nullptr) all.push_back(&record);
  }
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
    kept[i] = kept[i] || site.in_polymer || site.before_end;
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
    if (kept[i]) polymer.records.push_back(all[i]);
  }
  return polymer;
}

// Lipids have P atoms as well, so known monomers count for more than numbers.
bool is_rather(const Polymer& a, const Polymer& b) {
  if (a.has_monomers != b.has_monomers) return a.has_monomers;
  return a.records.size() > b.records.size();
}

Chain chain_of(const Strand& strand, const std::string& chosen) {
  Slot trace = chosen == "P" ? kP : chosen.empty() || chosen == "CA" ? kCa : kChosen;
  Polymer polymer = polymer_of(strand, trace);
  if (chosen.empty()) {
    Polymer nucleic = polymer_of(strand, kP);
    if (is_rather(nucleic, polymer)) {
      polymer = std::move(nucleic);
      trace = kP;
    }
  }
  Chain chain;
  chain.name = strand.name;
  for (const Record* record : polymer.records) {
    const AtomSite& site = *record->atoms[trace];
    chain.points.push_back(site.position);
    chain.residues.push_back({site.number, site.insertion_code, site.residue_name});
  }
  return chain;
}

}  // namespace

std::vector<Chain> traces_of(const Model& model, const std::string& chosen) {
  Sorter sorter(chosen);
  for (const AtomSite& site : model.atoms) sorter.add(site);
  std::vector<Chain> chains;
  for (const Strand& strand : sorter.strands()) {
    Chain chain = chain_of(strand, chosen);
    if (chain.points.empty()) continue;
    chain.model = model.number;
    chains.push_back(std::move(chain));
  }
  return chains;
}

}  // namespace korvex::read
