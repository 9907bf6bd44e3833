// The syntax elements of a unit as paths and values, to be compared with those of another one. What follows from other
// elements alone (trailing bits, alignment) is left out; bytes in a row are one entry.
#pragma once

#include "diff/fingerprint.h"
#include "memory_guard.h"

#include <orv-utils-v4/h264_syntax.h>

#include <cstdint>
#include <string>
#include <vector>

namespace orv_h264 {

namespace h264 = orv_utils_v4::h264;

/// An element, or bytes in a row.
struct compared_element {
    std::string path;  ///< structures and name, joined by dots, as inspect --tsv has them; bytes in a row without index
    std::string value; ///< of bytes how many there are
    fingerprint bytes; ///< of them
};

class compared_elements final : public h264::visitor {
public:
    /// So many elements of a unit are told apart; of further ones a fingerprint is kept.
    static constexpr std::size_t most_elements = std::size_t{64} * 1024;

    /// What was told, up to here. Throws std::bad_alloc where an allocation has failed on the way.
    std::vector<compared_element> take();

private:
    void open(const char* name) override;
    void close() override;
    void element(const h264::traced_element& element) override;
    void add(const h264::traced_element& element);
    void add_byte(const h264::traced_element& element);
    void end_bytes();

    std::vector<compared_element> elements;
    std::string path;
    std::string byte_path; // of the bytes in a row that came last
    std::uint64_t byte_count = 0;
    fingerprint_maker bytes;
    fingerprint_maker further;
    std::uint64_t further_count = 0;
    memory_guard guarded;
};

} // namespace orv_h264
