// Seeds of the target `pictures`: small streams in which pictures are put together, reordered, marked, timed and lost.
#include "seeds.h"

#include "support/timed_pictures.h"

namespace fuzz {

namespace {

using namespace orv_utils_v4::h264;

/// With frames and fields, and a tick of 1/50 s.
timed_pictures_stream& start(timed_pictures_stream& stream)
{
    stream.add_bytes(9, {0xF0});
    return stream;
}

bytes reordered()
{
    timed_pictures_stream stream(1, 50, false);
    start(stream).add(idr()).add(reference(1, 8)).add(reference(2, 4)).add(other(3, 2)).add(other(3, 6));
    stream.add(reference(3, 16)).add(other(4, 12)).add(idr(1)).add(reference(1, 2));
    return stream.bytes;
}

bytes field_pairs()
{
    timed_pictures_stream stream(1, 50, false);
    start(stream).add(top(idr())).add(bottom(reference(0, 1))).add(bottom(reference(1, 9))).add(top(reference(1, 8)));
    stream.add(top(other(2, 4))).add(bottom(other(2, 5))).add(top(other(2, 6))).add(reference(2, 12));
    return stream.bytes;
}

bytes marked()
{
    timed_pictures_stream stream(1, 50, false);
    start(stream)
        .add(idr())
        .add(reference(1, 2))
        .add(reference(2, 4))
        .add(with(reference(3, 6), {short_to_long(1, 0)}));
    stream.add(with(reference(4, 8), {unmark_short(0), current_to_long(1)})).add(reference(9, 10));
    stream.add(with(reference(10, 12), {unmark_long(0), keep_long_below(1)}))
        .add(with(reference(11, 14), {forget_all()}));
    stream.add(reference(1, 2)).add(reference(2, 4));
    return stream.bytes;
}

bytes timed()
{
    timed_pictures_stream stream(1, 50, true);
    stream.add_timed({9000, 0, 2}, idr()).add_bytes(12, {0xFF, 0x80});
    stream.add_timed({{}, 2, 6, 5}, reference(1, 8));
    stream.add_timed({{}, 4, 0, 4}, reference(2, 4)).add_bytes(10, {}).add_bytes(11, {});
    stream.add_timed({4500, 6, 2}, idr(1));
    return stream.bytes;
}

bytes damaged()
{
    timed_pictures_stream stream(1, 50, false);
    made_slice late = reference(2, 4);
    late.header.first_mb_in_slice = 2;
    start(stream).add(idr()).add_bytes(0x21, {0xE0, 0x80}).add(late).add_bytes(7, {66, 0}).add(reference(7, 8));
    stream.add_bytes(0x41, {}).add_bytes(9, {0xF0}).add_bytes(9, {0xF0}).add(reference(8, 2));
    return stream.bytes;
}

bytes of_views()
{
    made_stream stream;
    stream.pps().redundant_pic_cnt_present_flag = true;
    stream.add_sets().add_subset_sps().add(idr(0)).add_redundant(idr(0), 1).add(slice_unit(19)).add_view(1);
    stream.add(unit_of(14, prefix_nal_unit_rbsp())).add(idr(1)).add_view(1).add_view(2);
    stream.add_partition(2, reference(1).header, 0).add_partition(3, {}, 0).add_partition(4, {}, 0);
    return stream.bytes;
}

} // namespace

void add_picture_seeds(seed_table& to)
{
    const seeds streams = {{"damaged", damaged()},   {"field_pairs", field_pairs()}, {"marked", marked()},
                           {"of_views", of_views()}, {"reordered", reordered()},     {"timed", timed()}};
    for (const auto& [name, stream] : streams) {
        for (unsigned char mode = 0; mode < 3; ++mode)
            to["pictures"][name + "_mode_" + std::to_string(mode)] = behind({0, mode, 40}, stream);
    }
}

} // namespace fuzz
