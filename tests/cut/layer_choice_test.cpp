// Which units stay of an access unit of a scalable stream; units are made by their headers alone.
#include "cut/exact_order.h"
#include "cut/layer_choice.h"
#include "support/small_units.h"

#include <gtest/gtest.h>

namespace {

namespace h264 = orv_utils_v4::h264;
using h264::unit_role;
using orv_h264::layer_choice;

struct layered_unit {
    h264::access_unit unit;
    std::vector<std::unique_ptr<h264::nal_unit>> contents;
    h264::parameter_sets sets;

    layered_unit& add(unsigned type, unit_role role)
    {
        h264::access_unit_part part;
        part.role = role;
        part.header.nal_unit_type = static_cast<std::uint8_t>(type);
        unit.parts.push_back(part);
        return *this;
    }
    layered_unit& layer(unsigned type, unsigned dependency_id, unsigned quality_id, unsigned temporal_id)
    {
        add(type, type == 14 ? unit_role::prefix : type == 20 ? unit_role::layer : unit_role::primary);
        h264::access_unit_part& part = unit.parts.back();
        part.prefixed = type == 1;
        part.header.svc_extension_flag = true;
        part.header.nal_unit_header_svc_extension.dependency_id = static_cast<std::uint8_t>(dependency_id);
        part.header.nal_unit_header_svc_extension.quality_id = static_cast<std::uint8_t>(quality_id);
        part.header.nal_unit_header_svc_extension.temporal_id = static_cast<std::uint8_t>(temporal_id);
        return *this;
    }
    template <class Rbsp>
    layered_unit& with(unsigned type, unit_role role, Rbsp rbsp)
    {
        add(type, role);
        contents.push_back(std::make_unique<h264::nal_unit>(h264::unit_of(type, std::move(rbsp))));
        unit.parts.back().content = contents.back().get();
        return *this;
    }
    template <class Payload>
    layered_unit& message(std::uint32_t payload_type, Payload payload)
    {
        h264::sei_rbsp sei;
        sei.sei_messages.push_back(h264::message_of(payload_type, std::move(payload)));
        return with(6, unit_role::sei, std::move(sei));
    }

    /// A digit a unit: 1 stays.
    std::string kept(layer_choice choice) const
    {
        std::string digits;
        for (const bool stays : choice.kept(unit, sets))
            digits += stays ? '1' : '0';
        return digits;
    }
};

/// Delimiter, prefix and slice of the base, then D0Q1, D1Q0, D1Q1, D2Q0.
layered_unit three_layers(unsigned temporal_id)
{
    layered_unit made;
    made.add(9, unit_role::delimiter).layer(14, 0, 0, temporal_id).layer(1, 0, 0, temporal_id);
    made.layer(20, 0, 1, temporal_id).layer(20, 1, 0, temporal_id).layer(20, 1, 1, temporal_id);
    made.layer(20, 2, 0, temporal_id);
    return made;
}

TEST(LayerChoice, KeepsAllUnlessToldOtherwise)
{
    EXPECT_EQ("1111111", three_layers(0).kept(layer_choice()));
}

TEST(LayerChoice, KeepsLowerDependenciesWholeAndItsOwnUpToTheQuality)
{
    EXPECT_EQ("1111110", three_layers(0).kept(layer_choice::of_layer({1, 15, 7})));
    EXPECT_EQ("1111100", three_layers(0).kept(layer_choice::of_layer({1, 0, 7})));
    EXPECT_EQ("1111000", three_layers(0).kept(layer_choice::of_layer({0, 1, 7})));
    EXPECT_EQ("1111111", three_layers(0).kept(layer_choice::of_layer({2, 0, 7})));
}

TEST(LayerChoice, TheLowestLayerIsTheBaseWithoutPrefixes)
{
    EXPECT_EQ("1010000", three_layers(0).kept(layer_choice::of_layer({0, 0, 7})));
    EXPECT_EQ("1010000", three_layers(3).kept(layer_choice::of_base()));
}

TEST(LayerChoice, AnAccessUnitOfAHigherTemporalLayerGoesWhole)
{
    EXPECT_EQ("0000000", three_layers(2).kept(layer_choice::of_layer({1, 15, 1})));
    EXPECT_EQ("1111110", three_layers(1).kept(layer_choice::of_layer({1, 15, 1})));
    EXPECT_EQ("0000000", three_layers(1).kept(layer_choice::of_layer({0, 0, 0})));
}

TEST(LayerChoice, MessagesOfLayersGoFromTheBase)
{
    layered_unit made;
    made.message(6, h264::recovery_point())
        .message(24, h264::scalability_info())
        .message(37, h264::mvc_scalable_nesting());
    made.message(45, h264::frame_packing_arrangement()).add(1, unit_role::primary);
    EXPECT_EQ("10011", made.kept(layer_choice::of_base()));
}

TEST(LayerChoice, NestedMessagesStayWithTheirLayers)
{
    h264::scalable_nesting low;
    low.layers = {{0, 0}, {2, 0}};
    h264::scalable_nesting high;
    high.layers = {{2, 0}};
    h264::scalable_nesting late = low;
    late.sei_temporal_id = 3;
    layered_unit made;
    made.message(30, low).message(30, high).message(30, late).message(30, h264::scalable_nesting());
    made.layer(1, 0, 0, 0).layer(20, 1, 0, 0);
    EXPECT_EQ("100111", made.kept(layer_choice::of_layer({1, 15, 2})));
    EXPECT_EQ("000010", made.kept(layer_choice::of_base()));
}

TEST(LayerChoice, PpssThatNoSpsOfTheBaseGoesWithGo)
{
    const h264::seq_parameter_set_rbsp sps = {h264::sps_data(0)};
    const h264::subset_seq_parameter_set_rbsp subset;
    layered_unit made;
    made.sets.sps[0] = &sps;
    made.sets.subset_sps[0] = &subset;
    made.sets.subset_sps[1] = &subset;
    made.with(8, unit_role::parameter_set, h264::pps_rbsp(0, 0))
        .with(8, unit_role::parameter_set, h264::pps_rbsp(1, 1));
    made.with(8, unit_role::parameter_set, h264::pps_rbsp(2, 2)).add(15, unit_role::parameter_set);
    made.add(1, unit_role::primary);
    EXPECT_EQ("10101", made.kept(layer_choice::of_base())) << "whose SPS is nowhere may get one";
}

TEST(LayerChoice, KnowsWhetherTheTargetWasThere)
{
    layer_choice third = layer_choice::of_layer({3, 15, 7});
    layered_unit made = three_layers(0);
    third.kept(made.unit, made.sets);
    EXPECT_FALSE(third.target_seen());
    layer_choice second = layer_choice::of_layer({2, 15, 7});
    second.kept(made.unit, made.sets);
    EXPECT_TRUE(second.target_seen());
}

TEST(ExactOrder, IsThatOfTheFractions)
{
    const h264::exact_time rising[] = {{-5, 2}, {-2, 1},      {-1, 3}, {0, 7}, {1, 3},         {3333333, 10000000},
                                       {2, 3},  {1001, 1500}, {1, 1},  {7, 2}, {1LL << 62, 3}, {(1LL << 62) + 1, 3}};
    // 3333333/10000000 lies below 1/3, and comes before it in the order of values.
    const auto value = [](const h264::exact_time& t) {
        return static_cast<long double>(t.numerator) / static_cast<long double>(t.denominator);
    };
    for (const h264::exact_time& a : rising)
        for (const h264::exact_time& b : rising)
            EXPECT_EQ(value(a) < value(b), orv_h264::is_before(a, b))
                << a.numerator << '/' << a.denominator << " and " << b.numerator << '/' << b.denominator;
    EXPECT_FALSE(orv_h264::is_before({2, 4}, {1, 2}));
    EXPECT_FALSE(orv_h264::is_before({1, 2}, {2, 4}));
}

} // namespace
