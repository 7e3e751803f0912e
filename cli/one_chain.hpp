// Subcommands that write what they find out about the one chain of a file to another file.
#pragma once

#include <functional>
#include <optional>
#include <ostream>
#include <string>

#include "choice.hpp"
#include "command.hpp"
#include "korvex/read.hpp"
#include "korvex/report.hpp"

namespace korvex::cli {

// The format that was asked for; else that which the end of the output's name tells, or
// `otherwise` where the name has no ending. Throws Failure for endings that no format has.
ReportFormat format_for(const std::optional<ReportFormat>& asked, const std::string& output,
                        const Choices<ReportFormat>& formats, ReportFormat otherwise);

// Gives `work` the one chain of `file` that `read` selects, and `output` to write to, which appears
// under its name when `work` is done. The chain must be open. What ReadNotes tells goes to standard
// error. Throws Failure, also for an Error of `work`.
Exit write_about_one_chain(const std::string& file, const ReadOptions& read,
                           const std::string& output,
                           const std::function<void(const Chain&, std::ostream&)>& work);

}  // namespace korvex::cli
