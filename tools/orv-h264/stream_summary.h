// What a stream is, added up unit by unit and picture by picture, in bounded memory.
#pragma once

#include "container/container_check.h"
#include "encoder_text.h"
#include "frame_totals.h"
#include "framing.h"
#include "group_counter.h"
#include "layer_list.h"
#include "picture_rows.h"
#include "problem_list.h"
#include "sei_counts.h"
#include "sequence_summary.h"

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

namespace orv_h264 {

struct stream_summary {
    /// The most sequences told apart: parameter sets that pictures use and that differ. Further ones are counted.
    static constexpr std::size_t most_sequences = 64;

    struct type_count {
        std::uint64_t units = 0;
        std::uint64_t bytes = 0; ///< framing included
    };

    problem_list problems;                   ///< what is lost
    problem_list findings;                   ///< what is odd, and no more
    std::vector<sequence_summary> sequences; ///< in the order of their first pictures
    std::uint64_t further_sequences = 0;     ///< beyond most_sequences; one that comes back later counts again
    layer_list layers;
    std::array<type_count, 32> types; ///< by nal_unit_type
    std::array<type_count, 5> slices; ///< by slice_kind, primary ones whose header was read; without their framing
    sei_counts sei;
    frame_totals frames;
    group_counter groups;
    std::optional<encoder_text> encoder;      ///< the first that user data tells of
    std::optional<container_check> container; ///< of a stream in one
};

/// The bits a second of the layer's slices; nothing unless the duration of every picture is known.
std::optional<std::uint64_t> bit_rate_of(const layer_summary& layer, const frame_totals& frames);

/// Adds up the units of a stream.
class stream_survey final : public h264::split_sink, row_sink {
public:
    /// `most_unit_bytes` is the limit of the splitter, `log` tells where the bytes of the stream lie in its file. What
    /// the survey adds up goes on to `behind`, where that is given.
    stream_survey(h264::framing framing, std::uint64_t most_unit_bytes, const packet_log* log = nullptr,
                  row_sink* behind = nullptr)
        : prefix_size(prefix_size_of(framing)), rows(false, most_unit_bytes, *this, log), next(behind)
    {
    }

    /// Parameter sets that hold before the first unit; they are not counted.
    void begin_with(std::span<const h264::split_unit> sets) { rows.begin_with(sets); }

    void unit(const h264::split_unit& unit) override;
    void gap(const h264::split_gap& gap) override;
    /// The stream has ended, and has so many bytes.
    void finish(std::uint64_t end) { rows.finish(end); }

    stream_summary summary;

private:
    /// What a row needs of its access units.
    struct coded_picture {
        std::size_t sequence;    // its place in the list, or behind it
        std::uint64_t vcl_bytes; // slices and filler data
    };

    void access_unit_came(const h264::access_unit& unit) override;
    void row(picture_row&& row) override;
    void problem(const row_problem& problem) override;

    void find_sequence(std::uint64_t offset, const h264::seq_parameter_set_data& sps);
    void count_further(const h264::seq_parameter_set_data& sps);
    void add_sets(const h264::access_unit& unit);
    void add_picture(const h264::access_unit& unit);
    void find_sequence_of(const h264::access_unit& unit);
    void find_encoder(const h264::access_unit& unit);
    void add_slices(const h264::access_unit& unit);
    void count_problem(const row_problem& problem);
    void add_seconds(const picture_row& row, const coded_picture& of);

    unsigned prefix_size;
    picture_rows rows;
    row_sink* next;
    std::size_t current = 0;                                  // of the sequences
    std::optional<h264::seq_parameter_set_data> last_further; // of the further sequence counted last
    std::deque<coded_picture> coded;                          // whose rows have not come yet
    reorder_meter reordering;
    bit_rate_meter nal_rate;
    bit_rate_meter vcl_rate;
    bool any_picture = false;
    const h264::seq_parameter_set_data* latest_sps = nullptr; // of the picture before: where it stands, for comparing
    bool sets_came = true;                                    // since then, or its access unit has some
};

} // namespace orv_h264
