// Streams with HRD parameters of which every buffer fullness can be told by hand: 25 pictures a second, 80000 bit/s, so
// 400 bytes a picture at a constant rate, which filler data make up.
#pragma once

#include "support/made_stream.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace orv_utils_v4::h264 {

constexpr std::uint32_t hrd_bit_rate = 80000;
constexpr std::uint32_t hrd_buffer_size = 32000;
constexpr std::uint32_t hrd_first_delay = 18000; ///< 0.2 s, in which 16000 bits arrive
constexpr std::size_t hrd_picture_bytes = 400;

inline hrd_parameters constant_rate_hrd()
{
    hrd_parameters hrd;
    hrd.bit_rate_value_minus1[0] = hrd_bit_rate / 64 - 1;
    hrd.cpb_size_value_minus1[0] = hrd_buffer_size / 16 - 1;
    hrd.cbr_flag[0] = true;
    return hrd;
}

/// With a NAL HRD; a tick is 1/50 s.
inline seq_parameter_set_data hrd_sps()
{
    seq_parameter_set_data sps = sps_data();
    sps.vui_parameters_present_flag = true;
    vui_parameters& vui = sps.vui_parameters;
    vui.timing_info_present_flag = true;
    vui.num_units_in_tick = 1;
    vui.time_scale = 50;
    vui.fixed_frame_rate_flag = true;
    vui.nal_hrd_parameters_present_flag = true;
    vui.nal_hrd_parameters = constant_rate_hrd();
    vui.low_delay_hrd_flag = false;
    return sps;
}

/// The same at a variable rate.
inline seq_parameter_set_data variable_rate_sps()
{
    seq_parameter_set_data sps = hrd_sps();
    sps.vui_parameters.nal_hrd_parameters.cbr_flag[0] = false;
    return sps;
}

/// Its pictures in decoding order, each with what differs from a sound stream of constant rate.
class hrd_stream : public made_stream {
public:
    struct difference {
        std::optional<std::uint32_t> removal = {}; ///< cpb_removal_delay; two ticks on where it is not told
        std::uint32_t output = 0;                  ///< dpb_output_delay
        std::uint8_t pic_struct = 0;
        std::size_t bytes = hrd_picture_bytes; ///< with its units
        bool timing = true;
    };

    explicit hrd_stream(const seq_parameter_set_data& of_sps = hrd_sps()) : made_stream(of_sps) {}

    /// A buffering period begins with the next picture.
    hrd_stream& period(std::uint32_t delay = hrd_first_delay, std::uint32_t offset = 0)
    {
        buffering_period begun;
        begun.seq_parameter_set_id = sps().seq_parameter_set_id;
        const initial_cpb_removal delays = {delay, offset};
        if (sps().vui_parameters.nal_hrd_parameters_present_flag) {
            begun.nal.resize(1);
            begun.nal[0] = delays;
        }
        if (sps().vui_parameters.vcl_hrd_parameters_present_flag) {
            begun.vcl.resize(1);
            begun.vcl[0] = delays;
        }
        messages.push_back(message_of(0, begun));
        return *this;
    }
    /// A message of the next picture, behind its buffering period.
    template <class Payload>
    hrd_stream& message(std::uint32_t payload_type, const Payload& payload)
    {
        messages.push_back(message_of(payload_type, payload));
        return *this;
    }
    /// The first one with the sets before it.
    hrd_stream& picture(const made_slice& slice, const difference& other)
    {
        if (bytes.empty())
            add_sets();
        const bool begins = !messages.empty() && messages.front().payload_type == 0;
        since_period += ticks_of_picture;
        pic_timing timing;
        timing.cpb_removal_delay = other.removal.value_or(any ? since_period : 0);
        timing.dpb_output_delay = other.output;
        timing.pic_struct = other.pic_struct;
        if (other.timing)
            messages.push_back(message_of(1, timing));
        if (!messages.empty())
            add(unit_of(6, sei_rbsp{messages}));
        messages.clear();
        add(slice);
        fill(picture_begin + other.bytes);
        if (begins)
            since_period = 0;
        any = true;
        return *this;
    }
    hrd_stream& picture(const made_slice& slice) { return picture(slice, difference()); }
    /// Pictures numbered from `from` on, up to and without `fence`.
    hrd_stream& pictures(std::uint32_t from, std::uint32_t fence)
    {
        for (std::uint32_t n = from; n < fence; ++n)
            picture(reference(n));
        return *this;
    }

private:
    static constexpr std::uint32_t ticks_of_picture = 2;
    static constexpr std::size_t filler_around = 6; // start code, header, trailing bits

    /// Filler data up to this size of the stream.
    void fill(std::size_t size)
    {
        if (bytes.size() + filler_around <= size) {
            std::vector<unsigned char> filler(size - bytes.size() - filler_around + 1, 0xFF);
            filler.back() = 0x80;
            add_bytes(12, filler);
        }
        picture_begin = bytes.size();
    }

    std::vector<sei_message> messages;
    std::size_t picture_begin = 0; // bytes of the stream before the next picture
    std::uint32_t since_period = 0;
    bool any = false;
};

} // namespace orv_utils_v4::h264
