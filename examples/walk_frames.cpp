// walk_frames <FILE   cuts an H.264 Annex B stream into frames and lists them: offset, size, what they hold, when they
// are shown. To the scan the end of its input ends a unit: a stream that is read in pieces, as here, goes to it in
// whole units, up to the last start code. Pictures of one frame_num with nothing but slices between them are one frame,
// with the time of one. Who plays them adds two fields for each further frame or pair of fields (first_mb_in_slice is
// 0).
#include <orv-utils-v4/h264_legacy.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

static void print(const h264_common_frame_scan_info& frame, std::ptrdiff_t offset, std::ptrdiff_t size, double time)
{
    std::printf("%8td  %7td bytes  %8.3f s ", offset, size, time);
    for (const auto& [passed, name] :
         {std::pair(frame.has_aud, " AUD"), std::pair(frame.has_sps, " SPS"), std::pair(frame.has_pps, " PPS"),
          std::pair(frame.has_sei, " SEI"), std::pair(frame.has_slice, " slices")})
        std::printf("%s", passed != 0 ? name : "");
    std::printf("\n");
}

int main()
{
    std::string stream;        // what is read and belongs to no frame yet
    std::ptrdiff_t offset = 0; // of that in the file
    double time = 0;
    h264_sps sps;
    for (bool more = true; more;) {
        const std::size_t size = stream.size();
        stream.resize(2 * size + 65536); // twice as much each time, so that a large frame is not scanned often
        stream.resize(size + std::fread(&stream[size], 1, stream.size() - size, stdin));
        more = stream.size() > size;
        std::vector<unsigned char> scratch(stream.size()); // room for any unit
        const std::size_t last_start_code = stream.rfind("\0\0\1", std::string::npos, 3);
        const auto* const start = reinterpret_cast<const unsigned char*>(stream.data());
        const auto* const end = start + (more ? std::min(last_start_code, stream.size()) : stream.size());
        const unsigned char* next = start;
        h264_common_frame_scan_info frame;
        do {
            h264_sps seen = sps; // a frame that needs more data is scanned again, with the SPS from before it
            bool updated = false;
            next = h264_common_frame_scan(frame, updated, seen, next, end, 0, scratch.data(), scratch.size(), 0);
            if (frame.complete == 0 && (more || frame.need_more_data == 0))
                break;
            sps = seen;
            if (updated)
                std::printf("%d x %d\n", sps.get_final_frame_width(), sps.get_final_frame_height());
            const auto* const frame_end = frame.complete != 0 ? next : end; // at the end, what remains is a frame
            print(frame, offset + (frame.frame_start - start), frame_end - frame.frame_start, time);
            unsigned int num = 0;
            unsigned int den = 1;
            if (sps.get_final_field_rate(num, den) != 0)
                time += static_cast<double>(frame.field_duration) * den / num;
        } while (frame.complete != 0);
        offset += next - start;
        stream.erase(0, static_cast<std::size_t>(next - start));
    }
}
