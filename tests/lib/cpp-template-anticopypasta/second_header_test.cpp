// The NAL reader and writer for a header class of another standard, as an H.265 build instantiates them.
#include "cpp-template-anticopypasta/h2645_common_nal_reader.template"
#include "cpp-template-anticopypasta/h2645_common_nal_writer.template"

#include "support/dirty_memory.h"
#include "support/guarded_buffer.h"
#include "support/stream_builder.h"
#include "support/whole_message.h"

#include <gtest/gtest.h>

#include <csignal>
#include <type_traits>

namespace made_up {

/// A header byte whose lowest bit is forbidden and whose other seven are a type. It leaves its members to whoever makes
/// it, and is unlike h264_nal in size and alignment.
class nal {
public:
    double weight;
    unsigned int type;
    bool valid;

    int encode_header() const { return valid ? static_cast<int>(type << 1) : -1; }
    void decode_header(unsigned char b)
    {
        valid = (b & 1) == 0;
        if (valid)
            type = b >> 1U;
    }
};

using reader = brenik::h2645_common_nal_reader<nal, brenik::h2645_common_nalfmt>;
using writer = brenik::h2645_common_nal_writer<nal, brenik::h2645_common_nalfmt>;

} // namespace made_up

template class brenik::h2645_common_nal_reader<made_up::nal, brenik::h2645_common_nalfmt>;
template class brenik::h2645_common_nal_writer<made_up::nal, brenik::h2645_common_nalfmt>;

namespace {

using support::bytes;
using support::guarded_buffer;
using support::stream_builder;

constexpr unsigned char type_100 = 200; // the bit that H.264 forbids is set

bytes decode_all(made_up::reader& reader)
{
    bytes out(200);
    out.resize(reader.block_decode(out.data(), out.size()));
    return out;
}

} // namespace

static_assert(std::is_base_of_v<brenik::h2645_common_nal_reader_base, made_up::reader>);
static_assert(std::is_same_v<made_up::nal, decltype(made_up::reader::nal)>);

TEST(SecondHeader, ANewReaderHoldsANewHeader)
{
    const support::made_on_dirty_memory<made_up::reader> reader;
    EXPECT_EQ(brenik::nalfmt_none, reader->nalfmt);
    EXPECT_EQ(0, reader->nal.weight);
    EXPECT_EQ(0U, reader->nal.type);
    EXPECT_FALSE(reader->nal.valid);
}

TEST(SecondHeader, TheReaderAsksTheHeaderClassWhatIsForbidden)
{
    const guarded_buffer buffer(
        stream_builder().annexb_unit(201, {1, 2, 3}).annexb_unit(type_100, {4, 0, 0, 3, 1}).annexb_unit(2, {}));
    made_up::reader reader(brenik::nalfmt_annexb);
    reader.scan(buffer.begin(), buffer.end());
    ASSERT_TRUE(reader.found);
    EXPECT_EQ(100U, reader.nal.type);
    EXPECT_EQ(buffer.begin() + 7, reader.nal_start);
    EXPECT_EQ(buffer.begin() + 16, reader.find_unit_end());
    EXPECT_EQ((bytes{4, 0, 0, 1}), decode_all(reader));
    reader.scan(reader.next, buffer.end());
    EXPECT_EQ(1U, reader.nal.type);
    EXPECT_EQ(buffer.end(), reader.next);
}

TEST(SecondHeader, TheReaderGivesUpOnAForbiddenPrefixedUnit)
{
    const guarded_buffer buffer(stream_builder().prefixed_unit(3, 201, {1}).prefixed_unit(3, type_100, {2, 3}));
    made_up::reader reader(brenik::nalfmt_length3);
    reader.scan(buffer.begin(), buffer.end());
    EXPECT_FALSE(reader.found);
    EXPECT_TRUE(reader.gave_up);
    EXPECT_EQ(buffer.begin() + 5, reader.next);
    reader.scan(reader.next, buffer.end());
    EXPECT_TRUE(reader.found);
    EXPECT_EQ(100U, reader.nal.type);
    EXPECT_EQ((bytes{2, 3}), decode_all(reader));
}

TEST(SecondHeader, WriterAndReaderRoundTrip)
{
    const bytes payload = {7, 0, 0, 0, 0, 1, 0, 0, 3};
    for (unsigned int nalfmt = 1; nalfmt <= 5; ++nalfmt) {
        SCOPED_TRACE(nalfmt);
        const auto framing = static_cast<brenik::h2645_common_nalfmt>(nalfmt);
        const guarded_buffer buffer(made_up::writer::recommended_output_size(payload.size()));
        made_up::writer writer(buffer.begin(), buffer.begin(), buffer.end(), framing);
        bytes data = payload;
        const std::size_t count = writer.block_encode(data.data(), data.size(), made_up::nal{0.5, 100, true}, 0);
        ASSERT_NE(0U, count);
        EXPECT_EQ(count, writer.data_length());
        made_up::reader reader(framing);
        reader.scan(buffer.begin(), writer.write);
        EXPECT_TRUE(reader.found);
        EXPECT_FALSE(reader.incomplete);
        EXPECT_EQ(type_100, *reader.nal_header);
        EXPECT_EQ(100U, reader.nal.type);
        EXPECT_EQ(payload, decode_all(reader));
    }
}

TEST(SecondHeader, AnInvalidHeaderGoesOutAsTheLowByteOfItsEncoding)
{
    const guarded_buffer buffer(8);
    made_up::writer writer(buffer.begin(), buffer.begin(), buffer.end(), brenik::nalfmt_length1);
    EXPECT_EQ(2U, writer.block_encode(nullptr, 0, made_up::nal{}, 0));
    EXPECT_EQ((bytes{1, 0xFF}), bytes(buffer.begin(), writer.write));
}

TEST(SecondHeaderDeathTest, TheAssertionsKeepTheirSourceNames)
{
    const guarded_buffer buffer(8);
    made_up::writer writer(buffer.begin() + 1, buffer.begin(), buffer.end(), brenik::nalfmt_annexb);
    EXPECT_EXIT(writer.block_encode(nullptr, 0, {}, 0), testing::KilledBySignal(SIGABRT),
                "^lib/cpp-template-anticopypasta/h2645_common_nal_writer\\.template:37: ");
    made_up::reader reader(static_cast<brenik::h2645_common_nalfmt>(6));
    EXPECT_EXIT(reader.scan(buffer.begin(), buffer.end()), testing::KilledBySignal(SIGABRT),
                support::whole_message(""));
}
