// The layers of a scalable stream, and the views of a multiview one: what each is, and what it takes.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// A layer: the units of one dependency_id, quality_id and temporal_id. A view: those of one view_id, depth apart.
struct layer_summary {
    h264::slice_layer layer;
    bool scalable = false;                           ///< it is a layer; else a view
    std::uint64_t pictures = 0;                      ///< access units that have slices of it
    std::uint64_t references = 0;                    ///< of these, that are for reference: nal_ref_idc is not 0
    std::uint64_t units = 0;                         ///< slices, and the prefix units before them
    std::uint64_t bytes = 0;                         ///< of these, without their framing
    std::optional<h264::seq_parameter_set_data> sps; ///< of its first slice whose SPS or subset SPS is there
    std::optional<h264::ratio> frame_rate;           ///< as its VUI, or the entry for the layer in that, tells it
};

class layer_list {
public:
    /// The most layers and views that are told apart; the units of further ones are counted.
    static constexpr std::size_t most_layers = 256;

    /// Takes the slices of an access unit.
    void add(const h264::access_unit& unit, const h264::parameter_sets& sets);

    /// In rising order; empty where every unit is of the base and nothing says that there is more.
    std::vector<layer_summary> layers() const;
    std::uint64_t further_units() const noexcept { return further; }

private:
    struct entry {
        layer_summary summary;
        std::uint64_t latest = ~std::uint64_t{0}; // the access unit that was counted last
    };

    std::size_t find(const h264::slice_layer& layer);
    static void add_slice(entry& of, const h264::access_unit& unit, const h264::access_unit_part& slice,
                          const h264::parameter_sets& sets);

    std::vector<entry> list;
    std::uint64_t further = 0;
    bool any_extension = false; // a unit of another layer or view, or a prefix unit
};

} // namespace orv_h264
