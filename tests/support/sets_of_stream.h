// Units of real and made-up streams as bytes, and the pictures that they make: what handing out parameter sets is
// tested with.
#pragma once

#include "support/small_units.h"
#include "support/stream_files.h"
#include "support/unit_maker.h"

#include <vector>

namespace support {

namespace h264 = orv_utils_v4::h264;

using unit_list = std::vector<bytes>;

/// The unit with its emulation-prevention bytes.
inline bytes escaped(const bytes& unit)
{
    bytes out(unit.size() + unit.size() / 2 + 40);
    out.resize(h264::frame(unit.data(), unit.size(), 4, false, out.data(), out.size()));
    return {out.begin() + 4, out.end()};
}

inline bytes unit_bytes(const h264::nal_unit& unit, const h264::unit_context& context = {})
{
    return escaped(h264::written(unit, context));
}
inline bytes sps_bytes(const h264::seq_parameter_set_data& data = h264::sps_data())
{
    return unit_bytes(h264::sps_unit(data));
}
inline bytes pps_bytes(std::uint32_t id = 0, std::uint32_t sps_id = 0)
{
    return unit_bytes(h264::pps_unit(id, sps_id));
}
inline bytes sps_extension_bytes(std::uint32_t sps_id = 0)
{
    h264::seq_parameter_set_extension_rbsp extension;
    extension.seq_parameter_set_id = sps_id;
    return unit_bytes(h264::unit_of(13, extension));
}
inline bytes subset_sps_bytes(std::uint32_t id = 0)
{
    h264::subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data = h264::sps_data(id);
    return unit_bytes(h264::unit_of(15, subset));
}

inline std::vector<h264::unit_view> views_of(const unit_list& units)
{
    std::vector<h264::unit_view> views;
    for (const bytes& unit : units)
        views.push_back({unit.data(), unit.size()});
    return views;
}

template <class List>
unit_list copies_of(const List& views)
{
    unit_list units;
    for (const h264::unit_view& view : views)
        units.emplace_back(view.bytes, view.bytes + view.size);
    return units;
}

/// The units of a stream in this framing.
inline unit_list units_in(const bytes& stream, h264::framing how = h264::framing::annex_b)
{
    class collected : public h264::split_sink {
    public:
        void unit(const h264::split_unit& u) override { all.emplace_back(u.bytes, u.bytes + u.size); }
        void gap(const h264::split_gap&) override {}
        unit_list all;
    };
    collected units;
    h264::unit_splitter splitter(how);
    splitter.push(stream.data(), stream.size(), units);
    splitter.flush(units);
    return units.all;
}

/// A stream of frames whose slices are in order, cut where each begins: at a slice with first_mb_in_slice 0, or what
/// stands before it.
inline std::vector<unit_list> pictures_of(const unit_list& units)
{
    std::vector<unit_list> pictures;
    bool slice_came = true;
    for (const bytes& unit : units) {
        const unsigned type = unit[0] & 0x1FU;
        const bool slice = type == 1 || type == 5;
        const bool begins = (slice && unit.size() > 1 && (unit[1] & 0x80) != 0) || (type >= 6 && type <= 9);
        if (slice_came && begins) {
            pictures.emplace_back();
            slice_came = false;
        }
        slice_came = slice_came || slice;
        if (!pictures.empty())
            pictures.back().push_back(unit);
    }
    return pictures;
}

} // namespace support
