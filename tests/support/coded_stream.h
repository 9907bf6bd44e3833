// A notation for streams that a decoder could begin to read: parameter sets, slices and SEI messages by what a test
// wants of them, in Annex B framing.
#pragma once

#include "support/element_writer.h"
#include "support/pps_builder.h"
#include "support/sei_builder.h"
#include "support/slice_header_builder.h"
#include "support/sps_builder.h"
#include "support/stream_builder.h"

#include <orv-utils-v4/h264.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <utility>

namespace support {

/// What a slice is of.
enum class coded { frame, top, bottom };

/// Slices of this parameter set may be of fields. 25 frames a second when `timed`, and pic_struct in picture timing.
inline sps_description coded_sps(bool fields_allowed, bool timed = true)
{
    sps_description seq;
    seq.profile_idc = 77;
    seq.pic_order_cnt_type = 2;
    seq.frame_mbs_only_flag = !fields_allowed;
    if (timed) {
        seq.vui.emplace();
        seq.vui->timing_info_present_flag = true;
        seq.vui->num_units_in_tick = 1;
        seq.vui->time_scale = 50;
        seq.vui->pic_struct_present_flag = true;
    }
    return seq;
}

/// Units with start codes of 3 bytes. Slices are those of the parameter set that came last.
class coded_stream {
public:
    coded_stream& unit(unsigned char header, bytes rbsp)
    {
        bytes out(2 * rbsp.size() + 16);
        brenik::h264_nal_writer writer(out.data(), out.data(), out.data() + out.size(), brenik::nalfmt_length4);
        brenik::h264_nal nal;
        nal.decode_header(header);
        writer.block_encode(rbsp.data(), rbsp.size(), nal, 0);
        last_offset = stream.here();
        stream.start_code().raw(
            bytes(out.begin() + 4, out.begin() + static_cast<std::ptrdiff_t>(writer.data_length())));
        return *this;
    }

    coded_stream& set(const sps_description& seq)
    {
        fields_allowed = !seq.frame_mbs_only_flag;
        return unit(support::sps, written_rbsp(seq).made());
    }
    coded_stream& set(const pps_description& pic) { return unit(support::pps, written_rbsp(pic).made()); }
    /// Both parameter sets, with the ids 0.
    coded_stream& sets(const sps_description& seq) { return set(seq).set(pps_description{}); }

    coded_stream& aud() { return unit(support::aud, {0x50}); }
    coded_stream& filler(std::size_t size = 2)
    {
        bytes rbsp(size, 0xFF);
        rbsp.push_back(0x80);
        return unit(12, rbsp);
    }
    coded_stream& end_of_sequence() { return unit(10, {}); }

    /// Picture timing without delays and timestamps.
    coded_stream& timing(unsigned int pic_struct)
    {
        constexpr unsigned int table_d_1[] = {1, 1, 1, 2, 2, 3, 3, 2, 3}; // clock_timestamp_flags, then the bit behind
        const unsigned int flags = pic_struct < std::size(table_d_1) ? table_d_1[pic_struct] : 0;
        return unit(sei, sei_rbsp({{1, {static_cast<unsigned char>(pic_struct << 4 | 8 >> flags)}}}));
    }
    coded_stream& recovery_point(std::uint32_t recovery_frame_cnt)
    {
        recovery_point_description point;
        point.recovery_frame_cnt = recovery_frame_cnt;
        return unit(sei, sei_rbsp({{6, written_rbsp(point).made()}}));
    }
    /// Unregistered user data, its UUID of zeros unless there is one.
    coded_stream& user_data(std::string_view text, bytes uuid = bytes(16))
    {
        bytes payload = std::move(uuid);
        payload.insert(payload.end(), text.begin(), text.end());
        return unit(sei, sei_rbsp({{5, payload}}));
    }

    /// User data that an encoder is known by.
    coded_stream& encoder(std::string_view text)
    {
        return user_data(
            text, {0xDC, 0x45, 0xE9, 0xBD, 0xE6, 0xD9, 0x48, 0xB7, 0x96, 0x2C, 0xD8, 0x20, 0xD9, 0x23, 0xEE, 0xEF});
    }

    /// An I slice.
    coded_stream& slice(std::uint32_t frame_num, coded kind = coded::frame, std::size_t size = 4)
    {
        return slice(described(frame_num, kind), support::header_byte(2, 1), size);
    }
    coded_stream& idr(coded kind = coded::frame, std::size_t size = 4)
    {
        slice_header_description header = described(0, kind);
        header.idr_pic_id = 0;
        return slice(header, idr_slice, size);
    }
    /// `size` bytes of slice data behind the header, which has a sliding window.
    coded_stream& slice(const slice_header_description& header, unsigned char nal_header, std::size_t size = 4)
    {
        element_writer out = written(header);
        if (nal_header % 32 == idr_slice % 32)
            out.flag("no_output_of_prior_pics_flag", false).flag("long_term_reference_flag", false);
        else if (nal_header >> 5 != 0)
            out.flag("adaptive_ref_pic_marking_mode_flag", false);
        out.se("slice_qp_delta", 0);
        bytes rbsp = out.trailing_bits().made();
        rbsp.insert(rbsp.end(), size, 0x55);
        return unit(nal_header, rbsp);
    }

    slice_header_description described(std::uint32_t frame_num, coded kind = coded::frame) const
    {
        slice_header_description header;
        header.frame_num = frame_num;
        if (fields_allowed)
            header.field_pic_flag = kind != coded::frame;
        header.bottom_field_flag = kind == coded::bottom;
        return header;
    }

    std::size_t here() const { return stream.here(); }
    /// Of the last unit.
    std::size_t last() const { return last_offset; }
    const bytes& made() const { return stream; }
    operator const bytes&() const { return stream; }

private:
    stream_builder stream;
    std::size_t last_offset = 0;
    bool fields_allowed = false;
};

} // namespace support
