// rewrite_framing IN OUT   writes the NAL units of the H.264 Annex B file IN to OUT, each behind its length in 4 bytes,
// as MP4 has them. Both are held in memory whole, which is fine for an example.
#include <orv-utils-v4/h264.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

using bytes = std::vector<unsigned char>;

// Empty when there is no unit, or one does not fit.
static bytes annexb_to_length4(bytes& stream)
{
    unsigned char* end = stream.data() + stream.size();
    while (end != stream.data() && end[-1] == 0) // padding: no NAL unit ends in 00
        --end;
    bytes rbsp(stream.size()); // room for any unit and its start code: no block comes back full
    bytes out(brenik::h264_nal_writer::recommended_output_size(stream.size()));
    brenik::h264_nal_reader reader(brenik::nalfmt_annexb);
    brenik::h264_nal_writer writer(out.data(), out.data(), out.data() + out.size(), brenik::nalfmt_length4);
    for (reader.scan(stream.data(), end); reader.found; reader.scan(reader.next, end)) {
        const std::size_t size = reader.block_decode(rbsp.data(), rbsp.size());
        if (writer.block_encode(rbsp.data(), size, reader.nal, 0) == 0)
            return {};
    }
    out.resize(writer.data_length());
    return out;
}

static int fail(const char* name, const char* problem)
{
    std::cerr << name << ": " << problem << '\n';
    return 1;
}

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: rewrite_framing IN OUT\n";
        return 2;
    }
    std::ifstream in(argv[1], std::ios::binary);
    if (in.peek() == EOF)
        return fail(argv[1], "cannot be read, or is empty");
    bytes stream(std::istreambuf_iterator<char>(in), {});
    const bytes rewritten = annexb_to_length4(stream);
    if (rewritten.empty())
        return fail(argv[1], "there is no NAL unit, or one does not fit");
    std::FILE* const out = std::fopen(argv[2], "wb");
    if (out == nullptr)
        return fail(argv[2], "cannot be opened");
    const bool written = std::fwrite(rewritten.data(), 1, rewritten.size(), out) == rewritten.size();
    if (std::fclose(out) == 0 && written)
        return 0;
    return fail(argv[2], std::remove(argv[2]) == 0 ? "cannot be written" : "is incomplete");
}
