// T5: where each frame begins and ends, in Annex B.
#include "literal_loops.h"
#include "memory_pass.h"
#include "task.h"

#include <orv-utils-v4/h264_legacy.h>

namespace bench {

namespace {

std::uint64_t by_frame_scan(data_set& set)
{
    std::vector<unsigned char>& room = scratch_for(set);
    const unsigned char* const end = set.annex_b.data() + set.annex_b_size;
    const unsigned char* p = set.annex_b.data();
    std::uint64_t frames = 0;
    h264_sps sps;
    h264_common_frame_scan_info frame;
    do {
        bool sps_updated = false;
        p = h264_common_frame_scan(frame, sps_updated, sps, p, end, 0, room.data(), room.size(), 0);
        frames += frame.complete != 0 || frame.need_more_data != 0 ? 1U : 0U;
    } while (frame.complete != 0);
    return frames;
}

/// The bytes alone: every unit decoded, and the delimiters counted.
std::uint64_t by_literal_scan(data_set& set)
{
    constexpr unsigned int access_unit_delimiter = 9;
    std::vector<unsigned char>& room = scratch_for(set);
    const unsigned char* const end = set.annex_b.data() + set.annex_b_size;
    const unsigned char* p = set.annex_b.data();
    std::uint64_t frames = 0;
    h264_nal_parser_state unit;
    do {
        p = literal::nal_parser_scan(&unit, room.data(), room.size(), p, end);
        frames += unit.found != 0 && unit.nal_unit_type == access_unit_delimiter ? 1U : 0U;
    } while (unit.found != 0);
    return frames;
}

} // namespace

std::vector<task> frame_tasks()
{
    return {{"T5 frames",
             [](const data_set& set) { return set.annex_b_size; },
             {"large", "8k", "70"},
             std::vector<contender>{{side::ours, "frame_scan", by_frame_scan},
                                    {side::scalar, "literal", by_literal_scan},
                                    {side::memory, "memcpy", copy_payloads}} +
                 peers::frames()}};
}

} // namespace bench
