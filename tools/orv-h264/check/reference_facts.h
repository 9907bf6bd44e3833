// What rules over reference marking and reference lists look at (H.264 7.4.3.1, 7.4.3.3, 8.2.4, 8.2.5).
#pragma once

#include "check/rule.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// A memory management control operation of a picture.
struct operation_facts {
    const h264::marked_picture& picture;
    std::size_t index = 0;                   ///< of the operation in its list
    const h264::reference_marking* marking;  ///< when it is carried out; null where pictures may be missing
    std::optional<std::int64_t> highest_idx; ///< MaxLongTermFrameIdx then, -1 for none; or unknown

    const h264::marking_operation& operation() const { return picture.header.dec_ref_pic_marking.operations[index]; }
    std::uint32_t kind() const { return operation().memory_management_control_operation; }
};

/// The marking of a picture as a whole. Of pictures that may be missing nothing is asked.
struct marking_facts {
    const h264::marked_picture& picture;
    const h264::reference_marking& before; ///< the pictures before it are marked so
    h264::marking_result result;
    /// LongTermFrameIdx of the first field, which has long_term_reference_flag or operation 6; of a second field.
    std::optional<std::uint32_t> index_of_first_field = {};
    /// It would be the second field of the one before it, but for its operation 5.
    bool leaves_first_field = false;
};

/// One of the reference lists of a slice.
struct list_facts {
    const h264::marked_picture& picture;
    h264::slice_kind kind;
    bool second = false; ///< list 1
    std::uint32_t num_ref_idx_active_minus1 = 0;
    bool modified = false; ///< ref_pic_list_modification_flag_l0 or _l1
    std::span<const h264::pic_num_modification> modifications;
    const h264::reference_marking* marking; ///< before the picture; null where pictures may be missing
};

/// A frame or field that a modification puts into the list.
struct listed_reference {
    std::size_t index = 0; ///< of the modification
    bool is_long = false;
    std::int64_t number = 0; ///< picNumLX or LongTermPicNum
    h264::named_reference named = {};
};

/// By 8.2.4.3; those of other views are left out.
std::vector<listed_reference> references_named(const list_facts& f);

std::span<const rule_over<operation_facts>> operation_rules();
std::span<const rule_over<marking_facts>> marking_rules();
std::span<const rule_over<list_facts>> list_rules();

} // namespace orv_h264
