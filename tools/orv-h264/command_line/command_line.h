// The argument table: what the user may say, and what is run then.
#pragma once

#include "exit_status.h"

namespace orv_h264 {

/// Runs the subcommand that the arguments of main() name. Throws what the subcommands throw.
exit_status run_command_line(int argc, char** argv);

} // namespace orv_h264
