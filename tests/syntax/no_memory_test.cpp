// Each allocation fails in turn: nothing is thrown, the failure is told, and what was there before stays.
#include "support/coded_kinds.h"
#include "support/failing_new.h"
#include "support/made_stream.h"
#include "support/small_units.h"
#include "support/unit_maker.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace orv_utils_v4::h264;
using support::armed_new;

/// Calls `attempt` with its first allocation failing, with its second one and so on, and `check` behind each; of many
/// allocations some thirty fail. Gives how many it makes with none failing, which is the last attempt.
std::size_t with_each_failing(const std::function<void()>& attempt, const std::function<void()>& check)
{
    for (std::size_t k = 0;; k += 1 + k / 10) {
        {
            const armed_new failing(k);
            attempt();
        }
        if (armed_new::made() <= k)
            return armed_new::made();
        check();
    }
}

/// Reads the unit; the allocations that it takes.
std::size_t check_reading(const nal_unit& unit, const unit_context& context)
{
    const std::vector<unsigned char> bytes = written(unit, context);
    nal_unit made;
    outcome result;
    return with_each_failing(
        [&] {
            made.rbsp = std::monostate();
            read(made, bytes.data(), bytes.size(), context, result);
        },
        [&] { EXPECT_EQ(result.failure.why, reason::no_memory) << int{unit.header.nal_unit_type}; });
}

TEST(NoMemory, EndsTheReadingOfAUnitOrOfItsPayload)
{
    std::size_t allocations = 0;
    for (const unsigned type : coded_types) {
        unit_maker maker(type);
        for (int i = 0; i < 5; ++i) {
            maker.renew_sets();
            const nal_unit unit = maker.make(type);
            allocations += check_reading(unit, maker.context());
        }
    }
    for (const std::uint32_t type : payload_types) {
        unit_maker maker(type);
        for (int i = 0; i < 3; ++i) {
            const nal_unit unit = maker.make_sei(type);
            allocations += check_reading(unit, maker.context());
        }
    }
    EXPECT_GT(allocations, 500U);
}

TEST(NoMemory, OfAFlagListOrAStringEndsItToo)
{
    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data = sps_data();
    subset.additional_extension2_flag = true;
    subset.additional_extension2_data_flag.assign(700, true);
    EXPECT_GE(check_reading(unit_of(15, subset), {}), 2U);
    annotated_regions regions;
    regions.ar_object_label_present_flag = regions.ar_object_label_language_present_flag = true;
    regions.ar_object_label_language.assign(100, 'x');
    EXPECT_GE(check_reading(unit_of(6, sei_rbsp{{message_of(202, regions)}}), {}), 2U);
}

TEST(NoMemory, OfAnEditLeavesTheUnitAsItWas)
{
    pic_parameter_set_rbsp pps = pps_rbsp();
    pps.num_slice_groups_minus1 = 1;
    pps.slice_group_map_type = 6;
    pps.pic_size_in_map_units_minus1 = 9;
    pps.slice_group_id.resize(10);
    const nal_unit before = unit_of(8, pps);
    nal_unit unit = before;
    outcome result;
    const auto attempt = [&] { edit(unit, {}, "pic_size_in_map_units_minus1", 99, result); };
    const std::size_t allocations = with_each_failing(attempt, [&] {
        EXPECT_EQ(result.failure.why, reason::no_memory);
        EXPECT_TRUE(unit == before);
    });
    EXPECT_GE(allocations, 2U); // the copy, and the longer list
}

/// Counts what comes.
class unit_counter : public unit_sink {
public:
    void take(const unit_reading& reading) override
    {
        ++units;
        without_memory += reading.result.failure.why == reason::no_memory ? 1 : 0;
    }
    std::size_t units = 0;
    std::size_t without_memory = 0;
};

TEST(NoMemory, OfAStreamLosesNoUnit)
{
    const std::vector<std::vector<unsigned char>> pushed = {
        written(sps_unit(sps_data()), {}), written(pps_unit(), {}),
        written(unit_of(6, sei_rbsp{{message_of(6, recovery_point()), message_of(3, filler_payload{300})}}), {}),
        written(unit_of(9, access_unit_delimiter_rbsp()), {})};
    for (std::size_t k = 0; k < 40; ++k) {
        unit_counter counter;
        stream reader;
        const armed_new failing(k);
        for (std::size_t i = 0; i < pushed.size(); ++i)
            reader.push({pushed[i].data(), pushed[i].size(), 0, i}, counter);
        reader.flush(counter);
        EXPECT_EQ(counter.units, pushed.size()) << k;
    }
}

/// Keeps why the latest unit failed.
class last_failure : public unit_sink {
public:
    void take(const unit_reading& reading) override
    {
        type = reading.unit.header.nal_unit_type;
        why = reading.result.failure.why;
    }
    unsigned type = 0;
    reason why = reason::none;
};

TEST(NoMemory, OfASliceIsToldOfThatSlice)
{
    const small_sets sets;
    const std::vector<unsigned char> slice = written(slice_unit(5), sets.context);
    const std::vector<unsigned char> delimiter = written(unit_of(9, access_unit_delimiter_rbsp()), {});
    stream reader;
    last_failure sink;
    reader.push({delimiter.data(), delimiter.size(), 0, 0}, sink);
    ASSERT_EQ(sink.type, 9U);
    {
        const armed_new failing(0);
        reader.push({slice.data(), slice.size(), 0, 1}, sink);
    }
    EXPECT_EQ(sink.type, 0U); // nothing of it was read
    EXPECT_EQ(sink.why, reason::no_memory);
    reader.push({slice.data(), slice.size(), 0, 2}, sink);
    EXPECT_EQ(sink.why, reason::no_pps);
}

/// Counts units, and keeps what was found.
class part_counter : public picture_sink {
public:
    void access_unit_came(const access_unit& unit, const picture*) override
    {
        parts += unit.parts.size();
        limited = limited || unit.findings.has(picture_finding::limit_reached);
    }
    void gap(const split_gap& g) override { lost += g.is_unit() ? 1 : 0; }
    std::size_t parts = 0;
    std::size_t lost = 0;
    bool limited = false;
};

TEST(NoMemory, OfPicturesIsToldWhereAUnitIsLost)
{
    made_stream stream;
    stream.pps().num_slice_groups_minus1 = 1;
    stream.pps().slice_group_map_type = 6;
    stream.pps().pic_size_in_map_units_minus1 = 11;
    stream.pps().slice_group_id.resize(12);
    stream.add_sets().add(unit_of(6, sei_rbsp{{message_of(6, recovery_point())}}));
    stream.add_bytes(0x65, {0xE0, 0x80}).add(idr(0)).add_sets(); // a damaged slice in front
    stream.add(reference(1)).add_large(reference(2), 3000).add(idr(1)).add_sets();
    const timestamp stamp;
    std::size_t limited = 0;
    for (std::size_t k = 0; k < 150; ++k) {
        part_counter sink;
        picture_reader reader(framing::annex_b);
        const armed_new failing(k);
        for (std::size_t at = 0; at < stream.bytes.size(); at += 700)
            reader.push(stream.bytes.data() + at, std::min<std::size_t>(700, stream.bytes.size() - at), sink, {&stamp});
        reader.flush(sink);
        EXPECT_TRUE(sink.parts + sink.lost == stream.units.size() || sink.limited) << k;
        limited += sink.limited ? 1 : 0;
    }
    EXPECT_GT(limited, 0U);
}

TEST(NoMemory, OfAStoreOfSetsAndOfARecordLeavesWhatWasThere)
{
    const std::vector<unsigned char> sps = written(sps_unit(sps_data()), {});
    const std::vector<unsigned char> pps = written(pps_unit(), {});
    set_arrival how = set_arrival::same;
    parameter_set_store store;
    with_each_failing(
        [&] {
            how = store.push(unit_view{sps.data(), sps.size()});
        },
        [&] {
            EXPECT_EQ(how, set_arrival::no_memory);
            EXPECT_TRUE(store.all().empty());
        });
    EXPECT_EQ(how, set_arrival::added);
    EXPECT_EQ(store.push(unit_view{pps.data(), pps.size()}), set_arrival::added);
    AVCDecoderConfigurationRecord record;
    configuration_outcome made;
    with_each_failing([&] { made = make_configuration(record, store.all(), 4); },
                      [&] {
                          EXPECT_EQ(made.why, configuration_reason::no_memory);
                          EXPECT_TRUE(record == AVCDecoderConfigurationRecord());
                      });
    EXPECT_TRUE(made.sound());
}

/// Counts the bytes of units and gaps.
class byte_counter : public split_sink {
public:
    void unit(const split_unit& u) override { bytes += u.framing_size + u.size; }
    void gap(const split_gap& g) override
    {
        bytes += g.size;
        lost += g.reason == split_gap_reason::no_memory ? 1 : 0;
        EXPECT_EQ(g.is_unit(), g.reason == split_gap_reason::no_memory);
    }
    std::uint64_t bytes = 0;
    std::size_t lost = 0;
};

TEST(NoMemory, OfTheSplitterMakesAGapOfTheUnit)
{
    std::vector<unsigned char> stream = {0, 0, 1, 0x65};
    stream.insert(stream.end(), 5000, 0x55);
    stream.insert(stream.end(), {0, 0, 1, 0x41, 1, 2});
    byte_counter whole;
    for (std::size_t k = 0; k < 8; ++k) {
        byte_counter counter;
        unit_splitter splitter(framing::annex_b);
        const armed_new failing(k);
        for (std::size_t at = 0; at < stream.size(); at += 1000)
            splitter.push(stream.data() + at, std::min<std::size_t>(1000, stream.size() - at), counter);
        splitter.flush(counter);
        EXPECT_EQ(counter.bytes, stream.size()) << k;
        whole.lost += counter.lost;
    }
    EXPECT_GT(whole.lost, 0U);
}

} // namespace
