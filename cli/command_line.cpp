#include "command_line.hpp"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

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
  if (option.refuse) added->check(option.refuse, "");
  if (option.delimiter != '\0') added->delimiter(option.delimiter);
  if (!option.shown_default.empty()) added->default_str(option.shown_default);
}

std::string one_line_with_advice(const CLI::App* app, const CLI::Error& error) {
  std::string command = "korvex";
  for (const CLI::App* named : app->get_subcommands()) command += " " + named->get_name();
  return "korvex: " + std::string(error.what()) + " (see " + command + " --help)\n";
}

Work nothing_but(Exit exit) {
  return [exit] { return exit; };
}

}  // namespace

Work work_asked_for(const std::vector<Command>& commands, int argc, char** argv) {
  CLI::App app("Which knot does a three-dimensional chain form, and where along it?", "korvex");
  app.set_version_flag("--version", "korvex " KORVEX_VERSION, "Print the version and exit");
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.failure_message(one_line_with_advice);
  app.footer(
      "Exit status: 0 done, 1 some inputs failed, 2 usage, 3 internal error, 130 interrupted.");
  Work work;
  for (const Command& command : commands) {
    CLI::App* const subcommand = app.add_subcommand(command.name, command.summary);
    for (const Option& option : command.options) join(*subcommand, option);
    subcommand->callback([&work, &command] { work = command.work; });
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& outcome) {
    return nothing_but(app.exit(outcome) == 0 ? Exit::kDone : Exit::kUsage);
  }
  if (work) return work;
  complain("no subcommand given (see korvex --help)");
  return nothing_but(Exit::kUsage);
}

}  // namespace korvex::cli
