// The NAL writer against the literal one, in every room from none to more than enough.
#include "support/guarded_writer.h"
#include "support/literal_nal.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

namespace {

using support::bytes;
using support::guarded_buffer;
using support::pick;
using support::random_source;

struct unit {
    bytes payload;
    literal::header nal;
    unsigned int zero_bytes;
};

unit random_unit(random_source& random)
{
    const auto type = static_cast<unsigned int>(pick(random, 40));
    return {support::zero_heavy_up_to(random, 24),
            {static_cast<unsigned int>(pick(random, 6)), type, pick(random, 8) != 0},
            static_cast<unsigned int>(pick(random, 4))};
}

brenik::h264_nal real_header(const literal::header& nal)
{
    return {static_cast<unsigned char>(nal.nal_ref_idc), static_cast<brenik::h264_nal_unit_type>(nal.nal_unit_type),
            nal.valid};
}

/// Writes `u` with both writers and compares result, position and everything before it.
void write_with_both(support::guarded_writer& real, literal::nal_writer& model, const unit& u)
{
    const std::size_t before = model.write;
    const std::size_t expected = model.block_encode(u.payload, u.nal, u.zero_bytes);
    ASSERT_EQ(expected, real.encode(real_header(u.nal), u.payload, u.zero_bytes));
    ASSERT_EQ(model.write, real.writer.data_length());
    ASSERT_EQ(model.write == model.buffer.size(), real.writer.full());
    ASSERT_EQ(bytes(model.buffer.data(), model.buffer.data() + model.write), real.output());
    ASSERT_EQ(expected, model.write - before);
    ASSERT_EQ(real.buffer.begin(), real.writer.buffer);
    ASSERT_EQ(real.buffer.end(), real.writer.fence);
    ASSERT_EQ(model.nalfmt, real.writer.nalfmt);
    ASSERT_TRUE(real.buffer.surroundings_untouched());
}

literal::nal_writer literal_writer(unsigned int nalfmt, std::size_t size)
{
    return {nalfmt, bytes(size), 0};
}

support::guarded_writer real_writer(unsigned int nalfmt, std::size_t size)
{
    return {static_cast<brenik::h2645_common_nalfmt>(nalfmt), size};
}

/// What `u` takes in `nalfmt`.
std::size_t room_for(unsigned int nalfmt, const unit& u)
{
    literal::nal_writer model = literal_writer(nalfmt, 200);
    return model.block_encode(u.payload, u.nal, u.zero_bytes);
}

} // namespace

TEST(LiteralNalWriter, RandomUnitsInEveryFramingAndEveryRoom)
{
    random_source random(6);
    for (unsigned int nalfmt = 0; nalfmt <= 6; ++nalfmt)
        for (int round = 0; round < 60 && !testing::Test::HasFatalFailure(); ++round) {
            SCOPED_TRACE(nalfmt);
            const unit u = random_unit(random);
            const std::size_t need = room_for(nalfmt, u);
            ASSERT_EQ(nalfmt == 0, need == 0);
            for (std::size_t room = 0; room <= need + 8; ++room) {
                literal::nal_writer model = literal_writer(nalfmt, room);
                support::guarded_writer real = real_writer(nalfmt, room);
                write_with_both(real, model, u);
                ASSERT_EQ(room < need ? 0 : need, model.write) << room;
            }
        }
}

TEST(LiteralNalWriter, EveryStringOfSixSmallBytesInEveryRoom)
{
    static constexpr unsigned char alphabet[] = {0, 1, 3, 4};
    support::guarded_writer real = real_writer(0, 40);
    for (const unsigned int nalfmt : {2U, 5U, 6U})
        for (unsigned int number = 0; number < 4096; ++number) {
            bytes payload(6);
            for (std::size_t i = 0; i < payload.size(); ++i)
                payload[i] = alphabet[number >> 2 * i & 3];
            const guarded_buffer data(payload);
            for (std::size_t room = 5; room <= 16; ++room) {
                literal::nal_writer model = literal_writer(nalfmt, room);
                const std::size_t expected = model.block_encode(payload, {3, 7, true}, 1);
                unsigned char* const start = real.buffer.last(room);
                real.writer.nalfmt = static_cast<brenik::h2645_common_nalfmt>(nalfmt);
                real.writer.setbuf(start, start, real.buffer.end());
                ASSERT_EQ(expected,
                          real.writer.block_encode(data.begin(), data.size(), support::header(support::sps), 1))
                    << number << " into " << room;
                ASSERT_EQ(bytes(model.buffer.data(), model.buffer.data() + model.write), real.output());
            }
        }
}

TEST(LiteralNalWriter, SeveralUnitsUntilTheBufferIsFull)
{
    random_source random(7);
    for (int round = 0; round < 1500 && !testing::Test::HasFatalFailure(); ++round) {
        const auto nalfmt = static_cast<unsigned int>(pick(random, 7));
        SCOPED_TRACE(nalfmt);
        const std::size_t size = pick(random, 120);
        literal::nal_writer model = literal_writer(nalfmt, size);
        support::guarded_writer real = real_writer(nalfmt, size);
        for (int units = 0; units < 8; ++units)
            write_with_both(real, model, random_unit(random));
    }
}

TEST(LiteralNalWriter, UnitsAroundTheLimitOfAOneBytePrefix)
{
    random_source random(8);
    for (std::size_t size = 160; size <= 260 && !testing::Test::HasFatalFailure(); ++size)
        for (int round = 0; round < 4; ++round) {
            literal::nal_writer model = literal_writer(1, 500);
            support::guarded_writer real = real_writer(1, 500);
            write_with_both(real, model, {support::zero_heavy(random, size), {3, 7, true}, 0});
        }
}
