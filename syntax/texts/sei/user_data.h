// The texts of the SEI payloads that are bytes, H.264 clauses D.1.5 to D.1.7 and reserved_sei_message().
#pragma once

#include "coders/coder.h"

#include <orv-utils-v4/h264_syntax/sei/user_data.h>

namespace orv_utils_v4::h264 {

// H.264 D.1, a payload that is not read
template <class Coder>
void code(Coder& c, in<Coder, payload_bytes>& x)
{
    c.bytes_left("payload_byte", x.payload_byte);
}

// H.264 D.1, reserved_sei_message()
template <class Coder>
void code(Coder& c, in<Coder, reserved_sei_message>& x)
{
    const auto here = c.structure("reserved_sei_message");
    c.bytes_left("reserved_sei_message_payload_byte", x.reserved_sei_message_payload_byte);
}

// H.264 D.1.5; what is no ff_byte, and all behind it, is left to the end of the payload
template <class Coder>
void code(Coder& c, in<Coder, filler_payload>& x)
{
    const auto here = c.structure("filler_payload");
    c.run("ff_byte", 0xFF, x.ff_bytes);
}

// H.264 D.1.6
template <class Coder>
void code(Coder& c, in<Coder, user_data_registered_itu_t_t35>& x)
{
    const auto here = c.structure("user_data_registered_itu_t_t35");
    c.b("itu_t_t35_country_code", x.itu_t_t35_country_code);
    if (x.itu_t_t35_country_code == 0xFF)
        c.b("itu_t_t35_country_code_extension_byte", x.itu_t_t35_country_code_extension_byte);
    // the table counts the bytes of the payload, the code's among them
    c.bytes_left("itu_t_t35_payload_byte", x.itu_t_t35_payload_byte, x.itu_t_t35_country_code == 0xFF ? 2 : 1);
}

// H.264 D.1.7
template <class Coder>
void code(Coder& c, in<Coder, user_data_unregistered>& x)
{
    const auto here = c.structure("user_data_unregistered");
    c.u_bytes("uuid_iso_iec_11578", x.uuid_iso_iec_11578);
    c.bytes_left("user_data_payload_byte", x.user_data_payload_byte);
}

} // namespace orv_utils_v4::h264
