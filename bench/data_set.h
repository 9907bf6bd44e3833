// The streams that are measured: what they hold is random, but sound (parameter sets, slice headers, delimiters), and
// the same in every run.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

/// A unit's payload in `data_set::payloads`, and what stands around it.
struct unit_place {
    std::size_t offset;
    std::size_t size;
    unsigned char header;
    bool begins_picture;
};

/// One stream in all the forms that a task may want.
struct data_set {
    std::string name;
    std::vector<unsigned char> payloads; ///< RBSPs without their header bytes, one behind the other
    std::vector<unit_place> units;
    std::vector<unsigned char> annex_b; ///< start codes of three bytes; `padding` zero bytes behind `annex_b_size`
    std::size_t annex_b_size;
    std::vector<unsigned char> length4; ///< the same units behind lengths of four bytes, padded too
    std::size_t length4_size;
    std::vector<std::size_t> annex_b_pictures; ///< where each picture begins, then the end
    std::vector<std::size_t> length4_pictures;
    std::size_t largest_unit; ///< of the units as they are in the streams, framing included
    bool is_stream;           ///< the slices have headers

    static constexpr std::size_t padding = 64; ///< what libavcodec wants behind its input
};

/// What every data set is called, in the order of the tables.
const std::vector<std::string>& data_set_names();

/// The data set of that name, of about `megabytes` (10^6 bytes), or a tenth of it where units have 5 bytes; made when
/// it is first asked for.
data_set& data_set_named(const std::string& name, std::size_t megabytes);

/// Writes about that much of a data set in Annex B: 50 MB of it, over and over, so that any length needs no more
/// memory. False: the file cannot be written.
bool write_stream(const std::string& name, std::size_t megabytes, const std::string& file);

} // namespace bench
