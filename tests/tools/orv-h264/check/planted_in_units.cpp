#include "support/planted_violation.h"

namespace {

using namespace orv_utils_v4::h264;
using support::planted_violation;

/// A sound stream of one IDR picture, and `more` behind it.
template <class More>
std::vector<unsigned char> with(More more)
{
    made_stream stream;
    stream.add_sets().add(idr());
    more(stream);
    return stream.bytes;
}

constexpr planted_violation planted[] = {
    {"an SEI unit with nal_ref_idc 1", "unit-other-is-not-kept@3 nal_ref_idc, order-picture-in-access-unit@3",
     [] { return with([](made_stream& stream) {
              stream.add_bytes(0x26, {0x0D, 0x01, 0xC0, 0x80});
          }); }},
};

} // namespace

std::span<const planted_violation> support::planted_in_units()
{
    return planted;
}
