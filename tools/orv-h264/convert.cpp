#include "convert.h"

#include "framing.h"
#include "loss_texts.h"
#include "messages.h"
#include "progress.h"
#include "record_file.h"
#include "unit_writer.h"

#include <orv-utils-v4/h264_syntax/access_unit.h>

#include <algorithm>
#include <map>
#include <new>
#include <vector>

#include <fmt/format.h>

namespace orv_h264 {

namespace {

struct nobody final : h264::access_unit_sink {
    void take(const h264::access_unit& unit) override { static_cast<void>(unit); }
};

/// A unit on its way, and what stands before it.
struct framed_unit {
    std::span<const unsigned char> bytes;
    std::uint64_t begin = 0;   ///< of its framing
    unsigned framing_size = 0; ///< 0 of a unit that was not there
    std::uint64_t zeros = 0;   ///< between the unit before and its framing
};

const char* plural(std::uint64_t count)
{
    return count == 1 ? "" : "s";
}

class conversion final : public h264::split_sink, public h264::access_unit_sink {
public:
    /// Without `into` only the parameter sets are gathered.
    conversion(const convert_options& chosen, stream_input& from, output_file* into)
        : options(chosen),
          input(from),
          output(chosen.to.value_or(h264::framing::annex_b), into),
          problems(from.name()),
          shown_progress(from.size()),
          adds_sets(!chosen.parameter_sets.empty() || !from.record_sets().empty())
    {
        if (!options.parameter_sets.empty())
            read_record(options.parameter_sets, sets);
        for (const h264::split_unit& set : from.record_sets())
            sets.push(h264::unit_view{set.bytes, set.size});
        if (!adds_sets)
            return;
        nobody ignores; // pictures are told apart with these sets, which belong to none
        for (const h264::unit_view& set : sets.all())
            pictures.push({set.bytes, set.size, 0, 0}, ignores);
        pictures.flush(ignores);
    }

    exit_status run()
    {
        const bool any = input.read_units(*this);
        pictures.flush(*this);
        if (!waiting.empty()) // what is not handed back could not be kept
            throw std::bad_alloc();
        shown_progress.clear();
        if (const container_stream* const container = input.in_container())
            for (const container_remark& remark : container->remarks())
                tell(remark);
        if (!any)
            stop(exit_broken_stream, input.bytes_read(), describe_no_unit(input.is_empty()));
        pad(input.bytes_read() - passed);
        output.flush();
        tell_what_is_left_out();
        return problems.status();
    }

    std::vector<unsigned char> record() const
    {
        if (changed_sets != 0)
            print_error(fmt::format("{}: {} parameter set{} changed in the stream; the record has the last of each id",
                                    input.name(), changed_sets, plural(changed_sets)));
        const h264::framing samples = output.framing();
        return make_record(input.name(), sets, samples == h264::framing::annex_b ? 4 : prefix_size_of(samples));
    }

    void unit(const h264::split_unit& u) override
    {
        const std::uint64_t begin = begin_of(u);
        if (u.cut)
            complain(begin, describe_cut(u));
        if ((u.bytes[0] & 0x80) != 0)
            complain(begin, "unit whose header has the forbidden bit set");
        const framed_unit framed = {{u.bytes, u.size}, begin, u.framing_size, begin - passed};
        passed = u.offset + u.size;
        shown_progress.tell(input.packets().shown(u.offset));
        if (!adds_sets) {
            keep_set(framed);
            return write(framed);
        }
        waiting.emplace(count, framed);
        pictures.push({u.bytes, u.size, u.offset, count++}, *this);
    }

    void gap(const h264::split_gap& g) override
    {
        passed = g.offset + g.size;
        if (g.reason == h264::split_gap_reason::no_memory)
            throw std::bad_alloc();
        if (g.is_unit()) // a copy without it would be none
            stop(exit_broken_stream, g.offset, describe_with_size(g, input.max_unit()));
        complain(g.offset, describe_with_size(g, input.max_unit()));
    }

    void take(const h264::access_unit& picture) override
    {
        std::vector<framed_unit> units;
        std::vector<h264::unit_view> views;
        for (const h264::access_unit_part& part : picture.parts) {
            framed_unit u = waiting.at(part.place.number);
            waiting.erase(part.place.number);
            u.bytes = {part.place.bytes, part.place.size};
            units.push_back(u);
            views.push_back({part.place.bytes, part.place.size});
            keep_set(u);
        }
        const bool is_picture = std::any_of(picture.parts.begin(), picture.parts.end(), is_slice);
        const bool lacks_sets =
            is_picture && (picture.idr || !any_picture) && !h264::carries_its_sets(views.data(), views.size());
        any_picture = any_picture || is_picture;
        write_picture(picture, units, lacks_sets);
    }

private:
    static bool is_slice(const h264::access_unit_part& part)
    {
        return part.role >= h264::unit_role::primary && part.role <= h264::unit_role::layer;
    }

    /// With the parameter sets in force behind its delimiter, if wanted, and without its own then.
    void write_picture(const h264::access_unit& picture, const std::vector<framed_unit>& units, bool with_sets)
    {
        std::size_t i = 0;
        if (with_sets && picture.parts[0].role == h264::unit_role::delimiter)
            write(units[i++]);
        if (with_sets)
            for (const h264::unit_view& set : sets.all())
                write({{set.bytes, set.size}, units[0].begin, 0, 0});
        for (; i < units.size(); ++i)
            if (!with_sets || picture.parts[i].role != h264::unit_role::parameter_set)
                write(units[i]);
    }

    void keep_set(const framed_unit& u)
    {
        using h264::set_arrival;
        if (options.avcc.empty() && !adds_sets)
            return;
        const set_arrival arrival = sets.push(h264::unit_view{u.bytes.data(), u.bytes.size()});
        changed_sets += arrival == set_arrival::changed ? 1 : 0;
        if (arrival == set_arrival::no_memory)
            throw std::bad_alloc();
        if (arrival == set_arrival::damaged || arrival == set_arrival::too_long)
            complain(u.begin, "parameter set that cannot be read is not kept");
    }

    void write(const framed_unit& u)
    {
        if (options.out.empty())
            return;
        pad(u.zeros);
        // Start codes keep their size; those of a stream that had none are the long ones, which are right everywhere.
        const bool as_found = input.framing() == h264::framing::annex_b && u.framing_size != 0;
        const h264::framing from = as_found ? h264::framing::annex_b : h264::framing::length_4;
        switch (output.write(u.bytes, from, as_found ? u.framing_size : 4)) {
        case unit_written::as_it_is:
            return;
        case unit_written::escaped:
            return complain(u.begin, "start code inside the unit: an emulation-prevention byte is put into it");
        case unit_written::shorter:
            return complain(u.begin, "unit ends in 00, which start codes cannot carry: left out");
        case unit_written::left_out:
            return complain(u.begin, "unit of one byte 00, which start codes cannot carry: left out");
        case unit_written::too_long:
            stop(exit_usage_or_io, u.begin,
                 fmt::format("unit of {} bytes does not fit behind a length of {} byte{}", u.bytes.size(),
                             prefix_size_of(output.framing()), plural(prefix_size_of(output.framing()))));
        }
    }

    /// Zero bytes around start codes: no start code follows them in another framing.
    void pad(std::uint64_t zeros)
    {
        if (zeros == 0 || options.out.empty())
            return;
        if (output.framing() == h264::framing::annex_b)
            return output.pad(zeros);
        padding += zeros;
        ++paddings;
    }

    void tell_what_is_left_out()
    {
        if (padding != 0)
            print_error(fmt::format("{}: {} byte{} of zero padding in {} place{} left out: length prefixes carry none",
                                    input.name(), padding, plural(padding), paddings, plural(paddings)));
    }

    void complain(std::uint64_t offset, const std::string& what) { tell({input.packets().shown(offset), what, true}); }

    void tell(const container_remark& remark)
    {
        shown_progress.clear();
        if (remark.is_problem)
            problems.add(remark.offset, remark.text);
        else
            problems.note(remark.offset, remark.text);
    }

    [[noreturn]] void stop(exit_status status, std::uint64_t offset, const std::string& why)
    {
        throw refusal(status, fmt::format("{}: offset {}: {}; conversion stopped", input.name(),
                                          input.packets().shown(offset), why));
    }

    const convert_options& options;
    stream_input& input;
    unit_writer output;
    complaints problems;
    progress shown_progress;
    bool adds_sets; // before pictures that lack them
    h264::parameter_set_store sets;
    h264::access_units pictures;                  // where sets are added
    std::map<std::uint64_t, framed_unit> waiting; // for their pictures, by number
    std::uint64_t count = 0;                      // of units
    std::uint64_t passed = 0;                     // bytes of the input up to the end of the last unit or gap
    std::uint64_t padding = 0;                    // bytes that are left out
    std::uint64_t paddings = 0;                   // in so many places
    std::uint64_t changed_sets = 0;
    bool any_picture = false;
};

} // namespace

exit_status convert(const convert_options& options)
{
    stream_input input(options.stream);
    std::optional<output_file> stream; // it stays where it is: a signal removes what it has written
    std::optional<output_file> record;
    if (!options.out.empty())
        stream.emplace(options.out);
    if (!options.avcc.empty())
        record.emplace(options.avcc);
    conversion work(options, input, stream ? &*stream : nullptr);
    const exit_status status = work.run();
    if (record)
        record->write(work.record());
    if (stream)
        stream->commit();
    if (record)
        record->commit();
    return status;
}

} // namespace orv_h264
