// Streams put together unit by unit from small sound ones, in Annex B framing.
#pragma once

#include "support/made_slice.h"
#include "support/small_units.h"

#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

inline nal_unit_header_mvc_extension extension_of_view(std::uint16_t view_id)
{
    nal_unit_header_mvc_extension extension;
    extension.view_id = view_id;
    extension.priority_id = 5;
    extension.temporal_id = 2;
    extension.anchor_pic_flag = true;
    extension.inter_view_flag = true;
    return extension;
}

class made_stream {
public:
    /// Slices are written with these sets, both with the id 0.
    explicit made_stream(const seq_parameter_set_data& of_sps = sps_data()) : sets(of_sps) {}

    seq_parameter_set_data& sps() { return sets.sps.seq_parameter_set_data; }
    pic_parameter_set_rbsp& pps() { return sets.pps; }

    /// A slice gets a byte of data.
    made_stream& add(const nal_unit& unit)
    {
        unsigned char room[4096];
        bit_writer writer(room, sizeof room);
        outcome result;
        if (!write(unit, sets.context, writer, result))
            throw result.failure;
        auto written = static_cast<std::size_t>(writer.bytes());
        const unsigned type = unit.header.nal_unit_type;
        if ((type >= 1 && type <= 5) || type == 19 || type == 20)
            room[written++] = 0x80;
        unsigned char framed[sizeof room * 3 / 2 + 40];
        const std::size_t size = frame(room, written, 0, true, framed, sizeof framed);
        bytes.insert(bytes.end(), framed, framed + size);
        units.emplace_back(framed + 4, framed + size);
        return *this;
    }
    made_stream& add(const made_slice& slice)
    {
        return add_slice(slice.nal_unit_type, slice.nal_ref_idc, [&](slice_header& h) { h = slice.header; });
    }
    /// The SPS and the PPS.
    made_stream& add_sets() { return add(unit_of(7, sets.sps)).add(unit_of(8, sets.pps)); }
    /// An I slice of the type, 1 or 5, whose header `change` makes what it shall be.
    template <class Change>
    made_stream& add_slice(unsigned nal_unit_type, unsigned nal_ref_idc, Change change)
    {
        nal_unit unit = slice_unit(nal_unit_type);
        unit.header.nal_ref_idc = static_cast<std::uint8_t>(nal_ref_idc);
        change(std::get<slice_layer_without_partitioning_rbsp>(unit.rbsp).slice_header);
        return add(unit);
    }
    /// A subset SPS with the data of the SPS, which slices of other views stand on.
    made_stream& add_subset_sps()
    {
        subset.seq_parameter_set_data = sps();
        sets.sets.subset_sps[0] = &subset;
        return add(unit_of(15, subset));
    }
    /// A slice of another view, type 20.
    made_stream& add_view(std::uint16_t view_id, std::uint32_t first_mb_in_slice = 0)
    {
        slice_layer_extension_rbsp slice;
        slice_header header;
        header.slice_type = 7;
        header.first_mb_in_slice = first_mb_in_slice;
        slice.header = header;
        nal_unit unit = unit_of(20, slice);
        unit.header.nal_unit_header_mvc_extension = extension_of_view(view_id);
        return add(unit);
    }
    /// A slice with so many bytes of data.
    made_stream& add_large(const made_slice& slice, std::size_t data)
    {
        made_stream alone(sps());
        alone.add(slice);
        std::vector<unsigned char> payload(alone.units[0].begin() + 1, alone.units[0].end());
        payload.insert(payload.end() - 1, data, 0x55);
        return add_bytes(alone.units[0][0], payload);
    }
    /// The same slice again, of a redundant coded picture.
    made_stream& add_redundant(made_slice slice, std::uint32_t redundant_pic_cnt)
    {
        slice.header.redundant_pic_cnt = redundant_pic_cnt;
        return add(slice);
    }
    /// Partition A, B or C, by its type, of a slice; the last two do not have the header.
    made_stream& add_partition(unsigned type, const slice_header& header, std::uint32_t slice_id)
    {
        slice_data_partition_a_layer_rbsp a;
        a.slice_header = header;
        a.slice_id = slice_id;
        slice_data_partition_b_layer_rbsp b;
        b.slice_id = slice_id;
        slice_data_partition_c_layer_rbsp c;
        c.slice_id = slice_id;
        sets.context.partition_a_pps = 0;
        if (type == 2)
            return add(unit_of(2, a));
        return type == 3 ? add(unit_of(3, b)) : add(unit_of(4, c));
    }
    /// A unit of the type with these bytes behind its header.
    made_stream& add_bytes(unsigned nal_unit_type, const std::vector<unsigned char>& payload)
    {
        units.push_back({static_cast<unsigned char>(nal_unit_type)});
        units.back().insert(units.back().end(), payload.begin(), payload.end());
        bytes.insert(bytes.end(), {0, 0, 0, 1});
        bytes.insert(bytes.end(), units.back().begin(), units.back().end());
        return *this;
    }

    std::vector<unsigned char> bytes;              ///< framed
    std::vector<std::vector<unsigned char>> units; ///< the same, each by itself
    small_sets sets;                               ///< that units are written with

private:
    subset_seq_parameter_set_rbsp subset;
};

} // namespace orv_utils_v4::h264
