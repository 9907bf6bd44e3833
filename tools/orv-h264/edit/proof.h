// What an edit did to a stream, found by reading input and output beside one another: it trusts nothing that the editor
// thinks it has written.
#pragma once

#include "edit/change_table.h"
#include "edit/edit_log.h"
#include "edit/edit_plan.h"
#include "stream_input.h"

#include <cstdint>
#include <map>
#include <string>

namespace orv_h264::editing {

struct proof {
    bool holds = false;
    std::string why_not; ///< the first thing that is not as it has to be

    change_table changes;
    std::uint64_t units = 0;       ///< of the output, compared with one of the input
    std::uint64_t elements = 0;    ///< of these units
    std::uint64_t slices = 0;      ///< among them, whose data are the same bits
    std::uint64_t bytes_alone = 0; ///< units among them that cannot be read, and have the same bytes
    std::uint64_t copied = 0;      ///< units with the same bytes
    std::uint64_t rewritten = 0;
    std::map<unsigned, std::uint64_t> deleted;               ///< units by type
    std::map<unsigned, std::uint64_t> inserted;              ///< likewise
    std::map<std::uint32_t, std::uint64_t> removed_messages; ///< by payload type, units that went whole included
};

/// Holds the output against the input.
/// @param plan what may differ
/// @param in the input, to be opened again
/// @param out_path the output
/// @param framing of the output
/// @param log what the editor says it has done with each unit
proof prove(const edit_plan& plan, const stream_options& in, const std::string& out_path, h264::framing framing,
            const edit_log& log);

} // namespace orv_h264::editing
