#include "support/planted_violation.h"

namespace {

using namespace orv_utils_v4::h264;
using support::planted_violation;

/// A stream of one IDR picture whose SPS `change` makes what it shall be.
template <class Change>
std::vector<unsigned char> with_sps(Change change)
{
    seq_parameter_set_data sps = sps_data();
    change(sps);
    made_stream stream(sps);
    stream.add_sets().add(idr());
    return stream.bytes;
}

constexpr planted_violation planted[] = {
    {"level_idc 255", "sps-level-known@0 level_idc",
     [] { return with_sps([](seq_parameter_set_data& sps) { sps.level_idc = 255; }); }},
};

} // namespace

std::span<const planted_violation> support::planted_in_parameter_sets()
{
    return planted;
}
