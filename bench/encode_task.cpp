// T3: payloads with emulation-prevention bytes, framed for Annex B, one at a time in the same room.
#include "literal_loops.h"
#include "memory_pass.h"
#include "task.h"

#include <orv-utils-v4/h264.h>
#include <orv-utils-v4/h264_legacy.h>

namespace bench {

namespace {

template <typename Write>
std::uint64_t each_unit(data_set& set, Write write)
{
    std::uint64_t bytes = 0;
    for (const unit_place& unit : set.units)
        bytes += write(set.payloads.data() + unit.offset, unit.size, unit.header);
    return bytes;
}

template <typename Encode>
std::uint64_t write_units(data_set& set, Encode encode)
{
    std::vector<unsigned char>& room = scratch_for(set);
    brenik::h264_nal_writer writer(room.data(), room.data(), room.data() + room.size(), brenik::nalfmt_annexb);
    return each_unit(set, [&](unsigned char* payload, std::size_t size, unsigned char header) {
        brenik::h264_nal nal;
        nal.decode_header(header);
        writer.setbuf(room.data(), room.data(), room.data() + room.size());
        return encode(writer, payload, size, nal);
    });
}

std::uint64_t by_writer(data_set& set)
{
    return write_units(set, [](brenik::h264_nal_writer& writer, unsigned char* payload, std::size_t size,
                               const brenik::h264_nal& nal) { return writer.block_encode(payload, size, nal, 0); });
}

std::uint64_t by_literal_writer(data_set& set)
{
    return write_units(
        set, [](brenik::h264_nal_writer& writer, unsigned char* payload, std::size_t size,
                const brenik::h264_nal& nal) { return literal::block_encode(writer, payload, size, nal, 0); });
}

std::uint64_t by_legacy_write(data_set& set)
{
    std::vector<unsigned char>& room = scratch_for(set);
    return each_unit(set, [&](unsigned char* payload, std::size_t size, unsigned char header) {
        return static_cast<std::uint64_t>(h264_nal_write(room.data(), room.size(), payload, size, 0, header));
    });
}

std::uint64_t by_literal_write(data_set& set)
{
    std::vector<unsigned char>& room = scratch_for(set);
    return each_unit(set, [&](const unsigned char* payload, std::size_t size, unsigned char header) {
        return static_cast<std::uint64_t>(literal::nal_write(room.data(), room.size(), payload, size, header));
    });
}

} // namespace

std::vector<task> encode_tasks()
{
    const auto bytes = [](const data_set& set) { return set.payloads.size(); };
    const std::vector<contender> beside =
        std::vector<contender>{{side::memory, "memcpy", copy_payloads}} + peers::encode();
    return {
        {"T3 encode writer", bytes, data_set_names(),
         std::vector<contender>{{side::ours, "writer", by_writer}, {side::scalar, "literal", by_literal_writer}} +
             beside},
        {"T3 encode legacy", bytes, data_set_names(),
         std::vector<contender>{{side::ours, "legacy", by_legacy_write}, {side::scalar, "literal", by_literal_write}} +
             beside}};
}

} // namespace bench
