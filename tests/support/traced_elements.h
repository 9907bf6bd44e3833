// What a trace tells, kept to be compared.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <string>
#include <vector>

namespace orv_utils_v4::h264 {

struct kept_element {
    std::string path; ///< structures and name with indices: "nal_unit.nal_unit_type"
    std::uint64_t bit = 0;
    std::uint64_t bits = 0;
    std::int64_t value = 0;
    bool inside = true;

    friend bool operator==(const kept_element&, const kept_element&) = default;
};

class traced_elements : public visitor {
public:
    void open(const char* name) override
    {
        lengths.push_back(path.size());
        path += name;
        path += '.';
    }
    void close() override
    {
        path.resize(lengths.back());
        lengths.pop_back();
    }
    void element(const traced_element& e) override
    {
        std::string name = path + e.name.name();
        for (unsigned i = 0; i < e.name.depth(); ++i)
            name += "[" + std::to_string(e.name.index(i)) + "]";
        elements.push_back({name, e.bit, e.bits, e.value, e.inside});
    }

    std::vector<kept_element> elements;

private:
    std::string path;
    std::vector<std::size_t> lengths;
};

} // namespace orv_utils_v4::h264
