// What a picture_reader tells of a stream, kept and put into lines to compare.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace orv_utils_v4::h264 {

/// An access unit without what its pointers lead to.
struct told_access_unit {
    access_unit unit; ///< with the pointers null
    std::vector<std::vector<unsigned char>> units;
    std::int64_t picture = -1; ///< its number; -1 for none
};

inline std::string line_of(const picture& p)
{
    std::ostringstream line;
    line << p.number << " at " << p.offset << " to " << p.end << " structure " << static_cast<int>(p.structure)
         << (p.both_fields ? " both" : "") << " ref " << unsigned{p.nal_ref_idc} << " sequence " << p.sequence
         << " count " << p.count.top << '/' << p.count.bottom << " shown " << unsigned{p.fields_shown} << " decoding "
         << p.times.decoding.numerator << '/' << p.times.decoding.denominator << " presentation "
         << p.times.presentation.numerator << '/' << p.times.presentation.denominator << " source "
         << static_cast<int>(p.times.source);
    return line.str();
}

class told_pictures : public picture_sink {
public:
    void access_unit_came(const access_unit& unit, const picture* of) override
    {
        told_access_unit told;
        for (const access_unit_part& part : unit.parts)
            told.units.emplace_back(part.place.bytes, part.place.bytes + part.place.size);
        told.picture = of == nullptr ? -1 : static_cast<std::int64_t>(of->number);
        told.unit = unit;
        told.unit.header = nullptr;
        told.unit.sps = nullptr;
        told.unit.pps = nullptr;
        access_units.push_back(told);
    }
    void decoded(const picture& picture) override { decoding_order.push_back(picture); }
    void output(const picture& picture) override { output_order.push_back(picture); }

    /// The numbers of the pictures in output order.
    std::vector<std::uint64_t> output_numbers() const
    {
        std::vector<std::uint64_t> numbers;
        for (const picture& p : output_order)
            numbers.push_back(p.number);
        return numbers;
    }
    /// All pictures in output order, a line each.
    std::string lines() const
    {
        std::string text;
        for (const picture& p : output_order)
            text += line_of(p) + '\n';
        return text;
    }

    std::vector<told_access_unit> access_units;
    std::vector<picture> decoding_order;
    std::vector<picture> output_order;
};

/// What is told of a stream that comes in pieces of a size; 0: whole.
inline told_pictures told_of(const std::vector<unsigned char>& stream, std::size_t piece = 0,
                             output_mode mode = output_mode::bumping)
{
    told_pictures told;
    picture_reader reader(framing::annex_b, mode);
    const std::size_t step = piece == 0 ? stream.size() : piece;
    for (std::size_t at = 0; at < stream.size(); at += step)
        reader.push(stream.data() + at, std::min(step, stream.size() - at), told, {nullptr, piece == 0});
    reader.flush(told);
    return told;
}

} // namespace orv_utils_v4::h264
