// H.264 clause D.1.7: the user data unregistered SEI message, and the UUIDs that have a name here.
#include <orv-utils-v4/h264/nal_sei_user_data_unreg.h>

#include <orv-utils-v4/h2645_common/advance_past.h>

namespace brenik {

const iso_iec_11578_uuid h264_c_uuid_libx264_debug_info = {
    {0xDC, 0x45, 0xE9, 0xBD, 0xE6, 0xD9, 0x48, 0xB7, 0x96, 0x2C, 0xD8, 0x20, 0xD9, 0x23, 0xEE, 0xEF}};

const char* h264_uuid_to_str(const iso_iec_11578_uuid& u)
{
    return u == h264_c_uuid_libx264_debug_info ? "libx264 debug info" : "";
}

h264_nal_sei_user_data_unreg::h264_nal_sei_user_data_unreg() = default;

h264_nal_sei_user_data_unreg::h264_nal_sei_user_data_unreg(unsigned char* start, unsigned char* fence)
{
    set_ptr(start, fence);
}

void h264_nal_sei_user_data_unreg::set_ptr(unsigned char* start, unsigned char* fence)
{
    const bool too_short = range_size(start, fence) < sizeof(iso_iec_11578_uuid);
    uuid = too_short ? nullptr : reinterpret_cast<const iso_iec_11578_uuid*>(start);
    payload = too_short ? nullptr : start + sizeof(iso_iec_11578_uuid);
    payload_fence = too_short ? nullptr : fence;
}

} // namespace brenik
