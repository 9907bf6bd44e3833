// The cutting of unregistered user data, by the constructor and into an object that held another, and the name of its
// UUID. Input: a byte that is the size of the first payload, that payload, the other payload.
#include "input.h"

#include <orv-utils-v4/h264/nal_sei_user_data_unreg.h>

#include <string>

namespace {

void expect_cut(const brenik::h264_nal_sei_user_data_unreg& cut, const fuzz::exact_block& block)
{
    const bool whole = block.size() >= 16;
    fuzz::expect(static_cast<const void*>(cut.uuid) == (whole ? block.begin() : nullptr), "`uuid` is the start");
    fuzz::expect(cut.payload == (whole ? block.begin() + 16 : nullptr), "`payload` lies behind it");
    fuzz::expect(cut.payload_fence == (whole ? block.end() : nullptr), "`payload_fence` is the end");
    if (!whole)
        return;
    static const std::string known = "\xDC\x45\xE9\xBD\xE6\xD9\x48\xB7\x96\x2C\xD8\x20\xD9\x23\xEE\xEF";
    const bool is_known = std::string(block.begin(), block.begin() + 16) == known;
    fuzz::expect(brenik::h264_uuid_to_str(*cut.uuid) == std::string(is_known ? "libx264 debug info" : ""), "its name");
    fuzz::expect((*cut.uuid == brenik::h264_c_uuid_libx264_debug_info) == is_known, "it equals the known one");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const std::size_t first_size = input.byte();
    const fuzz::exact_block first = input.block(first_size);
    const fuzz::exact_block second = input.rest_block();
    brenik::h264_nal_sei_user_data_unreg cut(first.begin(), first.end());
    expect_cut(cut, first);
    cut.set_ptr(second.begin(), second.end());
    expect_cut(cut, second);
    return 0;
}
