// The options of `orv-h264 edit` that stand for several elements of each sequence parameter set.
#pragma once

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// An element of a unit by its path, and what it becomes.
struct element_value {
    std::string path;
    std::int64_t value = 0;
};

struct wanted_colour {
    std::uint8_t colour_primaries = 2;
    std::uint8_t transfer_characteristics = 2;
    std::uint8_t matrix_coefficients = 2;
};

/// Luma samples that are cut off.
struct wanted_crop {
    std::uint32_t left = 0;
    std::uint32_t top = 0;
    std::uint32_t right = 0;
    std::uint32_t bottom = 0;
};

struct sps_wishes {
    std::optional<h264::ratio> sar;
    std::optional<h264::ratio> rate; ///< frames in a second
    std::string level;               ///< "4.1", "auto"; "" is none
    std::optional<wanted_colour> colour;
    std::optional<wanted_crop> crop;
    std::optional<bool> full_range;

    bool any() const;
};

/// The elements that the wishes come to, in the order in which they are to be set: presence flags before what they
/// bring. Throws refusal where the SPS cannot be had so.
/// @param remarks gets what the user ought to know
std::vector<element_value> changes_of(const h264::seq_parameter_set_data& sps, const sps_wishes& wishes,
                                      std::vector<std::string>& remarks);

// All of these throw std::invalid_argument, the text for the user.

/// W:H, 16 bits each.
h264::ratio parse_sar(const std::string& text);
/// N/D or N, with time_scale and num_units_in_tick of 32 bits.
h264::ratio parse_rate(const std::string& text);
/// A name of Table A-1, or auto.
std::string parse_level(const std::string& text);
/// PRIMARIES:TRANSFER:MATRIX, names or numbers.
wanted_colour parse_colour(const std::string& text);
/// L,T,R,B.
wanted_crop parse_crop(const std::string& text);
/// on or off.
bool parse_range(const std::string& text);

} // namespace orv_h264
