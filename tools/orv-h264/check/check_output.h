// How violations are printed.
#pragma once

#include "check/check.h"
#include "json_output.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace orv_h264 {

/// How many violations there were of each severity.
using violation_counts = std::array<std::uint64_t, 3>;

/// Prints the violations of one file.
class check_output {
public:
    check_output() = default;
    check_output(const check_output&) = delete;
    check_output& operator=(const check_output&) = delete;
    virtual ~check_output() = default;

    /// The rules are those that are looked at; they outlive it.
    virtual void begin(const std::string& file, std::span<const rule* const> rules) = 0;
    virtual void print(const violation& what) = 0;
    /// That was all: so many, of which some were not printed.
    virtual void end(const violation_counts& counts, std::uint64_t untold) = 0;
    /// The file could not be read: why, and with which exit status.
    virtual void fail(const std::string& file, const std::string& reason, int status) = 0;
};

/// What stands around the outputs of all files.
struct output_frame {
    std::string_view head;
    std::string_view between;
    std::string_view tail;
};

struct check_printer {
    std::unique_ptr<check_output> output;
    output_frame frame;
};

/// The printer of one file, or of one of many.
check_printer make_check_printer(check_format format, bool among_many);

check_printer make_text_printer();
check_printer make_json_printer(bool among_many);
/// SARIF 2.1.0: a log with a run for each file.
check_printer make_sarif_printer();
/// JUnit: a test suite for each file with a test case for each rule.
check_printer make_junit_printer();

/// "slice_type 5; allowed: 2, 4, 7 or 9": what was found and what is allowed.
std::string found_and_allowed(const violation& what);
/// "H.264 7.4.3"; that of another standard, or a profile, as it stands.
std::string name_of_clause(std::string_view clause);
/// What JSON says of a rule.
json json_of(const rule& one);
/// A violation with its place, as members of JSON.
json json_of(const violation& what);

} // namespace orv_h264
