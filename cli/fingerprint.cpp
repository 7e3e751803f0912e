#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command.hpp"
#include "commands.hpp"
#include "engine_options.hpp"
#include "korvex/report.hpp"
#include "memory_limit.hpp"
#include "one_chain.hpp"
#include "options.hpp"
#include "progress.hpp"

namespace korvex::cli {
namespace {

const Choices<ReportFormat> kFingerprintFormats = choices_of(fingerprint_formats());

// No chain is short enough to be taken exactly without being asked for it.
constexpr std::size_t kVotesUnlessAsked = 0;

struct FingerprintArguments {
  std::string file;
  std::string output;
  ReadOptions read;
  FingerprintChoice fingerprint;
  Run run;
  std::optional<ReportFormat> format;  // by the name of the output
};

Exit run_fingerprint(const FingerprintArguments& options) {
  limit_memory(options.fingerprint.options.most_memory, options.run.threads);
  const ReportFormat format =
      format_for(options.format, options.output, kFingerprintFormats, ReportFormat::kMatrix);
  return write_about_one_chain(
      options.file, options.read, options.output, [&](const Chain& chain, std::ostream& out) {
        const std::string title = title_of(chain);
        Progress progress;
        const auto show = [&](double fraction, double total, const char* unit) {
          progress.show_bar(title, fraction, total, unit);
        };
        write_fingerprint(
            fingerprint_of(chain, options.fingerprint, options.run, kVotesUnlessAsked, show),
            chain.residues, format, out, chain.gaps);
      });
}

}  // namespace

Command fingerprint_command() {
  auto options = std::make_shared<FingerprintArguments>();
  Command command{
      "fingerprint", "Write the knots of all sub-chains of a chain to a file", {}, [options] {
        return run_fingerprint(*options);
      }};
  command.add(file(options->file));
  command.add(output(options->output, "fingerprint"));
  add_fingerprint_options(command, options->fingerprint,
                          "Exact shares of all directions, without votes");
  add_run_options(command, options->run);
  add_chain_options(command, options->read);
  command.add(choice("--format", options->format, kFingerprintFormats,
                     "NumPy archive, a line for each type of a knotted\nsub-chain, JSON, or the "
                     "matrix text of --classic;\ndefault: by the end of OUT's name, else matrix"));
  command.add(classic_flag());
  return command;
}

}  // namespace korvex::cli
