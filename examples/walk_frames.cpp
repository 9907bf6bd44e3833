// walk_frames <FILE   cuts an H.264 Annex B stream into frames and lists them: offset, size, what they hold, when they
// are shown. The stream is read into memory whole, which is fine for an example; a scan may also be given piece by
// piece.
#include <orv-utils-v4/h264_legacy.h>

#include <cstdio>
#include <iostream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

static std::string units_of(const h264_common_frame_scan_info& frame)
{
    std::string units;
    for (const auto& [passed, name] :
         {std::pair(frame.has_aud, " AUD"), std::pair(frame.has_sps, " SPS"), std::pair(frame.has_pps, " PPS"),
          std::pair(frame.has_sei, " SEI"), std::pair(frame.has_slice, " slices")})
        if (passed != 0)
            units += name;
    return units;
}

// Seconds for so many fields; 0 when the stream does not tell its rate.
static double seconds(h264_sps& sps, unsigned int fields)
{
    unsigned int num = 0;
    unsigned int den = 1;
    return sps.get_final_field_rate(num, den) != 0 ? static_cast<double>(fields) * den / num : 0;
}

int main()
{
    const std::vector<unsigned char> stream(std::istreambuf_iterator<char>(std::cin), {});
    std::vector<unsigned char> scratch(stream.size()); // room for any unit
    const unsigned char* const end = stream.data() + stream.size();
    const unsigned char* next = stream.data();
    h264_common_frame_scan_info frame;
    h264_sps sps;
    double time = 0;
    do {
        bool sps_updated = false;
        next = h264_common_frame_scan(frame, sps_updated, sps, next, end, 0, scratch.data(), scratch.size(), 0);
        if (sps_updated)
            std::printf("%d x %d\n", sps.get_final_frame_width(), sps.get_final_frame_height());
        if (frame.complete != 0 || frame.need_more_data != 0) { // at the end, what remains is the last frame
            const unsigned char* const frame_end = frame.complete != 0 ? frame.frame_end : end;
            std::printf("%8td  %7td bytes  %8.3f s %s\n", frame.frame_start - stream.data(),
                        frame_end - frame.frame_start, time, units_of(frame).c_str());
        }
        time += seconds(sps, frame.field_duration);
    } while (frame.complete != 0);
}
