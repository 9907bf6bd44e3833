/// @file
/// The NAL writer of the legacy interface, H.264 clause 7.3.1 and Annex B.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstddef>

/// Writes one unit to `out`: start code or length prefix, header byte, and the payload with emulation-prevention bytes.
/// The copy stops, without a word, when three bytes of room or fewer are left: `payload_size` * 3 / 2 + 16 bytes are
/// enough for certain. One or two zero bytes at the end of the payload are not escaped. A length that does not fit its
/// prefix is cut to the prefix's bits. Asserts "nal_length_size <= 4".
/// @param out where the unit goes
/// @param out_size the bytes of room there, 16 at least
/// @param payload the RBSP behind the header byte, outside of `out`
/// @param payload_size its bytes
/// @param nal_length_size 0 for Annex B, 1 to 4 for a big-endian length prefix of so many bytes
/// @param header the NAL unit header byte
/// @return the bytes written, framing included; -1 when `out_size` is below 16, with nothing written, and when the
///     header's forbidden bit is set, with the start code written
ORV_UTILS_V4_EXPORT int h264_nal_write(unsigned char* out, std::size_t out_size, unsigned char* payload,
                                       std::size_t payload_size, unsigned int nal_length_size, unsigned char header);
