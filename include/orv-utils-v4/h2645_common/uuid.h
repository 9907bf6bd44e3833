/// @file
/// The 16-byte identifiers of ISO/IEC 11578 that mark unregistered user data.
#pragma once

#include <orv-utils-v4/export.h>

/// A UUID, its bytes in stream order. It may be laid over any 16 bytes of a buffer.
struct ORV_UTILS_V4_EXPORT iso_iec_11578_uuid {
    /// The bytes.
    unsigned char bytes[16];

    /// Whether all 16 bytes are equal.
    bool operator==(const iso_iec_11578_uuid& other) const;
};
