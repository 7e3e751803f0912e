#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "command.hpp"
#include "commands.hpp"
#include "korvex/catalogue.hpp"
#include "korvex/report.hpp"
#include "options.hpp"

namespace korvex::cli {
namespace {

const Choices<ReportFormat> kCatalogueFormats = choices_of(catalogue_formats());

struct TableArguments {
  std::vector<std::string> names;
  int most_crossings = 10;
  bool primes_only = false;
  ReportFormat format = ReportFormat::kText;
};

// Types by name, both hands of a name without one, or all that the other options leave.
std::vector<const KnotType*> chosen(const TableArguments& options) {
  std::vector<const KnotType*> types;
  if (options.names.empty()) {
    for (const KnotType& type : catalogue())
      if (type.crossings <= options.most_crossings && (!options.primes_only || type.is_prime()))
        types.push_back(&type);
    return types;
  }
  for (const std::string& name : options.names) {
    const auto named = knot_types_named(name);
    types.insert(types.end(), named.begin(), named.end());
    if (named.empty())
      throw Failure(Exit::kSomeInputsFailed, "the catalogue has no knot '" + name +
                                                 "': names are such as 3_1, +5_2, "
                                                 "-3_1#4_1");
  }
  return types;
}

Exit run_table(const TableArguments& options) {
  const auto types = chosen(options);
  CatalogueReport report(options.format, std::cout);
  for (const KnotType* type : types) report.add(*type);
  report.finish();
  return Exit::kDone;
}

}  // namespace

Command table_command() {
  auto options = std::make_shared<TableArguments>();
  Command command{
      "table", "Print the catalogue of knots", {}, [options] { return run_table(*options); }};
  command.add({.names = "NAME",
               .help = "Knots to print, as 4_1, +3_1 or 3_1 for both hands;\ndefault: all",
               .target = [&names = options->names](const std::vector<std::string>& values) {
                 names = values;
               }});
  command.add(number("--crossings", options->most_crossings, "COUNT",
                     "Most crossings of the knots printed", within(0, 10)));
  command.add({"--primes", "Leave out composite knots and the unknot", &options->primes_only});
  command.add(choice("--format", options->format, kCatalogueFormats,
                     "text; tsv, a line for each knot; json"));
  return command;
}

}  // namespace korvex::cli
