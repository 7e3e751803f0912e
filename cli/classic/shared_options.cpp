#include "classic/shared_options.hpp"

#include <limits>

#include "options.hpp"

namespace korvex::cli::classic {

Option trials_option(int& trials, const std::string& help) {
  return number("--trials", trials, "COUNT", help, within(1, std::numeric_limits<int>::max()));
}

Option seed_option(std::optional<unsigned>& seed) {
  const auto take = [&seed](const std::string& text) {
    std::from_chars(text.data(), text.data() + text.size(), seed.emplace());
  };
  return {"--seed",
          "Start of the random numbers, shown with every\n"
          "answer: the same seed gives the same answer",
          take,
          "NUMBER",
          "random",
          within(0, std::numeric_limits<unsigned>::max())};
}

Option verbose_flag(bool& verbose) {
  return {"--verbose", "Show what the libraries report meanwhile", &verbose};
}

}  // namespace korvex::cli::classic
