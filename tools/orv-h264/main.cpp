// orv-h264. Each subcommand is a file of its own. The syntax library reads; the tool asks and prints.
#include "command_line/command_line.h"
#include "failed_allocations.h"
#include "messages.h"
#include "output_file.h"
#include "standard_descriptors.h"
#include "standard_output.h"
#include "stream_input.h"

#include <cstdlib>
#include <exception>
#include <new>

namespace {

// Destructors of JSON values ask for memory, and may not throw.
[[noreturn]] void end_without_memory()
{
    if (!orv_h264::take_failed_allocation())
        std::abort();
    orv_h264::remove_unfinished_files();
    orv_h264::write_message("orv-h264: out of memory\n");
    std::_Exit(orv_h264::exit_usage_or_io);
}

} // namespace

int main(int argc, char** argv)
{
    orv_h264::watch_allocations();
    std::set_terminate(end_without_memory);
    try {
        orv_h264::occupy_closed_descriptors();
        orv_h264::gather_output();
        const orv_h264::exit_status status = orv_h264::run_command_line(argc, argv);
        orv_h264::close_output();
        return status;
    } catch (const orv_h264::refusal& refused) {
        if (!orv_h264::take_failed_allocation()) {
            orv_h264::print_error(refused.what());
            return refused.status;
        }
    } catch (const std::bad_alloc&) {
    } catch (const std::exception& error) {
        if (!orv_h264::take_failed_allocation()) {
            orv_h264::print_error(error.what());
            return orv_h264::exit_usage_or_io;
        }
    }
    orv_h264::print_error("out of memory");
    return orv_h264::exit_usage_or_io;
}
