// Making, copying, moving and ending the two structures that can be one of many. They are compiled here because every
// file that holds one would compile all alternatives again, which takes some ten seconds.
#include <orv-utils-v4/h264_syntax/nal_unit.h>

#include <utility>

namespace orv_utils_v4::h264 {

sei_message::sei_message() noexcept = default;
sei_message::sei_message(const sei_message&) = default;
sei_message::sei_message(sei_message&&) noexcept = default;
sei_message::~sei_message() = default;
sei_message& sei_message::operator=(sei_message&&) noexcept = default;
sei_message& sei_message::operator=(const sei_message& from)
{
    return *this = sei_message(from); // alternative by alternative is twice the time to compile
}

nal_unit::nal_unit() noexcept = default;
nal_unit::nal_unit(const nal_unit&) = default;
nal_unit::nal_unit(nal_unit&&) noexcept = default;
nal_unit::~nal_unit() = default;
nal_unit& nal_unit::operator=(nal_unit&&) noexcept = default;
nal_unit& nal_unit::operator=(const nal_unit& from)
{
    return *this = nal_unit(from);
}

} // namespace orv_utils_v4::h264
