#include "options.hpp"

#include <fmt/format.h>

#include <limits>

namespace korvex::cli {
namespace {

constexpr const char* kFormatsRead =
    "PDB, mmCIF, GRO, XYZ, LAMMPS text dump, or lines\n'x y z' or 'id x y z', also gzipped; - is "
    "standard\ninput";

}  // namespace

std::string shown(double number) { return fmt::format("{:g}", number); }

std::optional<unsigned long long> parsed_size(const std::string& text) {
  unsigned long long value = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  const std::string suffix(rest, end);
  const unsigned shift = suffix == "K" ? 10 : suffix == "M" ? 20 : suffix == "G" ? 30 : 0;
  const bool suffix_known = suffix.empty() || shift != 0;
  const bool fits = value <= std::numeric_limits<unsigned long long>::max() >> shift;
  if (error != std::errc() || !suffix_known || !fits) return std::nullopt;
  return value << shift;
}

Check within(long long least, long long most) {
  return [least, most](const std::string& text) {
    long long value = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc() && rest == end && least <= value && value <= most)
      return std::string();
    return "'" + text + "' is not a whole number from " + std::to_string(least) + " to " +
           std::to_string(most);
  };
}

Option files(std::vector<std::string>& names) {
  const auto take = [&names](const std::vector<std::string>& values) { names = values; };
  return {.names = "FILE", .help = kFormatsRead, .target = TakeAll(take), .required = true};
}

Option sources(std::vector<std::string>& names) {
  Option option = files(names);
  option.help +=
      "; also folders of such files, archives of\nthem (tar, zip), and @LIST for the names in a "
      "file";
  return option;
}

Option file(std::string& name) {
  const auto take = [&name](const std::string& value) { name = value; };
  return {.names = "FILE", .help = kFormatsRead, .target = TakeOne(take), .required = true};
}

Option output(std::string& name, const std::string& what) {
  return {.names = "-o,--output",
          .help = "File for the " + what + ", replaced when it is\nthere; - is standard output",
          .target = [&name](const std::string& value) { name = value; },
          .value = "OUT",
          .required = true};
}

Option noting(Option option, const std::function<void()>& note) {
  option.target = [note, take = std::get<TakeOne>(option.target)](const std::string& text) {
    note();
    take(text);
  };
  return option;
}

Option classic_flag() {
  return {"--classic",
          "Use the exported interface, whose options and\nanswers differ: see --classic --help"};
}

}  // namespace korvex::cli
