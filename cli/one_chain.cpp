#include "one_chain.hpp"

#include <filesystem>

#include "chains.hpp"
#include "korvex/error.hpp"
#include "output_file.hpp"
#include "read_notes.hpp"

namespace korvex::cli {

ReportFormat format_for(const std::optional<ReportFormat>& asked, const std::string& output,
                        const Choices<ReportFormat>& formats, ReportFormat otherwise) {
  if (asked) return *asked;
  const std::string extension = std::filesystem::path(output).extension().string();
  for (const auto& [name, format] : formats)
    if (extension == "." + name) return format;
  return otherwise;
}

Exit write_about_one_chain(const std::string& file, const ReadOptions& read,
                           const std::string& output,
                           const std::function<void(const Chain&, std::ostream&)>& work) {
  try {
    refuse_to_replace(file, output);
    OutputFile written(output);
    const Chain chain = only_chain(file, read);
    ReadNotes notes(read);
    notes.add(chain);
    notes.tell();
    require_open(chain);
    work(chain, written.stream());
    written.publish();
    return Exit::kDone;
  } catch (const korvex::Error& error) {
    if (!error.file().empty()) throw;
    throw Failure(Exit::kSomeInputsFailed, file + ": " + error.what());
  }
}

}  // namespace korvex::cli
