#include "names.h"

#include "framing.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

struct unit_name {
    unsigned type;
    const char* name;
};

constexpr unit_name unit_names[] = {
    {1, "slice"},
    {2, "partition-A"},
    {3, "partition-B"},
    {4, "partition-C"},
    {5, "slice IDR"},
    {6, "SEI"},
    {7, "SPS"},
    {8, "PPS"},
    {9, "AUD"},
    {10, "end-of-seq"},
    {11, "end-of-stream"},
    {12, "filler"},
    {13, "SPS-ext"},
    {14, "prefix"},
    {15, "subset-SPS"},
    {16, "DPS"},
    {19, "auxiliary"},
    {20, "extension"},
    {21, "3D-extension"},
};

} // namespace

std::string framing_name(h264::framing framing)
{
    return framing == h264::framing::annex_b ? "annexb" : fmt::format("length{}", prefix_size_of(framing));
}

std::string short_unit_name(brenik::h264_nal_unit_type type)
{
    const auto number = static_cast<unsigned>(type);
    const auto* const found = std::find_if(std::begin(unit_names), std::end(unit_names),
                                           [=](const unit_name& u) { return u.type == number; });
    return found == std::end(unit_names) ? fmt::format("type-{}", number) : found->name;
}

const char* payload_name(std::uint32_t payload_type)
{
    constexpr std::uint32_t annotated_regions = 202;
    return payload_type == annotated_regions
               ? "annotated_regions"
               : brenik::h264_nal_sei_payload_type_to_str(static_cast<brenik::h264_nal_sei_payload_type>(payload_type));
}

} // namespace orv_h264
