#include "sei_counts.h"

namespace orv_h264 {

void sei_counts::add(const h264::access_unit& unit)
{
    for (const h264::access_unit_part& part : unit.parts) {
        if (part.role != h264::unit_role::sei)
            continue;
        if (part.content == nullptr)
            ++not_read;
        else if (const auto* const sei = std::get_if<h264::sei_rbsp>(&part.content->rbsp))
            add(sei->sei_messages);
    }
}

// Nesting messages are read to a bounded depth.
void sei_counts::add(const std::vector<h264::sei_message>& messages)
{
    for (const h264::sei_message& message : messages) {
        if (counts.size() < most_types || counts.contains(message.payload_type))
            ++counts[message.payload_type];
        else
            ++further;
        if (const auto* const layers = std::get_if<h264::scalable_nesting>(&message.payload))
            add(layers->messages);
        else if (const auto* const views = std::get_if<h264::mvc_scalable_nesting>(&message.payload))
            add(views->messages);
        else if (const auto* const depth = std::get_if<h264::mvcd_scalable_nesting>(&message.payload))
            add(depth->messages);
    }
}

} // namespace orv_h264
