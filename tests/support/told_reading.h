// A unit read and traced from bytes that end at an unmapped page.
#pragma once

#include "support/read_only_input.h"
#include "support/traced_elements.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace orv_utils_v4::h264 {

struct told_reading {
    nal_unit unit;
    outcome result;
    std::vector<kept_element> elements;
};

/// Read silently, too, which has to give the same.
inline told_reading read_of(const std::vector<unsigned char>& unit, const unit_context& context = {})
{
    static support::read_only_input input;
    const unsigned char* const start = input.put(unit);
    told_reading r;
    nal_unit silent;
    outcome untold;
    read(silent, start, unit.size(), context, untold);
    traced_elements listener;
    trace(r.unit, start, unit.size(), context, r.result, listener);
    EXPECT_TRUE(silent == r.unit);
    EXPECT_EQ(untold.failure.why, r.result.failure.why);
    EXPECT_EQ(untold.failure.bit, r.result.failure.bit);
    EXPECT_EQ(untold.finding_count, r.result.finding_count);
    EXPECT_EQ(untold.bits, r.result.bits);
    r.elements = std::move(listener.elements);
    return r;
}

} // namespace orv_utils_v4::h264
