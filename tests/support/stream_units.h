// Units pushed into a stream one by one, and what was handed on of each.
#pragma once

#include "support/small_units.h"
#include "support/unit_maker.h"

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace orv_utils_v4::h264 {

/// What a reading told, kept.
struct kept_reading {
    std::uint64_t number = 0;
    unsigned nal_unit_type = 0;
    nal_unit unit;
    outcome result;
    std::uint64_t sps_width = 0;         ///< in macroblocks, of the SPS it was read with; 0 where there is none
    slice_header header;                 ///< of a slice
    std::uint32_t redundant_pic_cnt = 0; ///< of a partition B
};

class pushed_stream : public unit_sink {
public:
    void push_bytes(const std::vector<unsigned char>& unescaped)
    {
        std::vector<unsigned char> unit(unescaped.size() + unescaped.size() / 2 + 40);
        const std::size_t size = frame(unescaped.data(), unescaped.size(), 4, false, unit.data(), unit.size());
        reader.push({unit.data() + 4, size - 4, 0, next_number++}, *this);
    }
    void push(const nal_unit& unit, const unit_context& context) { push_bytes(written(unit, context)); }
    /// Units that stand on the sets of small_sets, or on none.
    void push(const nal_unit& unit)
    {
        static const small_sets sets;
        push(unit, sets.context);
    }
    void push(std::initializer_list<nal_unit> units)
    {
        for (const nal_unit& unit : units)
            push(unit);
    }
    void flush() { reader.flush(*this); }

    void take(const unit_reading& reading) override
    {
        kept_reading kept;
        kept.number = reading.place.number;
        kept.nal_unit_type = reading.unit.header.nal_unit_type;
        kept.unit = reading.unit;
        kept.result = reading.result;
        kept.sps_width = reading.sps == nullptr ? 0 : PicWidthInMbs(*reading.sps);
        if (const slice_header* const header = slice_header_of(reading.unit))
            kept.header = *header;
        if (const auto* const b = std::get_if<slice_data_partition_b_layer_rbsp>(&reading.unit.rbsp))
            kept.redundant_pic_cnt = b->redundant_pic_cnt;
        readings.push_back(kept);
    }

    const parameter_sets& sets() const { return reader.sets(); }
    const kept_reading& last() const { return readings.back(); }
    /// The numbers of the units that were handed on, in order.
    std::vector<std::uint64_t> order() const
    {
        std::vector<std::uint64_t> numbers;
        for (const kept_reading& r : readings)
            numbers.push_back(r.number);
        return numbers;
    }

    std::vector<kept_reading> readings;

private:
    stream reader;
    std::uint64_t next_number = 0;
};

} // namespace orv_utils_v4::h264
