#include "support/planted_violation.h"

namespace {

using namespace orv_utils_v4::h264;
using support::planted_violation;

/// An SPS, a PPS, an IDR picture, which is unit 2, and what comes behind them.
template <class More>
std::vector<unsigned char> idr_and(More more)
{
    made_stream stream;
    stream.add_sets().add(idr());
    more(stream);
    return stream.bytes;
}

/// The SPS at another level.
nal_unit other_sps()
{
    seq_parameter_set_data sps = sps_data();
    sps.level_idc = 31;
    return sps_unit(sps);
}

nal_unit other_pps()
{
    pic_parameter_set_rbsp pps = pps_rbsp();
    pps.pic_init_qp_minus26 = 1;
    return unit_of(8, pps);
}

made_slice naming(made_slice slice, std::uint32_t pic_parameter_set_id)
{
    slice.header.pic_parameter_set_id = pic_parameter_set_id;
    return slice;
}

/// The last slice names PPS 1, which comes where `sent`.
std::vector<unsigned char> with_second_pps(bool sent)
{
    const seq_parameter_set_rbsp sps{sps_data(1)};
    const pic_parameter_set_rbsp pps = pps_rbsp(1, 1);
    made_stream stream;
    stream.sets.sets.sps[1] = &sps;
    stream.sets.sets.pps[1] = &pps;
    stream.add_sets().add(idr());
    if (sent)
        stream.add(unit_of(7, sps)).add(unit_of(8, pps));
    stream.add(naming(reference(1), 1));
    return stream.bytes;
}

constexpr planted_violation planted[] = {
    {"a slice with the id of no PPS", "set-is-there@3 pic_parameter_set_id", [] { return with_second_pps(false); }},
    {"a PPS before its SPS", "set-pps-behind-sps@0 seq_parameter_set_id",
     [] {
         made_stream stream;
         stream.add(pps_unit()).add(sps_unit(sps_data())).add(idr());
         return stream.bytes;
     }},
    {"an SPS that changes between pictures", "set-sps-content-stays@3 seq_parameter_set_id",
     [] {
         return idr_and(
             [](made_stream& s) { s.add(other_sps()).add(reference(1)).add(other_sps()).add(reference(2)); });
     }},
    {"an SPS that changes inside of an IDR picture",
     "set-sps-content-stays@3 seq_parameter_set_id, order-sets-before-slices@3",
     [] { return idr_and([](made_stream& s) { s.add(other_sps()).add(from_macroblock(idr(), 6)); }); }},
    {"a PPS that changes inside of a picture",
     "set-pps-content-stays@3 pic_parameter_set_id, order-sets-before-slices@3",
     [] { return idr_and([](made_stream& s) { s.add(other_pps()).add(from_macroblock(idr(), 6)); }); }},
    {"another SPS of a P picture", "set-idr-activates-sps@5 pic_parameter_set_id",
     [] { return with_second_pps(true); }},
    // Nothing is wrong with these.
    {"an SPS that changes before an IDR picture", "",
     [] { return idr_and([](made_stream& s) { s.add(reference(1)).add(other_sps()).add(idr()).add(reference(1)); }); }},
    {"the same SPS again, and one of another id", "",
     [] { return idr_and([](made_stream& s) { s.add_sets().add(sps_unit(sps_data(1))).add(reference(1)); }); }},
    {"a PPS that changes between pictures", "",
     [] {
         return idr_and([](made_stream& s) { s.add(other_pps()).add(reference(1)).add(pps_unit()).add(reference(2)); });
     }},
};

const support::planted_table here("activation", planted);

} // namespace
