// A part of a check: what it keeps of the stream that goes by is what its rules look at.
#pragma once

#include "check/violation_log.h"

#include <orv-utils-v4/h264_syntax.h>

#include <memory>
#include <vector>

namespace orv_h264 {

/// Sees a stream go by, units in decoding order, and tells the log what breaks its rules.
class check_part {
public:
    check_part() = default;
    check_part(const check_part&) = delete;
    check_part& operator=(const check_part&) = delete;
    virtual ~check_part() = default;

    /// Before all others: what is known of the input by then.
    virtual void begin(const stream_input& input) { static_cast<void>(input); }
    /// The next unit that was read.
    virtual void unit(const listed_unit& unit, const h264::unit_reading& reading)
    {
        static_cast<void>(unit);
        static_cast<void>(reading);
    }
    /// The next access unit, all of whose units have come, and the picture that it belongs to, where it has one.
    virtual void access_unit(const h264::access_unit& unit, const h264::picture* of)
    {
        static_cast<void>(unit);
        static_cast<void>(of);
    }
    /// The next picture in decoding order. `marking` is what is used for reference behind it.
    virtual void decoded(const h264::picture& picture, const h264::reference_marking& marking)
    {
        static_cast<void>(picture);
        static_cast<void>(marking);
    }
    /// The next picture in output order.
    virtual void output(const h264::picture& picture) { static_cast<void>(picture); }
    /// The stream has ended.
    virtual void end() {}
};

/// All of them, telling this log.
std::vector<std::unique_ptr<check_part>> make_check_parts(violation_log& log);

} // namespace orv_h264
