// T7: the syntax library beside the classes of the newer interface, which read less, and beside the peers: an SPS with
// VUI and HRD parameters, a slice header that goes little beyond the lists, all headers of a stream whole, and its
// pictures.
#include "syntax_samples.h"
#include "task.h"

#include <orv-utils-v4/h264.h>
#include <orv-utils-v4/h264_syntax.h>

namespace bench {

namespace {

namespace syntax = orv_utils_v4::h264;

constexpr std::uint64_t repetitions = 100000;

std::uint64_t read_sps(data_set&)
{
    const std::vector<unsigned char>& bytes = sps_sample();
    syntax::nal_unit unit;
    syntax::outcome result;
    std::uint64_t sound = 0;
    for (std::uint64_t i = 0; i < repetitions; ++i) {
        syntax::read(unit, bytes.data(), bytes.size(), {}, result);
        sound += result.sound() ? 1U : 0U;
    }
    return sound;
}

std::uint64_t parse_sps(data_set&)
{
    const std::vector<unsigned char>& bytes = sps_sample();
    std::uint64_t sound = 0;
    for (std::uint64_t i = 0; i < repetitions; ++i) {
        brenik::h2645_common_bitreader br(bytes.data() + 1, bytes.data() + bytes.size());
        brenik::h264_nal_sps sps;
        sound += sps.parse(br) ? 1U : 0U;
    }
    return sound;
}

std::uint64_t read_slice(data_set&)
{
    const std::vector<unsigned char>& bytes = slice_sample();
    syntax::parameter_sets sets;
    const syntax::seq_parameter_set_rbsp sps = sample_sps();
    const syntax::pic_parameter_set_rbsp pps = sample_pps();
    sets.sps[0] = &sps;
    sets.pps[0] = &pps;
    syntax::unit_context context;
    context.sets = &sets;
    syntax::nal_unit unit;
    syntax::outcome result;
    std::uint64_t sound = 0;
    for (std::uint64_t i = 0; i < repetitions; ++i) {
        syntax::read(unit, bytes.data(), bytes.size(), context, result);
        sound += result.sound() ? 1U : 0U;
    }
    return sound;
}

std::uint64_t parse_slice(data_set&)
{
    brenik::h2645_common_base_store<brenik::h264_nal_sps> sps_store;
    brenik::h2645_common_base_store<brenik::h264_nal_pps> pps_store;
    const std::vector<unsigned char>& sps_bytes = sps_sample();
    brenik::h2645_common_bitreader sps_reader(sps_bytes.data() + 1, sps_bytes.data() + sps_bytes.size());
    brenik::h264_nal_sps sps;
    sps.parse(sps_reader);
    sps_store.insert_or_assign(0, sps);
    const std::vector<unsigned char>& pps_bytes = pps_sample();
    brenik::h2645_common_bitreader pps_reader(pps_bytes.data() + 1, pps_bytes.data() + pps_bytes.size());
    brenik::h264_nal_pps pps;
    pps.parse(pps_reader, sps_store);
    pps_store.insert_or_assign(0, pps);
    const std::vector<unsigned char>& bytes = slice_sample();
    brenik::h264_nal header;
    header.decode_header(bytes[0]);
    std::uint64_t sound = 0;
    for (std::uint64_t i = 0; i < repetitions; ++i) {
        brenik::h2645_common_bitreader br(bytes.data() + 1, bytes.data() + bytes.size());
        brenik::h264_nal_slice_header slice;
        slice.parse(br, sps_store, pps_store, header);
        sound += slice.valid ? 1U : 0U;
    }
    return sound;
}

bool is_counted(unsigned nal_unit_type)
{
    return nal_unit_type == 1 || nal_unit_type == 5 || nal_unit_type == 7 || nal_unit_type == 8;
}

/// Counts the sound parameter sets and slices.
class sound_units : public syntax::unit_sink {
public:
    void take(const syntax::unit_reading& reading) override
    {
        sound += is_counted(reading.unit.header.nal_unit_type) && !reading.result.failure ? 1U : 0U;
    }

    std::uint64_t sound = 0;
};

/// The same out of access units.
class sound_parts : public syntax::access_unit_sink, public syntax::picture_sink {
public:
    void take(const syntax::access_unit& unit) override { pictures.take(unit, *this); }
    void access_unit_came(const syntax::access_unit& unit, const syntax::picture*) override
    {
        for (const syntax::access_unit_part& part : unit.parts)
            sound += is_counted(part.header.nal_unit_type) && !part.failure ? 1U : 0U;
    }

    syntax::pictures pictures;
    std::uint64_t sound = 0;
};

/// Gives the units of the stream, which lie in memory, to `push`.
template <class Push>
void push_all(const data_set& set, Push push)
{
    constexpr std::size_t prefix_size = 4;
    for (std::size_t at = 0; at < set.length4_size;) {
        const unsigned char* const prefix = set.length4.data() + at;
        const std::size_t size = std::size_t{prefix[0]} << 24 | std::size_t{prefix[1]} << 16 |
                                 std::size_t{prefix[2]} << 8 | std::size_t{prefix[3]};
        push(syntax::unit_place{prefix + prefix_size, size, at + prefix_size, 0});
        at += prefix_size + size;
    }
}

std::uint64_t read_all(data_set& set)
{
    syntax::stream stream;
    sound_units units;
    push_all(set, [&](const syntax::unit_place& place) { stream.push(place, units); });
    stream.flush(units);
    return units.sound;
}

std::uint64_t read_pictures(data_set& set)
{
    syntax::access_units units;
    sound_parts parts;
    push_all(set, [&](const syntax::unit_place& place) { units.push(place, parts, true); });
    units.flush(parts);
    parts.pictures.flush(parts);
    return parts.sound;
}

std::uint64_t repeated(const data_set&)
{
    return repetitions;
}

} // namespace

std::vector<task> syntax_tasks()
{
    return {{"T7 SPS with VUI and HRD",
             repeated,
             {"70"},
             std::vector<contender>{{side::ours, "syntax", read_sps}, {side::peer, "exact class", parse_sps}},
             false},
            {"T7 slice header beside its class, which stops at the lists",
             repeated,
             {"70"},
             std::vector<contender>{{side::ours, "syntax", read_slice}, {side::peer, "exact class", parse_slice}},
             false},
            {"T7 whole headers",
             [](const data_set& set) { return set.units.size(); },
             {"large", "8k", "70"},
             std::vector<contender>{{side::ours, "syntax", read_all}} + peers::headers()},
            {"T7 pictures beside their headers",
             [](const data_set& set) { return set.units.size(); },
             {"large", "8k", "70"},
             std::vector<contender>{{side::ours, "pictures", read_pictures}, {side::peer, "headers alone", read_all}}}};
}

} // namespace bench
