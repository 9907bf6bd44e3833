#include "recognise.h"

#include "framing.h"

#include "support/stream_builder.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <span>
#include <string>

namespace {

using orv_h264::input_kind;
using orv_h264::recognise_size;
using orv_h264::recognition;
using support::aud;
using support::bytes;
using support::idr_slice;
using support::pps;
using support::sei;
using support::sps;
using support::stream_builder;

recognition recognised(std::span<const unsigned char> input)
{
    orv_h264::input_window window(
        [input, at = std::size_t{0}](unsigned char* out, std::size_t size) mutable {
            const std::size_t count = std::min(size, input.size() - at);
            std::copy_n(input.begin() + static_cast<std::ptrdiff_t>(at), count, out);
            at += count;
            return count;
        },
        recognise_size);
    return orv_h264::recognise(window);
}

/// What it is, in a word.
std::string kind_of(std::span<const unsigned char> input)
{
    const recognition what = recognised(input);
    switch (what.kind) {
    case input_kind::nothing:
        return "nothing";
    case input_kind::record:
        return "record";
    case input_kind::unknown:
        return "unknown";
    case input_kind::foreign:
        return what.format.name;
    case input_kind::stream:
        break;
    }
    return orv_h264::framing_name(what.framing);
}

bytes text(const std::string& characters)
{
    return {characters.begin(), characters.end()};
}

/// Units behind start codes, each told by its header and the bytes behind it.
bytes units(const std::vector<bytes>& list)
{
    stream_builder stream;
    for (const bytes& unit : list)
        stream.start_code().raw(unit);
    return stream;
}

const bytes payload(40, 0x55);
const bytes slice(300, 0x55);

// As encoders begin.
const bytes hevc_vps = {0x40, 0x01, 0x0C, 0x01, 0xFF, 0xFF, 0x01, 0x60};
const bytes hevc_sps = {0x42, 0x01, 0x01, 0x01, 0x60};
const bytes hevc_pps = {0x44, 0x01, 0xC1, 0x72};
const bytes hevc_idr = {0x26, 0x01, 0xAF, 0x06};
const bytes hevc_trail = {0x02, 0x01, 0xD0, 0x2B};
const bytes mpeg2_sequence = {0xB3, 0x14, 0x00, 0xF0, 0x23, 0xFF};
const bytes mpeg2_extension = {0xB5, 0x14, 0x8A};
const bytes mpeg2_picture = {0x00, 0x00, 0x0F, 0xFF, 0xF8};
const bytes h264_sps = {0x67, 0x4D, 0x40, 0x0B, 0xEC};

class RecogniseStream : public testing::TestWithParam<std::filesystem::path> {};

INSTANTIATE_TEST_SUITE_P(Streams, RecogniseStream, testing::ValuesIn(support::all_annexb_files()),
                         [](const auto& stream) { return support::test_name(stream.param); });

} // namespace

TEST_P(RecogniseStream, IsAnnexBWhereverItBegins)
{
    const bytes stream = support::read_file(GetParam());
    for (std::size_t dropped = 0; dropped <= 2000; ++dropped)
        ASSERT_EQ("annexb", kind_of(std::span(stream).subspan(dropped))) << dropped;
}

TEST_P(RecogniseStream, IsAnnexBWhereverItEnds)
{
    const bytes stream = support::read_file(GetParam());
    const bytes start_code = {0, 0, 1};
    const auto first = std::search(stream.begin(), stream.end(), start_code.begin(), start_code.end());
    for (auto size = static_cast<std::size_t>(first - stream.begin()) + 4; size <= 2000; ++size)
        ASSERT_EQ("annexb", kind_of(std::span(stream).first(std::min(size, stream.size())))) << size;
}

TEST_P(RecogniseStream, IsAnnexBWhateverIsDamaged)
{
    const bytes stream = support::read_file(GetParam());
    std::minstd_rand random(1);
    for (const std::size_t apart : {10000U, 1000U, 100U, 30U})
        for (int round = 0; round < 20; ++round) {
            bytes damaged = stream;
            for (std::size_t at = random() % apart; at < damaged.size(); at += 1 + random() % (2 * apart))
                damaged[at] = static_cast<unsigned char>(random() >> 8);
            ASSERT_EQ("annexb", kind_of(damaged)) << apart << " " << round;
        }
}

TEST(Recognise, StartCodesOfThreeAndFourBytesAreAnnexB)
{
    EXPECT_EQ("annexb", kind_of(stream_builder().annexb_unit(sps, payload).annexb_unit(pps, payload).made()));
    EXPECT_EQ("annexb",
              kind_of(stream_builder().zeros(1).annexb_unit(aud, {0x10}).zeros(1).annexb_unit(sps, payload).made()));
}

TEST(Recognise, ALoneDelimiterIsAnnexB)
{
    EXPECT_EQ("annexb", kind_of(stream_builder().annexb_unit(aud, {0x10}).made()));
    EXPECT_EQ("annexb", kind_of(stream_builder().zeros(1).annexb_unit(aud, {0x10}).made()));
}

TEST(Recognise, AnnexBMayBeginInTheMiddleOfAUnit)
{
    EXPECT_EQ("annexb", kind_of(stream_builder().junk(500).annexb_unit(sps, payload).made()));
}

TEST(Recognise, AnnexBMayBeginInTheMiddleOfAUnitThatIsLongerThanTheLook)
{
    stream_builder stream;
    stream.junk(3 * recognise_size);
    const bytes rest = stream.made();
    EXPECT_EQ("unknown", kind_of(rest));
    EXPECT_EQ("unknown", kind_of(stream.annexb_unit(idr_slice, slice).made())) << "one may be chance";
    EXPECT_EQ("annexb", kind_of(stream.annexb_unit(idr_slice, slice).annexb_unit(idr_slice, slice).made()));
}

TEST(Recognise, ALoneUnitWithAForbiddenBitIsAnnexB)
{
    EXPECT_EQ("annexb", kind_of(stream_builder().annexb_unit(0xE5, slice).made()));
}

TEST(Recognise, AnnexBMayBeginWithBytesThatLookLikeLengths)
{
    // Two "units" of 30000 bytes and one beyond the look behind 2-byte prefixes, which hold start codes all over.
    stream_builder units;
    while (units.here() < 2 * recognise_size)
        units.zeros(1).annexb_unit(idr_slice, slice);
    bytes stream = units;
    for (const std::size_t at : {0U, 30002U, 60004U})
        std::copy_n(bytes(stream_builder().prefix(2, 30000).raw({idr_slice, 0x55, 0x55})).begin(), 5,
                    stream.begin() + static_cast<std::ptrdiff_t>(at));
    EXPECT_EQ("annexb", kind_of(stream));
}

TEST(Recognise, LengthPrefixesAreKnownByWhereTheyLead)
{
    for (std::size_t k = 1; k <= 4; ++k) {
        const std::string framing = "length" + std::to_string(k);
        EXPECT_EQ(framing,
                  kind_of(stream_builder().prefixed_unit(k, sps, payload).prefixed_unit(k, pps, payload).made()));
        for (const unsigned char first : {sps, pps, aud, sei, idr_slice, static_cast<unsigned char>(0x41)})
            EXPECT_EQ(framing, kind_of(stream_builder().prefixed_unit(k, first, payload).made())) << int{first};
    }
}

TEST(Recognise, AFirstUnitIsLongerThanItsHeader)
{
    EXPECT_EQ("length1", kind_of(bytes{2, 0x65, 0x88, 1, 0x68}));
    EXPECT_EQ("unknown", kind_of(bytes{1, 0x65, 2, 0x65, 0x88}));
    EXPECT_EQ("annexb", kind_of(bytes{0, 0, 0, 1, 0x65})) << "a start code, or a prefix that tells 1";
}

TEST(Recognise, OfSeveralPrefixesThatLeadThroughFourBytesWin)
{
    // 00 00 0A 41: a prefix of four bytes before a unit of 2625, or one of three before one of 10 with the header 41.
    bytes stream = stream_builder().prefix(4, 0x0A41).raw({0x41}).fill(0x0A40, 0x55);
    EXPECT_EQ("length4", kind_of(stream));
    std::copy_n(bytes{0, 0x0A, 0x35, 0x41}.begin(), 4, stream.begin() + 13); // the next of three leads to the end
    EXPECT_EQ("length4", kind_of(stream));
    stream[4] = 0x1F;
    EXPECT_EQ("length3", kind_of(stream));
}

TEST(Recognise, LengthPrefixesLeadToUnitsThatH264Has)
{
    const auto two = [](std::size_t k, unsigned char first, unsigned char second) {
        return kind_of(stream_builder().prefixed_unit(k, first, payload).prefixed_unit(k, second, payload).made());
    };
    for (const std::size_t k : {1U, 2U, 3U, 4U}) {
        EXPECT_EQ("length" + std::to_string(k), two(k, sps, idr_slice));
        EXPECT_EQ("unknown", two(k, support::forbidden, idr_slice)) << "forbidden bit";
        EXPECT_EQ("unknown", two(k, 0x0C, idr_slice)) << "filler data first";
        EXPECT_EQ("unknown", two(k, 0x07, idr_slice)) << "an SPS that nothing refers to";
        for (const unsigned char odd : bytes{0xE5, 0x1F, 0x05})
            EXPECT_EQ(k == 4 ? "length4" : "unknown", two(k, sps, odd)) << "four bytes tell enough of themselves";
    }
    EXPECT_EQ("unknown", kind_of(stream_builder().prefixed_unit(4, sps, payload).prefix(4, 0).made())) << "length 0";
}

TEST(Recognise, ALengthThatLooksLikeAStartCodeIsALength)
{
    // 00 00 01 2D: a unit of 301 bytes behind a 4-byte prefix, or a start code before the header 2D.
    EXPECT_EQ("length4",
              kind_of(stream_builder().prefixed_unit(4, idr_slice, slice).prefixed_unit(4, idr_slice, slice).made()));
    EXPECT_EQ("length4", kind_of(stream_builder().prefixed_unit(4, idr_slice, slice).made()));
}

TEST(Recognise, LengthPrefixedUnitsMayGoOnBehindTheLook)
{
    stream_builder small;
    while (small.here() < 2 * recognise_size)
        small.prefixed_unit(4, idr_slice, slice);
    EXPECT_EQ("length4", kind_of(small.made()));
    const bytes large(3 * recognise_size, 0xEE);
    EXPECT_EQ("length4",
              kind_of(stream_builder().prefixed_unit(4, idr_slice, large).prefixed_unit(4, 0x41, large).made()));
    EXPECT_EQ("length3",
              kind_of(stream_builder().prefixed_unit(3, idr_slice, large).prefixed_unit(3, 0x41, slice).made()));
}

TEST(Recognise, TheLastLengthPrefixedUnitMayBeCut)
{
    stream_builder stream;
    for (int i = 0; i < 4; ++i)
        stream.prefixed_unit(4, idr_slice, slice);
    for (const std::size_t cut : {1U, 100U, 299U})
        EXPECT_EQ("length4", kind_of(std::span(stream.made()).first(stream.here() - cut))) << cut;
}

TEST(Recognise, FewerBytesThanAnyAnnexBUnitAndZerosAloneHoldNothing)
{
    EXPECT_EQ("nothing", kind_of({}));
    EXPECT_EQ("nothing", kind_of(stream_builder().junk(3).made()));
    EXPECT_EQ("nothing", kind_of(stream_builder().zeros(100).made()));
    EXPECT_EQ("nothing", kind_of(stream_builder().zeros(2 * recognise_size).made()));
    EXPECT_EQ("nothing", kind_of(bytes{0, 0, 0, 1})) << "a start code";
    EXPECT_NE("nothing", kind_of(stream_builder().junk(4).made()));
    EXPECT_NE("nothing", kind_of(stream_builder().zeros(100).junk(1).made()));
    EXPECT_NE("nothing", kind_of(stream_builder().annexb_unit(aud, {}).made()));
}

TEST(Recognise, OtherBytesAreUnknown)
{
    EXPECT_EQ("unknown", kind_of(stream_builder().junk(100).made()));
    EXPECT_EQ("unknown", kind_of(text("# Notes\n\nThe quick brown fox jumps over the lazy dog.\n")));
    EXPECT_EQ("unknown", kind_of(stream_builder().raw({'G'}).junk(600).made()));
}

TEST(Recognise, ARecordIsKnownByItsFixedBitsAndItsFirstParameterSet)
{
    const bytes record = {1, 0x4D, 0x40, 0x0B, 0xFF, 0xE1, 0, 5, 0x67, 0x4D, 0x40, 0x0B, 0xEC, 1, 0, 2, 0x68, 0xE9};
    EXPECT_EQ("record", kind_of(record));
    EXPECT_EQ("record", kind_of(stream_builder().prefix(4, 26).raw(text("avcC")).raw(record).made()));
    EXPECT_EQ("record", kind_of(bytes{1, 0x4D, 0x40, 0x0B, 0xFF, 0xE0, 0})) << "no parameter sets";
    for (const std::size_t at : {0U, 4U, 5U, 8U, 9U}) {
        bytes other = record;
        other[at] ^= 0x42;
        EXPECT_NE("record", kind_of(other)) << at;
    }
}

TEST(Recognise, OtherFilesAreKnownByTheirSignatures)
{
    const std::pair<bytes, const char*> files[] = {
        {text(std::string("\0\0\0\x18", 4) + "ftypisom"), "MP4"},
        {text(std::string("\0\0\0\x18", 4) + "ftypavif"), "an AVIF image"},
        {{0x1A, 0x45, 0xDF, 0xA3, 0x9F}, "Matroska"},
        {{'F', 'L', 'V', 1, 5}, "FLV"},
        {text("RIFF....AVI LIST"), "AVI"},
        {text("RIFF....WAVEfmt "), "WAV audio"},
        {text("RIFF....WEBPVP8 "), "a WebP image"},
        {{0x30, 0x26, 0xB2, 0x75, 0x8E, 0x66, 0xCF, 0x11, 0xA6}, "ASF"},
        {text("DKIF....AV01...."), "AV1 video in IVF"},
        {text("DKIF....VP90...."), "VP9 video in IVF"},
        {text("DKIF....H264...."), "IVF"},
        {text("YUV4MPEG2 W320"), "raw video (YUV4MPEG2)"},
        {text(std::string("OggS\0\2", 6)), "Ogg"},
        {text("fLaC...."), "FLAC audio"},
        {text(std::string("ID3\4\0", 5)), "MP3 audio"},
        {{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0}, "a PNG image"},
        {{0xFF, 0xD8, 0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F'}, "a JPEG image"},
        {text("GIF89a...."), "a GIF image"},
        {{'B', 'M', 0x36, 0x84, 3, 0, 0, 0, 0, 0, 0x36}, "a BMP image"},
        {{'I', 'I', '*', 0, 8}, "a TIFF image"},
        {{'P', 'K', 3, 4, 20}, "a ZIP archive"},
        {{'7', 'z', 0xBC, 0xAF, 0x27, 0x1C, 0}, "a 7z archive"},
        {stream_builder().fill(257, 'a').raw(text("ustar")), "a tar archive"},
        {{0x1F, 0x8B, 8, 0, 0, 0, 0, 0, 0, 3, 0x4B}, "a file compressed by gzip"},
        {text("BZh91AY&SY.."), "a file compressed by bzip2"},
        {{0xFD, '7', 'z', 'X', 'Z', 0, 0}, "a file compressed by xz"},
        {{0x28, 0xB5, 0x2F, 0xFD, 4}, "a file compressed by zstd"},
        {{0x7F, 'E', 'L', 'F', 2, 1}, "an ELF file"},
        {stream_builder().raw(text("MZ")).zeros(0x3A).raw({0x40, 0, 0, 0}).raw({'P', 'E', 0, 0}), "a Windows program"},
        {{0x12, 0, 0x0A, 2, 0, 0, 0x32, 1, 0}, "AV1 video"},
    };
    for (const auto& [file, name] : files)
        EXPECT_EQ(name, kind_of(file));
}

TEST(Recognise, ATransportStreamHasItsSyncByteInEachPacket)
{
    const auto packets = [](std::size_t before, std::size_t count, std::size_t behind) {
        stream_builder stream;
        for (std::size_t i = 0; i < count; ++i)
            stream.junk(before).raw({'G'}).junk(behind);
        return stream.made();
    };
    EXPECT_EQ("MPEG transport stream", kind_of(packets(0, 3, 187)));
    EXPECT_EQ("MPEG transport stream", kind_of(packets(4, 3, 187))) << "M2TS";
    EXPECT_EQ("MPEG transport stream", kind_of(packets(0, 3, 203))) << "with parity";
    EXPECT_EQ("unknown", kind_of(packets(0, 2, 187)));
    const bytes many = packets(0, 20, 187);
    EXPECT_EQ("MPEG transport stream", kind_of(std::span(many).subspan(50))) << "from within a packet";
    EXPECT_EQ("unknown", kind_of(std::span(many).first(std::size_t{7} * 188).subspan(50)));
}

TEST(Recognise, AudioFramesAreKnownByASecondOne)
{
    // MPEG-1 layer III, 128 kbit/s, 44100 Hz: 417 bytes. ADTS of 20 bytes.
    const bytes mp3 = stream_builder().raw({0xFF, 0xFB, 0x90, 0x64}).fill(413, 0x55).raw({0xFF, 0xFB, 0x90, 0x64});
    const bytes adts = stream_builder()
                           .raw({0xFF, 0xF1, 0x50, 0x80, 2, 0x9F, 0xFC})
                           .fill(13, 0x55)
                           .raw({0xFF, 0xF1, 0x50, 0x80, 2, 0x9F, 0xFC});
    EXPECT_EQ("MP3 audio", kind_of(mp3));
    EXPECT_EQ("AAC audio", kind_of(adts));
    EXPECT_EQ("unknown", kind_of(std::span(mp3).first(417)));
    EXPECT_EQ("unknown", kind_of(std::span(adts).first(20)));
    EXPECT_EQ("unknown", kind_of(stream_builder().fill(2000, 0xFF).made())) << "as filler data";
}

TEST(Recognise, UnitsOfOtherCodecsAreNamed)
{
    const char* const mpeg2 = "MPEG-1 or MPEG-2 video";
    const std::pair<bytes, const char*> streams[] = {
        {units({hevc_vps, hevc_sps, hevc_pps, hevc_idr}), "HEVC video"},
        {units({{0x46, 1, 0x50}, hevc_vps, hevc_sps, hevc_pps, hevc_idr}), "HEVC video"},
        {units({hevc_sps, hevc_pps, hevc_idr, hevc_trail, hevc_trail}), "HEVC video"},
        {units({{0, 0x79, 0, 0xAD}, {0, 0x81, 0, 1}, {0, 0x41, 0xC4}, {0, 1, 0x80}}), "VVC video"},
        {units({mpeg2_sequence, mpeg2_extension, {0xB8, 0, 8}, mpeg2_picture, mpeg2_extension, {1, 0x2B}}), mpeg2},
        {units({mpeg2_sequence, mpeg2_picture, {1, 0x2B}}), mpeg2},
        {units({{7, 0x2B}, {8, 0x2B}, mpeg2_picture, mpeg2_extension, {1, 0x2B}, {1, 0x2B}, {2, 0x2B}}), mpeg2},
        {units({{0xB0, 1}, {0xB5, 0x89, 0x13}, {}, {0x20, 0, 0xC4}, {0xB6, 0x10}}), "MPEG-4 part 2 video"},
        {units({{0, 0}, {0x20, 0x20, 0xC4}, {0xB2, 'x'}, {0xB6, 0x10}}), "MPEG-4 part 2 video"},
        {units({{0xB6, 0x10}, {0xB6, 0x50}, {0xB6, 0x90}, {0xB6, 0x50}}), "MPEG-4 part 2 video"},
        {units({{0xBA, 0x44, 0, 4}, {0xBB, 0, 12}, {0xE0, 7}, h264_sps}), "MPEG program stream"},
        {units({{0xBA, 0x21, 0, 1}, {0xE0, 7}, mpeg2_sequence, mpeg2_picture}), "MPEG program stream"},
        {units({{0x0F, 0xCB}, {0x0E, 0x48}, {0x0D, 0x3F}}), "VC-1 video"},
    };
    for (const auto& [stream, name] : streams)
        EXPECT_EQ(name, kind_of(stream));
}

TEST(Recognise, UnitsThatH264HasTooAreNoOtherCodec)
{
    const bytes non_ref = {0x01, 0x9A};
    const bytes partition = {0x42, 0x80, 0x11}; // an SPS of HEVC but for the second byte
    const bytes streams[] = {
        units({{0x06, 1, 1}, {0x06, 1, 1}, {0x06, 1, 1}, {0x06, 1, 1}}), // each a header of HEVC
        units({partition, partition, partition, partition, {0x44, 0x80}}),
        units({h264_sps, {0x68, 0xE9}, {0xB3, 1}, non_ref, non_ref}),
        units({{0x00, 5}, non_ref, non_ref, {0x41, 0x9A}, non_ref}),                 // a damaged header before B slices
        units({{0x09, 0x10}, {0x27, 0x4D, 0x40, 0x0B}, {0x28, 0xE9}, {0x25, 0x88}}), // a VO, a VOL
        units({h264_sps, {0xB6, 1}, {0xB6, 1}, {0xB6, 1}, {0xB6, 1}}),
        units({{0x6F, 0x4D}, {0x0E, 0x10}, {0x0D, 0x10}}),
    };
    for (const bytes& stream : streams)
        EXPECT_EQ("annexb", kind_of(stream)) << std::hex << int{stream[3]} << int{stream[4]};
}
