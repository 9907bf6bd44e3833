// All subjects, and parses that run out of memory.
#include "support/subject.h"

#include "support/failing_new.h"

#include <cstddef>
#include <optional>
#include <utility>

namespace support {

namespace {

/// While it lives, the allocation `k` of every parse fails, real or literal.
class parses_run_out {
public:
    explicit parses_run_out(std::size_t k)
    {
        literal::allocations_left = failing = k;
        on_real_parse = [](bool begins) {
            if (begins)
                memory.emplace(failing);
            else
                memory.reset();
        };
    }
    parses_run_out(const parses_run_out&) = delete;
    parses_run_out& operator=(const parses_run_out&) = delete;
    ~parses_run_out()
    {
        on_real_parse = nullptr;
        literal::allocations_left = armed_new::never;
    }

private:
    static inline std::size_t failing = 0;
    static inline std::optional<armed_new> memory;
};

} // namespace

const std::vector<subject_group>& subject_groups()
{
    static const std::vector<subject_group> groups = {{"scaling_list", scaling_list_subjects},
                                                      {"hrd", hrd_subjects},
                                                      {"vui", vui_subjects},
                                                      {"sps", sps_subjects},
                                                      {"pps", pps_subjects},
                                                      {"slice_header", slice_header_subjects},
                                                      {"pic_timing", pic_timing_subjects},
                                                      {"buffering_period", buffering_period_subjects},
                                                      {"pan_scan_rect", pan_scan_rect_subjects},
                                                      {"recovery_point", recovery_point_subjects},
                                                      {"legacy_sps", legacy_sps_subjects},
                                                      {"legacy_slice", legacy_slice_subjects},
                                                      {"legacy_timing", legacy_timing_subjects}};
    return groups;
}

const std::vector<subject>& all_subjects()
{
    static const std::vector<subject> all = [] {
        std::vector<subject> made;
        for (const subject_group& group : subject_groups())
            for (subject& what : group.make()) {
                what.name = std::string(group.name) + ": " + what.name;
                made.push_back(std::move(what));
            }
        return made;
    }();
    return all;
}

parse_without_memory check_without_memory(const subject& what, const bit_range& bits, object_state state, std::size_t k)
{
    parse_without_memory result;
    {
        const parses_run_out memory(k);
        result.fault = what.check(bits, state);
        result.failed = armed_new::made() > k;
    }
    if (what.legacy && armed_new::made() != 0)
        result.fault += "the legacy interface asked for memory";
    // What ran out of memory is as good as any other object.
    const bytes& whole = what.valid.made();
    result.fault += what.check({whole.data(), whole.data() + whole.size()}, object_state::as_left);
    return result;
}

} // namespace support
