// What follows from the parameter sets of a stream, and from the clauses of its structures: values keep to what they
// can be, and maps to their room. Input: a byte for the framing, and the stream.
#include "syntax_units.h"

#include <algorithm>

namespace {

using namespace fuzz;

bool is_ratio(const h264::ratio& r)
{
    return (r.numerator == 0) == (r.denominator == 0);
}

void expect_sizes(const h264::seq_parameter_set_data& sps)
{
    const h264::picture_size whole = h264::coded_size(sps);
    const h264::picture_size shown = h264::cropped_size(sps);
    expect(shown.width <= whole.width && shown.height <= whole.height, "what is shown lies in what is coded");
    const h264::picture_size chroma = h264::chroma_subsampling(sps);
    expect(chroma.width >= 1 && chroma.width <= 2 && chroma.height >= 1 && chroma.height <= 2,
           "chroma is half or whole");
}

void expect_names(const h264::seq_parameter_set_data& sps)
{
    const auto codec = h264::codec_string(sps);
    expect(std::strlen(codec.data()) == codec.size() - 1, "a codec string fills its room");
    expect(h264::profile_name(sps) != nullptr, "a profile has a name, or an empty one");
    const h264::level_limits* const limits = h264::limits_of_level(sps);
    expect(limits == nullptr || *limits->name != '\0', "a level has a name");
    expect(h264::MaxDpbFrames(sps) <= 16, "no buffer has more than 16 frames");
    expect(h264::inferred_reorder_frames(sps) <= h264::MaxDpbFrames(sps), "what is reordered lies in the buffer");
}

void expect_rates(const h264::vui_parameters& vui)
{
    expect(is_ratio(h264::sample_aspect_ratio(vui)), "an aspect ratio is none or one");
    expect(is_ratio(h264::field_rate(vui)) && is_ratio(h264::frame_rate(vui)), "a rate is none or one");
    const h264::hrd_parameters* const hrd = h264::timing_hrd(vui);
    for (std::uint32_t i = 0; hrd != nullptr && i < h264::schedule_count(*hrd); ++i)
        expect(h264::BitRate(*hrd, i) != 0 && h264::CpbSize(*hrd, i) != 0, "a schedule has a rate and a buffer");
}

void expect_lists(const h264::seq_parameter_set_data& sps, const h264::pic_parameter_set_rbsp* pps)
{
    const h264::scaling_lists lists = h264::scaling_lists_of(sps, pps);
    const auto* const begin = &lists.list_4x4[0][0];
    expect(std::find(begin, begin + sizeof lists.list_4x4, 0) == begin + sizeof lists.list_4x4, "no factor is 0");
}

void expect_map(const h264::seq_parameter_set_data& sps, const h264::pic_parameter_set_rbsp& pps, std::uint32_t cycle)
{
    constexpr std::uint64_t most_units = 4096;
    const std::uint64_t size = h264::PicSizeInMapUnits(sps);
    if (size > most_units)
        return;
    const exact_block room(static_cast<std::size_t>(size));
    const bool told = h264::slice_group_map(sps, pps, cycle, room.begin(), room.size());
    if (told && pps.slice_group_map_type != 6) // whose groups are what was sent
        expect(std::all_of(room.begin(), room.end(), [&](auto group) { return group <= pps.num_slice_groups_minus1; }),
               "a map unit is of a group that there is");
    expect(!h264::slice_group_map(sps, pps, cycle, room.begin(), room.size() - 1), "a map has room for each unit");
    expect(h264::slice_group_change_cycle_bits(sps, pps) <= 32, "a change cycle is a number");
}

/// Asks for all that follows from what a unit stands on, and for the clauses of what it has.
class asking_units : public h264::unit_sink, public h264::visitor {
public:
    h264::visitor* before(const h264::unit_place&) override { return this; }
    void open(const char* name) override
    {
        const char* const clause = h264::clause_of(name);
        const char* const semantics = h264::semantics_of(name);
        expect((*clause == '\0') == (*semantics == '\0'), "what has a clause has one of semantics");
    }
    void close() override {}
    void element(const h264::traced_element&) override {}

    void take(const h264::unit_reading& reading) override
    {
        if (const auto* const set = std::get_if<h264::seq_parameter_set_rbsp>(&reading.unit.rbsp))
            expect_all(set->seq_parameter_set_data);
        if (const auto* const pps = std::get_if<h264::pic_parameter_set_rbsp>(&reading.unit.rbsp))
            if (const h264::seq_parameter_set_data* const sps = h264::sps_of(*pps, *reading.context.sets))
                expect_with(*sps, *pps, 1);
        expect(h264::pps_of(reading.unit, *reading.context.sets) == reading.pps, "a slice stands on the PPS it names");
        const h264::slice_header* const header = h264::slice_header_of(reading.unit);
        if (header != nullptr && reading.pps != nullptr && reading.sps != nullptr)
            expect_with(*reading.sps, *reading.pps, header->slice_group_change_cycle);
    }

private:
    static void expect_all(const h264::seq_parameter_set_data& sps)
    {
        expect_sizes(sps);
        expect_names(sps);
        expect_rates(sps.vui_parameters);
        expect_lists(sps, nullptr);
    }
    static void expect_with(const h264::seq_parameter_set_data& sps, const h264::pic_parameter_set_rbsp& pps,
                            std::uint32_t cycle)
    {
        expect_lists(sps, &pps);
        expect_map(sps, pps, cycle);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::input input(data, size);
    const fuzz::unit_list list(input);
    asking_units sink;
    fuzz::h264::stream reader;
    list.push_to(reader, sink);
    return 0;
}
