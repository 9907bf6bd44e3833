// Two streams laid beside each other: their access units by fingerprints, 48 bytes each in memory and as much while
// they are sorted, then those that are not the same unit by unit and element by element, an access unit at a time.
#pragma once

#include "diff/access_unit_feed.h"
#include "diff/diff.h"
#include "diff/difference_log.h"
#include "diff/sequence_alignment.h"
#include "diff/unit_comparison.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orv_h264 {

/// Access units in a row that one stream lacks, or has at another place.
struct unit_run_difference {
    difference what = difference::only_a;
    std::uint64_t first_a = 0; ///< number of the first; where B alone has them, of the one that follows
    std::uint64_t first_b = 0;
    std::uint64_t count = 0;
    std::uint64_t offset_a = 0; ///< of the first one that is there
    std::uint64_t offset_b = 0;
};

struct compared_stream {
    std::string name;
    h264::framing framing = h264::framing::annex_b;
    std::uint64_t bytes = 0;
    feed_totals totals;
};

struct access_unit_counts {
    std::uint64_t same = 0;    ///< at the same place, and nothing in them differs that counts
    std::uint64_t changed = 0; ///< at the same place
    std::uint64_t only_a = 0;
    std::uint64_t only_b = 0;
    std::uint64_t moved = 0; ///< the same slice data at another place
};

class stream_comparison {
public:
    /// So many stretches are told apart.
    static constexpr std::size_t most_runs = 4096;

    explicit stream_comparison(const diff_options& chosen);
    /// Reads both streams, twice where they are not the same.
    void run();

    bool differs() const { return counts.changed + counts.only_a + counts.only_b + counts.moved != 0; }
    const compared_stream& stream(bool b) const { return streams[b ? 1 : 0]; }
    const access_unit_counts& access_units() const { return counts; }
    const std::vector<unit_run_difference>& runs() const { return stretches; }
    std::uint64_t further_runs() const { return stretches_not_kept; }
    const difference_log& elements() const { return log; }

private:
    /// The access units of a stream as they are remembered.
    struct prints {
        std::vector<aligned_entry> entries;
        std::vector<std::uint64_t> offsets;
    };

    prints read(const std::string& path, compared_stream& what) const;
    void add_runs();
    void add_run(difference what, std::uint64_t a, std::uint64_t b);
    bool is_same(std::uint64_t a, std::uint64_t b) const;
    void compare_elements();
    static bool skip_to(access_unit_feed& feed, std::uint64_t& next, std::uint64_t wanted, compared_access_unit& to);

    const diff_options& options;
    compared_stream streams[2];
    prints prints_a;
    prints prints_b;
    alignment partners;
    access_unit_counts counts;
    std::vector<unit_run_difference> stretches;
    std::uint64_t stretches_not_kept = 0;
    difference_log log;
};

} // namespace orv_h264
