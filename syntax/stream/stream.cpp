// The stream: stores of parameter sets, activation, and the units kept back until it is known what they are read with.
#include <orv-utils-v4/h264_syntax/stream.h>

#include "bytescan/block.h"
#include "hidden.h"
#include "stream/stream_unit.h"
#include "unit_bytes.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace orv_utils_v4::h264 {

namespace {

enum class unit_kind : std::uint8_t { slice, primary_slice, sei, parameter_set, other };

unit_kind kind_of(unsigned nal_unit_type)
{
    switch (nal_unit_type) {
    case 1:
    case 2:
    case 5:
        return unit_kind::primary_slice;
    case 3:
    case 4:
    case 19:
    case 20:
    case 21:
        return unit_kind::slice;
    case 6:
        return unit_kind::sei;
    case 7:
    case 8:
    case 13:
    case 15:
    case 16:
        return unit_kind::parameter_set;
    default:
        return unit_kind::other;
    }
}

/// What stands behind the data of a slice: 00 00 03 is an escaped cabac_zero_word. Any other last byte has the stop
/// bit.
ending ending_of_slice(const unit_place& place)
{
    constexpr unsigned char word[] = {0, 0, 3};
    const bool word_at_end =
        place.size > sizeof word && std::equal(word, word + sizeof word, place.bytes + place.size - sizeof word);
    return word_at_end ? ending::cabac_zero_words : ending::sound;
}

/// Bytes that may not be had: a failed allocation is told by `false`.
bool grow(std::vector<unsigned char>& bytes, std::size_t size)
{
    try {
        bytes.resize(size);
        return true;
    } catch (...) {
        return false;
    }
}

bool make_room(std::vector<unsigned char>& bytes, std::size_t size)
{
    return bytes.size() >= size || grow(bytes, size);
}

} // namespace

struct ORV_UTILS_V4_HIDDEN stream::state {
    struct held_unit {
        unit_place place; // bytes: null; they lie in held_bytes from `begin` on
        std::size_t begin;
    };
    /// A PPS as it is read with an SPS of any other chroma_format_idc than 3, and with one of 3: its table takes
    /// nothing else from the SPS, so that it need not be read again when another SPS comes.
    struct kept_pps {
        pic_parameter_set_rbsp form[2];
        bool sound[2] = {};
        bool forms_differ = false;
    };
    /// The PPS of a slice whose partition A has come.
    struct known_partition {
        std::uint32_t slice_id;
        std::uint32_t pps;
    };
    static constexpr std::size_t most_partitions = 256;

    parameter_sets sets;
    std::unique_ptr<seq_parameter_set_rbsp> spss[parameter_sets::sps_ids];
    std::unique_ptr<subset_seq_parameter_set_rbsp> subset_spss[parameter_sets::sps_ids];
    std::unique_ptr<kept_pps> ppss[parameter_sets::pps_ids];
    std::unique_ptr<depth_parameter_set_rbsp> dpss[parameter_sets::dps_ids];
    std::int32_t active_sps = -1; // ids; -1 is none
    std::int32_t active_pps = -1;
    std::int32_t mvcd_sps = -1;
    bool primary_idr = false;
    bool slice_known = false; // what is handed on belongs to an access unit whose slice is known
    known_partition partitions[most_partitions] = {};
    std::size_t partition_count = 0; // all that came; the latest are kept

    std::vector<unsigned char> block; // room for a unit without emulation prevention
    clean_bytes bytes;                // that the latest unit was read from
    std::vector<unsigned char> held_bytes;
    std::vector<held_unit> held;
    std::unique_ptr<nal_unit> unit = std::make_unique<nal_unit>();
    unit_context context;                        // that the unit is read with
    const seq_parameter_set_data* sps = nullptr; // that it stands on
    const pic_parameter_set_rbsp* pps = nullptr;
    outcome result;

    void read_unit(const unit_place& place, visitor* listener);
    void read_slice(const unit_place& place, visitor* listener);
    void tell_no_memory();
    void hand_on(const unit_place& place, unit_sink& to);
    bool hold(const unit_place& place);
    void release(unit_sink& to);
    void set_context(const unit_place& place, unit_kind kind);
    std::int32_t pps_of_partition(const unit_place& place) const;
    const seq_parameter_set_data* sps_for_sei() const;
    void activate_period();
    void keep();
    void keep_sps(const seq_parameter_set_rbsp& set);
    void keep_subset_sps(const subset_seq_parameter_set_rbsp& set);
    void keep_pps(const pic_parameter_set_rbsp& set);
    void keep_dps(const depth_parameter_set_rbsp& set);
    bool read_pps_with(std::uint32_t chroma_format_idc, std::uint32_t sps_id, pic_parameter_set_rbsp& to) const;
    void choose_form(std::uint32_t pps_id);
    void choose_forms(std::uint32_t sps_id);
    void activate(const unit_place& place);
};

namespace {

/// Puts a copy of `set` into a slot, and tells its place; null when there is no memory for it.
template <class Set>
const Set* put(std::unique_ptr<Set>& slot, const Set& set)
{
    try {
        if (slot == nullptr)
            slot = std::make_unique<Set>(set);
        else
            *slot = set;
        return slot.get();
    } catch (...) {
        return slot.get();
    }
}

void run(nal_unit& unit, const unsigned char* bytes, std::size_t size, const unit_context& context, outcome& result,
         visitor* listener)
{
    if (listener != nullptr)
        trace(unit, bytes, size, context, result, *listener);
    else
        read(unit, bytes, size, context, result);
}

} // namespace

stream::stream() : s(std::make_unique<state>()) {}
stream::~stream() = default;
stream::stream(stream&&) noexcept = default;
stream& stream::operator=(stream&&) noexcept = default;

const parameter_sets& stream::sets() const noexcept
{
    return s->sets;
}

void stream_unit::take(stream& from, std::unique_ptr<nal_unit>& room) noexcept
{
    from.s->unit.swap(room);
}

void stream::push(const unit_place& place, unit_sink& to)
{
    const unit_kind kind = kind_of(place.size == 0 ? 0 : place.bytes[0] & 0x1F);
    const unsigned type = place.size == 0 ? 0 : place.bytes[0] & 0x1F;
    const bool begins_another = type >= 9 && type <= 11; // a delimiter, or an end
    if (!s->held.empty()) {
        if (kind == unit_kind::primary_slice)
            s->activate(place);
        s->slice_known = kind == unit_kind::primary_slice;
        if (kind == unit_kind::primary_slice || kind == unit_kind::slice || begins_another)
            s->release(to);
    }
    if ((kind == unit_kind::sei || !s->held.empty()) && s->hold(place))
        return;
    if (!s->held.empty())
        s->release(to);
    s->hand_on(place, to);
}

void stream::flush(unit_sink& to)
{
    s->release(to);
}

// What a slice will activate, before the units in front of it are handed on: the parameter sets among them count.
void stream::state::activate(const unit_place& place)
{
    for (const held_unit& h : held) {
        unit_place at = h.place;
        at.bytes = held_bytes.data() + h.begin;
        if (kind_of(at.bytes[0] & 0x1F) == unit_kind::parameter_set)
            read_unit(at, nullptr);
    }
    read_unit(place, nullptr);
}

bool stream::state::hold(const unit_place& place)
{
    if (place.size == 0 || held.size() >= most_held_units || place.size > most_held_bytes - held_bytes.size())
        return false;
    try {
        held.reserve(held.size() + 1);
        const std::size_t begin = held_bytes.size();
        held_bytes.insert(held_bytes.end(), place.bytes, place.bytes + place.size);
        held.push_back({{nullptr, place.size, place.offset, place.number}, begin});
        return true;
    } catch (...) {
        return false;
    }
}

void stream::state::release(unit_sink& to)
{
    for (const held_unit& h : held) {
        unit_place place = h.place;
        place.bytes = held_bytes.data() + h.begin;
        hand_on(place, to);
    }
    held.clear();
    held_bytes.clear();
    slice_known = false;
}

void stream::state::hand_on(const unit_place& place, unit_sink& to)
{
    read_unit(place, to.before(place));
    to.take({place, *unit, result, context, sps, pps});
}

void stream::state::read_unit(const unit_place& place, visitor* listener)
{
    const unit_kind kind = kind_of(place.size == 0 ? 0 : place.bytes[0] & 0x1F);
    set_context(place, kind);
    sps = context.active_sps;
    pps = nullptr;
    if (kind == unit_kind::slice || kind == unit_kind::primary_slice)
        return read_slice(place, listener);

    const std::size_t most = kind == unit_kind::parameter_set ? most_parameter_set_bytes : most_unit_bytes;
    const std::size_t size = std::min(place.size, most);
    if (!make_room(block, size))
        return tell_no_memory();
    bytes = unescaped(place.bytes, size, size, block.data());
    if (kind == unit_kind::sei && !slice_known) {
        read(*unit, bytes.data, bytes.size, context, result);
        activate_period();
        set_context(place, kind);
        sps = context.active_sps;
    }
    run(*unit, bytes.data, bytes.size, context, result, listener);
    if (place.size > most && !result.failure)
        result.failure = {reason::unit_too_long, "nal_unit", result.bits, static_cast<std::int64_t>(place.size),
                          static_cast<std::int64_t>(most)};
    keep();
}

/// Nothing of the unit is read: what is there would be another unit's.
void stream::state::tell_no_memory()
{
    *unit = nal_unit();
    result = outcome();
    result.failure = {reason::no_memory, "nal_unit", 0, 0, 0};
}

// The header is looked for in more and more bytes of the slice; only what is read at last is told.
void stream::state::read_slice(const unit_place& place, visitor* listener)
{
    constexpr std::size_t first_try = 1 + brenik::bytescan::block_bytes; // one step of the search for escapes
    for (std::size_t room = first_try;; room *= 8) {
        const std::size_t taken = std::min({room, place.size, most_slice_header_bytes});
        if (!make_room(block, taken))
            return tell_no_memory();
        bytes = unescaped(place.bytes, place.size, taken, block.data());
        const bool all = taken == place.size || taken == most_slice_header_bytes;
        read(*unit, bytes.data, bytes.size, context, result);
        if (all || result.failure.why != reason::unit_ends)
            break;
    }
    if (listener != nullptr)
        trace(*unit, bytes.data, bytes.size, context, result, *listener);
    result.ending = ending_of_slice(place);
    pps = pps_of(*unit, sets);
    if (pps == nullptr)
        return;
    sps = sps_of(unit->header, *pps, sets);
    if (result.failure)
        return;
    const auto type = unit->header.nal_unit_type;
    if (type == 1 || type == 2 || type == 5) {
        active_pps = static_cast<std::int32_t>(pps->pic_parameter_set_id);
        active_sps = static_cast<std::int32_t>(pps->seq_parameter_set_id);
        primary_idr = type == 5;
    }
    if (const auto* const a = std::get_if<slice_data_partition_a_layer_rbsp>(&unit->rbsp))
        partitions[partition_count++ % most_partitions] = {a->slice_id, pps->pic_parameter_set_id};
}

void stream::state::set_context(const unit_place& place, unit_kind kind)
{
    context = unit_context();
    context.sets = &sets;
    context.primary_idr = primary_idr;
    if (kind == unit_kind::slice)
        context.partition_a_pps = pps_of_partition(place);
    if (kind != unit_kind::sei)
        return;
    context.active_sps = sps_for_sei();
    context.active_pps = active_pps < 0 ? nullptr : sets.find_pps(static_cast<std::uint32_t>(active_pps));
    context.mvcd_sps = mvcd_sps < 0 ? nullptr : sets.find_subset_sps(static_cast<std::uint32_t>(mvcd_sps));
}

/// The active SPS; before there is one, the only one that is stored.
const seq_parameter_set_data* stream::state::sps_for_sei() const
{
    if (active_sps >= 0)
        return sets.find_sps(static_cast<std::uint32_t>(active_sps));
    const seq_parameter_set_data* only = nullptr;
    for (std::uint32_t id = 0; id < parameter_sets::sps_ids; ++id) {
        const seq_parameter_set_data* const stored = sets.find_sps(id);
        if (stored != nullptr && only != nullptr)
            return nullptr;
        only = stored != nullptr ? stored : only;
    }
    return only;
}

// The PPS of partition A with the slice_id of this partition B or C, else of the latest one.
std::int32_t stream::state::pps_of_partition(const unit_place& place) const
{
    const unsigned type = place.size == 0 ? 0 : place.bytes[0] & 0x1F;
    if ((type != 3 && type != 4) || partition_count == 0)
        return -1;
    nal_unit partition;
    outcome ignored;
    unsigned char head[16];
    read(partition, head, unescape(place.bytes, std::min(place.size, sizeof head), head, sizeof head), {}, ignored);
    std::uint32_t slice_id = 0;
    if (const auto* const b = std::get_if<slice_data_partition_b_layer_rbsp>(&partition.rbsp))
        slice_id = b->slice_id;
    if (const auto* const c = std::get_if<slice_data_partition_c_layer_rbsp>(&partition.rbsp))
        slice_id = c->slice_id;
    const std::size_t kept = std::min(partition_count, most_partitions);
    for (std::size_t i = 1; i <= kept; ++i) {
        const known_partition& a = partitions[(partition_count - i) % most_partitions];
        if (a.slice_id == slice_id)
            return static_cast<std::int32_t>(a.pps);
    }
    return static_cast<std::int32_t>(partitions[(partition_count - 1) % most_partitions].pps);
}

// Where no slice tells the SPS, a buffering period does: for the other messages of its unit too, wherever they stand.
void stream::state::activate_period()
{
    const auto* const messages = std::get_if<sei_rbsp>(&unit->rbsp);
    if (messages == nullptr)
        return;
    for (const sei_message& m : messages->sei_messages) {
        const auto* const period = std::get_if<buffering_period>(&m.payload);
        if (period != nullptr && m.payload_size != 0 && sets.find_sps(period->seq_parameter_set_id) != nullptr)
            active_sps = static_cast<std::int32_t>(period->seq_parameter_set_id);
    }
}

// Stores the parameter set that has been read. One that failed does not replace a sound one; but a PPS whose 8x8 lists
// could not be told without its SPS waits for that.
void stream::state::keep()
{
    if (const auto* const p = std::get_if<pic_parameter_set_rbsp>(&unit->rbsp))
        return keep_pps(*p);
    if (result.failure)
        return;
    if (const auto* const sequence = std::get_if<seq_parameter_set_rbsp>(&unit->rbsp))
        keep_sps(*sequence);
    else if (const auto* const subset = std::get_if<subset_seq_parameter_set_rbsp>(&unit->rbsp))
        keep_subset_sps(*subset);
    else if (const auto* const depth = std::get_if<depth_parameter_set_rbsp>(&unit->rbsp))
        keep_dps(*depth);
}

void stream::state::keep_sps(const seq_parameter_set_rbsp& set)
{
    const std::uint32_t id = set.seq_parameter_set_data.seq_parameter_set_id;
    if (id >= parameter_sets::sps_ids || (sets.sps[id] != nullptr && *sets.sps[id] == set))
        return;
    sets.sps[id] = put(spss[id], set);
    choose_forms(id);
}

void stream::state::keep_subset_sps(const subset_seq_parameter_set_rbsp& set)
{
    const std::uint32_t id = set.seq_parameter_set_data.seq_parameter_set_id;
    if (id >= parameter_sets::sps_ids)
        return;
    const std::uint8_t profile_idc = set.seq_parameter_set_data.profile_idc;
    if (profile_idc == 138 || profile_idc == 135 || profile_idc == 139)
        mvcd_sps = static_cast<std::int32_t>(id);
    if (sets.subset_sps[id] != nullptr && *sets.subset_sps[id] == set)
        return;
    sets.subset_sps[id] = put(subset_spss[id], set);
    if (sets.sps[id] == nullptr)
        choose_forms(id);
}

void stream::state::keep_dps(const depth_parameter_set_rbsp& set)
{
    if (set.depth_parameter_set_id < parameter_sets::dps_ids)
        sets.dps[set.depth_parameter_set_id] = put(dpss[set.depth_parameter_set_id], set);
}

void stream::state::keep_pps(const pic_parameter_set_rbsp& set)
{
    const std::uint32_t id = set.pic_parameter_set_id;
    if (id >= parameter_sets::pps_ids || result.failure.why == reason::unit_too_long)
        return;
    try {
        auto kept = std::make_unique<kept_pps>();
        const seq_parameter_set_data* const with = sps_of(set, sets);
        kept->forms_differ = set.transform_8x8_mode_flag && set.pic_scaling_matrix_present_flag;
        const unsigned as_read = kept->forms_differ && with != nullptr && with->chroma_format_idc == 3 ? 1 : 0;
        const unsigned other = 1 - as_read;
        kept->form[as_read] = set;
        kept->sound[as_read] = !result.failure;
        if (kept->forms_differ)
            kept->sound[other] = read_pps_with(other == 1 ? 3 : 1, set.seq_parameter_set_id, kept->form[other]);
        const bool waits = with == nullptr && kept->sound[other];
        if (!kept->sound[as_read] && !waits)
            return;
        ppss[id] = std::move(kept);
        choose_form(id);
    } catch (...) { // no memory: the one before stays
    }
}

// Reads the PPS in the block as it is with an SPS of this chroma_format_idc; false when that fails.
bool stream::state::read_pps_with(std::uint32_t chroma_format_idc, std::uint32_t sps_id,
                                  pic_parameter_set_rbsp& to) const
{
    seq_parameter_set_rbsp with;
    with.seq_parameter_set_data.chroma_format_idc = chroma_format_idc;
    parameter_sets alone;
    if (sps_id < parameter_sets::sps_ids)
        alone.sps[sps_id] = &with;
    unit_context around;
    around.sets = &alone;
    nal_unit again;
    outcome how;
    read(again, bytes.data, bytes.size, around, how);
    if (auto* const set = std::get_if<pic_parameter_set_rbsp>(&again.rbsp))
        to = std::move(*set);
    return !how.failure;
}

// The form that goes with the SPS as it is now; nothing where that one failed.
void stream::state::choose_form(std::uint32_t pps_id)
{
    const kept_pps& kept = *ppss[pps_id];
    const seq_parameter_set_data* const with = sps_of(kept.form[0], sets);
    const unsigned chosen = kept.forms_differ && with != nullptr && with->chroma_format_idc == 3 ? 1 : 0;
    sets.pps[pps_id] = kept.sound[chosen] ? &kept.form[chosen] : nullptr;
}

// The PPSs that name this id go with another SPS now.
void stream::state::choose_forms(std::uint32_t sps_id)
{
    for (std::uint32_t id = 0; id < parameter_sets::pps_ids; ++id) {
        if (ppss[id] != nullptr && ppss[id]->form[0].seq_parameter_set_id == sps_id)
            choose_form(id);
    }
}

} // namespace orv_utils_v4::h264
