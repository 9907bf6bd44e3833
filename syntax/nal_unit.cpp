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

/// The header of the slice, wherever its kind of unit has it; null of other units.
struct slice_header_in {
    const slice_header* operator()(const slice_layer_extension_rbsp& x) const noexcept
    {
        return std::get_if<slice_header>(&x.header);
    }
    template <class Rbsp>
    const slice_header* operator()(const Rbsp&) const noexcept
    {
        return nullptr;
    }
    const slice_header* operator()(const slice_layer_without_partitioning_rbsp& x) const noexcept
    {
        return &x.slice_header;
    }
    const slice_header* operator()(const slice_data_partition_a_layer_rbsp& x) const noexcept
    {
        return &x.slice_header;
    }
};

/// The pic_parameter_set_id of a slice; none_named of other units.
struct pps_named_by {
    static constexpr std::uint32_t none_named = ~std::uint32_t{0};

    template <class Rbsp>
    std::uint32_t operator()(const Rbsp&) const noexcept
    {
        return none_named;
    }
    std::uint32_t operator()(const slice_layer_without_partitioning_rbsp& x) const noexcept
    {
        return x.slice_header.pic_parameter_set_id;
    }
    std::uint32_t operator()(const slice_data_partition_a_layer_rbsp& x) const noexcept
    {
        return x.slice_header.pic_parameter_set_id;
    }
    std::uint32_t operator()(const slice_layer_extension_rbsp& x) const noexcept
    {
        return std::visit([](const auto& header) { return header.pic_parameter_set_id; }, x.header);
    }
};

} // namespace

const slice_header* slice_header_of(const nal_unit& unit) noexcept
{
    return std::visit(slice_header_in(), unit.rbsp);
}

const pic_parameter_set_rbsp* pps_of(const nal_unit& unit, const parameter_sets& sets) noexcept
{
    return sets.find_pps(std::visit(pps_named_by(), unit.rbsp));
}

const seq_parameter_set_data* sps_of(const nal_unit& unit, const parameter_sets& sets) noexcept
{
    const pic_parameter_set_rbsp* const pps = pps_of(unit, sets);
    return pps == nullptr ? nullptr : sps_of(unit.header, *pps, sets);
}

} // namespace orv_utils_v4::h264
