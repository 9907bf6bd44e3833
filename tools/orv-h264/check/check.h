// orv-h264 check: what a stream breaks of the standard, rule by rule.
#pragma once

#include "check/violation.h"
#include "exit_status.h"
#include "jobs/file_jobs.h"
#include "stream_input.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace orv_h264 {

/// How violations are told.
enum class check_format : std::uint8_t {
    text,       ///< a line each, for a person
    json_lines, ///< likewise, for a program
    sarif,
    junit,
};

struct check_options {
    stream_options stream;
    check_format format = check_format::text;
    std::vector<std::string> ignore;   ///< rules that are passed over
    std::vector<std::string> only;     ///< the rules that are looked at; all of them where there is none
    std::vector<std::string> profiles; ///< of delivery: files, or names of those that come with the tool
    std::uint64_t limit = std::numeric_limits<std::uint64_t>::max(); ///< of violations of a rule that are told
};

/// Prints what breaks the rules. Throws refusal for an input that is not read, for a rule or a profile that there is
/// not, and std::system_error when reading or writing fails.
exit_status check(const check_options& options);
/// The same of each of the files.
exit_status check_of_files(const file_set& files, const check_options& options);

/// Prints all rules, in the order of their clauses.
exit_status list_rules(check_format format);
/// Tells of one. Throws refusal where there is no such rule.
exit_status explain_rule(const std::string& id, check_format format);

} // namespace orv_h264
