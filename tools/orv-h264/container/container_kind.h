// The containers that the tool reads.
#pragma once

#include <cstdint>

namespace orv_h264 {

enum class container_kind : std::uint8_t {
    none,
    mp4, ///< and MOV
    matroska,
    transport_stream, ///< with or without 4 bytes before each packet
    flv,
};

/// Its packets lie in one piece each in the file, and units in a packet.
constexpr bool keeps_packets_whole(container_kind kind)
{
    return kind == container_kind::mp4 || kind == container_kind::matroska || kind == container_kind::flv;
}

/// As it follows "this is".
constexpr const char* name_of(container_kind kind)
{
    constexpr const char* names[] = {"no container", "MP4", "Matroska", "MPEG transport stream", "FLV"};
    return names[static_cast<unsigned>(kind)];
}

} // namespace orv_h264
