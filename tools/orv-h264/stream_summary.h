// What a stream is, added up unit by unit and frame by frame, in bounded memory.
#pragma once

#include "frame_totals.h"
#include "problem_list.h"
#include "sequence_summary.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace orv_h264 {

class stream_summary {
public:
    /// The most sequences told apart: parameter sets that pictures use and that differ. Further ones are counted.
    static constexpr std::size_t most_sequences = 64;

    struct type_count {
        std::uint64_t units = 0;
        std::uint64_t bytes = 0; ///< framing included
    };

    /// Takes the next unit.
    void add(const unit& where, brenik::h264_nal nal, const walked_unit& walked);

    /// Takes the next frame.
    void add(const frame& f);

    problem_list problems;
    std::vector<sequence_summary> sequences; ///< in the order of their first pictures
    std::uint64_t further_sequences = 0;     ///< beyond most_sequences; one that comes back later counts again
    std::array<type_count, 32> types;        ///< by nal_unit_type
    frame_totals frames;
    std::string encoder; ///< as unregistered user data names it, or ""

private:
    void add_sps(std::uint64_t offset, const walked_unit& walked);
    void add_slice(std::uint64_t offset, const walked_unit& walked);
    void add_sei(const walked_sei& sei);
    void find_sequence(std::uint64_t offset, const brenik::h264_nal_sps& sps);
    void count_further(const brenik::h264_nal_sps& sps);

    std::size_t current = 0;                               // of the sequences
    std::uint32_t current_id = 0;                          // its seq_parameter_set_id
    std::optional<brenik::h264_nal_sps> last_further;      // the SPS of the further sequence counted last
    std::optional<brenik::h264_nal_sei_pic_timing> timing; // of the picture that follows
    bool sps_changed = true;                               // an SPS has come since the current sequence was found
    bool any_picture = false;
};

} // namespace orv_h264
