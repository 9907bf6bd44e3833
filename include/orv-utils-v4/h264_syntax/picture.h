/// @file
/// A picture with its place, order and time, as the classes of pictures.h tell it.
#pragma once

#include <orv-utils-v4/h264_syntax/access_unit.h>
#include <orv-utils-v4/h264_syntax/picture_order_count.h>
#include <orv-utils-v4/h264_syntax/picture_time.h>
#include <orv-utils-v4/h264_syntax/unit_splitter.h>

#include <cstdint>

namespace orv_utils_v4::h264 {

/// A decoded frame: of one access unit, or of two that are its fields; or a field whose other field is missing.
struct picture {
    static constexpr unsigned most_clocks = 3; ///< NumClockTS, Table D-1

    std::uint64_t number = 0;        ///< from 0, in decoding order
    std::uint64_t output_number = 0; ///< from 0, in output order; told with its output
    std::uint64_t access_unit = 0;   ///< its number; of two fields, the first one's
    std::uint64_t offset = 0; ///< where the first unit of its access unit begins in the stream, behind its framing
    std::uint64_t end = 0;    ///< behind the last unit
    picture_structure structure = picture_structure::frame; ///< of two fields, the first one's
    bool both_fields = false;                               ///< it is put together from two fields
    std::uint8_t nal_ref_idc = 0;  ///< the higher one of two fields; not 0: it is used for reference
    std::uint8_t slice_kinds = 0;  ///< as in access_unit
    bool idr = false;              ///< an IDR picture, or its first field is one
    bool recovery_point = false;   ///< it has a recovery point message: decoding may begin there (clause D.2.8)
    bool discarded = false;        ///< no_output_of_prior_pics_flag of the next IDR picture: not output by a decoder
    std::uint64_t sequence = 0;    ///< pictures with a lower one are output before it
    bool has_count = false;        ///< `count` is known: its header was read, and its SPS is there
    picture_order_count count;     ///< within its sequence; a lower one is output before it
    std::uint8_t fields_shown = 2; ///< how long it is shown, in fields: 1 to 6 (Table D-1, DeltaTfiDivisor)
    picture_times times;
    unsigned clock_count = 0;        ///< timestamps of clocks that it has
    time_of_day clocks[most_clocks]; ///< of its frame, or its fields one after the other
    picture_findings findings;

    /// A field alone.
    bool lone_field() const noexcept { return structure >= picture_structure::top_field && !both_fields; }
};

/// How long the picture of an access unit is shown, in fields: 1 to 6 (Table D-1, Table E-6); by pic_struct, or else 2
/// of a frame and 1 of a field.
ORV_UTILS_V4_EXPORT std::uint8_t fields_shown(const access_unit& unit) noexcept;

/// When a field of a picture is shown: as many field durations behind its presentation as fields are shown before it
/// (Table D-1 tells their order, Table E-6 how many there are). By its own message a second field may be told
/// otherwise: pictures::latest_times().
/// @param picture it, with the presentation that its output tells
/// @param field from 0; a field that is repeated counts again
/// @return unknown from `fields_shown` on, and where presentation or duration is
ORV_UTILS_V4_EXPORT exact_time field_presentation(const picture& picture, unsigned field) noexcept;

/// Who takes the pictures. What it throws goes through the class that calls it, which may be pushed no further then.
class picture_sink {
public:
    virtual ~picture_sink() = default;
    /// The next access unit in decoding order, with the picture that it belongs to as far as that is known; null for an
    /// access unit without a primary coded picture.
    virtual void access_unit_came(const access_unit& unit, const picture* of)
    {
        static_cast<void>(unit);
        static_cast<void>(of);
    }
    /// The next picture in decoding order; all of it is known but what comes with its output.
    virtual void decoded(const picture& picture) { static_cast<void>(picture); }
    /// The next picture in output order.
    virtual void output(const picture& picture) { static_cast<void>(picture); }
    /// Bytes of the stream that belong to no unit.
    virtual void gap(const split_gap& gap) { static_cast<void>(gap); }

protected:
    /// For derived classes.
    picture_sink() = default;
    /// For derived classes.
    picture_sink(const picture_sink&) = default;
    /// For derived classes.
    picture_sink& operator=(const picture_sink&) = default;
};

} // namespace orv_utils_v4::h264
