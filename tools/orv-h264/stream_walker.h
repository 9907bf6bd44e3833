// What the units of a stream mean, one after another: parses each by its type, keeps the parameter sets that later ones
// refer to, and knows which SPS is current. All syntax is read by the library.
#pragma once

#include <orv-utils-v4/h264.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <variant>

namespace orv_h264 {

/// The RBSP of a unit behind its header. The walker reads it only.
using rbsp_bytes = std::span<unsigned char>;

/// What a unit holds, as far as its parse came.
struct walked_unit {
    /// Nothing for a unit whose syntax is not read.
    std::variant<std::monostate, brenik::h264_nal_aud, brenik::h264_nal_sps, brenik::h264_nal_pps> syntax;
    bool parsed = false;                       ///< the result of the parse
    bool sps_stored = false;                   ///< PPS: the SPS it names is in the store
    std::uint32_t chroma_format_idc = 0;       ///< PPS: that of its SPS
    std::size_t bits = 0;                      ///< the size of the RBSP
    std::size_t bits_consumed = 0;             ///< where the parse ended; past `bits` when it read more than there is
    std::optional<std::size_t> malformed_code; ///< the bit where a malformed Exp-Golomb code begins
};

/// What is wrong with a unit, for a person; "" when nothing is.
std::string problem_of(const walked_unit& unit);

class stream_walker {
public:
    /// The most parameter sets kept of each kind. H.264 has ids up to 31 and 255; a stream with more is broken, and the
    /// highest ids give way.
    static constexpr std::size_t most_sps = 256;
    static constexpr std::size_t most_pps = 1024;

    /// Parses the unit and updates the stores.
    walked_unit walk(const brenik::h264_nal& nal, rbsp_bytes rbsp);

    const brenik::h2645_common_base_store<brenik::h264_nal_sps>& sps_store() const noexcept { return spss; }
    const brenik::h2645_common_base_store<brenik::h264_nal_pps>& pps_store() const noexcept { return ppss; }

private:
    void keep(const brenik::h264_nal_sps& sps);
    void keep(const brenik::h264_nal_pps& pps);
    void activate_from_slice(rbsp_bytes rbsp);
    void activate_from_sei(rbsp_bytes rbsp);
    void activate(std::uint32_t sps_id);

    brenik::h2645_common_base_store<brenik::h264_nal_sps> spss;
    brenik::h2645_common_base_store<brenik::h264_nal_pps> ppss;
    bool activated = false; // a slice or a buffering period has named the current SPS
};

} // namespace orv_h264
