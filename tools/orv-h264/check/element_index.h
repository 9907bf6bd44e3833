// Where the elements of a unit lie, and which of them are outside of their ranges: taken from its trace.
#pragma once

#include "memory_guard.h"
#include "registered_trace.h"

#include <orv-utils-v4/h264_syntax/element.h>

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// An element whose value the standard does not allow.
struct element_outside {
    h264::traced_element element;
    const char* structure = ""; ///< that it stands in
};

class element_index final : public h264::visitor {
public:
    /// The most that are kept of a unit; those of a slice header and of parameter sets are far fewer.
    static constexpr std::size_t most_elements = 4096;

    void begin()
    {
        places.clear();
        outside.clear();
        path.clear();
    }
    /// Throws std::bad_alloc when memory ran out on the way.
    void end() { guarded.check(); }

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
            if (places.size() < most_elements)
                places.push_back({e.name.name(), e.bit});
            if (!e.inside && outside.size() < most_elements)
                outside.push_back({e, path.empty() ? "" : path.back()});
        });
    }

    /// The bit of the first element of that name.
    std::optional<std::uint64_t> bit_of(std::string_view name) const
    {
        for (const placed& p : places)
            if (name == p.name)
                return p.bit;
        return {};
    }

    std::vector<element_outside> outside;

private:
    struct placed {
        const char* name;
        std::uint64_t bit;
    };
    memory_guard guarded;
    std::vector<placed> places;
    std::vector<const char*> path;
};

} // namespace orv_h264
