// User data registered by T.35: read and told from the bytes of the payload, and who registered what.
#include "texts/registered_user_data.h"
#include "coders/reader.h"

#include <algorithm>
#include <iterator>

namespace orv_utils_v4::h264 {

namespace {

constexpr std::uint8_t extended = 0xFF; // a country code with an extension byte behind it

/// How many bits lie before those that are read.
std::uint64_t country_bits(const user_data_registered_itu_t_t35& from)
{
    return from.itu_t_t35_country_code == extended ? 16 : 8;
}

/// Tells a visitor elements that lie some bits further behind.
class moved : public visitor {
public:
    moved(visitor& to, std::uint64_t bits) : listener(to), distance(bits) {}

    void open(const char* name) override { listener.open(name); }
    void close() override { listener.close(); }
    void element(const traced_element& element) override
    {
        traced_element there = element;
        there.bit += distance;
        listener.element(there);
    }

private:
    visitor& listener;
    std::uint64_t distance;
};

template <class Telling>
void read_telling(registered_user_data& to, const user_data_registered_itu_t_t35& from, outcome& result,
                  Telling telling)
{
    const unsigned char* const bytes = from.itu_t_t35_payload_byte.data();
    const std::size_t size = from.itu_t_t35_payload_byte.size();
    const std::uint64_t distance = country_bits(from);
    to = registered_user_data();
    result = outcome();
    reader<Telling> c(bytes, bytes + size, result, telling);
    code(c, to, from.itu_t_t35_country_code);

    result.bits = distance + c.position();
    if (result.failure) { // it can only be the end
        result.failure.why = reason::payload_ends;
        result.failure.bit += distance;
        result.bits = result.failure.bit;
    } else if (to.data.index() != 0)
        result.ending = c.position() < 8 * size ? ending::bytes_behind : ending::sound;
    for (finding& f : result.findings)
        f.bit += distance;
}

struct country {
    std::uint8_t code;
    const char* name;
};

// ITU-T T.35 Annex A, those of which there is no doubt
constexpr country countries[] = {
    {0x00, "Japan"},  {0x04, "Germany"}, {0x09, "Australia"},   {0x20, "Canada"},         {0x26, "China"},
    {0x3D, "France"}, {0x42, "Germany"}, {0x59, "Italy"},       {0x61, "Korea"},          {0x7B, "Netherlands"},
    {0xA0, "Spain"},  {0xA5, "Sweden"},  {0xA6, "Switzerland"}, {0xB4, "United Kingdom"}, {0xB5, "United States"},
};

struct provider {
    std::uint8_t country;
    std::uint8_t size; // of what the bytes begin with
    std::uint8_t begin[4];
    const char* name;
};

// The first that fits counts.
constexpr provider providers[] = {
    {0xB5, 2, {0x00, 0x2F}, "DirecTV"}, {0xB5, 2, {0x00, 0x31}, "ATSC"},
    {0xB5, 2, {0x00, 0x3B}, "Dolby"},   {0xB5, 4, {0x00, 0x3C, 0x00, 0x01}, "SMPTE ST 2094-40 (HDR10+)"},
    {0xB5, 2, {0x00, 0x3C}, "Samsung"},
};

} // namespace

void read_registered_user_data(registered_user_data& to, const user_data_registered_itu_t_t35& from,
                               outcome& result) noexcept
{
    read_telling(to, from, result, untold());
}

void trace_registered_user_data(registered_user_data& to, const user_data_registered_itu_t_t35& from, outcome& result,
                                visitor& listener) noexcept
{
    moved behind_the_country(listener, country_bits(from));
    read_telling(to, from, result, told(behind_the_country));
}

const char* country_name(std::uint8_t itu_t_t35_country_code) noexcept
{
    const country* const found = std::find_if(std::begin(countries), std::end(countries),
                                              [&](const country& c) { return c.code == itu_t_t35_country_code; });
    return found == std::end(countries) ? "" : found->name;
}

const char* registered_name(const user_data_registered_itu_t_t35& data) noexcept
{
    const auto& bytes = data.itu_t_t35_payload_byte;
    const provider* const found = std::find_if(std::begin(providers), std::end(providers), [&](const provider& p) {
        return p.country == data.itu_t_t35_country_code && p.size <= bytes.size() &&
               std::equal(p.begin, p.begin + p.size, bytes.begin());
    });
    return found == std::end(providers) ? "" : found->name;
}

} // namespace orv_utils_v4::h264
