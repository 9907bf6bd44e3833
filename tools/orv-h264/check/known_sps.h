// The different SPSs that pictures of a stream stand on, with their units.
#pragma once

#include "unit_run.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <deque>
#include <memory>

namespace orv_h264 {

/// An SPS, and what a part keeps with it.
template <class More>
struct known_sps {
    h264::seq_parameter_set_data sps;
    std::uint64_t unit = 0; ///< the first one that it came in
    More more = {};
};

/// One that comes again, with the same content, is the same.
template <class More>
class known_sps_list {
public:
    using entry = std::shared_ptr<known_sps<More>>;

    /// An SPS unit.
    void take(const listed_unit& unit, const h264::unit_reading& reading)
    {
        const auto* const sps = std::get_if<h264::seq_parameter_set_rbsp>(&reading.unit.rbsp);
        if (unit.type() != 7 || sps == nullptr)
            return;
        units.push_back({unit.place.number, sps->seq_parameter_set_data.seq_parameter_set_id});
        if (units.size() > most)
            units.pop_front();
    }

    /// The entry of the one that a slice in this unit stands on. `gone` takes one that makes room for it.
    template <class Gone>
    entry find(const h264::seq_parameter_set_data& sps, std::uint64_t slice_unit, Gone gone)
    {
        for (const entry& one : entries)
            if (one->sps == sps)
                return one;
        if (entries.size() == most) {
            gone(*entries.front());
            entries.pop_front();
        }
        entries.push_back(std::make_shared<known_sps<More>>());
        entries.back()->sps = sps;
        entries.back()->unit = unit_of(sps.seq_parameter_set_id, slice_unit);
        return entries.back();
    }

    auto begin() const { return entries.begin(); }
    auto end() const { return entries.end(); }

private:
    static constexpr std::size_t most = 64;
    struct sps_unit {
        std::uint64_t number;
        std::uint32_t id;
    };

    /// The last one with this id before the slice; the slice's where none is known.
    std::uint64_t unit_of(std::uint32_t id, std::uint64_t slice_unit) const
    {
        for (auto u = units.rbegin(); u != units.rend(); ++u)
            if (u->id == id && u->number < slice_unit)
                return u->number;
        return slice_unit;
    }

    std::deque<sps_unit> units; // the latest
    std::deque<entry> entries;
};

} // namespace orv_h264
