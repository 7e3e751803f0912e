// mmCIF files: the categories that tell chains, so that nothing else in a file can be in the way.
#include <array>
#include <cmath>
#include <map>

#include "read/cif_table.hpp"
#include "read/parsers.hpp"
#include "read/text.hpp"

namespace korvex::read {
namespace {

enum Column : std::size_t {
  kX,
  kY,
  kZ,
  kGroup,
  kElement,
  kLabelAtom,
  kAuthAtom,
  kAltloc,
  kLabelResidue,
  kAuthResidue,
  kLabelChain,
  kAuthChain,
  kEntity,
  kLabelNumber,
  kAuthNumber,
  kInsertion,
  kOccupancy,
  kModel,
  kColumns
};

// Tags of _atom_site, in the order of the enumerators.
constexpr std::array<const char*, kColumns> kTags = {
    "cartn_x",           "cartn_y",      "cartn_z",           "group_pdb",     "type_symbol",
    "label_atom_id",     "auth_atom_id", "label_alt_id",      "label_comp_id", "auth_comp_id",
    "label_asym_id",     "auth_asym_id", "label_entity_id",   "label_seq_id",  "auth_seq_id",
    "pdbx_pdb_ins_code", "occupancy",    "pdbx_pdb_model_num"};

// Which label_asym_id are polymers, by entity.
class Polymers {
 public:
  explicit Polymers(const CifBlock& block)
      : type_(pairs(block.entity, "id", "type")),
        entity_(pairs(block.struct_asym, "id", "entity_id")) {}

  // Nothing where the file does not say. `entity` may be empty.
  std::optional<bool> ask(const std::string& entity, const std::string& asym) const {
    const auto named = entity_.find(asym);
    const auto found =
        type_.find(entity.empty() && named != entity_.end() ? named->second : entity);
    if (found == type_.end()) return {};
    return found->second == "polymer";
  }

 private:
  static std::map<std::string, std::string> pairs(const CifTable& table, const char* key,
                                                  const char* value) {
    std::map<std::string, std::string> found;
    const std::optional<std::size_t> keys = table.column(key);
    const std::optional<std::size_t> values = table.column(value);
    for (std::size_t row = 0; keys && values && row < table.rows(); ++row) {
      found[table.text(row, *keys)] = table.text(row, *values);
    }
    return found;
  }

  std::map<std::string, std::string> type_;
  std::map<std::string, std::string> entity_;
};

// No cell where the table does not give one in full.
Cell cell_in(const CifTable& table) {
  std::vector<double> numbers;
  for (const char* tag :
       {"length_a", "length_b", "length_c", "angle_alpha", "angle_beta", "angle_gamma"}) {
    const std::optional<std::size_t> column = table.column(tag);
    if (!column || table.rows() == 0) return {};
    numbers.push_back(table.number(0, *column));
  }
  return cell_of({numbers[0], numbers[1], numbers[2]}, {numbers[3], numbers[4], numbers[5]});
}

// Goes through the rows of _atom_site.
class AtomRows {
 public:
  // `text` is what `block` was read from.
  AtomRows(const CifBlock& block, std::string_view text, const std::string& file,
           Numbering numbering)
      : table_(block.atom_site),
        polymers_(block),
        text_(text),
        file_(file),
        cell_(cell_in(block.cell)),
        label_(numbering == Numbering::kLabel) {
    for (std::size_t i = 0; i < kColumns; ++i) columns_[i] = table_.column(kTags[i]);
    if (table_.rows() == 0) fail("_atom_site has no rows; give a file with atoms");
    need(kX, kX);
    need(kY, kY);
    need(kZ, kZ);
    need(kLabelAtom, kAuthAtom);
    need(kLabelResidue, kAuthResidue);
    need(kLabelChain, kAuthChain);
    need(kLabelNumber, kAuthNumber);
    for (row_ = 0; row_ < table_.rows(); ++row_) {
      numbers_polymers_ = numbers_polymers_ || has(kLabelNumber);
    }
  }

  // The models in the order in which they begin.
  std::vector<Model> models(const ChosenAtoms& chosen) {
    std::vector<Model> models;
    std::map<std::string, std::size_t> place;
    for (row_ = 0; row_ < table_.rows(); ++row_) {
      const std::string number = has(kModel) ? text(kModel) : "1";
      const auto [found, is_new] = place.try_emplace(number, models.size());
      if (is_new) models.push_back({integer(number, "model number"), {}, cell_, nullptr});
      AtomSite site;
      read_place(site);
      site.name = either(kLabelAtom, kAuthAtom);
      if (!matters_for_trace(site.name, chosen)) continue;
      const std::optional<bool> polymer = is_polymer();
      if (polymer == false) continue;
      site.in_polymer = polymer == true;
      read_names(site);
      read_number(site);
      if (has(kLabelNumber)) site.sequence = to_int32(text(kLabelNumber));
      models[found->second].atoms.push_back(std::move(site));
    }
    return models;
  }

 private:
  [[noreturn]] void fail(const std::string& what) const { fail_at(file_, table_.line(), what); }

  [[noreturn]] void fail_row(const std::string& value, const std::string& what) const {
    fail_at(file_, table_.line_of_row(text_, row_),
            "row " + std::to_string(row_ + 1) + " of _atom_site: " + in_quotes(value) +
                " stands where the " + what + " belongs");
  }

  void need(Column one, Column other) const {
    if (columns_[one] || columns_[other]) return;
    fail(std::string("_atom_site has no column ") + kTags[one] + "; write the file with it");
  }

  bool has(Column column) const { return columns_[column] && table_.has(row_, *columns_[column]); }

  // Empty where there is none.
  std::string text(Column column) const {
    return columns_[column] ? table_.text(row_, *columns_[column]) : std::string();
  }

  std::string either(Column first, Column second) const {
    return text(has(first) ? first : second);
  }

  char letter(Column column) const {
    const std::string value = text(column);
    return value.empty() ? ' ' : value[0];
  }

  std::int32_t integer(const std::string& value, const char* what) const {
    const std::optional<std::int32_t> number = to_int32(value);
    if (!number) fail_row(value, what);
    return *number;
  }

  double number(Column column, const char* what) const {
    const double value = table_.number(row_, *columns_[column]);
    if (!std::isfinite(value)) fail_row(table_.raw(row_, *columns_[column]), what);
    return value;
  }

  // Nothing where neither entities nor sequence numbers tell.
  std::optional<bool> is_polymer() const {
    const std::optional<bool> told = polymers_.ask(text(kEntity), text(kLabelChain));
    if (!told && numbers_polymers_ && !has(kLabelNumber)) return false;
    return told;
  }

  void read_place(AtomSite& site) const {
    site.position = {number(kX, "x coordinate"), number(kY, "y coordinate"),
                     number(kZ, "z coordinate")};
    if (has(kOccupancy)) site.occupancy = number(kOccupancy, "occupancy");
  }

  void read_names(AtomSite& site) const {
    site.residue_name = either(kLabelResidue, kAuthResidue);
    const std::string author = either(kAuthChain, kLabelChain);
    const std::string label = either(kLabelChain, kAuthChain);
    site.chain_name = label_ ? label : author;
    // A chain of the authors may hold several molecules; without entities they cannot be told
    // apart by name.
    site.chain = site.in_polymer ? author + '\n' + label : author;
    site.element = text(kElement);
    for (char& c : site.element) {
      if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    site.altloc = letter(kAltloc);
    site.het = text(kGroup) == "HETATM";
  }

  void read_number(AtomSite& site) const {
    std::string value =
        label_ ? either(kLabelNumber, kAuthNumber) : either(kAuthNumber, kLabelNumber);
    if (!label_ || !has(kLabelNumber)) site.insertion_code = letter(kInsertion);
    // Old files write the insertion code behind the author's number.
    if (value.size() > 1 && value.back() >= 'A') {
      site.insertion_code = value.back();
      value.pop_back();
    }
    if (!value.empty()) site.number = integer(value, "residue number");
  }

  const CifTable& table_;
  Polymers polymers_;
  std::string_view text_;
  const std::string& file_;
  Cell cell_;
  bool label_;
  bool numbers_polymers_ = false;
  std::array<std::optional<std::size_t>, kColumns> columns_;
  std::size_t row_ = 0;
};

}  // namespace

void parse_mmcif(std::string_view text, const std::string& file, const ReadOptions& options,
                 const ModelSink& sink) {
  const CifBlock block = read_cif(text, file);
  for (Model& model :
       AtomRows(block, text, file, options.numbering).models(ChosenAtoms(options.atoms))) {
    sink(std::move(model));
  }
}

}  // namespace korvex::read
