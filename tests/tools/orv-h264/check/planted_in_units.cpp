#include "support/planted_violation.h"

namespace {

using namespace orv_utils_v4::h264;
using support::planted_violation;
using bytes = std::vector<unsigned char>;

/// A sound stream of one IDR picture, and a unit behind it: its header byte, and the bytes behind that.
bytes with_unit(unsigned header, const bytes& payload)
{
    made_stream stream;
    stream.add_sets().add(idr()).add_bytes(header, payload);
    return stream.bytes;
}

/// A stream that ends in a PPS with the id 1 and these bytes.
bytes with_pps(const bytes& more)
{
    made_stream stream;
    stream.add_sets().add(pps_unit(1));
    stream.bytes.insert(stream.bytes.end(), more.begin(), more.end());
    return stream.bytes;
}

constexpr unsigned sps_header = 0x67;

constexpr planted_violation planted[] = {
    {"an SPS of two bytes", "unit-can-be-read@3 constraint_set0_flag, unit-ends-with-stop-bit@3 rbsp_stop_one_bit",
     [] {
         return with_unit(sps_header, {77, 0});
     }},
    {"a word of CABAC behind a PPS", "unit-zero-words-of-cabac@2",
     [] {
         return with_pps({0, 0, 3});
     }},
    {"a delimiter without a stop bit", "unit-ends-with-stop-bit@3 rbsp_stop_one_bit",
     [] { return with_unit(9, {0xE0}); }},
    {"a byte behind a delimiter", "unit-ends-there@3",
     [] {
         return with_unit(9, {0x10, 0x11});
     }},
    {"a PPS with nal_ref_idc 0", "unit-set-is-kept@3 nal_ref_idc",
     [] {
         return with_unit(8, {0xCE, 0x38, 0x80});
     }},
    {"an SEI unit with nal_ref_idc 1", "unit-other-is-not-kept@3 nal_ref_idc",
     [] {
         return with_unit(0x26, {13, 1, 0xC0, 0x80});
     }},
    {"nal_unit_type 23", "unit-type-specified@3 nal_unit_type", [] { return with_unit(0x77, {0x80}); }},
    {"a forbidden bit", "value-in-range@3 forbidden_zero_bit", [] { return with_unit(0x89, {0xF0}); }},
    {"bytes before the first unit", "byte-in-a-unit",
     [] {
         made_stream stream;
         stream.add_sets();
         stream.bytes.insert(stream.bytes.begin(), {0x47, 0x11});
         return stream.bytes;
     }},
    {"bytes behind zeros that begin no unit", "byte-in-a-unit",
     [] {
         return with_pps({0, 0, 0, 2});
     }},
    {"a unit above the limit", "unit-fits-limit", [] { return with_unit(9, bytes(100, 0xFF)); }, framing::annex_b, 99},
    {"a length of 8 before 4 bytes", "unit-whole, unit-ends-there@0",
     [] { return bytes{0, 0, 0, 8, 9, 0x10, 0xFF, 0xFF}; }, framing::length_4},
    {"three bytes that look like damage", "unit-escapes-sound@3",
     [] {
         return with_unit(31, {0xFF, 0, 0, 2, 0x80});
     }},
    {"an escape where none is needed", "unit-escapes-sound@3",
     [] {
         return with_unit(31, {0xFF, 0, 0, 3, 4});
     }},
    {"a zero behind a unit with a length", "unit-last-byte@0", [] { return bytes{0, 0, 0, 3, 31, 0xF0, 0}; },
     framing::length_4},
    {"an escape at the end, and those that are needed", "",
     [] {
         return with_unit(31, {0, 0, 3, 0, 0, 3, 1, 0, 0, 3, 2, 0, 0, 3, 3, 0, 0, 3});
     }},
    {"nothing", "stream-holds-units", [] { return bytes(); }},
    {"nothing but zeros", "stream-holds-units", [] { return bytes(100); }},
};

const support::planted_table here("units", planted);

} // namespace
