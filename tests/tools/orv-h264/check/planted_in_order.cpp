#include "support/planted_violation.h"
#include "support/special_streams.h"

namespace {

using namespace orv_utils_v4::h264;
using support::planted_violation;

const std::vector<unsigned char> user_data = {0x05, 0x10, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 0x80};

/// An SPS, a PPS and what comes behind them.
template <class More>
std::vector<unsigned char> sets_and(More more, std::uint8_t profile_idc = 77)
{
    made_stream stream(sps_of_profile(profile_idc));
    stream.add_sets();
    more(stream);
    return stream.bytes;
}

/// A sound stream of one IDR picture, unit 2, and what comes behind it.
template <class More>
std::vector<unsigned char> idr_and(More more, std::uint8_t profile_idc = 77)
{
    return sets_and(
        [&](made_stream& stream) {
            stream.add(idr());
            more(stream);
        },
        profile_idc);
}

/// Likewise, with redundant pictures.
template <class More>
std::vector<unsigned char> with_redundant(More more)
{
    made_stream stream(sps_of_profile(66));
    stream.pps().redundant_pic_cnt_present_flag = true;
    stream.add_sets();
    more(stream);
    return stream.bytes;
}

/// Likewise, with an SPS extension; the first slice is unit 3.
template <class More>
std::vector<unsigned char> with_auxiliary(std::uint32_t aux_format_idc, More more)
{
    made_stream stream(sps_of_profile(100));
    stream.sets.context.primary_idr = true;
    seq_parameter_set_extension_rbsp extension;
    extension.aux_format_idc = aux_format_idc;
    stream.add(unit_of(7, stream.sets.sps)).add(unit_of(13, extension)).add(unit_of(8, stream.sets.pps));
    more(stream);
    return stream.bytes;
}

/// An IDR picture whose layer 1 has slices of these quality_ids, units 6 and on.
std::vector<unsigned char> layers(const std::vector<std::uint8_t>& quality_ids)
{
    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data = sps_data(1);
    subset.seq_parameter_set_data.profile_idc = 86;
    made_stream stream(sps_of_profile(100));
    const special_layer layer(stream, subset);
    stream.add(unit_of_layer(14, prefix_nal_unit_rbsp(), 0, 0, 0)).add(idr());
    for (const std::uint8_t quality_id : quality_ids) {
        slice_header_in_scalable_extension header;
        header.slice_type = 7;
        header.pic_parameter_set_id = 1;
        slice_layer_extension_rbsp slice;
        slice.header = header;
        stream.add(unit_of_layer(20, slice, 0, 1, quality_id));
    }
    return stream.bytes;
}

constexpr planted_violation planted[] = {
    {"a delimiter behind SEI", "order-delimiter-first@4",
     [] { return idr_and([](made_stream& s) { s.add_bytes(6, user_data).add_bytes(9, {0xF0}).add(reference(1)); }); }},
    {"two delimiters", "order-delimiter-first@4",
     [] { return idr_and([](made_stream& s) { s.add_bytes(9, {0xF0}).add_bytes(9, {0xF0}).add(reference(1)); }); }},
    {"SEI between slices", "order-sei-before-slices@3",
     [] { return idr_and([](made_stream& s) { s.add_bytes(6, user_data).add(from_macroblock(idr(), 6)); }); }},
    {"a PPS between slices", "order-sets-before-slices@3",
     [] { return idr_and([](made_stream& s) { s.add(pps_unit()).add(from_macroblock(idr(), 6)); }); }},
    {"an SPS extension behind a PPS", "order-extension-behind-sps@2 seq_parameter_set_id",
     [] {
         return sets_and([](made_stream& s) { s.add(unit_of(13, seq_parameter_set_extension_rbsp())).add(idr()); });
     }},
    {"a redundant slice between primary ones", "order-redundant-behind-primary@3 redundant_pic_cnt",
     [] {
         return with_redundant(
             [](made_stream& s) { s.add(idr()).add_redundant(idr(), 1).add(from_macroblock(idr(), 6)); });
     }},
    {"redundant_pic_cnt 1 behind 2", "order-redundant-rising@4 redundant_pic_cnt",
     [] {
         return with_redundant([](made_stream& s) { s.add(idr()).add_redundant(idr(), 2).add_redundant(idr(), 1); });
     }},
    {"an auxiliary slice between primary ones", "order-auxiliary-last@4",
     [] {
         return with_auxiliary(1,
                               [](made_stream& s) { s.add(idr()).add(slice_unit(19)).add(from_macroblock(idr(), 6)); });
     }},
    {"an auxiliary picture that is not announced", "set-announces-auxiliary@4",
     [] { return with_auxiliary(0, [](made_stream& s) { s.add(idr()).add(slice_unit(19)); }); }},
    {"an announced auxiliary picture that is missing", "set-announces-auxiliary@5",
     [] { return with_auxiliary(1, [](made_stream& s) { s.add(idr()).add(slice_unit(19)).add(reference(1)); }); }},
    {"quality_id 0 behind 1", "order-layers-rising@8 dependency_id",
     [] {
         return layers({0, 1, 0});
     }},
    {"layers in their order", "",
     [] {
         return layers({0, 1, 1});
     }},
    {"filler data before the first slice", "order-others-behind-slice@2",
     [] { return sets_and([](made_stream& s) {
              s.add_bytes(12, {0xFF, 0x80}).add(idr());
          }); }},
    {"two ends of sequence", "order-end-behind-picture@4",
     [] { return idr_and([](made_stream& s) { s.add_bytes(10, {}).add_bytes(10, {}); }); }},
    {"a partition B before its partition A", "order-partitions-behind-a@3 slice_id",
     [] {
         return idr_and(
             [](made_stream& s) {
                 const slice_header header = reference(1).header;
                 s.add_partition(3, header, 0).add_partition(2, header, 0).add_partition(4, header, 0);
             },
             88);
     }},
    {"a partition B behind its partition C", "order-partition-c-behind-b@5 slice_id",
     [] {
         return idr_and(
             [](made_stream& s) {
                 const slice_header header = reference(1).header;
                 s.add_partition(2, header, 0).add_partition(4, header, 0).add_partition(3, header, 0);
             },
             88);
     }},
    {"two partitions A with one slice_id", "order-slice-ids-differ@4 slice_id",
     [] {
         return idr_and(
             [](made_stream& s) {
                 s.add_partition(2, reference(1).header, 0)
                     .add_partition(2, from_macroblock(reference(1), 6).header, 0);
             },
             88);
     }},
    {"a delimiter of I slices before a P slice", "order-delimiter-names-kinds@3 primary_pic_type",
     [] { return idr_and([](made_stream& s) { s.add_bytes(9, {0x10}).add(predicted(reference(1))); }); }},
    {"a prefix unit before SEI", "order-slice-behind-prefix@3",
     [] {
         return idr_and([](made_stream& s) {
             s.add(unit_of_view(14, prefix_nal_unit_rbsp(), 1, 0, true)).add_bytes(6, user_data).add(reference(1));
         });
     }},
    {"a stream without an IDR picture", "order-begins-with-idr@2 nal_unit_type",
     [] { return sets_and([](made_stream& s) { s.add(reference(1)); }); }},
    {"no IDR picture behind an end of sequence", "order-idr-behind-end-of-sequence@4 nal_unit_type",
     [] { return idr_and([](made_stream& s) { s.add_bytes(10, {}).add(reference(1)); }); }},
    {"SEI behind an end of stream", "order-nothing-behind-end-of-stream@4",
     [] { return idr_and([](made_stream& s) { s.add_bytes(11, {}).add_bytes(6, user_data); }); }},
    {"a picture behind an end of stream", "order-begins-with-idr@4 nal_unit_type, order-nothing-behind-end-of-stream@4",
     [] { return idr_and([](made_stream& s) { s.add_bytes(11, {}).add(reference(1)); }); }},
    {"a redundant picture alone", "order-picture-in-access-unit@4",
     [] {
         return with_redundant(
             [](made_stream& s) { s.add(idr()).add_bytes(9, {0xF0}).add_redundant(reference(1), 1); });
     }},
};

const support::planted_table here("order", planted);

} // namespace
