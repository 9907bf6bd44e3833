#include "container/packet_log.h"

#include <algorithm>

namespace orv_h264 {

void packet_log::add(const logged_packet& packet)
{
    if (packets.size() == most_packets)
        packets.pop_front();
    packets.push_back(packet);
}

const logged_packet* packet_log::find(std::uint64_t offset) const
{
    if (packets.empty() || offset >= record_begin)
        return nullptr;
    // Nearly all that is asked for lies in one of the last: the search doubles its way back from them.
    auto first = std::prev(packets.end());
    auto fence = packets.end();
    for (std::ptrdiff_t step = 1; first->begin > offset && first != packets.begin(); step *= 2) {
        fence = first;
        first -= std::min(step, first - packets.begin());
    }
    const auto behind =
        std::upper_bound(first, fence, offset, [](std::uint64_t at, const logged_packet& p) { return at < p.begin; });
    return behind == packets.begin() ? &packets.front() : &*std::prev(behind);
}

bool packet_log::is_in_whole_packet(std::uint64_t offset) const
{
    if (offset >= record_begin)
        return record.has_value();
    const logged_packet* const packet = find(offset);
    return packet == nullptr || (packet->whole && offset >= packet->begin);
}

std::uint64_t packet_log::place_of(std::uint64_t offset) const
{
    if (offset >= record_begin)
        return record ? *record + (offset - record_begin) : 0;
    const logged_packet* const packet = find(offset);
    if (packet == nullptr)
        return offset;
    return is_own(offset) ? packet->position + (offset - packet->begin) : packet->position;
}

} // namespace orv_h264
