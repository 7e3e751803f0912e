#include "support/knot_rows.hpp"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "support/data_file.hpp"

namespace support {
namespace {

std::vector<KnotRow> read_knot_rows(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot open " + path);
  std::vector<KnotRow> rows;
  std::string line;
  while (std::getline(file, line)) {
    if (line.empty() || line[0] == '#' || line.starts_with("name\t")) continue;
    std::vector<std::string> fields;
    std::istringstream parts(line);
    for (std::string field; std::getline(parts, field, '\t');) fields.push_back(field);
    KnotRow row{fields.at(0), std::stoi(fields.at(1)),
                fields.at(2), std::stoll(fields.at(3)),
                {},           fields.at(5),
                fields.at(6)};
    std::istringstream coefficients(fields[4]);
    for (std::int64_t c = 0; coefficients >> c;) row.alexander.push_back(c);
    rows.push_back(row);
  }
  return rows;
}

}  // namespace

const std::vector<KnotRow>& knot_rows() {
  static const auto all = read_knot_rows(data_file("prime_knots_to_10.tsv"));
  return all;
}

}  // namespace support
