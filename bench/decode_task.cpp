// T2: each unit of an Annex B stream without its emulation-prevention bytes, one at a time in the same room.
#include "literal_loops.h"
#include "memory_pass.h"
#include "task.h"

#include <orv-utils-v4/h264.h>
#include <orv-utils-v4/h264_legacy.h>

namespace bench {

namespace {

template <typename Scan, typename Decode>
std::uint64_t decode_units(data_set& set, Scan scan, Decode decode)
{
    std::vector<unsigned char>& room = scratch_for(set);
    unsigned char* const end = set.annex_b.data() + set.annex_b_size;
    std::uint64_t bytes = 0;
    brenik::h264_nal_reader reader(brenik::nalfmt_annexb);
    for (scan(reader, set.annex_b.data(), end); reader.found; scan(reader, reader.next, end))
        bytes += decode(reader, room.data(), room.size());
    return bytes;
}

std::uint64_t decode_by_reader(data_set& set)
{
    using brenik::h264_nal_reader;
    return decode_units(
        set, [](h264_nal_reader& reader, unsigned char* start, unsigned char* end) { reader.scan(start, end); },
        [](h264_nal_reader& reader, unsigned char* out, std::size_t size) { return reader.block_decode(out, size); });
}

/// In the two passes that the reader's contract asks for.
std::uint64_t by_literal_reader(data_set& set)
{
    return decode_units(set, literal::scan, literal::block_decode);
}

template <typename Scan>
std::uint64_t scan_units(data_set& set, Scan scan)
{
    std::vector<unsigned char>& room = scratch_for(set);
    const unsigned char* const end = set.annex_b.data() + set.annex_b_size;
    std::uint64_t bytes = 0;
    h264_nal_parser_state unit;
    for (const unsigned char* p = scan(&unit, room.data(), room.size(), set.annex_b.data(), end); unit.found != 0;
         p = scan(&unit, room.data(), room.size(), p, end))
        bytes += static_cast<std::uint64_t>(unit.nal_fence - unit.nal);
    return bytes;
}

std::uint64_t by_legacy_scan(data_set& set)
{
    return scan_units(set,
                      [](h264_nal_parser_state* unit, unsigned char* out, std::size_t size, const unsigned char* start,
                         const unsigned char* end) { return h264_nal_parser_scan(unit, out, size, start, end, 0); });
}

std::uint64_t decode_by_literal_scan(data_set& set)
{
    return scan_units(set, literal::nal_parser_scan);
}

} // namespace

std::vector<task> decode_tasks()
{
    const auto bytes = [](const data_set& set) { return set.annex_b_size; };
    const contender memory = {side::memory, "memcpy", copy_payloads};
    return {{"T2 decode reader", bytes, data_set_names(),
             std::vector<contender>{
                 {side::ours, "reader", decode_by_reader}, {side::scalar, "literal", by_literal_reader}, memory} +
                 peers::decode()},
            {"T2 decode legacy", bytes, data_set_names(),
             std::vector<contender>{
                 {side::ours, "legacy", by_legacy_scan}, {side::scalar, "literal", decode_by_literal_scan}, memory} +
                 peers::decode()}};
}

} // namespace bench
