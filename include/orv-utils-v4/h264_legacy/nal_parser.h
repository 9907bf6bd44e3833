/// @file
/// The NAL scanner of the legacy interface: one call finds a unit, decodes its header and copies its RBSP. H.264 clause
/// 7.3.1 and Annex B; the length prefixes of ISO/IEC 14496-15.
#pragma once

#include <orv-utils-v4/export.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>

/// What h264_nal_parser_scan() found. It owns nothing.
struct h264_nal_parser_state {
    std::uint8_t found = 0;                       ///< 1 when the latest scan extracted a unit
    std::uint8_t overflow = 0;                    ///< 1 when the output buffer was too small and bytes were dropped
    std::uint8_t nal_ref_idc = 0;                 ///< 0 to 3
    std::uint8_t nal_unit_type = 0;               ///< 0 to 31
    unsigned char* nal = nullptr;                 ///< the RBSP behind the header byte: the caller's output buffer
    unsigned char* nal_fence = nullptr;           ///< one past its last byte
    const unsigned char* raw_nal = nullptr;       ///< the first byte of the unit's 00 00 01 or length prefix
    const unsigned char* raw_nal_fence = nullptr; ///< one past the unit's last byte in the input
};

/// Finds the next unit of [`s`, `sf`) and copies its RBSP without emulation-prevention bytes to `out`. What does not
/// fit is dropped (`overflow`); the unit is still scanned to its end. A scan that finds nothing leaves `found` 0; a
/// start code before a header with the forbidden bit is passed over, a length-prefixed unit with one is skipped. A
/// length of 0, above 16777214 or past `sf` gives up on the range. Three bytes 00 00 00, 00 00 01 or 00 00 02 end a
/// unit, a length-prefixed one too.
/// @param hp takes what was found; keep it from call to call or not
/// @param out where the RBSP goes
/// @param out_size the bytes of room there
/// @param s where to begin
/// @param sf the end of the input, and of a unit in Annex B when no start code follows
/// @param nal_length_size 0 for Annex B, 1 to 4 for a big-endian length prefix of so many bytes
/// @return where the next scan should begin
ORV_UTILS_V4_EXPORT const unsigned char* h264_nal_parser_scan(h264_nal_parser_state* hp, unsigned char* out,
                                                              std::size_t out_size, const unsigned char* s,
                                                              const unsigned char* sf, unsigned int nal_length_size);

/// A short name of NAL unit types 1 to 12, H.264 Table 7-1; null for any other. Never to be freed.
ORV_UTILS_V4_EXPORT const char* h264_nal_parser_unit_type_to_str(unsigned char type);

/// Prints a line for every unit of [`s`, `sf`), and up to `dump_bytes` bytes of its RBSP in hex, 16 a line. The RBSP is
/// decoded into 64 KiB on the stack.
/// @param f where to print; null for the standard error stream
/// @param s the first byte of the buffer
/// @param sf one past its last byte
/// @param nal_length_size as for h264_nal_parser_scan()
/// @param dump_bytes how many bytes of each RBSP to print; none when below 1
ORV_UTILS_V4_EXPORT void h264_nal_dump_dbg(std::FILE* f, const unsigned char* s, const unsigned char* sf,
                                           unsigned int nal_length_size, int dump_bytes);
