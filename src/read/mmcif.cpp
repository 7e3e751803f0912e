// mmCIF files: the categories that tell chains, so that nothing else in a file can be in the way.
#include <array>
#include <cmath>
#include <map>

#include "read/cif_links.hpp"
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
  kB,
  kColumns
};

// Tags of _atom_site, in the order of the enumerators.
constexpr std::array<const char*, kColumns> kTags = {
    "cartn_x",           "cartn_y",       "cartn_z",
    "group_pdb",         "type_symbol",   "label_atom_id",
    "auth_atom_id",      "label_alt_id",  "label_comp_id",
    "auth_comp_id",      "label_asym_id", "auth_asym_id",
    "label_entity_id",   "label_seq_id",  "auth_seq_id",
    "pdbx_pdb_ins_code", "occupancy",     "pdbx_pdb_model_num",
    "b_iso_or_equiv"};

// Which label_asym_id are polymers, by entity.
class Polymers {
 public:
  explicit Polymers(const CifBlock& block)
      : type_(pairs(block.entity, "id", "type")),
        entity_(pairs(block.struct_asym, "id", "entity_id")) {}

  // Nothing where the file does not say. `entity` may be empty.
  std::optional<bool> ask(std::string_view entity, std::string_view asym) const {
    const auto named = entity_.find(asym);
    const auto found =
        type_.find(entity.empty() && named != entity_.end() ? named->second : entity);
    if (found == type_.end()) return {};
    return found->second == "polymer";
  }

 private:
  using Pairs = std::map<std::string_view, std::string_view>;

  static Pairs pairs(const CifTable& table, const char* key, const char* value) {
    Pairs found;
    const std::optional<std::size_t> keys = table.column(key);
    const std::optional<std::size_t> values = table.column(value);
    for (std::size_t row = 0; keys && values && row < table.rows(); ++row)
      found[table.text(row, *keys)] = table.text(row, *values);
    return found;
  }

  Pairs type_;
  Pairs entity_;
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

// Whether the file says that its residues have confidences, which stand where B factors do.
bool has_plddt(const CifTable& metrics) {
  const std::optional<std::size_t> type = metrics.column("type");
  const std::optional<std::size_t> mode = metrics.column("mode");
  for (std::size_t row = 0; type && mode && row < metrics.rows(); ++row)
    if (metrics.text(row, *type) == "pLDDT" && metrics.text(row, *mode) == "local") return true;
  return false;
}

// As == of words that are short and mostly the same, where a call would cost more than it does.
bool are_same(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (a[i] != b[i]) return false;
  return true;
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
        label_(numbering == Numbering::kLabel),
        links_(links_in(block.struct_conn, numbering)) {
    is_predicted_ = has_plddt(block.qa_metric);
    for (std::size_t i = 0; i < kColumns; ++i) columns_[i] = table_.column(kTags[i]);
    if (table_.rows() == 0) fail("_atom_site has no rows; give a file with atoms");
    need(kX, kX);
    need(kY, kY);
    need(kZ, kZ);
    need(kLabelAtom, kAuthAtom);
    need(kLabelResidue, kAuthResidue);
    need(kLabelChain, kAuthChain);
    need(kLabelNumber, kAuthNumber);
    for (row_ = 0; row_ < table_.rows(); ++row_)
      numbers_polymers_ = numbers_polymers_ || has(kLabelNumber);
  }

  // The models in the order in which they begin; they refer to the links of these rows.
  std::vector<Model> models(const ChosenAtoms& chosen) {
    std::vector<Model> models;
    std::map<std::string_view, std::size_t> places;
    std::string_view last;
    std::size_t place = 0;
    for (row_ = 0; row_ < table_.rows(); ++row_) {
      const std::string_view written = columns_[kModel] ? raw(kModel) : "1";
      if (models.empty() || !are_same(written, last)) {
        const std::string_view number = has(kModel) ? text(kModel) : "1";
        const auto [found, is_new] = places.try_emplace(number, models.size());
        if (is_new) begin_model(models, number);
        // About half the atoms of a protein matter.
        if (models.size() == 1) models.front().atoms.reserve(table_.rows() / 2 + 1);
        last = written;
        place = found->second;
      }
      const std::size_t atom = models[place].size++;
      const std::string_view name = either(kLabelAtom, kAuthAtom);
      const bool matters = matters_for_trace(name, chosen);
      const Place read = read_place();
      if (!matters) continue;
      const std::optional<bool> polymer = is_polymer();
      if (polymer == false) continue;
      AtomSite& site = models[place].atoms.emplace_back();
      site.position = read.position;
      site.occupancy = read.occupancy;
      site.name = name;
      if (is_predicted_) site.plddt = confidence();
      site.place = atom;
      site.in_polymer = polymer == true;
      read_names(site);
      read_number(site);
      if (has(kLabelNumber)) site.sequence = to_int32(text(kLabelNumber));
    }
    return models;
  }

 private:
  void begin_model(std::vector<Model>& models, std::string_view number) const {
    Model& model = models.emplace_back();
    model.number = integer(number, "model number");
    model.cell = cell_;
    model.links = &links_;
  }

  [[noreturn]] void fail(const std::string& what) const { fail_at(file_, table_.line(), what); }

  [[noreturn]] void fail_row(std::string_view value, const std::string& what) const {
    fail_at(file_, table_.line_of_row(text_, row_),
            "row " + std::to_string(row_ + 1) + " of _atom_site: " + in_quotes(value) +
                " stands where the " + what + " belongs");
  }

  void need(Column one, Column other) const {
    if (columns_[one] || columns_[other]) return;
    fail(std::string("_atom_site has no column ") + kTags[one] + "; write the file with it");
  }

  // Of the column, which must be there.
  std::string_view raw(Column column) const { return table_.raw(row_, *columns_[column]); }

  bool has(Column column) const { return columns_[column] && table_.has(row_, *columns_[column]); }

  // Empty where there is none.
  std::string_view text(Column column) const {
    return columns_[column] ? table_.text(row_, *columns_[column]) : std::string_view();
  }

  std::string_view either(Column first, Column second) const {
    return text(has(first) ? first : second);
  }

  std::optional<float> confidence() const {
    if (!columns_[kB]) return {};
    const double value = table_.number(row_, *columns_[kB]);
    if (!(value >= 0 && value <= 100)) return {};
    return static_cast<float>(value);
  }

  char letter(Column column) const {
    const std::string_view value = text(column);
    return value.empty() ? ' ' : value[0];
  }

  std::int32_t integer(std::string_view value, const char* what) const {
    const std::optional<std::int32_t> number = to_int32(value);
    if (!number) fail_row(value, what);
    return *number;
  }

  double number(Column column, const char* what) const {
    double value = 0;
    if (short_decimal(raw(column), value)) return value;
    value = table_.number(row_, *columns_[column]);
    if (!std::isfinite(value)) fail_row(raw(column), what);
    return value;
  }

  // Nothing where neither entities nor sequence numbers tell.
  std::optional<bool> is_polymer() {
    const std::string_view entity = text(kEntity);
    const std::string_view asym = text(kLabelChain);
    if (!asked_ || !are_same(entity, last_entity_) || !are_same(asym, last_asym_)) {
      last_answer_ = polymers_.ask(entity, asym);
      last_entity_ = entity;
      last_asym_ = asym;
      asked_ = true;
    }
    const std::optional<bool> told = last_answer_;
    if (!told && numbers_polymers_ && !has(kLabelNumber)) return false;
    return told;
  }

  struct Place {
    Point position;
    double occupancy = 1;
  };

  Place read_place() {
    Place place;
    place.position = {number(kX, "x coordinate"), number(kY, "y coordinate"),
                      number(kZ, "z coordinate")};
    if (!columns_[kOccupancy]) return place;
    // Most atoms have the occupancy of the one before.
    const std::string_view occupancy = raw(kOccupancy);
    if (!are_same(occupancy, last_occupancy_)) {
      last_occupancy_ = occupancy;
      occupancy_ = has(kOccupancy) ? number(kOccupancy, "occupancy") : 1;
    }
    place.occupancy = occupancy_;
    return place;
  }

  void read_names(AtomSite& site) const {
    site.residue_name = either(kLabelResidue, kAuthResidue);
    const std::string_view author = either(kAuthChain, kLabelChain);
    const std::string_view label = either(kLabelChain, kAuthChain);
    site.chain_name = label_ ? label : author;
    // A chain of the authors may hold several molecules; without entities they cannot be told
    // apart by name.
    site.chain = author;
    if (site.in_polymer) (site.chain += '\n') += label;
    site.element = text(kElement);
    for (char& c : site.element)
      if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    site.altloc = letter(kAltloc);
    site.het = text(kGroup) == "HETATM";
  }

  void read_number(AtomSite& site) const {
    std::string_view value =
        label_ ? either(kLabelNumber, kAuthNumber) : either(kAuthNumber, kLabelNumber);
    if (!label_ || !has(kLabelNumber)) site.insertion_code = letter(kInsertion);
    // Old files write the insertion code behind the author's number.
    if (value.size() > 1 && value.back() >= 'A') {
      site.insertion_code = value.back();
      value.remove_suffix(1);
    }
    if (!value.empty()) site.number = integer(value, "residue number");
  }

  const CifTable& table_;
  Polymers polymers_;
  std::string_view text_;
  const std::string& file_;
  Cell cell_;
  bool label_;
  Links links_;
  bool numbers_polymers_ = false;
  bool is_predicted_ = false;
  bool asked_ = false;  // about the polymer of the last row, which is mostly that of the next
  std::string_view last_entity_;
  std::string_view last_occupancy_;
  double occupancy_ = 1;
  std::string_view last_asym_;
  std::optional<bool> last_answer_;
  std::array<std::optional<std::size_t>, kColumns> columns_;
  std::size_t row_ = 0;
};

void hand_over(AtomRows&& rows, const ReadOptions& options, const ModelSink& sink) {
  for (Model& model : rows.models(ChosenAtoms(options.atoms))) sink(std::move(model));
}

}  // namespace

void parse_mmcif(std::string_view text, const std::string& file, const ReadOptions& options,
                 const ModelSink& sink) {
  const CifBlock block = read_cif(text, file, CifColumns(kTags.begin(), kTags.end()));
  hand_over(AtomRows(block, text, file, options.numbering), options, sink);
}

void parse_bcif(std::string_view bytes, const std::string& file, const ReadOptions& options,
                const ModelSink& sink) {
  const CifBlock block = read_bcif(bytes, file, CifColumns(kTags.begin(), kTags.end()));
  hand_over(AtomRows(block, {}, file, options.numbering), options, sink);
}

}  // namespace korvex::read
