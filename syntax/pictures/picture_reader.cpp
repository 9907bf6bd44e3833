// Bytes in, pictures out: the splitter, the access units and the pictures one behind the other.
#include <orv-utils-v4/h264_syntax/pictures.h>

#include "hidden.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace orv_utils_v4::h264 {

struct ORV_UTILS_V4_HIDDEN picture_reader::state : split_sink, access_unit_sink {
    state(framing how, output_mode mode) : splitter(how), stage(mode) {}

    struct waiting_stamp {
        std::uint64_t begin; // of its piece
        std::uint64_t end;
        timestamp stamp;
    };

    unit_splitter splitter;
    access_units units;
    pictures stage;
    const unsigned char* piece = nullptr;
    std::size_t piece_size = 0;
    bool piece_stays = false;
    std::uint64_t pushed = 0; // bytes
    std::uint64_t number = 0; // of the next unit
    std::vector<waiting_stamp> stamps;
    picture_sink* to = nullptr;

    void keep_stamp(const timestamp& stamp);
    void unit(const split_unit& unit) override;
    void gap(const split_gap& gap) override { to->gap(gap); }
    void take(const access_unit& unit) override;
};

picture_reader::picture_reader(framing how, output_mode mode) : s(std::make_unique<state>(how, mode)) {}
picture_reader::~picture_reader() = default;
picture_reader::picture_reader(picture_reader&&) noexcept = default;
picture_reader& picture_reader::operator=(picture_reader&&) noexcept = default;

const parameter_sets& picture_reader::sets() const noexcept
{
    return s->units.sets();
}

void picture_reader::push(const unsigned char* piece, std::size_t size, picture_sink& to, const piece_facts& facts)
{
    s->to = &to;
    s->piece = piece;
    s->piece_size = size;
    s->piece_stays = facts.stays;
    if (facts.stamp != nullptr)
        s->keep_stamp(*facts.stamp);
    s->pushed += size;
    s->splitter.push(piece, size, *s);
}

void picture_reader::flush(picture_sink& to)
{
    s->to = &to;
    s->piece_size = 0;
    s->splitter.flush(*s);
    s->units.flush(*s);
    s->stage.flush(to);
}

void picture_reader::state::keep_stamp(const timestamp& stamp)
{
    if (stamps.size() == most_stamps)
        stamps.erase(stamps.begin());
    try {
        stamps.push_back({pushed, pushed + piece_size, stamp});
    } catch (...) { // no memory: its access unit goes without
    }
}

void picture_reader::state::unit(const split_unit& unit)
{
    const std::less_equal<> not_behind; // the unit may lie elsewhere
    const bool in_piece =
        piece_size != 0 && not_behind(piece, unit.bytes) && not_behind(unit.bytes + unit.size, piece + piece_size);
    units.push({unit.bytes, unit.size, unit.offset, number++}, *this, piece_stays && in_piece);
}

// The stamp of the piece that the access unit begins in, unless another one before it has begun there.
void picture_reader::state::take(const access_unit& unit)
{
    const std::uint64_t begin = unit.parts.front().place.offset;
    const auto found =
        std::find_if(stamps.begin(), stamps.end(), [&](const waiting_stamp& w) { return w.end > begin; });
    const bool has = found != stamps.end() && found->begin <= begin;
    const timestamp stamp = has ? found->stamp : timestamp();
    stamps.erase(stamps.begin(), has ? found + 1 : found);
    stage.take(unit, *to, has ? &stamp : nullptr);
}

} // namespace orv_utils_v4::h264
