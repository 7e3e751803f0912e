#include "command_line.hpp"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>

#include "advice.hpp"

namespace korvex::cli {
namespace {

CLI::Option* joined(CLI::App& app, const Option& option) {
  if (const auto* flag = std::get_if<bool*>(&option.target)) {
    if (*flag != nullptr) return app.add_flag(option.names, **flag, option.help);
    return app.add_flag(option.names)->description(option.help);
  }
  if (const auto* take = std::get_if<TakeOne>(&option.target))
    return app.add_option_function<std::string>(option.names, *take, option.help);
  const auto& take = std::get<TakeAll>(option.target);
  return app.add_option_function<std::vector<std::string>>(option.names, take, option.help);
}

void join(CLI::App& app, const Option& option) {
  CLI::Option* const added = joined(app, option);
  if (std::holds_alternative<bool*>(option.target)) return;
  added->type_name(option.value)->required(option.required);
  // An option takes the argument behind it; what stands for files takes all that is left.
  if (option.names.starts_with('-')) added->allow_extra_args(false);
  if (option.refuse) added->check(option.refuse, "");
  if (option.delimiter != '\0') added->delimiter(option.delimiter);
  if (!option.shown_default.empty()) added->default_str(option.shown_default);
}

const Command* named(const std::string& name, const std::vector<Command>& commands) {
  const auto found = std::find_if(commands.begin(), commands.end(),
                                  [&](const Command& command) { return command.name == name; });
  return found == commands.end() ? nullptr : &*found;
}

// What is wrong, in one line that tells where to read on.
void complain_about(const CLI::App& app, const std::vector<Command>& commands,
                    const CLI::ParseError& error) {
  const Command* command = nullptr;
  for (const CLI::App* subcommand : app.get_subcommands())
    command = named(subcommand->get_name(), commands);
  std::string what = error.what();
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError))
    what = about_unexpected(app.remaining(true), commands, command);
  complain(what + " (see korvex " + (command == nullptr ? "" : command->name + " ") + "--help)");
}

// `korvex help knot` is `korvex knot --help`.
void ask_for_help(std::vector<std::string>& arguments) {
  arguments.erase(arguments.begin());
  if (arguments.size() > 1) arguments.resize(1);
  arguments.emplace_back("--help");
}

// Tells where something else stands in the place of the subcommand.
bool lacks_subcommand(const std::vector<std::string>& arguments,
                      const std::vector<Command>& commands) {
  if (arguments.empty()) {
    complain("no subcommand given (see korvex --help)");
    return true;
  }
  const std::string& first = arguments.front();
  if (first.starts_with('-') || named(first, commands) != nullptr) return false;
  complain(about_no_subcommand(first, commands) + " (see korvex --help)");
  return true;
}

Work nothing_but(Exit exit) {
  return [exit] { return exit; };
}

}  // namespace

Work work_asked_for(const std::vector<Command>& commands, int argc, char** argv) {
  CLI::App app("Which knot does a three-dimensional chain form, and where along it?", "korvex");
  app.set_version_flag("--version", "korvex " KORVEX_VERSION, "Print the version and exit");
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.footer(
      "Exit status: 0 done, 1 some inputs failed, 2 usage, 3 internal error, 130 interrupted.");
  Work work;
  for (const Command& command : commands) {
    CLI::App* const subcommand = app.add_subcommand(command.name, command.summary);
    for (const Option& option : command.options) join(*subcommand, option);
    subcommand->callback([&work, &command] { work = command.work; });
  }
  std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  if (!arguments.empty() && arguments.front() == "help") ask_for_help(arguments);
  if (lacks_subcommand(arguments, commands)) return nothing_but(Exit::kUsage);
  std::reverse(arguments.begin(), arguments.end());
  try {
    app.parse(arguments);
  } catch (const CLI::Success& help) {
    app.exit(help);
    return nothing_but(Exit::kDone);
  } catch (const CLI::ParseError& error) {
    complain_about(app, commands, error);
    return nothing_but(Exit::kUsage);
  }
  if (work) return work;
  complain("no subcommand given (see korvex --help)");
  return nothing_but(Exit::kUsage);
}

}  // namespace korvex::cli
