// ISO/IEC 14496-15 clause 5.2.4.1: the AVC decoder configuration record.
#include <orv-utils-v4/h264_legacy/decoder_configuration_record.h>

#include <orv-utils-v4/h2645_common/advance_past.h>

using brenik::range_size;

namespace {

/// Behind `count` entries at `p`; null when one does not end before `sf`.
const unsigned char* skip_entries(const unsigned char* p, const unsigned char* sf, unsigned int count)
{
    constexpr unsigned int length_size = 2;
    for (; count > 0; --count) {
        if (range_size(p, sf) < length_size)
            return nullptr;
        const unsigned int length = p[0] * 256U + p[1];
        p += length_size;
        if (range_size(p, sf) < length)
            return nullptr;
        p += length;
    }
    return p;
}

} // namespace

int h264_AVCDecoderConfigurationRecord_parse(h264_AVCDecoderConfigurationRecord* r, const unsigned char* s,
                                             const unsigned char* sf)
{
    constexpr std::size_t fixed_part = 6;
    constexpr int failed = -1;
    if (range_size(s, sf) < fixed_part)
        return failed;
    r->configurationVersion = s[0];
    r->AVCProfileIndication = s[1];
    r->profile_compatibility = s[2];
    r->AVCLevelIndication = s[3];
    r->lengthSizeMinusOne = s[4] & 3;
    r->numOfSequenceParameterSets = s[5] & 31;
    r->sps_list = s + fixed_part;
    if (r->sps_list == sf)
        return failed;
    const unsigned char* const sps_end = skip_entries(r->sps_list, sf, r->numOfSequenceParameterSets);
    if (sps_end == nullptr)
        return failed;
    r->sps_list_end = sps_end;
    if (sps_end == sf)
        return failed;
    r->numOfPictureParameterSets = *sps_end;
    r->pps_list = sps_end + 1;
    if (r->pps_list == sf)
        return failed;
    const unsigned char* const pps_end = skip_entries(r->pps_list, sf, r->numOfPictureParameterSets);
    if (pps_end == nullptr)
        return failed;
    r->pps_list_end = pps_end;
    return 0;
}
