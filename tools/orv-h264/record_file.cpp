#include "record_file.h"

#include "element_text.h"
#include "input_file.h"
#include "input_window.h"
#include "stream_input.h"

#include <string_view>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

/// Why there is no one record for the parameter sets of a stream.
std::string describe_unmade(const h264::configuration_outcome& result)
{
    using enum h264::configuration_reason;
    constexpr std::string_view several = "its sequence parameter sets have several ";
    switch (result.why) {
    case no_sps:
        return "it has no sequence parameter set";
    case profiles_differ:
        return fmt::format("{}profiles", several);
    case chroma_formats_differ:
        return fmt::format("{}chroma formats", several);
    case bit_depths_differ:
        return fmt::format("{}bit depths", several);
    case colours_differ:
        return fmt::format("{}colour descriptions", several);
    default:
        return describe(result);
    }
}

} // namespace

std::string describe(const h264::configuration_outcome& result)
{
    const std::string element = text_of(result.element);
    return fmt::format("{}{}{}", element, element.empty() ? "" : ": ", h264::text_of(result.why));
}

std::span<const unsigned char> without_box_header(std::span<const unsigned char> input)
{
    constexpr std::size_t header_size = 8;
    const std::string_view text(reinterpret_cast<const char*>(input.data()), input.size());
    return text.substr(std::min<std::size_t>(text.size(), 4)).starts_with("avcC") ? input.subspan(header_size) : input;
}

void read_record(const std::string& path, h264::parameter_set_store& to)
{
    input_file file(path);
    input_window window([&file](unsigned char* out, std::size_t size) { return file.read(out, size); });
    window.fill(largest_record);
    const std::span<const unsigned char> bytes = without_box_header({window.start(), window.size()});
    h264::AVCDecoderConfigurationRecord record;
    const h264::configuration_outcome result = h264::read(record, bytes.data(), bytes.size());
    if (!result.sound())
        throw refusal(exit_broken_stream, fmt::format("{}: not a decoder configuration record: {}; see orv-h264 avcc",
                                                      file.name(), describe(result)));
    if (to.push(record) != 0 || to.all().empty())
        throw refusal(exit_broken_stream,
                      fmt::format("{}: a record with {}; see orv-h264 avcc", file.name(),
                                  to.all().empty() ? "no parameter set" : "a parameter set that cannot be read"));
}

std::vector<unsigned char> make_record(const std::string& stream_name, const h264::parameter_set_store& sets,
                                       unsigned length_size)
{
    h264::AVCDecoderConfigurationRecord record;
    h264::configuration_outcome result = h264::make_configuration(record, sets.all(), length_size);
    std::vector<unsigned char> bytes;
    if (result.sound())
        result = h264::write(record, nullptr, 0);
    if (result.why == h264::configuration_reason::no_room) {
        bytes.resize(result.bytes);
        result = h264::write(record, bytes.data(), bytes.size());
    }
    if (!result.sound())
        throw refusal(exit_broken_stream, fmt::format("{}: no decoder configuration record can be made: {}",
                                                      stream_name, describe_unmade(result)));
    return bytes;
}

} // namespace orv_h264
