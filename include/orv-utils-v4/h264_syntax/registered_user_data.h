/// @file
/// What SEI payload 4 holds for those who registered it by Recommendation ITU-T T.35: closed captions, bar data and
/// active format of ATSC A/53 Part 4 are read; of others the name is known. H.264 itself has these as bytes.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264_syntax/bounded_list.h>
#include <orv-utils-v4/h264_syntax/element.h>
#include <orv-utils-v4/h264_syntax/outcome.h>
#include <orv-utils-v4/h264_syntax/sei/user_data.h>

#include <cstddef>
#include <cstdint>
#include <variant>

namespace orv_utils_v4::h264 {

/// Two bytes of captions. No member is initialised: the list that holds them does so.
struct cc_construct {
    bool cc_valid;
    std::uint8_t cc_type;   ///< 0, 1: CEA-608 of field 1, 2; 2: CTA-708 packet data; 3: and the start of a packet
    std::uint8_t cc_data_1; ///< of CEA-608 with its parity bit
    std::uint8_t cc_data_2; ///< likewise

    friend ORV_UTILS_V4_EXPORT bool operator==(const cc_construct&, const cc_construct&);
};

/// cc_data() and the marker bits behind it, ATSC A/53 Part 4 and CTA-708. Of a payload that is cut the last construct
/// holds zeros for what is missing.
struct cc_data {
    static constexpr std::size_t most_constructs = 31; ///< what cc_count can say

    bool process_em_data_flag = false; ///< reserved in later editions
    bool process_cc_data_flag = false;
    bool additional_data_flag = false; ///< zero_bit in later editions
    std::uint8_t cc_count = 0;
    std::uint8_t em_data = 0;                                  ///< reserved in later editions
    bounded_list<cc_construct, most_constructs> cc_constructs; ///< cc_count of them

    cc_data() noexcept {}

    friend ORV_UTILS_V4_EXPORT bool operator==(const cc_data&, const cc_data&);
};

/// bar_data(), ATSC A/53 Part 4: where a letterbox or pillarbox picture begins and ends. Numbers are 0 where they are
/// not sent.
struct bar_data {
    bool top_bar_flag = false;
    bool bottom_bar_flag = false;
    bool left_bar_flag = false;
    bool right_bar_flag = false;
    std::uint16_t line_number_end_of_top_bar = 0;
    std::uint16_t line_number_start_of_bottom_bar = 0;
    std::uint16_t pixel_number_end_of_left_bar = 0;
    std::uint16_t pixel_number_start_of_right_bar = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const bar_data&, const bar_data&);
};

/// afd_data(), ATSC A/53 Part 4.
struct afd_data {
    bool active_format_flag = false;
    std::uint8_t active_format = 0; ///< of SMPTE ST 2016-1; 0 where it is not sent

    friend ORV_UTILS_V4_EXPORT bool operator==(const afd_data&, const afd_data&);
};

/// What the bytes of the payload say behind the country code.
struct registered_user_data {
    static constexpr std::uint8_t country_usa = 0xB5;
    static constexpr std::uint16_t provider_atsc = 0x0031;
    static constexpr std::uint32_t identifier_atsc = 0x47413934; ///< "GA94"
    static constexpr std::uint32_t identifier_afd = 0x44544731;  ///< "DTG1"

    std::uint16_t itu_t_t35_provider_code = 0;                      ///< of country 0xB5
    std::uint32_t user_identifier = 0;                              ///< of provider 0x0031
    std::uint8_t user_data_type_code = 0;                           ///< of identifier "GA94": 3 cc_data(), 6 bar_data()
    std::variant<std::monostate, cc_data, bar_data, afd_data> data; ///< monostate: nothing further is read

    friend ORV_UTILS_V4_EXPORT bool operator==(const registered_user_data&, const registered_user_data&);
};

/// Reads the bytes of the payload as far as they are known. Takes no memory.
/// @param to what was read, up to a failure
/// @param from the payload
/// @param result how it went. Bits count from the first one of the payload, that of the country code. `bits` is where
///     reading ended: bytes behind are additional data, or all that is not known. `ending` is unknown where there is no
///     structure to read, which is no failure
ORV_UTILS_V4_EXPORT void read_registered_user_data(registered_user_data& to, const user_data_registered_itu_t_t35& from,
                                                   outcome& result) noexcept;

/// The same, and tells the elements behind the country code. Bits count as in `result`, so that a caller can add where
/// the payload lies in its unit.
ORV_UTILS_V4_EXPORT void trace_registered_user_data(registered_user_data& to,
                                                    const user_data_registered_itu_t_t35& from, outcome& result,
                                                    visitor& listener) noexcept;

/// The country of a code of T.35 Annex A, in English; "" for one that is not known here.
ORV_UTILS_V4_EXPORT const char* country_name(std::uint8_t itu_t_t35_country_code) noexcept;

/// Who registered the data, or the format that they registered it for: "ATSC", "SMPTE ST 2094-40 (HDR10+)"; "" where it
/// is not known here.
ORV_UTILS_V4_EXPORT const char* registered_name(const user_data_registered_itu_t_t35& data) noexcept;

} // namespace orv_utils_v4::h264
