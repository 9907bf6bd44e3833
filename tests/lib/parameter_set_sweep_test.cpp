// Valid parameter sets, damaged in every small way, against the literal parses: every bit flipped, every length, every
// element at its limits and beyond, every code malformed, and random bytes.
#include "support/element_writer.h"
#include "support/guarded_buffer.h"
#include "support/literal_parse.h"
#include "support/pps_builder.h"
#include "support/sps_builder.h"
#include "support/zero_heavy.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

namespace {

using support::bytes;
using support::compared;
using support::descriptor;
using support::element;
using support::element_writer;

/// Whether what holds for every parse holds for this one.
testing::AssertionResult sound(const compared& c)
{
    if (!c.difference.empty())
        return testing::AssertionFailure() << c.difference;
    if (support::largest_array(c.after) > 128)
        return testing::AssertionFailure() << "an array has " << support::largest_array(c.after) << " entries";
    const bool was_valid = c.before.at("valid").number == 1;
    const bool is_valid = c.after.at("valid").number == 1;
    if (c.end.threw ? is_valid != was_valid : c.end.result != is_valid && is_valid != was_valid)
        return testing::AssertionFailure() << "`valid` is " << is_valid << ", the result " << c.end.result;
    return testing::AssertionSuccess();
}

/// The values an element is set to; of a scaling list's deltas, the first two and the last stand for the others.
std::vector<std::int64_t> values_for(const element& e)
{
    if (e.name.find("delta_scale") != std::string::npos && e.entry > 1 && e.entry % 16 != 15)
        return {};
    if (e.how == descriptor::ue)
        return {0,   1,   2,   3,   4,   5,   6,   15,   16,    31,         32,         63,         64,
                126, 127, 128, 129, 254, 255, 256, 1023, 65535, 2147483646, 2147483647, 2147483648, 4294967294};
    if (e.how == descriptor::se)
        return {0,    1,   -1,   2,   -2,   7,   -7,  8,    -8,    9,      -9,         127,        128,
                -127, 128, -128, 129, -129, 247, 248, -256, 65536, -65536, 2147483647, -2147483647};
    const std::int64_t fence = std::int64_t{1} << e.width;
    std::vector<std::int64_t> values;
    for (const std::int64_t value : {std::int64_t{0}, std::int64_t{1}, std::int64_t{16}, std::int64_t{17},
                                     fence / 2 - 1, fence / 2, fence - 2, fence - 1})
        if (value >= 0 && value < fence)
            values.push_back(value);
    return values;
}

/// A valid structure and the damage to it. `Parses` knows both parses.
template <typename Parses>
class sweep {
public:
    using structure = typename Parses::structure;

    /// `filled` is an object that an earlier parse left.
    sweep(Parses both, element_writer structure_written, structure filled)
        : parses(std::move(both)), writer(std::move(structure_written)), earlier(std::move(filled))
    {
    }

    void whole()
    {
        const compared c = run(writer.made());
        EXPECT_TRUE(sound(c));
        EXPECT_TRUE(c.end.result);
        EXPECT_EQ(writer.size_in_bits(), c.end.position);
    }

    void every_bit_flipped()
    {
        for (std::size_t i = 0; i < writer.size_in_bits(); ++i) {
            bytes flipped = writer.made();
            flipped[i / 8] = static_cast<unsigned char>(flipped[i / 8] ^ 0x80U >> i % 8);
            ASSERT_TRUE(sound(run(flipped))) << "bit " << i;
        }
    }

    void every_length()
    {
        for (std::size_t length = 0; length < writer.size_in_bits(); ++length)
            ASSERT_TRUE(sound(run(support::first_bits(writer.made(), length)))) << length << " bits";
    }

    void every_element_at_its_limits()
    {
        for (const element& e : writer.elements())
            for (const std::int64_t value : values_for(e)) {
                const compared c = run(support::with_element(writer, e, value));
                ASSERT_TRUE(sound(c)) << e.name << ' ' << e.entry << " set to " << value;
                if (!c.after.names->contain(e.name))
                    continue; // a delta, which is not kept
                const support::value& field = c.after.at(e.name);
                ASSERT_EQ(value, field.entries.empty() ? field.number : field.entries.at(e.entry)) << e.name;
            }
    }

    void every_code_malformed()
    {
        for (const element& e : writer.elements()) {
            if (e.how == descriptor::u)
                continue;
            for (int before = 0; before < 3; ++before) {
                const compared c = run(support::with_malformed_code(writer, e));
                ASSERT_TRUE(sound(c)) << e.name;
                ASSERT_TRUE(c.end.threw) << e.name;
                ASSERT_EQ(e.position, c.end.code_start) << e.name;
                ASSERT_EQ(c.before.at("valid"), c.after.at("valid")) << e.name;
            }
        }
    }

    void random_damage(support::random_source& random, int times)
    {
        for (int i = 0; i < times; ++i) {
            bytes damaged = writer.made();
            for (std::size_t n = 1 + support::pick(random, 3); n > 0; --n)
                damaged[support::pick(random, damaged.size())] = static_cast<unsigned char>(random());
            ASSERT_TRUE(sound(run(damaged))) << "damage " << i;
        }
    }

    void everything()
    {
        support::random_source random(1);
        whole();
        every_bit_flipped();
        every_length();
        every_element_at_its_limits();
        every_code_malformed();
        random_damage(random, 200);
    }

    /// Parses `data` into a new object, one that is filled and valid, and one that is filled and not valid, in turn.
    compared run(const bytes& data)
    {
        const support::guarded_buffer buffer(data);
        structure object{};
        if (turn != 0)
            object = earlier;
        object.valid = turn == 1;
        turn = (turn + 1) % 3;
        return parses(object, {buffer.begin(), buffer.end()});
    }

private:
    Parses parses;
    element_writer writer;
    structure earlier;
    int turn = 0;
};

/// What the real parse makes of a structure.
template <typename Parses, typename Description>
typename Parses::structure parsed(const Parses& parses, const Description& description)
{
    const element_writer writer = support::written_rbsp(description);
    typename Parses::structure object{};
    EXPECT_TRUE(parses(object, {writer.made().data(), writer.made().data() + writer.made().size()}).end.result);
    return object;
}

void sweep_sps(const support::sps_description& sps)
{
    const support::sps_parses parses;
    sweep<support::sps_parses>(parses, support::written_rbsp(sps), parsed(parses, support::full_sps())).everything();
}

/// A PPS whose SPS has the chroma format.
void sweep_pps(const support::pps_description& pps, std::int64_t chroma_format_idc = 1)
{
    const support::pps_parses parses{{{0, {true, chroma_format_idc}}, {1, {false, 3}}, {3, {true, 3}}}};
    support::pps_description earlier = support::full_pps(static_cast<std::uint32_t>(chroma_format_idc));
    earlier.num_slice_groups_minus1 = 1;
    earlier.slice_group_map_type = 6;
    earlier.slice_group_id = {1, 0, 1, 2, 3, 1, 2, 0, 1};
    sweep<support::pps_parses>(parses, support::written_rbsp(pps), parsed(parses, earlier)).everything();
}

void sweep_vui(const support::vui_description& vui)
{
    const support::vui_parses parses;
    sweep<support::vui_parses>(parses, support::written(vui), parsed(parses, support::full_vui())).everything();
}

void sweep_hrd(const support::hrd_description& hrd)
{
    const support::hrd_parses parses;
    sweep<support::hrd_parses>(parses, support::written(hrd), parsed(parses, support::hrd_of(5))).everything();
}

void sweep_list(unsigned int size, const support::scaling_list_description& list)
{
    const support::scaling_list_parses parses{size};
    sweep<support::scaling_list_parses>(parses, support::written(list), parsed(parses, support::rising_list(64, 20)))
        .everything();
}

/// Random bytes, both dense and full of zeros, parsed one after another into the same object.
template <typename Parses>
void random_bytes(const Parses& parses, unsigned char first_byte_mask = 0)
{
    static constexpr unsigned char profiles[] = {66, 77, 100, 110, 122, 244, 44, 128};
    support::random_source random(2);
    typename Parses::structure object{};
    for (int i = 0; i < 1500; ++i) {
        bytes data = support::zero_heavy_up_to(random, 40);
        if (i % 4 != 0)
            for (unsigned char& byte : data)
                byte = static_cast<unsigned char>(random());
        if (first_byte_mask != 0 && !data.empty())
            data[0] = profiles[support::pick(random, std::size(profiles))];
        if (i % 50 == 0)
            object = {};
        const support::guarded_buffer buffer(data);
        const auto first_bit = static_cast<unsigned char>(first_byte_mask != 0 ? 0 : i % 8);
        ASSERT_TRUE(sound(parses(object, {buffer.begin(), buffer.end(), first_bit}))) << "bytes " << i;
    }
}

} // namespace

TEST(ParameterSetSweep, ScalingLists)
{
    sweep_list(16, support::rising_list(16, 3));
    sweep_list(16, {{-8}});
    sweep_list(16, {{1, 2, 3, -14}});
    sweep_list(64, support::rising_list(64, 180));
    sweep_list(1, {{5}});
}

TEST(ParameterSetSweep, HrdParameters)
{
    sweep_hrd({});
    sweep_hrd(support::hrd_of(2));
    sweep_hrd(support::hrd_of(32));
}

TEST(ParameterSetSweep, VuiParametersWithEveryGroupAndNone)
{
    sweep_vui({});
    sweep_vui(support::full_vui());
}

TEST(ParameterSetSweep, VuiParametersWithOneGroupEach)
{
    support::vui_description vui = support::full_vui();
    vui.aspect_ratio_info_present_flag = vui.overscan_info_present_flag = vui.video_signal_type_present_flag = false;
    vui.nal_hrd.reset();
    sweep_vui(vui);
    vui = support::full_vui();
    vui.aspect_ratio_idc = 14;
    vui.colour_description_present_flag = vui.chroma_loc_info_present_flag = vui.timing_info_present_flag = false;
    vui.vcl_hrd.reset();
    vui.bitstream_restriction_flag = false;
    sweep_vui(vui);
}

TEST(ParameterSetSweep, SpsOfBaseline)
{
    sweep_sps({});
}

TEST(ParameterSetSweep, SpsOfMainWithFieldsAndCropping)
{
    support::sps_description sps;
    sps.profile_idc = 77;
    sps.pic_order_cnt_type = 2;
    sps.frame_mbs_only_flag = false;
    sps.frame_cropping_flag = true;
    sps.frame_crop_bottom_offset = 4;
    sps.vui = support::vui_description();
    sweep_sps(sps);
}

TEST(ParameterSetSweep, SpsWithPicOrderCntTypeOne)
{
    support::sps_description sps;
    sps.pic_order_cnt_type = 1;
    sps.offset_for_ref_frame = {-1, 2, 300};
    sweep_sps(sps);
}

TEST(ParameterSetSweep, SpsOfHighWithSomeScalingLists)
{
    support::sps_description sps = support::high_sps();
    sps.scaling_lists.emplace();
    (*sps.scaling_lists)[0] = support::rising_list(16, 6);
    (*sps.scaling_lists)[4] = support::scaling_list_description{{-8}};
    (*sps.scaling_lists)[7] = support::scaling_list_description{{4, 4, -16}};
    sweep_sps(sps);
}

TEST(ParameterSetSweep, SpsWithEveryElement)
{
    sweep_sps(support::full_sps());
}

TEST(ParameterSetSweep, PpsWithoutSliceGroups)
{
    sweep_pps({});
    support::pps_description pps;
    pps.tail = true;
    sweep_pps(pps);
}

TEST(ParameterSetSweep, PpsOfEverySliceGroupMapType)
{
    for (std::uint32_t map_type = 0; map_type <= 7; ++map_type) {
        SCOPED_TRACE(map_type);
        sweep_pps(support::pps_of_map_type(map_type));
    }
}

TEST(ParameterSetSweep, PpsWithEveryScalingList)
{
    sweep_pps(support::full_pps(1));
    sweep_pps(support::full_pps(3), 3);
}

TEST(ParameterSetSweep, PpsWithSixScalingLists)
{
    support::pps_description pps = support::full_pps(3);
    pps.transform_8x8_mode_flag = false;
    pps.scaling_list_count = 6;
    sweep_pps(pps, 3);
}

TEST(ParameterSetSweep, RandomBytes)
{
    for (const unsigned int size : {0U, 1U, 16U, 64U, 128U, 129U, 0xFFFFFFFFU})
        random_bytes(support::scaling_list_parses{size});
    random_bytes(support::hrd_parses());
    random_bytes(support::vui_parses());
    random_bytes(support::sps_parses());
    random_bytes(support::sps_parses(), 1);
    random_bytes(
        support::pps_parses{{{0, {true, 1}}, {1, {true, 3}}, {2, {true, 0}}, {3, {false, 1}}, {4, {true, 9}}}});
}
