#include "sei_counts.h"

#include "support/surveyed.h"

#include <gtest/gtest.h>

namespace {

using namespace orv_utils_v4::h264;
using orv_h264::sei_counts;
using support::survey_of;

using counts = std::map<std::uint32_t, std::uint64_t>;

sei_message filler(std::uint64_t bytes = 1)
{
    return message_of(3, filler_payload{bytes});
}

sei_message unnamed(std::uint32_t payload_type)
{
    return message_of(payload_type, reserved_sei_message{{1, 2}});
}

} // namespace

TEST(SeiCounts, MessagesCountByTheirTypes)
{
    recovery_point point;
    point.recovery_frame_cnt = 2;
    made_stream stream;
    stream.add_sets().add(unit_of(6, sei_rbsp{{filler(), message_of(6, point), filler()}})).add(idr());
    stream.add(unit_of(6, sei_rbsp{{filler()}})).add(unit_of(6, sei_rbsp{{unnamed(700)}})).add(reference(1));
    const sei_counts made = survey_of(stream).sei;
    EXPECT_EQ((counts{{3, 3}, {6, 1}, {700, 1}}), made.by_type());
    EXPECT_EQ(0U, made.further_messages());
    EXPECT_EQ(0U, made.units_not_read());
}

TEST(SeiCounts, MessagesInsideOthersCountToo)
{
    scalable_nesting nesting;
    nesting.all_layer_representations_in_au_flag = true;
    nesting.messages = {filler(), filler()};
    mvc_scalable_nesting views;
    views.all_view_components_in_au_flag = true;
    views.messages = {filler()};
    made_stream stream;
    stream.add_sets().add(unit_of(6, sei_rbsp{{message_of(30, nesting), message_of(37, views)}})).add(idr());
    EXPECT_EQ((counts{{3, 3}, {30, 1}, {37, 1}}), survey_of(stream).sei.by_type());
}

TEST(SeiCounts, TypesBeyondTheBoundAreCountedTogether)
{
    made_stream stream;
    stream.add_sets().add(idr());
    for (std::uint32_t i = 0; i < sei_counts::most_types + 5; ++i)
        stream.add(unit_of(6, sei_rbsp{{unnamed(1000 + i)}})).add(reference(i % 16));
    stream.add(unit_of(6, sei_rbsp{{unnamed(1000)}})).add(reference(0));
    const sei_counts made = survey_of(stream).sei;
    EXPECT_EQ(std::size_t{sei_counts::most_types}, made.by_type().size());
    EXPECT_EQ(5U, made.further_messages());
    EXPECT_EQ(2U, made.by_type().at(1000)) << "one that is known still counts";
}

TEST(SeiCounts, UnitsThatAreNotLookedIntoAreTold)
{
    made_stream stream;
    stream.add_sets();
    constexpr std::uint64_t units = access_units::most_contents + 10;
    for (std::uint64_t i = 0; i < units; ++i)
        stream.add(unit_of(6, sei_rbsp{{filler()}}));
    stream.add(idr());
    const sei_counts made = survey_of(stream).sei;
    EXPECT_GT(made.units_not_read(), 0U);
    EXPECT_EQ(units, made.units_not_read() + made.by_type().at(3));
}
