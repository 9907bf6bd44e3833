// The parameter sets as they stand at a place of a stream, kept for whoever goes on with a unit later: to trace it, to
// edit it, or to look at them. Sets that stay are shared from one place to the next.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <memory>

namespace orv_python {

namespace h264 = orv_utils_v4::h264;

/// Parameter sets that nobody changes.
struct set_snapshot {
    h264::parameter_sets sets; ///< points to those below
    std::shared_ptr<const h264::seq_parameter_set_rbsp> sps[h264::parameter_sets::sps_ids];
    std::shared_ptr<const h264::subset_seq_parameter_set_rbsp> subset_sps[h264::parameter_sets::sps_ids];
    std::shared_ptr<const h264::pic_parameter_set_rbsp> pps[h264::parameter_sets::pps_ids];
    std::shared_ptr<const h264::depth_parameter_set_rbsp> dps[h264::parameter_sets::dps_ids];

    set_snapshot() = default;
    set_snapshot(const set_snapshot&);
    set_snapshot& operator=(const set_snapshot&) = delete;
    ~set_snapshot() = default;
};

/// What a unit was read with.
struct kept_context {
    std::shared_ptr<const set_snapshot> sets;
    std::shared_ptr<const h264::seq_parameter_set_data> active_sps;
    std::shared_ptr<const h264::pic_parameter_set_rbsp> active_pps;
    std::shared_ptr<const h264::subset_seq_parameter_set_rbsp> mvcd_sps;
    bool primary_idr = false;
    std::int32_t partition_a_pps = -1;

    h264::unit_context view() const;
};

/// Follows the parameter sets of a stream.
class set_follower {
public:
    /// Units are about to be handed on, among which there may be parameter sets that were read before their turn.
    void expect_all() { everything = true; }
    /// A unit was read: `now` has the sets that it was read with.
    void look(const h264::unit_reading& reading);
    /// Sets as they stood when look() was called last.
    const std::shared_ptr<const set_snapshot>& latest() const { return snapshot; }
    /// The context of that reading, in sets that stay.
    kept_context keep(const h264::unit_context& context) const;
    std::shared_ptr<const h264::seq_parameter_set_data> keep(const h264::seq_parameter_set_data* sps,
                                                             const h264::parameter_sets& now) const;
    std::shared_ptr<const h264::pic_parameter_set_rbsp> keep(const h264::pic_parameter_set_rbsp* pps) const;

private:
    void follow_all(const h264::parameter_sets& now);
    void follow_pps(const h264::parameter_sets& now, std::uint32_t id);

    std::shared_ptr<const set_snapshot> snapshot = std::make_shared<const set_snapshot>();
    bool everything = false;
    std::int64_t pps_to_follow = -1;
};

} // namespace orv_python
