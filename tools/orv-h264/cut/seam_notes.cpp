#include "cut/seam_notes.h"

#include <algorithm>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

bool is_key(const h264::picture& picture)
{
    return picture.idr || picture.recovery_point;
}

bool is_shown_before(const h264::picture& picture, std::uint64_t sequence, std::int64_t count)
{
    return picture.sequence == sequence && picture.has_count && picture.count.lower() < count;
}

std::string pictures_text(std::uint64_t count)
{
    return fmt::format("{} picture{}", count, count == 1 ? "" : "s");
}

} // namespace

void seam_notes::begin(std::uint64_t picture, std::uint64_t offset, const h264::access_unit& unit, bool second_field)
{
    first = picture;
    first_offset = offset;
    first_is_second_field = second_field;
    if (const auto* const point = unit.message<h264::recovery_point>())
        recovery_frame_cnt = point->recovery_frame_cnt;
}

void seam_notes::begin_with_stream(std::uint64_t picture)
{
    first = picture;
    first_of_stream = true;
}

void seam_notes::end(std::uint64_t picture, std::uint64_t offset, bool second_field)
{
    last = picture;
    last_offset = offset;
    last_is_second_field = second_field;
}

void seam_notes::add(const h264::picture& picture, std::uint64_t offset)
{
    if (!first || picture.number < *first)
        return;
    if (last && picture.number >= *last && !(last_is_second_field && picture.number == *last)) {
        ++behind;
        missing_between += highest_count && is_shown_before(picture, sequence, *highest_count) ? 1 : 0;
        return;
    }
    add_inside(picture, offset);
}

void seam_notes::add_inside(const h264::picture& picture, std::uint64_t offset)
{
    if (!start)
        start = picture;
    else if (start->has_count && is_shown_before(picture, start->sequence, start->count.lower()))
        ++leading;
    const bool key = is_key(picture) && !(first_is_second_field && picture.number == *first);
    if (key && !key_offset)
        key_offset = offset;
    before_key += key_offset ? 0 : 1;
    if (!picture.has_count)
        return;
    if (picture.sequence != sequence)
        highest_count.reset();
    sequence = picture.sequence;
    highest_count = std::max(highest_count.value_or(picture.count.lower()), picture.count.lower());
}

std::vector<seam_note> seam_notes::notes() const
{
    std::vector<seam_note> all;
    if (first_is_second_field)
        all.push_back({first_offset, "begins with the second field of a frame, the first one is not written"});
    if (const std::string text = start_text(); !text.empty())
        all.push_back({first_offset, text});
    if (leading != 0 && !first_of_stream)
        all.push_back({first_offset, fmt::format("open at its start: {} behind the first one {} shown before it, and "
                                                 "may refer to what is not written",
                                                 pictures_text(leading), leading == 1 ? "is" : "are")});
    if (last_is_second_field)
        all.push_back({last_offset, "ends with the first field of a frame, the second one is not written"});
    if (missing_between != 0)
        all.push_back({last_offset, fmt::format("open at its end: {} that {} not written {} shown before the last one "
                                                "of the cut",
                                                pictures_text(missing_between), missing_between == 1 ? "is" : "are",
                                                missing_between == 1 ? "is" : "are")});
    return all;
}

std::string seam_notes::start_text() const
{
    if (!start || first_of_stream || (start->idr && before_key == 0))
        return "";
    if (before_key == 0)
        return fmt::format("begins at a recovery point, which is no IDR picture: what is shown is right behind {} "
                           "frame{} of frame_num",
                           recovery_frame_cnt.value_or(0), recovery_frame_cnt.value_or(0) == 1 ? "" : "s");
    if (!key_offset)
        return fmt::format("begins with no key picture, and has none: its {} may not be decoded rightly",
                           pictures_text(before_key));
    return fmt::format("begins with no key picture: {} may not be decoded rightly, up to the one at offset {}",
                       pictures_text(before_key), *key_offset);
}

} // namespace orv_h264
