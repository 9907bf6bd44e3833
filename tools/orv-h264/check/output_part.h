// The order of output against the order of decoding, over time.
#pragma once

#include "check/check_part.h"
#include "check/known_sps.h"
#include "check/output_facts.h"

#include <deque>
#include <optional>
#include <vector>

namespace orv_h264 {

class output_part final : public check_part {
public:
    explicit output_part(violation_log& to) : log(to) {}

    void unit(const listed_unit& unit, const h264::unit_reading& reading) override { sets.take(unit, reading); }
    void access_unit(const h264::access_unit& unit, const h264::picture* of) override;
    void decoded(const h264::picture& picture, const h264::reference_marking& marking) override;
    void output(const h264::picture& picture) override;
    void end() override;

private:
    struct order_of_sps {
        std::uint64_t pictures = 0;
        bool reordered = false;
        std::uint32_t told = 0; ///< frames that wait, of which the log has been told
    };
    using sps_entry = known_sps_list<order_of_sps>::entry;
    /// A picture that is not output yet, or was a short time ago.
    struct open_picture {
        std::uint64_t number;
        std::uint64_t unit; ///< its first slice
        bool all_known;     ///< since an IDR picture or operation 5, nothing is missing
        sps_entry sps;
    };
    struct shown_picture {
        std::uint64_t sequence;
        std::int64_t count;
        bool all_known;
    };

    void begin_picture(const h264::access_unit& unit, const h264::picture& of);
    std::uint32_t later_than(const h264::picture& picture);
    void judge_sps(const known_sps<order_of_sps>& of);
    const open_picture* find(std::uint64_t picture) const;

    violation_log& log;
    known_sps_list<order_of_sps> sets;
    bool missing = false;   // since the last IDR picture or operation 5
    bool all_known = false; // since one of these
    sps_entry latest;
    std::deque<open_picture> open;
    std::uint64_t sequence = 0;
    std::vector<std::int64_t> highest; // PicOrderCnts of the sequence, the highest first
    std::optional<shown_picture> shown;
    std::optional<std::uint64_t> dropped; // sequence
};

} // namespace orv_h264
