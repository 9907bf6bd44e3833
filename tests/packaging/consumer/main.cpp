// What a stranger's program does with the library: writes units and reads them back, parses one, and catches an
// exception that was thrown behind the library's border. It is compiled outside the tree, against the installed
// headers.
#include <orv-utils-v4/h264.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

struct unit {
    brenik::h264_nal_unit_type type;
    std::vector<unsigned char> rbsp;
};

void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "consumer: %s\n", what);
    std::exit(1);
}

// The second payload holds zeros that need emulation-prevention bytes.
std::vector<unit> units_to_write()
{
    return {{brenik::h264_nal_unit_type_aud, {0xB0}}, {brenik::h264_nal_unit_type_sei, {5, 4, 0, 0, 1, 0, 0x80}}};
}

std::vector<unsigned char> write_units(std::vector<unit> units)
{
    std::vector<unsigned char> stream(200);
    brenik::h264_nal_writer writer(stream.data(), stream.data(), stream.data() + stream.size(), brenik::nalfmt_annexb);
    for (unit& u : units) {
        brenik::h264_nal header;
        header.nal_unit_type = u.type;
        header.valid = true;
        require(writer.block_encode(u.rbsp.data(), u.rbsp.size(), header, 1) != 0, "a unit could not be written");
    }
    stream.resize(writer.data_length());
    return stream;
}

std::vector<unit> read_units(std::vector<unsigned char> stream)
{
    std::vector<unit> units;
    brenik::h264_nal_reader reader(brenik::nalfmt_annexb);
    unsigned char* const end = stream.data() + stream.size();
    for (reader.scan(stream.data(), end); reader.found; reader.scan(reader.next, end)) {
        unit u{reader.nal.nal_unit_type, std::vector<unsigned char>(stream.size())};
        u.rbsp.resize(reader.block_decode(u.rbsp.data(), u.rbsp.size()));
        units.push_back(u);
    }
    return units;
}

std::size_t position_of_malformed_code()
{
    static constexpr unsigned char zeros[8] = {};
    brenik::h2645_common_bitreader br(zeros, zeros + sizeof zeros);
    br.get<unsigned int>(3);
    try {
        br.ue();
    } catch (const brenik::h2645_common_malformed_code& malformed) {
        return malformed.bit_position();
    }
    require(false, "ue() took 32 zero bits for a number");
    return 0;
}

} // namespace

int main()
{
    const std::vector<unit> written = units_to_write();
    const std::vector<unit> read = read_units(write_units(written));
    require(read.size() == written.size(), "another number of units was read than written");
    for (std::size_t i = 0; i < read.size(); ++i)
        require(read[i].type == written[i].type && read[i].rbsp == written[i].rbsp, "a unit was not read as written");

    brenik::h264_nal_aud aud;
    brenik::h2645_common_bitreader br(read[0].rbsp.data(), read[0].rbsp.data() + read[0].rbsp.size());
    require(aud.parse(br), "the access unit delimiter is not valid");

    std::printf("%zu units, primary_pic_type %u, malformed code at bit %zu\n", read.size(),
                unsigned{aud.primary_pic_type}, position_of_malformed_code());
}
