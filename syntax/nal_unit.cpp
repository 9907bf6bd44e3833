// What a unit stands on, and reasons as text.
#include <orv-utils-v4/h264_syntax/nal_unit.h>

namespace orv_utils_v4::h264 {

const char* text_of(reason why) noexcept
{
    switch (why) {
    case reason::none:
        return "";
    case reason::unit_ends:
        return "the unit ends";
    case reason::payload_ends:
        return "the payload ends";
    case reason::malformed_code:
        return "malformed Exp-Golomb code";
    case reason::too_large:
        return "more than";
    case reason::too_small:
        return "less than";
    case reason::no_sps:
        return "names a sequence parameter set which is missing";
    case reason::no_pps:
        return "names a picture parameter set which is missing";
    case reason::no_partition_a:
        return "partition A of the slice is missing";
    case reason::no_source_slice:
        return "needs another slice, which is not looked up";
    case reason::wrong_kind:
        return "another structure than the type names";
    case reason::wrong_count:
        return "the list has another number of entries";
    case reason::no_memory:
        return "no memory";
    case reason::no_room:
        return "no room for it";
    case reason::no_such_element:
        return "no element has this path";
    case reason::ambiguous:
        return "several elements have this path";
    case reason::unit_too_long:
        return "the unit is longer than what is read of it";
    }
    return "";
}

namespace {

/// The pic_parameter_set_id of a slice; none_named of other units.
std::uint32_t pps_named_by(const nal_unit& unit)
{
    constexpr std::uint32_t none_named = ~std::uint32_t{0};
    if (const slice_header* const header = slice_header_of(unit))
        return header->pic_parameter_set_id;
    const auto* const extension = std::get_if<slice_layer_extension_rbsp>(&unit.rbsp);
    return extension == nullptr
               ? none_named
               : std::visit([](const auto& header) { return header.pic_parameter_set_id; }, extension->header);
}

} // namespace

// Asked of every unit, several times: comparing is less than half of what a visit takes.
const slice_header* slice_header_of(const nal_unit& unit) noexcept
{
    if (const auto* const whole = std::get_if<slice_layer_without_partitioning_rbsp>(&unit.rbsp))
        return &whole->slice_header;
    if (const auto* const a = std::get_if<slice_data_partition_a_layer_rbsp>(&unit.rbsp))
        return &a->slice_header;
    const auto* const extension = std::get_if<slice_layer_extension_rbsp>(&unit.rbsp);
    return extension == nullptr ? nullptr : std::get_if<slice_header>(&extension->header);
}

const pic_parameter_set_rbsp* pps_of(const nal_unit& unit, const parameter_sets& sets) noexcept
{
    return sets.find_pps(pps_named_by(unit));
}

const seq_parameter_set_data* sps_of(const nal_unit& unit, const parameter_sets& sets) noexcept
{
    const pic_parameter_set_rbsp* const pps = pps_of(unit, sets);
    return pps == nullptr ? nullptr : sps_of(unit.header, *pps, sets);
}

} // namespace orv_utils_v4::h264
