#include "read/cif_links.hpp"

#include <optional>
#include <string>

#include "read/text.hpp"

namespace korvex::read {
namespace {

// A row of _struct_conn.
class LinkRow {
 public:
  LinkRow(const CifTable& table, std::size_t row, Numbering numbering)
      : table_(table), row_(row), label_(numbering == Numbering::kLabel) {}

  bool is_covalent() const { return text("conn_type_id").starts_with("coval"); }
  bool is_within_one_image() const { return text("ptnr1_symmetry") == text("ptnr2_symmetry"); }

  // The atom of a partner, '1' or '2', as the rows of _atom_site name it.
  std::optional<AtomName> atom(char partner) const {
    const std::string begin = std::string("ptnr") + partner;
    const std::string_view label_number = text(begin + "_label_seq_id");
    AtomName named;
    named.chain = either(begin + "_label_asym_id", begin + "_auth_asym_id");
    named.name = text(begin + "_label_atom_id");
    const std::optional<std::int32_t> number =
        to_int32(either(begin + "_label_seq_id", begin + "_auth_seq_id"));
    const std::string_view code = text("pdbx_" + begin + "_pdb_ins_code");
    if ((!label_ || label_number.empty()) && !code.empty()) named.insertion_code = code[0];
    if (!number || named.name.empty()) return {};
    named.number = *number;
    return named;
  }

 private:
  std::string_view text(std::string_view tag) const {
    const std::optional<std::size_t> column = table_.column(tag);
    return column ? table_.text(row_, *column) : std::string_view();
  }

  // The one of the numbering, or the other where it is missing.
  std::string_view either(std::string_view label, std::string_view author) const {
    const std::string_view first = text(label_ ? label : author);
    return first.empty() ? text(label_ ? author : label) : first;
  }

  const CifTable& table_;
  std::size_t row_;
  bool label_;
};

}  // namespace

Links links_in(const CifTable& table, Numbering numbering) {
  Links links;
  for (std::size_t i = 0; i < table.rows(); ++i) {
    const LinkRow row(table, i, numbering);
    if (!row.is_covalent() || !row.is_within_one_image()) continue;
    const auto one = row.atom('1');
    const auto other = row.atom('2');
    if (one && other) links.emplace_back(*one, *other);
  }
  return links;
}

}  // namespace korvex::read
