// Which units of an access unit stay when one layer or view is taken out of a stream (H.264 clauses G.8.8.1 and
// H.8.5.3, the sub-bitstream extraction).
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <optional>
#include <set>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// The layer that is to be decoded, as dIdTarget, qIdTarget and tIdTarget of clause G.8.8.1.
struct layer_target {
    std::uint8_t dependency_id = 0;
    std::uint8_t quality_id = 15;
    std::uint8_t temporal_id = 7;
};

class layer_choice {
public:
    /// All units stay.
    layer_choice() = default;
    /// The base layer or view alone.
    static layer_choice of_base();
    /// What this layer needs. Of lower dependency_ids every quality layer stays.
    static layer_choice of_layer(const layer_target& target);
    /// The view with those that it refers to, in anchor pictures or others, and the base view. Depth views go.
    static layer_choice of_view(std::uint16_t view_id);

    /// It is not all units that stay.
    bool is_some() const noexcept { return what != kind::everything; }

    /// Which units of the access unit stay, by their place in it: all of them, or none where none of its slices does.
    /// @param sets as they stand
    std::vector<bool> kept(const h264::access_unit& unit, const h264::parameter_sets& sets);

    /// The set stays, of those in force.
    bool keeps_set(const h264::nal_unit& set, const h264::parameter_sets& sets) const;

    /// There were slices of the layer, or a subset SPS that has the view.
    bool target_seen() const noexcept { return seen; }

private:
    enum class kind : std::uint8_t { everything, base, layer, view };

    bool is_base_alone() const;
    bool keeps_slice(const h264::access_unit_part& part);
    bool keeps_extension(const h264::nal_unit_header& header);
    bool keeps_message(const h264::access_unit_part& part) const;
    bool keeps_nested(const h264::sei_message& message) const;
    bool keeps(const h264::access_unit_part& part, const h264::parameter_sets& sets);
    void find_views(const h264::parameter_sets& sets);
    void add_references(const std::vector<h264::mvc_view>& views);

    kind what = kind::everything;
    layer_target target;
    std::uint16_t view = 0;
    std::set<std::uint32_t> required; // views, the base view too
    bool views_known = false;
    bool base_view_wanted = false; // the target is the base view itself
    bool seen = false;
};

} // namespace orv_h264
