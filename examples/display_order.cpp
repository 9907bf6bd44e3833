// display_order <FILE   prints the pictures of an H.264 Annex B stream in the order in which they are shown: number in
// decoding order, place in the file, kind, and when it is shown.
#include <orv-utils-v4/h264_syntax.h>

#include <cstdio>
#include <iostream>
#include <vector>

using namespace orv_utils_v4::h264;

struct printer : picture_sink {
    void output(const picture& p) override
    {
        const exact_time shown = p.times.presentation;
        std::printf("%llu: picture %llu at byte %llu, %s%s", number(p.output_number), number(p.number),
                    number(p.offset), kind(p),
                    p.idr              ? ", IDR"
                    : p.recovery_point ? ", recovery point"
                                       : "");
        if (shown)
            std::printf(", shown at %lld/%lld s for %u fields", static_cast<long long>(shown.numerator),
                        static_cast<long long>(shown.denominator), unsigned{p.fields_shown});
        std::printf("\n");
        for (unsigned what = 0; what < picture_findings::kinds; ++what)
            if (p.findings.has(static_cast<picture_finding>(what)))
                std::printf("  %s\n", text_of(static_cast<picture_finding>(what)));
    }

private:
    static unsigned long long number(std::uint64_t n) { return n; }
    static const char* kind(const picture& p)
    {
        if (p.lone_field())
            return p.structure == picture_structure::top_field ? "a top field" : "a bottom field";
        if (p.both_fields)
            return "two fields";
        return p.structure == picture_structure::mbaff_frame ? "a frame of frame and field macroblocks" : "a frame";
    }
};

int main()
{
    printer prints;
    picture_reader reader(framing::annex_b, output_mode::early);
    std::vector<char> piece(65536); // the stream may be of any size
    while (std::cin.read(piece.data(), static_cast<std::streamsize>(piece.size())), std::cin.gcount() != 0)
        reader.push(reinterpret_cast<const unsigned char*>(piece.data()), static_cast<std::size_t>(std::cin.gcount()),
                    prints);
    reader.flush(prints);
}
