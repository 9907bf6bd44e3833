/// @file
/// The AVC decoder configuration record, ISO/IEC 14496-15 clause 5.3.3.1 (5.2.4.1 in older editions): what a file says
/// of its H.264 track before the first sample, in the box avcC of MP4 and the CodecPrivate of Matroska. The parameter
/// sets in it stay where they are: a record holds views of the caller's bytes.
#pragma once

#include <orv-utils-v4/export.h>
#include <orv-utils-v4/h264_syntax/bounded_list.h>
#include <orv-utils-v4/h264_syntax/element.h>

#include <cstddef>
#include <cstdint>

namespace orv_utils_v4::h264 {

/// A NAL unit in bytes of someone else's, who keeps them as long as the view is used.
struct unit_view {
    const unsigned char* bytes = nullptr; ///< the header byte first, emulation-prevention bytes in
    std::size_t size = 0;

    /// nal_unit_type; 0 of no bytes.
    unsigned type() const noexcept { return size == 0 ? 0 : bytes[0] & 0x1FU; }

    /// The same bytes, wherever they lie.
    friend ORV_UTILS_V4_EXPORT bool operator==(const unit_view&, const unit_view&);
};

/// AVCDecoderConfigurationRecord. The numbers of parameter sets are the sizes of the lists. What the units are is not
/// looked at, an empty one included.
struct AVCDecoderConfigurationRecord {
    static constexpr std::size_t most_sps = 31;             ///< numOfSequenceParameterSets has 5 bits
    static constexpr std::size_t most_pps = 255;            ///< numOfPictureParameterSets has 8
    static constexpr std::size_t most_sps_extensions = 255; ///< numOfSequenceParameterSetExt has 8
    static constexpr std::size_t most_set_bytes = 65535;    ///< of a parameter set

    std::uint8_t configurationVersion = 1; ///< 1
    std::uint8_t AVCProfileIndication = 0; ///< profile_idc
    std::uint8_t profile_compatibility =
        0;                               ///< the byte between profile_idc and level_idc, constraint_set0_flag highest
    std::uint8_t AVCLevelIndication = 0; ///< level_idc
    std::uint8_t lengthSizeMinusOne = 3; ///< of the length prefixes in samples: 0, 1 or 3; 2 is read and written too
    bounded_list<unit_view, most_sps> sequenceParameterSetNALUnit;
    bounded_list<unit_view, most_pps> pictureParameterSetNALUnit;
    /// What follows is there, down to numOfSequenceParameterSetExt. It may be where extension_belongs(); many files
    /// lack it there.
    bool extension_present = false;
    std::uint8_t chroma_format = 1;           ///< chroma_format_idc, 0 to 3
    std::uint8_t bit_depth_luma_minus8 = 0;   ///< 0 to 7
    std::uint8_t bit_depth_chroma_minus8 = 0; ///< 0 to 7
    bounded_list<unit_view, most_sps_extensions> sequenceParameterSetExtNALUnit;
    /// The bytes behind the record, which are not written.
    unit_view behind;

    /// The profile has an extension: all but Baseline (66), Main (77) and Extended (88). Older editions name 100, 110,
    /// 122 and 144 alone.
    bool extension_belongs() const noexcept
    {
        return AVCProfileIndication != 66 && AVCProfileIndication != 77 && AVCProfileIndication != 88;
    }

    friend ORV_UTILS_V4_EXPORT bool operator==(const AVCDecoderConfigurationRecord&,
                                               const AVCDecoderConfigurationRecord&);
};

/// Why a record is read, written or made no further.
enum class configuration_reason : std::uint8_t {
    none,
    record_ends,           ///< reading: the element reaches past the end
    unknown_version,       ///< configurationVersion is not 1: such a record shall not be read, nor what it belongs to
    value_too_large,       ///< writing: more than the element's bits hold
    set_too_long,          ///< writing: a parameter set of more than most_set_bytes
    misplaced_extension,   ///< writing: extension_present in a profile that has none
    no_room,               ///< writing: the output ends
    wrong_length_size,     ///< making: length prefixes are 1, 2 or 4 bytes long
    no_sps,                ///< making: there is no SPS to take the profile from
    unreadable_set,        ///< making: a parameter set cannot be read
    too_many_sps,          ///< making: more than most_sps
    too_many_pps,          ///< making: more than most_pps
    profiles_differ,       ///< making: the SPSs have several profile_idc
    chroma_formats_differ, ///< making: several chroma_format_idc
    bit_depths_differ,     ///< making: several bit depths
    colours_differ,        ///< making: several colour descriptions in the VUI
    no_memory,             ///< making: an allocation failed
};

/// The reason in English, as it follows the element's name.
ORV_UTILS_V4_EXPORT const char* text_of(configuration_reason why) noexcept;

/// How it went.
struct configuration_outcome {
    configuration_reason why = configuration_reason::none;
    label element = ""; ///< that fails, under its name in the standard, with its index in the list
    /// Reading: the offset behind what was read, which of a failure is that of the element. Writing: how many bytes the
    /// record takes, those beyond the room included; of another failure than no_room the offset of the element. Making:
    /// nothing.
    std::size_t bytes = 0;
    /// Reading: of a record that ends in a list of units, how many the list shall have.
    std::size_t units = 0;

    /// Nothing failed.
    bool sound() const noexcept { return why == configuration_reason::none; }
};

/// Reads a record. Reserved bits are passed over.
/// @param to what was read, up to a failure; the rest is as in a new one. Its views point into `bytes`
/// @param bytes the record without the header of a box
/// @param size how many
/// @return how it went: none, record_ends or unknown_version
ORV_UTILS_V4_EXPORT configuration_outcome read(AVCDecoderConfigurationRecord& to, const unsigned char* bytes,
                                               std::size_t size) noexcept;

/// Writes a record, reserved bits set. Nothing is written past the room.
/// @param record as it shall be; of the extension what it says where extension_present
/// @param out where it goes; may be null where `room` is 0
/// @param room its bytes
/// @return how it went; with no_room, `bytes` is what is needed. The room holds the first bytes of the record then
ORV_UTILS_V4_EXPORT configuration_outcome write(const AVCDecoderConfigurationRecord& record, unsigned char* out,
                                                std::size_t room) noexcept;

} // namespace orv_utils_v4::h264
