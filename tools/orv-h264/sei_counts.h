// How many SEI messages of each payload type a stream has.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstddef>
#include <cstdint>
#include <map>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

class sei_counts {
public:
    /// The most payload types that are told apart; messages of further ones are counted together.
    static constexpr std::size_t most_types = 256;

    /// Takes the messages of an access unit, those inside nesting messages too.
    void add(const h264::access_unit& unit);

    const std::map<std::uint32_t, std::uint64_t>& by_type() const noexcept { return counts; }
    std::uint64_t further_messages() const noexcept { return further; }
    /// SEI units whose messages are not among them: an access unit has more units than are looked into.
    std::uint64_t units_not_read() const noexcept { return not_read; }

private:
    void add(const std::vector<h264::sei_message>& messages);

    std::map<std::uint32_t, std::uint64_t> counts;
    std::uint64_t further = 0;
    std::uint64_t not_read = 0;
};

} // namespace orv_h264
