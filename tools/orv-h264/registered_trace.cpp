#include "registered_trace.h"

#include <orv-utils-v4/h264_syntax/registered_user_data.h>

#include <new>
#include <string_view>

namespace orv_h264 {

namespace {

/// Moves the elements to where the user data lie.
class moved_elements final : public h264::visitor {
public:
    moved_elements(h264::visitor& to, std::uint64_t bits) : listener(to), by(bits) {}

    void open(const char* name) override { listener.open(name); }
    void close() override { listener.close(); }
    void element(const h264::traced_element& element) override
    {
        h264::traced_element moved = element;
        moved.bit += by;
        listener.element(moved);
    }

private:
    h264::visitor& listener;
    std::uint64_t by;
};

} // namespace

void registered_trace::open(const char* name)
{
    inside = name == std::string_view(structure); // which has no other in it
    if (inside) {
        data = {};
        whole = true;
    }
    listener.open(name);
}

void registered_trace::close()
{
    if (inside && whole) {
        h264::registered_user_data read;
        h264::outcome result;
        moved_elements moved(listener, first_bit);
        trace_registered_user_data(read, data, result, moved);
    }
    inside = false;
    listener.close();
}

void registered_trace::element(const h264::traced_element& e)
{
    if (inside)
        keep(e);
    listener.element(e);
}

void registered_trace::keep(const h264::traced_element& e) noexcept
{
    const std::string_view name = e.name.name();
    const auto byte = static_cast<std::uint8_t>(e.value);
    if (name == "itu_t_t35_country_code") {
        first_bit = e.bit;
        data.itu_t_t35_country_code = byte;
    } else if (name == "itu_t_t35_country_code_extension_byte") {
        data.itu_t_t35_country_code_extension_byte = byte;
    } else {
        try {
            data.itu_t_t35_payload_byte.push_back(byte);
        } catch (const std::bad_alloc&) {
            whole = false;
        }
    }
}

} // namespace orv_h264
