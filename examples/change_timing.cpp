// change_timing UNITS SCALE <IN >OUT   writes an H.264 Annex B stream again with another num_units_in_tick and
// time_scale in every SPS; all other units go out as they came in. Exit status 1: an SPS could not be changed.
#include <orv-utils-v4/h264_syntax.h>

#include <cstdlib>
#include <iostream>
#include <iterator>

using namespace orv_utils_v4::h264;
using bytes = std::vector<unsigned char>;

// The SPS with the new rate, framed; empty when it cannot be had.
static bytes changed(const split_unit& u, long units, long scale)
{
    bytes clean(u.size);
    nal_unit sps;
    outcome result;
    read(sps, clean.data(), unescape(u.bytes, u.size, clean.data(), clean.size()), {}, result);
    const auto set = [&](const char* path, long value) { return edit(sps, {}, path, value, result); };
    const bool edited = !result.failure && set("vui_parameters_present_flag", 1) &&
                        set("timing_info_present_flag", 1) && set("num_units_in_tick", units) &&
                        set("time_scale", scale);
    bytes written(u.size + 64);
    bit_writer bits(written.data(), written.size());
    if (!edited || !write(sps, {}, bits, result)) {
        std::cerr << result.failure.element.name() << ": " << text_of(result.failure.why) << '\n';
        return {};
    }
    clean.resize(2 * written.size());
    clean.resize(frame(written.data(), bits.bytes(), 0, true, clean.data(), clean.size()));
    return clean;
}

struct rewriter : split_sink {
    rewriter(long u, long s) : units(u), scale(s) {}
    void unit(const split_unit& u) override
    {
        bytes out = {0, 0, 0, 1};
        out.insert(out.end(), u.bytes, u.bytes + u.size);
        if ((u.bytes[0] & 0x1F) == 7)
            out = changed(u, units, scale);
        failed |= out.empty();
        std::cout.write(reinterpret_cast<const char*>(out.data()), static_cast<std::streamsize>(out.size()));
    }
    void gap(const split_gap&) override {}
    long units, scale;
    bool failed = false;
};

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    const bytes in(std::istreambuf_iterator<char>(std::cin), {});
    rewriter to(std::strtol(argv[1], nullptr, 10), std::strtol(argv[2], nullptr, 10));
    unit_splitter splitter(framing::annex_b);
    splitter.push(in.data(), in.size(), to);
    splitter.flush(to);
    return to.failed ? 1 : 0;
}
