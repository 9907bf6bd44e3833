// Units of real and made-up streams as bytes, and the pictures that they make: what handing out parameter sets is
// tested with.
#pragma once

#include "support/small_units.h"
#include "support/stream_files.h"

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
    bytes out(4096);
    h264::bit_writer writer(out.data(), out.size());
    h264::outcome result;
    if (!h264::write(unit, context, writer, result))
        throw result.failure;
    out.resize(static_cast<std::size_t>(writer.bytes()));
    return escaped(out);
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

/// An SPS of profile 244.
inline h264::seq_parameter_set_data sps_data_with_chroma(std::uint32_t chroma_format_idc)
{
    h264::seq_parameter_set_data data = h264::sps_data();
    data.profile_idc = 244;
    data.chroma_format_idc = chroma_format_idc;
    return data;
}
inline bytes sps_with_chroma(std::uint32_t chroma_format_idc)
{
    return sps_bytes(sps_data_with_chroma(chroma_format_idc));
}
/// A PPS with 8x8 lists, of which there are two, or in 4:4:4 six.
inline bytes pps_with_lists(std::uint32_t chroma_format_idc)
{
    h264::pic_parameter_set_rbsp set = h264::pps_rbsp();
    set.transform_8x8_mode_sent = set.transform_8x8_mode_flag = set.pic_scaling_matrix_present_flag = true;
    set.second_chroma_qp_index_offset = -3;
    const h264::small_sets sets(sps_data_with_chroma(chroma_format_idc));
    return unit_bytes(h264::unit_of(8, set), sets.context);
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

/// The units of each access unit of a stream.
inline std::vector<unit_list> pictures_of(const unit_list& units)
{
    class collected : public h264::access_unit_sink {
    public:
        void take(const h264::access_unit& unit) override
        {
            all.emplace_back();
            for (const h264::access_unit_part& part : unit.parts)
                all.back().emplace_back(part.place.bytes, part.place.bytes + part.place.size);
        }
        std::vector<unit_list> all;
    };
    collected pictures;
    h264::access_units reader;
    for (const bytes& unit : units)
        reader.push({unit.data(), unit.size(), 0, 0}, pictures);
    reader.flush(pictures);
    return pictures.all;
}

} // namespace support
