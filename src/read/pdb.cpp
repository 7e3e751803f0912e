// PDB files, in the fixed columns of format version 3.3, with the extensions in common use: chain
// identifiers of two letters, residue names of four, hybrid-36 residue numbers, numbers that run
// into the insertion code's column, models separated by END alone.
//
// The records are read here rather than by gemmi because gemmi takes a coordinate that it cannot
// read for 0 and goes on, stops at the first END, and keeps four digits of a model's number.
#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "read/parsers.hpp"
#include "read/text.hpp"

namespace korvex::read {
namespace {

bool begins(std::string_view line, std::string_view record) {
  return line.substr(0, record.size()) == record;
}

// The character in a column, counted from 1; nothing behind the line's end.
std::string_view letter(std::string_view line, std::size_t column) {
  return columns(line, column, column);
}

bool is_digit(std::string_view text) { return !text.empty() && text[0] >= '0' && text[0] <= '9'; }

bool is_atom(std::string_view line) {
  if (begins(line, "HETATM")) return true;
  return begins(line, "ATOM") && (letter(line, 5) == " " || is_digit(letter(line, 5)));
}

bool is_record(std::string_view line, std::string_view name) {
  const std::string_view next = letter(line, name.size() + 1);
  return begins(line, name) && (next.empty() || next == " ");
}

// Four characters in base 36, where "A000" follows 9999 and "a000" follows "ZZZZ".
std::optional<std::int32_t> hybrid36(std::string_view text) {
  if (text.size() != 4) return {};
  const bool upper = text[0] >= 'A' && text[0] <= 'Z';
  const bool lower = text[0] >= 'a' && text[0] <= 'z';
  if (!upper && !lower) return {};
  std::int32_t value = 0;
  for (const char c : text) {
    const char ten = upper ? 'A' : 'a';
    if (c >= '0' && c <= '9')
      value = value * 36 + (c - '0');
    else if (c >= ten && c <= ten + 25)
      value = value * 36 + (c - ten + 10);
    else
      return {};
  }
  constexpr std::int32_t kFirst = 10 * 36 * 36 * 36;
  constexpr std::int32_t kUpperCount = 26 * 36 * 36 * 36;
  return value - kFirst + 10000 + (upper ? 0 : kUpperCount);
}

std::string_view number_field(std::string_view line) {
  return trimmed(columns(line, 23, is_digit(letter(line, 27)) ? 27 : 26));
}

// False where the columns hold none.
bool read_residue_number(AtomSite& site, std::string_view line) {
  const std::string_view field = number_field(line);
  std::optional<std::int32_t> number = to_int32(field);
  if (!number) number = hybrid36(field);
  site.number = number.value_or(0);
  const std::string_view code = letter(line, 27);
  site.insertion_code = code.empty() || is_digit(code) ? ' ' : code.front();
  return number.has_value();
}

// Column 21 belongs to the residue's name or to the chain's: to the chain's only if columns 18-20
// already name a residue that is known and column 22 goes on.
void read_names(AtomSite& site, std::string_view line) {
  site.residue_name = trimmed(columns(line, 18, 20));
  site.chain_name = trimmed(columns(line, 22, 22));
  const std::string_view shared = trimmed(columns(line, 21, 21));
  if (shared.empty()) return;
  if (!site.chain_name.empty() && monomer_of(site.residue_name) != Monomer::kUnknown)
    site.chain_name.insert(0, shared);
  else
    site.residue_name += shared;
}

double read_coordinate(const Lines& lines, std::size_t first, char axis) {
  const std::string_view field = columns(lines.line(), first, first + 7);
  const std::optional<double> value = to_number(trimmed(field));
  const std::string place =
      "columns " + std::to_string(first) + "-" + std::to_string(first + 7) + " hold ";
  if (!value) {
    lines.fail(place + in_quotes(field) + " where the " + axis +
               " coordinate belongs; write the line in PDB columns");
  }
  if (!std::isfinite(*value)) {
    lines.fail(place + in_quotes(field) + ", which is not finite; remove the atom or give its " +
               "position");
  }
  return *value;
}

double read_occupancy(const Lines& lines) {
  const std::string_view field = trimmed(columns(lines.line(), 55, 60));
  if (field.empty()) return 1;
  const std::optional<double> value = to_number(field);
  if (!value || !std::isfinite(*value)) {
    lines.fail("columns 55-60 hold " + in_quotes(field) +
               " where the occupancy belongs; write the line in PDB columns");
  }
  return *value;
}

// Columns 77-78; old files keep other things there.
std::string read_element(std::string_view line) {
  std::string element(trimmed(columns(line, 77, 78)));
  for (char& c : element) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (c < 'A' || c > 'Z') return {};
  }
  return element;
}

AtomSite read_atom(const Lines& lines) {
  constexpr std::size_t kLastCoordinate = 54;
  const std::string_view line = lines.line();
  if (line.size() < kLastCoordinate) {
    lines.fail("the atom's line ends before column 54, the end of its coordinates; " +
               std::string("the file may be cut short"));
  }
  AtomSite site;
  site.het = line[0] == 'H';
  site.serial = to_int32(trimmed(columns(line, 7, 11))).value_or(0);
  site.name = trimmed(columns(line, 13, 16));
  site.padded_name = line[12] == ' ';
  site.altloc = line[16];
  read_names(site, line);
  if (!read_residue_number(site, line)) {
    lines.fail("columns 23-26 hold " + in_quotes(number_field(line)) +
               " where the residue number belongs; write the line in PDB columns");
  }
  site.position = {read_coordinate(lines, 31, 'x'), read_coordinate(lines, 39, 'y'),
                   read_coordinate(lines, 47, 'z')};
  site.occupancy = read_occupancy(lines);
  site.element = read_element(line);
  site.chain = site.chain_name;
  return site;
}

// Adds the bonds of a CONECT record.
void add_bonds(std::string_view line, Bonds& bonds) {
  const std::optional<std::int32_t> from = to_int32(trimmed(columns(line, 7, 11)));
  for (std::size_t first = 12; from && first <= 27; first += 5) {
    const std::optional<std::int32_t> to = to_int32(trimmed(columns(line, first, first + 4)));
    if (to) bonds.insert(std::minmax(*from, *to));
  }
}

// Adds the bond of a LINK record, whose columns 13-27 name an atom as its own line does, and 43-57
// the other. A bond to an atom's image by symmetry closes no ring.
void add_link(std::string_view line, Links& links) {
  const auto atom = [](std::string_view named) -> std::optional<AtomName> {
    AtomSite site;
    read_names(site, named);
    if (!read_residue_number(site, named)) return {};
    return AtomName{site.chain_name, site.number, site.insertion_code,
                    std::string(trimmed(columns(named, 13, 16)))};
  };
  const auto one = atom(line);
  const auto other = atom(columns(line, 31, 57));
  if (one && other && trimmed(columns(line, 60, 65)) == trimmed(columns(line, 67, 72)))
    links.emplace_back(*one, *other);
}

// No cell where the record holds no numbers of one.
Cell read_cell(std::string_view line) {
  const auto number = [line](std::size_t first, std::size_t last) {
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    return to_number(trimmed(columns(line, first, last))).value_or(kNone);
  };
  return cell_of({number(7, 15), number(16, 24), number(25, 33)},
                 {number(34, 40), number(41, 47), number(48, 54)});
}

// Files of the AlphaFold database say so in their title and in their remarks, others name the
// measure in a remark.
bool tells_of_confidence(std::string_view line) {
  const bool is_remark = is_record(line, "REMARK");
  if (!is_remark && !is_record(line, "TITLE")) return false;
  const auto holds = [line](std::string_view upper_case) {
    const auto same = [](char c, char wanted) {
      return (c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c) == wanted;
    };
    return std::search(line.begin(), line.end(), upper_case.begin(), upper_case.end(), same) !=
           line.end();
  };
  if (is_remark) return holds("PLDDT") || holds("ALPHAFOLD DATA");
  return holds("ALPHAFOLD") && holds("PREDICTION");
}

// Nothing where the columns of the B factor hold no confidence.
std::optional<float> read_confidence(std::string_view line) {
  const std::optional<double> value = to_number(trimmed(columns(line, 61, 66)));
  if (!value || !(*value >= 0 && *value <= 100)) return {};
  return static_cast<float>(*value);
}

class PdbParser {
 public:
  PdbParser(const ChosenAtoms& chosen, const Bonds* bonds, const ModelSink& sink)
      : chosen_(chosen), bonds_(bonds), sink_(sink) {}

  void take(const Lines& lines) {
    const std::string_view line = lines.line();
    if (is_atom(line)) {
      AtomSite site = read_atom(lines);
      site.run = run_;
      site.place = model_.size++;
      if (is_predicted_) site.plddt = read_confidence(line);
      last_chain_ = site.chain;
      has_atoms_ = true;
      if (matters_for_trace(site.name, chosen_)) model_.atoms.push_back(std::move(site));
    } else if (is_record(line, "TER")) {
      end_chain();
    } else if (tells_of_confidence(line)) {
      is_predicted_ = true;
    } else if (is_record(line, "TITLE")) {
      time_ = number_after(line, "t=");
      step_ = integer_after(line, "step=");
    } else if (is_record(line, "CRYST1")) {
      cell_ = read_cell(line);
    } else if (is_record(line, "LINK")) {
      add_link(line, links_);
    } else if (is_record(line, "MODEL")) {
      end_model();
      in_model_ = true;
      std::string_view rest = line.substr(5);
      number_ = to_int32(take_word(rest));
    } else if (is_record(line, "ENDMDL") || is_record(line, "END")) {
      end_model();
    } else if (bonds_ == nullptr && begins(line, "CONECT")) {
      take_bonds(lines);
    }
  }

  bool in_model() const { return in_model_; }

  void end_model() {
    if (has_atoms_) {
      ++count_;
      model_.number = number_.value_or(count_);
      model_.cell = cell_;
      model_.time = time_;
      model_.step = step_;
      time_.reset();
      step_.reset();
      model_.bonds = bonds_ == nullptr ? &own_bonds_ : bonds_;
      model_.links = &links_;
      sink_(std::move(model_));
    }
    model_ = {};
    number_.reset();
    ended_.clear();
    run_ = run_begin_ = 0;
    has_atoms_ = in_model_ = false;
  }

 private:
  // Those of a file that can be read only once.
  void take_bonds(const Lines& lines) {
    if (count_ != 0) {
      lines.fail(
          "bonds behind the models come too late in a long input that can be read only once; give "
          "the "
          "file itself, or leave the CONECT records out");
    }
    add_bonds(lines.line(), own_bonds_);
  }

  void end_chain() {
    const bool first = ended_.insert(last_chain_).second;
    const auto own = [this](const AtomSite& site) { return site.chain == last_chain_; };
    const auto atom = [&](const AtomSite& site) { return own(site) && !site.het; };
    // Only the first TER record of a chain looks back farther than its run: there may be thousands.
    const auto run = model_.atoms.begin() + static_cast<std::ptrdiff_t>(run_begin_);
    const auto begin = first ? model_.atoms.begin() : run;
    // Behind it a run of HETATM records alone is ligands and waters.
    const bool polymer = first || std::any_of(run, model_.atoms.end(), atom);
    for (auto site = begin; polymer && site != model_.atoms.end(); ++site) {
      if (!own(*site)) continue;
      site->before_end = true;
      site->before_first_end = site->before_first_end || first;
    }
    run_begin_ = model_.atoms.size();
    ++run_;
  }

  const ChosenAtoms& chosen_;
  const Bonds* bonds_;
  Bonds own_bonds_;
  Links links_;  // which stand before the models
  const ModelSink& sink_;
  Model model_;
  Cell cell_;  // of this model and those after it, up to the next CRYST1 record
  std::optional<std::int32_t> number_;
  bool is_predicted_ = false;   // what stands for B factors are confidences
  std::optional<double> time_;  // of the next model to end
  std::optional<std::int64_t> step_;
  std::int64_t count_ = 0;
  std::set<std::string> ended_;  // chains that had a TER record
  std::string last_chain_;
  std::size_t run_ = 0;        // TER records so far
  std::size_t run_begin_ = 0;  // atoms before the last of them
  bool has_atoms_ = false;
  bool in_model_ = false;
};

}  // namespace

Bonds read_bonds(Lines& lines) {
  Bonds bonds;
  while (lines.next())
    if (begins(lines.line(), "CONECT")) add_bonds(lines.line(), bonds);
  return bonds;
}

void parse_pdb(Lines& lines, const ReadOptions& options, const Bonds* bonds,
               const ModelSink& sink) {
  const ChosenAtoms chosen(options.atoms);
  PdbParser parser(chosen, bonds, sink);
  while (lines.next()) parser.take(lines);
  if (parser.in_model())
    lines.fail("the file ends within a MODEL; it may be cut short: copy it again or add ENDMDL");
  parser.end_model();
}

}  // namespace korvex::read
