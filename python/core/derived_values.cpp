// What follows from parameter sets.
#include "module_parts.h"
#include "structure_object.h"

#include <orv-utils-v4/h264_syntax.h>

#include <pybind11/stl.h>

#include <string>
#include <utility>
#include <vector>

namespace orv_python {

namespace py = pybind11;

namespace {

/// The data of an SPS: of the structure itself, or of the parameter set that it lies in.
const h264::seq_parameter_set_data& sps_in(py::handle object)
{
    const int number = number_of(object.ptr());
    const bool whole = number == structure_number<h264::seq_parameter_set_rbsp>;
    const bool subset = number == structure_number<h264::subset_seq_parameter_set_rbsp>;
    const void* const at =
        structure_of(object.ptr(), whole || subset ? number : structure_number<h264::seq_parameter_set_data>);
    if (at == nullptr)
        throw py::error_already_set();
    if (whole)
        return static_cast<const h264::seq_parameter_set_rbsp*>(at)->seq_parameter_set_data;
    if (subset)
        return static_cast<const h264::subset_seq_parameter_set_rbsp*>(at)->seq_parameter_set_data;
    return *static_cast<const h264::seq_parameter_set_data*>(at);
}

const h264::pic_parameter_set_rbsp& pps_in(py::handle object)
{
    const void* const at = structure_of(object.ptr(), structure_number<h264::pic_parameter_set_rbsp>);
    if (at == nullptr)
        throw py::error_already_set();
    return *static_cast<const h264::pic_parameter_set_rbsp*>(at);
}

std::pair<std::uint64_t, std::uint64_t> pair_of(const h264::picture_size& size)
{
    return {size.width, size.height};
}
std::pair<std::uint64_t, std::uint64_t> pair_of(const h264::ratio& ratio)
{
    return {ratio.numerator, ratio.denominator};
}

template <std::size_t N, std::size_t M>
std::vector<std::vector<int>> lists_of(const std::uint8_t (&lists)[N][M])
{
    std::vector<std::vector<int>> all;
    for (const auto& list : lists)
        all.emplace_back(std::begin(list), std::end(list));
    return all;
}

py::object map_of_groups(py::handle sps_object, py::handle pps_object, std::uint32_t cycle)
{
    constexpr std::uint64_t most = std::uint64_t{1} << 24; // no level has as many macroblocks
    const h264::seq_parameter_set_data& sps = sps_in(sps_object);
    const h264::pic_parameter_set_rbsp& pps = pps_in(pps_object);
    const std::uint64_t size = h264::PicSizeInMapUnits(sps);
    if (size > most)
        throw py::value_error("the picture is larger than any level allows");
    std::string map(static_cast<std::size_t>(size), '\0');
    if (!h264::slice_group_map(sps, pps, cycle, reinterpret_cast<std::uint8_t*>(map.data()), map.size()))
        return py::none();
    return py::bytes(map);
}

py::object level_of(const h264::seq_parameter_set_data& sps)
{
    const h264::level_limits* const limits = h264::limits_of_level(sps);
    if (limits == nullptr)
        return py::none();
    py::dict all;
    all["name"] = limits->name;
    all["MaxMBPS"] = limits->MaxMBPS;
    all["MaxFS"] = limits->MaxFS;
    all["MaxDpbMbs"] = limits->MaxDpbMbs;
    all["MaxBR"] = limits->MaxBR;
    all["MaxCPB"] = limits->MaxCPB;
    all["MaxVmvR"] = limits->MaxVmvR;
    all["MinCR"] = limits->MinCR;
    all["MaxMvsPer2Mb"] = limits->MaxMvsPer2Mb;
    return all;
}

py::list schedules_of(py::handle object)
{
    const void* const at = structure_of(object.ptr(), structure_number<h264::hrd_parameters>);
    if (at == nullptr)
        throw py::error_already_set();
    const h264::hrd_parameters hrd =
        *static_cast<const h264::hrd_parameters*>(at); // making objects may run Python code
    py::list all;
    for (std::uint32_t i = 0; i < h264::schedule_count(hrd); ++i)
        all.append(py::make_tuple(h264::BitRate(hrd, i), h264::CpbSize(hrd, i), hrd.cbr_flag[i]));
    return all;
}

} // namespace

void add_derived_values(py::module_& m)
{
    m.def("coded_size", [](py::handle sps) { return pair_of(h264::coded_size(sps_in(sps))); });
    m.def("cropped_size", [](py::handle sps) { return pair_of(h264::cropped_size(sps_in(sps))); });
    m.def("chroma_subsampling", [](py::handle sps) { return pair_of(h264::chroma_subsampling(sps_in(sps))); });
    m.def("sample_aspect_ratio",
          [](py::handle sps) { return pair_of(h264::sample_aspect_ratio(sps_in(sps).vui_parameters)); });
    m.def("field_rate", [](py::handle sps) { return pair_of(h264::field_rate(sps_in(sps).vui_parameters)); });
    m.def("frame_rate", [](py::handle sps) { return pair_of(h264::frame_rate(sps_in(sps).vui_parameters)); });
    m.def("bit_depths", [](py::handle sps) {
        return std::pair{h264::BitDepthY(sps_in(sps)), h264::BitDepthC(sps_in(sps))};
    });
    m.def("profile_name", [](py::handle sps) { return std::string(h264::profile_name(sps_in(sps))); });
    m.def("codec_string", [](py::handle sps) { return std::string(h264::codec_string(sps_in(sps)).data()); });
    m.def("level_limits", [](py::handle sps) { return level_of(sps_in(sps)); });
    m.def("max_dpb_frames", [](py::handle sps) { return h264::MaxDpbFrames(sps_in(sps)); });
    m.def("most_buffered_frames", [](py::handle sps) { return h264::most_buffered_frames(sps_in(sps)); });
    m.def("most_reordered_frames", [](py::handle sps) { return h264::most_reordered_frames(sps_in(sps)); });
    m.def("scaling_lists", [](py::handle sps, py::handle pps) {
        const h264::scaling_lists lists = h264::scaling_lists_of(sps_in(sps), pps.is_none() ? nullptr : &pps_in(pps));
        return std::pair{lists_of(lists.list_4x4), lists_of(lists.list_8x8)};
    });
    m.def("slice_group_map", map_of_groups);
    m.def("schedules", schedules_of);
}

} // namespace orv_python
