/// @file
/// The user data unregistered SEI message, H.264 clause D.1.7, and the names of the UUIDs that mark user data.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h2645_common/uuid.h>

namespace brenik {

/// The UUID of the debug information that the encoder libx264 writes: its version and options as text.
extern ORV_UTILS_V4_EXPORT const iso_iec_11578_uuid h264_c_uuid_libx264_debug_info;

/// The name of a known UUID: "libx264 debug info"; "" for any other. Never null, never to be freed.
ORV_UTILS_V4_EXPORT const char* h264_uuid_to_str(const iso_iec_11578_uuid& u);

/// Unregistered user data, user_data_unregistered() of H.264 clause D.1.7, cut into UUID and user data. All pointers
/// point into the caller's buffer, which must outlive the object; all are null when the payload is too short.
class ORV_UTILS_V4_EXPORT h264_nal_sei_user_data_unreg {
public:
    const iso_iec_11578_uuid* uuid = nullptr; ///< the first 16 bytes of the payload
    unsigned char* payload = nullptr;         ///< the first byte of the user data
    unsigned char* payload_fence = nullptr;   ///< one past its last byte

    /// Three null pointers.
    h264_nal_sei_user_data_unreg();

    /// The payload [`start`, `fence`); see set_ptr().
    h264_nal_sei_user_data_unreg(unsigned char* start, unsigned char* fence);

    /// Cuts the payload [`start`, `fence`), `payload` and `payload_fence` of the SEI reader. With fewer than 16 bytes
    /// all pointers become null; with exactly 16 the user data is empty.
    void set_ptr(unsigned char* start, unsigned char* fence);
};

} // namespace brenik
