// The texts with the coder that reads and tells.
#include "coders/reader.h"
#include "texts/nal_unit.h"

namespace orv_utils_v4::h264 {

void trace(nal_unit& to, const unsigned char* bytes, std::size_t size, const unit_context& context, outcome& result,
           visitor& listener) noexcept
{
    to.header = nal_unit_header();
    result = outcome();
    reader<told> c(bytes, bytes + size, result, told(listener));
    code(c, to, context);
    result.bits = c.position();
}

} // namespace orv_utils_v4::h264
