// User data registered by T.35, with and without somebody who is told: the same structure, and every element told has
// the value of its bits, one behind the other. Input: the payload, as it stands behind payload_size.
#include "syntax_units.h"

namespace {

using namespace fuzz;

/// Holds what is told against the bits of the payload.
class checked_elements : public h264::visitor {
public:
    explicit checked_elements(const bytes& payload, std::uint64_t first_bit) : data(payload), end(first_bit) {}

    void open(const char*) override { ++depth; }
    void close() override { --depth; }
    void element(const h264::traced_element& e) override
    {
        expect(depth > 0, "an element lies in a structure");
        expect(e.bit == end && e.bits > 0, "elements lie one behind the other");
        end = e.bit + e.bits;
        expect(end <= 8 * data.size(), "an element lies in the payload");
        expect(e.value == value_in(data, e), "the value is that of the bits");
        outside += e.inside ? 0 : 1;
    }
    void expect_outcome(const h264::outcome& result) const
    {
        expect(depth == 0, "every structure closes");
        expect(result.bits == end, "reading ends behind the last element");
        expect(result.finding_count == outside, "what lies outside is a finding");
        expect(!result.failure || result.failure.bit == end, "it fails behind the last element");
        expect(!result.failure || result.failure.why == h264::reason::payload_ends, "only the end is a failure");
    }

private:
    const bytes& data;
    std::uint64_t end;
    std::uint64_t outside = 0;
    int depth = 0;
};

h264::user_data_registered_itu_t_t35 payload_in(input from)
{
    h264::user_data_registered_itu_t_t35 payload;
    payload.itu_t_t35_country_code = from.byte();
    if (payload.itu_t_t35_country_code == 0xFF)
        payload.itu_t_t35_country_code_extension_byte = from.byte();
    payload.itu_t_t35_payload_byte = from.rest();
    return payload;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const bytes whole(data, data + size);
    const fuzz::h264::user_data_registered_itu_t_t35 payload = payload_in(fuzz::input(data, size));
    checked_elements listener(whole, payload.itu_t_t35_country_code == 0xFF ? 16 : 8);
    fuzz::h264::registered_user_data told;
    fuzz::h264::outcome result;
    trace_registered_user_data(told, payload, result, listener);
    listener.expect_outcome(result);

    fuzz::h264::registered_user_data silent;
    fuzz::h264::outcome untold;
    read_registered_user_data(silent, payload, untold);
    fuzz::expect(silent == told, "telling does not change what is read");
    fuzz::expect(untold.bits == result.bits && untold.ending == result.ending, "telling does not change how it ends");
    fuzz::h264::country_name(payload.itu_t_t35_country_code);
    registered_name(payload);
    return 0;
}
