// A real parse of an AVC decoder configuration record beside the literal one, both into records whose members hold
// other values before: every member is compared.
#pragma once

#include "support/literal_decoder_configuration_record.h"
#include "support/literal_walk.h"

#include <orv-utils-v4/h2645_common/advance_past.h>
#include <orv-utils-v4/h264_legacy/decoder_configuration_record.h>

#include <cstddef>
#include <string>
#include <vector>

namespace support {

/// What no parse leaves in a member of a record of fewer than 1000 bytes: a place far behind.
constexpr std::size_t unset_place = 1000;

/// The record that both parses begin with. Its pointers point `unset_place` bytes behind `base`.
inline h264_AVCDecoderConfigurationRecord unset_record(const unsigned char* base)
{
    const unsigned char* const place = brenik::advance_past(base, unset_place);
    return {0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, place, place, 0xA5, place, place};
}

/// Both parses of the `size` bytes at `start`, fewer than 1000: what differed, "" when nothing did.
inline std::string difference_of_records(const unsigned char* start, std::size_t size)
{
    h264_AVCDecoderConfigurationRecord real = unset_record(start);
    literal::decoder_configuration_record model{0xA5,        0xA5,        0xA5, 0xA5,        0xA5,       0xA5,
                                                unset_place, unset_place, 0xA5, unset_place, unset_place};
    const int result = h264_AVCDecoderConfigurationRecord_parse(&real, start, start + size);
    member_difference members(start);
    members.value("the result", model.parse(std::vector<unsigned char>(start, start + size)) ? 0 : -1, result);
    members.value("configurationVersion", model.configurationVersion, real.configurationVersion);
    members.value("AVCProfileIndication", model.AVCProfileIndication, real.AVCProfileIndication);
    members.value("profile_compatibility", model.profile_compatibility, real.profile_compatibility);
    members.value("AVCLevelIndication", model.AVCLevelIndication, real.AVCLevelIndication);
    members.value("lengthSizeMinusOne", model.lengthSizeMinusOne, real.lengthSizeMinusOne);
    members.value("numOfSequenceParameterSets", model.numOfSequenceParameterSets, real.numOfSequenceParameterSets);
    members.pointer("sps_list", model.sps_list, real.sps_list);
    members.pointer("sps_list_end", model.sps_list_end, real.sps_list_end);
    members.value("numOfPictureParameterSets", model.numOfPictureParameterSets, real.numOfPictureParameterSets);
    members.pointer("pps_list", model.pps_list, real.pps_list);
    members.pointer("pps_list_end", model.pps_list_end, real.pps_list_end);
    return members.text();
}

} // namespace support
