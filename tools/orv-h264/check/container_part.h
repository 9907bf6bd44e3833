// What a container says of a stream beside what the stream says itself.
#pragma once

#include "check/violation_log.h"
#include "container/container_check.h"

#include <optional>

namespace orv_h264 {

/// Takes the units of a stream, which may lie in a container, and hands them on.
class container_part final : public h264::split_sink, row_sink {
public:
    container_part(const stream_input& input, h264::split_sink& next);

    /// The stream has ended.
    void finish(const stream_input& input, violation_log& log);

private:
    void unit(const h264::split_unit& unit) override;
    void gap(const h264::split_gap& gap) override;
    void row(picture_row&& row) override { pictures->add(row); }
    void problem(const row_problem&) override {} // the rules tell of the stream

    h264::split_sink& behind;
    std::optional<container_check> pictures; // where it lies in one
    std::optional<picture_rows> rows;
};

} // namespace orv_h264
