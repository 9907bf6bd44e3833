// list_units <FILE   lists the NAL units of an H.264 Annex B stream, and reads slices with the parameter sets that they
// refer to. The stream is read into memory whole, which is fine for an example. Exit status 1: a unit does not parse.
#include <orv-utils-v4/h264.h>

#include <cstdio>
#include <iostream>
#include <iterator>
#include <vector>

using namespace brenik;

static h2645_common_base_store<h264_nal_sps> sps_store; // the parameter sets so far
static h2645_common_base_store<h264_nal_pps> pps_store;

// Prints what the unit holds; false when it does not parse. No parse clears its object: take a new one for each unit.
static bool describe(const h264_nal& nal, h2645_common_bitreader br)
{
    h264_nal_sps sps;
    h264_nal_pps pps;
    h264_nal_slice_header slice;
    switch (nal.nal_unit_type) {
    case h264_nal_unit_type_sps:
        if (sps.parse(br))
            sps_store.insert_or_assign(sps.seq_parameter_set_id, sps);
        std::printf("  %ux%u", sps.getCroppedPicWidth(), sps.getCroppedPicHeight());
        return sps.valid;
    case h264_nal_unit_type_pps:
        if (pps.parse(br, sps_store))
            pps_store.insert_or_assign(pps.pic_parameter_set_id, pps);
        return pps.valid;
    case h264_nal_unit_type_slice_non_idr:
    case h264_nal_unit_type_slice_idr:
        slice.parse(br, sps_store, pps_store, nal);
        std::printf("  %s  frame_num %u", h264_slice_type_t_to_string(slice.getSliceType()), slice.frame_num);
        return slice.valid;
    default:
        return true;
    }
}

int main()
{
    std::vector<unsigned char> stream(std::istreambuf_iterator<char>(std::cin), {});
    std::vector<unsigned char> rbsp(stream.size()); // room for any unit
    unsigned char* const end = stream.data() + stream.size();
    bool sound = true;
    h264_nal_reader reader(nalfmt_annexb);
    for (reader.scan(stream.data(), end); reader.found; reader.scan(reader.next, end)) {
        std::printf("%8td  %s", reader.nal_start - stream.data(), h264_nal_unit_type_to_str(reader.nal.nal_unit_type));
        const std::size_t size = reader.block_decode(rbsp.data(), rbsp.size());
        bool parsed = false;
        try {
            parsed = describe(reader.nal, {rbsp.data(), rbsp.data() + size});
        } catch (const h2645_common_malformed_code&) { // parsed stays false
        }
        std::printf(parsed ? "\n" : "  does not parse\n");
        sound = sound && parsed;
    }
    return sound ? 0 : 1;
}
