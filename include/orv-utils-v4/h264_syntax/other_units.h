/// @file
/// The RBSPs of a few elements or none: access unit delimiter, filler data, end of sequence and end of stream, H.264
/// clauses 7.3.2.4 to 7.3.2.7.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

/// access_unit_delimiter_rbsp(), clause 7.3.2.4: NAL unit type 9.
struct access_unit_delimiter_rbsp {
    std::uint8_t primary_pic_type = 0; ///< 0 to 7, Table 7-5: which slice types the primary coded picture may have

    friend ORV_UTILS_V4_EXPORT bool operator==(const access_unit_delimiter_rbsp&, const access_unit_delimiter_rbsp&);
};

/// end_of_seq_rbsp(), clause 7.3.2.5: NAL unit type 10. It has no bits, not even trailing ones.
struct end_of_seq_rbsp {
    friend ORV_UTILS_V4_EXPORT bool operator==(const end_of_seq_rbsp&, const end_of_seq_rbsp&);
};

/// end_of_stream_rbsp(), clause 7.3.2.6: NAL unit type 11. It has no bits, not even trailing ones.
struct end_of_stream_rbsp {
    friend ORV_UTILS_V4_EXPORT bool operator==(const end_of_stream_rbsp&, const end_of_stream_rbsp&);
};

/// filler_data_rbsp(), clause 7.3.2.7: NAL unit type 12.
struct filler_data_rbsp {
    std::uint64_t ff_bytes = 0; ///< how many times ff_byte comes

    friend ORV_UTILS_V4_EXPORT bool operator==(const filler_data_rbsp&, const filler_data_rbsp&);
};

} // namespace orv_utils_v4::h264
