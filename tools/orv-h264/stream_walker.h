// What the units of a stream mean, one after another: parses each by its type, keeps the parameter sets that later ones
// refer to, and knows which SPS is current. The library reads the syntax; where its picture timing departs from the
// standard, pic_timing_lengths.h reads the delays once more.
#pragma once

#include "rbsp_decoder.h"
#include "walked_unit.h"

#include <orv-utils-v4/h264.h>

#include <cstddef>

namespace orv_h264 {

class stream_walker {
public:
    /// The most parameter sets kept of each kind. H.264 has ids up to 31 and 255; a stream with more is broken, and the
    /// highest ids give way.
    static constexpr std::size_t most_sps = 256;
    static constexpr std::size_t most_pps = 1024;
    /// What a sound slice header and a sound SEI unit never reach, so that a unit of any size takes bounded memory: the
    /// bytes of a slice that its header is looked for in, and the messages of an SEI unit.
    static constexpr std::size_t most_slice_header = std::size_t{96} * 1024;
    static constexpr std::size_t most_messages = 1024;

    /// Parses the unit that the reader stands on, and updates the stores. Slices are decoded only as far as their
    /// headers reach.
    walked_unit walk(brenik::h264_nal_reader& reader);

    const brenik::h2645_common_base_store<brenik::h264_nal_sps>& sps_store() const noexcept { return spss; }
    const brenik::h2645_common_base_store<brenik::h264_nal_pps>& pps_store() const noexcept { return ppss; }

private:
    walked_unit walk_sps(rbsp_bytes rbsp);
    walked_unit walk_pps(rbsp_bytes rbsp);
    walked_unit walk_slice(brenik::h264_nal_reader& reader);
    walked_unit walk_sei(rbsp_bytes rbsp);
    void walk_payload(walked_message& message);
    void walk_buffering_period(walked_message& message);
    void walk_pic_timing(walked_message& message);
    void activate(std::uint32_t sps_id);

    rbsp_decoder decoder;
    brenik::h2645_common_base_store<brenik::h264_nal_sps> spss;
    brenik::h2645_common_base_store<brenik::h264_nal_pps> ppss;
    bool activated = false; // a slice or a buffering period has named the current SPS
};

} // namespace orv_h264
