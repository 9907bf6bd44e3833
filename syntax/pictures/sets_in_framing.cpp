// Parameter sets and whole pictures in a framing, with those in force before IDR pictures.
#include <orv-utils-v4/h264_syntax/parameter_set_store.h>

#include "pictures/set_reading.h"

#include <algorithm>

namespace orv_utils_v4::h264 {

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
        while (size-- > 0) {
            if (at < room)
                out[at] = static_cast<unsigned char>(value >> 8 * size);
            ++at;
        }
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

/// The place of the first slice.
const unit_view* find_slice(const unit_view* units, const unit_view* fence) noexcept
{
    return std::find_if(units, fence, [](const unit_view& unit) { return is_slice(unit.type()); });
}

} // namespace

bool carries_its_sets(const unit_view* units, std::size_t count) noexcept
{
    sets_so_far sets;
    return std::all_of(units, units + count, [&](const unit_view& unit) {
        if (is_kept_set(unit.type()))
            sets.take(unit);
        return !is_slice(unit.type()) || sets.suffice(unit);
    });
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

framed_size parameter_set_store::write_picture(const unit_view* units, std::size_t count, framing how,
                                               in_band_sets sets, unsigned char* out, std::size_t room) noexcept
{
    const unit_view* const fence = units + count;
    const unit_view* const slices = find_slice(units, fence);
    std::for_each(units, slices, [&](const unit_view& unit) { push(unit); });
    const bool idr = std::any_of(slices, fence, [](const unit_view& unit) { return unit.type() == idr_type; });
    const bool put_in = sets == in_band_sets::before_idr && idr && !carries_its_sets(units, count);

    unit_framer framer(how, out, room);
    const unit_view* unit = units;
    for (; unit != fence && (unit->size == 0 || unit->type() == delimiter_type); ++unit)
        framer.put(*unit);
    if (put_in)
        framer.put(all());
    for (; unit != fence; ++unit) {
        const bool elsewhere = sets == in_band_sets::left_out || (put_in && unit < slices);
        if (!elsewhere || !stood_for(*unit, sets))
            framer.put(*unit);
    }
    const framed_size size = framer.end();
    if (size.why == reason::none)
        std::for_each(slices, fence, [&](const unit_view& behind) { push(behind); });
    return size;
}

} // namespace orv_utils_v4::h264
