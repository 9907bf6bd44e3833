// What the tool tells about its input on the standard error stream.
#pragma once

#include "exit_status.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace orv_h264 {

/// Writes to the standard error stream, as it is. What that does not take is lost: a run does what it does without.
void write_message(std::string_view text);

/// Tells "orv-h264: " and the reason, its control characters escaped.
void print_error(std::string_view reason);

/// What is wrong with one input, and what is odd about it.
class complaints {
public:
    explicit complaints(std::string input_name, bool in_json = false, bool of_many = false)
        : name(std::move(input_name)), also_json(in_json), among_many(of_many)
    {
    }

    /// Prints what is wrong at `offset`; where the output is JSON, a line of it says so too.
    void add(std::uint64_t offset, std::string_view what);

    /// Likewise of a finding, with which reading goes on and the status stays what it is.
    void note(std::uint64_t offset, std::string_view what);

    /// What the complaints make of a run that was fine otherwise.
    exit_status status() const noexcept { return any ? exit_broken_stream : exit_clean; }

private:
    void tell(const char* record, std::uint64_t offset, std::string_view what) const;

    std::string name;
    bool also_json;
    bool among_many; // the line of JSON names the file
    bool any = false;
};

} // namespace orv_h264
