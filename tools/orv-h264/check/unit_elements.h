// The elements of a unit as its trace tells them: where they lie, and which of them are outside of their ranges.
#pragma once

#include "check/violation_log.h"
#include "memory_guard.h"

#include <orv-utils-v4/h264_syntax/element.h>

#include <vector>

namespace orv_h264 {

/// An element whose value the standard does not allow.
struct element_outside {
    h264::traced_element element;
    const char* structure = ""; ///< that it stands in
};

class unit_elements final : public h264::visitor {
public:
    /// The most that are kept of a unit; those of a slice header and of parameter sets are fewer by far.
    static constexpr std::size_t most_elements = 4096;

    void begin(const listed_unit& of)
    {
        elements.clear();
        outside.clear();
        path.clear();
        bytes = h264::byte_map(of.place.bytes, of.place.size);
        offset = of.place.offset;
    }
    /// The places, in a list that has room for no more; throws std::bad_alloc when memory ran out on the way.
    std::vector<placed_element> end()
    {
        guarded.check();
        return elements;
    }

    void open(const char* name) override
    {
        guarded([&] { path.push_back(name); });
    }
    void close() override
    {
        guarded([&] { path.pop_back(); });
    }
    void element(const h264::traced_element& e) override
    {
        guarded([&] {
            const char* const structure = path.empty() ? "" : path.back();
            if (elements.size() < most_elements)
                elements.push_back({e.name, {offset + bytes(e.bit / 8), e.bit}, e.value, structure});
            if (!e.inside && outside.size() < most_elements)
                outside.push_back({e, structure});
        });
    }

    std::vector<element_outside> outside;

private:
    memory_guard guarded;
    std::vector<placed_element> elements;
    std::vector<const char*> path;
    h264::byte_map bytes{nullptr, 0};
    std::uint64_t offset = 0;
};

} // namespace orv_h264
