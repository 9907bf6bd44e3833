#include "same_sequence.h"

#include "support/parameter_set_fields.h"
#include "support/sps_builder.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

using brenik::h264_nal_sps;
using orv_h264::same_sequence;
using support::bytes;

std::optional<h264_nal_sps> parsed(const bytes& rbsp)
{
    brenik::h2645_common_bitreader br(rbsp.data(), rbsp.data() + rbsp.size());
    h264_nal_sps sps;
    try {
        return sps.parse(br) ? std::optional(sps) : std::nullopt;
    } catch (const brenik::h2645_common_malformed_code&) {
        return {};
    }
}

} // namespace

TEST(SameSequence, TheSameSetIsTheSameSequenceWhateverItsId)
{
    support::sps_description other = support::full_sps();
    other.seq_parameter_set_id = 31;
    const auto first = parsed(support::written_rbsp(support::full_sps()).made());
    const auto second = parsed(support::written_rbsp(other).made());
    ASSERT_TRUE(first && second);
    EXPECT_TRUE(same_sequence(*first, *first));
    EXPECT_TRUE(same_sequence(*first, *second));
}

TEST(SameSequence, EveryBitThatChangesAFieldMakesAnother)
{
    const bytes rbsp = support::written_rbsp(support::full_sps()).made();
    const h264_nal_sps original = parsed(rbsp).value();
    std::size_t changed = 0;
    for (std::size_t bit = 0; bit < 8 * rbsp.size(); ++bit) {
        bytes flipped = rbsp;
        flipped[bit / 8] = static_cast<unsigned char>(flipped[bit / 8] ^ 0x80U >> bit % 8);
        auto sps = parsed(flipped);
        if (!sps)
            continue;
        sps->seq_parameter_set_id = original.seq_parameter_set_id;
        const bool same = support::fields_of(*sps) == support::fields_of(original);
        EXPECT_EQ(same, same_sequence(original, *sps)) << bit;
        EXPECT_EQ(same, same_sequence(*sps, original)) << bit;
        changed += same ? 0 : 1;
    }
    EXPECT_GT(changed, 500U);
}
