// The scanner of mmCIF: any text that it takes gives the tables that the grammar gives.
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

#include "korvex/error.hpp"
#include "korvex/read.hpp"
#include "read/cif_table.hpp"

namespace {

using korvex::read::CifTable;

void require(bool holds) {
  if (!holds) std::abort();
}

void check(const CifTable& scanned, const CifTable& whole, std::string_view tag) {
  const auto here = scanned.column(tag);
  const auto there = whole.column(tag);
  require(here.has_value() == there.has_value());
  if (!here) return;
  require(scanned.rows() == whole.rows() && scanned.line() == whole.line());
  for (std::size_t row = 0; row < whole.rows(); ++row) {
    require(scanned.raw(row, *here) == whole.raw(row, *there));
    require(scanned.text(row, *here) == whole.text(row, *there));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Readers settle line ends before.
  std::string text(reinterpret_cast<const char*>(data), size);
  for (char& c : text) c = c == '\r' ? '\n' : c;
  const auto scanned = korvex::read::scan_cif(text, {"cartn_x", "label_atom_id", "occupancy"});
  if (!scanned) return 0;
  try {
    require(!read_chains(korvex::Source::memory("data_input\n" + text, "input")).empty());
  } catch (const korvex::Error& error) {
    require(std::string(error.what()).starts_with("input"));
  }
  try {
    const korvex::read::CifBlock whole = korvex::read::read_cif_document(text, "input");
    for (const char* tag : {"cartn_x", "label_atom_id", "occupancy"})
      check(scanned->atom_site, whole.atom_site, tag);
    check(scanned->entity, whole.entity, "type");
    check(scanned->qa_metric, whole.qa_metric, "type");
    check(scanned->struct_conn, whole.struct_conn, "ptnr1_auth_seq_id");
  } catch (const korvex::Error&) {
    std::abort();
  }
  return 0;
}
