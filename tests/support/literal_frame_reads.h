// What the frame scan reads out of units, once more and in the slowest way: the bits of an SPS, of a slice header and
// of SEI messages, a bit at a time, with zeros behind the end. It shares no code with the libraries.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace literal {

using bytes = std::vector<unsigned char>;

/// The bits of an RBSP, by the rules of the legacy interface.
struct frame_bits {
    const bytes& data;
    std::uint64_t at = 0;

    std::uint32_t u(unsigned int width)
    {
        if (width > 24)
            return 0xFFFFFFFF;
        std::uint32_t value = 0;
        for (unsigned int i = 0; i < width; ++i, ++at)
            value = value * 2 + (at / 8 < data.size() ? data[at / 8] >> (7 - at % 8) & 1U : 0U);
        return value;
    }

    std::uint32_t ue()
    {
        unsigned int zeros = 0;
        while (zeros < 24 && u(1) == 0)
            ++zeros;
        std::uint32_t first_of_this_length = 1;
        for (unsigned int i = 0; i < zeros; ++i)
            first_of_this_length *= 2;
        return first_of_this_length - 1 + u(zeros);
    }

    std::int64_t se()
    {
        const std::int64_t code = ue();
        return code % 2 == 1 ? code / 2 + 1 : -(code / 2);
    }

    bool past_the_end() const { return at >= 8 * data.size(); }
};

/// What of an SPS decides anything in the frame scan. What an SPS does not carry keeps its value.
struct frame_sps {
    std::uint32_t separate_colour_plane_flag = 0;
    std::uint32_t log2_max_frame_num = 0;
    std::uint32_t frame_mbs_only_flag = 0;
    std::uint32_t nal_hrd_parameters_present_flag = 0;
    std::uint32_t vcl_hrd_parameters_present_flag = 0;
    std::uint32_t cpb_removal_delay_length = 0;
    std::uint32_t dpb_output_delay_length = 0;
    std::uint32_t pic_struct_present_flag = 0;

    void read(const bytes& rbsp)
    {
        frame_bits bits{rbsp};
        const std::uint32_t profile = bits.u(8);
        bits.u(16);
        bits.ue();
        if (profile == 100 || profile == 110 || profile == 122 || profile == 244 || profile == 44 || profile == 83 ||
            profile == 86 || profile == 118 || profile == 128)
            read_chroma(bits);
        log2_max_frame_num = (bits.ue() + 4) % 256;
        skip_picture_order_count(bits);
        bits.ue();
        bits.u(1);
        bits.ue();
        bits.ue();
        frame_mbs_only_flag = bits.u(1);
        if (frame_mbs_only_flag == 0)
            bits.u(1);
        bits.u(1);
        if (bits.u(1) == 1)
            for (int side = 0; side < 4; ++side)
                bits.ue();
        if (bits.u(1) == 1)
            read_vui(bits);
    }

private:
    void read_chroma(frame_bits& bits)
    {
        const std::uint32_t chroma_format_idc = bits.ue();
        if (chroma_format_idc == 3)
            separate_colour_plane_flag = bits.u(1);
        bits.ue();
        bits.ue();
        bits.u(1);
        if (bits.u(1) == 0)
            return;
        for (int list = 0; list < (chroma_format_idc == 3 ? 12 : 8); ++list)
            skip_list(bits, list < 6 ? 16 : 64);
    }

    static void skip_list(frame_bits& bits, int entries)
    {
        if (bits.u(1) == 0)
            return;
        std::int64_t scale = 8;
        for (int j = 0; j < entries && scale != 0; ++j)
            scale = ((scale + bits.se()) % 256 + 256) % 256;
    }

    static void skip_picture_order_count(frame_bits& bits)
    {
        const std::uint32_t type = bits.ue() % 256;
        if (type == 0)
            bits.ue();
        if (type != 1)
            return;
        bits.u(1);
        bits.ue();
        bits.ue();
        for (std::uint32_t cycle = bits.ue(); cycle > 0 && !bits.past_the_end(); --cycle)
            bits.ue();
    }

    void read_vui(frame_bits& bits)
    {
        if (bits.u(1) == 1 && bits.u(8) == 255) {
            bits.u(16);
            bits.u(16);
        }
        if (bits.u(1) == 1)
            bits.u(1);
        if (bits.u(1) == 1) {
            bits.u(4);
            if (bits.u(1) == 1)
                bits.u(24);
        }
        if (bits.u(1) == 1) {
            bits.ue();
            bits.ue();
        }
        if (bits.u(1) == 1) {
            for (int half = 0; half < 4; ++half)
                bits.u(16);
            bits.u(1);
        }
        nal_hrd_parameters_present_flag = bits.u(1);
        if (nal_hrd_parameters_present_flag == 1)
            read_hrd(bits);
        vcl_hrd_parameters_present_flag = bits.u(1);
        if (vcl_hrd_parameters_present_flag == 1)
            read_hrd(bits);
        if (nal_hrd_parameters_present_flag == 1 || vcl_hrd_parameters_present_flag == 1)
            bits.u(1);
        pic_struct_present_flag = bits.u(1);
    }

    void read_hrd(frame_bits& bits)
    {
        const std::uint32_t cpbs = bits.ue() + 1;
        if (cpbs > 32)
            return;
        bits.u(8);
        for (std::uint32_t i = 0; i < cpbs; ++i) {
            bits.ue();
            bits.ue();
            bits.u(1);
        }
        bits.u(5);
        cpb_removal_delay_length = bits.u(5) + 1;
        dpb_output_delay_length = bits.u(5) + 1;
        bits.u(5);
    }
};

/// What of a slice header decides anything in the frame scan.
struct frame_slice {
    std::uint32_t frame_num = 0;
    bool field_pic_flag = false;
};

inline frame_slice read_slice(const bytes& rbsp, const frame_sps& sps)
{
    frame_bits bits{rbsp};
    bits.ue();
    bits.ue();
    bits.ue();
    if (sps.separate_colour_plane_flag == 1)
        bits.u(2);
    const std::uint32_t frame_num = bits.u(sps.log2_max_frame_num);
    return {frame_num, sps.frame_mbs_only_flag == 0 && bits.u(1) == 1};
}

/// The fields that a picture timing payload shows its picture for; nothing when it is empty.
inline std::optional<std::uint32_t> read_pic_timing(const bytes& payload, const frame_sps& sps)
{
    static constexpr std::uint32_t fields[16] = {2, 1, 1, 2, 2, 3, 3, 4, 6};
    if (payload.empty())
        return std::nullopt;
    frame_bits bits{payload};
    if (sps.nal_hrd_parameters_present_flag == 1 || sps.vcl_hrd_parameters_present_flag == 1) {
        bits.u(sps.cpb_removal_delay_length);
        bits.u(sps.dpb_output_delay_length);
    }
    if (sps.pic_struct_present_flag == 0)
        return 2;
    return fields[bits.u(4)];
}

/// The fields of the last picture timing message that can be read in an SEI RBSP.
inline std::optional<std::uint32_t> read_sei(const bytes& rbsp, const frame_sps& sps)
{
    std::optional<std::uint32_t> duration;
    std::size_t at = 0;
    while (at < rbsp.size()) {
        std::uint64_t numbers[2] = {0, 0};
        for (std::uint64_t& number : numbers) {
            while (at < rbsp.size() && rbsp[at] == 255) {
                number += 255;
                ++at;
            }
            if (at == rbsp.size())
                return duration;
            number += rbsp[at++];
        }
        if (numbers[1] > rbsp.size() - at)
            return duration;
        bytes payload;
        for (std::uint64_t i = 0; i < numbers[1]; ++i)
            payload.push_back(rbsp[at++]);
        if (numbers[0] != 1)
            continue;
        const auto fields = read_pic_timing(payload, sps);
        if (fields)
            duration = fields;
    }
    return duration;
}

} // namespace literal
