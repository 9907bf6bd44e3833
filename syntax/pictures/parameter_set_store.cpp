// The store: what a parameter set has to be to be kept, and those in force in their order.
#include <orv-utils-v4/h264_syntax/parameter_set_store.h>

#include "pictures/set_reading.h"
#include "unit_bytes.h"

#include <algorithm>
#include <utility>

namespace orv_utils_v4::h264 {

namespace {

constexpr std::uint32_t chroma_444 = 3;

/// What stands behind the last element is what may stand there.
bool ends_well(ending how) noexcept
{
    return how == ending::sound || how == ending::cabac_zero_words;
}

/// Reads a PPS as it is with an SPS of 4:4:4, which brings it more 8x8 lists.
/// @param sps_id that it names, below 32
void read_444_pps(nal_unit& to, const clean_bytes& bytes, std::uint32_t sps_id, outcome& result) noexcept
{
    seq_parameter_set_rbsp with;
    with.seq_parameter_set_data.chroma_format_idc = chroma_444;
    parameter_sets alone;
    alone.sps[sps_id] = &with;
    unit_context context;
    context.sets = &alone;
    read(to, bytes.data, bytes.size, context, result);
}

/// A PPS that was read before its SPS is known, as one of 4:2:0 has it, may be of one of 4:4:4.
void read_either_pps(nal_unit& to, const clean_bytes& bytes, std::uint32_t sps_id, outcome& result)
{
    if (!result.failure && ends_well(result.ending))
        return;
    nal_unit other;
    outcome with_444;
    read_444_pps(other, bytes, sps_id, with_444);
    if (with_444.failure || !ends_well(with_444.ending))
        return;
    to = std::move(other);
    result = with_444;
}

/// Bytes [0, size) without the zero bytes at their end, which are of no unit.
unit_view without_zeros(unit_view unit) noexcept
{
    while (unit.size != 0 && unit.bytes[unit.size - 1] == 0)
        --unit.size;
    return unit;
}

} // namespace

parameter_set_store::kept_set* parameter_set_store::slot_of(unsigned type, std::uint32_t id) noexcept
{
    if (type == pps_type)
        return id < parameter_sets::pps_ids ? &ppss[id] : nullptr;
    if (id >= parameter_sets::sps_ids)
        return nullptr;
    return type == sps_type ? &spss[id] : type == subset_sps_type ? &subset_spss[id] : &sps_extensions[id];
}

set_arrival parameter_set_store::push(const unit_view& unit) noexcept
{
    const unit_view set = without_zeros(unit);
    if (!is_kept_set(set.type()))
        return set_arrival::no_set;
    if (set.size > stream::most_parameter_set_bytes)
        return set_arrival::too_long;
    if ((set.bytes[0] & 0x80) != 0) // forbidden_zero_bit
        return set_arrival::damaged;
    try {
        return keep(set);
    } catch (...) {
        return set_arrival::no_memory;
    }
}

std::size_t parameter_set_store::push(const AVCDecoderConfigurationRecord& record) noexcept
{
    std::size_t lost = 0;
    const auto push_all = [&](const auto& list) {
        for (const unit_view& unit : list) {
            const set_arrival how = push(unit);
            lost += how == set_arrival::added || how == set_arrival::changed || how == set_arrival::same ? 0 : 1;
        }
    };
    push_all(record.sequenceParameterSetNALUnit);
    push_all(record.sequenceParameterSetExtNALUnit);
    push_all(record.pictureParameterSetNALUnit);
    return lost;
}

set_arrival parameter_set_store::keep(const unit_view& unit)
{
    kept_set made;
    std::uint32_t id = 0;
    const set_arrival read = read_set(unit, id, made);
    kept_set* const slot = slot_of(unit.type(), id);
    if (read != set_arrival::added || slot == nullptr)
        return read != set_arrival::added ? read : set_arrival::damaged;
    const bool there = !slot->bytes.empty();
    if (there && std::equal(slot->bytes.begin(), slot->bytes.end(), unit.bytes, unit.bytes + unit.size))
        return set_arrival::same;
    if (there && slot->ends && !made.ends)
        return set_arrival::damaged;
    made.bytes.assign(unit.bytes, unit.bytes + unit.size);
    *slot = std::move(made);
    if (unit.type() == sps_type)
        sps_extensions[id] = kept_set();
    ++change_count;
    return there ? set_arrival::changed : set_arrival::added;
}

set_arrival parameter_set_store::read_set(const unit_view& unit, std::uint32_t& id, kept_set& as) const
{
    std::vector<unsigned char> room(unit.size);
    const clean_bytes bytes = unescaped(unit.bytes, unit.size, unit.size, room.data());
    nal_unit set;
    outcome result;
    h264::read(set, bytes.data, bytes.size, {}, result);
    const set_ids ids = ids_of(set);
    if (unit.type() == pps_type && ids.sps_id < parameter_sets::sps_ids) {
        const kept_set& sps = spss[ids.sps_id].bytes.empty() ? subset_spss[ids.sps_id] : spss[ids.sps_id];
        if (sps.bytes.empty())
            read_either_pps(set, bytes, ids.sps_id, result);
        else if (sps.chroma_format_idc == chroma_444)
            read_444_pps(set, bytes, ids.sps_id, result);
    }
    if (result.failure)
        return result.failure.why == reason::no_memory ? set_arrival::no_memory : set_arrival::damaged;
    if (ids.sps_id >= parameter_sets::sps_ids)
        return set_arrival::damaged;
    id = ids.id;
    as.sps_id = ids.sps_id;
    as.ends = ends_well(result.ending);
    if (const seq_parameter_set_data* const sps = sps_data_of(set))
        as.chroma_format_idc = static_cast<std::uint8_t>(std::min(sps->chroma_format_idc, chroma_444));
    return set_arrival::added;
}

parameter_set_list parameter_set_store::listed(std::uint32_t lowest_sps, std::uint32_t highest_sps) const noexcept
{
    parameter_set_list list;
    const auto add = [&](const kept_set& set) {
        if (set.bytes.empty() || set.sps_id < lowest_sps || set.sps_id > highest_sps)
            return;
        list.grow();
        list.back() = {set.bytes.data(), set.bytes.size()};
    };
    for (std::uint32_t id = 0; id < parameter_sets::sps_ids; ++id) {
        add(spss[id]);
        add(sps_extensions[id]);
    }
    for (const kept_set& set : subset_spss)
        add(set);
    for (const kept_set& set : ppss)
        add(set);
    return list;
}

parameter_set_list parameter_set_store::all() const noexcept
{
    return listed(0, ~std::uint32_t{0});
}

parameter_set_list parameter_set_store::of_sps(std::uint32_t seq_parameter_set_id) const noexcept
{
    return listed(seq_parameter_set_id, seq_parameter_set_id);
}

} // namespace orv_utils_v4::h264
