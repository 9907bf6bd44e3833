// T6: Annex B to lengths of four bytes and back, a unit at a time in the same room.
#include "literal_loops.h"
#include "memory_pass.h"
#include "task.h"

#include <orv-utils-v4/h264.h>
#include <orv-utils-v4/h264_syntax.h>

#include <cstring>

namespace bench {

namespace {

using namespace brenik;

struct vector_loops {
    static void scan(h264_nal_reader& reader, unsigned char* start, unsigned char* end) { reader.scan(start, end); }
    static std::size_t decode(h264_nal_reader& reader, unsigned char* out, std::size_t size)
    {
        return reader.block_decode(out, size);
    }
    static std::size_t encode(h264_nal_writer& writer, unsigned char* data, std::size_t size, const h264_nal& nal)
    {
        return writer.block_encode(data, size, nal, 0);
    }
};

struct literal_loops {
    static constexpr auto scan = literal::scan;
    static constexpr auto decode = literal::block_decode;
    static std::size_t encode(h264_nal_writer& writer, unsigned char* data, std::size_t size, const h264_nal& nal)
    {
        return literal::block_encode(writer, data, size, nal, 0);
    }
};

/// A unit of Annex B, behind its length.
std::size_t put_unit(unsigned char* out, const unsigned char* unit, std::size_t size)
{
    for (std::size_t i = 0; i < 4; ++i)
        out[i] = static_cast<unsigned char>(size >> (24 - 8 * i) & 0xFF);
    copy_pass(out + 4, unit, size);
    return 4 + size;
}

/// The units between start codes, copied by the caller.
template <typename Loops>
std::uint64_t copied_to_length4(data_set& set)
{
    std::vector<unsigned char>& room = scratch_for(set);
    unsigned char* const end = set.annex_b.data() + set.annex_b_size;
    std::uint64_t bytes = 0;
    h264_nal_reader reader(nalfmt_annexb);
    Loops::scan(reader, set.annex_b.data(), end);
    while (reader.found) {
        const unsigned char* const unit = reader.nal_header;
        Loops::scan(reader, reader.next, end);
        const unsigned char* unit_end = reader.found ? reader.nal_start : end;
        while (unit_end[-1] == 0)
            --unit_end;
        bytes += put_unit(room.data(), unit, static_cast<std::size_t>(unit_end - unit));
    }
    return bytes;
}

template <typename Loops>
std::uint64_t copied_to_annex_b(data_set& set)
{
    static constexpr unsigned char start_code[] = {0, 0, 1};
    std::vector<unsigned char>& room = scratch_for(set);
    unsigned char* const end = set.length4.data() + set.length4_size;
    std::uint64_t bytes = 0;
    h264_nal_reader reader(nalfmt_length4);
    for (Loops::scan(reader, set.length4.data(), end); reader.found; Loops::scan(reader, reader.next, end)) {
        std::memcpy(room.data(), start_code, sizeof start_code);
        copy_pass(room.data() + sizeof start_code, reader.nal_header, reader.nal_length);
        bytes += sizeof start_code + reader.nal_length;
    }
    return bytes;
}

/// Each unit that the search finds, looked at while it is copied.
std::uint64_t framed_to_length4(data_set& set)
{
    namespace syntax = orv_utils_v4::h264;
    constexpr std::size_t at_once = 256;
    std::vector<unsigned char>& room = scratch_for(set);
    syntax::unit_range found[at_once];
    syntax::unit_search search(set.annex_b.data(), set.annex_b_size);
    std::uint64_t bytes = 0;
    for (std::size_t count = at_once; count == at_once;) {
        count = search.next(found, at_once);
        for (std::size_t i = 0; i < count; ++i)
            bytes += syntax::frame_escaped(set.annex_b.data() + found[i].offset, found[i].size, 4, false, room.data(),
                                           room.size());
    }
    return bytes;
}

std::uint64_t framed_to_annex_b(data_set& set)
{
    std::vector<unsigned char>& room = scratch_for(set);
    unsigned char* const end = set.length4.data() + set.length4_size;
    std::uint64_t bytes = 0;
    h264_nal_reader reader(nalfmt_length4);
    for (reader.scan(set.length4.data(), end); reader.found; reader.scan(reader.next, end))
        bytes +=
            orv_utils_v4::h264::frame_escaped(reader.nal_header, reader.nal_length, 0, false, room.data(), room.size());
    return bytes;
}

std::uint64_t literally_framed_to_length4(data_set& set)
{
    std::vector<unsigned char>& room = scratch_for(set);
    unsigned char* const end = set.annex_b.data() + set.annex_b_size;
    std::uint64_t bytes = 0;
    h264_nal_reader reader(nalfmt_annexb);
    literal::scan(reader, set.annex_b.data(), end);
    while (reader.found) {
        const unsigned char* const unit = reader.nal_header;
        literal::scan(reader, reader.next, end);
        const unsigned char* const unit_end = reader.found ? reader.nal_start : end;
        bytes += literal::frame_escaped(unit, static_cast<std::size_t>(unit_end - unit), false, room.data());
    }
    return bytes;
}

std::uint64_t literally_framed_to_annex_b(data_set& set)
{
    std::vector<unsigned char>& room = scratch_for(set);
    unsigned char* const end = set.length4.data() + set.length4_size;
    std::uint64_t bytes = 0;
    h264_nal_reader reader(nalfmt_length4);
    for (literal::scan(reader, set.length4.data(), end); reader.found; literal::scan(reader, reader.next, end))
        bytes += literal::frame_escaped(reader.nal_header, reader.nal_length, true, room.data());
    return bytes;
}

/// Through the RBSP, so that every escape is written anew.
template <typename Loops>
std::uint64_t rewritten(std::vector<unsigned char>& room, unsigned char* start, unsigned char* end,
                        h2645_common_nalfmt from, h2645_common_nalfmt to)
{
    const std::size_t half = room.size() / 2;
    std::uint64_t bytes = 0;
    h264_nal_reader reader(from);
    h264_nal_writer writer(room.data() + half, room.data() + half, room.data() + room.size(), to);
    for (Loops::scan(reader, start, end); reader.found; Loops::scan(reader, reader.next, end)) {
        const std::size_t size = Loops::decode(reader, room.data(), half);
        writer.setbuf(room.data() + half, room.data() + half, room.data() + room.size());
        bytes += Loops::encode(writer, room.data(), size, reader.nal);
    }
    return bytes;
}

template <typename Loops>
std::uint64_t rewritten_to_length4(data_set& set)
{
    return rewritten<Loops>(scratch_for(set), set.annex_b.data(), set.annex_b.data() + set.annex_b_size, nalfmt_annexb,
                            nalfmt_length4);
}

template <typename Loops>
std::uint64_t rewritten_to_annex_b(data_set& set)
{
    return rewritten<Loops>(scratch_for(set), set.length4.data(), set.length4.data() + set.length4_size, nalfmt_length4,
                            nalfmt_annexb);
}

} // namespace

std::vector<task> reframe_tasks()
{
    const auto annex_b_size = [](const data_set& set) { return set.annex_b_size; };
    const auto length4_size = [](const data_set& set) { return set.length4_size; };
    const std::vector<std::string> data = {"large", "8k", "70", "zeros", "0to3", "000104", "0000xx"};
    const contender memory = {side::memory, "memcpy", copy_payloads};
    const auto both = [&](auto ours, auto by_literal_loops, const char* name = "vector") {
        return std::vector<contender>{{side::ours, name, ours}, {side::scalar, "literal", by_literal_loops}, memory};
    };
    return {{"T6 to length4, copied", annex_b_size, data,
             both(copied_to_length4<vector_loops>, copied_to_length4<literal_loops>) + peers::to_length4()},
            {"T6 to Annex B, copied", length4_size, data,
             both(copied_to_annex_b<vector_loops>, copied_to_annex_b<literal_loops>) + peers::to_annex_b()},
            {"T6 to length4, as it stands", annex_b_size, data,
             both(framed_to_length4, literally_framed_to_length4, "frame_escaped") + peers::to_length4()},
            {"T6 to Annex B, as it stands", length4_size, data,
             both(framed_to_annex_b, literally_framed_to_annex_b, "frame_escaped") + peers::to_annex_b()},
            {"T6 to length4, rewritten", annex_b_size, data,
             both(rewritten_to_length4<vector_loops>, rewritten_to_length4<literal_loops>) + peers::to_length4()},
            {"T6 to Annex B, rewritten", length4_size, data,
             both(rewritten_to_annex_b<vector_loops>, rewritten_to_annex_b<literal_loops>) + peers::to_annex_b()}};
}

} // namespace bench
