// The pictures that wait for their output, for the class that puts them together where they wait: none is copied.
#pragma once

#include "hidden.h"

#include <orv-utils-v4/h264_syntax/output_order.h>

namespace orv_utils_v4::h264 {

class ORV_UTILS_V4_HIDDEN picture_slots {
public:
    /// The one that the next picture waits in. There always is one: end() leaves no more than most_waiting of them
    /// taken.
    static picture& next(output_order& of) noexcept { return of.slots[free_slot(of)]; }
    /// output_order::end() of a picture that was put together in next().
    static void end(output_order& of, const picture& complete, picture_sink& to);
    /// The picture that is being output, as output_order gives it to its sink.
    static picture& output(output_order& of, const picture& given) noexcept { return of.slots[&given - of.slots]; }

private:
    friend class output_order;
    static std::uint8_t free_slot(const output_order& of) noexcept;
    static void end(output_order& of, std::uint8_t slot, picture_sink& to);
    /// Outputs one that waits.
    static void bump(output_order& of, const output_order::waiting_picture* next, picture_sink& to);
};

} // namespace orv_utils_v4::h264
