// The AVC decoder configuration record once more, on indices, a byte at a time. It shares no code with the libraries;
// the tests and the fuzz entry point hold the real parse against it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace literal {

/// The record; places are indices into the bytes parsed.
struct decoder_configuration_record {
    unsigned int configurationVersion;
    unsigned int AVCProfileIndication;
    unsigned int profile_compatibility;
    unsigned int AVCLevelIndication;
    unsigned int lengthSizeMinusOne;
    unsigned int numOfSequenceParameterSets;
    std::size_t sps_list;
    std::size_t sps_list_end;
    unsigned int numOfPictureParameterSets;
    std::size_t pps_list;
    std::size_t pps_list_end;

    bool parse(const std::vector<unsigned char>& bytes)
    {
        const std::size_t size = bytes.size();
        if (size < 6)
            return false;
        configurationVersion = bytes[0];
        AVCProfileIndication = bytes[1];
        profile_compatibility = bytes[2];
        AVCLevelIndication = bytes[3];
        lengthSizeMinusOne = bytes[4] % 4;
        numOfSequenceParameterSets = bytes[5] % 32;
        sps_list = 6;
        if (size == 6)
            return false;
        std::size_t at = 6;
        if (!walk(bytes, at, numOfSequenceParameterSets))
            return false;
        sps_list_end = at;
        if (at >= size)
            return false;
        numOfPictureParameterSets = bytes[at];
        pps_list = at + 1;
        if (pps_list >= size)
            return false;
        at = pps_list;
        if (numOfPictureParameterSets != 0 && !walk(bytes, at, numOfPictureParameterSets))
            return false;
        pps_list_end = at;
        return true;
    }

private:
    /// Moves `at` behind `count` entries, if all of them are there.
    static bool walk(const std::vector<unsigned char>& bytes, std::size_t& at, unsigned int count)
    {
        for (unsigned int i = 0; i < count; ++i) {
            if (at + 2 > bytes.size())
                return false;
            const std::size_t end = at + 2 + bytes[at] * std::size_t{256} + bytes[at + 1];
            if (end > bytes.size())
                return false;
            at = end;
        }
        return true;
    }
};

} // namespace literal
