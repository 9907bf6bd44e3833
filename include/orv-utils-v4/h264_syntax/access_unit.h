/// @file
/// Access units: NAL units in decoding order, put together by H.264 clauses 7.4.1.2.3 and 7.4.1.2.4.
#pragma once

#include <orv-utils-v4/h264_syntax/stream.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace orv_utils_v4::h264 {

/// What a unit is in its access unit (clause 7.4.1.2.3).
enum class unit_role : std::uint8_t {
    delimiter,     ///< access unit delimiter, type 9
    parameter_set, ///< types 7, 8, 13, 15 and 16
    sei,           ///< type 6
    prefix,        ///< type 14: tells the layer or view of the slice behind it
    primary,       ///< slice or partition of the primary coded picture
    redundant,     ///< of a redundant coded picture
    auxiliary,     ///< of an auxiliary coded picture, type 19
    layer,         ///< of another layer or view, types 20 and 21
    end,           ///< end of sequence or stream, types 10 and 11
    other,         ///< filler data and types without a meaning
};

/// A unit of an access unit.
struct access_unit_part {
    unit_place place; ///< its bytes are valid as long as the access unit
    unit_role role = unit_role::other;
    nal_unit_header header;
    h264::failure failure;                       ///< of its reading
    h264::ending ending = h264::ending::unknown; ///< what it ends with
    std::size_t finding_count = 0;               ///< values outside of their ranges
    finding first_finding;                       ///< of these, where there are any
    /// What it holds. Null of slices but the first one of each role, dependency and view, and where a limit is reached.
    const nal_unit* content = nullptr;
    /// Of a slice whose header tells them, as in slice_header.
    std::uint32_t first_mb_in_slice = 0;
    std::uint32_t slice_type = 0;
    std::uint32_t pic_parameter_set_id = 0;
    std::uint32_t redundant_pic_cnt = 0;
    std::uint64_t data_bit = 0; ///< of a slice: where its data begin, as outcome::bits
    /// A slice of the base layer or view with a prefix unit before it: `header` has the extension of that.
    bool prefixed = false;
};

/// The layer or view that a slice belongs to (clauses G.7.4.1.1, H.7.4.1.1 and J.7.4.1.1). A slice of which nothing
/// tells it belongs to the base.
struct slice_layer {
    std::uint8_t dependency_id = 0; ///< scalable streams
    std::uint8_t quality_id = 0;    ///< likewise
    std::uint8_t temporal_id = 0;
    std::uint8_t priority_id = 0;
    std::uint16_t view_id = 0;    ///< multiview streams; in 3D-AVC view_idx
    bool depth = false;           ///< 3D-AVC: a depth view
    bool anchor_pic_flag = false; ///< multiview streams: predicted from pictures of its own access unit alone
    bool inter_view_flag = false; ///< multiview streams: other views may be predicted from it
};

/// The layer of a slice.
ORV_UTILS_V4_EXPORT slice_layer layer_of(const access_unit_part& slice) noexcept;

/// How a picture is coded (clauses 7.4.2.1.1 and 7.4.3).
enum class picture_structure : std::uint8_t {
    frame,       ///< a frame whose macroblocks are all frame macroblocks
    mbaff_frame, ///< MbaffFrameFlag is 1
    top_field,
    bottom_field,
};

/// What an access unit or a picture lacks. Nothing is left out because of it.
enum class picture_finding : std::uint8_t {
    no_parameter_sets,    ///< a slice names a parameter set that is not there
    slice_damaged,        ///< a slice header that fails elsewhere
    first_slice_missing,  ///< no primary slice begins with macroblock 0
    unit_out_of_place,    ///< a unit that belongs before the primary coded picture stands between its slices
    no_primary_picture,   ///< slices, but none of a primary coded picture
    frame_num_gap,        ///< pictures are missing, and the SPS does not allow that (clause 7.4.3)
    second_field_missing, ///< a field alone
    too_many_frames,      ///< more reference frames than max_num_ref_frames
    no_such_reference,    ///< a marking operation names a picture that is not there (clause 8.2.5.4)
    count_out_of_range,   ///< a picture order count below -2^31 or above 2^31 - 1 (clause 8.2.1)
    limit_reached,        ///< a limit of the reader; see access_units
};

/// The finding in English, as a clause of its own.
ORV_UTILS_V4_EXPORT const char* text_of(picture_finding what) noexcept;

/// Findings, each once.
class picture_findings {
public:
    /// How many kinds there are.
    static constexpr unsigned kinds = static_cast<unsigned>(picture_finding::limit_reached) + 1;

    /// It is among them.
    bool has(picture_finding what) const noexcept { return (bits >> static_cast<unsigned>(what) & 1) != 0; }
    /// It is among them from now on.
    void add(picture_finding what) noexcept { bits |= std::uint32_t{1} << static_cast<unsigned>(what); }
    /// All of the others too.
    void add(picture_findings others) noexcept { bits |= others.bits; }
    /// There is none.
    bool empty() const noexcept { return bits == 0; }

private:
    std::uint32_t bits = 0;
};

/// An access unit. What it points to is valid during the call that it is given in.
struct access_unit {
    std::uint64_t number = 0; ///< from 0, in decoding order
    std::vector<access_unit_part> parts;

    /// The first slice of the primary coded picture; null where there is none, and then all below say nothing.
    const slice_header* header = nullptr;
    bool whole = false; ///< that header was read without failure: counts and marking can be told from it
    const seq_parameter_set_data* sps = nullptr; ///< active for it, or null
    const pic_parameter_set_rbsp* pps = nullptr; ///< of its first slice, or null
    picture_structure structure = picture_structure::frame;
    std::uint8_t nal_ref_idc = 0; ///< not 0: it is a reference picture
    bool idr = false;             ///< IdrPicFlag
    std::uint8_t slice_kinds = 0; ///< of its primary slices whose headers were read: bit 1 << slice_kind

    picture_findings findings;

    /// It is a field.
    bool field() const noexcept { return structure >= picture_structure::top_field; }
    /// Its slices are of this kind, and perhaps of others.
    bool has_slices(slice_kind kind) const noexcept { return (slice_kinds >> static_cast<unsigned>(kind) & 1) != 0; }
    /// The first SEI message of this kind that has bytes, or null.
    template <class Payload>
    const Payload* message() const noexcept
    {
        for (const access_unit_part& part : parts) {
            const bool has_messages = part.role == unit_role::sei && part.content != nullptr;
            const sei_rbsp* const sei = has_messages ? std::get_if<sei_rbsp>(&part.content->rbsp) : nullptr;
            for (std::size_t i = 0; sei != nullptr && i < sei->sei_messages.size(); ++i) {
                const sei_message& message = sei->sei_messages[i];
                if (const auto* const payload = std::get_if<Payload>(&message.payload);
                    payload != nullptr && message.payload_size != 0)
                    return payload;
            }
        }
        return nullptr;
    }
    /// The stop of a coded video sequence: an end of sequence or of stream is among its units.
    bool ends_sequence() const noexcept { return !parts.empty() && parts.back().role == unit_role::end; }
};

/// Who takes the access units. What it throws goes through access_units, which may be pushed no further then.
class access_unit_sink {
public:
    virtual ~access_unit_sink() = default;
    /// The next access unit, complete.
    virtual void take(const access_unit& unit) = 0;

protected:
    /// For derived classes.
    access_unit_sink() = default;
    /// For derived classes.
    access_unit_sink(const access_unit_sink&) = default;
    /// For derived classes.
    access_unit_sink& operator=(const access_unit_sink&) = default;
};

/// Puts the units of a stream together to access units. One is handed on when it is known to be complete: with the
/// first slice of the next primary coded picture, a delimiter, an end of stream, the unit behind an end of sequence, or
/// a flush.
class ORV_UTILS_V4_EXPORT access_units {
public:
    /// The most units of an access unit; with the next one it is handed on, and another one begins.
    static constexpr std::size_t most_units = 65536;
    /// The most bytes of its units that are kept; likewise.
    static constexpr std::size_t most_bytes = std::size_t{256} << 20;
    /// The most units of one whose contents are kept.
    static constexpr std::size_t most_contents = 64;

    /// Without parameter sets.
    /// @param base_alone types 14, 15, 20 and 21 are left out: the base layer or view is told alone
    explicit access_units(bool base_alone = false);
    ~access_units();
    /// What it has kept goes on in the new one.
    access_units(access_units&&) noexcept;
    /// Likewise.
    access_units& operator=(access_units&&) noexcept;

    /// The next unit in decoding order.
    /// @param unit it
    /// @param to who takes the access units
    /// @param bytes_stay its bytes stay where they are until its access unit has been handed on, as those of a file in
    ///     memory do, or nobody looks at them then: they are not copied
    void push(const unit_place& unit, access_unit_sink& to, bool bytes_stay = false);
    /// The stream has ended, or what follows does not belong to it.
    void flush(access_unit_sink& to);

    /// The parameter sets as they stand: those of units that were pushed may be among them already.
    const parameter_sets& sets() const noexcept;

private:
    struct state;
    std::unique_ptr<state> s;
};

} // namespace orv_utils_v4::h264
