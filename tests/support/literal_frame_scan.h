// The frame scan once more, as a machine of two states over units that are already split. It shares no code with the
// libraries; the tests and the fuzz entry point hold the real one against it.
#pragma once

#include "support/legacy_fields.h"
#include "support/literal_legacy_sps.h"
#include "support/scanned_frame.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace literal {

using bytes = std::vector<unsigned char>;

/// A unit where it stands in the input.
struct placed_unit {
    std::size_t start = 0; ///< its framing
    std::size_t next = 0;  ///< where the search goes on behind it
    unsigned int nal_unit_type = 0;
    bytes rbsp = {};
    bool too_large = false; ///< for the scratch buffer
};

/// All units of an input, and where the search for a further one ends.
struct placed_units {
    std::vector<placed_unit> units = {};
    std::size_t end = 0;
};

/// The calls of the frame scan for one stream.
class frame_scan {
public:
    frame_scan(const placed_units& all_units, bool split, const h264_sps& first_sps)
        : input(all_units), split_fields(split), sps(support::fields_of(first_sps))
    {
    }

    /// The call whose first unit is the one with index `first`.
    support::frame_outcome scan(std::size_t first)
    {
        call = {};
        out = {};
        index = first;
        if (find_first())
            search();
        return out;
    }

private:
    const placed_unit& here() const { return input.units[index]; }
    bool have_unit() const { return index < input.units.size() && !here().too_large; }

    /// Goes to the unit that begins the frame.
    bool find_first()
    {
        for (; have_unit(); ++index) {
            const unsigned int type = here().nal_unit_type;
            if (type == 1 || (type >= 5 && type <= 9)) {
                out.start = here().start;
                return true;
            }
        }
        out.result = index < input.units.size() ? here().next : input.end;
        return false;
    }

    void search()
    {
        for (bool leading = true; have_unit();) {
            const unsigned int type = here().nal_unit_type;
            if (leading && (type < 6 || type > 9))
                leading = false;
            if (leading) {
                take();
            } else if (type >= 6 && type <= 11) {
                if (call.pair_marked || split_fields || call.picture_kind == 1)
                    return end_before_unit();
                call.pair_marked = true;
                call.end_field = here().start;
                call.saved_duration = out.field_duration;
                leading = true;
            } else {
                if ((type == 1 || type == 5) && !here().rbsp.empty() && slice_ends_frame())
                    return end_at_slice();
                take();
            }
        }
        out.need_more_data = index == input.units.size();
        out.result = out.start;
    }

    void take()
    {
        const placed_unit& unit = here();
        switch (unit.nal_unit_type) {
        case 1:
        case 5:
            out.has_slice = true;
            break;
        case 6:
            out.has_sei = true;
            read_sei(unit.rbsp);
            break;
        case 7:
            out.has_sps = true;
            out.sps_updated = true;
            read_sps(unit.rbsp);
            break;
        case 8:
            out.has_pps = true;
            break;
        case 9:
            out.has_aud = true;
            break;
        default:
            break;
        }
        ++index;
    }

    void read_sps(const bytes& rbsp)
    {
        legacy_bit_reader bits(rbsp);
        legacy::sps({sps, bits});
        stored = legacy::stored_sps(sps);
    }

    /// The last picture timing that can be read says how many fields long the frame is.
    void read_sei(const bytes& rbsp)
    {
        for (legacy::message m = legacy::sei_message(rbsp, 0); m.valid;
             m = legacy::sei_message(rbsp, static_cast<std::size_t>(m.fence))) {
            legacy_bit_reader bits({rbsp.begin() + m.data, rbsp.begin() + m.fence});
            support::named_values timing = support::fields_of(h264_sei_picture_timing_info());
            if (m.type == 1 && legacy::pic_timing({timing, bits}, stored))
                out.field_duration = static_cast<std::uint32_t>(timing.at("field_duration").number);
        }
    }

    bool slice_ends_frame()
    {
        legacy_bit_reader bits(here().rbsp);
        support::named_values slice = support::fields_of(h264_nal_slice_info());
        legacy::slice({slice, bits}, stored);
        call.field_pic_flag = slice.at("field_pic_flag").number == 1;
        const std::int64_t frame_num = slice.at("frame_num").number;
        if (call.picture_kind == 1 && !call.pair_marked) {
            if (call.field_pic_flag)
                call.picture_kind = 2;
        } else if (call.picture_kind == 2 && call.pair_marked) {
            if (!call.field_pic_flag)
                out.end = call.end_field;
        }
        if (!call.first_frame_num) {
            if (frame_num != 0xFFFFFFFF)
                call.first_frame_num = frame_num;
            return false;
        }
        return frame_num != *call.first_frame_num;
    }

    void end_before_unit()
    {
        out.complete = true;
        out.end = out.result = here().start;
        if (call.saved_duration == 1U && out.field_duration == 1)
            out.field_duration = 2;
        else if (out.field_duration == 2 && !call.pair_marked && call.field_pic_flag && split_fields)
            out.field_duration = 1;
    }

    void end_at_slice()
    {
        out.complete = true;
        out.end = out.result = call.pair_marked ? call.end_field : here().start;
    }

    struct call_state {
        std::optional<std::int64_t> first_frame_num = {};
        int picture_kind = 1;
        bool pair_marked = false;
        std::size_t end_field = support::nowhere;
        std::optional<std::uint32_t> saved_duration = {};
        bool field_pic_flag = false; ///< of the last slice
    };

    const placed_units& input;
    bool split_fields;
    support::named_values sps;
    legacy::stored_sps stored{sps};
    std::size_t index = 0;
    call_state call;
    support::frame_outcome out;
};

/// Where the unit is that begins at `start`; the number of units when there is none.
inline std::size_t index_of(const placed_units& all, std::size_t start)
{
    std::size_t index = 0;
    while (index < all.units.size() && all.units[index].start < start)
        ++index;
    return index;
}

/// All calls from the start of the input up to the first that finds no whole frame.
inline std::vector<support::frame_outcome> scan_frames(const placed_units& all, bool split_fields,
                                                       const h264_sps& sps = {})
{
    frame_scan scan(all, split_fields, sps);
    std::vector<support::frame_outcome> frames = {scan.scan(0)};
    while (frames.back().complete)
        frames.push_back(scan.scan(index_of(all, frames.back().result)));
    return frames;
}

} // namespace literal
