// insert_sei TEXT <IN >OUT   writes an H.264 Annex B stream again with TEXT as unregistered user data in an SEI unit of
// its own in front of the slices of each IDR picture. All other units go out as they came in, behind start codes of
// four bytes. Exit status 1: bytes of the stream belong to no unit.
#include <orv-utils-v4/h264_syntax.h>

#include <iostream>
#include <iterator>
#include <string>

using namespace orv_utils_v4::h264;
using bytes = std::vector<unsigned char>;

// The message as a unit behind its start code.
static bytes sei_with(const std::string& text)
{
    user_data_unregistered data;
    // Any number that nobody else uses; uuidgen makes one.
    data.uuid_iso_iec_11578 = {0x0B, 0x7E, 0x51, 0x8A, 0x3C, 0x92, 0x4D, 0x1F,
                               0x9A, 0x64, 0xE2, 0x5B, 0x70, 0xC3, 0x18, 0xD6};
    data.user_data_payload_byte.assign(text.begin(), text.end());
    sei_message message;
    message.payload_type = 5;
    message.payload = data;
    sei_rbsp sei;
    sei.sei_messages.push_back(message);
    nal_unit unit;
    unit.header.nal_unit_type = 6;
    unit.rbsp = sei;

    bit_writer measured; // without room it only counts
    outcome result;
    write(unit, {}, measured, result);
    bytes written(measured.bytes());
    bit_writer bits(written.data(), written.size());
    write(unit, {}, bits, result);
    bytes framed(2 * written.size() + 40);
    framed.resize(frame(written.data(), written.size(), 0, true, framed.data(), framed.size()));
    return framed;
}

struct rewriter : split_sink, access_unit_sink {
    explicit rewriter(const std::string& text) : message(sei_with(text)) {}
    void unit(const split_unit& u) override { pictures.push({u.bytes, u.size, u.offset, 0}, *this); }
    void gap(const split_gap&) override { whole = false; }
    void take(const access_unit& picture) override
    {
        bool wanted = picture.idr;
        for (const access_unit_part& part : picture.parts) {
            // Behind delimiter, parameter sets and other messages, of which a buffering period has to come first.
            if (wanted && (part.role == unit_role::prefix || part.role == unit_role::primary)) {
                put(message);
                wanted = false;
            }
            put({0, 0, 0, 1});
            put(bytes(part.place.bytes, part.place.bytes + part.place.size));
        }
    }
    static void put(const bytes& some)
    {
        std::cout.write(reinterpret_cast<const char*>(some.data()), static_cast<std::streamsize>(some.size()));
    }
    access_units pictures;
    bytes message;
    bool whole = true;
};

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    const bytes in(std::istreambuf_iterator<char>(std::cin), {});
    rewriter to(argv[1]);
    unit_splitter splitter(framing::annex_b);
    splitter.push(in.data(), in.size(), to);
    splitter.flush(to);
    to.pictures.flush(to);
    return to.whole ? 0 : 1;
}
