#include "convert.h"

#include "framing.h"
#include "messages.h"
#include "output_file.h"
#include "progress.h"
#include "rbsp_decoder.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

std::size_t zeros_at_end(rbsp_bytes rbsp)
{
    const auto last = std::find_if(rbsp.rbegin(), rbsp.rend(), [](unsigned char byte) { return byte != 0; });
    return static_cast<std::size_t>(last - rbsp.rbegin());
}

/// A copy without what is in the gap would be none, or there is nothing to copy.
bool ends_conversion(const gap& g)
{
    return holds_a_unit(g) || g.reason == gap_reason::no_unit;
}

class conversion {
public:
    conversion(stream_input& from, h264::framing to, output_file& into)
        : input(from), framing(to), output(into), problems(from.name()), shown_progress(from.size())
    {
    }

    exit_status run()
    {
        read_all(
            input.feeder(), [this](const unit& u) { take_unit(u); }, [this](const gap& g) { take_gap(g); });
        flush();
        return problems.status();
    }

private:
    void take_unit(const unit& u)
    {
        if (u.cut)
            complain(u.offset, describe_cut(u));
        const brenik::h264_nal nal = input.feeder().reader().nal;
        const rbsp_bytes rbsp = decoder.whole(input.feeder().reader());
        const std::size_t room = brenik::h264_nal_writer::recommended_output_size(rbsp.size()) + 1; // for the 03
        if (out.size() < filled + room)
            out.resize(filled + room);
        brenik::h264_nal_writer writer(out.data(), out.data() + filled, out.data() + out.size(), nalfmt_of(framing));
        if (writer.block_encode(rbsp.data(), rbsp.size(), nal, zero_bytes(u)) == 0 || !end_unit(writer, rbsp))
            stop(exit_usage_or_io, u.offset,
                 fmt::format("unit of {} bytes does not fit behind a length of {} byte{}", u.length,
                             prefix_size_of(framing), prefix_size_of(framing) == 1 ? "" : "s"));
        if (framing == h264::framing::annex_b && zeros_at_end(rbsp) % 2 != 0)
            complain(u.offset, "unit ends in 00, which start codes cannot carry: left out");
        filled = writer.data_length();
        if (filled >= worth_writing)
            flush();
        shown_progress.tell(u.offset);
    }

    // Start codes keep their size; those of a stream that had none are the long ones, which are right everywhere.
    unsigned int zero_bytes(const unit& u) const
    {
        constexpr unsigned int short_start_code = 3;
        return input.framing() == h264::framing::annex_b && u.framing_size == short_start_code ? 0 : 1;
    }

    // H.264 7.4.1: no NAL unit ends in 00; behind cabac_zero_words stands 03. The writer adds it in Annex B alone.
    // False when the unit then is longer than its prefix can tell.
    bool end_unit(brenik::h264_nal_writer& writer, rbsp_bytes rbsp)
    {
        const std::size_t zeros = zeros_at_end(rbsp);
        if (framing == h264::framing::annex_b || zeros == 0 || zeros % 2 != 0)
            return true;
        *writer.write++ = 3;
        unsigned char* const prefix = out.data() + filled;
        for (unsigned int i = prefix_size_of(framing); i > 0; --i)
            if (++prefix[i - 1] != 0)
                return true;
        return false;
    }

    void take_gap(const gap& g)
    {
        if (ends_conversion(g))
            stop(exit_broken_stream, g.offset, describe_with_size(g));
        complain(g.offset, describe_with_size(g));
    }

    void complain(std::uint64_t offset, const std::string& what)
    {
        shown_progress.clear();
        problems.add(offset, what);
    }

    [[noreturn]] void stop(exit_status status, std::uint64_t offset, const std::string& why)
    {
        throw refusal(status, fmt::format("{}: offset {}: {}; conversion stopped", input.name(), offset, why));
    }

    void flush()
    {
        output.write({out.data(), filled});
        filled = 0;
    }

    static constexpr std::size_t worth_writing = std::size_t{256} * 1024;

    stream_input& input;
    h264::framing framing;
    output_file& output;
    complaints problems;
    progress shown_progress;
    rbsp_decoder decoder;
    std::vector<unsigned char> out;
    std::size_t filled = 0; // of `out`
};

} // namespace

exit_status convert(const convert_options& options)
{
    stream_input input(options.stream);
    output_file output(options.out);
    const exit_status status = conversion(input, options.to, output).run();
    output.commit();
    return status;
}

} // namespace orv_h264
