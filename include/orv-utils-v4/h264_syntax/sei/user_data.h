/// @file
/// SEI payloads of H.264 Annex D that are bytes to it: filler, user data, what is reserved, and what is kept as it is.
#pragma once

#include <orv-utils-v4/export.h>

#include <array>
#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

/// A payload whose syntax is not read.
struct payload_bytes {
    std::vector<std::uint8_t> payload_byte;

    friend ORV_UTILS_V4_EXPORT bool operator==(const payload_bytes&, const payload_bytes&);
};

/// reserved_sei_message(): a payload of a type that the standard reserves.
struct reserved_sei_message {
    std::vector<std::uint8_t> reserved_sei_message_payload_byte;

    friend ORV_UTILS_V4_EXPORT bool operator==(const reserved_sei_message&, const reserved_sei_message&);
};

/// filler_payload(), clause D.1.5: payload 3.
struct filler_payload {
    std::uint64_t ff_bytes = 0; ///< how many; no element

    friend ORV_UTILS_V4_EXPORT bool operator==(const filler_payload&, const filler_payload&);
};

/// user_data_registered_itu_t_t35(), clause D.1.6: payload 4.
struct user_data_registered_itu_t_t35 {
    std::uint8_t itu_t_t35_country_code = 0; ///< of Recommendation ITU-T T.35; 0xFF is followed by the extension
    std::uint8_t itu_t_t35_country_code_extension_byte = 0;
    std::vector<std::uint8_t> itu_t_t35_payload_byte;

    friend ORV_UTILS_V4_EXPORT bool operator==(const user_data_registered_itu_t_t35&,
                                               const user_data_registered_itu_t_t35&);
};

/// user_data_unregistered(), clause D.1.7: payload 5.
struct user_data_unregistered {
    std::array<std::uint8_t, 16> uuid_iso_iec_11578 = {};
    std::vector<std::uint8_t> user_data_payload_byte;

    friend ORV_UTILS_V4_EXPORT bool operator==(const user_data_unregistered&, const user_data_unregistered&);
};

} // namespace orv_utils_v4::h264
