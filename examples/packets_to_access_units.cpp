// packets_to_access_units <FILE   takes packets as a network gives them, each with a 32-bit timestamp of a 90 kHz
// clock, and prints the access units in them with their times. A packet here is a line of the timestamp, a blank and
// the bytes in hexadecimal digits, a part of an Annex B stream.
#include <orv-utils-v4/h264_syntax.h>

#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

using namespace orv_utils_v4::h264;

struct printer : picture_sink {
    // `of` is the picture that the access unit belongs to, as far as it is known: its times are.
    void access_unit_came(const access_unit& unit, const picture* of) override
    {
        std::size_t bytes = 0;
        for (const access_unit_part& part : unit.parts)
            bytes += part.place.size;
        std::printf("access unit %llu: %zu units, %zu bytes", static_cast<unsigned long long>(unit.number),
                    unit.parts.size(), bytes);
        if (of == nullptr)
            std::printf(", no picture");
        else if (const exact_time time = of->times.presentation_stamp; time)
            std::printf(", at %.3f s", static_cast<double>(time.numerator) / static_cast<double>(time.denominator));
        std::printf("%s\n", unit.idr ? ", IDR" : "");
    }
};

// False where the line is no packet.
static bool read_packet(const std::string& line, timestamp& stamp, std::vector<unsigned char>& bytes)
{
    char* end = nullptr;
    stamp.presentation = std::strtoll(line.c_str(), &end, 10);
    const std::size_t digits = static_cast<std::size_t>(end - line.c_str()) + 1;
    bytes.clear();
    for (std::size_t i = digits; i + 1 < line.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoul(line.substr(i, 2), nullptr, 16)));
    return !bytes.empty();
}

int main()
{
    printer prints;
    picture_reader reader(framing::annex_b);
    timestamp stamp;
    stamp.bits = 32; // RTP: it begins again at 0 after 13 hours
    std::vector<unsigned char> bytes;
    for (std::string line; std::getline(std::cin, line);)
        if (read_packet(line, stamp, bytes))
            reader.push(bytes.data(), bytes.size(), prints, {&stamp});
    reader.flush(prints);
}
