// Units of every kind, cut behind each of their bytes: what is told is a prefix of what the whole unit tells, and the
// loss is told. A cut unit ends at an unmapped page, so that a read past its end ends the program.
#include "support/told_reading.h"
#include "support/unit_maker.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace orv_utils_v4::h264;
using bytes = std::vector<unsigned char>;

bool loss_is_told(const told_reading& r)
{
    return r.result.failure || r.result.ending != ending::sound;
}

/// Where the two tell something else, or one of them ends.
std::size_t first_difference(const told_reading& a, const told_reading& b)
{
    return static_cast<std::size_t>(
        std::mismatch(a.elements.begin(), a.elements.end(), b.elements.begin(), b.elements.end()).first -
        a.elements.begin());
}

/// Checks every cut of a unit; of a long one some 100 of them.
void check_cuts(const nal_unit& unit, const unit_context& context, bool may_look_whole)
{
    const bytes whole = written(unit, context);
    ASSERT_FALSE(whole.empty());
    const told_reading all = read_of(whole, context);
    ASSERT_FALSE(all.result.failure) << all.result.failure.element.name();
    const std::size_t step = 1 + whole.size() / 100;
    for (std::size_t size = (whole.size() - 1) % step; size < whole.size(); size += step) {
        const told_reading cut = read_of({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)}, context);
        const std::size_t same = first_difference(cut, all);
        const bool is_prefix = same == cut.elements.size();
        if (!may_look_whole) {
            ASSERT_TRUE(is_prefix) << cut.elements[same].path << " of " << size << " bytes";
            ASSERT_TRUE(loss_is_told(cut)) << size << " of " << whole.size();
            ASSERT_LT(cut.elements.size(), all.elements.size());
        } else if (!is_prefix) {
            ASSERT_EQ(cut.elements[same].path.substr(cut.elements[same].path.rfind('.') + 1), "rbsp_stop_one_bit");
        } else {
            ASSERT_TRUE(loss_is_told(cut) || unit.header.nal_unit_type == 14) << size << " of " << whole.size();
        }
    }
}

/// What more_rbsp_data() and its like ask for is optional: where the last one bit of a cut unit lies so, it looks
/// whole.
bool may_look_whole(unsigned nal_unit_type)
{
    return nal_unit_type == 8 || nal_unit_type == 14 || nal_unit_type == 15 || nal_unit_type == 16;
}

class ReaderCuts : public testing::TestWithParam<unsigned> {};

TEST_P(ReaderCuts, TellAPrefixOfTheWholeUnitAndTheLoss)
{
    unit_maker maker(GetParam() + 100);
    for (int i = 0; i < 20 && !HasFailure(); ++i) {
        maker.renew_sets();
        check_cuts(maker.make(GetParam()), maker.context(), may_look_whole(GetParam()));
    }
}
INSTANTIATE_TEST_SUITE_P(Types, ReaderCuts,
                         testing::Values(1, 2, 3, 4, 5, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 19, 20, 21));

TEST(ReaderCutsOfSei, TellAPrefixOfTheWholeUnitAndTheLoss)
{
    unit_maker maker(6);
    for (const std::uint32_t type : {0U,  1U,  2U,  4U,  5U,  6U,   7U,   8U,   9U,   10U,  12U,  18U,  19U, 22U,
                                     23U, 24U, 25U, 28U, 29U, 30U,  31U,  33U,  37U,  38U,  40U,  42U,  45U, 48U,
                                     49U, 50U, 51U, 52U, 53U, 137U, 142U, 154U, 155U, 156U, 200U, 202U, 600U}) {
        for (int i = 0; i < 5 && !HasFailure(); ++i)
            check_cuts(maker.make_sei(type), maker.context(), true); // 0x80 is a payload type, too
        if (HasFailure())
            FAIL() << "payload type " << type;
    }
}

} // namespace
