// A trace with what a reader of it wants besides: where each element lies in the file, what its value means, and what
// follows from several of them. Bytes in a row are told together.
#pragma once

#include "memory_guard.h"
#include "registered_trace.h"
#include "repeated_names.h"

#include <orv-utils-v4/h264_syntax.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

using byte_span = std::span<const unsigned char>;

struct shown_element {
    const h264::traced_element& element;
    std::uint64_t byte;     ///< where its first bit lies in the file
    std::string_view words; ///< what the value means, or ""
    bool repeated;          ///< its structure has several of its name, and no index tells them apart
};

/// Something that no element says by itself.
struct fact {
    std::string_view name;
    std::string json; ///< its value, as JSON has it
    std::string text; ///< for a person; "" where a heading says it
};

/// Who takes an annotated trace. A failed allocation may leave these as an exception, nothing else.
class annotated_sink {
public:
    annotated_sink() = default;
    annotated_sink(const annotated_sink&) = delete;
    annotated_sink& operator=(const annotated_sink&) = delete;
    virtual ~annotated_sink() = default;

    /// `heading` is the structure's name, or more where more is known of it.
    virtual void open(std::string_view structure, std::string_view heading) = 0;
    virtual void close() = 0;
    virtual void element(const shown_element& shown) = 0;
    /// A run of b(8) elements; `first` stands for all of them, with their bits.
    virtual void bytes(const shown_element& first, byte_span all) = 0;
    virtual void follows(const fact& what) = 0;
};

class annotated_trace final : public h264::visitor {
public:
    /// Unless `all_elements`, those are left out that have the one value which they may have (f(n)), and those that the
    /// line of the unit or the heading of an SEI message tells.
    annotated_trace(annotated_sink& to, bool all_elements) : sink(to), all(all_elements) {}

    /// What comes is of this unit.
    void begin(const h264::unit_place& place);
    /// The unit has ended. Throws std::bad_alloc when memory ran out on the way.
    void end();

    void open(const char* name) override;
    void close() override;
    void element(const h264::traced_element& element) override;

private:
    bool is_told(const h264::traced_element& element) const;
    void tell_bytes();
    void note(const h264::traced_element& element);
    std::string heading_of_message();
    void tell_scaling_list();
    void tell_clocks();
    void begin_registered();
    void keep_registration(const h264::traced_element& first);
    void tell_registration();
    bool inside(std::string_view structure) const { return !path.empty() && path.back().name == structure; }

    struct open_structure {
        std::string_view name;
        repeated_names repeated;
    };

    annotated_sink& sink;
    bool all;
    bool unopened = false; // the innermost structure is one of fixed patterns, and the sink does not know of it
    memory_guard guarded;
    std::vector<open_structure> path; // of the structures
    place_finder place_of;
    std::optional<h264::traced_element> first_byte; // of the run that goes on
    std::vector<unsigned char> run;
    std::uint32_t payload_type = 0; // of the message
    std::uint32_t payload_size = 0;
    std::uint32_t ff_bytes = 0;
    h264::user_data_registered_itu_t_t35 registered; // as much as its name hangs on
    std::vector<std::int64_t> deltas;                // of a scaling list
    std::size_t list_size = 16;
    std::vector<std::array<std::optional<std::int64_t>, 4>> clocks; // hours, minutes, seconds, frames of timestamps
};

} // namespace orv_h264
