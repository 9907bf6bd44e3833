// A trace that goes on where H.264 stops: behind the bytes of user data registered by T.35 come the elements that are
// known of them, with their own places.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <optional>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

class registered_trace final : public h264::visitor {
public:
    /// The structure whose bytes are told twice: the places of elements go back to its begin.
    static constexpr const char* structure = "user_data_registered_itu_t_t35";

    explicit registered_trace(h264::visitor& to) : listener(to) {}

    void open(const char* name) override;
    void close() override;
    void element(const h264::traced_element& element) override;

private:
    void keep(const h264::traced_element& element) noexcept;

    h264::visitor& listener;
    bool inside = false;         // of user data
    std::uint64_t first_bit = 0; // of their country code
    h264::user_data_registered_itu_t_t35 data;
    bool whole = false; // all of their bytes are kept
};

/// Where bits lie in the file, asked for in rising order; or going back to a mark.
class place_finder {
public:
    void begin(const h264::unit_place& place)
    {
        map.emplace(place.bytes, place.size);
        marked = map;
        offset = place.offset;
        latest = 0;
    }
    /// From here on places may come again.
    void mark() { marked = map; }
    std::uint64_t operator()(std::uint64_t bit)
    {
        if (bit / 8 < latest)
            map = marked;
        latest = bit / 8;
        return offset + (*map)(latest);
    }

private:
    std::optional<h264::byte_map> map;
    std::optional<h264::byte_map> marked;
    std::uint64_t offset = 0;
    std::uint64_t latest = 0;
};

} // namespace orv_h264
