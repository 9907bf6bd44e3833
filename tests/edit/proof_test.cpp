// The proof of an edit can fail: outputs that are damaged behind the editor's back, one way after another.
#include "edit/edit.h"
#include "edit/proof.h"
#include "edit/stream_edit.h"
#include "output_file.h"
#include "support/stream_files.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

using orv_h264::edit_log;
using orv_h264::edit_options;
using orv_h264::edit_plan;
using orv_h264::proof;
using support::bytes;
using support::read_file;

const std::string stream = ORV_TEST_STREAMS "/hrd_vbr_aud.264";

void write_over(const std::string& path, const bytes& content)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
}

class Proof : public testing::Test {
protected:
    /// Edits, and keeps what was written.
    void write(const edit_plan& wanted)
    {
        plan = wanted;
        orv_h264::stream_options from;
        from.path = stream;
        orv_h264::stream_input input(from);
        orv_h264::output_file file(path);
        orv_h264::stream_edit run(plan, input, stream, file);
        run.run();
        file.commit();
        log = run.log();
        content = read_file(path);
    }

    /// The proof over these bytes instead.
    proof proof_of(const bytes& other)
    {
        write_over(path, other);
        orv_h264::stream_options from;
        from.path = stream;
        return orv_h264::prove(plan, from, path, orv_utils_v4::h264::framing::annex_b, log);
    }

    void expect_fails(const bytes& other, const std::string& why)
    {
        const proof found = proof_of(other);
        EXPECT_FALSE(found.holds) << why;
        EXPECT_NE(std::string::npos, found.why_not.find(why)) << found.why_not;
    }

    support::temporary_folder folder;
    std::string path = folder.path("out");
    edit_plan plan;
    edit_log log;
    bytes content;
};

edit_plan plan_of(const std::vector<std::string>& sets)
{
    edit_plan plan;
    for (const std::string& set : sets)
        plan.sets.push_back(orv_h264::parse_assignment(set));
    return plan;
}

} // namespace

TEST_F(Proof, HoldsOfWhatWasWritten)
{
    write(plan_of({"log2_max_frame_num_minus4=6"}));
    const proof found = proof_of(content);
    EXPECT_TRUE(found.holds) << found.why_not;
    EXPECT_EQ(75U, found.slices);
    EXPECT_EQ(78U, found.rewritten);
    EXPECT_EQ(157U, found.copied);
}

TEST_F(Proof, EveryByteThatIsDamagedIsSeen)
{
    write(plan_of({"log2_max_frame_num_minus4=6", "time_scale=60"}));
    std::size_t seen = 0;
    std::size_t tried = 0;
    for (std::size_t at = 0; at < content.size(); at += 211, ++tried) {
        bytes damaged = content;
        damaged[at] = static_cast<unsigned char>(damaged[at] ^ 0x04U);
        const proof found = proof_of(damaged);
        EXPECT_FALSE(found.holds) << "byte " << at;
        seen += found.holds ? 0 : 1;
    }
    EXPECT_EQ(tried, seen);
    EXPECT_GT(tried, 200U);
}

TEST_F(Proof, AnOutputThatEndsOrGoesOnIsSeen)
{
    write(plan_of({"time_scale=60"}));
    bytes cut(content.begin(), content.begin() + 20000);
    expect_fails(cut, "");
    bytes longer = content;
    longer.insert(longer.end(), {0, 0, 1, 12, 255, 128});
    expect_fails(longer, "the output goes on behind its last unit");
    bytes padded = content;
    padded.insert(padded.begin() + 6, 0); // between the first two units
    expect_fails(padded, "does not have its framing any more");
}

// The log says what the editor thinks; another plan is what the user wanted.
TEST_F(Proof, AnElementThatNobodyNamedIsSeen)
{
    write(plan_of({"time_scale=60", "max_num_reorder_frames=1"}));
    plan = plan_of({"time_scale=60"});
    expect_fails(content, "max_num_reorder_frames 2 would be 1");
    plan = plan_of({"time_scale=61", "max_num_reorder_frames=1"});
    expect_fails(content, "time_scale 50 would be 60");
}

TEST_F(Proof, AUnitThatGoesWithoutAReasonIsSeen)
{
    edit_plan deletes;
    deletes.remove_aud = true;
    write(deletes);
    EXPECT_TRUE(proof_of(content).holds);
    plan = edit_plan();
    expect_fails(content, "is left out, which nobody wants");
}

TEST_F(Proof, SliceDataThatChangeAreSeen)
{
    edit_plan forced = plan_of({"disable_deblocking_filter_idc=1"});
    forced.force = true;
    write(forced);
    EXPECT_TRUE(proof_of(content).holds);
    plan.force = false;
    expect_fails(content, "has another disable_deblocking_filter_idc");
}

TEST_F(Proof, ADamagedOutputIsRefusedAndNothingIsLeft)
{
    edit_options options;
    options.stream.path = stream;
    options.out = path;
    options.plan = plan_of({"time_scale=60"});
    options.before_proof = [](const std::string& written) {
        bytes damaged = read_file(written);
        damaged[40000] = static_cast<unsigned char>(damaged[40000] ^ 1U);
        write_over(written, damaged);
    };
    EXPECT_THROW(orv_h264::edit_stream(options), orv_h264::refusal);
    EXPECT_EQ(0, folder.files());
    write_over(path, {1, 2, 3});
    try {
        orv_h264::edit_stream(options);
        ADD_FAILURE() << "it went through";
    } catch (const orv_h264::refusal& refused) {
        EXPECT_EQ(orv_h264::exit_usage_or_io, refused.status);
        EXPECT_NE(std::string::npos, std::string(refused.what()).find("does not have its bytes any more"));
    }
    EXPECT_EQ(bytes({1, 2, 3}), read_file(path));
    EXPECT_EQ(1, folder.files());
}
