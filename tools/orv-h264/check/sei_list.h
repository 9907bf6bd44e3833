// The SEI messages of an access unit, each with the unit that it stands in.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

struct placed_message {
    const h264::sei_message* message = nullptr;
    std::uint64_t unit = 0; ///< its number
    bool first = false;     ///< of the access unit
};

class sei_list {
public:
    explicit sei_list(const h264::access_unit& unit);

    /// In decoding order, without those that are nested in others.
    const std::vector<placed_message>& all() const noexcept { return messages; }
    /// None are missing because a unit of them could not be read.
    bool whole() const noexcept { return every_one; }

    /// The first one of this kind that has bytes, or one without a message.
    template <class Payload>
    placed_message find() const noexcept
    {
        const auto is_it = [](const placed_message& one) { return payload_of<Payload>(one) != nullptr; };
        const auto found = std::find_if(messages.begin(), messages.end(), is_it);
        return found == messages.end() ? placed_message() : *found;
    }
    template <class Payload>
    std::size_t count() const noexcept
    {
        const auto is_it = [](const placed_message& one) { return payload_of<Payload>(one) != nullptr; };
        return static_cast<std::size_t>(std::count_if(messages.begin(), messages.end(), is_it));
    }
    template <class Payload>
    static const Payload* payload_of(const placed_message& one) noexcept
    {
        return one.message != nullptr && one.message->payload_size != 0 ? std::get_if<Payload>(&one.message->payload)
                                                                        : nullptr;
    }

private:
    std::vector<placed_message> messages;
    bool every_one = true;
};

} // namespace orv_h264
