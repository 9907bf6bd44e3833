// Streams put together unit by unit from small sound ones, in Annex B framing.
#pragma once

#include "support/small_units.h"

#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

class made_stream {
public:
    /// Slices are written with these sets, both with the id 0.
    explicit made_stream(const seq_parameter_set_data& of_sps = sps_data()) : sets(of_sps) {}

    seq_parameter_set_data& sps() { return sets.sps.seq_parameter_set_data; }
    pic_parameter_set_rbsp& pps() { return sets.pps; }

    made_stream& add(const nal_unit& unit)
    {
        unsigned char room[4096];
        bit_writer writer(room, sizeof room);
        outcome result;
        if (!write(unit, sets.context, writer, result))
            throw result.failure;
        unsigned char framed[sizeof room * 3 / 2 + 40];
        const std::size_t size = frame(room, writer.size(), 0, true, framed, sizeof framed);
        bytes.insert(bytes.end(), framed, framed + size);
        return *this;
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
    /// A unit of the type with these bytes behind its header.
    made_stream& add_bytes(unsigned nal_unit_type, const std::vector<unsigned char>& payload)
    {
        bytes.insert(bytes.end(), {0, 0, 0, 1, static_cast<unsigned char>(nal_unit_type)});
        bytes.insert(bytes.end(), payload.begin(), payload.end());
        return *this;
    }

    std::vector<unsigned char> bytes;

private:
    small_sets sets;
};

} // namespace orv_utils_v4::h264
