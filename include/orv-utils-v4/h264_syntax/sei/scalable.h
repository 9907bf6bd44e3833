/// @file
/// The SEI payloads of scalable video coding, but for scalability_info(): H.264 clauses G.13.1.2 to G.13.1.12 and
/// G.13.2 (F.13 in editions that letter the annex F). Payload types 25 to 35.
#pragma once

#include <orv-utils-v4/h264_syntax/hrd_parameters.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orv_utils_v4::h264 {

struct sei_message;

/// sub_pic_scalable_layer(), payload type 25.
struct sub_pic_scalable_layer {
    std::uint32_t layer_id = 0; ///< 0 to 2047

    friend ORV_UTILS_V4_EXPORT bool operator==(const sub_pic_scalable_layer&, const sub_pic_scalable_layer&);
};

/// A layer representation that is not required.
struct non_required_layer_rep_id {
    std::uint8_t non_required_layer_rep_dependency_id = 0; ///< 0 to 7
    std::uint8_t non_required_layer_rep_quality_id = 0;    ///< 0 to 15

    friend ORV_UTILS_V4_EXPORT bool operator==(const non_required_layer_rep_id&, const non_required_layer_rep_id&);
};

/// What is not required where one dependency_id is the target.
struct non_required_layer_rep_entry {
    std::uint8_t entry_dependency_id = 0; ///< 0 to 7
    std::uint32_t num_non_required_layer_reps_minus1 = 0;
    std::vector<non_required_layer_rep_id> non_required_layer_reps;

    friend ORV_UTILS_V4_EXPORT bool operator==(const non_required_layer_rep_entry&,
                                               const non_required_layer_rep_entry&);
};

/// non_required_layer_rep(), payload type 26.
struct non_required_layer_rep {
    static constexpr std::uint32_t most_entries = 8; ///< one for each dependency_id

    std::uint32_t num_info_entries_minus1 = 0; ///< 0 to 7
    std::vector<non_required_layer_rep_entry> entries;

    friend ORV_UTILS_V4_EXPORT bool operator==(const non_required_layer_rep&, const non_required_layer_rep&);
};

/// priority_layer_info(), payload type 27.
struct priority_layer_info {
    static constexpr std::uint32_t most_ids = 15;

    std::uint8_t pr_dependency_id = 0;           ///< 0 to 7
    std::uint8_t num_priority_ids = 0;           ///< 0 to 15
    std::uint8_t alt_priority_id[most_ids] = {}; ///< 0 to 63 each

    friend ORV_UTILS_V4_EXPORT bool operator==(const priority_layer_info&, const priority_layer_info&);
};

/// layers_not_present(), payload type 28.
struct layers_not_present {
    std::uint32_t num_layers = 0;        ///< 0 to 2047
    std::vector<std::uint32_t> layer_id; ///< 0 to 2047 each

    friend ORV_UTILS_V4_EXPORT bool operator==(const layers_not_present&, const layers_not_present&);
};

/// What a layer depends on from here.
struct layer_dependency {
    std::uint32_t layer_id = 0; ///< 0 to 2047
    bool layer_dependency_info_present_flag = false;
    std::uint32_t num_directly_dependent_layers = 0;
    std::vector<std::uint32_t> directly_dependent_layer_id_delta_minus1;
    std::uint32_t layer_dependency_info_src_layer_id_delta_minus1 = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const layer_dependency&, const layer_dependency&);
};

/// layer_dependency_change(), payload type 29.
struct layer_dependency_change {
    static constexpr std::uint32_t most_layers = 2048;

    std::uint32_t num_layers_minus1 = 0; ///< 0 to 2047
    std::vector<layer_dependency> layers;

    friend ORV_UTILS_V4_EXPORT bool operator==(const layer_dependency_change&, const layer_dependency_change&);
};

/// A layer representation that nested messages apply to.
struct scalable_nesting_layer {
    std::uint8_t sei_dependency_id = 0; ///< 0 to 7
    std::uint8_t sei_quality_id = 0;    ///< 0 to 15

    friend ORV_UTILS_V4_EXPORT bool operator==(const scalable_nesting_layer&, const scalable_nesting_layer&);
};

/// scalable_nesting(), payload type 30: messages that apply to layer representations. Include sei.h where it is used.
struct scalable_nesting {
    static constexpr std::size_t most_messages = 128; ///< a payload with more of them is read no further

    bool all_layer_representations_in_au_flag = false;
    std::uint32_t num_layer_representations_minus1 = 0; ///< 0 to 127
    std::vector<scalable_nesting_layer> layers;         ///< none where the messages apply to all
    std::uint8_t sei_temporal_id = 0;                   ///< 0 to 7
    std::vector<sei_message> messages;                  ///< one or more

    friend ORV_UTILS_V4_EXPORT bool operator==(const scalable_nesting&, const scalable_nesting&);
};

/// The timing and the buffers of a temporal layer with those below it.
struct base_layer_temporal_hrd_layer {
    std::uint8_t sei_temporal_id = 0; ///< 0 to 7
    bool sei_timing_info_present_flag = false;
    std::uint32_t sei_num_units_in_tick = 0; ///< above 0
    std::uint32_t sei_time_scale = 0;        ///< units in a second, above 0
    bool sei_fixed_frame_rate_flag = false;
    bool sei_nal_hrd_parameters_present_flag = false;
    hrd_parameters sei_nal_hrd_parameters; ///< the first hrd_parameters( )
    bool sei_vcl_hrd_parameters_present_flag = false;
    hrd_parameters sei_vcl_hrd_parameters; ///< the second one
    bool sei_low_delay_hrd_flag = false;
    bool sei_pic_struct_present_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const base_layer_temporal_hrd_layer&,
                                               const base_layer_temporal_hrd_layer&);
};

/// base_layer_temporal_hrd(), payload type 31.
struct base_layer_temporal_hrd {
    static constexpr std::uint32_t most_layers = 8;

    std::uint32_t num_of_temporal_layers_in_base_layer_minus1 = 0; ///< 0 to 7
    std::vector<base_layer_temporal_hrd_layer> layers;

    friend ORV_UTILS_V4_EXPORT bool operator==(const base_layer_temporal_hrd&, const base_layer_temporal_hrd&);
};

/// The check sum of the quality layers of one dependency_id.
struct quality_layer_integrity_entry {
    std::uint8_t entry_dependency_id = 0; ///< 0 to 7
    std::uint16_t quality_layer_crc = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const quality_layer_integrity_entry&,
                                               const quality_layer_integrity_entry&);
};

/// quality_layer_integrity_check(), payload type 32.
struct quality_layer_integrity_check {
    std::uint32_t num_info_entries_minus1 = 0; ///< 0 to 7
    std::vector<quality_layer_integrity_entry> entries;

    friend ORV_UTILS_V4_EXPORT bool operator==(const quality_layer_integrity_check&,
                                               const quality_layer_integrity_check&);
};

/// In what a redundant picture equals the primary one.
struct redundant_pic_match {
    std::uint32_t redundant_pic_cnt_minus1 = 0; ///< 0 to 126
    bool pic_match_flag = false;
    bool mb_type_match_flag = false; ///< sent without pic_match_flag, as the three below
    bool motion_match_flag = false;
    bool residual_match_flag = false;
    bool intra_samples_match_flag = false;

    friend ORV_UTILS_V4_EXPORT bool operator==(const redundant_pic_match&, const redundant_pic_match&);
};

/// The redundant pictures of one quality_id.
struct redundant_pic_quality {
    std::uint8_t quality_id = 0; ///< 0 to 15
    std::uint32_t num_redundant_pics_minus1 = 0;
    std::vector<redundant_pic_match> redundant_pics;

    friend ORV_UTILS_V4_EXPORT bool operator==(const redundant_pic_quality&, const redundant_pic_quality&);
};

/// The redundant pictures of one dependency_id.
struct redundant_pic_dependency {
    std::uint8_t dependency_id = 0;    ///< 0 to 7
    std::uint32_t num_qIds_minus1 = 0; ///< 0 to 15
    std::vector<redundant_pic_quality> qIds;

    friend ORV_UTILS_V4_EXPORT bool operator==(const redundant_pic_dependency&, const redundant_pic_dependency&);
};

/// redundant_pic_property(), payload type 33.
struct redundant_pic_property {
    static constexpr std::uint32_t most_dependency_ids = 8;
    static constexpr std::uint32_t most_quality_ids = 16;

    std::uint32_t num_dIds_minus1 = 0; ///< 0 to 7
    std::vector<redundant_pic_dependency> dIds;

    friend ORV_UTILS_V4_EXPORT bool operator==(const redundant_pic_property&, const redundant_pic_property&);
};

/// tl0_dep_rep_index(), payload type 34.
struct tl0_dep_rep_index {
    std::uint8_t tl0_dep_rep_idx = 0;
    std::uint16_t effective_idr_pic_id = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const tl0_dep_rep_index&, const tl0_dep_rep_index&);
};

/// tl_switching_point(), payload type 35.
struct tl_switching_point {
    std::int32_t delta_frame_num = 0;

    friend ORV_UTILS_V4_EXPORT bool operator==(const tl_switching_point&, const tl_switching_point&);
};

} // namespace orv_utils_v4::h264
