// examples/rewrite_framing: the file it makes, and that it makes none when anything is wrong.
#include "support/run_tool.h"
#include "support/stream_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

using support::bytes;
using support::read_file;
using support::run_tool;
using support::stream_builder;
using support::temporary_file;
using support::tool_result;

/// A name for a file that is not there, and goes when the object does.
class output_name {
public:
    output_name() { std::filesystem::remove(file.path()); }
    const std::string& path() const { return file.path(); }
    bool is_there() const { return std::filesystem::exists(file.path()); }

private:
    temporary_file file = temporary_file({});
};

void expect_refused(const std::string& in, const std::string& message)
{
    const output_name out;
    const tool_result result = run_tool({in, out.path()});
    EXPECT_EQ(message, result.err);
    EXPECT_EQ(1, result.status) << message;
    EXPECT_FALSE(out.is_there()) << message;
}

bytes rewritten(const bytes& stream)
{
    const temporary_file in(stream);
    const output_name out;
    const tool_result result = run_tool({in.path(), out.path()});
    EXPECT_EQ("", result.err);
    EXPECT_EQ(0, result.status);
    return read_file(out.path());
}

const std::string folder = ORV_TEST_STREAMS;
const bytes aud_payload = {0x10};

TEST(RewriteFraming, AStreamBecomesItsLengthPrefixedTwin)
{
    EXPECT_TRUE(rewritten(read_file(folder + "/main_bpyramid_weighted.264")) ==
                read_file(folder + "/main_bpyramid_weighted.length4"));
}

TEST(RewriteFraming, EmulationPreventionBytesAreKept)
{
    const bytes escaped = {0x42, 0, 0, 3, 1, 0, 0, 3, 3, 0x80};
    EXPECT_EQ(bytes(stream_builder().prefixed_unit(4, support::sps, escaped)),
              rewritten(stream_builder().zeros(1).annexb_unit(support::sps, escaped)));
}

TEST(RewriteFraming, UnitsOfAHeaderAloneAreTheMostThatTheOutputGrows)
{
    stream_builder in;
    stream_builder out;
    for (std::size_t i = 0; i < 1000; ++i) {
        in.annexb_unit(support::aud, {});
        out.prefixed_unit(4, support::aud, {});
    }
    EXPECT_EQ(out.made(), rewritten(in));
}

TEST(RewriteFraming, ZeroPaddingIsLeftOut)
{
    for (std::size_t zeros = 0; zeros < 6; ++zeros)
        EXPECT_EQ(bytes(stream_builder()
                            .prefixed_unit(4, support::aud, aud_payload)
                            .prefixed_unit(4, support::aud, aud_payload)),
                  rewritten(stream_builder()
                                .zeros(zeros)
                                .annexb_unit(support::aud, aud_payload)
                                .zeros(zeros)
                                .annexb_unit(support::aud, aud_payload)
                                .zeros(zeros)))
            << zeros;
}

TEST(RewriteFraming, WhatIsNoStreamIsRefusedWithNothingLeftBehind)
{
    const temporary_file empty({});
    const temporary_file zeros(bytes(100, 0));
    expect_refused(empty.path(), empty.path() + ": cannot be read, or is empty\n");
    expect_refused(zeros.path(), zeros.path() + ": there is no NAL unit, or one does not fit\n");
    expect_refused(folder + "/missing.264", folder + "/missing.264: cannot be read, or is empty\n");
    EXPECT_EQ("usage: rewrite_framing IN OUT\n", run_tool({empty.path()}).err);
    EXPECT_EQ(2, run_tool({empty.path()}).status);
}

TEST(RewriteFraming, AnOutputThatCannotBeOpenedIsAnError)
{
    const temporary_file there(aud_payload);
    const std::string below = there.path() + "/out"; // a file has nothing below it
    const tool_result result = run_tool({folder + "/pulldown32.264", below});
    EXPECT_EQ(below + ": cannot be opened\n", result.err);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(aud_payload, read_file(there.path()));
}

TEST(RewriteFraming, AnOutputThatCannotBeWrittenWholeDoesNotStay)
{
    const output_name out;
    const tool_result result = run_tool({folder + "/pulldown32.264", out.path()}, {.max_file = 5000});
    EXPECT_EQ(out.path() + ": cannot be written\n", result.err);
    EXPECT_EQ(1, result.status);
    EXPECT_FALSE(out.is_there());
}

} // namespace
