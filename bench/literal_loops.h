// The readers and writers once more, with the byte loops as H.264's clauses word them: one byte, or one comparison of
// three, at a time. They work on the same objects and leave the same members, stand beside every figure, and make the
// data sets.
#pragma once

#include <orv-utils-v4/h264.h>
#include <orv-utils-v4/h264_legacy.h>

#include <cstddef>

namespace bench::literal {

/// h264_nal_reader::scan() for Annex B, and for lengths of four bytes.
void scan(brenik::h264_nal_reader& reader, unsigned char* start, unsigned char* end);

/// h264_nal_reader::block_decode()
std::size_t block_decode(brenik::h264_nal_reader& reader, unsigned char* out, std::size_t size);

/// h264_nal_writer::block_encode() for Annex B, and for lengths of four bytes.
std::size_t block_encode(brenik::h264_nal_writer& writer, const unsigned char* data, std::size_t length,
                         const brenik::h264_nal& nal, unsigned int zero_bytes);

/// orv_utils_v4::h264::frame_escaped() for Annex B with start codes of three bytes, and for lengths of four; `out` is
/// large enough.
std::size_t frame_escaped(const unsigned char* unit, std::size_t size, bool is_annex_b, unsigned char* out);

/// h264_nal_parser_scan() for Annex B.
const unsigned char* nal_parser_scan(h264_nal_parser_state* hp, unsigned char* out, std::size_t out_size,
                                     const unsigned char* s, const unsigned char* sf);

/// h264_nal_write() for Annex B; `out` is large enough.
int nal_write(unsigned char* out, std::size_t out_size, const unsigned char* payload, std::size_t payload_size,
              unsigned char header);

} // namespace bench::literal
