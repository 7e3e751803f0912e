// mmCIF files: gemmi reads the syntax; the categories that matter here are looked up in its
// document, so that nothing else in a file can be in the way.
#include <cmath>
#include <gemmi/cif.hpp>
#include <gemmi/numb.hpp>
#include <map>
#include <set>
#include <tao/pegtl/parse_error.hpp>

#include "korvex/error.hpp"
#include "preprocess/read/parsers.hpp"
#include "preprocess/read/text.hpp"

namespace korvex::read {
namespace {

namespace cif = gemmi::cif;

cif::Document read_document(std::string_view text, const std::string& file) {
  try {
    return cif::read_memory(text.data(), text.size(), file.c_str());
  } catch (const tao::pegtl::parse_error& error) {
    const std::size_t line = error.positions().empty() ? 0 : error.positions().front().line;
    fail_at(file, line,
            "not well-formed mmCIF near here (the file may be cut short); copy it again");
  } catch (const std::runtime_error& error) {
    fail_at(file, 0, std::string("not well-formed mmCIF: ") + error.what());
  }
}

// Columns of _atom_site, in the order in which they are asked for.
enum Column {
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
  kModel
};
const std::vector<std::string> kColumns = {"Cartn_x",          "Cartn_y",
                                           "Cartn_z",          "?group_PDB",
                                           "?type_symbol",     "?label_atom_id",
                                           "?auth_atom_id",    "?label_alt_id",
                                           "?label_comp_id",   "?auth_comp_id",
                                           "?label_asym_id",   "?auth_asym_id",
                                           "?label_entity_id", "?label_seq_id",
                                           "?auth_seq_id",     "?pdbx_PDB_ins_code",
                                           "?occupancy",       "?pdbx_PDB_model_num"};

cif::Block& block_with_atoms(cif::Document& document, const std::string& file) {
  for (cif::Block& block : document.blocks) {
    if (block.has_tag("_atom_site.Cartn_x")) return block;
  }
  fail_at(file, 0,
          "no _atom_site.Cartn_x: this CIF holds no atoms of a structure; give an mmCIF "
          "coordinate file");
}

// Which label_asym_id are polymers, by entity.
class Polymers {
 public:
  explicit Polymers(cif::Block& block) {
    for (const auto row : block.find("_entity.", {"id", "type"})) {
      is_polymer_[row.str(0)] = row.str(1) == "polymer";
    }
    for (const auto row : block.find("_struct_asym.", {"id", "entity_id"})) {
      entity_[row.str(0)] = row.str(1);
    }
  }

  // Nothing where the file does not say.
  std::optional<bool> ask(const std::string& entity, const std::string& asym) const {
    const auto named = entity_.find(asym);
    const auto found =
        is_polymer_.find(entity.empty() && named != entity_.end() ? named->second : entity);
    if (found == is_polymer_.end()) return {};
    return found->second;
  }

 private:
  std::map<std::string, bool> is_polymer_;
  std::map<std::string, std::string> entity_;
};

class AtomTable {
 public:
  AtomTable(cif::Block& block, const std::string& file, const ReadOptions& options)
      : table_(block.find("_atom_site.", kColumns)),
        polymers_(block),
        file_(file),
        label_(options.numbering == Numbering::kLabel) {
    if (const cif::Item* loop = block.find_loop("_atom_site.Cartn_x").item()) {
      line_ = static_cast<std::size_t>(std::max(loop->line_number, 0));
    }
    if (!table_.ok()) fail("x, y and z are not columns of one _atom_site table");
    need(kLabelAtom, kAuthAtom, "label_atom_id");
    need(kLabelResidue, kAuthResidue, "label_comp_id");
    need(kLabelChain, kAuthChain, "label_asym_id");
    need(kLabelNumber, kAuthNumber, "label_seq_id");
    for (const auto row : table_) {
      if (has(row, kLabelNumber)) numbers_polymers_ = true;
    }
  }

  // The models in the order in which they begin.
  std::vector<Model> models(const std::string& chosen) {
    std::vector<Model> models;
    std::map<std::string, std::size_t> place;
    for (const auto row : table_) {
      ++row_;
      const std::string number = has(row, kModel) ? row.str(kModel) : "1";
      const auto [found, is_new] = place.try_emplace(number, models.size());
      if (is_new) models.push_back({integer(number, "model number"), {}});
      AtomSite site = atom(row);
      const std::optional<bool> polymer = is_polymer(row);
      if (polymer == false || !matters_for_trace(site.name, chosen)) continue;
      site.in_polymer = polymer == true;
      models[found->second].atoms.push_back(std::move(site));
    }
    if (models.empty()) fail("_atom_site has no rows");
    return models;
  }

 private:
  using Row = cif::Table::Row;

  [[noreturn]] void fail(const std::string& what) const {
    const std::string where = row_ == 0 ? "" : "row " + std::to_string(row_) + " of _atom_site: ";
    fail_at(file_, line_, where + what);
  }

  void need(Column label, Column author, const char* name) const {
    if (!table_.has_column(label) && !table_.has_column(author)) {
      fail(std::string("_atom_site has no column ") + name + "; write the file with it");
    }
  }

  static bool has(const Row& row, Column column) { return row.has2(column); }

  static std::string text(const Row& row, Column first, Column second) {
    if (has(row, first)) return row.str(first);
    return has(row, second) ? row.str(second) : std::string();
  }

  static char letter(const Row& row, Column column) {
    const std::string value = has(row, column) ? row.str(column) : std::string();
    return value.empty() ? ' ' : value[0];
  }

  std::int32_t integer(const std::string& value, const char* what) const {
    const std::optional<std::int32_t> number = to_int32(value);
    if (!number) fail(in_quotes(value) + " stands where the " + what + " belongs");
    return *number;
  }

  double number(const Row& row, Column column, const char* what) const {
    const double value = cif::as_number(row[column]);
    if (!std::isfinite(value)) {
      fail(in_quotes(row[column]) + " stands where " + what + " belongs; give a finite number");
    }
    return value;
  }

  // Nothing where neither entities nor sequence numbers tell.
  std::optional<bool> is_polymer(const Row& row) const {
    const std::string entity = has(row, kEntity) ? row.str(kEntity) : std::string();
    const std::string asym = has(row, kLabelChain) ? row.str(kLabelChain) : std::string();
    const std::optional<bool> told = polymers_.ask(entity, asym);
    if (!told && numbers_polymers_ && !has(row, kLabelNumber)) return false;
    return told;
  }

  void read_number(AtomSite& site, const Row& row) const {
    std::string value =
        label_ ? text(row, kLabelNumber, kAuthNumber) : text(row, kAuthNumber, kLabelNumber);
    if (!label_ || !has(row, kLabelNumber)) site.insertion_code = letter(row, kInsertion);
    // Old files write the insertion code behind the author's number.
    if (value.size() > 1 && value.back() >= 'A') {
      site.insertion_code = value.back();
      value.pop_back();
    }
    if (value.empty()) return;
    site.number = integer(value, "residue number");
  }

  AtomSite atom(const Row& row) const {
    AtomSite site;
    site.position = {number(row, kX, "the x coordinate"), number(row, kY, "the y coordinate"),
                     number(row, kZ, "the z coordinate")};
    if (has(row, kOccupancy)) site.occupancy = number(row, kOccupancy, "the occupancy");
    site.name = text(row, kLabelAtom, kAuthAtom);
    site.residue_name = text(row, kLabelResidue, kAuthResidue);
    const std::string author = text(row, kAuthChain, kLabelChain);
    const std::string label = text(row, kLabelChain, kAuthChain);
    site.chain_name = label_ ? label : author;
    // A chain of the authors may hold several molecules; without entities they cannot be told
    // apart by name.
    site.chain = is_polymer(row) == true ? author + '\n' + label : author;
    site.element = has(row, kElement) ? gemmi::to_upper(row.str(kElement)) : std::string();
    site.altloc = letter(row, kAltloc);
    site.het = has(row, kGroup) && row.str(kGroup) == "HETATM";
    read_number(site, row);
    return site;
  }

  cif::Table table_;
  Polymers polymers_;
  const std::string& file_;
  bool label_;
  bool numbers_polymers_ = false;
  std::size_t line_ = 0;
  std::size_t row_ = 0;
};

std::vector<Model> read_models(std::string_view text, const std::string& file,
                               const ReadOptions& options) {
  cif::Document document = read_document(text, file);
  try {
    return AtomTable(block_with_atoms(document, file), file, options).models(options.atom);
  } catch (const Error&) {
    throw;
  } catch (const std::runtime_error& error) {
    fail_at(file, 0, std::string("not understood as mmCIF: ") + error.what());
  }
}

}  // namespace

void parse_mmcif(std::string_view text, const std::string& file, const ReadOptions& options,
                 const ModelSink& sink) {
  for (Model& model : read_models(text, file, options)) sink(std::move(model));
}

}  // namespace korvex::read
