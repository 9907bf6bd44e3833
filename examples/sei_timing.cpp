// sei_timing <FILE   prints the picture timing SEI messages of an H.264 Annex B stream: delays, picture structure and
// clock timestamps. The stream is read into memory whole, which is fine for an example.
#include <orv-utils-v4/h264.h>

#include <cstdio>
#include <iostream>
#include <iterator>
#include <vector>

using namespace brenik;

// The library reads both delays with the length of the initial delay, where H.264 D.1.3 has a length for each. So they
// are read here, and parse() goes on behind them with an SPS that announces none.
static void print_timing(h2645_common_bitreader br, h264_nal_sps sps)
{
    h264_vui_parameters& vui = sps.vui;
    if (vui.nal_hrd_parameters_present_flag || vui.vcl_hrd_parameters_present_flag) {
        const h264_hrd_parameters& hrd = vui.nal_hrd_parameters_present_flag ? vui.nal_hrd : vui.vcl_hrd;
        const auto cpb_length = static_cast<unsigned char>(hrd.cpb_removal_delay_length_minus1 + 1);
        const auto dpb_length = static_cast<unsigned char>(hrd.dpb_output_delay_length_minus1 + 1);
        std::printf("cpb_removal_delay %u  ", br.get_wide(cpb_length));
        std::printf("dpb_output_delay %u  ", br.get_wide(dpb_length));
    } else {
        vui.nal_hrd.time_offset_length = 24; // inferred, H.264 E.2.2
    }
    vui.nal_hrd_parameters_present_flag = vui.vcl_hrd_parameters_present_flag = false;
    h264_nal_sei_pic_timing timing;
    timing.parse(br, sps);
    std::printf("%s", vui.pic_struct_present_flag ? timing.pic_struct_to_str() : "");
    for (const auto& t : timing.timestamps)
        if (t.clock_timestamp_flag)
            std::printf("  %02d:%02d:%02d:%02d", t.hours_value, t.minutes_value, t.seconds_value, t.n_frames);
    std::printf("\n");
}

int main()
{
    std::vector<unsigned char> stream(std::istreambuf_iterator<char>(std::cin), {});
    std::vector<unsigned char> rbsp(stream.size()); // room for any unit
    unsigned char* const end = stream.data() + stream.size();
    h264_nal_sps sps;
    h264_nal_reader reader(nalfmt_annexb);
    for (reader.scan(stream.data(), end); reader.found; reader.scan(reader.next, end)) {
        unsigned char* const fence = rbsp.data() + reader.block_decode(rbsp.data(), rbsp.size());
        if (reader.nal.nal_unit_type == h264_nal_unit_type_sps) {
            h2645_common_bitreader br(rbsp.data(), fence);
            sps = {};
            try {
                sps.parse(br);
            } catch (const h2645_common_malformed_code&) { // sps.valid stays false
            }
        } else if (reader.nal.nal_unit_type == h264_nal_unit_type_sei) {
            h264_nal_sei_reader sei(rbsp.data(), fence);
            while (sei.next_message()) // the SPS that came last is the active one: fine for a stream with one
                if (sei.payloadType == h264_nal_sei_payload_type_pic_timing && sps.valid)
                    print_timing({sei.payload, sei.payload_fence}, sps);
        }
    }
}
