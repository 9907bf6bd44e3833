// Access units. Units that may be the first of another access unit wait until the next slice tells whether they are.
#include <orv-utils-v4/h264_syntax/access_unit.h>

#include "first_slice.h"
#include "hidden.h"
#include "kept_units.h"
#include "stream/stream_unit.h"

#include <algorithm>
#include <utility>

namespace orv_utils_v4::h264 {

namespace {

/// `header` is that of the unit, or null.
std::uint32_t redundant_pic_cnt_of(const nal_unit& unit, const slice_header* header)
{
    if (header != nullptr)
        return header->redundant_pic_cnt;
    if (const auto* const b = std::get_if<slice_data_partition_b_layer_rbsp>(&unit.rbsp))
        return b->redundant_pic_cnt;
    const auto* const c = std::get_if<slice_data_partition_c_layer_rbsp>(&unit.rbsp);
    return c != nullptr ? c->redundant_pic_cnt : 0;
}

unit_role role_of(const nal_unit& unit, const slice_header* header)
{
    switch (unit.header.nal_unit_type) {
    case 1:
    case 2:
    case 3:
    case 4:
    case 5:
        return redundant_pic_cnt_of(unit, header) == 0 ? unit_role::primary : unit_role::redundant;
    case 6:
        return unit_role::sei;
    case 7:
    case 8:
    case 13:
    case 15:
    case 16:
        return unit_role::parameter_set;
    case 9:
        return unit_role::delimiter;
    case 10:
    case 11:
        return unit_role::end;
    case 14:
        return unit_role::prefix;
    case 19:
        return unit_role::auxiliary;
    case 20:
    case 21:
        return unit_role::layer;
    default:
        return unit_role::other;
    }
}

bool is_slice(unit_role role)
{
    return role >= unit_role::primary && role <= unit_role::layer;
}

/// Types 6 to 9 and 14 to 18 behind the primary coded picture begin an access unit (7.4.1.2.3).
bool begins_another(unsigned nal_unit_type)
{
    return (nal_unit_type >= 6 && nal_unit_type <= 9) || (nal_unit_type >= 14 && nal_unit_type <= 18);
}

bool is_of_layers(unsigned nal_unit_type)
{
    return nal_unit_type == 14 || nal_unit_type == 15 || nal_unit_type == 20 || nal_unit_type == 21;
}

/// Of slices with one role: both have an extension, or neither.
bool same_layer(const nal_unit_header& a, const nal_unit_header& b)
{
    if (!a.extended())
        return true;
    if (a.bytes() != b.bytes() || a.scalable() != b.scalable())
        return false;
    const auto &svc_a = a.nal_unit_header_svc_extension, &svc_b = b.nal_unit_header_svc_extension;
    const auto &avc_3d_a = a.nal_unit_header_3davc_extension, &avc_3d_b = b.nal_unit_header_3davc_extension;
    return svc_a.dependency_id == svc_b.dependency_id && svc_a.quality_id == svc_b.quality_id &&
           a.nal_unit_header_mvc_extension.view_id == b.nal_unit_header_mvc_extension.view_id &&
           avc_3d_a.view_idx == avc_3d_b.view_idx && avc_3d_a.depth_flag == avc_3d_b.depth_flag;
}

void take_extension(access_unit_part& slice, const nal_unit_header& prefix)
{
    slice.prefixed = true;
    slice.header.svc_extension_flag = prefix.svc_extension_flag;
    slice.header.nal_unit_header_svc_extension = prefix.nal_unit_header_svc_extension;
    slice.header.nal_unit_header_mvc_extension = prefix.nal_unit_header_mvc_extension;
}

picture_structure structure_of(const slice_header& header, const seq_parameter_set_data* sps)
{
    if (header.field_pic_flag)
        return header.bottom_field_flag ? picture_structure::bottom_field : picture_structure::top_field;
    return sps != nullptr && sps->mb_adaptive_frame_field_flag ? picture_structure::mbaff_frame
                                                               : picture_structure::frame;
}

/// A primary slice that begins the picture.
bool has_macroblock_0(const access_unit_part& part)
{
    return part.role == unit_role::primary && part.first_mb_in_slice == 0 && part.header.nal_unit_type != 3 &&
           part.header.nal_unit_type != 4;
}

} // namespace

slice_layer layer_of(const access_unit_part& slice) noexcept
{
    slice_layer layer;
    const nal_unit_header& header = slice.header;
    if (!header.extended() && !slice.prefixed)
        return layer;
    if (header.avc_3d()) {
        const auto& extension = header.nal_unit_header_3davc_extension;
        layer.view_id = extension.view_idx;
        layer.depth = extension.depth_flag;
        layer.temporal_id = extension.temporal_id;
        layer.anchor_pic_flag = extension.anchor_pic_flag;
        layer.inter_view_flag = extension.inter_view_flag;
    } else if (header.svc_extension_flag && header.nal_unit_type != 21) {
        const auto& extension = header.nal_unit_header_svc_extension;
        layer.dependency_id = extension.dependency_id;
        layer.quality_id = extension.quality_id;
        layer.temporal_id = extension.temporal_id;
        layer.priority_id = extension.priority_id;
    } else {
        const auto& extension = header.nal_unit_header_mvc_extension;
        layer.view_id = extension.view_id;
        layer.temporal_id = extension.temporal_id;
        layer.priority_id = extension.priority_id;
        layer.anchor_pic_flag = extension.anchor_pic_flag;
        layer.inter_view_flag = extension.inter_view_flag;
    }
    return layer;
}

struct ORV_UTILS_V4_HIDDEN access_units::state : unit_sink {
    bool base_alone = false;
    stream units;
    kept_units kept; // of the parts of `current`, of those of `waiting`, then what the stream keeps back
    access_unit current;
    std::vector<access_unit_part> waiting; // behind the picture: the next access unit's, unless its picture goes on
    std::size_t parts_room = 0;            // parts that both of these have memory for
    std::uint64_t count = 0;
    bool any_slice = false;                          // in `current`
    bool ended = false;                              // with an end of sequence: an end of stream alone may follow
    std::vector<std::unique_ptr<nal_unit>> contents; // of the parts, in their order
    std::size_t contents_used = 0;
    seq_parameter_set_data own_sps; // its SPS and PPS, when the stream replaces them before it is handed on
    pic_parameter_set_rbsp own_pps;
    access_unit_sink* to = nullptr;

    void push(const unit_place& place, bool bytes_stay);
    void flush();
    bool keep(const unit_place& place, bool bytes_stay);
    bool make_room();
    void keep_parameter_sets();
    void take(const unit_reading& reading) override;
    void take_primary(const unit_reading& reading, const slice_header& header);
    void take_other(const unit_reading& reading, unit_role role);
    void take_other_slice(const unit_reading& reading, unit_role role, const slice_header* header);
    void tell_picture(const unit_reading& reading, const slice_header& header);
    void join_waiting();
    void add_part(std::vector<access_unit_part>& parts, const unit_reading& reading, unit_role role,
                  const slice_header* header);
    bool is_new(const unit_reading& reading, unit_role role) const;
    const nal_unit* keep_content();
    void complete();
    void begin_with_waiting();
    void drop_contents();
};

access_units::access_units(bool base_alone) : s(std::make_unique<state>())
{
    s->base_alone = base_alone;
}
access_units::~access_units() = default;
access_units::access_units(access_units&&) noexcept = default;
access_units& access_units::operator=(access_units&&) noexcept = default;

const parameter_sets& access_units::sets() const noexcept
{
    return s->units.sets();
}

void access_units::push(const unit_place& unit, access_unit_sink& to, bool bytes_stay)
{
    s->to = &to;
    s->push(unit, bytes_stay);
}

void access_units::flush(access_unit_sink& to)
{
    s->to = &to;
    s->flush();
}

void access_units::state::push(const unit_place& place, bool bytes_stay)
{
    const unsigned type = place.size == 0 ? 0 : place.bytes[0] & 0x1F;
    if (base_alone && is_of_layers(type))
        return;
    if (ended && type != 11)
        complete();
    if (!keep(place, bytes_stay)) {
        current.findings.add(picture_finding::limit_reached);
        flush();
        if (!keep(place, bytes_stay))
            return current.findings.add(picture_finding::limit_reached);
    }
    if (type == 7 || type == 8)
        keep_parameter_sets();
    units.push(place, *this);
}

void access_units::state::flush()
{
    units.flush(*this);
    complete();
    complete();
}

bool access_units::state::keep(const unit_place& place, bool bytes_stay)
{
    if (kept.size() == most_units || place.size > most_bytes - kept.copied())
        return false;
    return (kept.size() < parts_room || make_room()) && kept.push(place, bytes_stay);
}

bool access_units::state::make_room()
{
    try {
        const std::size_t more = 2 * (kept.size() + 1);
        current.parts.reserve(more);
        waiting.reserve(more);
        parts_room = more;
        return true;
    } catch (...) {
        return false;
    }
}

// Parameter sets that come now may replace those of the current picture.
void access_units::state::keep_parameter_sets()
{
    if (current.sps != nullptr && current.sps != &own_sps) {
        own_sps = *current.sps;
        current.sps = &own_sps;
    }
    if (current.pps == nullptr || current.pps == &own_pps)
        return;
    try {
        own_pps = *current.pps;
        current.pps = &own_pps;
    } catch (...) { // no memory for its slice groups
        current.pps = nullptr;
        current.findings.add(picture_finding::limit_reached);
    }
}

void access_units::state::take(const unit_reading& reading)
{
    const slice_header* const header = slice_header_of(reading.unit);
    const unit_role role = role_of(reading.unit, header);
    if (role == unit_role::primary && header != nullptr)
        return take_primary(reading, *header);
    if (is_slice(role))
        return take_other_slice(reading, role, header);
    take_other(reading, role);
}

void access_units::state::take_other(const unit_reading& reading, unit_role role)
{
    const unsigned type = reading.unit.header.nal_unit_type;
    if (role == unit_role::delimiter && any_slice)
        complete();
    if (role == unit_role::end && !waiting.empty())
        complete();
    if (!waiting.empty() || (any_slice && begins_another(type)))
        return add_part(waiting, reading, role, nullptr);
    if (role == unit_role::delimiter && !current.parts.empty())
        current.findings.add(picture_finding::unit_out_of_place);
    add_part(current.parts, reading, role, nullptr);
    ended = type == 10;
    if (type == 11)
        complete();
}

void access_units::state::take_primary(const unit_reading& reading, const slice_header& header)
{
    const bool whole = !reading.result.failure;
    const bool goes_on = current.header != nullptr && !begins_picture(current, reading, header);
    if (goes_on && !waiting.empty())
        join_waiting();
    else if (!goes_on && any_slice)
        complete();
    add_part(current.parts, reading, unit_role::primary, &header);
    any_slice = true;
    if (whole)
        current.slice_kinds |= static_cast<std::uint8_t>(1U << static_cast<unsigned>(header.kind()));
    if (!goes_on || (whole && !current.whole))
        tell_picture(reading, header);
}

// Slices that follow the primary coded picture, and partitions B and C.
void access_units::state::take_other_slice(const unit_reading& reading, unit_role role, const slice_header* header)
{
    const bool prefixes_alone = std::all_of(waiting.begin(), waiting.end(),
                                            [](const access_unit_part& p) { return p.role == unit_role::prefix; });
    if (prefixes_alone || role == unit_role::primary)
        join_waiting();
    else
        complete();
    add_part(current.parts, reading, role, header);
    any_slice = true;
}

// The parts that wait stand within the access unit. Prefix units belong there.
void access_units::state::join_waiting()
{
    for (const access_unit_part& part : waiting) {
        if (part.role != unit_role::prefix)
            current.findings.add(picture_finding::unit_out_of_place);
        current.parts.push_back(part);
    }
    waiting.clear();
}

// The header stays where it is when the unit is kept.
void access_units::state::tell_picture(const unit_reading& reading, const slice_header& header)
{
    const nal_unit*& content = current.parts.back().content;
    if (content == nullptr) // a damaged slice stands before it
        content = keep_content();
    current.header = content == nullptr ? nullptr : &header;
    if (current.header == nullptr)
        return current.findings.add(picture_finding::limit_reached);
    current.whole = !reading.result.failure;
    current.sps = reading.sps;
    current.pps = reading.pps;
    current.structure = structure_of(header, current.sps);
    current.nal_ref_idc = reading.unit.header.nal_ref_idc;
    current.idr = IdrPicFlag(reading.unit.header);
}

// There is room for it. It is filled where it stands, which saves a copy, and begins as that of an empty one: to clear
// as many bytes takes g++ three times as long.
void access_units::state::add_part(std::vector<access_unit_part>& parts, const unit_reading& reading, unit_role role,
                                   const slice_header* header)
{
    const bool goes_on = role == unit_role::primary && current.header != nullptr; // with a slice like the first one
    const bool is_kept = contents_used < most_contents && !goes_on && is_new(reading, role);
    const bool may_have_prefix = role == unit_role::primary || role == unit_role::redundant;
    const bool prefixed = may_have_prefix && !parts.empty() && parts.back().role == unit_role::prefix;
    static constexpr access_unit_part empty = {};
    access_unit_part& part = parts.emplace_back(empty);
    part.place = reading.place;
    part.role = role;
    part.header = reading.unit.header;
    if (reading.result.failure)
        part.failure = reading.result.failure;
    part.ending = reading.result.ending;
    part.finding_count = reading.result.finding_count;
    if (!reading.result.findings.empty())
        part.first_finding = reading.result.findings[0];
    if (prefixed)
        take_extension(part, parts[parts.size() - 2].header);
    if (is_kept)
        part.content = keep_content();
    if (header != nullptr) {
        part.first_mb_in_slice = header->first_mb_in_slice;
        part.slice_type = header->slice_type;
        part.pic_parameter_set_id = header->pic_parameter_set_id;
        part.redundant_pic_cnt = header->redundant_pic_cnt;
        part.data_bit = reading.result.bits;
    }
    if (is_slice(role) && part.failure) {
        const reason why = part.failure.why;
        current.findings.add(why == reason::no_sps || why == reason::no_pps ? picture_finding::no_parameter_sets
                                                                            : picture_finding::slice_damaged);
    }
}

/// The content is kept: of all but further slices of the same kind.
bool access_units::state::is_new(const unit_reading& reading, unit_role role) const
{
    if (!is_slice(role))
        return true;
    for (std::size_t i = current.parts.size(); i > 0; --i) { // as a rule it is the last one
        const access_unit_part& before = current.parts[i - 1];
        if (before.role == role && same_layer(before.header, reading.unit.header))
            return false;
    }
    return true;
}

/// The unit that is read, for a room that is used again; null where there is no memory for another one.
const nal_unit* access_units::state::keep_content()
{
    try {
        if (contents_used == contents.size())
            contents.push_back(std::make_unique<nal_unit>());
    } catch (...) {
        return nullptr;
    }
    std::unique_ptr<nal_unit>& room = contents[contents_used++];
    stream_unit::take(units, room);
    return room.get();
}

// Hands the current access unit on; what waits begins the next one.
void access_units::state::complete()
{
    if (!current.parts.empty()) {
        bool begins = false;
        for (std::size_t i = 0; i < current.parts.size(); ++i) {
            current.parts[i].place.bytes = kept.at(i);
            begins = begins || has_macroblock_0(current.parts[i]);
        }
        if (any_slice && current.header == nullptr)
            current.findings.add(picture_finding::no_primary_picture);
        if (current.header != nullptr && !begins)
            current.findings.add(picture_finding::first_slice_missing);
        current.number = count++;
        to->take(current);
    }
    begin_with_waiting();
}

void access_units::state::begin_with_waiting()
{
    kept.drop(current.parts.size());
    if (waiting.empty())
        contents_used = 0;
    else
        drop_contents();
    std::vector<access_unit_part> parts = std::move(current.parts);
    parts.clear();
    parts.swap(waiting);
    current = access_unit();
    current.parts = std::move(parts);
    any_slice = false;
    ended = false;
}

// Those of the current access unit go; what waits begins with its own.
void access_units::state::drop_contents()
{
    const std::size_t of_current = static_cast<std::size_t>(
        std::count_if(current.parts.begin(), current.parts.end(), [](const access_unit_part& p) { return p.content; }));
    std::rotate(contents.begin(), contents.begin() + static_cast<std::ptrdiff_t>(of_current),
                contents.begin() + static_cast<std::ptrdiff_t>(contents_used));
    contents_used -= of_current;
}

} // namespace orv_utils_v4::h264
