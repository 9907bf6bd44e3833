// The parameter sets of a stream that differ, and the first SEI message of each payload type, element by element, as
// far as a page has room for them.
#pragma once

#include "json_output.h"
#include "report/report_trace.h"
#include "unit_run.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace orv_h264 {

class report_units final : public unit_run {
public:
    /// The most bytes of JSON that are made.
    static constexpr std::size_t most_bytes = std::size_t{192} * 1024;

    /// The parameter sets that hold before the first unit are of the stream too.
    explicit report_units(const stream_input& input) : unit_run(input.name(), false) { begin_units(input); }

    h264::split_sink& sink() { return units_in(); }
    void finish() { end_units(); }

    json parameter_sets() const;
    json messages() const { return message_list; }
    std::uint64_t further_sets() const noexcept { return further; }

private:
    /// Type, size and a sum of the bytes: what tells one parameter set from another.
    using unit_key = std::tuple<unsigned, std::size_t, std::uint64_t>;
    struct known_set {
        std::uint64_t count = 0;
        json object;
    };
    static constexpr std::size_t most_sets = 1024;

    bool enough() const override { return false; }
    h264::visitor* before(const listed_unit& unit) override;
    void take(const listed_unit& unit, const h264::unit_reading* reading) override;
    void complain(const listed_unit*, std::uint64_t, const std::string&, bool) override {}

    bool wants_set(const listed_unit& unit);
    bool wants_messages(const listed_unit& unit);
    void add_messages(const listed_unit& unit);
    bool has_room(const json& object);

    report_trace rows;
    annotated_trace trace{rows, false};
    registered_trace source{trace};
    std::map<unit_key, std::size_t> places; // in the list, of the parameter sets that are known
    std::vector<known_set> sets;
    std::set<std::uint32_t> shown_payloads;
    json message_list = json::array();
    std::vector<unsigned char> unescaped;
    std::size_t bytes = 0;
    std::uint64_t further = 0;
    bool tracing = false;
};

} // namespace orv_h264
