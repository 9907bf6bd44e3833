// A stream walker that has walked a few parameter sets: what a test of slices and SEI messages begins with.
#pragma once

#include "support/bit_writer.h"
#include "support/pps_builder.h"
#include "support/sps_builder.h"
#include "support/walked.h"

#include "show_syntax.h"

#include <gtest/gtest.h>

#include <string>

namespace support {

/// The walker and what it walks.
class walked_stream {
public:
    /// The parameter sets are sound.
    void walk(const sps_description& seq) { EXPECT_EQ("", problem_of(walk(sps, written_rbsp(seq).made()))); }
    void walk(const pps_description& pic) { EXPECT_EQ("", problem_of(walk(pps, written_rbsp(pic).made()))); }

    orv_h264::walked_unit walk(unsigned char header, const bytes& rbsp) { return support::walk(walker, header, rbsp); }

    orv_h264::stream_walker walker;
};

} // namespace support
