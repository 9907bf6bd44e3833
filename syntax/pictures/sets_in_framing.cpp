// Parameter sets and whole pictures in a framing, with those in force before IDR pictures.
#include <orv-utils-v4/h264_syntax/access_unit.h>
#include <orv-utils-v4/h264_syntax/parameter_set_store.h>

#include "pictures/set_reading.h"

#include <algorithm>

namespace orv_utils_v4::h264 {

/// The units of a picture, wherever they are told.
struct unit_row {
    const void* first;
    std::size_t count;
    unit_view (*view)(const void* first, std::size_t i);

    unit_view operator[](std::size_t i) const noexcept { return view(first, i); }
};

namespace {

constexpr unsigned idr_type = 5;
constexpr unsigned delimiter_type = 9;

/// Writes units into a room, and counts on beyond it.
class unit_framer {
public:
    unit_framer(framing frames, unsigned char* bytes, std::size_t size) noexcept : how(frames), out(bytes), room(size)
    {
    }

    void put(const unit_view& unit) noexcept
    {
        if (unit.size == 0)
            return;
        if (how == framing::annex_b)
            put_number(1, 4);
        else
            put_length(unit.size);
        if (at < room)
            std::copy_n(unit.bytes, std::min(unit.size, room - at), out + at);
        at += unit.size;
    }
    void put(const parameter_set_list& sets) noexcept
    {
        for (const unit_view& set : sets)
            put(set);
    }
    framed_size end() const noexcept
    {
        return {too_large ? reason::too_large : at > room ? reason::no_room : reason::none, at};
    }

private:
    void put_length(std::size_t size) noexcept
    {
        const auto prefix_size = static_cast<unsigned>(how);
        too_large = too_large || static_cast<std::uint64_t>(size) >> 8 * prefix_size != 0;
        put_number(size, prefix_size);
    }
    void put_number(std::size_t value, unsigned size) noexcept
    {
        for (; size > 0; --size, ++at)
            if (at < room)
                out[at] = static_cast<unsigned char>(value >> 8 * (size - 1));
    }

    framing how;
    unsigned char* out;
    std::size_t room;
    std::size_t at = 0;
    bool too_large = false;
};

/// The ids of the sets that came so far in a picture.
class sets_so_far {
public:
    void take(const unit_view& unit) noexcept
    {
        nal_unit set;
        outcome ignored;
        read_start(set, unit, ignored);
        const set_ids ids = ids_of(set);
        if (ids.sps_id >= parameter_sets::sps_ids || ids.id >= parameter_sets::pps_ids)
            return;
        if (unit.type() == pps_type)
            sps_of_pps[ids.id] = static_cast<unsigned char>(ids.sps_id + 1);
        else if (unit.type() != sps_extension_type)
            (unit.type() == sps_type ? sps : subset_sps)[ids.id] = true;
    }
    /// They have what the slice needs. Without any PPS, its reading ends at the id of that.
    bool suffice(const unit_view& slice) const noexcept
    {
        nal_unit unit;
        outcome result;
        read_start(unit, slice, result);
        if (result.failure.why != reason::no_pps)
            return true;
        if (result.failure.value >= parameter_sets::pps_ids || sps_of_pps[result.failure.value] == 0)
            return false;
        const std::size_t sps_id = sps_of_pps[result.failure.value] - std::size_t{1};
        return slice.type() == 20 || slice.type() == 21 ? subset_sps[sps_id] : sps[sps_id];
    }

private:
    bool sps[parameter_sets::sps_ids] = {};
    bool subset_sps[parameter_sets::sps_ids] = {};
    unsigned char sps_of_pps[parameter_sets::pps_ids] = {}; // its seq_parameter_set_id + 1; 0 is no PPS
};

unit_row row_of(const unit_view* units, std::size_t count) noexcept
{
    return {units, count, [](const void* first, std::size_t i) { return static_cast<const unit_view*>(first)[i]; }};
}

unit_row row_of(const access_unit& unit) noexcept
{
    return {unit.parts.data(), unit.parts.size(), [](const void* first, std::size_t i) {
                const unit_place& place = static_cast<const access_unit_part*>(first)[i].place;
                return unit_view{place.bytes, place.size};
            }};
}

bool carries_its_sets(const unit_row& units) noexcept
{
    sets_so_far sets;
    for (std::size_t i = 0; i < units.count; ++i) {
        if (is_kept_set(units[i].type()))
            sets.take(units[i]);
        else if (is_slice(units[i].type()) && !sets.suffice(units[i]))
            return false;
    }
    return true;
}

/// The place of the first slice.
std::size_t find_slice(const unit_row& units) noexcept
{
    std::size_t i = 0;
    while (i < units.count && !is_slice(units[i].type()))
        ++i;
    return i;
}

bool has_idr_slice(const unit_row& units) noexcept
{
    std::size_t i = 0;
    while (i < units.count && units[i].type() != idr_type)
        ++i;
    return i < units.count;
}

} // namespace

bool carries_its_sets(const unit_view* units, std::size_t count) noexcept
{
    return carries_its_sets(row_of(units, count));
}

bool carries_its_sets(const access_unit& unit) noexcept
{
    return carries_its_sets(row_of(unit));
}

framed_size write(const parameter_set_list& sets, framing how, unsigned char* out, std::size_t room) noexcept
{
    unit_framer framer(how, out, room);
    framer.put(sets);
    return framer.end();
}

// One of its kind and id is kept, which is written elsewhere: in front, or in a record.
bool parameter_set_store::stood_for(const unit_view& unit, in_band_sets sets) noexcept
{
    if (!is_kept_set(unit.type()))
        return false;
    nal_unit set;
    outcome ignored;
    read_start(set, unit, ignored);
    const set_ids ids = ids_of(set);
    const kept_set* const kept = slot_of(unit.type(), ids.id);
    if (kept == nullptr || kept->bytes.empty() || sets != in_band_sets::left_out)
        return kept != nullptr && !kept->bytes.empty();
    return unit.type() != subset_sps_type && !spss[kept->sps_id].bytes.empty();
}

framed_size parameter_set_store::write_row(const unit_row& units, framing how, in_band_sets sets, unsigned char* out,
                                           std::size_t room) noexcept
{
    const std::size_t slices = find_slice(units);
    for (const bool pps : {false, true}) { // so that a PPS is read with its SPS, wherever that stands
        for (std::size_t i = 0; i < slices; ++i) {
            if ((units[i].type() == pps_type) == pps)
                push(units[i]);
        }
    }
    const bool put_in = sets == in_band_sets::before_idr && has_idr_slice(units) && !carries_its_sets(units);

    unit_framer framer(how, out, room);
    std::size_t i = 0;
    for (; i < units.count && (units[i].size == 0 || units[i].type() == delimiter_type); ++i)
        framer.put(units[i]);
    if (put_in)
        framer.put(all());
    for (; i < units.count; ++i) {
        const bool elsewhere = sets == in_band_sets::left_out || (put_in && i < slices);
        if (!elsewhere || !stood_for(units[i], sets))
            framer.put(units[i]);
    }
    const framed_size size = framer.end();
    for (i = slices; i < units.count && size.why == reason::none; ++i)
        push(units[i]);
    return size;
}

framed_size parameter_set_store::write_picture(const unit_view* units, std::size_t count, framing how,
                                               in_band_sets sets, unsigned char* out, std::size_t room) noexcept
{
    return write_row(row_of(units, count), how, sets, out, room);
}

framed_size parameter_set_store::write_picture(const access_unit& unit, framing how, in_band_sets sets,
                                               unsigned char* out, std::size_t room) noexcept
{
    return write_row(row_of(unit), how, sets, out, room);
}

} // namespace orv_utils_v4::h264
