// One call of the frame scan: everything that it hands back, with pointers as offsets, so that calls can be compared
// with each other, with a model, and with what a test says.
#pragma once

#include "support/stream_builder.h"

#include <orv-utils-v4/h264_legacy/frame_scan.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <vector>

namespace support {

/// The offset that stands for a null pointer.
constexpr std::size_t nowhere = SIZE_MAX;

/// What a call of the frame scan says.
struct frame_outcome {
    std::size_t result = 0;
    std::size_t start = nowhere;
    std::size_t end = nowhere;
    bool complete = false;
    bool need_more_data = false;
    bool has_aud = false;
    bool has_sps = false;
    bool has_pps = false;
    bool has_sei = false;
    bool has_slice = false;
    std::uint32_t field_duration = 2;
    bool sps_updated = false;

    bool operator==(const frame_outcome&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const frame_outcome& f)
{
    const auto offset = [&](const char* name, std::size_t value) {
        out << name;
        value == nowhere ? out << "null" : out << value;
    };
    offset("result ", f.result);
    offset(" start ", f.start);
    offset(" end ", f.end);
    return out << (f.complete ? " complete" : "") << (f.need_more_data ? " more" : "") << (f.has_aud ? " aud" : "")
               << (f.has_sps ? " sps" : "") << (f.has_pps ? " pps" : "") << (f.has_sei ? " sei" : "")
               << (f.has_slice ? " slice" : "") << " fields " << f.field_duration << (f.sps_updated ? " updated" : "");
}

/// A result that nothing set: each field differs from what a call begins with.
inline h264_common_frame_scan_info dirty_info()
{
    static constexpr unsigned char elsewhere = 0;
    return {9, 9, 9, 9, 9, 9, 9, 99, &elsewhere, &elsewhere};
}

/// Input and scratch buffer of a kind that shows accesses outside of them (guarded_buffer, fuzz::exact_block), and the
/// SPS that goes from call to call.
template <typename Memory>
class frame_scanner {
public:
    frame_scanner(const bytes& stream, int prefix_size, std::size_t scratch_size, unsigned int scan_flags = 0,
                  const h264_sps& first_sps = {})
        : input(stream), scratch(scratch_size), nal_length_size(prefix_size), flags(scan_flags), sps(first_sps)
    {
    }

    /// One call over the input from `start` on.
    frame_outcome scan(std::size_t start)
    {
        h264_common_frame_scan_info info = dirty_info();
        bool sps_updated = false;
        const unsigned char* const result =
            h264_common_frame_scan(info, sps_updated, sps, input.begin() + start, input.end(), nal_length_size,
                                   scratch.begin(), scratch.size(), flags);
        return {offset(result),       offset(info.frame_start),  offset(info.frame_end),
                flag(info.complete),  flag(info.need_more_data), flag(info.has_aud),
                flag(info.has_sps),   flag(info.has_pps),        flag(info.has_sei),
                flag(info.has_slice), info.field_duration,       sps_updated};
    }

    Memory input;
    Memory scratch;
    int nal_length_size;
    unsigned int flags;
    h264_sps sps;

private:
    /// What is neither null nor within the input, its end included, is no offset that anything else has.
    std::size_t offset(const unsigned char* pointer) const
    {
        if (pointer == nullptr)
            return nowhere;
        const auto distance =
            reinterpret_cast<std::uintptr_t>(pointer) - reinterpret_cast<std::uintptr_t>(input.begin());
        return distance <= input.size() ? distance : nowhere - 1;
    }

    /// A flag that is neither 0 nor 1 was not set, and ends the program.
    static bool flag(std::uint8_t value)
    {
        if (value > 1)
            __builtin_trap();
        return value == 1;
    }
};

/// All calls from the start of the input up to the first that finds no whole frame.
template <typename Memory>
std::vector<frame_outcome> scan_frames(frame_scanner<Memory>& scanner)
{
    std::vector<frame_outcome> frames = {scanner.scan(0)};
    while (frames.back().complete && frames.size() <= scanner.input.size())
        frames.push_back(scanner.scan(frames.back().result));
    return frames;
}

} // namespace support
