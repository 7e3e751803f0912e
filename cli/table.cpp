#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "command.hpp"
#include "commands.hpp"
#include "korvex/catalogue.hpp"
#include "options.hpp"

namespace korvex::cli {
namespace {

enum class Format { kText, kTsv, kJson };

const Choices<Format> kFormats = {
    {"text", Format::kText}, {"tsv", Format::kTsv}, {"json", Format::kJson}};

struct Options {
  std::vector<std::string> names;
  int most_crossings = 10;
  bool primes_only = false;
  Format format = Format::kText;
};

std::string alexander_text(const KnotType& type) {
  std::ostringstream text;
  const char* separator = "";
  for (const std::int64_t coefficient : type.alexander) {
    text << separator << coefficient;
    separator = " ";
  }
  return text.str();
}

const char* chirality_name(const KnotType& type) {
  return type.chirality == Chirality::kChiral ? "chiral" : "amphichiral";
}

void write_text(const KnotType& type) {
  std::cout << type.name << "\n  crossings   " << type.crossings << "\n  determinant "
            << type.determinant << "\n  signature   " << type.signature << "\n  chirality   "
            << chirality_name(type) << "\n  Alexander   " << alexander_text(type)
            << "\n  Jones       " << text_of(type.jones) << "\n  HOMFLY-PT   "
            << text_of(type.homfly) << "\n  Gauss code  " << type.gauss_code << '\n';
}

void write_row(const KnotType& type) {
  std::cout << type.name << '\t' << type.plain << '\t' << type.crossings << '\t' << type.determinant
            << '\t' << type.signature << '\t' << chirality_name(type) << '\t'
            << alexander_text(type) << '\t' << text_of(type.jones) << '\t' << text_of(type.homfly)
            << '\t' << type.gauss_code << '\n';
}

nlohmann::ordered_json as_json(const KnotType& type) {
  return {{"name", type.name},
          {"plain", type.plain},
          {"crossings", type.crossings},
          {"determinant", type.determinant},
          {"signature", type.signature},
          {"chirality", chirality_name(type)},
          {"alexander", type.alexander},
          {"jones", text_of(type.jones)},
          {"homfly", text_of(type.homfly)},
          {"gauss_code", type.gauss_code}};
}

// Types by name, both hands of a name without one, or all that the other options leave.
std::vector<const KnotType*> chosen(const Options& options) {
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

Exit run_table(const Options& options) {
  const auto types = chosen(options);
  if (options.format == Format::kJson) {
    auto json = nlohmann::ordered_json::array();
    for (const KnotType* type : types) json.push_back(as_json(*type));
    std::cout << json.dump(2) << '\n';
    return Exit::kDone;
  }
  if (options.format == Format::kTsv)
    std::cout << "name\tplain\tcrossings\tdeterminant\tsignature\tchirality\talexander\tjones\t"
                 "homfly\tgauss_code\n";
  for (const KnotType* type : types)
    options.format == Format::kTsv ? write_row(*type) : write_text(*type);
  return Exit::kDone;
}

}  // namespace

Command table_command() {
  auto options = std::make_shared<Options>();
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
  command.add(
      choice("--format", options->format, kFormats, "text; tsv, a line for each knot; json"));
  return command;
}

}  // namespace korvex::cli
