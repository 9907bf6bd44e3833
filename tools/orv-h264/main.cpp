// orv-h264. Each subcommand is a file of its own. The syntax library reads; the tool asks and prints.
#include "command_line/command_line.h"
#include "messages.h"
#include "standard_descriptors.h"
#include "standard_output.h"
#include "stream_input.h"

#include <exception>
#include <new>

int main(int argc, char** argv)
{
    try {
        orv_h264::occupy_closed_descriptors();
        orv_h264::gather_output();
        const orv_h264::exit_status status = orv_h264::run_command_line(argc, argv);
        orv_h264::flush_output();
        return status;
    } catch (const orv_h264::refusal& refused) {
        orv_h264::print_error(refused.what());
        return refused.status;
    } catch (const std::bad_alloc&) {
        orv_h264::print_error("out of memory");
        return orv_h264::exit_usage_or_io;
    } catch (const std::exception& error) {
        orv_h264::print_error(error.what());
        return orv_h264::exit_usage_or_io;
    }
}
