// The command line as tables: subcommands, and the options of each. Help texts and parsing are made
// from them in one place, which alone knows the parser.
#pragma once

#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "command.hpp"

namespace korvex::cli {

// Why a value is refused, or nothing.
using Check = std::function<std::string(const std::string& value)>;

using TakeOne = std::function<void(const std::string& value)>;
using TakeAll = std::function<void(const std::vector<std::string>& values)>;

struct Option {
  std::string names;  // such as "--seed" or "-o,--output"; without dashes it is known by its place
  std::string help;
  // What becomes of it: a flag's target, or none where its presence is seen elsewhere; what takes
  // the value; what takes all of several values.
  std::variant<bool*, TakeOne, TakeAll> target = static_cast<bool*>(nullptr);
  std::string value = {};          // what stands for a value in the help
  std::string shown_default = {};  // as the help shows it
  Check refuse = {};               // of a value that is to be taken alone
  bool required = false;
  char delimiter = '\0';  // between several values in one argument
};

struct Command {
  std::string name;
  std::string summary;
  std::vector<Option> options;  // in the order of the help
  Work work;                    // done after the options have taken their values

  void add(Option option) { options.push_back(std::move(option)); }
};

// The work of the subcommand that the arguments name, its options taken. Help is printed at once,
// and so is one line about what is wrong: the work is then no more than the exit status.
Work work_asked_for(const std::vector<Command>& commands, int argc, char** argv);

}  // namespace korvex::cli
