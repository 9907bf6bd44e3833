// The texts with the coder that reads.
#include "coders/reader.h"
#include "texts/nal_unit.h"

namespace orv_utils_v4::h264 {

void read(nal_unit& to, const unsigned char* bytes, std::size_t size, const unit_context& context,
          outcome& result) noexcept
{
    to.header = nal_unit_header();
    result = outcome();
    reader<untold> c(bytes, bytes + size, result);
    code(c, to, context);
    result.bits = c.position();
}

} // namespace orv_utils_v4::h264
