#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <iostream>
#include <new>
#include <span>
#include <string>
#include <string_view>

#include "command.hpp"
#include "interrupt.hpp"
#include "korvex/error.hpp"

namespace korvex::cli {

void complain(const std::string& message) { std::cerr << "korvex: " + message + "\n"; }

void flush_output() {
  std::cout.flush();
  if (!std::cout)
    throw Failure(Exit::kSomeInputsFailed,
                  std::string("cannot write to standard output: ") + std::strerror(errno));
}

namespace {

using AddSubcommand = void (*)(CLI::App&, Work&);
constexpr AddSubcommand kSubcommands[] = {add_knot, add_fingerprint, add_locate, add_table};
constexpr AddSubcommand kClassicSubcommands[] = {add_classic_knot, add_classic_fingerprint,
                                                 add_locate, add_table};

std::span<const AddSubcommand> subcommands(int argc, char** argv) {
  const auto is_classic = [](const char* argument) {
    return std::string_view(argument) == "--classic";
  };
  if (std::any_of(argv, argv + argc, is_classic)) return kClassicSubcommands;
  return kSubcommands;
}

std::string one_line_with_advice(const CLI::App* app, const CLI::Error& error) {
  std::string command = "korvex";
  for (const CLI::App* named : app->get_subcommands()) command += " " + named->get_name();
  return "korvex: " + std::string(error.what()) + " (see " + command + " --help)\n";
}

int as_status(Exit exit) { return static_cast<int>(exit); }

Exit guarded(const Work& work) {
  try {
    const Exit exit = work();
    flush_output();
    return exit;
  } catch (const Failure& failure) {
    complain(failure.what());
    return failure.status();
  } catch (const korvex::Error& error) {
    complain(error.what());
    return error.code() == ErrorCode::kInvalidArgument ? Exit::kUsage : Exit::kSomeInputsFailed;
  } catch (const std::bad_alloc&) {
    complain("out of memory");
  } catch (const std::exception& error) {
    complain(std::string("internal error: ") + error.what());
  }
  return Exit::kInternal;
}

int run(int argc, char** argv) {
  CLI::App app("Which knot does a three-dimensional chain form, and where along it?", "korvex");
  app.set_version_flag("--version", "korvex " KORVEX_VERSION, "Print the version and exit");
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.failure_message(one_line_with_advice);
  app.footer(
      "Exit status: 0 done, 1 some inputs failed, 2 usage, 3 internal error, 130 interrupted.");

  Work work;
  for (const AddSubcommand add : subcommands(argc, argv)) add(app, work);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& outcome) {
    if (app.exit(outcome) != 0) return as_status(Exit::kUsage);
    return as_status(guarded([] { return Exit::kDone; }));
  }
  if (!work) {
    complain("no subcommand given (see korvex --help)");
    return as_status(Exit::kUsage);
  }
  return as_status(guarded(work));
}

}  // namespace
}  // namespace korvex::cli

int main(int argc, char** argv) {
  korvex::cli::leave_cleanly_when_interrupted();
  try {
    return korvex::cli::run(argc, argv);
  } catch (...) {
    return static_cast<int>(korvex::cli::Exit::kInternal);
  }
}
