// The clauses that a trace's structures are looked up under. tests/docs/check-clauses holds the table against the
// texts.
#include "support/unit_maker.h"

#include <orv-utils-v4/h264_syntax.h>

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

using namespace orv_utils_v4::h264;

namespace {

TEST(Clauses, AreTheSyntaxAndTheSemanticsOfAStructure)
{
    const struct {
        const char* structure;
        const char* clause;
        const char* semantics;
    } rows[] = {
        {"seq_parameter_set_data", "7.3.2.1.1", "7.4.2.1.1"},
        {"slice_header", "7.3.3", "7.4.3"},
        {"rbsp_trailing_bits", "7.3.2.11", "7.4.2.11"},
        {"slice_data_in_scalable_extension", "G.7.3.4", "G.7.4.4"},
        {"ref_pic_list_mvc_modification", "H.7.3.3.1.1", "H.7.4.3.1.1"},
        {"3dv_acquisition_element", "J.7.3.2.13.2", "J.7.4.2.13.2"},
        {"hrd_parameters", "E.1.2", "E.2.2"},
        {"pic_timing", "D.1.3", "D.2.3"},
        {"recovery_point", "D.1.8", "D.2.8"},
        {"spare_pic", "D.1.10", "D.2.10"},
        {"sei_manifest", "D.1", "D.2"},
        {"tl_switching_point", "G.13.1.12", "G.13.2.12"},
        {"depth_timing", "I.13.1", "I.13.2"},
        {"mvc_vui_parameters_extension", "H.14.1", "H.14.2"},
    };
    for (const auto& row : rows) {
        EXPECT_STREQ(clause_of(row.structure), row.clause) << row.structure;
        EXPECT_STREQ(semantics_of(row.structure), row.semantics) << row.structure;
    }
}

TEST(Clauses, OfANameThatNoTableHasAreEmpty)
{
    for (const char* const name : {"", "0", "slice", "slice_header_", "vui_parameters2", "zzz", "\xff"}) {
        EXPECT_STREQ(clause_of(name), "") << name;
        EXPECT_STREQ(semantics_of(name), "") << name;
    }
}

/// Keeps the names of the structures.
struct opened : visitor {
    std::set<std::string> names;

    void open(const char* name) override { names.insert(name); }
    void close() override {}
    void element(const traced_element&) override {}
};

TEST(Clauses, EachStructureThatATraceOpensHasOne)
{
    unit_maker maker(20261122);
    opened all;
    const auto trace_made = [&](const nal_unit& unit) {
        const std::vector<unsigned char> bytes = written(unit, maker.context());
        ASSERT_FALSE(bytes.empty());
        nal_unit again;
        outcome how;
        trace(again, bytes.data(), bytes.size(), maker.context(), how, all);
    };
    for (unsigned round = 0; round < 30; ++round) {
        maker.renew_sets();
        for (const unsigned type : {1U, 2U, 3U, 4U, 5U, 7U, 8U, 9U, 10U, 11U, 12U, 13U, 14U, 15U, 16U, 19U, 20U, 21U})
            trace_made(maker.make(type));
        for (std::uint32_t payload_type = 0; payload_type < 210; ++payload_type)
            trace_made(maker.make_sei(payload_type));
    }
    EXPECT_GE(all.names.size(), 100U);
    for (const std::string& name : all.names)
        EXPECT_STRNE(clause_of(name.c_str()), "") << name;
}

} // namespace
