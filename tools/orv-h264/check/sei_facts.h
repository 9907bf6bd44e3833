// What rules about SEI messages look at, and about what the VUI says of times.
#pragma once

#include "check/facts.h"
#include "check/sei_list.h"

namespace orv_h264 {

/// The messages of an access unit whose SPS is known.
struct unit_messages_facts {
    const h264::access_unit& unit;
    const sei_list& messages;

    const h264::seq_parameter_set_data& sps() const { return *unit.sps; }
};

/// One of them, of the base layer or view.
struct message_facts {
    const unit_messages_facts& all;
    const placed_message& message;
    const h264::picture* of = nullptr;          ///< that it goes with; or null
    bool repeated = false;                      ///< another one of its kind came before in the access unit
    const h264::sei_message* earlier = nullptr; ///< of its kind, in the coded video sequence; or null

    const h264::vui_parameters& vui() const { return all.sps().vui_parameters; }
    template <class Payload>
    const Payload* as() const
    {
        return sei_list::payload_of<Payload>(message);
    }
};

std::span<const rule_over<unit_messages_facts>> unit_message_rules();
std::span<const rule_over<message_facts>> message_rules();
std::span<const rule_over<message_facts>> picture_timing_rules();
std::span<const rule_over<sps_facts>> vui_time_rules();

} // namespace orv_h264
