#include "one_chain.hpp"

#include <filesystem>
#include <new>

#include "chains.hpp"
#include "korvex/error.hpp"
#include "output_file.hpp"
#include "read_notes.hpp"

namespace korvex::cli {

ReportFormat format_for(const std::optional<ReportFormat>& asked, const std::string& output,
                        const Choices<ReportFormat>& formats, ReportFormat otherwise) {
  if (asked) return *asked;
  const std::string extension = std::filesystem::path(output).extension().string();
  if (extension.empty() || output == "-") return otherwise;
  std::string known;
  for (const auto& [name, format] : formats) {
    if (extension == "." + name) return format;
    known += (known.empty() ? "." : ", .") + name;
  }
  throw Failure(Exit::kUsage, "cannot tell a format by the end of '" + output +
                                  "': it is none of " + known + "; name the format by --format");
}

Exit write_about_one_chain(const std::string& file, const ReadOptions& read,
                           const std::string& output,
                           const std::function<void(const Chain&, std::ostream&)>& work) {
  try {
    refuse_to_replace(file, output);
    if (!read.topology.empty()) refuse_to_replace(read.topology, output);
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
    throw Failure(Exit::kSomeInputsFailed,
                  (error.file().empty() ? file + ": " : "") + error.what());
  } catch (const std::bad_alloc&) {
    throw no_memory_for(file);
  }
}

}  // namespace korvex::cli
