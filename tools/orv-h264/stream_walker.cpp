#include "stream_walker.h"

#include <iterator>
#include <string_view>
#include <utility>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

constexpr std::uint32_t most_entries = 128; // in every array whose size a unit tells

/// Runs `parse` on the RBSP and takes down how it went.
template <typename Parse>
void attempt(walked_unit& unit, rbsp_bytes rbsp, Parse parse)
{
    brenik::h2645_common_bitreader br(rbsp.data(), rbsp.data() + rbsp.size());
    try {
        unit.parsed = parse(br);
    } catch (const brenik::h2645_common_malformed_code& malformed) {
        unit.malformed_code = malformed.bit_position();
    }
    unit.bits = 8 * rbsp.size();
    unit.bits_consumed = br.bits_consumed();
}

/// Stores `set`; of more than `most` sets, the one with the highest id goes.
template <typename T>
void store_bounded(brenik::h2645_common_base_store<T>& store, std::uint32_t id, const T& set, std::size_t most)
{
    store.insert_or_assign(id, set);
    if (store.size() > most)
        store.erase(std::prev(store.end())->first);
}

std::string count_above_cap(std::string_view name, std::uint64_t count)
{
    return fmt::format("{} asks for {} entries, more than {}", name, count, most_entries);
}

std::string hrd_problem(const char* name, bool present, const brenik::h264_hrd_parameters& hrd)
{
    if (!present || hrd.valid)
        return "";
    return count_above_cap(fmt::format("cpb_cnt_minus1 of the {}", name), std::uint64_t{hrd.cpb_cnt_minus1} + 1);
}

std::string count_problem(const brenik::h264_nal_sps& sps)
{
    if (sps.pic_order_cnt_type == 1 && sps.num_ref_frames_in_pic_order_cnt_cycle > most_entries)
        return count_above_cap("num_ref_frames_in_pic_order_cnt_cycle", sps.num_ref_frames_in_pic_order_cnt_cycle);
    const brenik::h264_vui_parameters& vui = sps.vui;
    const std::string nal_hrd = hrd_problem("NAL HRD", vui.nal_hrd_parameters_present_flag, vui.nal_hrd);
    return nal_hrd.empty() ? hrd_problem("VCL HRD", vui.vcl_hrd_parameters_present_flag, vui.vcl_hrd) : nal_hrd;
}

std::string count_problem(const brenik::h264_nal_pps& pps)
{
    const std::uint64_t slice_groups = std::uint64_t{pps.num_slice_groups_minus1} + 1;
    const std::uint64_t map_units = std::uint64_t{pps.pic_size_in_map_units_minus1} + 1;
    if (pps.num_slice_groups_minus1 == 0)
        return "";
    if (pps.slice_group_map_type == 0 && slice_groups > most_entries)
        return count_above_cap("num_slice_groups_minus1", slice_groups);
    if (pps.slice_group_map_type == 2 && slice_groups - 1 > most_entries)
        return count_above_cap("num_slice_groups_minus1", slice_groups - 1);
    if (pps.slice_group_map_type == 6 && map_units > most_entries)
        return count_above_cap("pic_size_in_map_units_minus1", map_units);
    return "";
}

std::string count_problem(const brenik::h264_nal_aud&)
{
    return "";
}

std::string count_problem(std::monostate)
{
    return "";
}

} // namespace

std::string problem_of(const walked_unit& unit)
{
    if (std::holds_alternative<std::monostate>(unit.syntax))
        return "";
    const bool truncated = unit.bits_consumed > unit.bits;
    if (unit.malformed_code)
        return fmt::format("malformed Exp-Golomb code at bit {}{}", *unit.malformed_code,
                           truncated ? ", truncated: it reads past the end" : "");
    if (truncated)
        return fmt::format("truncated: fields read past the end, {} bits of {}", unit.bits_consumed, unit.bits);
    if (unit.parsed)
        return "";
    if (const auto* pps = std::get_if<brenik::h264_nal_pps>(&unit.syntax); pps != nullptr && !unit.sps_stored)
        return fmt::format("picture parameter set {} names sequence parameter set {}, which is missing",
                           pps->pic_parameter_set_id, pps->seq_parameter_set_id);
    const std::string count = std::visit([](const auto& syntax) { return count_problem(syntax); }, unit.syntax);
    return count.empty() ? "malformed trailing bits" : count;
}

walked_unit stream_walker::walk(const brenik::h264_nal& nal, rbsp_bytes rbsp)
{
    walked_unit unit;
    switch (nal.nal_unit_type) {
    case brenik::h264_nal_unit_type_slice_non_idr:
    case brenik::h264_nal_unit_type_slice_idr:
        activate_from_slice(rbsp);
        break;
    case brenik::h264_nal_unit_type_sei:
        activate_from_sei(rbsp);
        break;
    case brenik::h264_nal_unit_type_sps: {
        auto& sps = unit.syntax.emplace<brenik::h264_nal_sps>();
        attempt(unit, rbsp, [&](brenik::h2645_common_bitreader& br) { return sps.parse(br); });
        if (unit.parsed)
            keep(sps);
        break;
    }
    case brenik::h264_nal_unit_type_pps: {
        auto& pps = unit.syntax.emplace<brenik::h264_nal_pps>();
        attempt(unit, rbsp, [&](brenik::h2645_common_bitreader& br) { return pps.parse(br, spss); });
        if (const brenik::h264_nal_sps* const sps = spss.find(pps.seq_parameter_set_id)) {
            unit.sps_stored = true;
            unit.chroma_format_idc = sps->chroma_format_idc;
        }
        if (unit.parsed)
            keep(pps);
        break;
    }
    case brenik::h264_nal_unit_type_aud: {
        auto& aud = unit.syntax.emplace<brenik::h264_nal_aud>();
        attempt(unit, rbsp, [&](brenik::h2645_common_bitreader& br) { return aud.parse(br); });
        break;
    }
    default:
        break;
    }
    return unit;
}

void stream_walker::keep(const brenik::h264_nal_sps& sps)
{
    store_bounded(spss, sps.seq_parameter_set_id, sps, most_sps);
    if (!activated)
        spss.set_current_id(sps.seq_parameter_set_id);
}

void stream_walker::keep(const brenik::h264_nal_pps& pps)
{
    store_bounded(ppss, pps.pic_parameter_set_id, pps, most_pps);
}

// A slice names its PPS in the third element of slice_header(), H.264 7.3.3.
void stream_walker::activate_from_slice(rbsp_bytes rbsp)
{
    brenik::h2645_common_bitreader br(rbsp.data(), rbsp.data() + rbsp.size());
    try {
        br.ue(); // first_mb_in_slice
        br.ue(); // slice_type
        if (const brenik::h264_nal_pps* const pps = ppss.find(br.ue()))
            activate(pps->seq_parameter_set_id);
    } catch (const brenik::h2645_common_malformed_code&) {
        // no PPS is named, and the current SPS stays
    }
}

// A buffering period names its SPS in its first element, H.264 D.1.2.
void stream_walker::activate_from_sei(rbsp_bytes rbsp)
{
    brenik::h264_nal_sei_reader sei(rbsp.data(), rbsp.data() + rbsp.size());
    while (sei.next_message()) {
        if (sei.payloadType != brenik::h264_nal_sei_payload_type_buffering_period)
            continue;
        brenik::h2645_common_bitreader br(sei.payload, sei.payload_fence);
        try {
            activate(br.ue());
        } catch (const brenik::h2645_common_malformed_code&) {
            // no SPS is named, and the current one stays
        }
    }
}

void stream_walker::activate(std::uint32_t sps_id)
{
    if (spss.find(sps_id) == nullptr)
        return;
    spss.set_current_id(sps_id);
    activated = true;
}

} // namespace orv_h264
