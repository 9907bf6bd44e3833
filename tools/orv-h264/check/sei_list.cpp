#include "check/sei_list.h"

namespace orv_h264 {

sei_list::sei_list(const h264::access_unit& unit)
{
    for (const h264::access_unit_part& part : unit.parts) {
        if (part.role != h264::unit_role::sei)
            continue;
        const auto* const sei = part.content != nullptr ? std::get_if<h264::sei_rbsp>(&part.content->rbsp) : nullptr;
        every_one = every_one && sei != nullptr && !part.failure;
        for (std::size_t i = 0; sei != nullptr && i < sei->sei_messages.size(); ++i)
            messages.push_back({&sei->sei_messages[i], part.place.number, every_one && messages.empty()});
    }
}

} // namespace orv_h264
