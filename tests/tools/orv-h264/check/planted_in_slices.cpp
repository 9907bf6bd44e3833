#include "support/planted_violation.h"

namespace {

using namespace orv_utils_v4::h264;
using support::planted_violation;

/// A stream of one IDR picture with this slice.
std::vector<unsigned char> of(const made_slice& slice)
{
    made_stream stream;
    stream.add_sets().add(slice);
    return stream.bytes;
}

constexpr planted_violation planted[] = {
    {"first_mb_in_slice beyond the picture",
     "slice-begins-inside-picture@2 first_mb_in_slice, picture-has-first-slice@2 first_mb_in_slice",
     [] { return of(from_macroblock(idr(), 4000)); }},
};

} // namespace

std::span<const planted_violation> support::planted_in_slices()
{
    return planted;
}
