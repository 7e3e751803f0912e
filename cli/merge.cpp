#include <iostream>
#include <memory>
#include <string>

#include "command.hpp"
#include "commands.hpp"
#include "korvex/scan.hpp"

namespace korvex::cli {
namespace {

Exit run_merge(const std::string& directory) {
  const MergedScan merged = merge_scan(directory);
  std::cout << text_of(merged.counts) + "\nresults: " + merged.path + "\n";
  return Exit::kDone;
}

}  // namespace

Command merge_command() {
  auto directory = std::make_shared<std::string>();
  Command command{
      "merge", "Put the pieces of a scan together, whoever wrote them", {}, [directory] {
        return run_merge(*directory);
      }};
  command.add({.names = "DIR",
               .help = "Directory of a scan whose pieces are all there",
               .target = [directory](const std::string& value) { *directory = value; },
               .required = true});
  return command;
}

}  // namespace korvex::cli
