// The texts of user data that are registered by T.35. Their tables are not in H.264: each text names the standard. What
// these call reserved bits, markers and zero bits are patterns here.
#pragma once

#include "coders/coder.h"

#include <orv-utils-v4/h264_syntax/registered_user_data.h>

namespace orv_utils_v4::h264 {

// ATSC A/53 Part 4, cc_data() and the marker bits behind it; CTA-708 has the same table
template <class Coder>
void code(Coder& c, in<Coder, cc_data>& x)
{
    const auto here = c.structure("cc_data");
    c.flag("process_em_data_flag", x.process_em_data_flag);
    c.flag("process_cc_data_flag", x.process_cc_data_flag);
    c.flag("additional_data_flag", x.additional_data_flag);
    c.u(5, "cc_count", x.cc_count);
    c.u(8, "em_data", x.em_data);
    for (std::size_t i = 0; i < x.cc_count && c.going(); ++i) {
        auto& construct = c.entry("cc_count", x.cc_constructs, i);
        c.f(5, {"marker_bits", i}, 0x1F);
        c.flag({"cc_valid", i}, construct.cc_valid);
        c.u(2, {"cc_type", i}, construct.cc_type);
        c.u(8, {"cc_data_1", i}, construct.cc_data_1);
        c.u(8, {"cc_data_2", i}, construct.cc_data_2);
    }
    c.entries_end("cc_count", x.cc_constructs, x.cc_count);
    c.f(8, "marker_bits", 0xFF);
}

// ATSC A/53 Part 4, bar_data() up to its last number
template <class Coder>
void code(Coder& c, in<Coder, bar_data>& x)
{
    const auto here = c.structure("bar_data");
    c.flag("top_bar_flag", x.top_bar_flag);
    c.flag("bottom_bar_flag", x.bottom_bar_flag);
    c.flag("left_bar_flag", x.left_bar_flag);
    c.flag("right_bar_flag", x.right_bar_flag);
    c.f(4, "reserved", 0xF);
    if (x.top_bar_flag) {
        c.f(2, "marker_bits", 3);
        c.u(14, "line_number_end_of_top_bar", x.line_number_end_of_top_bar);
    }
    if (x.bottom_bar_flag) {
        c.f(2, "marker_bits", 3);
        c.u(14, "line_number_start_of_bottom_bar", x.line_number_start_of_bottom_bar);
    }
    if (x.left_bar_flag) {
        c.f(2, "marker_bits", 3);
        c.u(14, "pixel_number_end_of_left_bar", x.pixel_number_end_of_left_bar);
    }
    if (x.right_bar_flag) {
        c.f(2, "marker_bits", 3);
        c.u(14, "pixel_number_start_of_right_bar", x.pixel_number_start_of_right_bar);
    }
}

// ATSC A/53 Part 4, afd_data()
template <class Coder>
void code(Coder& c, in<Coder, afd_data>& x)
{
    const auto here = c.structure("afd_data");
    c.f(1, "zero", 0);
    c.flag("active_format_flag", x.active_format_flag);
    c.f(6, "reserved", 1);
    if (x.active_format_flag) {
        c.f(4, "reserved", 0xF);
        c.u(4, "active_format", x.active_format);
    }
}

// ATSC A/53 Part 4, ATSC_user_data()
template <class Coder>
void code_ATSC_user_data(Coder& c, in<Coder, registered_user_data>& x)
{
    constexpr std::uint8_t captions = 0x03;
    constexpr std::uint8_t bars = 0x06;
    const auto here = c.structure("ATSC_user_data");
    c.u(8, "user_data_type_code", x.user_data_type_code);
    if (x.user_data_type_code == captions)
        code_as<cc_data>(c, x.data);
    else if (x.user_data_type_code == bars)
        code_as<bar_data>(c, x.data);
}

// ATSC A/53 Part 4, what stands behind the country code of T.35
template <class Coder>
void code(Coder& c, in<Coder, registered_user_data>& x, std::uint8_t itu_t_t35_country_code)
{
    if (itu_t_t35_country_code != registered_user_data::country_usa)
        return;
    const auto here = c.structure("registered_user_data");
    c.u(16, "itu_t_t35_provider_code", x.itu_t_t35_provider_code);
    if (x.itu_t_t35_provider_code != registered_user_data::provider_atsc)
        return;
    c.u(32, "user_identifier", x.user_identifier);
    if (x.user_identifier == registered_user_data::identifier_atsc)
        code_ATSC_user_data(c, x);
    else if (x.user_identifier == registered_user_data::identifier_afd)
        code_as<afd_data>(c, x.data);
}

} // namespace orv_utils_v4::h264
