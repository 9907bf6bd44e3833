// The AVC decoder configuration record of ISO/IEC 14496-15: one text, and two coders that read and write it. Every
// element but the lengths and the units is the low bits of a byte whose other bits are reserved, as ones.
#include <orv-utils-v4/h264_syntax/decoder_configuration.h>

#include <algorithm>

namespace orv_utils_v4::h264 {

namespace {

using why = configuration_reason;

constexpr std::uint8_t known_version = 1;
constexpr std::size_t length_bytes = 2;

/// The names of a list's elements.
struct list_names {
    const char* count;
    const char* length;
    const char* unit;
};
constexpr list_names sps_names = {"numOfSequenceParameterSets", "sequenceParameterSetLength",
                                  "sequenceParameterSetNALUnit"};
constexpr list_names pps_names = {"numOfPictureParameterSets", "pictureParameterSetLength",
                                  "pictureParameterSetNALUnit"};
constexpr list_names sps_extension_names = {"numOfSequenceParameterSetExt", "sequenceParameterSetExtLength",
                                            "sequenceParameterSetExtNALUnit"};

// ISO/IEC 14496-15 5.3.3.1.2
template <class Coder, class Record>
void code(Coder& c, Record& x)
{
    c.u(8, "configurationVersion", x.configurationVersion);
    c.expect(x.configurationVersion == known_version, why::unknown_version, "configurationVersion");
    c.u(8, "AVCProfileIndication", x.AVCProfileIndication);
    c.u(8, "profile_compatibility", x.profile_compatibility);
    c.u(8, "AVCLevelIndication", x.AVCLevelIndication);
    c.u(2, "lengthSizeMinusOne", x.lengthSizeMinusOne);
    c.units(5, sps_names, x.sequenceParameterSetNALUnit);
    c.units(8, pps_names, x.pictureParameterSetNALUnit);
    if (c.has_extension(x)) {
        c.u(2, "chroma_format", x.chroma_format);
        c.u(3, "bit_depth_luma_minus8", x.bit_depth_luma_minus8);
        c.u(3, "bit_depth_chroma_minus8", x.bit_depth_chroma_minus8);
        c.was_there(x.extension_present);
        c.units(8, sps_extension_names, x.sequenceParameterSetExtNALUnit);
    }
}

/// What both coders share: the first failure stays, and nothing happens behind it.
class record_coder {
public:
    bool going() const noexcept { return result.sound(); }
    void expect(bool holds, why reason, label element) noexcept
    {
        if (going() && !holds) {
            result.why = reason;
            result.element = element;
            result.bytes = element_at;
        }
    }

protected:
    std::size_t element_at = 0; ///< where the latest element begins
    configuration_outcome result;
};

class record_reader : public record_coder {
public:
    record_reader(const unsigned char* bytes, std::size_t size) noexcept : start(bytes), fence(size) {}

    void u(unsigned bits, label element, std::uint8_t& value) noexcept
    {
        if (enough(1, element))
            value = static_cast<std::uint8_t>(start[at++] & ((1U << bits) - 1));
    }
    template <std::size_t N>
    void units(unsigned bits, const list_names& names, bounded_list<unit_view, N>& list) noexcept
    {
        std::uint8_t count = 0;
        u(bits, names.count, count);
        for (std::size_t i = 0; i < count && going(); ++i)
            take_unit({names.length, i}, {names.unit, i}, list);
        if (!going() && result.units == 0)
            result.units = count;
    }
    bool has_extension(const AVCDecoderConfigurationRecord& x) const noexcept
    {
        return going() && x.extension_belongs() && at != fence;
    }
    void was_there(bool& flag) const noexcept { flag = going(); }

    /// How it went, and the bytes behind the record.
    configuration_outcome end(unit_view& behind) noexcept
    {
        if (going()) {
            behind = {start + at, fence - at};
            result.bytes = at;
        }
        return result;
    }

private:
    bool enough(std::size_t size, label element) noexcept
    {
        element_at = at;
        expect(size <= fence - at, why::record_ends, element);
        return going();
    }
    template <std::size_t N>
    void take_unit(label length, label unit, bounded_list<unit_view, N>& list) noexcept
    {
        if (!enough(length_bytes, length))
            return;
        const std::size_t size = std::size_t{start[at]} << 8 | start[at + 1];
        at += length_bytes;
        if (!enough(size, unit))
            return;
        list.grow();
        list.back() = {start + at, size};
        at += size;
    }

    const unsigned char* start;
    std::size_t fence;
    std::size_t at = 0;
};

class record_writer : public record_coder {
public:
    record_writer(unsigned char* bytes, std::size_t size) noexcept : out(bytes), room(size) {}

    void u(unsigned bits, label element, std::uint8_t value) noexcept
    {
        element_at = at;
        expect(value >> bits == 0, why::value_too_large, element);
        put(0xFFU << bits | value);
    }
    template <std::size_t N>
    void units(unsigned bits, const list_names& names, const bounded_list<unit_view, N>& list) noexcept
    {
        u(bits, names.count, static_cast<std::uint8_t>(list.size()));
        for (std::size_t i = 0; i < list.size() && going(); ++i)
            put_unit({names.length, i}, list[i]);
    }
    bool has_extension(const AVCDecoderConfigurationRecord& x) noexcept
    {
        element_at = at;
        expect(!x.extension_present || x.extension_belongs(), why::misplaced_extension, "chroma_format");
        return x.extension_present;
    }
    void was_there(bool) const noexcept {}

    configuration_outcome end() noexcept
    {
        element_at = at;
        expect(at <= room, why::no_room, "AVCDecoderConfigurationRecord");
        if (going())
            result.bytes = at;
        return result;
    }

private:
    void put_unit(label length, const unit_view& unit) noexcept
    {
        element_at = at;
        expect(unit.size <= AVCDecoderConfigurationRecord::most_set_bytes, why::set_too_long, length);
        if (!going())
            return;
        put(static_cast<unsigned>(unit.size >> 8));
        put(static_cast<unsigned>(unit.size));
        if (at < room)
            std::copy_n(unit.bytes, std::min(unit.size, room - at), out + at);
        at += unit.size;
    }
    void put(unsigned byte) noexcept
    {
        if (at < room)
            out[at] = static_cast<unsigned char>(byte);
        ++at;
    }

    unsigned char* out;
    std::size_t room;
    std::size_t at = 0;
};

} // namespace

bool operator==(const unit_view& a, const unit_view& b)
{
    return std::equal(a.bytes, a.bytes + a.size, b.bytes, b.bytes + b.size);
}

bool operator==(const AVCDecoderConfigurationRecord&, const AVCDecoderConfigurationRecord&) = default;

configuration_outcome read(AVCDecoderConfigurationRecord& to, const unsigned char* bytes, std::size_t size) noexcept
{
    to = AVCDecoderConfigurationRecord();
    record_reader c(bytes, size);
    code(c, to);
    return c.end(to.behind);
}

configuration_outcome write(const AVCDecoderConfigurationRecord& record, unsigned char* out, std::size_t room) noexcept
{
    record_writer c(out, room);
    code(c, record);
    return c.end();
}

const char* text_of(configuration_reason reason) noexcept
{
    switch (reason) {
    case why::none:
        return "";
    case why::record_ends:
        return "the record ends";
    case why::unknown_version:
        return "not 1, so that the record cannot be read";
    case why::value_too_large:
        return "more than its bits hold";
    case why::set_too_long:
        return "more than 65535 bytes";
    case why::misplaced_extension:
        return "the profile has no extension";
    case why::no_room:
        return "no room for it";
    case why::wrong_length_size:
        return "length prefixes have 1, 2 or 4 bytes";
    case why::no_sps:
        return "there is none";
    case why::unreadable_set:
        return "cannot be read";
    case why::too_many_sps:
        return "more than 31";
    case why::too_many_pps:
        return "more than 255";
    case why::profiles_differ:
    case why::chroma_formats_differ:
    case why::bit_depths_differ:
    case why::colours_differ:
        return "another than in the sequence parameter sets before";
    case why::no_memory:
        return "no memory";
    }
    return "";
}

} // namespace orv_utils_v4::h264
