// Every rule of `orv-h264 check` is broken by some stream, which is told so at the unit and the element, and nothing
// else is told of it. Streams that come close to breaking a rule stand in the tables too, with nothing to tell.
#include "support/checked.h"
#include "support/planted_violation.h"
#include "support/special_streams.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace {

using support::planted_violation;

/// Those of all tables, by the names of these.
std::vector<planted_violation> all_planted()
{
    std::map<std::string_view, std::span<const planted_violation>> tables;
    for (const support::planted_table* table = support::planted_table::first; table != nullptr; table = table->next)
        tables.emplace(table->family, table->rows);
    std::vector<planted_violation> all;
    for (const auto& [family, rows] : tables)
        all.insert(all.end(), rows.begin(), rows.end());
    return all;
}

class PlantedViolation : public testing::TestWithParam<planted_violation> {};

TEST_P(PlantedViolation, IsToldAtItsPlaceAndNothingElse)
{
    orv_h264::stream_options options;
    options.format = GetParam().how;
    options.max_unit = GetParam().most_unit_bytes;
    EXPECT_EQ(support::broken_rules(GetParam().make(), options), GetParam().broken);
}

INSTANTIATE_TEST_SUITE_P(All, PlantedViolation, testing::ValuesIn(all_planted()));

TEST(PlantedViolations, BreakEveryRule)
{
    std::set<std::string_view> unbroken;
    for (const orv_h264::rule* one : orv_h264::all_rules())
        if (!one->id.starts_with("container-")) // check-containers breaks those
            unbroken.insert(one->id);
    for (const planted_violation& planted : all_planted())
        for (std::string_view rest = planted.broken; !rest.empty();) {
            unbroken.erase(rest.substr(0, rest.find_first_of("@,")));
            const std::size_t comma = rest.find(", ");
            rest.remove_prefix(comma == std::string_view::npos ? rest.size() : comma + 2);
        }
    EXPECT_EQ(std::vector(unbroken.begin(), unbroken.end()), std::vector<std::string_view>());
}

TEST(PlantedViolations, SoundStreamsBreakNoRule)
{
    using namespace orv_utils_v4::h264;
    made_stream stream;
    stream.add_sets().add(idr()).add(reference(1)).add(reference(2));
    EXPECT_EQ(support::broken_rules(stream.bytes), "");
}

} // namespace
