// What access_units tells of units that are pushed one by one, kept, and as a text: the types of the units, `|` between
// access units.
#pragma once

#include "support/made_stream.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orv_utils_v4::h264 {

/// An access unit, with copies of what it points to.
struct kept_access_unit {
    access_unit unit; ///< whose own pointers lead nowhere
    std::optional<slice_header> header;
    std::optional<seq_parameter_set_data> sps;
    std::optional<pic_parameter_set_rbsp> pps;
    std::vector<std::optional<nal_unit>> contents; ///< of each part
    std::vector<std::vector<unsigned char>> bytes; ///< likewise
    std::size_t behind = 0;                        ///< how many units had been pushed when it came

    explicit kept_access_unit(const access_unit& from, std::size_t pushed) : unit(from), behind(pushed)
    {
        if (from.header != nullptr)
            header = *from.header;
        if (from.sps != nullptr)
            sps = *from.sps;
        if (from.pps != nullptr)
            pps = *from.pps;
        for (const access_unit_part& part : from.parts) {
            contents.push_back(part.content != nullptr ? std::optional<nal_unit>(*part.content) : std::nullopt);
            bytes.emplace_back(part.place.bytes, part.place.bytes + part.place.size);
        }
    }
    std::string types() const
    {
        std::string text;
        for (const access_unit_part& part : unit.parts)
            text += (text.empty() ? "" : " ") + std::to_string(part.header.nal_unit_type);
        return text;
    }
    bool has(picture_finding what) const { return unit.findings.has(what); }
};

class told_access_units : public access_unit_sink {
public:
    explicit told_access_units(bool base_alone = false) : units(base_alone) {}
    /// All of a stream.
    explicit told_access_units(const made_stream& of, bool base_alone = false, bool bytes_stay = false)
        : units(base_alone)
    {
        for (const auto& unit : of.units)
            push(unit, bytes_stay);
        flush();
    }

    void push(const std::vector<unsigned char>& unit, bool bytes_stay = false)
    {
        // a copy that is gone when the call returns
        const std::vector<unsigned char> passing = bytes_stay ? std::vector<unsigned char>() : unit;
        const unsigned char* const at = bytes_stay ? unit.data() : passing.data();
        ++pushed;
        units.push({at, unit.size(), offset, pushed - 1}, *this, bytes_stay);
        offset += unit.size() + 4;
    }
    void flush() { units.flush(*this); }
    void take(const access_unit& unit) override { all.emplace_back(unit, pushed); }

    std::string types() const
    {
        std::string text;
        for (const kept_access_unit& unit : all)
            text += (text.empty() ? "" : "|") + unit.types();
        return text;
    }
    /// Of all access units.
    picture_findings findings() const
    {
        picture_findings found;
        for (const kept_access_unit& unit : all)
            found.add(unit.unit.findings);
        return found;
    }

    std::vector<kept_access_unit> all;

private:
    access_units units;
    std::size_t pushed = 0;
    std::uint64_t offset = 4;
};

} // namespace orv_utils_v4::h264
