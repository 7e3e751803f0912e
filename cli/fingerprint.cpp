#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "chains.hpp"
#include "command.hpp"
#include "commands.hpp"
#include "engine_options.hpp"
#include "korvex/error.hpp"
#include "korvex/report.hpp"
#include "options.hpp"
#include "output_file.hpp"
#include "read_notes.hpp"

namespace korvex::cli {
namespace {

const Choices<ReportFormat> kFormats = choices_of(fingerprint_formats());

// No chain is short enough to be taken exactly without being asked for it.
constexpr std::size_t kVotesUnlessAsked = 0;

struct Options {
  std::string file;
  std::string output;
  ReadOptions read;
  FingerprintChoice fingerprint;
  Run run;
  std::optional<ReportFormat> format;  // by the name of the output
};

ReportFormat format_for(const Options& options) {
  if (options.format) return *options.format;
  const std::string extension = std::filesystem::path(options.output).extension().string();
  for (const auto& [name, format] : kFormats)
    if (extension == "." + name) return format;
  return ReportFormat::kMatrix;
}

Exit fingerprint_of_file(const Options& options) {
  refuse_to_replace(options.file, options.output);
  OutputFile output(options.output);
  const Chain chain = only_chain(options.file, options.read);
  ReadNotes notes(options.read);
  notes.add(chain);
  notes.tell();
  require_open(chain);
  write_fingerprint(fingerprint_of(chain, options.fingerprint, options.run, kVotesUnlessAsked),
                    chain.residues, format_for(options), output.stream(), chain.gaps);
  output.publish();
  return Exit::kDone;
}

Exit run_fingerprint(const Options& options) {
  try {
    return fingerprint_of_file(options);
  } catch (const korvex::Error& error) {
    if (!error.file().empty()) throw;
    throw Failure(Exit::kSomeInputsFailed, options.file + ": " + error.what());
  }
}

}  // namespace

Command fingerprint_command() {
  auto options = std::make_shared<Options>();
  Command command{
      "fingerprint", "Write the knots of all sub-chains of a chain to a file", {}, [options] {
        return run_fingerprint(*options);
      }};
  command.add(file(options->file));
  command.add(output(options->output));
  add_fingerprint_options(command, options->fingerprint,
                          "Exact shares of all directions, without votes");
  add_run_options(command, options->run);
  add_chain_options(command, options->read);
  command.add(choice("--format", options->format, kFormats,
                     "NumPy archive, a line for each type of a knotted\nsub-chain, JSON, or the "
                     "matrix text of --classic;\ndefault: by the end of OUT's name, else matrix"));
  command.add(classic_flag());
  return command;
}

}  // namespace korvex::cli
