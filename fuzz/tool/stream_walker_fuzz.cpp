// The stream walker of the tool and what is shown of its units. A slice header read from a small block is that of the
// whole unit; lines and problems are there for whatever was read. Input: units, each a header byte, two bytes of
// length, and the RBSP.
#include "input.h"

#include "support/slice_header_fields.h"
#include "support/walked.h"

#include "show_syntax.h"

namespace {

brenik::h264_nal_slice_header whole_header(const orv_h264::stream_walker& walker, const brenik::h264_nal& nal,
                                           const fuzz::exact_block& rbsp)
{
    brenik::h264_nal_slice_header slice;
    brenik::h2645_common_bitreader br(rbsp.begin(), rbsp.end());
    try {
        slice.parse(br, walker.sps_store(), walker.pps_store(), nal);
    } catch (const brenik::h2645_common_malformed_code&) {
        // What was read before stays in the object.
    }
    return slice;
}

void expect_header_of_the_whole(const orv_h264::walked_unit& unit, const orv_h264::stream_walker& walker,
                                const brenik::h264_nal& nal, const fuzz::bytes& rbsp)
{
    const auto* const slice = std::get_if<brenik::h264_nal_slice_header>(&unit.syntax);
    if (slice == nullptr)
        return;
    const fuzz::exact_block block(rbsp);
    fuzz::expect_none(
        support::difference(support::fields_of(whole_header(walker, nal, block)), support::fields_of(*slice)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    orv_h264::stream_walker walker;
    for (bool more = true; more;) {
        const auto header = static_cast<unsigned char>(input.byte() & 0x7F);
        const std::size_t length = std::size_t{256} * input.byte();
        const fuzz::bytes rbsp = input.take(length + input.byte());
        more = !rbsp.empty();
        support::unit_reader reader(header, rbsp);
        const orv_h264::walked_unit unit = walker.walk(*reader);
        expect_header_of_the_whole(unit, walker, (*reader).nal, rbsp);
        const bool sound = orv_h264::problems_of(unit).empty();
        const bool shows = !orv_h264::show_fields(unit).empty();
        fuzz::expect(shows || !sound || std::holds_alternative<std::monostate>(unit.syntax),
                     "a sound unit whose syntax is read shows fields");
        fuzz::expect(walker.sps_store().size() <= orv_h264::stream_walker::most_sps &&
                         walker.pps_store().size() <= orv_h264::stream_walker::most_pps,
                     "the stores are bounded");
    }
    return 0;
}
