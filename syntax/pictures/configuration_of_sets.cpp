// The decoder configuration record that goes with parameter sets: ISO/IEC 14496-15 clause 5.3.3.1.1.
#include <orv-utils-v4/h264_syntax/parameter_set_store.h>

#include "pictures/set_reading.h"
#include "unit_bytes.h"

#include <vector>

namespace orv_utils_v4::h264 {

namespace {

using why = configuration_reason;

/// Where a level stands among the others. Level 1b, above level 1, is 9, or in the profiles that have no 9, 11 with
/// constraint_set3_flag (Table A-1).
unsigned rank_of_level(const seq_parameter_set_data& sps) noexcept
{
    constexpr unsigned rank_of_1b = 21;
    const bool old_profile = sps.profile_idc == 66 || sps.profile_idc == 77 || sps.profile_idc == 88;
    if (old_profile ? sps.level_idc == 11 && sps.constraint_set3_flag : sps.level_idc == 9)
        return rank_of_1b;
    return 2U * sps.level_idc;
}

/// Whether the colours are the same, which needs no colour description where both have none.
bool same_colours(const vui_parameters& a, const vui_parameters& b) noexcept
{
    return a.colour_primaries == b.colour_primaries && a.transfer_characteristics == b.transfer_characteristics &&
           a.matrix_coefficients == b.matrix_coefficients;
}

/// Adds parameter sets to a record. The first failure stays.
class record_maker {
public:
    explicit record_maker(AVCDecoderConfigurationRecord& to) noexcept : record(to) {}

    void expect(bool holds, why reason, label element) noexcept
    {
        if (result.sound() && !holds) {
            result.why = reason;
            result.element = element;
        }
    }
    void add_sps(const unit_view& unit)
    {
        const std::size_t i = record.sequenceParameterSetNALUnit.size();
        const label element = {"sequenceParameterSetNALUnit", i};
        const seq_parameter_set_data* const sps = read_sps(unit);
        expect(sps != nullptr, why::unreadable_set, element);
        expect(i < AVCDecoderConfigurationRecord::most_sps, why::too_many_sps, "numOfSequenceParameterSets");
        if (!result.sound())
            return;
        expect(sps->chroma_format_idc <= 3 && sps->bit_depth_luma_minus8 <= 7 && sps->bit_depth_chroma_minus8 <= 7,
               why::unreadable_set, element);
        i == 0 ? begin_with(*sps, unit) : go_on_with(*sps, unit, element);
        if (sps->seq_parameter_set_id < parameter_sets::sps_ids)
            there[sps->seq_parameter_set_id] = true;
        record.sequenceParameterSetNALUnit.grow();
        record.sequenceParameterSetNALUnit.back() = unit;
    }
    void add_pps(const unit_view& unit) noexcept
    {
        outcome ignored;
        read_start(read, unit, ignored);
        const std::uint32_t sps_id = ids_of(read).sps_id;
        if (sps_id >= parameter_sets::sps_ids || !there[sps_id])
            return;
        expect(record.pictureParameterSetNALUnit.size() < AVCDecoderConfigurationRecord::most_pps, why::too_many_pps,
               "numOfPictureParameterSets");
        record.pictureParameterSetNALUnit.grow();
        record.pictureParameterSetNALUnit.back() = unit;
    }
    void add_sps_extension(const unit_view& unit) noexcept
    {
        if (!record.extension_present)
            return;
        record.sequenceParameterSetExtNALUnit.grow();
        record.sequenceParameterSetExtNALUnit.back() = unit;
    }

    configuration_outcome result;

private:
    const seq_parameter_set_data* read_sps(const unit_view& unit)
    {
        room.resize(unit.size);
        const clean_bytes bytes = unescaped(unit.bytes, unit.size, unit.size, room.data());
        outcome how;
        h264::read(read, bytes.data, bytes.size, {}, how);
        return how.failure ? nullptr : sps_data_of(read);
    }
    void begin_with(const seq_parameter_set_data& sps, const unit_view& unit) noexcept
    {
        record.AVCProfileIndication = sps.profile_idc;
        record.profile_compatibility = unit.bytes[2];
        record.AVCLevelIndication = sps.level_idc;
        record.extension_present = record.extension_belongs();
        record.chroma_format = static_cast<std::uint8_t>(sps.chroma_format_idc);
        record.bit_depth_luma_minus8 = static_cast<std::uint8_t>(sps.bit_depth_luma_minus8);
        record.bit_depth_chroma_minus8 = static_cast<std::uint8_t>(sps.bit_depth_chroma_minus8);
        colours = sps.vui_parameters;
        level = rank_of_level(sps);
    }
    void go_on_with(const seq_parameter_set_data& sps, const unit_view& unit, label element) noexcept
    {
        expect(sps.profile_idc == record.AVCProfileIndication, why::profiles_differ, element);
        expect(sps.chroma_format_idc == record.chroma_format, why::chroma_formats_differ, element);
        expect(sps.bit_depth_luma_minus8 == record.bit_depth_luma_minus8 &&
                   sps.bit_depth_chroma_minus8 == record.bit_depth_chroma_minus8,
               why::bit_depths_differ, element);
        expect(same_colours(colours, sps.vui_parameters), why::colours_differ, element);
        record.profile_compatibility = record.profile_compatibility & unit.bytes[2];
        if (rank_of_level(sps) > level) {
            level = rank_of_level(sps);
            record.AVCLevelIndication = sps.level_idc;
        }
    }

    AVCDecoderConfigurationRecord& record;
    nal_unit read;
    std::vector<unsigned char> room;
    vui_parameters colours;
    unsigned level = 0;
    bool there[parameter_sets::sps_ids] = {}; // SPSs, by id
};

configuration_outcome make(AVCDecoderConfigurationRecord& to, const parameter_set_list& sets, unsigned length_size)
{
    record_maker maker(to);
    maker.expect(length_size == 1 || length_size == 2 || length_size == 4, why::wrong_length_size,
                 "lengthSizeMinusOne");
    to.lengthSizeMinusOne = static_cast<std::uint8_t>(length_size - 1);
    for (const unit_view& set : sets) {
        if (set.type() == sps_type)
            maker.add_sps(set);
    }
    maker.expect(!to.sequenceParameterSetNALUnit.empty(), why::no_sps, "sequenceParameterSetNALUnit");
    for (const unit_view& set : sets) {
        if (set.type() == pps_type)
            maker.add_pps(set);
        else if (set.type() == sps_extension_type)
            maker.add_sps_extension(set);
    }
    return maker.result;
}

} // namespace

configuration_outcome make_configuration(AVCDecoderConfigurationRecord& to, const parameter_set_list& sets,
                                         unsigned length_size) noexcept
{
    to = AVCDecoderConfigurationRecord();
    configuration_outcome result;
    try {
        result = make(to, sets, length_size);
    } catch (...) {
        result.why = why::no_memory;
        result.element = "sequenceParameterSetNALUnit";
    }
    if (!result.sound())
        to = AVCDecoderConfigurationRecord();
    return result;
}

} // namespace orv_utils_v4::h264
