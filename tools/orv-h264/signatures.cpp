#include "signatures.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>

namespace orv_h264 {

namespace {

using namespace std::string_view_literals;

struct mark {
    std::size_t at;
    std::string_view bytes;
};

struct signature {
    known_format format;
    mark first;
    mark second = {0, ""}; ///< has to be there too
};

constexpr known_format mp4 = {"MP4", true, container_kind::mp4};

constexpr signature signatures[] = {
    // The brands of images stand before that of any other file.
    {{"an AVIF image"}, {4, "ftypavif"}},
    {{"a HEIF image"}, {4, "ftyphei"}},
    {{"a HEIF image"}, {4, "ftypmif1"}},
    {mp4, {4, "ftyp"}},
    {mp4, {4, "styp"}},
    {mp4, {4, "moov"}},
    {mp4, {4, "moof"}},
    {mp4, {4, "mdat"}},
    {mp4, {4, "sidx"}},
    {mp4, {4, "wide"}, {12, "mdat"}},
    {{"Matroska", true, container_kind::matroska}, {0, "\x1A\x45\xDF\xA3"}},
    {{"FLV", true, container_kind::flv}, {0, "FLV\x01"}},
    {{"AVI", true}, {0, "RIFF"}, {8, "AVI "}},
    {{"ASF", true}, {0, "\x30\x26\xB2\x75\x8E\x66\xCF\x11"}},
    {{"MXF", true}, {0, "\x06\x0E\x2B\x34\x02\x05\x01\x01"}},
    {{"NUT", true}, {0, "nut/multimedia container\0"sv}},
    {{"RealMedia", true}, {0, ".RMF\0"sv}},
    {{"AV1 video in IVF"}, {0, "DKIF"}, {8, "AV01"}},
    {{"VP8 video in IVF"}, {0, "DKIF"}, {8, "VP80"}},
    {{"VP9 video in IVF"}, {0, "DKIF"}, {8, "VP90"}},
    {{"IVF", true}, {0, "DKIF"}},
    {{"raw video (YUV4MPEG2)"}, {0, "YUV4MPEG2 "}},
    {{"Dirac video"}, {0, "BBCD"}},
    {{"Ogg"}, {0, "OggS\0"sv}},
    {{"WAV audio"}, {0, "RIFF"}, {8, "WAVE"}},
    {{"WAV audio"}, {0, "RF64"}, {8, "WAVE"}},
    {{"AIFF audio"}, {0, "FORM"}, {8, "AIF"}},
    {{"FLAC audio"}, {0, "fLaC"}},
    {{"MP3 audio"}, {0, "ID3\x02"}},
    {{"MP3 audio"}, {0, "ID3\x03"}},
    {{"MP3 audio"}, {0, "ID3\x04"}},
    {{"AAC audio"}, {0, "ADIF"}},
    {{"AMR audio"}, {0, "#!AMR"}},
    {{"AU audio"}, {0, ".snd\0"sv}},
    {{"CAF audio"}, {0, "caff"}},
    {{"WavPack audio"}, {0, "wvpk"}},
    {{"MIDI"}, {0, "MThd\0\0\0\6"sv}},
    {{"a PNG image"}, {0, "\x89PNG\r\n\x1A\n"}},
    {{"a JPEG image"}, {0, "\xFF\xD8\xFF\xE0"}},
    {{"a JPEG image"}, {0, "\xFF\xD8\xFF\xE1"}},
    {{"a JPEG image"}, {0, "\xFF\xD8\xFF\xDB"}},
    {{"a JPEG image"}, {0, "\xFF\xD8\xFF\xEE"}},
    {{"a JPEG image"}, {0, "\xFF\xD8\xFF\xFE"}},
    {{"a JPEG 2000 image"}, {4, "jP  \r\n\x87\n"}},
    {{"a JPEG 2000 image"}, {0, "\xFF\x4F\xFF\x51"}},
    {{"a GIF image"}, {0, "GIF87a"}},
    {{"a GIF image"}, {0, "GIF89a"}},
    {{"a BMP image"}, {0, "BM"}, {6, "\0\0\0\0"sv}},
    {{"a TIFF image"}, {0, "II*\0"sv}},
    {{"a TIFF image"}, {0, "MM\0*"sv}},
    {{"a WebP image"}, {0, "RIFF"}, {8, "WEBP"}},
    {{"a Photoshop image"}, {0, "8BPS\0"sv}},
    {{"a PDF document"}, {0, "%PDF-"}},
    {{"a ZIP archive"}, {0, "PK\3\4"}},
    {{"a ZIP archive"}, {0, "PK\5\6"}},
    {{"a RAR archive"}, {0, "Rar!\x1A\7"}},
    {{"a 7z archive"}, {0, "7z\xBC\xAF\x27\x1C"}},
    {{"a tar archive"}, {257, "ustar"}},
    {{"an ar archive"}, {0, "!<arch>\n"}},
    {{"a cpio archive"}, {0, "07070"}},
    {{"a file compressed by bzip2"}, {0, "BZh"}, {4, "1AY&SY"}},
    {{"a file compressed by xz"},
     {0, "\xFD"
         "7zXZ\0"sv}},
    {{"a file compressed by zstd"}, {0, "\x28\xB5\x2F\xFD"}},
    {{"a file compressed by lz4"}, {0, "\x04\x22\x4D\x18"}},
    {{"a file compressed by lzip"}, {0, "LZIP"}},
    {{"an ELF file"},
     {0, "\x7F"
         "ELF"}},
    {{"a Mach-O file"}, {0, "\xCF\xFA\xED\xFE"}},
    {{"a Mach-O file"}, {0, "\xCE\xFA\xED\xFE"}},
    {{"a WebAssembly file"}, {0, "\0asm"sv}},
};

bool is_there(std::string_view head, const mark& m)
{
    return m.at <= head.size() && head.substr(m.at).starts_with(m.bytes);
}

unsigned head_byte(std::string_view head, std::size_t at)
{
    return at < head.size() ? static_cast<unsigned char>(head[at]) : 0;
}

/// Packets of `size` bytes, each with the sync byte 0x47, the first of them at `at`: as many as there are up to 16.
bool are_packets(std::string_view head, std::size_t at, std::size_t size, std::size_t fewest)
{
    constexpr std::size_t most = 16;
    std::size_t count = 0;
    for (; at < head.size() && count < most; at += size, ++count)
        if (head[at] != '\x47')
            return false;
    return count >= fewest;
}

// ISO/IEC 13818-1 2.4.3.2; with 4 bytes before each packet on discs, with 16 of parity behind it in broadcasts. A
// stream may begin inside a packet.
bool is_transport_stream(std::string_view head)
{
    for (const std::size_t size : {188U, 192U, 204U}) {
        if (are_packets(head, 0, size, 3) || (size == 192 && are_packets(head, 4, size, 3)))
            return true;
        for (std::size_t at = 1; at < size; ++at)
            if (are_packets(head, at, size, 8))
                return true;
    }
    return false;
}

/// ISO/IEC 14496-3 1.A.2.2.1: the length of the ADTS frame at `at`; 0 where there is none.
std::size_t adts_frame(std::string_view head, std::size_t at)
{
    const bool synced = head_byte(head, at) == 0xFF && (head_byte(head, at + 1) & 0xF6) == 0xF0;
    const std::size_t length =
        (head_byte(head, at + 3) & 3) << 11 | head_byte(head, at + 4) << 3 | head_byte(head, at + 5) >> 5;
    return synced && (head_byte(head, at + 2) >> 2 & 0xF) < 13 && length >= 7 ? length : 0;
}

/// ISO/IEC 11172-3 2.4.2.3 and 13818-3: the length of the frame of layer I, II or III at `at`; 0 where there is none.
std::size_t mpeg_audio_frame(std::string_view head, std::size_t at)
{
    constexpr std::array<std::array<unsigned, 15>, 5> kbits = {{
        {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
        {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
        {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
        {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
        {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
    }};
    constexpr std::array<unsigned, 3> rates = {44100, 48000, 32000};
    const unsigned version = head_byte(head, at + 1) >> 3 & 3; // 3 is MPEG-1, 2 MPEG-2, 0 half of that rate again
    const unsigned layer = 4 - (head_byte(head, at + 1) >> 1 & 3);
    const unsigned bit_rate = head_byte(head, at + 2) >> 4;
    const unsigned rate = head_byte(head, at + 2) >> 2 & 3;
    if (head_byte(head, at) != 0xFF || head_byte(head, at + 1) < 0xE0 || version == 1 || layer == 4 || bit_rate == 0 ||
        bit_rate == 15 || rate == 3)
        return 0;
    const bool first = version == 3;
    const std::size_t hertz = rates[rate] >> (first ? 0 : version == 2 ? 1 : 2);
    const std::size_t bits = kbits[first ? layer - 1 : layer == 1 ? 3 : 4][bit_rate] * std::size_t{1000};
    const std::size_t padding = head_byte(head, at + 2) >> 1 & 1;
    return layer == 1 ? (12 * bits / hertz + padding) * 4 : (layer == 3 && !first ? 72 : 144) * bits / hertz + padding;
}

/// A frame, and a second one behind it that is alike.
template <class FrameLength>
bool are_frames(std::string_view head, FrameLength length)
{
    constexpr unsigned same = 0xFC; // sampling rate and more; in MPEG audio the bit rate may change
    const std::size_t first = length(head, 0);
    return first != 0 && length(head, first) != 0 && head_byte(head, 1) == head_byte(head, first + 1) &&
           (head_byte(head, 2) & same & 0x0F) == (head_byte(head, first + 2) & same & 0x0F);
}

// AV1 5.3 and 5.9: a temporal delimiter, which has no payload, and a sequence header, both with their size.
bool is_av1(std::string_view head)
{
    const std::size_t behind = 4 + head_byte(head, 3);
    return head.starts_with("\x12\0\x0A"sv) && (head_byte(head, behind) & 0x83) == 0x02;
}

// RFC 1952: deflate, and no flag that is reserved.
bool is_gzip(std::string_view head)
{
    return head.starts_with("\x1F\x8B\x08") && head.size() > 9 && head_byte(head, 3) < 0x20 && head_byte(head, 8) <= 4;
}

// MZ, and where it says PE stands.
bool is_windows_program(std::string_view head)
{
    const std::size_t at = head_byte(head, 0x3C) | head_byte(head, 0x3D) << 8;
    return head.starts_with("MZ") && is_there(head, {at, "PE\0\0"sv});
}

} // namespace

std::optional<known_format> format_by_signature(std::string_view head)
{
    const auto* const found = std::find_if(std::begin(signatures), std::end(signatures), [&](const signature& s) {
        return is_there(head, s.first) && is_there(head, s.second);
    });
    if (found != std::end(signatures))
        return found->format;
    if (is_transport_stream(head))
        return known_format{"MPEG transport stream", true, container_kind::transport_stream};
    if (are_frames(head, adts_frame))
        return known_format{"AAC audio"};
    if (are_frames(head, mpeg_audio_frame))
        return known_format{(head_byte(head, 1) >> 1 & 3) == 1 ? "MP3 audio" : "MPEG audio"};
    if (is_av1(head))
        return known_format{"AV1 video"};
    if (is_gzip(head))
        return known_format{"a file compressed by gzip"};
    if (is_windows_program(head))
        return known_format{"a Windows program"};
    return {};
}

} // namespace orv_h264
