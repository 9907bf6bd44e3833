// The real parse of slice headers beside the literal one.
#pragma once

#include "support/element_writer.h"
#include "support/literal_parse.h"
#include "support/literal_slice_header.h"
#include "support/slice_header_fields.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

namespace support {

/// Both parses, with the same parameter sets and the same NAL unit header.
struct slice_header_parses {
    using structure = brenik::h264_nal_slice_header;

    brenik::h2645_common_base_store<brenik::h264_nal_sps> sps_store;
    brenik::h2645_common_base_store<brenik::h264_nal_pps> pps_store;
    brenik::h264_nal nal;

    /// Lists have as many entries as are sent.
    static constexpr std::size_t most_entries = std::numeric_limits<std::size_t>::max();

    compared operator()(structure& object, const bit_range& bits) const
    {
        return compare_parses(
            object, bits,
            [this](structure& slice, brenik::h2645_common_bitreader& br) {
                return slice.parse(br, sps_store, pps_store, nal);
            },
            [this](const literal::structure& s) { return literal::slice_header(s, surroundings()); });
    }

    /// The steps of a list come behind those of earlier parses. An idc that ends the list is not kept, nor what stands
    /// behind it.
    static std::optional<std::int64_t> kept_value(const compared& c, const element& e)
    {
        const value& field = c.after.at(e.name);
        if (e.name == "delta_pic_order_cnt")
            return field.entries[e.entry];
        if (!is_step(e))
            return field.number;
        const std::size_t entry = c.before.at(e.name).entries.size() + e.entry;
        return entry < field.entries.size() ? std::optional(field.entries[entry]) : std::nullopt;
    }

    /// An idc of 24 zero bits fails without an exception.
    static bool looked_ahead(const element& e) { return e.name.ends_with(".modification_of_pic_nums_idc"); }

private:
    static bool is_step(const element& e) { return looked_ahead(e) || e.name.ends_with(".pic_num_value"); }

    literal::slice_surroundings surroundings() const
    {
        literal::slice_surroundings made{{}, {}, static_cast<std::int64_t>(nal.nal_unit_type)};
        for (const auto& [id, seq] : sps_store)
            made.sps[id] = {seq.separate_colour_plane_flag,
                            seq.log2_max_frame_num_minus4,
                            seq.frame_mbs_only_flag,
                            seq.pic_order_cnt_type,
                            seq.log2_max_pic_order_cnt_lsb_minus4,
                            seq.delta_pic_order_always_zero_flag};
        for (const auto& [id, pic] : pps_store)
            made.pps[id] = {pic.seq_parameter_set_id, pic.bottom_field_pic_order_in_frame_present_flag,
                            pic.redundant_pic_cnt_present_flag};
        return made;
    }
};

} // namespace support
