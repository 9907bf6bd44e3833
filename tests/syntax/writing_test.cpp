// Writing: what cannot be written names its element, and nothing is handed out.
#include "support/guarded_buffer.h"
#include "support/small_units.h"
#include "support/unit_maker.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

using namespace orv_utils_v4::h264;

/// "ELEMENT[i] VALUE: REASON BOUND" of a writing into room enough; "" when it is written.
std::string refusal(const nal_unit& unit, const unit_context& context = {})
{
    std::vector<unsigned char> room(4096);
    bit_writer to(room.data(), room.size());
    outcome result;
    if (write(unit, context, to, result)) {
        EXPECT_FALSE(result.failure);
        return "";
    }
    const failure& f = result.failure;
    std::string name = f.element.name();
    for (unsigned i = 0; i < f.element.depth(); ++i)
        name += "[" + std::to_string(f.element.index(i)) + "]";
    EXPECT_TRUE(written(unit, context).empty());
    return name + " " + std::to_string(f.value) + ": " + text_of(f.why) + " " + std::to_string(f.bound);
}

std::string refusal_of_sps(const std::function<void(seq_parameter_set_data&)>& change)
{
    seq_parameter_set_data sps = sps_data();
    change(sps);
    return refusal(sps_unit(sps));
}
std::string refusal_of_pps(const std::function<void(pic_parameter_set_rbsp&)>& change)
{
    pic_parameter_set_rbsp pps = pps_rbsp();
    change(pps);
    return refusal(unit_of(8, pps));
}

TEST(Writing, SoundUnitsAreWritten)
{
    EXPECT_EQ(refusal(sps_unit(sps_data())), "");
    EXPECT_EQ(refusal(pps_unit()), "");
    const small_sets s;
    EXPECT_EQ(refusal(slice_unit(5), s.context), "");
}

TEST(Writing, ANumberWiderThanItsBitsIsRefused)
{
    EXPECT_EQ(refusal_of_sps([](auto& x) { x.reserved_zero_2bits = 4; }), "reserved_zero_2bits 4: more than 3");
    nal_unit unit = sps_unit(sps_data());
    unit.header.nal_ref_idc = 4;
    EXPECT_EQ(refusal(unit), "nal_ref_idc 4: more than 3");
    const small_sets s;
    nal_unit slice = slice_unit(5);
    std::get<slice_layer_without_partitioning_rbsp>(slice.rbsp).slice_header.frame_num = 16;
    EXPECT_EQ(refusal(slice, s.context), "frame_num 16: more than 15");
}

TEST(Writing, ValuesOutsideTheStandardsRangesThatHaveACodeAreWritten)
{
    EXPECT_EQ(refusal_of_sps([](auto& x) { x.max_num_ref_frames = 0xFFFFFFFE; }), "");
    EXPECT_EQ(refusal_of_pps([](auto& x) { x.pic_init_qp_minus26 = -0x7FFFFFFF; }), "");
}

TEST(Writing, TheValuesWithoutACodeAreRefused)
{
    EXPECT_EQ(refusal_of_sps([](auto& x) { x.pic_width_in_mbs_minus1 = 0xFFFFFFFF; }),
              "pic_width_in_mbs_minus1 4294967295: more than 4294967294");
    EXPECT_EQ(refusal_of_pps([](auto& x) { x.pic_init_qp_minus26 = -0x7FFFFFFF - 1; }),
              "pic_init_qp_minus26 -2147483648: less than -2147483647");
}

TEST(Writing, AWidthThatNoNumberHasIsRefused)
{
    small_sets s;
    s.sps.seq_parameter_set_data.log2_max_frame_num_minus4 = 29;
    EXPECT_EQ(refusal(slice_unit(5), s.context), "frame_num 33: more than 32");
}

TEST(Writing, ACountBeyondItsArrayIsRefused)
{
    EXPECT_EQ(refusal_of_sps([](auto& x) {
                  x.pic_order_cnt_type = 1;
                  x.num_ref_frames_in_pic_order_cnt_cycle = 256;
              }),
              "num_ref_frames_in_pic_order_cnt_cycle 256: more than 255");
    EXPECT_EQ(refusal_of_pps([](auto& x) { x.num_slice_groups_minus1 = 8; }), "num_slice_groups_minus1 8: more than 7");
    EXPECT_EQ(refusal_of_sps([](auto& x) {
                  x.vui_parameters_present_flag = x.vui_parameters.nal_hrd_parameters_present_flag = true;
                  x.vui_parameters.nal_hrd_parameters.cpb_cnt_minus1 = 32;
              }),
              "cpb_cnt_minus1 32: more than 31");
}

TEST(Writing, AListOfAnotherLengthThanItsCountIsRefused)
{
    const auto ids = [](std::size_t n) {
        return refusal_of_pps([=](auto& x) {
            x.num_slice_groups_minus1 = 1;
            x.slice_group_map_type = 6;
            x.pic_size_in_map_units_minus1 = 2;
            x.slice_group_id.resize(n);
        });
    };
    EXPECT_EQ(ids(3), "");
    EXPECT_EQ(ids(2), "slice_group_id 2: the list has another number of entries 3");
    EXPECT_EQ(ids(4), "slice_group_id 4: the list has another number of entries 3");
}

TEST(Writing, AListThatDoesNotEndWhereItSaysIsRefused)
{
    const auto deltas = [](std::initializer_list<int> sent) {
        return refusal_of_sps([&](auto& x) {
            x.profile_idc = 100;
            x.seq_scaling_matrix_present_flag = x.seq_scaling_list_present_flag[0] = true;
            for (const int delta : sent) {
                x.lists[0].delta_scale.grow();
                x.lists[0].delta_scale.back() = static_cast<std::int16_t>(delta);
            }
        });
    };
    EXPECT_EQ(deltas({-8}), "");
    EXPECT_EQ(deltas({4, -12}), "");
    EXPECT_EQ(deltas({4}), "delta_scale 1: the list has another number of entries 2");
    EXPECT_EQ(deltas({-8, 1}), "delta_scale 2: the list has another number of entries 1");
}

TEST(Writing, MarkingThatDoesNotEndIsRefused)
{
    const small_sets s;
    nal_unit slice = slice_unit(1);
    auto& marking = std::get<slice_layer_without_partitioning_rbsp>(slice.rbsp).slice_header.dec_ref_pic_marking;
    marking.adaptive_ref_pic_marking_mode_flag = true;
    marking.operations.resize(1);
    marking.operations[0].memory_management_control_operation = 5;
    EXPECT_EQ(refusal(slice, s.context),
              "memory_management_control_operation 1: the list has another number of entries 2");
    marking.operations.resize(2);
    EXPECT_EQ(refusal(slice, s.context), "");
}

TEST(Writing, AnotherStructureThanTheTypeNamesIsRefused)
{
    EXPECT_EQ(refusal(unit_of(7, pps_rbsp())), "payload 0: another structure than the type names 0");
    EXPECT_EQ(refusal(unit_of(6, sei_rbsp{{message_of(6, pic_timing{})}})),
              "payload 0: another structure than the type names 0");
}

TEST(Writing, AnotherSliceHeaderThanTheUnitsHeaderNamesIsRefused)
{
    nal_unit unit = unit_of(20, slice_layer_extension_rbsp());
    std::get<slice_layer_extension_rbsp>(unit.rbsp).header = slice_header_in_3davc_extension();
    EXPECT_EQ(refusal(unit), "payload 0: another structure than the type names 0");
    unit.header.svc_extension_flag = true;
    EXPECT_EQ(refusal(unit), "payload 0: another structure than the type names 0");
}

TEST(Writing, ListsOfSeiPayloadsThatEndTooSoonAreRefused)
{
    const auto refused = [](const auto& payload, std::uint32_t type, const unit_context& context = {}) {
        return refusal(unit_of(6, sei_rbsp{{message_of(type, payload)}}), context);
    };
    scalable_nesting nesting;
    nesting.all_layer_representations_in_au_flag = true;
    EXPECT_EQ(refused(nesting, 30), "sei_message 0: the list has another number of entries 1");
    nesting.messages.resize(scalable_nesting::most_messages + 1, message_of(3, filler_payload{}));
    EXPECT_EQ(refused(nesting, 30), "sei_message 129: more than 128");
    scalability_info info;
    info.layers.resize(1);
    info.priority_id_setting_flag = true;
    info.priority_id_setting_uri = {'a'};
    EXPECT_EQ(refused(info, 24), "priority_id_setting_uri[1] 1: the list has another number of entries 2");

    const small_sets s;
    spare_pic spare;
    spare.pictures.resize(1);
    spare.pictures[0].spare_area_idc = 2;
    spare.pictures[0].zero_run_length = {4}; // 5 of 12 map units
    EXPECT_EQ(refused(spare, 8, s.context), "zero_run_length[0] 1: the list has another number of entries 2");

    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data.profile_idc = 118;
    subset.seq_parameter_set_mvc_extension.views.resize(3);
    small_sets with_views;
    with_views.sets.subset_sps[0] = &subset;
    view_dependency_change change;
    EXPECT_EQ(refused(change, 42, with_views.context),
              "anchor_ref_l0_flag 0: the list has another number of entries 1");
}

TEST(Writing, NumbersAndTextsOfSeiPayloadsThatHaveNoBitsAreRefused)
{
    const auto refused = [](const auto& payload, std::uint32_t type) {
        return refusal(unit_of(6, sei_rbsp{{message_of(type, payload)}}));
    };
    annotated_regions regions;
    regions.ar_object_label_present_flag = regions.ar_object_label_language_present_flag = true;
    regions.ar_object_label_language = std::string("e\0n", 3);
    EXPECT_EQ(refused(regions, 202), "ar_object_label_language 0: less than 1");
    filler_payload filler;
    filler.ff_bytes = 0x100000000;
    EXPECT_EQ(refused(filler, 3), "ff_byte 4294967296: more than 4294967295");
    depth_timing timing;
    timing.offsets.resize(1);
    timing.offsets[0].offset_len_minus1 = 31;
    timing.offsets[0].depth_disp_delay_offset_fp = 7; // of 32 bits
    EXPECT_EQ(refused(timing, 52), "");
    timing.offsets[0].offset_len_minus1 = 32;
    EXPECT_EQ(refused(timing, 52), "offset_len_minus1 32: more than 31");
    three_dimensional_reference_displays_info displays;
    displays.displays.resize(1);
    displays.displays[0].ref_baseline.exponent = 62;
    displays.prec_ref_baseline = 64; // a mantissa of 95 bits
    EXPECT_EQ(refused(displays, 51), "mantissa_ref_baseline[0] 95: more than 63");
    displays.prec_ref_baseline = 0;
    displays.displays[0].ref_baseline = {31, 2}; // a mantissa of no bit is not there
    displays.displays[0].ref_baseline.exponent = 1;
    EXPECT_EQ(refused(displays, 51), "");
    displays.prec_ref_baseline = 31; // and one of a bit too few
    displays.displays[0].ref_baseline.mantissa = 2;
    EXPECT_EQ(refused(displays, 51), "mantissa_ref_baseline[0] 2: more than 1");
    sphere_rotation rotation;
    rotation.yaw_rotation = 5; // any number of 32 bits is one
    EXPECT_EQ(refused(rotation, 154), "");
}

TEST(Writing, ATimeOffsetHas32BitsAtTheMost)
{
    small_sets s(timed_sps_data(0, 24));
    vui_parameters& vui = s.sps.seq_parameter_set_data.vui_parameters;
    vui.pic_struct_present_flag = true;
    pic_timing timing;
    timing.timestamps[0].clock_timestamp_flag = timing.timestamps[0].full_timestamp_flag = true;
    const nal_unit unit = unit_of(6, sei_rbsp{{message_of(1, timing)}});
    EXPECT_EQ(refusal(unit, s.context), "");
    const std::vector<unsigned char> sound = written(unit, s.context);
    vui.nal_hrd_parameters.time_offset_length = 33; // which a set that was read cannot say
    EXPECT_EQ(refusal(unit, s.context), "time_offset 33: more than 32");
    nal_unit again;
    outcome result;
    read(again, sound.data(), sound.size(), s.context, result);
    EXPECT_EQ(result.failure.why, reason::too_large);
    EXPECT_STREQ(result.failure.element.name(), "time_offset");
}

TEST(Writing, ACopiedMessageIsItsOriginal)
{
    const sei_message from = message_of(6, recovery_point{5, true, false, 2});
    sei_message to = message_of(3, filler_payload{2});
    to = from;
    EXPECT_TRUE(to == from);
}

TEST(Writing, PartitionsNeedThePartitionAndTheSetsThatItNames)
{
    const nal_unit unit = unit_of(3, slice_data_partition_b_layer_rbsp());
    small_sets s;
    EXPECT_EQ(refusal(unit, s.context), "slice_id 0: partition A of the slice is missing 0");
    s.context.partition_a_pps = 0;
    EXPECT_EQ(refusal(unit, s.context), "");
    s.sets.sps[0] = nullptr;
    EXPECT_EQ(refusal(unit, s.context), "slice_id 0: names a sequence parameter set which is missing 0");
}

TEST(Writing, WeightsForReferencesOfAnotherSliceAreRefused)
{
    subset_seq_parameter_set_rbsp subset;
    subset.seq_parameter_set_data = sps_data();
    subset.seq_parameter_set_data.profile_idc = 139;
    subset.seq_parameter_set_3davc_extension.slice_header_prediction_flag = true;
    small_sets s;
    s.pps.weighted_pred_flag = true;
    s.sets.subset_sps[0] = &subset;
    slice_header_in_3davc_extension header;
    header.pre_slice_header_src = 1;
    header.pre_ref_lists_src = 1;
    nal_unit unit = unit_of(21, slice_layer_extension_rbsp());
    unit.header.avc_3d_extension_flag = true;
    std::get<slice_layer_extension_rbsp>(unit.rbsp).header = header;
    EXPECT_EQ(refusal(unit, s.context), "pred_weight_table 0: needs another slice, which is not looked up 0");
}

TEST(Writing, EveryReasonHasATextAndWhatIsNoneHasNone)
{
    for (int why = 1; why <= static_cast<int>(reason::unit_too_long); ++why)
        EXPECT_STRNE(text_of(static_cast<reason>(why)), "") << why;
    EXPECT_STREQ(text_of(reason::none), "");
    EXPECT_STREQ(text_of(static_cast<reason>(static_cast<int>(reason::unit_too_long) + 1)), "");
}

TEST(Writing, AnSeiUnitHasAMessage)
{
    EXPECT_EQ(refusal(unit_of(6, sei_rbsp{})), "sei_message 0: less than 1");
    sei_rbsp many;
    many.sei_messages.resize(sei_rbsp::most_messages + 1, message_of(3, filler_payload{}));
    EXPECT_EQ(refusal(unit_of(6, many)), "sei_message 1025: more than 1024");
}

TEST(Writing, AMissingParameterSetIsRefused)
{
    EXPECT_EQ(refusal(slice_unit(5)), "pic_parameter_set_id 0: names a picture parameter set which is missing 0");
}

TEST(Writing, WithoutRoomTheBytesThatAreNeededAreTold)
{
    const nal_unit unit = sps_unit(sps_data());
    const std::size_t size = written(unit, {}).size();
    for (std::size_t room = 0; room <= size + 1; ++room) {
        const support::guarded_buffer buffer(room);
        bit_writer to(buffer.begin(), room);
        outcome result;
        EXPECT_EQ(write(unit, {}, to, result), room >= size) << room;
        EXPECT_EQ(result.failure.why, room < size ? reason::no_room : reason::none);
        EXPECT_EQ(result.failure.bound, room < size ? static_cast<std::int64_t>(size) : 0);
        EXPECT_TRUE(buffer.surroundings_untouched());
    }
}

TEST(Writing, NothingIsWrittenBehindTheRefusedElement)
{
    nal_unit unit = sps_unit(sps_data());
    std::get<seq_parameter_set_rbsp>(unit.rbsp).seq_parameter_set_data.reserved_zero_2bits = 4;
    const support::guarded_buffer buffer(16);
    bit_writer to(buffer.begin(), buffer.size());
    outcome result;
    EXPECT_FALSE(write(unit, {}, to, result));
    EXPECT_EQ(to.bits(), 22U); // header, profile_idc, six flags
    EXPECT_EQ(result.failure.bit, 22U);
    EXPECT_TRUE(support::guarded_buffer::untouched(buffer.begin() + 3, buffer.end()));
}

} // namespace
