#include "report/report_aggregates.h"

#include "show_rows.h"

namespace orv_h264 {

row_type type_of(const picture_row& row)
{
    row_type type = row_type::none;
    for (const row_unit& unit : row.units) {
        if (!unit.slice)
            continue;
        const bool b = *unit.slice == h264::slice_kind::B;
        const bool p = *unit.slice == h264::slice_kind::P || *unit.slice == h264::slice_kind::SP;
        const row_type of_unit = b ? row_type::b : p ? row_type::p : row_type::i;
        type = type == row_type::none ? of_unit : std::max(type, of_unit);
    }
    return type;
}

void frame_stretch::add(const frame_stretch& other)
{
    count += other.count;
    bytes += other.bytes;
    least = std::min(least, other.least);
    for (std::size_t type = 0; type < most.size(); ++type)
        most[type] = std::max(most[type], other.most[type]);
    keys += other.keys;
}

void second_stretch::add(const second_stretch& other)
{
    count += other.count;
    bits += other.bits;
    most = std::max(most, other.most);
}

void report_aggregates::add(const picture_row& row)
{
    const row_type type = type_of(row);
    frame_stretch one = {1, row.size, row.size, {}, row.key() ? 1U : 0U};
    one.most[static_cast<std::size_t>(type)] = row.size;
    frames.next().add(one);
    rate.add(row.unit_bytes + row.padding, row.duration,
             [this](double bits, std::uint64_t count) { add_seconds(bits, count); });
    picture_count& kind = kinds[{row.structure, row.nal_ref_idc, type}];
    ++kind.pictures;
    kind.bytes += row.size;
}

// Stretches grow with what is put in, so that even an endless second takes few steps.
void report_aggregates::add_seconds(double bits, std::uint64_t count)
{
    while (count > 0) {
        const std::uint64_t some = std::min(count, seconds.room());
        seconds.next().add({some, bits * static_cast<double>(some), bits});
        count -= some;
    }
}

json report_aggregates::stretches() const
{
    json of_frames = json::array();
    for (const frame_stretch& s : frames.all())
        of_frames.push_back({s.count, s.bytes, s.least, s.most[0], s.most[1], s.most[2], s.most[3], s.keys});
    json of_seconds = json::array();
    for (const second_stretch& s : seconds.all())
        of_seconds.push_back({s.count, rounded(s.bits, 0), rounded(s.most, 0)});
    return {{"frames_each", frames.each()},
            {"frames", std::move(of_frames)},
            {"seconds_each", seconds.each()},
            {"seconds", std::move(of_seconds)}};
}

json report_aggregates::pictures() const
{
    constexpr const char* types[] = {"I", "P", "B", ""};
    json list = json::array();
    for (const auto& [kind, count] : kinds)
        list.push_back({{"structure", structure_name(std::get<0>(kind))},
                        {"nal_ref_idc", std::get<1>(kind)},
                        {"type", types[static_cast<std::size_t>(std::get<2>(kind))]},
                        {"pictures", count.pictures},
                        {"bytes", count.bytes}});
    return list;
}

} // namespace orv_h264
