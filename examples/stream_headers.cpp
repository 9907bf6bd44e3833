// stream_headers <FILE   prints what a person asks of an H.264 Annex B stream: size, rate, profile and codec string of
// each SPS, number and order of each slice, and the picture timing, read as the standard has it.
#include <orv-utils-v4/h264_syntax.h>

#include <cstdio>
#include <iostream>
#include <vector>

using namespace orv_utils_v4::h264;

static constexpr char kinds[] = "PBIPI"; // SP as P, SI as I

class printer : public split_sink, public unit_sink {
public:
    void unit(const split_unit& u) override { units.push({u.bytes, u.size, u.offset, 0}, *this); }
    void gap(const split_gap& g) override { std::printf("%llu: no unit\n", static_cast<unsigned long long>(g.offset)); }
    void end() { units.flush(*this); }

    void take(const unit_reading& reading) override
    {
        if (reading.result.failure)
            std::printf("%s: %s\n", reading.result.failure.element.name(), text_of(reading.result.failure.why));
        else if (const auto* const sps = std::get_if<seq_parameter_set_rbsp>(&reading.unit.rbsp))
            print(sps->seq_parameter_set_data);
        else if (const slice_header* const slice = slice_header_of(reading.unit))
            std::printf("slice of kind %c, frame_num %u, pic_order_cnt_lsb %u\n", kinds[slice->slice_type % 5],
                        slice->frame_num, slice->pic_order_cnt_lsb);
        else if (const auto* const sei = std::get_if<sei_rbsp>(&reading.unit.rbsp))
            for (const sei_message& message : sei->sei_messages)
                if (const auto* const timing = std::get_if<pic_timing>(&message.payload))
                    std::printf("removal after %u ticks, output after %u more, pic_struct %u\n",
                                timing->cpb_removal_delay, timing->dpb_output_delay, unsigned{timing->pic_struct});
    }

private:
    static void print(const seq_parameter_set_data& sps)
    {
        const picture_size size = cropped_size(sps);
        const ratio rate = frame_rate(sps.vui_parameters);
        std::printf("%s, %s, %llux%llu", profile_name(sps), codec_string(sps).data(),
                    static_cast<unsigned long long>(size.width), static_cast<unsigned long long>(size.height));
        if (rate.denominator != 0)
            std::printf(", %.3f frames/s", static_cast<double>(rate.numerator) / static_cast<double>(rate.denominator));
        std::printf("\n");
    }

    stream units;
};

int main()
{
    printer prints;
    unit_splitter splitter(framing::annex_b);
    std::vector<char> piece(65536); // the stream may be of any size
    while (std::cin.read(piece.data(), static_cast<std::streamsize>(piece.size())), std::cin.gcount() != 0)
        splitter.push(reinterpret_cast<const unsigned char*>(piece.data()), static_cast<std::size_t>(std::cin.gcount()),
                      prints);
    splitter.flush(prints);
    prints.end();
}
