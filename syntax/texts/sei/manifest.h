// The texts of the SEI payloads on other SEI messages, H.264 clause D.1, payloads 200 and 201.
#pragma once

#include "coders/coder.h"

#include <orv-utils-v4/h264_syntax/sei/manifest.h>

namespace orv_utils_v4::h264 {

// H.264 D.1, payload 200
template <class Coder>
void code(Coder& c, in<Coder, sei_manifest>& x)
{
    const auto here = c.structure("sei_manifest");
    c.u(16, "manifest_num_sei_msg_types", x.manifest_num_sei_msg_types);
    c.count("manifest_sei_payload_type", x.entries, x.manifest_num_sei_msg_types);
    for (std::uint32_t i = 0; i < x.entries.size() && c.going(); ++i) {
        c.u(16, {"manifest_sei_payload_type", i}, x.entries[i].manifest_sei_payload_type);
        c.u(8, {"manifest_sei_description", i}, x.entries[i].manifest_sei_description, 0, 3);
    }
}

// H.264 D.1, payload 201
template <class Coder>
void code(Coder& c, in<Coder, sei_prefix_indication>& x)
{
    const auto here = c.structure("sei_prefix_indication");
    c.u(16, "prefix_sei_payload_type", x.prefix_sei_payload_type);
    c.u(8, "num_sei_prefix_indications_minus1", x.num_sei_prefix_indications_minus1);
    c.count("num_bits_in_prefix_indication_minus1", x.prefixes, x.num_sei_prefix_indications_minus1 + std::uint64_t{1});
    for (std::uint32_t i = 0; i < x.prefixes.size() && c.going(); ++i) {
        auto& prefix = x.prefixes[i];
        c.u(16, {"num_bits_in_prefix_indication_minus1", i}, prefix.num_bits_in_prefix_indication_minus1);
        c.count({"sei_prefix_data_bit", i}, prefix.sei_prefix_data_bit,
                prefix.num_bits_in_prefix_indication_minus1 + std::uint64_t{1});
        for (std::uint32_t j = 0; j < prefix.sei_prefix_data_bit.size() && c.going(); ++j)
            c.u(1, {"sei_prefix_data_bit", i, j}, prefix.sei_prefix_data_bit[j]);
        while (!c.byte_aligned())
            c.f(1, "byte_alignment_bit_equal_to_one", 1);
    }
}

} // namespace orv_utils_v4::h264
