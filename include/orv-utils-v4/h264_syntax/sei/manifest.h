/// @file
/// SEI payloads of H.264 Annex D on other SEI messages (200, 201).
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

/// What sei_manifest() says of one type of payload.
struct manifest_entry {
    std::uint16_t manifest_sei_payload_type = 0;
    std::uint8_t manifest_sei_description = 0; ///< 0 to 3

    friend ORV_UTILS_V4_EXPORT bool operator==(const manifest_entry&, const manifest_entry&);
};

/// sei_manifest(): payload 200.
struct sei_manifest {
    std::uint16_t manifest_num_sei_msg_types = 0;
    std::vector<manifest_entry> entries; ///< manifest_num_sei_msg_types

    friend ORV_UTILS_V4_EXPORT bool operator==(const sei_manifest&, const sei_manifest&);
};

/// The first bits of a payload that may come.
struct sei_prefix {
    std::uint16_t num_bits_in_prefix_indication_minus1 = 0;
    std::vector<std::uint8_t> sei_prefix_data_bit; ///< one a bit, num_bits_in_prefix_indication_minus1 + 1

    friend ORV_UTILS_V4_EXPORT bool operator==(const sei_prefix&, const sei_prefix&);
};

/// sei_prefix_indication(): payload 201.
struct sei_prefix_indication {
    std::uint16_t prefix_sei_payload_type = 0;
    std::uint8_t num_sei_prefix_indications_minus1 = 0;
    std::vector<sei_prefix> prefixes; ///< num_sei_prefix_indications_minus1 + 1

    friend ORV_UTILS_V4_EXPORT bool operator==(const sei_prefix_indication&, const sei_prefix_indication&);
};

} // namespace orv_utils_v4::h264
