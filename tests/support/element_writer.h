// Writes syntax elements by name and remembers where each of them lies, so that a sweep can set one of them.
#pragma once

#include "support/bit_writer.h"
#include "support/stream_builder.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace support {

enum class descriptor { u, ue, se };

/// One syntax element of what was written.
struct element {
    std::string name;         ///< with the names of the structures around it: "vui.nal_hrd.bit_rate_scale"
    std::size_t entry = 0;    ///< its index, when the name is that of an array
    std::size_t position = 0; ///< its first bit
    descriptor how = descriptor::u;
    std::size_t width = 0; ///< its bits
};

/// The bits of a structure and its elements, in the order of the syntax.
class element_writer {
public:
    element_writer& u(const char* name, unsigned int n, std::uint64_t value, std::size_t entry = 0)
    {
        return wrote(name, entry, descriptor::u, [&] { bits.u(n, value); });
    }

    element_writer& flag(const char* name, bool value, std::size_t entry = 0) { return u(name, 1, value, entry); }

    element_writer& ue(const char* name, std::uint32_t value, std::size_t entry = 0)
    {
        return wrote(name, entry, descriptor::ue, [&] { bits.ue(value); });
    }

    element_writer& se(const char* name, std::int32_t value, std::size_t entry = 0)
    {
        return wrote(name, entry, descriptor::se, [&] { bits.se(value); });
    }

    /// Writes a structure whose elements are called `name`.ELEMENT.
    template <typename Structure>
    element_writer& nested(const std::string& name, const Structure& structure)
    {
        const std::string outer = std::exchange(scope, scope + name + '.');
        write(*this, structure);
        scope = outer;
        return *this;
    }

    element_writer& trailing_bits()
    {
        bits.trailing_bits();
        return *this;
    }

    /// Every element of the structure, without its trailing bits.
    const std::vector<element>& elements() const { return written; }
    const bytes& made() const { return bits.bytes(); }
    std::size_t size_in_bits() const { return bits.bits(); }

private:
    template <typename Write>
    element_writer& wrote(const char* name, std::size_t entry, descriptor how, Write write_bits)
    {
        const std::size_t start = bits.bits();
        write_bits();
        written.push_back({scope + name, entry, start, how, bits.bits() - start});
        return *this;
    }

    bit_writer bits;
    std::vector<element> written;
    std::string scope;
};

/// A structure as H.264's syntax tables write it.
template <typename Structure>
element_writer written(const Structure& structure)
{
    element_writer writer;
    write(writer, structure);
    return writer;
}

/// A structure followed by rbsp_trailing_bits().
template <typename Structure>
element_writer written_rbsp(const Structure& structure)
{
    return written(structure).trailing_bits();
}

/// The first `count` bits of `data`, filled up with zero bits.
inline bytes first_bits(const bytes& data, std::size_t count)
{
    bytes cut(data.begin(), data.begin() + static_cast<std::ptrdiff_t>((count + 7) / 8));
    if (count % 8 != 0)
        cut.back() = static_cast<unsigned char>(cut.back() & 0xFF00U >> count % 8);
    return cut;
}

/// What was written, with one element set to `value`: another code may move all that follows.
inline bytes with_element(const element_writer& writer, const element& set, std::int64_t value)
{
    const bytes& data = writer.made();
    bit_writer out;
    const auto copy = [&](std::size_t start, std::size_t fence) {
        for (std::size_t i = start; i < fence; ++i)
            out.flag((data[i / 8] >> (7 - i % 8) & 1) != 0);
    };
    copy(0, set.position);
    if (set.how == descriptor::u)
        out.u(static_cast<unsigned int>(set.width), static_cast<std::uint64_t>(value));
    else if (set.how == descriptor::ue)
        out.ue(static_cast<std::uint32_t>(value));
    else
        out.se(static_cast<std::int32_t>(value));
    copy(set.position + set.width, writer.size_in_bits());
    return out.bytes();
}

/// What was written up to one element, and 32 zero bits in place of it: a code that stands for nothing.
inline bytes with_malformed_code(const element_writer& writer, const element& replaced)
{
    bytes data = first_bits(writer.made(), replaced.position);
    data.resize((replaced.position + 32 + 7) / 8 + 8, 0);
    data.back() = 0x80;
    return data;
}

} // namespace support
