#include "container/edit_list.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string_view>

namespace orv_h264 {

namespace {

// Boxes that are looked at in all: fragments come by the thousand.
constexpr unsigned most_boxes = 100000;

/// The payload of a box in the file.
struct box {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};

std::uint64_t number_of(std::span<const unsigned char> bytes)
{
    std::uint64_t number = 0;
    for (const unsigned char byte : bytes)
        number = number << 8U | byte;
    return number;
}

class box_reader {
public:
    explicit box_reader(const input_file& in) : file(in) {}

    /// A number of `size` bytes, at most 8; 0 where the box ends before.
    std::uint64_t number(const box& in, std::uint64_t at, std::size_t size) const
    {
        std::array<unsigned char, 8> bytes = {};
        const std::uint64_t room = in.end - in.begin;
        if (at > room || size > room - at || file.read_at(in.begin + at, bytes.data(), size) != size)
            return 0;
        return number_of({bytes.data(), size});
    }

    /// The first box of this type in another one for which `is_it` says so.
    template <typename Condition>
    std::optional<box> find(const box& in, std::string_view type, Condition is_it)
    {
        box at = in;
        while (left > 0 && at.begin < at.end) {
            --left; // `is_it` takes of it too
            std::array<unsigned char, 16> head = {};
            const std::size_t count = file.read_at(at.begin, head.data(), head.size());
            const std::optional<box> payload = payload_of({head.data(), count}, at);
            if (!payload)
                return {};
            if (std::equal(type.begin(), type.end(), head.begin() + 4) && is_it(*payload))
                return payload;
            at.begin = payload->end;
        }
        return {};
    }
    std::optional<box> find(const box& in, std::string_view type)
    {
        return find(in, type, [](const box&) { return true; });
    }

private:
    /// 14496-12 4.2: a size of 1 has the true one behind it, one of 0 means up to the end.
    static std::optional<box> payload_of(std::span<const unsigned char> head, const box& rest)
    {
        if (head.size() < 8)
            return {};
        std::uint64_t size = number_of(head.first(4));
        std::uint64_t header = 8;
        if (size == 1 && head.size() == 16) {
            size = number_of(head.last(8));
            header = 16;
        }
        const std::uint64_t room = rest.end - rest.begin;
        if (size == 0)
            size = room;
        if (size < header || size > room)
            return {};
        return box{rest.begin + header, rest.begin + size};
    }

    const input_file& file;
    unsigned left = most_boxes;
};

/// mvhd and tkhd have two times before it, of 4 bytes or, in version 1, of 8.
std::uint64_t behind_times(const box_reader& boxes, const box& header)
{
    return boxes.number(header, 0, 1) == 1 ? 20 : 12;
}

edit read_edit(const box_reader& boxes, const box& list, std::uint64_t at, bool wide)
{
    const std::size_t size = wide ? 8 : 4;
    edit e;
    e.duration = boxes.number(list, at, size);
    const std::uint64_t time = boxes.number(list, at + size, size);
    e.media_time = wide ? static_cast<std::int64_t>(time) : static_cast<std::int32_t>(time);
    e.rate = static_cast<std::int32_t>(boxes.number(list, at + 2 * size, 4)) / 65536.0;
    return e;
}

} // namespace

edit_list read_edit_list(const input_file& file, std::int64_t track_id)
{
    box_reader boxes(file);
    edit_list list;
    const std::optional<box> movie = boxes.find({0, file.size().value_or(0)}, "moov");
    const std::optional<box> header = movie ? boxes.find(*movie, "mvhd") : std::nullopt;
    if (!header)
        return list;
    list.movie_ticks = static_cast<std::uint32_t>(boxes.number(*header, behind_times(boxes, *header), 4));
    const std::optional<box> track = boxes.find(*movie, "trak", [&](const box& of) {
        const std::optional<box> about = boxes.find(of, "tkhd");
        return about && static_cast<std::int64_t>(boxes.number(*about, behind_times(boxes, *about), 4)) == track_id;
    });
    const std::optional<box> edits = track ? boxes.find(*track, "edts") : std::nullopt;
    const std::optional<box> entries = edits ? boxes.find(*edits, "elst") : std::nullopt;
    if (!entries)
        return list;
    const bool wide = boxes.number(*entries, 0, 1) == 1;
    const std::uint64_t entry_size = wide ? 20 : 12;
    const std::uint64_t count =
        std::min(boxes.number(*entries, 4, 4), (entries->end - entries->begin) / entry_size); // as many as fit
    for (std::uint64_t i = 0; i < std::min<std::uint64_t>(count, edit_list::most_edits); ++i)
        list.edits.push_back(read_edit(boxes, *entries, 8 + i * entry_size, wide));
    list.further = count - list.edits.size();
    return list;
}

} // namespace orv_h264
