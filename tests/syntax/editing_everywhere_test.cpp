// Every element that is read can be named by its path: a value that it cannot hold is refused, and another one makes
// another unit. What has no path is named here.
#include "support/coded_kinds.h"
#include "support/told_reading.h"
#include "support/unit_maker.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

using namespace orv_utils_v4::h264;

/// Fixed patterns, strings, bytes that are no numbers, and what the writer works out.
bool has_no_path(const kept_element& e)
{
    const std::string name = e.path.substr(e.path.rfind('.') + 1);
    for (const char* pattern :
         {"forbidden_zero_bit", "rbsp_stop_one_bit", "rbsp_alignment_zero_bit", "cabac_alignment_one_bit", "ff_byte",
          "bit_equal_to_one", "bit_equal_to_zero", "byte_alignment_bit_equal_to_one", "ar_bit_equal_to_zero",
          "sei_nesting_zero_bit", "last_payload_type_byte", "last_payload_size_byte", "uuid_iso_iec_11578", "ar_label",
          "ar_object_label_language"})
        if (name.substr(0, name.find('[')) == pattern)
            return true;
    return false;
}

/// The reason why an edit is refused, which leaves the unit as it was; none where it makes another unit.
reason edited(const nal_unit& unit, const unit_context& context, const std::string& path, std::int64_t value)
{
    nal_unit changed = unit;
    outcome result;
    const bool done = edit(changed, context, path, value, result);
    EXPECT_EQ(done, !result.failure) << path;
    EXPECT_EQ(changed == unit, !done) << path << " " << value;
    EXPECT_EQ(unit == changed, !done) << path << " " << value;
    return result.failure.why;
}

/// Of a long unit some hundred elements.
void check_elements(const nal_unit& unit, const unit_context& context, std::size_t first)
{
    const std::vector<unsigned char> bytes = written(unit, context);
    ASSERT_FALSE(bytes.empty());
    const std::vector<kept_element> elements = read_of(bytes, context).elements;
    const std::size_t step = 1 + elements.size() / 100;
    for (std::size_t i = first % step; i < elements.size(); i += step) {
        const kept_element& e = elements[i];
        const bool nameless = has_no_path(e);
        EXPECT_EQ(edited(unit, context, e.path, std::numeric_limits<std::int64_t>::min()),
                  nameless ? reason::no_such_element : reason::too_small)
            << e.path;
        EXPECT_EQ(edited(unit, context, e.path, std::numeric_limits<std::int64_t>::max()),
                  nameless ? reason::no_such_element : reason::too_large)
            << e.path;
        if (nameless)
            continue;
        const reason why = edited(unit, context, e.path, e.value == 0 ? 1 : 0);
        EXPECT_NE(why, reason::no_such_element) << e.path;
        edited(unit, context, e.path, e.value ^ 2);
    }
}

class EditingEverywhere : public testing::TestWithParam<unsigned> {};

TEST_P(EditingEverywhere, ElementsOfUnitsOfTheTypeAreNamedByTheirPaths)
{
    unit_maker maker(GetParam());
    for (std::size_t i = 0; i < 40 && !HasFailure(); ++i) {
        maker.renew_sets();
        check_elements(maker.make(GetParam()), maker.context(), i);
    }
}
INSTANTIATE_TEST_SUITE_P(Types, EditingEverywhere, testing::ValuesIn(coded_types));

class EditingEverywhereInSei : public testing::TestWithParam<std::uint32_t> {};

TEST_P(EditingEverywhereInSei, ElementsOfMessagesOfTheTypeAreNamedByTheirPaths)
{
    unit_maker maker(GetParam());
    for (std::size_t i = 0; i < 20 && !HasFailure(); ++i) {
        maker.renew_sets();
        check_elements(maker.make_sei(GetParam()), maker.context(), i);
    }
}
INSTANTIATE_TEST_SUITE_P(Payloads, EditingEverywhereInSei, testing::ValuesIn(payload_types));

} // namespace
