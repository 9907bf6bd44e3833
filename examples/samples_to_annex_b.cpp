// samples_to_annex_b RECORD SAMPLES >OUT   writes samples of H.264 video as an Annex B stream, with the parameter sets
// before each IDR picture. RECORD has the AVC decoder configuration record of a file, SAMPLES one sample behind
// another.
#include <orv-utils-v4/h264_syntax.h>

#include <fstream>
#include <iostream>
#include <iterator>

using namespace orv_utils_v4::h264;
using bytes = std::vector<unsigned char>;

// A file tells where each sample ends. Here the next one does: by first_mb_in_slice 0, or what stands before a slice.
struct annex_b_writer : split_sink {
    void unit(const split_unit& u) override
    {
        const unsigned type = u.bytes[0] & 0x1F;
        const bool slice = type == 1 || type == 2 || type == 5;
        if (slice_came && (slice ? u.size > 1 && u.bytes[1] >= 0x80 : type >= 6 && type <= 9))
            end_picture();
        slice_came = slice_came || slice;
        whole = whole && !u.cut;
        if (!u.cut)
            picture.push_back({u.bytes, u.size}); // it stays where it is: the samples are pushed in one piece
    }
    void gap(const split_gap&) override { whole = false; }
    void end_picture()
    {
        constexpr in_band_sets how = in_band_sets::before_idr;
        const unit_view* const units = picture.data();
        bytes out(sets.write_picture(units, picture.size(), framing::annex_b, how, nullptr, 0).bytes);
        sets.write_picture(units, picture.size(), framing::annex_b, how, out.data(), out.size());
        std::cout.write(reinterpret_cast<const char*>(out.data()), static_cast<std::streamsize>(out.size()));
        picture.clear();
        slice_came = false;
    }

    parameter_set_store sets;
    std::vector<unit_view> picture;
    bool slice_came = false;
    bool whole = true;
};

static bytes content(const char* name)
{
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

static int fail(const char* name, const char* problem)
{
    std::cerr << name << ": " << problem << '\n';
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
    if (writer.sets.push(record) != 0)
        return fail(argv[1], "a parameter set cannot be read");
    unit_splitter splitter(static_cast<framing>(record.lengthSizeMinusOne + 1));
    splitter.push(samples.data(), samples.size(), writer);
    splitter.flush(writer);
    writer.end_picture();
    return writer.whole ? 0 : fail(argv[2], "not all of it is units");
}
