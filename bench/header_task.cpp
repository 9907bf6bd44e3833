// T4: the header of every slice, and the parameter sets before it, of units whose places are known.
#include "task.h"

#include <orv-utils-v4/h264.h>

namespace bench {

namespace {

using namespace brenik;

/// Of a slice no more is decoded than its header may take.
struct header_parser {
    h2645_common_base_store<h264_nal_sps> sps_store;
    h2645_common_base_store<h264_nal_pps> pps_store;
    std::uint64_t sound = 0;

    void parse(h264_nal_reader& reader)
    {
        unsigned char head[96];
        const std::size_t size = reader.block_decode(head, sizeof head);
        h2645_common_bitreader br(head, head + size);
        switch (reader.nal.nal_unit_type) {
        case h264_nal_unit_type_sps: {
            h264_nal_sps sps;
            sound += sps.parse(br) ? 1U : 0U;
            sps_store.insert_or_assign(sps.seq_parameter_set_id, sps);
            break;
        }
        case h264_nal_unit_type_pps: {
            h264_nal_pps pps;
            sound += pps.parse(br, sps_store) ? 1U : 0U;
            pps_store.insert_or_assign(pps.pic_parameter_set_id, pps);
            break;
        }
        case h264_nal_unit_type_slice_non_idr:
        case h264_nal_unit_type_slice_idr: {
            h264_nal_slice_header slice;
            slice.parse(br, sps_store, pps_store, reader.nal);
            sound += slice.valid ? 1U : 0U;
            break;
        }
        default:
            break;
        }
    }
};

std::uint64_t headers_by_reader(data_set& set)
{
    unsigned char* const end = set.length4.data() + set.length4_size;
    header_parser parser;
    h264_nal_reader reader(nalfmt_length4);
    for (reader.scan(set.length4.data(), end); reader.found; reader.scan(reader.next, end))
        parser.parse(reader);
    return parser.sound;
}

} // namespace

std::vector<task> header_tasks()
{
    return {{"T4 headers",
             [](const data_set& set) { return set.units.size(); },
             {"large", "8k", "70"},
             std::vector<contender>{{side::ours, "reader", headers_by_reader}} + peers::headers()}};
}

} // namespace bench
