// Cuts a stream into frames with h264_common_frame_scan(): takes whole units, as the piece feeder hands them on, and
// gives frames. It holds the frame that is growing and what was read beyond it, in bounded memory.
#pragma once

#include "piece_feeder.h"
#include "sequence_summary.h"
#include "walked_unit.h"

#include <orv-utils-v4/h264_legacy.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orv_h264 {

/// A unit of a frame.
struct frame_unit {
    unit where;
    brenik::h264_nal nal = {};
    std::optional<brenik::h264_slice_type_t> slice_type; ///< of a slice whose header was read
    bool begins_picture = false;                         ///< the first slice of a primary coded picture
    bool field = false;                                  ///< a slice of a field
    std::optional<fraction> rate;                        ///< of a slice: fields a second, where its SPS tells it
    std::optional<std::uint32_t> recovery_frame_cnt;     ///< of a recovery point SEI message
};

frame_unit make_frame_unit(const unit& where, brenik::h264_nal nal, const walked_unit& walked);

struct frame {
    std::uint64_t offset = 0; ///< of the framing of its first unit
    std::uint64_t size = 0;   ///< from there to the end of its last unit
    std::vector<frame_unit> units;
    std::uint32_t field_duration = 0;
    std::optional<double> seconds; ///< how long it is shown, where the SPS of its slices tells the field rate
    bool last = false;             ///< the end of the input ended it
    bool cut = false;              ///< it grew larger than the finder keeps: the rest of it comes as another frame
};

/// What is wrong with a frame that is cut, as text for a person.
std::string describe_cut(const frame& f);

/// How many coded pictures begin in the frame: two in a pair of fields.
std::uint64_t coded_pictures(const frame& f);

/// How many pictures are shown one after another: frames, and pairs of fields or fields alone. At least 1 in a frame
/// with slices; more than 1 where the scan did not tell them apart.
std::uint64_t shown_pictures(const frame& f);

/// Without a slice it is no frame, but what the scan left: parameter sets at the end, or the rest of a cut frame.
bool has_slice(const frame& f);

bool has_idr(const frame& f);

/// The recovery_frame_cnt of its first recovery point SEI message.
std::optional<std::uint32_t> recovery_frame_cnt(const frame& f);

/// An IDR picture, or a recovery point: where decoding can begin.
bool is_key(const frame& f);

class frame_finder {
public:
    /// A frame with more bytes or units than these is cut.
    static constexpr std::size_t most_bytes = std::size_t{64} * 1024 * 1024;
    static constexpr std::size_t most_units = std::size_t{256} * 1024;

    explicit frame_finder(bool split_fields) : flags(split_fields ? h264_common_frame_scan_split_fields : 0U) {}

    /// Takes the next unit of the stream: `bytes` are its `where.length` bytes from the header on.
    void add(const frame_unit& added, std::span<const unsigned char> bytes);

    /// No unit will come any more.
    void finish();

    /// Gives the next frame that is certain. False: more units are needed, or after finish(), there is no more.
    bool next(frame& found);

private:
    struct held_unit {
        std::size_t position; // of its start code in `stream`
        frame_unit what;
    };

    bool is_full() const noexcept;
    bool grow_scratch();
    void take(std::size_t position, frame& found);
    void drop(std::size_t position);
    void compact();
    std::size_t held_units() const noexcept { return units.size() - first_unit; }

    // The units, each behind a start code, as far as the scan reads them: it gets them as Annex B, whatever framing
    // they came in.
    std::vector<unsigned char> stream;
    std::size_t first_byte = 0;
    std::size_t held_bytes = 0; // of the start codes and units held, had they been kept whole
    std::vector<held_unit> units;
    std::size_t first_unit = 0;
    std::vector<unsigned char> scratch;
    h264_sps sps{};
    std::uint32_t flags;
    std::size_t worth_scanning = 1; // bytes: with fewer, the scan would only find again that it needs more
    bool finished = false;
};

} // namespace orv_h264
