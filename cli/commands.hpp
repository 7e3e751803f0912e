// The subcommands, one source file each.
#pragma once

#include "command_line.hpp"

namespace korvex::cli {

Command draw_command();
Command knot_command();
Command fingerprint_command();
Command locate_command();
Command map_command();
Command merge_command();
Command scan_command();
Command table_command();

// Those of the same names that run the exported interface. A command line with --classic anywhere
// has these.
namespace classic {
Command knot_command();
Command fingerprint_command();
}  // namespace classic

}  // namespace korvex::cli
