// A unit as the proof compares it, with what it stands on: of the input, and of the output as it is read back.
#pragma once

#include "edit/edit_log.h"
#include "edit/element_list.h"
#include "edit/picture_numbers.h"
#include "input_file.h"

#include <orv-utils-v4/h264_syntax.h>

#include <array>
#include <cstdint>
#include <deque>
#include <exception>
#include <memory>
#include <optional>
#include <vector>

namespace orv_h264 {

/// How the elements of a unit are kept.
enum class kept_elements { digest, list };

/// The parameter sets of a slice, as they were when it was read.
struct slice_sets {
    h264::pic_parameter_set_rbsp pps;
    h264::seq_parameter_set_data sps;
};

struct proof_unit {
    explicit proof_unit(path_table& paths) : elements(paths) {}

    /// What a unit holds once it has been read.
    void take(const h264::unit_reading& reading);

    unsigned type() const { return bytes.empty() ? 0 : bytes[0] & 0x1FU; }
    bool is_slice() const { return (type() >= 1 && type() <= 5) || (type() >= 19 && type() <= 21); }

    std::vector<unsigned char> bytes;
    unsigned framing_size = 0;
    std::uint64_t zeros = 0; ///< and other bytes that are no unit's, before its framing
    h264::nal_unit unit;
    h264::outcome result;
    bool primary_idr = false;
    element_digest digest;
    element_list elements; ///< instead of the digest
    std::unique_ptr<slice_sets> sets;
};

/// Bytes between units, added up.
struct gap_sum {
    std::uint64_t count = 0;
    std::uint64_t bytes = 0;

    friend bool operator==(const gap_sum&, const gap_sum&) = default;
};

/// The output, read unit by unit.
class output_reader : h264::split_sink, h264::unit_sink {
public:
    output_reader(const std::string& path, h264::framing framing, std::uint64_t max_unit, const edit_log& log,
                  path_table& table);
    output_reader(const output_reader&) = delete;
    output_reader& operator=(const output_reader&) = delete;
    ~output_reader() override = default;

    /// The next unit; null behind the last one.
    std::unique_ptr<proof_unit> next();
    const gap_sum& gaps() const { return gap_bytes; }
    /// Bytes behind the last unit, once next() has given null.
    std::uint64_t bytes_behind() const { return file.bytes_read() - passed; }

private:
    struct framed_unit {
        std::vector<unsigned char> bytes;
        unsigned framing_size = 0;
        std::uint64_t zeros = 0;
    };

    void unit(const h264::split_unit& u) override;
    void gap(const h264::split_gap& g) override;
    h264::visitor* before(const h264::unit_place& place) override;
    void take(const h264::unit_reading& reading) override;
    bool read_more();
    kept_elements wanted_for_next();

    input_file file;
    h264::unit_splitter splitter;
    const edit_log& done;
    path_table& paths;
    h264::stream stream;
    std::array<unsigned char, 65536> block;
    std::deque<framed_unit> split;  // not given to the stream yet
    std::deque<framed_unit> pushed; // given to it, and not read yet
    std::unique_ptr<proof_unit> reading_now;
    std::deque<std::unique_ptr<proof_unit>> ready;
    std::exception_ptr failed;
    gap_sum gap_bytes;
    std::size_t log_index = 0;
    std::uint64_t passed = 0;
    bool ended = false;
};

/// The data of two slices are the same bits, and what stands behind them.
/// @param before_bit, after_bit where they begin
bool same_data(const std::vector<unsigned char>& before, std::uint64_t before_bit,
               const std::vector<unsigned char>& after, std::uint64_t after_bit);

} // namespace orv_h264
