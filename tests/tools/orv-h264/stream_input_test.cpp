// A stream as a subcommand gets it: its framing, its units, and no more of them than it wants.
#include "stream_input.h"

#include "support/stream_builder.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using orv_h264::stream_input;
using orv_h264::stream_options;
using support::bytes;
using support::pps;
using support::sps;
using support::stream_builder;

namespace h264 = orv_utils_v4::h264;

const bytes payload(40, 0x55);

/// Units as u and gaps as g, in order.
struct noted final : h264::split_sink {
    void unit(const h264::split_unit& unit) override { text += unit.size != 0 ? 'u' : '?'; }
    void gap(const h264::split_gap& gap) override { text += gap.size != 0 ? 'g' : '?'; }

    std::string text;
};

class temporary_file {
public:
    explicit temporary_file(const bytes& content) { folder.write("in", content); }
    std::string path() const { return folder.path("in"); }

private:
    support::temporary_folder folder;
};

stream_options options_of(const temporary_file& file)
{
    stream_options options;
    options.path = file.path();
    return options;
}

TEST(StreamInput, GivesNothingBehindWhatIsEnough)
{
    const temporary_file file(stream_builder()
                                  .junk(3)
                                  .annexb_unit(sps, payload)
                                  .annexb_unit(pps, payload)
                                  .zeros(3)
                                  .junk(3)
                                  .annexb_unit(pps, payload)
                                  .zeros(3)
                                  .junk(3)
                                  .made());
    const char* const wanted[] = {"", "g", "gu", "guu", "guug", "guugu", "guugug", "guugug"};
    for (std::size_t most = 0; most < std::size(wanted); ++most) {
        stream_input input(options_of(file));
        noted sink;
        EXPECT_TRUE(input.read_units(sink, [&] { return sink.text.size() >= most; })) << most;
        EXPECT_EQ(wanted[most], sink.text) << most;
    }
}

TEST(StreamInput, TellsWhetherThereIsAUnit)
{
    noted sink;
    const temporary_file none({0, 0, 0, 1});
    EXPECT_FALSE(stream_input(options_of(none)).read_units(sink));
    const temporary_file some(stream_builder().annexb_unit(pps, payload).made());
    EXPECT_TRUE(stream_input(options_of(some)).read_units(sink));
    stream_options limited = options_of(some);
    limited.max_unit = 10;
    EXPECT_TRUE(stream_input(limited).read_units(sink)) << "one that is too large";
    EXPECT_EQ("gug", sink.text);
}

TEST(StreamInput, KnowsWhoToldTheFraming)
{
    const temporary_file annexb(stream_builder().annexb_unit(sps, payload).made());
    const temporary_file length2(stream_builder().prefixed_unit(2, sps, payload).made());
    EXPECT_EQ(h264::framing::annex_b, stream_input(options_of(annexb)).framing());
    EXPECT_FALSE(stream_input(options_of(annexb)).framing_recognised()) << "the usual one";
    EXPECT_EQ(h264::framing::length_2, stream_input(options_of(length2)).framing());
    EXPECT_TRUE(stream_input(options_of(length2)).framing_recognised());
    stream_options told = options_of(length2);
    told.format = h264::framing::length_2;
    EXPECT_FALSE(stream_input(told).framing_recognised());
    told.format = h264::framing::length_4;
    EXPECT_EQ(h264::framing::length_4, stream_input(told).framing()) << "as the user says";
}

TEST(StreamInput, RefusesOtherFormatsWithTheirStatus)
{
    const auto status_of = [](const bytes& content) {
        const temporary_file file(content);
        try {
            const stream_input input(options_of(file));
        } catch (const orv_h264::refusal& refused) {
            return static_cast<int>(refused.status);
        }
        return 0;
    };
    EXPECT_EQ(3, status_of({'f', 'L', 'a', 'C', 0}));
    EXPECT_EQ(2, status_of({1, 0x4D, 0x40, 0x0B, 0xFF, 0xE0, 0})) << "a record";
    EXPECT_EQ(2, status_of(bytes(50, 0xEE)));
    EXPECT_EQ(0, status_of({}));
}

} // namespace
