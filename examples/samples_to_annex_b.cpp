// samples_to_annex_b RECORD SAMPLES >OUT   writes samples of H.264 video as an Annex B stream, with the parameter sets
// before each IDR picture. RECORD has the AVC decoder configuration record of a file, SAMPLES one sample behind
// another.
#include <orv-utils-v4/h264_syntax.h>

#include <fstream>
#include <iostream>
#include <iterator>

using namespace orv_utils_v4::h264;
using bytes = std::vector<unsigned char>;

// A file tells where each sample ends; here its access unit does.
struct annex_b_writer : split_sink, access_unit_sink {
    void unit(const split_unit& u) override
    {
        whole = whole && !u.cut;
        units.push({u.bytes, u.size, u.offset, 0}, *this);
    }
    void gap(const split_gap&) override { whole = false; }
    void take(const access_unit& picture) override
    {
        const auto write = [&](unsigned char* out, std::size_t room) {
            return sets.write_picture(picture, framing::annex_b, in_band_sets::before_idr, out, room).bytes;
        };
        bytes out(write(nullptr, 0));
        write(out.data(), out.size());
        std::cout.write(reinterpret_cast<const char*>(out.data()), static_cast<std::streamsize>(out.size()));
    }
    access_units units;
    parameter_set_store sets;
    bool whole = true;
};

struct nobody : access_unit_sink {
    void take(const access_unit&) override {}
};

static bytes content(const char* name)
{
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

static int fail(const char* what, const char* why)
{
    std::cerr << what << ": " << why << '\n';
    return 1;
}

int main(int argc, char** argv)
{
    if (argc != 3)
        return fail("usage", "samples_to_annex_b RECORD SAMPLES");
    const bytes record_bytes = content(argv[1]);
    const bytes samples = content(argv[2]);
    AVCDecoderConfigurationRecord record;
    const configuration_outcome result = read(record, record_bytes.data(), record_bytes.size());
    if (!result.sound())
        return fail(result.element.name(), text_of(result.why));
    annex_b_writer writer;
    nobody ignores;
    if (writer.sets.push(record) != 0)
        return fail(argv[1], "a parameter set cannot be read");
    for (const unit_view& set : writer.sets.all())
        writer.units.push({set.bytes, set.size, 0, 0}, ignores);
    writer.units.flush(ignores); // the access units are read with the sets, which belong to none
    unit_splitter splitter(static_cast<framing>(record.lengthSizeMinusOne + 1));
    splitter.push(samples.data(), samples.size(), writer);
    splitter.flush(writer);
    writer.units.flush(writer);
    return writer.whole ? 0 : fail(argv[2], "not all of it is units");
}
