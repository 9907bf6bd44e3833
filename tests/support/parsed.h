// A structure after a parse of bytes that end at an unmapped page.
#pragma once

#include "support/bit_writer.h"
#include "support/element_writer.h"
#include "support/guarded_buffer.h"

#include <orv-utils-v4/h2645_common/bitreader.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace support {

/// The buffer, the reader, the structure and the result.
template <typename Structure>
struct parsed {
    guarded_buffer buffer;
    brenik::h2645_common_bitreader br;
    Structure object;
    bool result;

    /// Parses into a copy of `before`; `more` are further arguments of the parse.
    template <typename... Arguments>
    explicit parsed(const std::vector<unsigned char>& data, Structure before = {}, const Arguments&... more)
        : buffer(data), br(buffer.begin(), buffer.end()), object(std::move(before)), result(object.parse(br, more...))
    {
    }

    template <typename... Arguments>
    explicit parsed(const element_writer& writer, Structure before = {}, const Arguments&... more)
        : parsed(writer.made(), std::move(before), more...)
    {
    }

    template <typename... Arguments>
    explicit parsed(const bit_writer& writer, Structure before = {}, const Arguments&... more)
        : parsed(writer.bytes(), std::move(before), more...)
    {
    }

    std::size_t consumed() const { return br.bits_consumed(); }
    const Structure* operator->() const { return &object; }
};

/// A structure whose `valid` is set before the parse.
template <typename Structure>
Structure with_valid(bool valid, Structure object = {})
{
    object.valid = valid;
    return object;
}

} // namespace support
