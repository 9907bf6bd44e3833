// What the pictures of one sequence parameter set are like.
#pragma once

#include "second_rates.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

struct sequence_summary {
    std::uint64_t offset = 0; ///< of its first picture; of the SPS's header while there is no picture at all
    h264::seq_parameter_set_data sps;
    std::uint64_t pictures = 0;         ///< frames, two fields, or fields whose other field is missing
    std::uint64_t frame_pictures = 0;   ///< coded frames without macroblock-adaptive frame/field decoding
    std::uint64_t mbaff_pictures = 0;   ///< coded frames with it
    std::uint64_t field_pictures = 0;   ///< coded fields
    std::uint64_t told_progressive = 0; ///< coded frames whose picture timing says that they are
    bool cabac = false;                 ///< some slice is CABAC coded
    bool cavlc = false;
    std::optional<bool> top_field_first; ///< as picture timing or the first field tell it
    std::uint32_t reorder_depth = 0;     ///< that the pictures use; reorder_meter tells it
    second_rates nal_seconds;            ///< of all units, where there is a NAL HRD
    second_rates vcl_seconds;            ///< of slices and filler data, where there is a VCL HRD

    /// Takes an access unit with a primary coded picture of this parameter set.
    void add(const h264::access_unit& unit, const h264::parameter_sets& sets);
};

/// Equal but for the id.
bool same_sequence(const h264::seq_parameter_set_data& a, const h264::seq_parameter_set_data& b);

/// What an SPS has otherwise than the one before it, in words: "level", "picture size"; "other elements" where nothing
/// has a word.
std::vector<std::string> changes_between(const h264::seq_parameter_set_data& before,
                                         const h264::seq_parameter_set_data& after);

/// How the pictures are scanned, as their slices show it: "progressive", "interlaced", "PAFF", "MBAFF" or "PAFF with
/// MBAFF". Frames of an SPS that allows fields are progressive where picture timing says so of all of them, else
/// "frames, fields allowed"; without pictures "fields allowed".
std::string scan_type(const sequence_summary& sequence);

/// The level's number, H.264 A.3: "4", "3.1", "1b"; also of a level_idc that Table A-1 does not have.
std::string level_name(const h264::seq_parameter_set_data& sps);

/// In lowest terms; nothing of a ratio that is not told.
std::optional<h264::ratio> known(h264::ratio ratio);

/// The cropped size with its width made that of square samples.
h264::picture_size display_size(const h264::seq_parameter_set_data& sps);

/// max_num_reorder_frames, or what stands for it.
struct promised_depth {
    std::uint32_t frames = 0;
    bool sent = false; ///< else it is inferred, H.264 E.2.1
};
promised_depth promised_reorder_depth(const h264::seq_parameter_set_data& sps);

} // namespace orv_h264
