// What a report says, gathered from one reading of the stream.
#pragma once

#include "json_output.h"
#include "report/report_aggregates.h"
#include "report/report_buffer.h"
#include "report/report_frames.h"
#include "report/report_units.h"
#include "stream_summary.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orv_h264 {

/// Something that the container of a stream says of it, beside what the stream says.
struct container_comparison {
    std::string what; ///< "picture size", for one
    std::string container;
    std::string stream;
    bool agrees = true;
};

class report_content final : public h264::split_sink, row_sink {
public:
    /// Of problems so many are told one by one, and of findings.
    static constexpr std::size_t most_places = 500;

    explicit report_content(const stream_input& input);

    void unit(const h264::split_unit& unit) override;
    void gap(const h264::split_gap& gap) override;
    /// The stream has ended.
    void finish(const stream_input& input);

    /// All of it, for the page; at the end.
    json page_data(const stream_input& input);

    stream_survey survey;
    std::vector<container_comparison> container; ///< the page has a section of these where there are any

private:
    void row(picture_row&& row) override;
    void problem(const row_problem& problem) override { add_place(problem, nullptr); }
    void add_place(const row_problem& problem, const json& frame);
    void finish_container(const container_stream& from);

    report_frames frames;
    report_aggregates aggregates;
    report_units units;
    report_buffer buffer;
    std::uint64_t rows = 0;
    std::uint64_t first_given_up = 0; // the row
    std::uint64_t given_up = 0;
    json problem_places = json::array();
    json finding_places = json::array();
};

} // namespace orv_h264
